// SPDX-License-Identifier: BSD-3-Clause
// The programs without their graphs: gather what a segment is made of, call a kernel, scatter the result.
#include <algorithm>

#include "app/parameters.h"
#include "db/design.h"
#include "legalizer/legalizer.h"
#include "legalizer/segLegalizer.h"
#include "legalizer/solverMemory.h"
#include "qlib/exact.h"

using vireloce::SolverMemory;

bool SegLegalizer::s_useGraphs = false;

SolverMemory& SegLegalizer::solverMemory()
{
    if (legalizer->memory != nullptr) {
        return *legalizer->memory;
    }
    m_ownMemory = std::make_unique<SolverMemory>(design()); // outside a placement anything may have changed
    return *m_ownMemory;
}

void SegLegalizer::gather(SolverMemory& memory) const
{
    vireloce::SegmentData& data = memory.segment;
    data.numSites = segment->numSites;
    data.comps.assign(segment->components.begin(), segment->components.end());
    data.width.clear();
    for (const Component* comp : data.comps) {
        data.width.push_back(cellOf(*comp).siteWidth);
    }
    memory.terms.prepare(WEIGHT_WRLENG, segment->numSites);
    gatherLeftEnds(memory);
    gatherRightEnds(memory);
}

void SegLegalizer::gatherSolutions(SolverMemory& memory) const
{
    memory.behind.clear();
    memory.stitches.clear();
    const Component* left = nullptr;
    for (const Component* comp : memory.segment.comps) {
        memory.stitches.emplace_back(cellOf(*comp).stitchNums);
        memory.behind.push_back(left == nullptr ? nullptr
                                                : &memory.spacings.between(left->cellIdx, comp->cellIdx));
        left = comp;
    }
}

void SegLegalizer::gatherChosen(SolverMemory& memory) const
{
    static constexpr int32_t ONLY_COLUMN = 0;
    const std::vector<Component*>& comps = memory.segment.comps;
    memory.chosen.resize(comps.size());
    memory.behind.clear();
    memory.stitches.clear();
    const Component* left = nullptr;
    for (size_t q = 0; q < comps.size(); ++q) {
        const Component& comp = *comps[q];
        SolverMemory::Chosen& chosen = memory.chosen[q];
        chosen.stitches = cellOf(comp).stitchesOf(comp.solution);
        chosen.sites = left == nullptr ? 0 : design().safeSites(*left, left->solution, comp, comp.solution);
        chosen.spacing = {.least = chosen.sites,
                          .most = chosen.sites,
                          .numColumns = 1,
                          .columnOf = &ONLY_COLUMN,
                          .sites = &chosen.sites};
        memory.stitches.emplace_back(&chosen.stitches, 1);
        memory.behind.push_back(&chosen.spacing);
        left = &comp;
    }
}

void SegLegalizer::gatherLeftEnds(SolverMemory& memory) const
{
    vireloce::SegmentData& data = memory.segment;
    const vireloce::Stretch stretch{segment->y, segment->x, segment->x + SITE_WIDTH * segment->numSites};
    ++memory.solved;
    memory.touched.clear();
    data.leftEnds.clear();
    data.leftEndBegin.clear();
    for (int32_t q = 0; q < data.size(); ++q) {
        data.leftEndBegin.push_back(static_cast<int32_t>(data.leftEnds.size()));
        for (const int32_t net : memory.mirror.netsOf(data.comps[static_cast<size_t>(q)]->id)) {
            SolverMemory::Mark& mark = memory.marks[static_cast<size_t>(net)];
            if (mark.segment != memory.solved) {
                const auto [left, right] = clampedRange(memory.mirror.outside(net, stretch));
                mark = {memory.solved, static_cast<int32_t>(memory.touched.size())};
                memory.touched.push_back({.rightEnd = right});
                if (left >= 0) {
                    data.leftEnds.push_back(left);
                }
            }
            memory.touched[static_cast<size_t>(mark.touched)].rightmost = q;
        }
    }
    data.leftEndBegin.push_back(static_cast<int32_t>(data.leftEnds.size()));
}

