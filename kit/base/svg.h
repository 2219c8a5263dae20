// SPDX-License-Identifier: BSD-3-Clause
// Colours that stay distinct for colour-blind people.
//
// Source: Okabe and Ito, "Color Universal Design", 2008.
// What all SVG pictures begin with, and what all of them hold.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "kit/base/files/outputFile.h"

namespace kit {

inline constexpr std::array<std::string_view, 3> MASK_COLOURS{"#0072B2", "#D55E00", "#009E73"};
inline constexpr std::string_view NO_MASK_COLOUR = "#7f858c";
inline constexpr std::string_view STITCH_COLOUR = "#F0E442";
inline constexpr std::string_view CONFLICT_COLOUR = "#000000";
inline constexpr std::string_view MOVE_COLOUR = "#CC79A7";

/// A width and a height.
struct SvgSize {
    int32_t width = 0;
    int32_t height = 0;
};

/// Opens a picture on white ground. It ends with "</svg>".
///
/// @param pixels      how large it is shown
/// @param units       the same in the picture's own units
/// @param title       plain text
/// @param attributes  more of the element, each behind a blank
void beginSvg(OutputFile& file, SvgSize pixels, SvgSize units, std::string_view title,
              std::string_view attributes = "");

/// Writes a line of text from its left end on the base line.
///
/// @param x, y        rounded to tenths
/// @param words       plain text
/// @param attributes  more of the element, each behind a blank
void writeSvgText(OutputFile& file, double x, double y, std::string_view words,
                  std::string_view attributes = "");

} // namespace kit
