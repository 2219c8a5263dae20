// SPDX-License-Identifier: BSD-3-Clause
// The parts in the order of the search, the partial colourings that it goes through, and what comes of them.
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
    /// Costs of partial colourings are counted in so much for a stitch. Below that counts how many parts near
    /// rails have mask 0.
    static constexpr uint32_t STITCH = 64;
    static constexpr size_t MOST_PLACES = 64;

    /// @param parts  indices in the graph; nothing but them counts
    Problem(const Graph& graph, const std::vector<size_t>& parts, const Rules& rules);

    /// Whether the frontier is never too long for a key.
    bool fits() const { return m_fits; }

    /// Number of steps: one for each part.
    size_t size() const { return m_steps.size(); }

    /// The part of a step.
    size_t partOf(size_t step) const { return m_steps[step].part; }

    /// The masks that it may have, as bits.
    uint8_t masksOf(size_t step) const { return m_steps[step].masks; }

    /// What a mask costs a partial colouring, FORBIDDEN if it cannot be.
    uint32_t costOf(size_t step, const Key& key, uint32_t mask) const;

    /// The frontier after a step.
    Key next(size_t step, Key key, uint32_t mask) const;

    /// No colouring costs more, in stitches.
    uint32_t mostStitches() const { return m_mostCost / STITCH; }

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
        uint32_t ifMask0 = 0; ///< cost
        size_t place = 0;     ///< in the key
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
    uint32_t m_mostCost = 0;      ///< but for parts near rails
    bool m_fits = true;
};

/// All partial colourings of a problem that cost no more than a bound, those with the same frontier as one.
class Frontiers {
public:
    static constexpr uint32_t NOWHERE = std::numeric_limits<uint32_t>::max();

    /// A way on: the next part gets a mask.
    struct Way {
        uint32_t to = NOWHERE; ///< index in the next layer
        uint32_t cost = 0;
    };

    /// @param problem  must outlive this
    explicit Frontiers(const Problem& problem) : m_problem(problem) {}

    /// Finds them.
    ///
    /// @return FOUND if there is a whole colouring within the bound
    Outcome search(uint32_t bound, const Limits& limits);

    /// Cost of the cheapest colouring, after a search that has found one.
    uint32_t least() const { return m_layers.front().toGo.front(); }

    /// Ways from a partial colouring, one for each mask.
    ///
    /// @param step   parts that have a mask
    /// @param state  index among those of the step
    const std::array<Way, 3>& ways(size_t step, uint32_t state) const { return m_layers[step].ways[state]; }

    /// What the rest costs at least, exactly; NOWHERE if it does not go within the bound.
    uint32_t toGo(size_t step, uint32_t state) const { return m_layers[step].toGo[state]; }

private:
    /// A partial colouring that has not been compared with the others yet.
    struct Candidate {
        Problem::Key key;
        uint32_t cost;
        uint32_t from;
        uint32_t mask;
        uint32_t price;
    };

    struct Layer {
        std::vector<Problem::Key> keys;       ///< [state] ascending
        std::vector<uint32_t> costs;          ///< [state] least so far
        std::vector<std::array<Way, 3>> ways; ///< [state]
        std::vector<uint32_t> toGo;           ///< [state]
    };

    void expand(size_t step, uint32_t bound);
    void takeUp(Layer& from, Layer& to);
    void lookBack();

    const Problem& m_problem;
    std::vector<Layer> m_layers; ///< [parts coloured]
    std::vector<Candidate> m_candidates;
};

/// The cheapest colouring for every way in which the parts at a cell's sides may look, as far as it is within
/// a cost.
///
/// @param problem    of the parts
/// @param frontiers  after a search that reached `bound`
/// @param bound      no colouring may cost more; at least the least cost
/// @return by cost, then by sides; the masks of a colouring are by steps of the problem, its sides too
std::vector<Colouring> colouringsBySides(const Graph& graph, const Problem& problem,
                                         const Frontiers& frontiers, uint32_t bound, const Limits& limits);

} // namespace kit::color
