// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <string_view>

class Design;
struct Net;

/// Reads the nets into the design and links them to their components and pins.
class NetParser {
public:
    explicit NetParser(Design* owner) : design(owner) {}

    /// Reads base + ".netlist": a count, then a degree and as many member names per net, between white space.
    /// The placement and the pin file must have been read before.
    ///
    /// Nets of degree under 2 are dropped: they have no wirelength. A member is a component if there is one
    /// of its name, else a pin. A count or degree that is no number is 0.
    ///
    /// Errors: ends the run if the file cannot be opened or a member is neither a component nor a pin.
    void run(std::string base);

    Design* design; ///< not owned

private:
    /// Adds the component or the pin of a name to a net; ends the run if there is none.
    void addMember(Net& net, std::string_view name);
};
