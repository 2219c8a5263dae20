// SPDX-License-Identifier: BSD-3-Clause
#include "legalizer/placementMirror.h"

#include <algorithm>
#include <limits>

#include "db/design.h"

namespace vireloce {

namespace {

constexpr int32_t SMALLEST = std::numeric_limits<int32_t>::min();
constexpr int32_t LARGEST = std::numeric_limits<int32_t>::max();

/// Members from which on a net is kept sorted.
constexpr size_t LARGE_NET = 64;

} // namespace

PlacementMirror::PlacementMirror(Design& design)
{
    size_t members = 0;
    m_places.reserve(design.components.size());
    m_compBegin.reserve(design.components.size() + 1);
    for (Component* comp : design.components) {
        comp->id = static_cast<int32_t>(m_places.size());
        m_places.push_back({comp->x, comp->y, design.cellOf(*comp).width / 2});
        m_compBegin.push_back(static_cast<int32_t>(members));
        members += comp->nets.size();
    }
    m_compBegin.push_back(static_cast<int32_t>(members));
    m_compNets.reserve(members);
    for (const Component* comp : design.components) {
        for (const Net* net : comp->nets) {
            m_compNets.push_back(net->id);
        }
    }
    m_inLarge.assign(design.components.size(), false);
    addNets(design);
}

void PlacementMirror::addNets(const Design& design)
{
    m_nets.reserve(design.nets.size() + 1);
    m_members.reserve(m_compNets.size());
    for (const Net* net : design.nets) {
        const bool hasRest = !net->pins.empty() || net->components.size() >= LARGE_NET;
        m_nets.push_back({.begin = static_cast<int32_t>(m_members.size()),
                          .rest = hasRest ? static_cast<int32_t>(m_rests.size()) : -1});
        for (const Component* comp : net->components) {
            m_members.push_back(comp->id);
        }
        if (hasRest) {
            addRest(*net);
        }
    }
    m_nets.push_back({.begin = static_cast<int32_t>(m_members.size()), .rest = -1});
}

void PlacementMirror::addRest(const Net& net)
{
    Rest& rest = m_rests.emplace_back(Rest{.pinLo = LARGEST, .pinHi = SMALLEST, .sorted = {}});
    for (const Pin* pin : net.pins) {
        rest.pinLo = std::min(rest.pinLo, pin->x);
        rest.pinHi = std::max(rest.pinHi, pin->x);
    }
    if (net.components.size() < LARGE_NET) {
        return;
    }
    for (const Component* comp : net.components) {
        const auto id = static_cast<size_t>(comp->id);
        rest.sorted.emplace_back(centre(m_places[id]), comp->id);
        m_inLarge[id] = true;
    }
    std::sort(rest.sorted.begin(), rest.sorted.end());
}

void PlacementMirror::moved(const Component& comp)
{
    const auto id = static_cast<size_t>(comp.id);
    const int32_t from = centre(m_places[id]);
    m_places[id].x = comp.x;
    m_places[id].y = comp.y;
    const int32_t to = centre(m_places[id]);
    if (m_inLarge[id] && from != to) {
        moveInLarge(comp.id, from, to);
    }
}

void PlacementMirror::moveInLarge(int32_t comp, int32_t from, int32_t to)
{
    for (const int32_t net : netsOf(comp)) { // once per membership, as it is in the sorted list
        const int32_t rest = m_nets[static_cast<size_t>(net)].rest;
        if (rest < 0 || m_rests[static_cast<size_t>(rest)].sorted.empty()) {
            continue;
        }
        auto& sorted = m_rests[static_cast<size_t>(rest)].sorted;
        const auto at = std::lower_bound(sorted.begin(), sorted.end(), std::pair(from, comp));
        const auto target = std::lower_bound(sorted.begin(), sorted.end(), std::pair(to, comp));
        *at = {to, comp};
        if (target <= at) {
            std::rotate(target, at, at + 1);
        } else {
            std::rotate(at, at + 1, target);
        }
    }
}

std::pair<int32_t, int32_t> PlacementMirror::outside(int32_t net, const Stretch& stretch) const
{
    const int32_t rest = m_nets[static_cast<size_t>(net)].rest;
    std::pair<int32_t, int32_t> range{LARGEST, SMALLEST};
    if (rest >= 0) {
        const Rest& few = m_rests[static_cast<size_t>(rest)];
        range = {few.pinLo, few.pinHi};
        if (!few.sorted.empty()) {
            includeSorted(few, stretch, range);
            return range;
        }
    }
    includeMembers(static_cast<size_t>(net), stretch, range);
    return range;
}

/// Widens a range by the members of a net that are outside of a stretch.
void PlacementMirror::includeMembers(size_t net, const Stretch& stretch,
                                     std::pair<int32_t, int32_t>& range) const
{
    for (int32_t k = m_nets[net].begin; k < m_nets[net + 1].begin; ++k) {
        const Place& place = m_places[static_cast<size_t>(m_members[static_cast<size_t>(k)])];
        if (!isInside(place, stretch)) {
            range.first = std::min(range.first, centre(place));
            range.second = std::max(range.second, centre(place));
        }
    }
}

/// As includeMembers(), from the outermost members inwards.
void PlacementMirror::includeSorted(const Rest& rest, const Stretch& stretch,
                                    std::pair<int32_t, int32_t>& range) const
{
    const auto isOutside = [&](const auto& entry) {
        return !isInside(m_places[static_cast<size_t>(entry.second)], stretch);
    };
    const auto first = std::find_if(rest.sorted.begin(), rest.sorted.end(), isOutside);
    if (first == rest.sorted.end()) {
        return;
    }
    const auto last = std::find_if(rest.sorted.rbegin(), rest.sorted.rend(), isOutside);
    range.first = std::min(range.first, first->first);
    range.second = std::max(range.second, last->first);
}

} // namespace vireloce