void SegLegalizer::gatherRightEnds(SolverMemory& memory)
{
    vireloce::SegmentData& data = memory.segment;
    data.rightEnds.clear();
    data.rightEndBegin.clear();
    for (int32_t q = 0; q < data.size(); ++q) {
        data.rightEndBegin.push_back(static_cast<int32_t>(data.rightEnds.size()));
        for (const int32_t net : memory.mirror.netsOf(data.comps[static_cast<size_t>(q)]->id)) {
            SolverMemory::Touched& touched =
                memory.touched[static_cast<size_t>(memory.marks[static_cast<size_t>(net)].touched)];
            if (touched.rightmost != q) {
                continue;
            }
            touched.rightmost = -1; // its other memberships of the net do not count
            if (touched.rightEnd >= 0) {
                data.rightEnds.push_back(touched.rightEnd);
            }
        }
    }
    data.rightEndBegin.push_back(static_cast<int32_t>(data.rightEnds.size()));
}

void SegLegalizer::colourFast()
{
    SolverMemory& memory = solverMemory();
    memory.costs.clear();
    const Component* left = nullptr;
    for (const Component* comp : segment->components) {
        if (left != nullptr) {
            memory.costs.push_back(memory.pairCosts.between(left->cellIdx, comp->cellIdx));
        }
        left = comp;
    }
    const auto solutions = memory.colouring.solve(numColours(*segment->components.front()), memory.costs);
    auto solution = solutions.begin();
    for (Component* comp : segment->components) {
        if (*solution >= 0) {
            comp->solution = *solution;
        }
        ++solution;
    }
}

bool SegLegalizer::placeOrderedFast()
{
    SolverMemory& memory = solverMemory();
    postGreedyColorAssignment(); // a neighbour's colour decides the distance behind it
    gather(memory);
    gatherChosen(memory);
    if (!memory.grid.solve({memory.segment, memory.behind, memory.stitches, memory.terms, UNREACHED_COST})) {
        return false;
    }
    scatterGrid(memory, /*colours=*/false);
    return true;
}

bool SegLegalizer::placeJointFast()
{
    SolverMemory& memory = solverMemory();
    gather(memory);
    gatherSolutions(memory);
    if (!memory.grid.solve(
            {memory.segment, memory.behind, memory.stitches, memory.terms, vireloce::INFINITE_COST})) {
        return false;
    }
    scatterGrid(memory, /*colours=*/true);
    return true;
}

void SegLegalizer::scatterGrid(const SolverMemory& memory, bool colours) const
{
    for (size_t q = 0; q < memory.segment.comps.size(); ++q) {
        Component& comp = *memory.segment.comps[q];
        const vireloce::GridPlace& place = memory.grid.places()[q];
        placeAt(comp, place.site < 0 ? segment->numSites : place.site);
        if (colours && place.site >= 0) {
            comp.solution = place.solution;
        }
    }
}

std::optional<bool> SegLegalizer::shiftFast(int32_t firstShift, int32_t numShifts, bool prune)
{
    SolverMemory& memory = solverMemory();
    gather(memory);
    gatherSolutions(memory);
    memory.sites.clear();
    for (size_t q = 0; q < memory.segment.comps.size(); ++q) {
        memory.sites.push_back(memory.segment.comps[q]->siteX);
        std::span<const int32_t>& stitches = memory.stitches[q];
        stitches = stitches.first(std::min(stitches.size(), static_cast<size_t>(std::max(LDP_K, 0))));
    }
    if (!memory.shifts.solve({memory.segment, memory.behind, memory.stitches, memory.sites, memory.terms,
                              firstShift, numShifts, prune})) {
        return std::nullopt;
    }
    for (size_t q = 0; q < memory.shifts.places().size(); ++q) {
        Component& comp = *memory.segment.comps[q];
        const vireloce::ShiftPlace& place = memory.shifts.places()[q];
        placeAt(comp, comp.siteX + firstShift + place.shift);
        comp.solution = place.solution;
    }
    return !memory.shifts.places().empty();
}
