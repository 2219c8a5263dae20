// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <vector>

#include "kit/engines/color/search.h"

namespace kit::color {

/// Parts in the order of the search, with what each brings in.
class Problem {
public:
    /// Masks of the frontier: two bits for each of its places.
    using Key = std::array<uint64_t, 2>;

    static constexpr uint32_t FORBIDDEN = std::numeric_limits<uint32_t>::max();
    static constexpr size_t MOST_PLACES = 64;

    /// @param parts  indices in the graph; nothing but them counts
    Problem(const Graph& graph, const std::vector<size_t>& parts, const Rules& rules);

    /// Whether the frontier is never too long for a key.
    bool fits() const { return m_fits; }

    size_t size() const { return m_steps.size(); }

    /// The part of a step.
    size_t partOf(size_t step) const { return m_steps[step].part; }

    /// The masks that it may have, as bits.
    uint8_t masksOf(size_t step) const { return m_steps[step].masks; }

    /// What a mask costs a partial colouring, FORBIDDEN if it cannot be.
    uint32_t costOf(size_t step, const Key& key, uint32_t mask) const;

    /// The frontier after a step.
    Key next(size_t step, Key key, uint32_t mask) const;

    /// No colouring costs more.
    uint32_t mostCost() const { return m_mostCost; }

private:
    /// Something that is known when its last part has its mask.
    struct Rule {
        size_t other = 0;     ///< place of the other part
        uint32_t ifEqual = 0; ///< cost
        uint32_t ifDifferent = 0;
    };

    /// A bond that is known when the last of its members has its mask.
    struct BondRule {
        uint32_t cost = 0;
        std::vector<size_t> places{}; ///< [member]; in the place of the step's own part if it is one
        std::vector<Joint> joints{};  ///< between members, by their positions among them
        size_t a = 0;                 ///< position among the members
        size_t b = 0;
    };

    struct Step {
        size_t part = 0;
        uint8_t masks = 0;
        size_t place = 0; ///< in the key
        std::vector<Rule> rules{};
        std::vector<BondRule> bonds{};
        Key kept{}; ///< bits of the places that stay
    };

    void arrange(const std::vector<std::vector<size_t>>& neighbours);
    void assignPlaces(const std::vector<std::vector<size_t>>& neighbours);
    void addRules(const Graph& graph, const Rules& rules);
    void addBond(const Graph& graph, const Bond& bond, uint32_t cost);
    static uint32_t maskAt(const Key& key, size_t place)
    {
        return static_cast<uint32_t>(key[place / 32] >> (2 * (place % 32)) & 3U);
    }
    static bool breaks(const BondRule& bond, const Key& key);

    std::vector<Step> m_steps;
    std::vector<size_t> m_stepOf; ///< [part of the graph] size() for those left out
    uint32_t m_mostCost = 0;
    bool m_fits = true;
};

} // namespace kit::color
