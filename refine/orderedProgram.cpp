// SPDX-License-Identifier: BSD-3-Clause
#include "refine/orderedProgram.h"

#include <algorithm>
#include <cassert>

namespace refine {

void OrderedProgram::clear(size_t count)
{
    items.clear();
    options.clear();
    earliest.clear();
    latest.clear();
    items.resize(count);
    if (m_costs.size() < 2 * count * MOST_SITES) {
        m_costs.resize(2 * count * MOST_SITES);
    }
}

template <int32_t WIDTH>
int32_t OrderedProgram::solveWidth(int32_t sites)
{
    size_t room = 0;
    size_t mostClasses = 0;
    m_begin.clear();
    for (const ProgramItem& item : items) {
        m_begin.push_back(room);
        room += static_cast<size_t>(item.rightClasses) * 3 * WIDTH;
        mostClasses = std::max(mostClasses, static_cast<size_t>(item.leftClasses));
    }
    if (m_profiles.size() < room) {
        m_profiles.resize(room);
    }
    if (m_arrivals.size() < mostClasses * WIDTH) {
        m_arrivals.resize(mostClasses * WIDTH);
    }
    for (size_t i = 0; i < items.size(); ++i) {
        const ProgramItem& item = items[i];
        for (int32_t c = 0; c < item.leftClasses; ++c) {
            int32_t* const arrival = m_arrivals.data() + c * WIDTH;
            if (i == 0) {
                const int32_t first = earliest[static_cast<size_t>(c)] - item.low;
                for (int32_t p = 0; p < WIDTH; ++p) {
                    arrival[p] = p < first ? NEVER : 0;
                }
                continue;
            }
            std::fill_n(arrival, WIDTH, NEVER);
            for (int32_t r = 0; r < items[i - 1].rightClasses; ++r) {
                const int32_t* const before = profile(i - 1, r) + shift(i, item.gaps[r * item.leftClasses + c]);
                for (int32_t p = 0; p < WIDTH; ++p) {
                    arrival[p] = std::min(arrival[p], before[p]);
                }
            }
        }
        int32_t* const profiles = m_profiles.data() + m_begin[i];
        for (int32_t r = 0; r < item.rightClasses; ++r) {
            std::fill_n(profiles + r * 3 * WIDTH, 2 * WIDTH, NEVER);
        }
        for (int32_t o = item.optionBegin; o < item.optionEnd; ++o) {
            const ProgramOption& option = options[static_cast<size_t>(o)];
            const int32_t* const arrival = m_arrivals.data() + option.leftClass * WIDTH;
            const int32_t* const costs = item.costs[option.mirrored ? 1 : 0];
            int32_t* const profile = profiles + option.rightClass * 3 * WIDTH + WIDTH;
            const int32_t price = option.price;
            for (int32_t p = 0; p < WIDTH; ++p) {
                profile[p] = std::min(profile[p], arrival[p] + costs[p] + price);
            }
        }
        for (int32_t r = 0; r < item.rightClasses; ++r) {
            int32_t* const profile = profiles + r * 3 * WIDTH + WIDTH;
            int32_t least = NEVER;
            for (int32_t p = 0; p < sites; ++p) {
                profile[p] = least = std::min(least, profile[p]);
            }
            std::fill(profile + sites, profile + 2 * WIDTH, least);
        }
    }
    int32_t best = NEVER;
    const ProgramItem& last = items.back();
    for (int32_t r = 0; r < last.rightClasses; ++r) {
        const int32_t site = std::min(latest[static_cast<size_t>(r)] - last.low, sites - 1);
        if (site >= 0) {
            best = std::min(best, profile(items.size() - 1, r)[site]);
        }
    }
    return best;
}

int32_t OrderedProgram::solve(int32_t sites)
{
    assert(sites > 0 && sites <= MOST_SITES);
    m_sites = sites;
    m_width = sites <= 8 ? 8 : sites <= 16 ? 16 : sites <= 32 ? 32 : 64;
    return m_width == 8    ? solveWidth<8>(sites)
           : m_width == 16 ? solveWidth<16>(sites)
           : m_width == 32 ? solveWidth<32>(sites)
                           : solveWidth<64>(sites);
}

void OrderedProgram::trace(std::vector<ProgramSpot>& spots) const
{
    spots.resize(items.size());
    const ProgramItem& last = items.back();
    int32_t rightClass = -1;
    int32_t limit = 0;
    int32_t cost = NEVER;
    for (int32_t r = 0; r < last.rightClasses; ++r) {
        const int32_t site = std::min(latest[static_cast<size_t>(r)] - last.low, m_sites - 1);
        if (site >= 0 && profile(items.size() - 1, r)[site] < cost) {
            cost = profile(items.size() - 1, r)[site];
            rightClass = r;
            limit = site;
        }
    }
    for (size_t i = items.size(); i-- > 0;) {
        const ProgramItem& item = items[i];
        const int32_t* const own = profile(i, rightClass);
        const auto site = static_cast<int32_t>(std::lower_bound(own, own + limit + 1, cost, std::greater<>()) - own);
        spots[i].site = item.low + site;
        bool found = false;
        for (int32_t o = item.optionBegin; o < item.optionEnd && !found; ++o) {
            const ProgramOption& option = options[static_cast<size_t>(o)];
            if (option.rightClass != rightClass) {
                continue;
            }
            const int32_t rest = cost - item.costs[option.mirrored ? 1 : 0][site] - option.price;
            if (i == 0) {
                found = rest == 0 && spots[0].site >= earliest[static_cast<size_t>(option.leftClass)];
                spots[0].state = option.state;
                continue;
            }
            for (int32_t r = 0; r < items[i - 1].rightClasses && !found; ++r) {
                const int32_t at = site + shift(i, item.gaps[r * item.leftClasses + option.leftClass]);
                if (profile(i - 1, r)[at] == rest) {
                    found = true;
                    spots[i].state = option.state;
                    rightClass = r;
                    limit = std::min(at, m_sites - 1);
                    cost = rest;
                }
            }
        }
        assert(found);
    }
}

} // namespace refine
