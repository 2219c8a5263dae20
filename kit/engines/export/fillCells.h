// SPDX-License-Identifier: BSD-3-Clause
// Fillers as cells with masks, and what stands around them.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "kit/design/standing.h"
#include "kit/formats/lefdef/lef.h"
#include "kit/formats/placer/colors.h"
#include "kit/formats/placer/design.h"

namespace kit::exporter {

/// A filler as a cell with all metal on mask 0; none if it has metal that is no rail, or whose edges slant. A
/// rail is metal that hangs together and reaches the bottom or top edge.
///
/// @param siteWidth  picometres
std::optional<placer::Cell> railCell(const lefdef::LefMacro& macro, lefdef::Length siteWidth);

/// The metal of a placement, to which fillers are added one by one.
class Surroundings {
public:
    /// @param design   must outlive this, as the colours must
    /// @param colours  [component] nullptr for none
    /// @param minDist  distance that shapes of one mask need, library units
    Surroundings(const placer::Design& design, const std::vector<const placer::ColorRecord*>& colours,
                 design::Scale scale, int32_t minDist);

    /// Whether no metal around is too close to that of a cell.
    bool allow(const design::Standing& cell);

    /// Adds a cell to what is around.
    void add(const design::Standing& cell) { m_added[cell.y].push_back(cell); }

private:
    bool allow(const design::Standing& cell, const design::Band& band);

    design::Layout m_layout;
    int64_t m_least;      ///< fine units
    int64_t m_widest = 0; ///< what a cell takes of the x axis, fine units
    design::MetalGauge m_gauge;
    std::map<int64_t, std::vector<design::Standing>> m_added; ///< by their bottom edges
    int64_t m_tallest;                                        ///< farthest that metal is from a bottom edge
};

} // namespace kit::exporter
