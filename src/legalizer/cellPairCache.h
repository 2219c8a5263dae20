// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <vector>

namespace vireloce {

/// What is known of pairs of library cells, made when it is first asked for and kept, and memory for it that
/// never moves.
template <class Value>
class CellPairCache {
public:
    /// @param numCells  cells of the library
    explicit CellPairCache(size_t numCells) : m_numCells(numCells), m_pairs(numCells * numCells) {}

    /// What is known of two cells.
    ///
    /// @param make  called as make() for a pointer to it if it is not known yet
    template <class Make>
    const Value* between(int32_t leftCell, int32_t rightCell, Make make)
    {
        const auto left = static_cast<size_t>(leftCell);
        const auto right = static_cast<size_t>(rightCell);
        assert(left < m_numCells && right < m_numCells);
        const Value*& pair = m_pairs[left * m_numCells + right];
        if (pair == nullptr) {
            pair = make();
        }
        return pair;
    }

    /// Memory for values and their parts; it lives as long as the cache.
    template <class T>
    T* take(size_t count)
    {
        return std::pmr::polymorphic_allocator<T>(&m_storage).allocate(count);
    }

private:
    size_t m_numCells;
    std::vector<const Value*> m_pairs; ///< [left cell][right cell] nullptr until asked for
    std::pmr::monotonic_buffer_resource m_storage;
};

} // namespace vireloce
