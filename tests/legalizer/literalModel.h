// SPDX-License-Identifier: BSD-3-Clause
// What the programs of the segment solver share, a second time and rule by rule: ranges, costs, positions.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "app/parameters.h"
#include "db/design.h"

namespace test {

/// [component of the design] solution, siteX, x and y; as TinyDesign::places().
using Places = std::vector<std::array<int32_t, 4>>;

/// One segment as it was when this was constructed. The design stays as it is.
class LiteralModel {
public:
    LiteralModel(const Design& design, const Segment& segment)
        : m_design(&design), m_segment(&segment), m_sites(segment.numSites)
    {
        for (const Component* comp : segment.components) {
            const Cell* cell = design.lut.cells[static_cast<size_t>(comp->cellIdx)];
            m_comps.push_back({comp, cell, comp->solution, comp->siteX, comp->x, {}, {}});
        }
        for (const Net* net : design.nets) {
            m_ranges.push_back(fixedRange(*net));
        }
        findOutermost();
    }

    /// Where the design's components are now.
    Places places() const
    {
        Places all;
        for (const Component* record : m_design->components) {
            all.push_back({record->solution, record->siteX, record->x, record->y});
            for (const Comp& comp : m_comps) {
                if (comp.record == record) {
                    all.back() = {comp.solution, comp.siteX, comp.x, record->y};
                }
            }
        }
        return all;
    }

    // --- what a component or a pair costs

    size_t numComps() const { return m_comps.size(); }
    int32_t numSites() const { return m_sites; }
    int32_t colours(size_t i) const { return static_cast<int32_t>(m_comps[i].cell->colors.size()); }
    int32_t width(size_t i) const { return m_comps[i].cell->siteWidth; }
    int32_t solution(size_t i) const { return m_comps[i].solution; }
    int32_t siteX(size_t i) const { return m_comps[i].siteX; }
    int32_t x(size_t i) const { return m_comps[i].x; }

    /// Sites between a component and its right neighbour.
    int32_t spacing(size_t i, int32_t colour, int32_t rightColour) const
    {
        const auto& block = m_design->lut.distTable[static_cast<size_t>(m_comps[i].record->cellIdx)]
                                                   [static_cast<size_t>(m_comps[i + 1].record->cellIdx)];
        if (colour < 0 || colour >= colours(i) || rightColour < 0 || rightColour >= colours(i + 1)) {
            return 0;
        }
        return ceilDivided(block[static_cast<size_t>(colour)][static_cast<size_t>(rightColour)]);
    }

    int32_t stitches(size_t i, int32_t colour) const
    {
        const std::vector<int32_t>& all = m_comps[i].cell->stitchNums;
        return colour >= 0 && colour < static_cast<int32_t>(all.size()) ? all[static_cast<size_t>(colour)]
                                                                        : 0;
    }

    int32_t ownCost(size_t i, int32_t site, int32_t colour) const
    {
        const int32_t half = width(i) / 2;
        int32_t cost = stitches(i, colour);
        for (const int32_t net : m_comps[i].rightNets) {
            const int32_t right = m_ranges[static_cast<size_t>(net)][1];
            if (right >= 0) {
                cost = truncated(static_cast<float>(cost) + weighted(std::max(site + half - right, 0)));
            }
        }
        for (const int32_t net : m_comps[i].leftNets) {
            const int32_t left = m_ranges[static_cast<size_t>(net)][0];
            if (left >= 0) {
                cost = truncated(static_cast<float>(cost) + weighted(std::max(left - half - site, 0)));
            }
        }
        return cost;
    }

    int32_t pairCost(size_t i, int32_t colour, int32_t rightColour) const
    {
        const int32_t both = wrappedSum(stitches(i, colour), stitches(i + 1, rightColour));
        return truncated(static_cast<float>(both) + weighted(spacing(i, colour, rightColour)));
    }

    /// Whether two neighbours, by left ends, are in the segment and far enough from each other.
    bool fits(size_t i, int32_t site, int32_t colour, int32_t rightSite, int32_t rightColour) const
    {
        return site >= 0 && rightSite + width(i + 1) <= m_sites &&
               rightSite - site - width(i) >= spacing(i, colour, rightColour);
    }

    int32_t shiftCost(size_t i, int32_t site, int32_t colour, int32_t rightSite, int32_t rightColour) const
    {
        return fits(i, site, colour, rightSite, rightColour)
                   ? wrappedSum(ownCost(i, site, colour), ownCost(i + 1, rightSite, rightColour))
                   : FAR;
    }

