// SPDX-License-Identifier: BSD-3-Clause
// The metal of a cell as nets and polygons, in library coordinates: one site is 190 wide.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "kit/formats/lefdef/lef.h"
#include "kit/formats/placer/design.h"

namespace kit::color {

using placer::Rect;

/// Why a cell cannot be coloured as it is written.
class CellFault : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// How a length between two whole units becomes one of them.
enum class Rounding { NEAREST, DOWN, UP };

/// Lengths of a LEF file in library coordinates.
class Scale {
public:
    /// @param site  width of the site that the rows have, picometres, positive
    explicit Scale(lefdef::Length site) : m_site(site) {}

    /// Width of the site.
    lefdef::Length siteWidth() const { return m_site; }

    /// A length, rounded to an integer; halves go up where it is the nearest.
    ///
    /// Errors: throws CellFault if it is beyond what a colour file may hold.
    int32_t of(lefdef::Length length, Rounding rounding = Rounding::NEAREST) const;

    /// Whether a length is a whole number there.
    bool isExact(lefdef::Length length) const { return length * placer::LIBRARY_SITE % m_site == 0; }

private:
    lefdef::Length m_site;
};

/// Metal that hangs together: rectangles of one net that touch each other, if only at a corner.
struct Polygon {
    size_t net = 0;          ///< index in CellMetal::nets
    std::vector<Rect> rects; ///< may overlap; each has an area
};

/// What is to be coloured of a cell.
struct CellMetal {
    std::string name;
    int32_t width = 0;
    int32_t height = 0;
    std::vector<std::string> nets;    ///< pins by their names, then "obstruction 1", "obstruction 2", ...
    std::vector<Polygon> rails;       ///< one for each rail, cut to the outline; the lowest first
    std::vector<Polygon> polygons;    ///< all else, in the order of the pins, obstructions last
    bool exact = true;                ///< nothing was rounded
    placer::TrueMetal metal;          ///< as in the LEF file
    std::vector<std::string> remarks; ///< what is odd about the cell, for warnings

    /// Name of a polygon's net.
    const std::string& netOf(size_t polygon) const { return nets[polygons[polygon].net]; }
};

/// A rectangle as in colour files: "0 10 190 100".
std::string textOf(const Rect& rect);

/// Sorts the metal of a master by nets.
///
/// Of a pin's rectangles those that touch are one polygon. Obstructions that touch each other are a net of
/// their own; those that touch a pin belong to it. Pins that touch are one net, with a remark. Metal of a
/// power or ground pin that reaches the bottom or the top of the cell, or from its left to its right edge, is
/// a rail with all that hangs on it; what a pin has at one of the edges is one rail, in parts or not. So is
/// any other metal that covers the bottom or the top edge from end to end: the next row's is one with it.
///
/// Errors: throws CellFault for a polygon that is not rectilinear, for metal but rails beyond the left or
/// right edge, for too many rectangles and too large coordinates.
CellMetal metalOf(const lefdef::LefMacro& macro, const Scale& scale);

} // namespace kit::color
