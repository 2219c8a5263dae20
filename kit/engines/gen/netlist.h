// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <vector>

#include "kit/engines/gen/generate.h"
#include "kit/engines/gen/placement.h"

namespace kit::gen {

/// A terminal on the border of the design.
struct BorderPin {
    int32_t row = 0;  ///< from -1, below the rows, to their number, above them
    int32_t site = 0; ///< from -1, left of the rows, to their length, right of them
};

/// The nets and the terminals.
struct Netlist {
    std::vector<size_t> netBegin; ///< [nets + 1] first member of each net in members
    std::vector<int32_t> members; ///< index of a component; or -1 - index of a pin
    std::vector<BorderPin> pins;
};

/// Connects the components to others near by, as a good placement leaves them.
///
/// Every component drives a net, one in ten another one. Most nets have 2 to 5 members, of which about half
/// are in the driver's row and all inside the window of the options; wide nets have more, all around the
/// driver. Every pin has a net with a component on the border next to it.
Netlist connect(const Placement& placement, const Options& options);

} // namespace kit::gen