    // --- writing back

    void park()
    {
        for (size_t i = 0; i < numComps(); ++i) {
            place(i, m_sites);
        }
    }

    void place(size_t i, int32_t site)
    {
        if (site < 0) {
            m_comps[i].siteX = ceilDivided(m_comps[i].x - m_segment->x);
        } else {
            m_comps[i].siteX = site;
            m_comps[i].x = site * SITE_WIDTH + m_segment->x;
        }
    }

    void colour(size_t i, int32_t solution) { m_comps[i].solution = solution; }

    /// Gives components without a solution one, from the second on.
    void fillMissingSolutions()
    {
        for (size_t c = 1; c < numComps(); ++c) {
            if (solution(c) < 0) {
                int32_t best = 0;
                for (int32_t j = 1; j < colours(c); ++j) {
                    if (spacing(c - 1, solution(c - 1), j) < spacing(c - 1, solution(c - 1), best)) {
                        best = j;
                    }
                }
                m_comps[c].solution = best;
            }
        }
    }

protected:
    static constexpr int32_t FAR = 0x3fffffff; ///< infeasible, not reached

    static int32_t wrappedSum(int32_t a, int32_t b)
    {
        return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
    }

private:
    struct Comp {
        const Component* record;
        const Cell* cell;
        int32_t solution;
        int32_t siteX;
        int32_t x;
        std::vector<int32_t> leftNets;
        std::vector<int32_t> rightNets;
    };

    static float weighted(int32_t sites) { return static_cast<float>(sites) * WEIGHT_WRLENG; }

    static int32_t truncated(float value)
    {
        constexpr float LIMIT = 2147483648.0F;
        const bool inRange = std::fabs(value) < LIMIT; // not so if not a number
        return inRange ? static_cast<int32_t>(value) : std::numeric_limits<int32_t>::min();
    }

    static int32_t ceilDivided(int32_t length)
    {
        return truncated(std::ceil(static_cast<float>(length) / static_cast<float>(SITE_WIDTH)));
    }

    std::array<int32_t, 2> fixedRange(const Net& net) const
    {
        const int32_t left = m_segment->x;
        const int32_t right = left + m_sites * SITE_WIDTH;
        std::vector<int32_t> outside;
        for (const Pin* pin : net.pins) {
            outside.push_back(pin->x);
        }
        for (const Component* comp : net.components) {
            if (comp->y != m_segment->y || comp->x < left || comp->x >= right) {
                outside.push_back(comp->x +
                                  m_design->lut.cells[static_cast<size_t>(comp->cellIdx)]->width / 2);
            }
        }
        if (outside.empty()) {
            return {-1, -1};
        }
        const auto [lo, hi] = std::minmax_element(outside.begin(), outside.end());
        const auto toSite = [&](int32_t x) {
            return x < left ? 0 : x > right ? m_sites : ceilDivided(x - left);
        };
        return {toSite(*lo), toSite(*hi)};
    }

    void findOutermost()
    {
        std::vector<const Comp*> leftmost(m_design->nets.size());
        std::vector<const Comp*> rightmost(m_design->nets.size());
        for (const Comp& comp : m_comps) {
            for (const Net* net : comp.record->nets) {
                const auto id = static_cast<size_t>(net->id);
                leftmost[id] = leftmost[id] == nullptr ? &comp : leftmost[id];
                rightmost[id] = &comp;
            }
        }
        // The order of a component's nets decides what is truncated when.
        for (Comp& comp : m_comps) {
            for (const Net* net : comp.record->nets) {
                addOnce(comp.leftNets, net->id, leftmost[static_cast<size_t>(net->id)] == &comp);
                addOnce(comp.rightNets, net->id, rightmost[static_cast<size_t>(net->id)] == &comp);
            }
        }
    }

    static void addOnce(std::vector<int32_t>& nets, int32_t id, bool isOutermost)
    {
        if (isOutermost && std::find(nets.begin(), nets.end(), id) == nets.end()) {
            nets.push_back(id);
        }
    }

    const Design* m_design;
    const Segment* m_segment;
    int32_t m_sites;
    std::vector<Comp> m_comps;
    std::vector<std::array<int32_t, 2>> m_ranges; ///< [net] fixed range, sites
};

} // namespace test
