// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/place/segmentEnds.h"

#include <algorithm>
#include <tuple>

#include "app/parameters.h"
#include "db/design.h"
#include "kit/engines/place/rescue.h"

namespace kit::place {

namespace {

/// Where they are rescued one by one, each rescue goes through the whole design.
constexpr size_t MOST_CROWDED = 100;

/// The segment of a component, nullptr if it is in none.
Segment* segmentOf(Design& design, const Component& comp)
{
    for (Segment* segment : design.segments) {
        if (segment->y == comp.y &&
            std::ranges::find(segment->components, &comp) != segment->components.end()) {
            return segment;
        }
    }
    return nullptr;
}

/// Moves an end of a segment inward, or outward for a negative number of sites. Its components stay in place.
void moveEnd(Segment& segment, bool isLeft, int32_t sites)
{
    segment.numSites -= sites;
    if (!isLeft) {
        return;
    }
    segment.x += sites * SITE_WIDTH;
    for (Component* comp : segment.components) {
        comp->siteX -= sites;
    }
}

/// Where everything is, to go back to.
class Snapshot {
public:
    explicit Snapshot(const Design& design)
    {
        for (const Component* comp : design.components) {
            m_components.push_back({comp->siteX, comp->x, comp->y, comp->solution});
        }
        for (const Segment* segment : design.segments) {
            m_segments.push_back(*segment);
        }
    }

    void restore(Design& design) const
    {
        for (size_t i = 0; i < m_components.size(); ++i) {
            Component& comp = *design.components[i];
            std::tie(comp.siteX, comp.x, comp.y, comp.solution) = m_components[i];
        }
        for (size_t i = 0; i < m_segments.size(); ++i) {
            *design.segments[i] = m_segments[i];
        }
    }

private:
    std::vector<std::tuple<int32_t, int32_t, int32_t, int32_t>> m_components; ///< siteX, x, y, solution
    std::vector<Segment> m_segments;
};

/// Takes a site from the end that each component stands at, and rescues those that then stick out.
///
/// @return whether all of these have a place
bool rescueFromEnds(Design& design, const std::vector<CrowdedCell>& crowded, const std::vector<Point>& start,
                    bool& anyMoved)
{
    std::vector<int32_t> stray;
    for (const auto& [index, onLeft] : crowded) {
        const Component& comp = *design.components[static_cast<size_t>(index)];
        Segment* const segment = segmentOf(design, comp);
        if (segment == nullptr || segment->numSites < 2) {
            continue;
        }
        moveEnd(*segment, onLeft, 1);
        const int32_t end = comp.siteX + design.cellOf(comp).siteWidth;
        if (comp.siteX >= 0 && end <= segment->numSites) {
            moveEnd(*segment, onLeft, -1); // it does not stand at that end
        } else if (std::ranges::find(stray, index) == stray.end()) {
            stray.push_back(index);
        }
    }
    if (stray.empty()) {
        return true;
    }
    const Rescue done = rescue(design, stray, start);
    anyMoved = true;
    return std::ranges::all_of(done.cells, &Rescued::helped);
}

} // namespace

bool makeRoom(Design& design, const std::vector<CrowdedCell>& crowded, const std::vector<Point>& start)
{
    bool anyMoved = false;
    const std::vector<CrowdedCell> some(
        crowded.begin(),
        crowded.begin() + static_cast<std::ptrdiff_t>(std::min(crowded.size(), MOST_CROWDED)));
    const Snapshot before(design);
    if (rescueFromEnds(design, some, start, anyMoved)) {
        return anyMoved;
    }
    before.restore(design);
    anyMoved = false;
    for (const CrowdedCell& cell : some) { // each for itself, so that those without a place go back
        const Snapshot last(design);
        bool moved = false;
        if (rescueFromEnds(design, {cell}, start, moved)) {
            anyMoved = anyMoved || moved;
        } else {
            last.restore(design);
        }
    }
    return anyMoved;
}

} // namespace kit::place
