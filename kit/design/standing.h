// SPDX-License-Identifier: BSD-3-Clause
// Cells and their metal where they stand, and how close the metal of two comes.
//
// Lengths are "fine": an integer unit in which both DBU and library coordinates are whole. A site is 190
// library units or `step` DBU, so a library unit is `step` fine units and a DBU is 190.
#pragma once

#include <cstdint>
#include <deque>
#include <span>
#include <utility>
#include <vector>

#include "kit/design/issue.h"
#include "kit/formats/placer/colors.h"
#include "kit/formats/placer/design.h"
#include "kit/geometry/rect.h"
#include "kit/geometry/sweep.h"

namespace kit::design {

using FineBox = geometry::Rect; ///< fine units

/// Between fine units and the others.
struct Scale {
    int64_t step = 0; ///< site width of the design, DBU: the first row's step

    /// DBU in fine units.
    static int64_t ofDbu(int64_t dbu) { return dbu * placer::LIBRARY_SITE; }
    /// Library coordinates in fine units.
    int64_t ofLibrary(int64_t length) const { return length * step; }
    /// Fine units in library coordinates.
    double toLibrary(double fine) const { return fine / static_cast<double>(step); }
    /// A rectangle of fine units in DBU.
    static DbuBox toDbu(const FineBox& box);
};

/// How an orientation turns a cell.
struct Turn {
    bool known = false;   ///< one of N, FN, S, FS
    bool mirrorX = false; ///< left and right change places
    bool mirrorY = false; ///< bottom and top change places
};

/// The turn of an orientation by its name.
Turn turnOf(const std::string& orient);

/// A rectangle of a cell as a component of that orientation has it, library coordinates.
placer::Rect turned(const placer::Rect& rect, const placer::Cell& cell, const Turn& turn);

/// A cell as a component of that orientation has it.
placer::Cell turned(const placer::Cell& cell, const Turn& turn);

/// A rectangle of a shape.
struct Piece {
    FineBox box;         ///< from the cell's lower-left corner
    int32_t shape = 0;   ///< index in Cell::shapes
    bool atEdge = false; ///< its shape reaches the bottom or top edge of the cell: a rail if on mask 0
};

/// A cell in an orientation.
struct Stencil {
    FineBox outline; ///< from (0, 0)
    FineBox extent;  ///< of the outline and all metal
    std::vector<Piece> pieces;
};

/// The cell as a component of that orientation has it; an unknown one is taken as N.
Stencil stencilOf(const placer::Cell& cell, const Turn& turn, const Scale& scale);

/// A placed cell, or what a block has of metal in a row.
struct Standing {
    int32_t component = -1;           ///< index as in Design::component()
    const Stencil* stencil = nullptr; ///< not owned
    std::span<const int32_t> masks;   ///< [shape] of the colours file; may be too short
    int64_t x = 0;                    ///< left edge, fine units
    int64_t y = 0;                    ///< bottom edge, fine units

    /// The cell's outline where it stands.
    FineBox outline() const { return stencil->outline.shifted(x, y); }
    /// Outline and metal where they stand.
    FineBox extent() const { return stencil->extent.shifted(x, y); }

    /// Mask of a piece, -1 if it is on none of the three.
    int32_t maskOf(const Piece& piece) const;
};

/// Cells of one bottom edge, from the left. Usually that of a row, or of several side by side.
struct Band {
    int64_t y = 0; ///< fine units
    std::vector<Standing> cells{};
    std::vector<geometry::Span> spans{}; ///< [cell] what its extent takes of the x axis
};

/// All cells that stand somewhere, by bands from the bottom; and the metal of blocks in the rows, which is on
/// all masks.
class Layout {
public:
    /// @param design   must outlive this
    /// @param records  [component] its colours, nullptr if there are none; those of Design::fixed may follow,
    ///                 and none of them has masks without; must outlive this
    Layout(const placer::Design& design, const std::vector<const placer::ColorRecord*>& records, Scale scale);

    const std::vector<Band>& bands() const { return m_bands; }

    /// Farthest that the extent of a cell reaches up or down from its bottom edge, fine units.
    int64_t tallest() const { return m_tallest; }

private:
    const Stencil* findStencil(const placer::Cell& cell, size_t index, const Turn& turn);
    std::vector<Standing> standings(const placer::Design& design,
                                    const std::vector<const placer::ColorRecord*>& records);
    void addBlocks(const placer::Design& design, std::vector<Standing>& all);

    Scale m_scale;
    int64_t m_rowHeight;                          ///< fine units
    std::vector<std::vector<Stencil>> m_stencils; ///< [4 * cell + turn] none or one
    std::deque<Stencil> m_blocks;                 ///< of blocks, for one row each
    std::vector<Band> m_bands;
    int64_t m_tallest = 0;
};

/// Horizontal distance from which on two rectangles are far enough apart, fine units.
///
/// @param dy     their vertical distance, less than `least`
/// @param least  distance that they need
int64_t horizontalDistance(int64_t dy, int64_t least);

/// Whether the metal of two components is compared, by their indices as in Design::component(). A block is
/// not with what stays where it is as well: nobody knows its masks, and neither can help.
bool areCompared(const placer::Design& design, int32_t first, int32_t second);

/// Metal of one mask in two cells that is too close.
struct Closeness {
    int32_t shapePairs = 0; ///< pairs of shapes that are too close; 0: there is nothing to say
    double distance = 0;    ///< least of all, fine units
    int32_t mask = -1;      ///< of the two closest rectangles
    FineBox first;          ///< of the first cell, the closest one
    FineBox second;         ///< of the second cell, the closest one
};

/// What is too close between two cells.
struct ClosePair {
    Closeness metal; ///< without rails
    Closeness rails; ///< rails of one to other metal of mask 0 of the other, which they do not touch
};

/// Compares the metal of cells.
class MetalGauge {
public:
    /// @param least  distance that shapes of one mask need, fine units
    explicit MetalGauge(int64_t least) : m_least(least) {}

    /// What is closer than it may be, over all pairs of shapes of one mask. Two rails never are.
    ClosePair measure(const Standing& first, const Standing& second);

private:
    /// A rectangle that may be too close to the other cell's.
    struct Metal {
        FineBox box;
        int32_t shape;
        int32_t mask;
        bool isRail;
    };

    /// What was found so far.
    struct Finds {
        Closeness closest;
        std::vector<std::pair<int32_t, int32_t>> shapes; ///< too close, once per pair of rectangles

        void take(const Metal& a, const Metal& b);
        Closeness result();
    };

    bool tooClose(const FineBox& a, const FineBox& b) const;
    void collect(const Standing& cell, const FineBox& other, std::vector<Metal>& metal) const;

    int64_t m_least;
    std::vector<Metal> m_first;
    std::vector<Metal> m_second;
    Finds m_metal;
    Finds m_rails;
};

} // namespace kit::design
