// SPDX-License-Identifier: BSD-3-Clause
#include "refine/orderedProgram.h"

#include <algorithm>
#include <cassert>

#include "refine/programStep.h"

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

OrderedProgram::OrderedProgram() : m_step(programStepsHere().back()) {}

int32_t OrderedProgram::solve(int32_t sites)
{
    assert(sites > 0 && sites <= MOST_SITES);
    m_sites = sites;
    m_width = sites <= 8 ? 8 : sites <= 16 ? 16 : sites <= 32 ? 32 : MOST_SITES;
    size_t room = 0;
    int32_t mostClasses = 0;
    m_begin.clear();
    for (const ProgramItem& item : items) {
        m_begin.push_back(room);
        room += 3 * static_cast<size_t>(item.rightClasses) * static_cast<size_t>(m_width);
        mostClasses = std::max(mostClasses, item.leftClasses);
    }
    m_profiles.resize(std::max(m_profiles.size(), room));
    m_arrivals.resize(
        std::max(m_arrivals.size(), static_cast<size_t>(mostClasses) * static_cast<size_t>(m_width)));
    for (int32_t c = 0; c < items.front().leftClasses; ++c) {
        const int32_t first = earliest[static_cast<size_t>(c)] - items.front().low;
        for (int32_t p = 0; p < m_width; ++p) {
            m_arrivals[static_cast<size_t>(c) * static_cast<size_t>(m_width) + static_cast<size_t>(p)] =
                p < first ? NEVER : 0;
        }
    }
    ProgramStep step{.width = m_width, .sites = sites, .arrivals = m_arrivals.data()};
    for (size_t i = 0; i < items.size(); ++i) {
        const ProgramItem& item = items[i];
        step.leftClasses = item.leftClasses;
        step.rightClasses = item.rightClasses;
        if (i > 0) {
            step.classesBefore = items[i - 1].rightClasses;
            step.before = m_profiles.data() + m_begin[i - 1];
            const size_t pairs =
                static_cast<size_t>(step.classesBefore) * static_cast<size_t>(item.leftClasses);
            const int32_t apart = item.low - items[i - 1].low - items[i - 1].width;
            m_shifts.resize(std::max(m_shifts.size(), pairs));
            for (size_t k = 0; k < pairs; ++k) {
                m_shifts[k] = std::clamp(apart - item.gaps[k], -m_width, m_width);
            }
            step.shifts = m_shifts.data();
        }
        step.options = options.data() + item.optionBegin;
        step.optionCount = item.optionEnd - item.optionBegin;
        step.costs[0] = item.costs[0];
        step.costs[1] = item.costs[1];
        step.profiles = m_profiles.data() + m_begin[i];
        m_step(step);
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
        const auto site =
            static_cast<int32_t>(std::lower_bound(own, own + limit + 1, cost, std::greater<>()) - own);
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
