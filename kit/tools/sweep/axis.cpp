// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/sweep/axis.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace kit::sweep {

namespace {

constexpr double MOST_TICKS = 7;
constexpr double CLOSE = 5;         // times, up to which there are more values
constexpr double FULL_LABELS = 2.5; // decades up to which 2 and 5 are named as well

std::string textOf(double value)
{
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.9g", value);
    return text.data();
}

/// The least of 1, 2 and 5 by powers of ten that is no smaller.
double roundStep(double step)
{
    const double decade = std::pow(10, std::floor(std::log10(step)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (factor * decade >= step * (1 - 1e-9)) {
            return factor * decade;
        }
    }
    return 10 * decade;
}

struct Scale {
    double factor;
    const char* name;
};

Scale scaleFor(double largest)
{
    constexpr Scale SCALES[] = {{1e9, "billion "}, {1e6, "million "}, {1e4, "thousand "}};
    for (const Scale& scale : SCALES) {
        if (largest >= scale.factor) {
            return {scale.factor == 1e4 ? 1e3 : scale.factor, scale.name};
        }
    }
    return {1, ""};
}

bool isDecade(double value)
{
    const double decade = std::log10(value);
    return std::fabs(decade - std::round(decade)) < 1e-9;
}

/// Round values from the decade of one value to that of another, closer ones if they are close.
std::vector<double> roundValues(double low, double high)
{
    const std::vector<double> factors = high < CLOSE * low
                                            ? std::vector<double>{1, 1.2, 1.5, 2, 2.5, 3, 4, 5, 6, 8}
                                            : std::vector<double>{1, 2, 5};
    std::vector<double> values;
    const int last = static_cast<int>(std::ceil(std::log10(high * 1.05)));
    for (int decade = static_cast<int>(std::floor(std::log10(low * 0.95))); decade <= last; ++decade) {
        for (const double factor : factors) {
            values.push_back(factor * std::pow(10, decade));
        }
    }
    return values;
}

} // namespace

double Axis::at(double value) const
{
    return logarithmic ? std::log(value / low) / std::log(high / low) : (value - low) / (high - low);
}

Axis linearAxis(const std::string& title, const std::string& unit, double low, double high)
{
    const double least = std::max(std::fabs(high) * 1e-3, 1.0); // equal values get some width
    const double room = std::max((high - low) * 0.06, high - low < least ? least : 0.0);
    const Scale scale = scaleFor(std::max(std::fabs(low), std::fabs(high)));
    Axis axis;
    axis.title = title;
    axis.low = low >= 0 ? std::max(low - room, -0.04 * (high + room)) : low - room;
    axis.high = high + room;
    if (!unit.empty()) {
        axis.title += ", " + std::string(scale.name) + unit;
    } else if (scale.factor > 1) {
        axis.title += ", " + std::string(scale.name).substr(0, std::string(scale.name).size() - 1);
    }
    // Counts have no fractions.
    double step = roundStep((axis.high - axis.low) / MOST_TICKS);
    step = unit.empty() ? std::max(step, 1.0) : step;
    for (double k = std::ceil(std::max(axis.low, low >= 0 ? 0.0 : axis.low) / step); k * step <= axis.high;
         ++k) {
        axis.ticks.push_back({k * step, textOf(k * step / scale.factor)});
    }
    return axis;
}

Axis logarithmicAxis(const std::string& title, double low, double high)
{
    const std::vector<double> values = roundValues(low, high);
    Axis axis;
    axis.title = title;
    axis.logarithmic = true;
    axis.low = *std::prev(std::upper_bound(values.begin(), values.end(), low * 0.95));
    axis.high = *std::lower_bound(values.begin(), values.end(), high * 1.05);
    const bool all = std::log10(axis.high / axis.low) <= FULL_LABELS;
    for (size_t i = 0; i < values.size(); ++i) {
        if (values[i] >= axis.low && values[i] <= axis.high) {
            axis.ticks.push_back({values[i], all || isDecade(values[i]) ? textOf(values[i]) : ""});
        }
    }
    return axis;
}

} // namespace kit::sweep
