// SPDX-License-Identifier: BSD-3-Clause
// Moves of components between segments.
#include <algorithm>
#include <cstdlib>
#include <iterator>

#include "app/parameters.h"
#include "db/design.h"
#include "legalizer/fastRoad.h"
#include "legalizer/legalizer.h"
#include "qlib/exact.h"

bool byDeltaY(const MoveCandidate& a, const MoveCandidate& b)
{
    const auto deltaY = [](const MoveCandidate& candidate) {
        return std::abs(candidate.second.first->y - candidate.first.second);
    };
    return deltaY(a) > deltaY(b);
}

bool Legalizer::globalMove(Segment* seg, int need)
{
    if (seg->components.empty()) {
        return true;
    }
    std::vector<MoveCandidate> candidates;
    const Component* left = nullptr;
    for (Component* comp : seg->components) {
        int x = 0;
        int y = 0;
        getOptimalPos(comp, x, y);
        const int32_t sites = left == nullptr ? design->cellOf(*comp).siteWidth : sitesWithGap(*left, *comp);
        candidates.push_back({{x, y}, {comp, sites}});
        left = comp;
    }
    // Required: not a stable sort, and nothing added to the comparison.
    std::sort(candidates.begin(), candidates.end(), byDeltaY);

    int32_t freed = 0; // the candidates' counts hold even when their neighbours leave
    for (const auto& [position, what] : candidates) {
        if (moveComponent(what.first, position.first, position.second) == 0) {
            continue;
        }
        seg->components.remove(what.first);
        ++movedOut;
        freed += what.second;
        if (freed >= need) {
            break;
        }
    }
    return freed >= need;
}

void Legalizer::getOptimalPos(Component* c, int& x, int& y)
{
    int32_t sumX = 0;
    int32_t sumY = 0;
    int32_t count = 0;
    for (const Net* net : c->nets) {
        for (const Pin* pin : net->pins) {
            sumX += pin->x;
            sumY += pin->y;
            ++count;
        }
        for (const Component* other : net->components) {
            if (other != c) {
                sumX += other->x;
                sumY += other->y;
                ++count;
            }
        }
    }
    if (count == 0) {
        x = c->x;
        y = c->y;
        return;
    }
    // Not std::clamp: a bound without segments is inverted, and its upper end wins.
    x = std::min(std::max(sumX / count, design->boundXl), design->boundXh);
    y = std::min(std::max(sumY / count, design->boundYl), design->boundYh);
}

Segment* Legalizer::leastDense(const std::vector<Segment*>& found) const
{
    Segment* best = nullptr;
    float least = 1e10F;
    for (Segment* segment : found) {
        const auto id = static_cast<size_t>(segment->id);
        if (!segDone[id] && segDensity[id] <= least) {
            least = segDensity[id];
            best = segment;
        }
    }
    return best;
}

Segment* Legalizer::findTarget(int x, int y)
{
    constexpr int32_t MAX_TRIES = 11;
    constexpr int32_t MAX_RANGE = 1073741822;
    int32_t range = 2; // half the side of the square that is searched, DBU
    for (int32_t tries = 1; tries <= MAX_TRIES; ++tries) {
        const std::vector<Segment*> found = design->searchSegments(x, y, range);
        Segment* const target = leastDense(found);
        if (target != nullptr) {
            return target;
        }
        range *= 2;
        if (range > MAX_RANGE || found.size() >= design->segments.size()) {
            break;
        }
        range += SITE_HEIGHT;
    }
    return nullptr;
}

int Legalizer::moveComponent(Component* c, int x, int y)
{
    Segment* const target = findTarget(x, y);
    if (target == nullptr) {
        return 0;
    }
    std::list<Component*>& comps = target->components;
    lastTargetSeg = target;
    lastInsertPos =
        std::find_if(comps.begin(), comps.end(), [x](const Component* comp) { return comp->x >= x; });
    if (lastInsertPos != comps.end()) {
        lastInsertPos = comps.insert(lastInsertPos, c);
        c->x = x;
        c->siteX = vireloce::ceilSites(x - target->x, SITE_WIDTH);
        c->y = target->y;
        if (fastRoad != nullptr) {
            fastRoad->moved(*c);
        }
    }
    return 1;
}

void Legalizer::postMove(Segment* seg)
{
    lastTargetSeg = seg;
    std::vector<Component*> stickOut;
    for (Component* comp : seg->components) {
        if (design->cellOf(*comp).siteWidth + comp->siteX > seg->numSites) {
            stickOut.push_back(comp);
        }
    }
    for (Component* comp : stickOut) {
        int x = 0;
        int y = 0;
        getOptimalPos(comp, x, y);
        moveComponent(comp, x, y);
        seg->components.remove(comp);
    }
}
