// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string>
#include <vector>

class Design;

namespace vireloce {
class WordReader;
} // namespace vireloce

/// Reads the nets into the design and links them to their components and pins.
class NetParser {
public:
    /// A reader into a design, which outlives it.
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
    /// Reads the nets. What it needs for that is gone when it returns, which keeps the peak of memory low.
    ///
    /// @return [component] how often it is a member of a net
    std::vector<uint32_t> readNets(vireloce::WordReader& in);

    /// Makes room in Component::nets for what Design::initNetInComp() will enter, and no more than that.
    ///
    /// @param uses  [component] how often it is a member of a net
    void reserveNets(const std::vector<uint32_t>& uses);
};
