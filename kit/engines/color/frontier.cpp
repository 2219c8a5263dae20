// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/color/frontier.h"

#include <algorithm>

namespace kit::color {

Outcome Frontiers::search(uint32_t bound, const Limits& limits)
{
    m_layers.assign(1, {});
    m_layers.front() = {{Problem::Key{}}, {0}, {{}}, {}};
    size_t states = 1;
    for (size_t step = 0; step < m_problem.size(); ++step) {
        expand(step, bound);
        states += m_layers.back().keys.size();
        if (m_layers.back().keys.empty()) {
            return Outcome::NONE;
        }
        if (states > limits.states) {
            return Outcome::TOO_LARGE;
        }
    }
    lookBack();
    return Outcome::FOUND;
}

void Frontiers::expand(size_t step, uint32_t bound)
{
    const Layer& from = m_layers.back();
    m_candidates.clear();
    for (uint32_t state = 0; state < from.keys.size(); ++state) {
        for (uint32_t mask = 0; mask < 3; ++mask) {
            if ((m_problem.masksOf(step) >> mask & 1U) == 0) {
                continue;
            }
            const uint32_t price = m_problem.costOf(step, from.keys[state], mask);
            if (price != Problem::FORBIDDEN && from.costs[state] + price <= bound) {
                m_candidates.push_back({m_problem.next(step, from.keys[state], mask),
                                        from.costs[state] + price, state, mask, price});
            }
        }
    }
    m_layers.emplace_back();
    takeUp(m_layers[step], m_layers[step + 1]);
}

/// Makes states of the candidates.
void Frontiers::takeUp(Layer& from, Layer& to)
{
    std::sort(m_candidates.begin(), m_candidates.end(),
              [](const Candidate& a, const Candidate& b) { return a.key < b.key; });
    for (const Candidate& candidate : m_candidates) {
        if (to.keys.empty() || to.keys.back() != candidate.key) {
            to.keys.push_back(candidate.key);
            to.costs.push_back(candidate.cost);
        }
        to.costs.back() = std::min(to.costs.back(), candidate.cost);
        from.ways[candidate.from][candidate.mask] = {static_cast<uint32_t>(to.keys.size() - 1),
                                                     candidate.price};
    }
    to.ways.resize(to.keys.size());
}

void Frontiers::lookBack()
{
    m_layers.back().toGo.assign(m_layers.back().keys.size(), 0);
    for (size_t step = m_problem.size(); step-- > 0;) {
        Layer& layer = m_layers[step];
        const Layer& next = m_layers[step + 1];
        layer.toGo.assign(layer.keys.size(), NOWHERE);
        for (size_t state = 0; state < layer.keys.size(); ++state) {
            for (const Way& way : layer.ways[state]) {
                if (way.to != NOWHERE && next.toGo[way.to] != NOWHERE) {
                    layer.toGo[state] = std::min(layer.toGo[state], way.cost + next.toGo[way.to]);
                }
            }
        }
    }
}

} // namespace kit::color
