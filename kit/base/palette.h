// SPDX-License-Identifier: BSD-3-Clause
// Colours that stay distinct for colour-blind people.
//
// Source: Okabe and Ito, "Color Universal Design", 2008.
#pragma once

#include <array>
#include <string_view>

namespace kit {

inline constexpr std::array<std::string_view, 3> MASK_COLOURS{"#0072B2", "#D55E00", "#009E73"};
inline constexpr std::string_view NO_MASK_COLOUR = "#7f858c";
inline constexpr std::string_view STITCH_COLOUR = "#F0E442";
inline constexpr std::string_view CONFLICT_COLOUR = "#000000";
inline constexpr std::string_view MOVE_COLOUR = "#CC79A7";

} // namespace kit
