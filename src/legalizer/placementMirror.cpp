// SPDX-License-Identifier: BSD-3-Clause
#include "legalizer/placementMirror.h"

#include <algorithm>
#include <cassert>

#include "db/design.h"

namespace vireloce {

namespace {

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
        const bool hasFew = !net->pins.empty() || net->components.size() >= LARGE_NET;
        m_nets.push_back({.begin = static_cast<int32_t>(m_members.size()),
                          .few = hasFew ? static_cast<int32_t>(m_few.size()) : -1});
        for (const Component* comp : net->components) {
            m_members.push_back(comp->id);
        }
        if (hasFew) {
            addFew(*net);
        }
    }
    m_nets.push_back({.begin = static_cast<int32_t>(m_members.size()), .few = -1});
}

void PlacementMirror::addFew(const Net& net)
{
    FewHave& few = m_few.emplace_back();
    for (const Pin* pin : net.pins) {
        few.pins.include(pin->x);
    }
    if (net.components.size() < LARGE_NET) {
        return;
    }
    for (const Component* comp : net.components) {
        const auto id = static_cast<size_t>(comp->id);
        few.sorted.emplace_back(centre(m_places[id]), comp->id);
        m_inLarge[id] = true;
    }
    std::sort(few.sorted.begin(), few.sorted.end());
}

void PlacementMirror::moved(const Component& comp)
{
    const auto id = static_cast<size_t>(comp.id);
    assert(id < m_places.size());
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
        const int32_t few = m_nets[static_cast<size_t>(net)].few;
        if (few < 0 || m_few[static_cast<size_t>(few)].sorted.empty()) {
            continue;
        }
        auto& sorted = m_few[static_cast<size_t>(few)].sorted;
        const auto at = std::lower_bound(sorted.begin(), sorted.end(), std::pair(from, comp));
        const auto target = std::lower_bound(sorted.begin(), sorted.end(), std::pair(to, comp));
        assert(at != sorted.end() && *at == std::pair(from, comp));
        *at = {to, comp};
        if (target <= at) {
            std::rotate(target, at, at + 1);
        } else {
            std::rotate(at, at + 1, target);
        }
    }
}

bool PlacementMirror::agreesOn(const Component& comp) const
{
    const auto id = static_cast<size_t>(comp.id);
    return id < m_places.size() && m_places[id].x == comp.x && m_places[id].y == comp.y;
}

Extent PlacementMirror::outside(int32_t net, const Stretch& stretch) const
{
    assert(0 <= net && static_cast<size_t>(net) < numNets());
    const int32_t index = m_nets[static_cast<size_t>(net)].few;
    Extent extent;
    if (index >= 0) {
        const FewHave& few = m_few[static_cast<size_t>(index)];
        extent = few.pins;
        if (!few.sorted.empty()) {
            includeSorted(few, stretch, extent);
            return extent;
        }
    }
    includeMembers(static_cast<size_t>(net), stretch, extent);
    return extent;
}

void PlacementMirror::includeMembers(size_t net, const Stretch& stretch, Extent& extent) const
{
    for (int32_t k = m_nets[net].begin; k < m_nets[net + 1].begin; ++k) {
        const Place& place = m_places[static_cast<size_t>(m_members[static_cast<size_t>(k)])];
        if (!stretch.contains(place.x, place.y)) {
            extent.include(centre(place));
        }
    }
}

void PlacementMirror::includeSorted(const FewHave& few, const Stretch& stretch, Extent& extent) const
{
    const auto isOutside = [&](const auto& entry) {
        const Place& place = m_places[static_cast<size_t>(entry.second)];
        return !stretch.contains(place.x, place.y);
    };
    const auto first = std::find_if(few.sorted.begin(), few.sorted.end(), isOutside);
    if (first == few.sorted.end()) {
        return;
    }
    extent.include(first->first);
    extent.include(std::find_if(few.sorted.rbegin(), few.sorted.rend(), isOutside)->first);
}

} // namespace vireloce
