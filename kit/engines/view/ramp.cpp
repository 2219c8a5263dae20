// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/view/ramp.h"

#include <algorithm>
#include <array>

namespace kit::view {

namespace {

using Colour = std::array<int32_t, 3>; // red, green, blue

constexpr std::array<Colour, 4> STOPS{{{255, 255, 255}, {140, 205, 240}, {0, 114, 178}, {0, 44, 77}}};
constexpr int32_t FULL = 100;
constexpr int32_t INTERVALS = static_cast<int32_t>(STOPS.size()) - 1;

constexpr char HEX[] = "0123456789abcdef";

} // namespace

std::string rampColour(uint8_t share)
{
    const int32_t place = std::min<int32_t>(share, FULL) * INTERVALS;
    const int32_t below = std::min(place / FULL, INTERVALS - 1);
    const int32_t beyond = place - below * FULL;
    std::string text = "#";
    for (size_t i = 0; i < 3; ++i) {
        const int32_t low = STOPS[static_cast<size_t>(below)][i];
        const int32_t high = STOPS[static_cast<size_t>(below) + 1][i];
        const auto level = static_cast<uint32_t>(low + (high - low) * beyond / FULL);
        text += HEX[level >> 4U];
        text += HEX[level & 15U];
    }
    return text;
}

} // namespace kit::view
