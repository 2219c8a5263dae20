// SPDX-License-Identifier: BSD-3-Clause
#include "refine/moves.h"

#include <rapidcheck/Log.h>

#include "refine/randomModel.h"
#include "refine/windowSearch.h"

namespace {

using refine::Mover;
using refine::Proposal;

/// A random model and somebody who proposes moves.
class MoverCase {
public:
    explicit MoverCase(const test::Variety& variety)
        : model(test::RandomModel(variety).model), at(model), options(test::drawOptions()),
          objective(priced(at, options), options),
          most(test::mostDisplacements(model, objective.starts, options.maxDisplacement)), mover(at, options)
    {
        RC_LOG() << test::textOf(model);
    }

    int64_t cost() const { return objective.of(model); }

    /// Makes a change that was proposed, if any was.
    void take(const Proposal& proposal)
    {
        const int64_t before = cost();
        RC_ASSERT(proposal.gain >= 0);
        RC_ASSERT((proposal.gain > 0) == !proposal.changes.empty());
        RC_ASSERT(mover.isPossible(proposal, m_now));
        RC_ASSERT(mover.gainOf(proposal) == proposal.gain);
        if (!keepsDistance(proposal)) {
            return;
        }
        at.apply(proposal.changes, ++m_now);
        RC_ASSERT(before - cost() == proposal.gain);
        assertLegal();
    }

    /// A move looks at next neighbours: what it proposes may be too close further away, and is left then.
    bool keepsDistance(const Proposal& proposal)
    {
        const bool keeps = at.keepsDistance(proposal.changes);
        refine::Model then = model;
        for (const refine::Change& change : proposal.changes) {
            refine::Cell& cell = then.cells[static_cast<size_t>(change.cell)];
            cell.row = change.row;
            cell.x = change.x;
            cell.state = change.state;
        }
        RC_ASSERT(keeps == (refine::violationsOf(then).sum() == 0));
        return keeps;
    }

    /// Makes changes that were proposed for the placement as it is, as far as each is possible after the
    /// others.
    void takeAll(std::vector<Proposal> proposals)
    {
        const uint32_t since = m_now;
        for (Proposal& proposal : proposals) {
            if (mover.isPossible(proposal, since) && keepsDistance(proposal)) {
                proposal.gain = mover.gainOf(proposal);
                const int64_t before = cost();
                at.apply(proposal.changes, ++m_now);
                RC_ASSERT(before - cost() == proposal.gain);
                assertLegal();
            }
        }
    }

    void assertLegal() const
    {
        RC_ASSERT(test::isNear(model, objective.starts, most));
        RC_ASSERT(test::isLegal(model));
        RC_ASSERT(refine::violationsOf(model).sum() == 0);
    }

    /// Calls work(row, first, last) for all neighbours in one run that may move, by ranks.
    template <typename Work>
    void forNeighbours(size_t fewest, size_t count, Work work)
    {
        for (int32_t row = 0; row < static_cast<int32_t>(model.rows.size()); ++row) {
            for (size_t first = 0; first < at.items(row).size(); ++first) {
                for (size_t last = first + 1; last <= at.items(row).size() && last <= first + count; ++last) {
                    const refine::Item& item = at.items(row)[last - 1];
                    const refine::Run* const run = at.runAt(row, at.items(row)[first].x);
                    if (at.cell(item.cell).fixed || run == nullptr || at.runAt(row, item.x) != run) {
                        break;
                    }
                    if (last - first >= fewest) {
                        work(row, first, last);
                    }
                }
            }
        }
    }

    /// Calls work(cell) for all that may move.
    template <typename Work>
    void forCells(Work work)
    {
        for (int32_t cell = 0; cell < static_cast<int32_t>(model.cells.size()); ++cell) {
            if (!at.cell(cell).fixed) {
                work(cell);
            }
        }
    }

    /// What the best arrangement of cells in an order gains, if there is any.
    std::optional<int64_t> bestGain(int32_t row, size_t first, size_t last, const std::vector<int32_t>& cells)
    {
        const std::vector<refine::Item>& items = at.items(row);
        const refine::WindowFrame frame{row, at.runAt(row, items[first].x),
                                        first > 0 ? items[first - 1].cell : -1,
                                        last < items.size() ? items[last].cell : -1};
        test::WindowSearch search(model, objective, most, frame);
        const std::optional<int64_t> least = search.leastCost(cells);
        return least ? std::optional(cost() - *least) : std::nullopt;
    }

    std::vector<int32_t> cellsOf(int32_t row, size_t first, size_t last) const
    {
        std::vector<int32_t> cells;
        for (size_t i = first; i < last; ++i) {
            cells.push_back(at.items(row)[i].cell);
        }
        return cells;
    }

