// SPDX-License-Identifier: BSD-3-Clause
#include "refine/pairTable.h"

#include <rapidcheck/Log.h>

#include <set>

#include "refine/randomModel.h"

namespace {

/// Calls work(kind) for the kinds of cells that move.
template <typename Work>
void forMoving(const refine::Model& model, Work work)
{
    std::set<int32_t> kinds;
    for (const refine::Cell& cell : model.cells) {
        if (!cell.fixed) {
            kinds.insert(cell.kind);
        }
    }
    for (const int32_t kind : kinds) {
        work(kind);
    }
}

/// Calls work(left, right), two cells beside each other, for all kinds that move and all of their states.
template <typename Work>
void forPairs(const refine::Model& model, Work work)
{
    forMoving(model, [&](int32_t left) {
        forMoving(model, [&](int32_t right) {
            for (int32_t l = 0; l < model.stateCount(left); ++l) {
                for (int32_t r = 0; r < model.stateCount(right); ++r) {
                    work(refine::Cell{.kind = left, .state = l}, refine::Cell{.kind = right, .state = r});
                }
            }
        });
    });
}

refine::Model drawModel(bool narrow)
{
    refine::Model model = test::RandomModel({.narrow = narrow}).model;
    RC_LOG() << test::textOf(model);
    return model;
}

int32_t sitesOf(const refine::PairTable& table, const refine::Cell& left, const refine::Cell& right)
{
    const refine::PairTable::Pair pair = table.of(left.kind, right.kind);
    return pair.gaps[pair.leftClassOf[left.state] * pair.rightClasses + pair.rightClassOf[right.state]];
}

} // namespace

PROPERTY_TIMES(PairTable, GapsAreThoseOfTheModelInWholeSites, 3)
{
    const refine::Model model = drawModel(/*narrow=*/false);
    const refine::PairTable table(model);
    forPairs(model, [&](const refine::Cell& left, const refine::Cell& right) {
        const int32_t gap = test::gapBetween(model, left, right);
        RC_ASSERT(table.between(left.kind, left.state, right.kind, right.state) == gap);
        const int32_t sites = sitesOf(table, left, right);
        RC_ASSERT(sites * model.step >= gap);
        RC_ASSERT((sites - 1) * model.step < gap);
    });
}

PROPERTY_TIMES(PairTable, NoClassesAreAlike, 3)
{
    const refine::Model model = drawModel(/*narrow=*/true);
    const refine::PairTable table(model);
    forMoving(model, [&](int32_t left) {
        forMoving(model, [&](int32_t right) {
            const refine::PairTable::Pair pair = table.of(left, right);
            std::set<std::vector<int32_t>> rows;
            std::set<std::vector<int32_t>> columns;
            for (int32_t l = 0; l < model.stateCount(left); ++l) {
                const int32_t* const row = pair.gaps + pair.leftClassOf[l] * pair.rightClasses;
                rows.insert({row, row + pair.rightClasses});
            }
            for (int32_t r = 0; r < model.stateCount(right); ++r) {
                std::vector<int32_t> column;
                for (int32_t l = 0; l < pair.leftClasses; ++l) {
                    column.push_back(pair.gaps[l * pair.rightClasses + pair.rightClassOf[r]]);
                }
                columns.insert(column);
            }
            RC_ASSERT(static_cast<int32_t>(rows.size()) == pair.leftClasses);
            RC_ASSERT(static_cast<int32_t>(columns.size()) == pair.rightClasses);
        });
    });
}

PROPERTY_TIMES(PairTable, NeighboursApartKeepTheCellsBesideThemApart, 3)
{
    const refine::Model model = drawModel(/*narrow=*/true);
    const refine::PairTable table(model);
    forPairs(model, [&](const refine::Cell& left, const refine::Cell& middle) {
        forMoving(model, [&](int32_t kind) {
            for (int32_t state = 0; state < model.stateCount(kind); ++state) {
                const refine::Cell right{.kind = kind, .state = state};
                const int32_t apart = sitesOf(table, left, middle) * model.step +
                                      test::kindOf(model, middle).width +
                                      sitesOf(table, middle, right) * model.step;
                RC_ASSERT(apart >= test::gapBetween(model, left, right));
            }
        });
    });
}

PROPERTY_TIMES(PairTable, GapsAreNoLargerThanNeighboursAndCellsBesideThemNeed, 3)
{
    const refine::Model model = drawModel(/*narrow=*/true);
    const refine::PairTable table(model);
    forPairs(model, [&](const refine::Cell& left, const refine::Cell& right) {
        RC_ASSERT(table.between(left.kind, left.state, right.kind, right.state) ==
                  test::spacing(model, left, right));
    });
}
