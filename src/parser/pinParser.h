// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

class Design;

/// Reads the fixed pins into the design.
class PinParser {
public:
    /// A reader into a design, which outlives it.
    explicit PinParser(Design* owner) : design(owner) {}

    /// Reads base + ".pins": a count, then a name, an x and a y (DBU) per pin, between white space.
    ///
    /// A count that is no number means no pins. Errors: ends the run if the file cannot be opened or a pin is
    /// not complete.
    void run(std::string base);

    Design* design; ///< not owned
};
