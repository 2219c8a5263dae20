// SPDX-License-Identifier: BSD-3-Clause
#include "legalizer/layerStore.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <new>

namespace vireloce {

void LayerStore::clear()
{
    m_used = 0;
    m_fixed = 0;
    m_stride = 1;
    m_kept.clear();
    m_begins.clear();
}

void LayerStore::release()
{
    constexpr size_t WORTH_KEEPING = size_t{1} << 24; // 64 MiB
    clear();
    if (m_capacity > WORTH_KEEPING) {
        m_room.reset();
        m_capacity = 0;
    }
}

void LayerStore::reserve(size_t entries)
{
    growTo(std::min(entries, m_most));
}

int32_t* LayerStore::add(size_t layer, size_t entries)
{
    assert(m_kept.empty() || m_kept.back().layer < layer);
    if (entries > m_most || (m_used > m_most - entries && !thinOut(entries))) {
        return nullptr;
    }
    growTo(std::max<size_t>(m_used + entries, 1)); // a layer of nothing has a place, too
    m_begins.resize(std::max(m_begins.size(), layer + 1), NONE);
    m_begins[layer] = m_used;
    m_kept.push_back({layer, entries});
    m_used += entries;
    assert(m_used <= m_capacity && m_capacity <= m_most);
    return m_room.get() + m_begins[layer];
}

size_t LayerStore::lastUpTo(size_t layer) const
{
    const auto behind = std::partition_point(m_kept.begin(), m_kept.end(),
                                             [layer](const Kept& kept) { return kept.layer <= layer; });
    return behind == m_kept.begin() ? NONE : std::prev(behind)->layer;
}

void LayerStore::restartBehind(size_t layer)
{
    while (!m_kept.empty() && (layer == NONE || m_kept.back().layer > layer)) {
        m_begins[m_kept.back().layer] = NONE;
        m_used -= m_kept.back().entries;
        m_kept.pop_back();
    }
    assert(layer == NONE || (!m_kept.empty() && m_kept.back().layer == layer));
    m_fixed = m_kept.size();
    m_stride = 1;
}

bool LayerStore::thinOut(size_t room)
{
    size_t fixed = 0;
    for (size_t i = 0; i < m_fixed; ++i) {
        fixed += m_kept[i].entries;
    }
    const size_t wanted = std::min(fixed + (m_most - fixed) / 2, m_most - room);
    dropBetweenCheckpoints(); // of the layers since the last time, too, before checkpoints go
    while (m_used > wanted && m_kept.size() > m_fixed + 1) {
        m_stride *= 2;
        dropBetweenCheckpoints();
    }
    return m_used <= m_most - room;
}

void LayerStore::dropBetweenCheckpoints()
{
    const size_t base = m_fixed == 0 ? NONE : m_kept[m_fixed - 1].layer; // the first layer is one behind NONE
    size_t kept = 0;
    m_used = 0;
    for (size_t i = 0; i < m_kept.size(); ++i) {
        const Kept layer = m_kept[i];
        size_t& begin = m_begins[layer.layer];
        if (i >= m_fixed && i + 1 < m_kept.size() && (layer.layer - base) % m_stride != 0) {
            begin = NONE;
            continue;
        }
        if (begin != m_used) {
            std::memmove(m_room.get() + m_used, m_room.get() + begin, layer.entries * sizeof(int32_t));
            begin = m_used;
        }
        m_used += layer.entries;
        m_kept[kept++] = layer;
    }
    m_kept.resize(kept);
    assert(m_used <= m_capacity && m_fixed <= m_kept.size());
}

void LayerStore::growTo(size_t entries)
{
    if (entries <= m_capacity) {
        return;
    }
    const size_t capacity = std::min(entries + entries / 2, m_most);
    // Not new: what is large grows without a second copy of it.
    void* const room = std::realloc(m_room.get(), capacity * sizeof(int32_t));
    if (room == nullptr) {
        throw std::bad_alloc();
    }
    m_room.release();
    m_room.reset(static_cast<int32_t*>(room));
    m_capacity = capacity;
}

} // namespace vireloce
