// SPDX-License-Identifier: BSD-3-Clause
// What the programs of the segment solver find, by trying everything.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "legalizer/literalModel.h"

namespace test {

/// The search through all ways to place and colour a segment. Right where no cost is negative or near the
/// 32-bit limits, and cells have the solutions that their components are in.
///
/// A program is known by which of several equally cheap ways it takes. The search tries the components from
/// the last to the first, each by a list of choices, and keeps the first of the cheapest.
class Exhaustive {
public:
    explicit Exhaustive(const LiteralModel& model) : m_model(model) {}

    /// Highest solutions from the right.
    std::optional<Places> colouring()
    {
        for (size_t i = 0; i < m_model.numComps(); ++i) {
            m_choices.emplace_back();
            for (int32_t colour = m_model.colours(i) - 1; colour >= 0; --colour) {
                m_choices[i].push_back({colour, 0});
            }
        }
        m_pairCost = [this](size_t i, const Choice& left, const Choice& right) {
            return std::optional<int64_t>(m_model.pairCost(i, left.colour, right.colour));
        };
        m_ownCost = [](size_t, const Choice&) { return 0; };
        search(m_model.numComps(), 0);
        return m_least ? std::optional(write(m_model, /*move=*/false)) : std::nullopt;
    }

    /// Most components, then leftmost from the right; the rest is parked.
    std::optional<Places> placement()
    {
        m_model.fillMissingSolutions();
        for (size_t i = 0; i < m_model.numComps(); ++i) {
            m_choices.emplace_back();
            addSites(i, m_model.solution(i));
        }
        return placed();
    }

    /// Most components, then the highest solution and the leftmost place from the right; the rest is parked.
    std::optional<Places> joint()
    {
        for (size_t i = 0; i < m_model.numComps(); ++i) {
            m_choices.emplace_back();
            for (int32_t colour = m_model.colours(i) - 1; colour >= 0; --colour) {
                addSites(i, colour);
            }
        }
        return placed();
    }

    /// Lowest solution and leftmost shift from the right.
    ///
    /// @pre LDP_K is at least the number of solutions of every cell
    std::optional<Places> shifts()
    {
        for (size_t i = 0; i < m_model.numComps(); ++i) {
            m_choices.emplace_back();
            for (int32_t colour = 0; colour < m_model.colours(i); ++colour) {
                for (int32_t shift = -LDP_M - 1; shift <= LDP_M - 1; ++shift) {
                    m_choices[i].push_back({colour, m_model.siteX(i) + shift});
                }
            }
        }
        m_pairCost = [this](size_t i, const Choice& left, const Choice& right) {
            return m_model.fits(i, left.site, left.colour, right.site, right.colour)
                       ? std::optional<int64_t>(
                             m_model.shiftCost(i, left.site, left.colour, right.site, right.colour))
                       : std::nullopt;
        };
        m_ownCost = [](size_t, const Choice&) { return 0; };
        search(m_model.numComps(), 0);
        return m_least ? std::optional(write(m_model, /*move=*/true)) : std::nullopt;
    }

    /// Whether there were too many ways to try them all.
    bool gaveUp() const { return m_visits > MOST_VISITS; }

private:
    static constexpr int MOST_VISITS = 5000;

    struct Choice {
        int32_t colour;
        int32_t site;
    };

    void addSites(size_t i, int32_t colour)
    {
        for (int32_t site = 0; site + m_model.width(i) <= m_model.numSites(); ++site) {
            m_choices[i].push_back({colour, site});
        }
    }

    std::optional<Places> placed()
    {
        m_pairCost = [this](size_t i, const Choice& left, const Choice& right) {
            const int32_t gap = right.site - left.site - m_model.width(i);
            return gap >= m_model.spacing(i, left.colour, right.colour) ? std::optional<int64_t>(0)
                                                                        : std::nullopt;
        };
        m_ownCost = [this](size_t i, const Choice& choice) {
            return m_model.ownCost(i, choice.site, choice.colour);
        };
        const size_t all = m_model.numComps();
        for (size_t count = all; count > 0; --count) {
            search(count, int64_t{10} * m_model.numSites() * static_cast<int64_t>(all + 1 - count));
        }
        LiteralModel result = m_model;
        result.park();
        // Without a site every end is free of charge, also the one that nothing reached.
        return m_least || m_model.numSites() > 0 ? std::optional(write(result, /*move=*/true)) : std::nullopt;
    }

    /// Tries all ways for the first `count` components, given a cost to begin with.
    void search(size_t count, int64_t cost)
    {
        if (++m_visits > MOST_VISITS) {
            return;
        }
        if (count == 0) {
            if (!m_least || cost < *m_least) {
                m_least = cost;
                m_best.assign(m_chosen.rbegin(), m_chosen.rend());
            }
            return;
        }
        for (const Choice& choice : m_choices[count - 1]) {
            const auto step =
                m_chosen.empty() ? std::optional<int64_t>(0) : m_pairCost(count - 1, choice, m_chosen.back());
            if (step) {
                m_chosen.push_back(choice);
                search(count - 1, cost + *step + m_ownCost(count - 1, choice));
                m_chosen.pop_back();
            }
        }
    }

    Places write(LiteralModel result, bool move) const
    {
        for (size_t i = 0; i < m_best.size(); ++i) {
            result.colour(i, m_best[i].colour);
            if (move) {
                result.place(i, m_best[i].site);
            }
        }
        return result.places();
    }

    LiteralModel m_model;
    std::vector<std::vector<Choice>> m_choices; ///< [component] what to try, in this order
    std::function<std::optional<int64_t>(size_t, const Choice&, const Choice&)>
        m_pairCost; ///< none: not allowed
    std::function<int64_t(size_t, const Choice&)> m_ownCost;
    std::vector<Choice> m_chosen; ///< from the right
    std::optional<int64_t> m_least;
    std::vector<Choice> m_best; ///< from the left
    int m_visits = 0;
};

} // namespace test
