// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/place/state.h"

#include <algorithm>
#include <bit>
#include <cstdlib>

#include "app/parameters.h"
#include "db/design.h"
#include "kit/base/hash.h"

namespace kit::place {

namespace {

std::string hashOf(const Design& design)
{
    Hash hash;
    for (const Component* comp : design.components) {
        hash.add(comp->x);
        hash.add(comp->y);
        hash.add(comp->solution);
    }
    return hash.text();
}

Displacement displacementOf(const Design& design, const std::vector<Point>& start)
{
    Displacement all;
    double sum = 0.0;
    for (size_t i = 0; i < start.size(); ++i) {
        const Component& comp = *design.components[i];
        const int64_t dbu = std::abs(int64_t{comp.x} - start[i].x) + std::abs(int64_t{comp.y} - start[i].y);
        const double sites = static_cast<double>(dbu) / SITE_WIDTH;
        sum += sites;
        const auto bin = static_cast<size_t>(std::bit_width(static_cast<uint64_t>(sites)));
        all.histogram.resize(std::max(all.histogram.size(), bin + 1));
        ++all.histogram[bin];
        if (sites > all.largest) {
            all.largest = sites;
            all.farthest = comp.name;
        }
    }
    all.mean = start.empty() ? 0.0 : sum / static_cast<double>(start.size());
    return all;
}

/// Measures a segment, marks what is in it and notes what does not fit.
Filling fillingOf(const Design& design, const Segment& segment, std::vector<bool>& inSegment, State& state)
{
    Filling filling{.x = segment.x, .y = segment.y, .numSites = segment.numSites};
    int64_t end = 0; // of the component before
    for (const Component* comp : segment.components) {
        const int32_t width = design.cellOf(*comp).siteWidth;
        ++filling.cells;
        filling.taken += width;
        inSegment[static_cast<size_t>(comp->id)] = true;
        if (comp->siteX < 0 || comp->siteX > segment.numSites - width) {
            state.beyond.push_back(comp->id);
        } else if (comp->siteX < end) {
            state.overlapping.push_back(comp->id);
        }
        end = std::max(end, int64_t{comp->siteX} + width);
    }
    return filling;
}

} // namespace

std::vector<Point> positionsOf(const Design& design)
{
    std::vector<Point> positions;
    positions.reserve(design.components.size());
    for (const Component* comp : design.components) {
        positions.push_back({comp->x, comp->y});
    }
    return positions;
}

State measure(Design& design, const std::vector<Point>& start)
{
    State state;
    state.hpwl = design.evaluateHPWL();
    state.stitches = design.evaluateStitchNum();
    state.conflicts = design.evaluateConflictNum();
    state.displacement = displacementOf(design, start);
    state.hash = hashOf(design);
    for (size_t i = 0; i < design.components.size(); ++i) {
        design.components[i]->id = static_cast<int32_t>(i);
    }
    std::vector<bool> inSegment(design.components.size(), false);
    for (const Segment* segment : design.segments) {
        state.segments.push_back(fillingOf(design, *segment, inSegment, state));
    }
    for (size_t i = 0; i < inSegment.size(); ++i) {
        if (!inSegment[i]) {
            state.dropped.push_back(static_cast<int32_t>(i));
        }
    }
    return state;
}

} // namespace kit::place
