// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/color/spread.h"

#include <algorithm>
#include <limits>

namespace kit::color {

namespace {

size_t differing(const Masks& a, const Masks& b)
{
    size_t count = 0;
    for (size_t i = 0; i < a.size(); ++i) {
        count += a[i] != b[i] ? 1 : 0;
    }
    return count;
}

/// Chooses colourings that differ.
class Chooser {
public:
    explicit Chooser(const std::vector<Colouring>& all)
        : m_all(all), m_distances(all.size(), std::numeric_limits<size_t>::max()), m_isChosen(all.size())
    {
    }

    /// Chooses some of a range.
    void choose(size_t begin, size_t end, size_t count)
    {
        for (size_t i = 0; i < count; ++i) {
            size_t best = end;
            for (size_t k = begin; k < end; ++k) {
                if (!m_isChosen[k] && (best == end || m_distances[k] > m_distances[best])) {
                    best = k;
                }
            }
            m_isChosen[best] = true;
            for (size_t k = 0; k < m_all.size(); ++k) {
                m_distances[k] = std::min(m_distances[k], differing(m_all[k].sides, m_all[best].sides));
            }
        }
    }

    std::vector<Colouring> result() const
    {
        std::vector<Colouring> result;
        for (size_t i = 0; i < m_all.size(); ++i) {
            if (m_isChosen[i]) {
                result.push_back(m_all[i]);
            }
        }
        return result;
    }

private:
    const std::vector<Colouring>& m_all;
    std::vector<size_t> m_distances; ///< to the chosen one that is most alike
    std::vector<bool> m_isChosen;
};

} // namespace

std::vector<Colouring> chosen(const std::vector<Colouring>& all, size_t most)
{
    const auto endOf = [&all](size_t begin) { // of those that cost the same
        size_t end = begin;
        while (end < all.size() && all[end].cost == all[begin].cost) {
            ++end;
        }
        return end;
    };
    const size_t least = endOf(0);
    const size_t reserved = std::min(most / 4, all.size() - least);
    size_t places = most - std::min(least, most - reserved);
    Chooser chooser(all);
    chooser.choose(0, least, most - places);
    for (size_t begin = least; begin < all.size() && places > 0;) {
        const size_t end = endOf(begin);
        const size_t count = std::min(end - begin, places);
        chooser.choose(begin, end, count);
        places -= count;
        begin = end;
    }
    return chooser.result();
}

void thinOut(std::vector<Colouring>& all, size_t most)
{
    if (all.size() <= most) {
        return;
    }
    size_t kept = 0; // of the costs that have room as a whole
    for (size_t i = 1; i <= most; ++i) {
        kept = all[i].cost > all[i - 1].cost ? i : kept;
    }
    const size_t rest = all.size() - kept;
    const size_t room = most - kept;
    for (size_t i = 0; i < room; ++i) {
        const size_t from = kept + i * rest / room;
        if (from != kept + i) {
            all[kept + i] = std::move(all[from]);
        }
    }
    all.resize(most);
}

} // namespace kit::color
