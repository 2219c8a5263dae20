// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/gen/placement.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <numeric>
#include <utility>

#include "kit/engines/gen/random.h"

namespace kit::gen {

namespace {

/// Cells that are tried at the end of a stretch, lest dense rows stay short of their share.
constexpr size_t LOOK_AHEAD = 64;

/// Width of all cells together, sites.
int64_t widthOf(const std::vector<uint16_t>& types, const std::vector<LibraryCell>& library)
{
    return std::transform_reduce(types.begin(), types.end(), int64_t{0}, std::plus<>(),
                                 [&](uint16_t type) { return library[type].sites; });
}

/// What the cells of a stretch take at least: their widths and the spacings of the best colouring.
class Occupancy {
public:
    /// Sites taken once a cell has joined on the right.
    int32_t with(const LibraryCell& cell)
    {
        m_nextSpacings.clear();
        for (const Sides& sides : cell.plainSides) {
            m_nextSpacings.push_back(leastBefore(sides));
        }
        return m_width + cell.sites + *std::min_element(m_nextSpacings.begin(), m_nextSpacings.end());
    }

    /// Takes in the cell that with() was asked about.
    void join(const LibraryCell& cell)
    {
        m_last = &cell;
        m_width += cell.sites;
        m_spacings.swap(m_nextSpacings);
    }

    int32_t width() const { return m_width; } ///< of the cells alone, sites

private:
    int32_t leastBefore(const Sides& sides) const
    {
        if (m_last == nullptr) {
            return 0;
        }
        int32_t least = std::numeric_limits<int32_t>::max();
        for (size_t i = 0; i < m_spacings.size(); ++i) {
            least = std::min(least, m_spacings[i] + spacing(m_last->plainSides[i], sides));
        }
        return least;
    }

    const LibraryCell* m_last = nullptr;
    int32_t m_width = 0;
    std::vector<int32_t> m_spacings;     ///< [solution of the last cell] fewest spacings up to it
    std::vector<int32_t> m_nextSpacings; ///< the same of the cell that may join
};

/// Fills the stretches of a floorplan one after the other.
class Filler {
public:
    Filler(const Floorplan& plan, std::vector<uint16_t> types, const std::vector<LibraryCell>& library,
           const Options& options)
        : m_plan(plan), m_types(std::move(types)), m_library(library), m_gaps(options.seed, GAP_STREAM),
          m_mirrors(options.seed, MIRROR_STREAM), m_mirrored(options.mirrored)
    {
        m_total = widthOf(m_types, library);
    }

    /// The cells where they stand, or nothing if they do not fit.
    std::optional<std::vector<Placed>> fill()
    {
        m_cells.reserve(m_types.size());
        int64_t capacity = 0;
        for (const Stretch& stretch : m_plan.stretches) {
            capacity += stretch.sites;
            fillStretch(stretch, m_total * capacity / m_plan.capacity);
        }
        return m_cells.size() == m_types.size() ? std::optional(std::move(m_cells)) : std::nullopt;
    }

private:
    /// Adds cells until all so far are as wide as they should be, or no other fits.
    void fillStretch(const Stretch& stretch, int64_t target)
    {
        Occupancy occupancy;
        const size_t first = m_cells.size();
        while (m_width + occupancy.width() < target && bringFitting(occupancy, stretch.sites)) {
            const uint16_t type = m_types[m_cells.size()];
            occupancy.join(m_library[type]);
            m_cells.push_back({stretch.row, 0, type, m_mirrors.below(100) < m_mirrored});
        }
        m_width += occupancy.width();
        spread(first, stretch, stretch.sites - occupancy.width());
    }

    /// Makes the next cell one that fits, the first of those that come soon.
    ///
    /// @param sites  capacity of the stretch
    /// @return false if there is none
    bool bringFitting(Occupancy& occupancy, int32_t sites)
    {
        const size_t next = m_cells.size();
        const size_t end = std::min(next + LOOK_AHEAD, m_types.size());
        for (size_t i = next; i < end; ++i) {
            if (occupancy.with(m_library[m_types[i]]) <= sites) {
                std::swap(m_types[next], m_types[i]);
                return true;
            }
        }
        return false;
    }

    /// Sets the cells from one on apart, every free site in a gap chosen at random.
    void spread(size_t first, const Stretch& stretch, int32_t freeSites)
    {
        const size_t count = m_cells.size() - first;
        m_gapSites.assign(count + 1, 0);
        for (int32_t i = 0; i < freeSites && count > 0; ++i) {
            ++m_gapSites[static_cast<size_t>(m_gaps.below(static_cast<int32_t>(count + 1)))];
        }
        int32_t site = stretch.site;
        for (size_t i = 0; i < count; ++i) {
            Placed& cell = m_cells[first + i];
            site += m_gapSites[i];
            cell.site = site;
            site += m_library[cell.type].sites;
        }
    }

    const Floorplan& m_plan;
    std::vector<uint16_t> m_types; ///< [component] its cell, in the order of placing
    const std::vector<LibraryCell>& m_library;
    Random m_gaps;
    Random m_mirrors;
    int32_t m_mirrored;
    int64_t m_total = 0; ///< width of all cells, sites
    int64_t m_width = 0; ///< of the cells placed so far, sites
    std::vector<Placed> m_cells;
    std::vector<int32_t> m_gapSites; ///< [cell of the stretch] free sites before it, and behind the last
};

} // namespace

Placement placeAll(const std::vector<uint16_t>& types, const std::vector<LibraryCell>& library,
                   const Options& options)
{
    const int64_t cellSites = widthOf(types, library);
    Floorplan plan = fitFloorplan(cellSites, options);
    std::optional<std::vector<Placed>> cells = Filler(plan, types, library, options).fill();
    while (!cells) { // spacings and the ends of short stretches take more than is free: some more rows
        plan = makeFloorplan(plan.rows + 1 + plan.rows / 200, plan.sitesPerRow, options);
        cells = Filler(plan, types, library, options).fill();
    }
    return {std::move(plan), std::move(*cells), cellSites};
}

} // namespace kit::gen
