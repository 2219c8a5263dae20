// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cassert>
#include <cstddef>
#include <numeric>
#include <utility>
#include <vector>

namespace kit::geometry {

/// Disjoint sets of the numbers below a count.
class Sets {
public:
    /// Each number alone in its set.
    explicit Sets(size_t count) : m_parents(count)
    {
        std::iota(m_parents.begin(), m_parents.end(), size_t{0});
    }

    /// The least number in the set of one.
    size_t leastOf(size_t i) const
    {
        while (m_parents[i] != i) {
            i = m_parents[i];
        }
        return i;
    }

    /// Makes one set of those of two numbers.
    void join(size_t i, size_t j)
    {
        assert(i < m_parents.size() && j < m_parents.size());
        size_t a = leastOf(i);
        size_t b = leastOf(j);
        if (a > b) {
            std::swap(a, b);
        }
        m_parents[b] = a;
        m_parents[i] = a; // shortens later ways
        m_parents[j] = a;
    }

    /// The sets by their least numbers, each ascending.
    std::vector<std::vector<size_t>> all() const
    {
        std::vector<std::vector<size_t>> sets;
        std::vector<size_t> indexes(m_parents.size());
        for (size_t i = 0; i < m_parents.size(); ++i) {
            const size_t least = leastOf(i);
            if (least == i) {
                indexes[i] = sets.size();
                sets.emplace_back();
            }
            sets[indexes[least]].push_back(i);
        }
        return sets;
    }

private:
    std::vector<size_t> m_parents;
};

} // namespace kit::geometry
