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
        NetRecord record{static_cast<int32_t>(m_members.size()), LARGEST, SMALLEST, -1};
        for (const Pin* pin : net->pins) {
            record.pinLo = std::min(record.pinLo, pin->x);
            record.pinHi = std::max(record.pinHi, pin->x);
        }
        for (const Component* comp : net->components) {
            m_members.push_back(comp->id);
        }
        m_nets.push_back(record);
    }
    m_nets.push_back({static_cast<int32_t>(m_members.size()), LARGEST, SMALLEST, -1});
    for (size_t net = 0; net < design.nets.size(); ++net) {
        if (design.nets[net]->components.size() >= LARGE_NET) {
            sortLarge(net);
        }
    }
}

void PlacementMirror::sortLarge(size_t net)
{
    m_nets[net].large = static_cast<int32_t>(m_large.size());
    Sorted& sorted = m_large.emplace_back();
    for (int32_t k = m_nets[net].begin; k < m_nets[net + 1].begin; ++k) {
        const int32_t comp = m_members[static_cast<size_t>(k)];
        sorted.emplace_back(centre(m_places[static_cast<size_t>(comp)]), comp);
        m_inLarge[static_cast<size_t>(comp)] = true;
    }
    std::sort(sorted.begin(), sorted.end());
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
        const int32_t large = m_nets[static_cast<size_t>(net)].large;
        if (large < 0) {
            continue;
        }
        Sorted& sorted = m_large[static_cast<size_t>(large)];
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
    const NetRecord& record = m_nets[static_cast<size_t>(net)];
    int32_t lo = record.pinLo;
    int32_t hi = record.pinHi;
    if (record.large >= 0) {
        const Sorted& sorted = m_large[static_cast<size_t>(record.large)];
        const auto isOutside = [&](const auto& entry) {
            return !isInside(m_places[static_cast<size_t>(entry.second)], stretch);
        };
        const auto first = std::find_if(sorted.begin(), sorted.end(), isOutside);
        if (first != sorted.end()) {
            const auto last = std::find_if(sorted.rbegin(), sorted.rend(), isOutside);
            lo = std::min(lo, first->first);
            hi = std::max(hi, last->first);
        }
        return {lo, hi};
    }
    const int32_t end = m_nets[static_cast<size_t>(net) + 1].begin;
    for (int32_t k = record.begin; k < end; ++k) {
        const Place& place = m_places[static_cast<size_t>(m_members[static_cast<size_t>(k)])];
        if (!isInside(place, stretch)) {
            lo = std::min(lo, centre(place));
            hi = std::max(hi, centre(place));
        }
    }
    return {lo, hi};
}

} // namespace vireloce
