// SPDX-License-Identifier: BSD-3-Clause
// The local shift program: every component moves a few sites and takes any of its colour solutions.
#include <algorithm>

#include "app/parameters.h"
#include "db/design.h"
#include "legalizer/fastRoad.h"
#include "legalizer/segLegalizer.h"
#include "qlib/exact.h"

using vireloce::INFINITE_COST;

/// One run of the program: a table of states, a state being a component in a colour solution at a shift.
class SegLegalizer::LocalShift {
public:
    explicit LocalShift(SegLegalizer& solver)
        : m_solver(solver), m_comps(solver.segment->components.begin(), solver.segment->components.end()),
          m_colours(std::max(LDP_K, 0)), m_offsets(static_cast<int32_t>(countOffsets())),
          m_firstShift(firstOffset())
    {
        const int64_t perComp = static_cast<int64_t>(m_colours) * m_offsets;
        m_states.resize(m_comps.size() * static_cast<size_t>(perComp));
        if (!m_comps.empty()) {
            std::fill_n(m_states.begin(), perComp, State{.cost = 0});
        }
    }

    /// Fills the table from left to right.
    ///
    /// @param prune  leave out states that are dearer than one of the same colour further left
    void fill(bool prune)
    {
        for (size_t i = 0; i + 1 < m_comps.size(); ++i) {
            for (int32_t a = 0; a < coloursOf(i); ++a) {
                for (int32_t b = 0; b < coloursOf(i + 1); ++b) {
                    extend(i, a, b);
                }
            }
            if (prune) {
                pruneDearer(i + 1);
            }
        }
    }

    /// Writes the cheapest choice for all components.
    ///
    /// @return false if there is none, and nothing was written
    bool writeBest()
    {
        int32_t least = INFINITE_COST;
        int32_t colour = -1;
        int32_t offset = -1;
        for (int32_t b = 0; b < m_colours && !m_comps.empty(); ++b) {
            for (int32_t o = 0; o < m_offsets; ++o) {
                const int32_t cost = at(m_comps.size() - 1, b, o).cost;
                if (cost < least) {
                    least = cost;
                    colour = b;
                    offset = o;
                }
            }
        }
        if (least > INFINITE_COST - 2) {
            return false;
        }
        for (size_t i = m_comps.size(); i-- > 0;) {
            const State& state = at(i, colour, offset);
            m_solver.placeAt(*m_comps[i], m_comps[i]->siteX + shift(offset));
            m_comps[i]->solution = colour;
            colour = state.prevColour;
            offset = state.prevOffset;
        }
        return true;
    }

    /// Number of shifts, none with a negative LDP_M.
    static int64_t countOffsets() { return std::max<int64_t>(2 * int64_t{LDP_M} + 1, 0); }

    /// Leftmost shift, sites. Required: the shifts lean to the left, from -LDP_M - 1 to LDP_M - 1.
    static int32_t firstOffset() { return -LDP_M - 1; }

private:
    struct State {
        int32_t cost = INFINITE_COST; ///< least cost of the components up to this one
        int32_t prevOffset = -1;      ///< offset index of the left neighbour on the way to it
        int32_t prevColour = -1;      ///< solution of the left neighbour on the way to it
        bool pruned = false;          ///< not to be gone on from
    };

    State& at(size_t comp, int32_t colour, int32_t offset)
    {
        return m_states[(comp * static_cast<size_t>(m_colours) + static_cast<size_t>(colour)) *
                            static_cast<size_t>(m_offsets) +
                        static_cast<size_t>(offset)];
    }

    int32_t coloursOf(size_t comp) const { return std::min(m_solver.numColours(*m_comps[comp]), m_colours); }

    /// Sites that an offset index stands for.
    int32_t shift(int32_t offset) const { return m_firstShift + offset; }

    /// Goes on from the states of component i in colour a to those of its right neighbour in colour b.
    void extend(size_t i, int32_t a, int32_t b)
    {
        Component* left = m_comps[i];
        Component* comp = m_comps[i + 1];
        for (int32_t from = 0; from < m_offsets; ++from) {
            const State& source = at(i, a, from);
            if (source.cost >= INFINITE_COST - 1 || source.pruned) {
                continue;
            }
            for (int32_t to = 0; to < m_offsets; ++to) {
                const int32_t step = m_solver.getLdpCost(left, a, shift(from), comp, b, shift(to));
                State& target = at(i + 1, b, to);
                if (step + source.cost < target.cost) { // of equals the first: not as in the graph programs
                    target = {.cost = step + source.cost, .prevOffset = from, .prevColour = a};
                }
            }
        }
    }

    /// Marks what is dearer than a state of its colour further left. That one leaves at least as much room to
    /// the right, so the dearer one is never needed.
    void pruneDearer(size_t comp)
    {
        for (int32_t colour = 0; colour < m_colours; ++colour) {
            int32_t least = INFINITE_COST;
            for (int32_t offset = 0; offset < m_offsets; ++offset) {
                State& state = at(comp, colour, offset);
                state.pruned = least < state.cost;
                least = std::min(least, state.cost);
            }
        }
    }

    SegLegalizer& m_solver;
    std::vector<Component*> m_comps;
    int32_t m_colours;           ///< colour solutions in the table
    int32_t m_offsets;           ///< shifts in the table; none with a negative range
    int32_t m_firstShift;        ///< sites
    std::vector<State> m_states; ///< [component][colour][offset index]
};

void SegLegalizer::solveLdp(int step)
{
    solveLocalShift(step, /*prune=*/false);
}

void SegLegalizer::solveLdpFast(int step)
{
    solveLocalShift(step, /*prune=*/true);
}

void SegLegalizer::solveLocalShift(int step, bool prune)
{
    if (s_useGraphs ? shiftByTable(prune) : shiftFast(prune)) {
        return;
    }
    if (step == 1) {
        solveTPL();
    } else {
        solveOSR();
    }
}

bool SegLegalizer::shiftFast(bool prune)
{
    if (segment->components.empty()) {
        return false;
    }
    const auto places =
        fastRoad().shift(*segment, LocalShift::firstOffset(), LocalShift::countOffsets(), prune);
    if (!places.has_value()) {
        endTooLarge("two neighbours do not fit into the solver's memory");
    }
    if (places->empty()) {
        return false;
    }
    auto place = places->begin();
    for (Component* comp : segment->components) {
        placeAt(*comp, comp->siteX + place->shift);
        comp->solution = place->solution;
        ++place;
    }
    return true;
}

bool SegLegalizer::shiftByTable(bool prune)
{
    const int64_t perComp = int64_t{std::max(LDP_K, 0)} * LocalShift::countOffsets();
    requireSize(perComp); // or the product with the number of components, or a table's index, might not fit
    requireSize(static_cast<int64_t>(segment->components.size()) * perComp);
    initFLRs();
    initLRIDs();
    LocalShift program(*this);
    program.fill(prune);
    return program.writeBest();
}
