// SPDX-License-Identifier: BSD-3-Clause
// The local shift program: every component moves a few sites and takes any of its colour solutions.
#include <algorithm>

#include "app/parameters.h"
#include "db/design.h"
#include "legalizer/segLegalizer.h"
#include "qlib/exact.h"

using vireloce::INFINITE_COST;

namespace {

/// A component of the segment in a colour solution at a shift: the best way to get there.
struct State {
    int32_t cost = INFINITE_COST; ///< of the components up to this one
    int32_t prevOffset = -1;      ///< offset index of the left neighbour
    int32_t prevColour = -1;      ///< solution of the left neighbour
    bool pruned = false;          ///< not to be gone on from
};

/// The states of all components, [component][colour][offset index].
class StateTable {
public:
    StateTable(size_t numComps, int32_t numColours, int32_t numOffsets)
        : m_colours(static_cast<size_t>(numColours)), m_offsets(static_cast<size_t>(numOffsets)),
          m_states(numComps * m_colours * m_offsets)
    {
    }

    State& at(size_t comp, int32_t colour, int32_t offset)
    {
        return m_states[(comp * m_colours + static_cast<size_t>(colour)) * m_offsets +
                        static_cast<size_t>(offset)];
    }

private:
    size_t m_colours;
    size_t m_offsets;
    std::vector<State> m_states;
};

/// A state is dearer than one of its colour further left: that one leaves as much room to the right, so this
/// one is never needed.
void pruneDearer(StateTable& table, size_t comp, int32_t numColours, int32_t numOffsets)
{
    for (int32_t colour = 0; colour < numColours; ++colour) {
        int32_t least = numOffsets > 0 ? table.at(comp, colour, 0).cost : 0;
        for (int32_t offset = 1; offset < numOffsets; ++offset) {
            State& state = table.at(comp, colour, offset);
            state.pruned = least < state.cost;
            least = std::min(least, state.cost);
        }
    }
}

} // namespace

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
    initFLRs();
    initLRIDs();
    const std::vector<Component*> comps(segment->components.begin(), segment->components.end());
    // Offset index o means a shift of o - LDP_M - 1 sites. Required: the lean to the left.
    const int32_t numOffsets = std::max(2 * LDP_M + 1, 0);
    const int32_t firstShift = -LDP_M - 1;
    const int32_t tableColours = std::max(LDP_K, 0);
    requireSize(static_cast<int64_t>(comps.size()) * tableColours * numOffsets);

    StateTable table(comps.size(), tableColours, numOffsets);
    for (int32_t colour = 0; colour < tableColours && !comps.empty(); ++colour) {
        for (int32_t offset = 0; offset < numOffsets; ++offset) {
            table.at(0, colour, offset).cost = 0;
        }
    }
    for (size_t i = 0; i + 1 < comps.size(); ++i) {
        Component* left = comps[i];
        Component* comp = comps[i + 1];
        for (int32_t a = 0; a < std::min(numColours(*left), tableColours); ++a) {
            for (int32_t b = 0; b < std::min(numColours(*comp), tableColours); ++b) {
                for (int32_t from = 0; from < numOffsets; ++from) {
                    const State& source = table.at(i, a, from);
                    if (source.cost >= INFINITE_COST - 1 || source.pruned) {
                        continue;
                    }
                    for (int32_t to = 0; to < numOffsets; ++to) {
                        const int32_t cost =
                            getLdpCost(left, a, firstShift + from, comp, b, firstShift + to) + source.cost;
                        State& target = table.at(i + 1, b, to);
                        if (cost < target.cost) { // of equals the first: not as in the graph programs
                            target = {cost, from, a};
                        }
                    }
                }
            }
        }
        if (prune) {
            pruneDearer(table, i + 1, tableColours, numOffsets);
        }
    }

    State best;
    int32_t colour = -1;
    int32_t offset = -1;
    for (int32_t b = 0; b < tableColours && !comps.empty(); ++b) {
        for (int32_t o = 0; o < numOffsets; ++o) {
            const State& state = table.at(comps.size() - 1, b, o);
            if (state.cost < best.cost) {
                best = state;
                colour = b;
                offset = o;
            }
        }
    }
    if (best.cost > INFINITE_COST - 2) {
        if (step == 1) {
            solveTPL();
        } else {
            solveOSR();
        }
        return;
    }
    for (size_t i = comps.size(); i-- > 0;) {
        const State state = table.at(i, colour, offset);
        placeAt(*comps[i], comps[i]->siteX + firstShift + offset);
        comps[i]->solution = colour;
        colour = state.prevColour;
        offset = state.prevOffset;
    }
}
