// SPDX-License-Identifier: BSD-3-Clause
// The rows of a DEF as the placer takes them: one for each height, on one grid of sites, with blocks in them.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "kit/formats/lefdef/def.h"
#include "kit/formats/lefdef/lef.h"
#include "kit/geometry/rect.h"

namespace kit::importing {

/// In place of an index, where there is nothing.
inline constexpr size_t NONE = SIZE_MAX;

using Interval = geometry::RangeOf<int64_t>; ///< of x, DBU

/// A part of a row without gaps: sites from its begin on.
using Piece = Interval;

/// All rows of a DEF at one height.
struct Row {
    std::string_view name; ///< of the leftmost
    std::string_view site;
    int64_t y = 0; ///< bottom edge, DBU
    lefdef::Orient orient = lefdef::Orient::N;
    size_t offset = 0;              ///< in the DEF file
    std::vector<Piece> pieces{};    ///< from the left, disjoint
    std::vector<Interval> blocks{}; ///< what is not free: from the left, disjoint, each between two sites

    /// Left end, DBU.
    int64_t begin() const { return pieces.front().begin; }
    /// Right end, DBU.
    int64_t end() const { return pieces.back().end; }

    /// Sites from the begin on that hold all pieces.
    int64_t numSites(int64_t siteWidth) const { return (end() - begin() + siteWidth - 1) / siteWidth; }
};

/// The rows, and the size of their sites.
struct Core {
    int64_t siteWidth = 0;  ///< DBU
    int64_t siteHeight = 0; ///< DBU
    std::vector<Row> rows;  ///< in the order of the file

    /// Indices of the rows by height; filled by readCore().
    std::vector<size_t> byHeight;

    /// Index in byHeight of the first row whose top is above `y`.
    size_t firstAbove(int64_t y) const;

    /// Index of the row at a height, NONE if there is none.
    size_t rowAt(int64_t y) const;
};

/// Takes the rows of a DEF.
///
/// The site is the one given, or the one that most movable cells have: by their height, of equal ones the
/// lower, and then by name. Rows that the placer cannot have with those of that site are left out, with a
/// warning: those of another height or step, vertical ones, and those that overlap another row, or lie other
/// than one at their height.
///
/// @param movable  [macro] movable cells of it
/// @param site     of --site, if given
/// @return none after an error
std::optional<Core> readCore(const lefdef::Def& def, const lefdef::Lef& lef,
                             const std::vector<int64_t>& movable, const std::optional<lefdef::SiteSize>& site,
                             lefdef::SourceReporter& reporter);

/// Blocks what some rectangles cover of the rows, whole sites at a time, and the gaps between pieces.
///
/// @param rects  may overlap, and lie anywhere
void addBlocks(Core& core, const std::vector<lefdef::DefRect>& rects);

/// The stretches between the blocks of a row, from the left.
std::vector<Interval> freeStretches(const Row& row);

} // namespace kit::importing
