// SPDX-License-Identifier: BSD-3-Clause
// The rows of a design with what stands in them, side by side where they have one bottom edge: cells across a
// block, or in two rows that meet, may be too close like any others.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "kit/engines/place/arrange.h"
#include "kit/engines/place/gaps.h"
#include "kit/engines/place/trueDesign.h"

class Design;
struct Segment;

namespace kit::place {

/// A cell where it stands.
struct Tenant {
    int32_t component = -1; ///< index in Design::components
    int64_t x = 0;          ///< left edge, DBU
    Lie lie;
};

/// Rows of one bottom edge.
struct Band {
    int64_t y = 0;                       ///< bottom edge, DBU
    std::vector<SiteRun> runs{};         ///< free sites, from the left
    std::vector<Segment*> segments{};    ///< [run] the placer's, not owned
    std::vector<Tenant> tenants{};       ///< from the left
    std::vector<Tenant> obstacles{};     ///< metal that stays where it is
    std::vector<Segment*> allSegments{}; ///< of this bottom edge, not owned
    bool changed = false;                ///< against the placer's
    /// Cells that found no place, in the order that is there (false) or in any; a cell of -1 for pairs.
    std::set<std::pair<int32_t, bool>> refused{};

    /// The run that a cell fits in, on its sites; none if there is none.
    std::optional<size_t> runOf(int64_t x, int64_t width) const;

    /// Index of the first tenant right of x.
    size_t rankOf(int64_t x) const;
};

/// Two cells of a band that are too close.
struct ClosePair {
    size_t left = 0;    ///< rank
    size_t right = 0;   ///< rank; that of the left one if the other is an obstacle
    int32_t first = 0;  ///< component
    int32_t second = 0; ///< component, as in Design::component()
};

/// The bands of a design, from the bottom, without tenants. Free are the sites that are in a segment, and in
/// a row under no macro.
///
/// @param gaps  out: knows the obstacles
std::vector<Band> bandsOf(const Design& design, const TrueDesign& truth, Gaps& gaps);

/// Puts the tenants of a band into the lists of the placer's segments.
void enterTenants(const Band& band, const Gaps& gaps, Design& design);

/// Pairs of tenants of a band that are too close, and tenants that are too close to an obstacle.
std::vector<ClosePair> closePairs(const Band& band, Gaps& gaps);

} // namespace kit::place
