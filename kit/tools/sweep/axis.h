// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <vector>

namespace kit::sweep {

/// A value that an axis names.
struct Tick {
    double value;
    std::string label; ///< empty for a mark alone
};

/// One axis of a chart.
struct Axis {
    std::string title;
    bool logarithmic = false;
    double low = 0;
    double high = 1; ///< above `low`
    std::vector<Tick> ticks;

    /// Where a value is, 0 at the low end and 1 at the high end.
    double at(double value) const;
};

/// An axis whose values are named in round numbers, with some room at both ends.
///
/// @param title  what it is, without unit; the unit gets a power of a thousand in front
Axis linearAxis(const std::string& title, const std::string& unit, double low, double high);

/// An axis from a round value to another. @param low  above 0
Axis logarithmicAxis(const std::string& title, double low, double high);

} // namespace kit::sweep
