// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "app/parameters.h"
#include "qlib/qBox.h"

/// Site width of the coordinates that the library is written in, DBU, whatever the design's is.
inline constexpr int32_t LIBRARY_SITE_WIDTH = 190;

/// A library cell: its size, its metal-1 shapes and its precomputed colour solutions.
class Cell {
public:
    /// An unnamed cell without shapes.
    ///
    /// @param cellWidth    DBU
    /// @param cellHeight   DBU
    /// @param widthOfSite  DBU; its width in sites follows from it
    Cell(int32_t cellWidth, int32_t cellHeight, int32_t widthOfSite = SITE_WIDTH);

    /// Moves the geometry so that the shapes' lower-left extent becomes the origin, and sets the box to the
    /// cell's outline.
    ///
    /// Required: without shapes the extent is unset, the largest integer, and the header boxes move by it all
    /// the same, with wrap-around.
    void normalize();

    /// Whether a shape is a power rail in a solution: mask 0, and some rectangle reaches the bottom or the
    /// top edge of the cell. Rails never conflict.
    ///
    /// @param shape     index in shapes
    /// @param solution  index in colors
    /// @return 1 or 0
    int isVDDGND(int shape, int solution) const;

    /// Whether a shape can conflict with another at all in a solution: it has one of the three masks and is
    /// no rail.
    ///
    /// @param shape     index in shapes
    /// @param solution  index in colors
    bool isCritical(size_t shape, size_t solution) const;

    /// Stitches of a solution, 0 if there is no such solution.
    int32_t stitchesOf(int32_t solution) const
    {
        const auto s = static_cast<size_t>(solution); // a negative index becomes a huge one
        return s < stitchNums.size() ? stitchNums[s] : 0;
    }

    int32_t id = 0;                           ///< index in LUTable::cells
    int32_t width;                            ///< DBU; library coordinates until Design::resizeCell()
    int32_t height;                           ///< DBU; library coordinates until Design::resizeCell()
    int32_t siteWidth;                        ///< width in sites of the -siteW option
    std::string name;                         ///< name of the cell
    int32_t outlineYl;                        ///< bottom of the box, library coordinates
    int32_t outlineYh;                        ///< top of the box
    int32_t outlineXl;                        ///< left of the box
    int32_t outlineXh;                        ///< right of the box
    std::vector<qBox*> headerBoxes;           ///< first box list of the file, no part in distances, not owned
    std::vector<std::vector<qBox*>> shapes;   ///< rectangles of every metal-1 shape, not owned
    std::vector<std::vector<int32_t>> colors; ///< [solution][shape] mask: 0, 1, 2; others never conflict
    std::vector<int32_t> stitchNums;          ///< [solution] stitches
};
