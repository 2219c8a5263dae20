// SPDX-License-Identifier: BSD-3-Clause
#include "legalizer/fastRoad.h"

#include <algorithm>
#include <cassert>

#include "app/parameters.h"
#include "db/design.h"
#include "legalizer/stretch.h"

namespace vireloce {

FastRoad::FastRoad(Design& design)
    : m_design(design), m_siteWidth(SITE_WIDTH), m_weight(WEIGHT_WRLENG), m_numSolutions(LDP_K),
      m_mirror(design), m_gaps(design.lut, SITE_WIDTH), m_pairCosts(design.lut, m_gaps, WEIGHT_WRLENG),
      m_marks(m_mirror.numNets())
{
}

const Cell& FastRoad::cellOf(const Component& comp) const
{
    return m_design.cellOf(comp);
}

void FastRoad::gather(const Segment& segment)
{
    m_segment.numSites = segment.numSites;
    m_segment.comps.assign(segment.components.begin(), segment.components.end());
    m_segment.width.clear();
    for (const Component* comp : m_segment.comps) {
        assert(m_mirror.agreesOn(*comp)); // or whoever moved it did not say so
        m_segment.width.push_back(cellOf(*comp).siteWidth);
    }
    gatherLeftEnds(segment);
    gatherRightEnds();
    // An end may lie behind the segment by the rounding of large coordinates.
    m_segment.farthest = segment.numSites;
    for (const int32_t left : m_segment.leftEnds) {
        m_segment.farthest = std::max(m_segment.farthest, left);
    }
    m_terms.prepare(m_weight, m_segment.farthest);
}

void FastRoad::gatherSolutions()
{
    m_gapsToLeft.clear();
    m_stitches.clear();
    const Component* left = nullptr;
    for (const Component* comp : m_segment.comps) {
        m_stitches.emplace_back(cellOf(*comp).stitchNums);
        m_gapsToLeft.push_back(left == nullptr ? nullptr : &m_gaps.between(left->cellIdx, comp->cellIdx));
        left = comp;
    }
}

void FastRoad::gatherChosen()
{
    static constexpr int32_t ONLY_CLASS = 0;
    const std::vector<Component*>& comps = m_segment.comps;
    m_chosen.resize(comps.size());
    m_gapsToLeft.clear();
    m_stitches.clear();
    const Component* left = nullptr;
    for (size_t q = 0; q < comps.size(); ++q) {
        const Component& comp = *comps[q];
        Chosen& chosen = m_chosen[q];
        chosen.stitches = cellOf(comp).stitchesOf(comp.solution);
        chosen.gap = left == nullptr ? 0 : m_design.safeSites(*left, left->solution, comp, comp.solution);
        chosen.gaps = {.least = chosen.gap,
                       .most = chosen.gap,
                       .numClasses = 1,
                       .classOf = &ONLY_CLASS,
                       .gaps = &chosen.gap};
        m_stitches.emplace_back(&chosen.stitches, 1);
        m_gapsToLeft.push_back(&chosen.gaps);
        left = &comp;
    }
}

void FastRoad::gatherLeftEnds(const Segment& segment)
{
    const Stretch stretch(segment, m_siteWidth);
    ++m_gathered;
    m_touched.clear();
    m_segment.leftEnds.clear();
    m_segment.leftEndBegin.clear();
    for (int32_t q = 0; q < m_segment.size(); ++q) {
        m_segment.leftEndBegin.push_back(static_cast<int32_t>(m_segment.leftEnds.size()));
        for (const int32_t net : m_mirror.netsOf(m_segment.comps[static_cast<size_t>(q)]->id)) {
            Mark& mark = m_marks[static_cast<size_t>(net)];
            if (mark.segment != m_gathered) {
                const auto [left, right] = stretch.sitesOf(m_mirror.outside(net, stretch));
                mark = {m_gathered, static_cast<int32_t>(m_touched.size())};
                m_touched.push_back({.rightEnd = right});
                if (left >= 0) {
                    m_segment.leftEnds.push_back(left);
                }
            }
            m_touched[static_cast<size_t>(mark.touched)].rightmost = q;
        }
    }
    m_segment.leftEndBegin.push_back(static_cast<int32_t>(m_segment.leftEnds.size()));
}

void FastRoad::gatherRightEnds()
{
    m_segment.rightEnds.clear();
    m_segment.rightEndBegin.clear();
    for (int32_t q = 0; q < m_segment.size(); ++q) {
        m_segment.rightEndBegin.push_back(static_cast<int32_t>(m_segment.rightEnds.size()));
        for (const int32_t net : m_mirror.netsOf(m_segment.comps[static_cast<size_t>(q)]->id)) {
            Touched& touched = m_touched[static_cast<size_t>(m_marks[static_cast<size_t>(net)].touched)];
            if (touched.rightmost != q) {
                continue;
            }
            touched.rightmost = -1; // its other memberships of the net do not count
            if (touched.rightEnd >= 0) {
                m_segment.rightEnds.push_back(touched.rightEnd);
            }
        }
    }
    m_segment.rightEndBegin.push_back(static_cast<int32_t>(m_segment.rightEnds.size()));
}

std::span<const int32_t> FastRoad::colour(const Segment& segment)
{
    assert(!segment.components.empty());
    m_costs.clear();
    const Component* left = nullptr;
    for (const Component* comp : segment.components) {
        if (left != nullptr) {
            m_costs.push_back(m_pairCosts.between(left->cellIdx, comp->cellIdx));
        }
        left = comp;
    }
    const auto first = static_cast<int32_t>(cellOf(*segment.components.front()).colors.size());
    return m_colouring.solve(first, m_costs);
}

FastRoad::GridPlaces FastRoad::placeOrdered(const Segment& segment)
{
    gather(segment);
    gatherChosen();
    return solveGrid(ORDERED_UNREACHED, /*placesWaiting=*/true);
}

FastRoad::GridPlaces FastRoad::placeJoint(const Segment& segment)
{
    gather(segment);
    gatherSolutions();
    return solveGrid(INFINITE_COST, /*placesWaiting=*/false);
}

FastRoad::GridPlaces FastRoad::solveGrid(int32_t unreached, bool placesWaiting)
{
    assert(m_segment.numSites >= 0 && m_segment.size() > 0);
    const GridProblem problem{m_segment, m_gapsToLeft, m_stitches, m_terms, unreached, placesWaiting};
    if (m_grid.solve(problem)) {
        ++m_taken.grid;
        return m_grid.places();
    }
    if (m_fullGrid.solve(problem)) {
        ++m_taken.fullGrid;
        return m_fullGrid.places();
    }
    return std::nullopt;
}

FastRoad::ShiftPlaces FastRoad::shift(const Segment& segment, int32_t firstShift, int64_t numShifts,
                                      bool prune)
{
    assert(!segment.components.empty());
    gather(segment);
    gatherSolutions();
    m_leftEnds.clear();
    for (const Component* comp : m_segment.comps) {
        m_leftEnds.push_back(comp->siteX);
    }
    const ShiftProblem problem{m_segment,      m_gapsToLeft, m_stitches, m_leftEnds, m_weight,
                               m_numSolutions, firstShift,   numShifts,  prune};
    if (m_shifts.solve(problem)) {
        ++m_taken.shift;
        return m_shifts.places();
    }
    if (m_fullShifts.solve(problem)) {
        ++m_taken.fullShift;
        return m_fullShifts.places();
    }
    return std::nullopt;
}

} // namespace vireloce