    refine::Model model;
    refine::Placement at;
    refine::Options options;
    test::Objective objective;
    std::vector<int64_t> most; ///< [cell] largest displacement, units
    Mover mover;

private:
    static const refine::Placement& priced(refine::Placement& at, const refine::Options& options)
    {
        at.setDisplacementWeight(
            static_cast<int32_t>(options.displacementPrice * at.parts() / refine::Options::PRICE_PARTS));
        return at;
    }

    uint32_t m_now = 1;
};

refine::Limits drawLimits()
{
    return {test::draw(1, 6), test::draw(1, 5), test::draw(1, 4), test::draw(1, 33)};
}

const test::Variety FEW_ARRANGEMENTS{.sites = 6, .states = 2};

} // namespace

PROPERTY_TIMES(Mover, ArrangeFindsTheBestArrangement, 5)
{
    MoverCase the(FEW_ARRANGEMENTS);
    the.forNeighbours(1, 3, [&](int32_t row, size_t first, size_t last) {
        const std::optional<int64_t> best = the.bestGain(row, first, last, the.cellsOf(row, first, last));
        Proposal proposal;
        the.mover.arrange(row, first, last, refine::OrderedProgram::MOST_SITES, proposal);
        RC_ASSERT(proposal.gain == std::max(int64_t{0}, best.value_or(0)));
    });
}

PROPERTY_TIMES(Mover, ReorderFindsTheBestOfAllOtherOrders, 5)
{
    MoverCase the(FEW_ARRANGEMENTS);
    the.forNeighbours(2, 3, [&](int32_t row, size_t first, size_t last) {
        const std::vector<int32_t> cells = the.cellsOf(row, first, last);
        std::vector<int32_t> order = cells;
        std::ranges::sort(order);
        int64_t best = 0;
        do {
            if (order != cells) {
                best = std::max(best, the.bestGain(row, first, last, order).value_or(0));
            }
        } while (std::ranges::next_permutation(order).found);
        Proposal proposal;
        the.mover.reorder(row, first, last, proposal);
        RC_ASSERT(proposal.gain == best);
    });
}

PROPERTY_TIMES(Mover, ArrangeGainsWhatItSays, 10)
{
    MoverCase the({.sites = 20, .wideFixed = true, .spaced = true});
    the.forNeighbours(1, 7, [&](int32_t row, size_t first, size_t last) {
        Proposal proposal;
        the.mover.arrange(row, first, last, test::draw(1, 65), proposal);
        the.take(proposal);
    });
}

PROPERTY_TIMES(Mover, ReorderGainsWhatItSays, 10)
{
    MoverCase the({.sites = 20, .wideFixed = true, .spaced = true});
    the.forNeighbours(2, 4, [&](int32_t row, size_t first, size_t last) {
        Proposal proposal;
        the.mover.reorder(row, first, last, proposal);
        the.take(proposal);
    });
}

PROPERTY_TIMES(Mover, InsertGainsWhatItSays, 10)
{
    MoverCase the({.sites = 12, .wideFixed = true, .spaced = true});
    the.forCells([&](int32_t cell) {
        Proposal proposal;
        the.mover.insert(cell, drawLimits(), proposal);
        the.take(proposal);
    });
}

PROPERTY_TIMES(Mover, SwapGainsWhatItSays, 10)
{
    MoverCase the({.sites = 12, .cells = 12, .wideFixed = true, .spaced = true});
    the.forCells([&](int32_t cell) {
        Proposal proposal;
        the.mover.swap(cell, drawLimits(), proposal);
        the.take(proposal);
    });
}

namespace {

/// Rows of ten sites with cells of two sites; each is pulled to a place of a row, as if by a net to a fixed
/// pin.
class PulledCells {
public:
    struct Pulled {
        int32_t row;
        int32_t x;
        int32_t toRow;
        int32_t toX;
    };

    explicit PulledCells(const std::vector<Pulled>& cells)
    {
        model.views = 1;
        model.gaps = {0};
        model.kinds = {{2, 1, 0, 0}, {0, 1, 1, 1}};
        model.states.emplace_back();
        model.kindPins.emplace_back();
        for (int32_t row = 0; row < 3; ++row) {
            model.rows.push_back({10 * row, false});
            model.runs.push_back({row, 0, 10, 0});
        }
        for (const Pulled& cell : cells) {
            const auto index = static_cast<int32_t>(model.cells.size());
            model.cells.push_back({.row = cell.row, .x = cell.x});
            model.pins.push_back({index, 0});
            model.nets.push_back({1, index, cell.toX, 10 * cell.toRow, cell.toX, 10 * cell.toRow});
        }
        model.nets.push_back({1, static_cast<int32_t>(model.pins.size())});
    }

