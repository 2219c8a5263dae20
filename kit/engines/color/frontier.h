// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "kit/engines/color/problem.h"
#include "kit/engines/color/search.h"

namespace kit::color {

/// All partial colourings of a problem that cost no more than a bound, those with the same frontier as one.
class Frontiers {
public:
    static constexpr uint32_t NOWHERE = std::numeric_limits<uint32_t>::max();

    /// A way on: the next part gets a mask.
    struct Way {
        uint32_t to = NOWHERE; ///< index in the next layer
        uint32_t cost = 0;
    };

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