    /// What a move proposes, as row and x of each cell.
    template <typename Propose>
    std::vector<std::pair<int32_t, int32_t>> after(Propose propose)
    {
        refine::Placement at(model);
        const refine::Options options;
        Mover mover(at, options);
        Proposal proposal;
        propose(mover, proposal);
        at.apply(proposal.changes, 1);
        std::vector<std::pair<int32_t, int32_t>> places;
        for (const refine::Cell& cell : model.cells) {
            places.emplace_back(cell.row, cell.x);
        }
        return places;
    }

    refine::Model model;
};

using Places = std::vector<std::pair<int32_t, int32_t>>;

} // namespace

TEST(Mover, InsertTakesACellToWhereItsNetsWantIt)
{
    PulledCells the({{0, 0, 2, 7}});
    EXPECT_EQ(the.after([](Mover& mover, Proposal& best) { mover.insert(0, {}, best); }), (Places{{2, 7}}));
}

TEST(Mover, InsertPushesOthersAsideThatLoseLess)
{
    PulledCells the({{0, 0, 2, 4}, {2, 3, 2, 3}, {2, 5, 2, 6}});
    EXPECT_EQ(the.after([](Mover& mover, Proposal& best) { mover.insert(0, {}, best); }),
              (Places{{2, 4}, {2, 2}, {2, 6}}));
}

TEST(Mover, SwapExchangesCellsOfTwoRows)
{
    PulledCells the({{0, 2, 2, 6}, {2, 6, 0, 2}, {0, 0, 0, 0}, {0, 4, 0, 4}, {2, 4, 2, 4}, {2, 8, 2, 8}});
    const Places places = the.after([](Mover& mover, Proposal& best) { mover.swap(0, {}, best); });
    EXPECT_EQ(places, (Places{{2, 6}, {0, 2}, {0, 0}, {0, 4}, {2, 4}, {2, 8}}));
}

TEST(Mover, SwapLeavesCellsOfOtherFencesAlone)
{
    PulledCells the({{0, 2, 2, 6}, {2, 6, 0, 2}});
    the.model.cells.back().fence = the.model.runs.back().fence = 1;
    EXPECT_EQ(the.after([](Mover& mover, Proposal& best) { mover.swap(0, {}, best); }),
              (Places{{0, 2}, {2, 6}}));
}

TEST(Mover, ReorderPutsNeighboursInTheOrderOfTheirNets)
{
    PulledCells the({{0, 0, 0, 8}, {0, 2, 0, 0}, {0, 4, 0, 4}});
    EXPECT_EQ(the.after([](Mover& mover, Proposal& best) { mover.reorder(0, 0, 3, best); }),
              (Places{{0, 8}, {0, 0}, {0, 4}}));
}

// Others may have been carried out since a proposal was made.
PROPERTY_TIMES(Mover, ProposalsOfOnePlacementStayRightAsLongAsTheyArePossible, 10)
{
    MoverCase the({.rows = 2, .sites = 20, .cells = 16, .wideFixed = true, .spaced = true});
    std::vector<Proposal> proposals;
    the.forCells([&](int32_t cell) {
        const int32_t row = the.at.cell(cell).row;
        const size_t rank = the.at.rankOf(cell);
        Proposal proposal;
        switch (test::draw(0, 4)) {
        case 0:
            the.mover.insert(cell, drawLimits(), proposal);
            break;
        case 1:
            the.mover.swap(cell, drawLimits(), proposal);
            break;
        case 2:
            the.mover.arrange(row, rank, rank + 1, 64, proposal);
            break;
        default:
            the.forNeighbours(2, 3, [&](int32_t inRow, size_t first, size_t last) {
                if (inRow == row && first == rank) {
                    the.mover.reorder(row, first, last, proposal);
                }
            });
        }
        if (proposal.gain > 0) {
            proposals.push_back(proposal);
        }
    });
    the.takeAll(proposals);
}

// A proposal that is there already is given up for a better one alone.
PROPERTY_TIMES(Mover, OnlyBetterProposalsAreTaken, 3)
{
    MoverCase the({.sites = 12, .wideFixed = true, .spaced = true});
    the.forCells([&](int32_t cell) {
        Proposal fresh;
        const refine::Limits limits = drawLimits();
        the.mover.insert(cell, limits, fresh);
        the.mover.swap(cell, limits, fresh);
        Proposal known{fresh.gain, {{-1, 0, 0, 0}}, {}};
        the.mover.insert(cell, limits, known);
        the.mover.swap(cell, limits, known);
        if (known.gain == fresh.gain) {
            RC_ASSERT(known.changes.front().cell == -1);
        } else {
            RC_ASSERT(known.gain > fresh.gain);
            the.take(known);
        }
    });
}
