// SPDX-License-Identifier: BSD-3-Clause
#include "refine/improve.h"

#include <rapidcheck/Log.h>

#include <random>

#include "refine/legalize.h"
#include "refine/randomModel.h"
#include "refine/windowSearch.h"

namespace {

refine::Options drawRun()
{
    refine::Options options = test::drawOptions();
    options.effort = test::drawOne({1, 3, 3, 4, 9});
    return options;
}

bool areEqual(const std::vector<refine::Cell>& one, const std::vector<refine::Cell>& other)
{
    return std::ranges::equal(one, other, [](const refine::Cell& a, const refine::Cell& b) {
        return a.kind == b.kind && a.row == b.row && a.x == b.x && a.state == b.state && a.fence == b.fence &&
               a.fixed == b.fixed;
    });
}

refine::Model drawLegal()
{
    refine::Model model =
        test::RandomModel({.sites = 12, .cells = 16, .wideFixed = true, .spaced = true}).model;
    RC_LOG() << test::textOf(model);
    return model;
}

/// Many cells in rows with gaps between them, and nets of two to four pins anywhere: there is much to
/// improve.
refine::Model scatteredNets(int32_t rows, int32_t cellsInRow)
{
    std::mt19937 random(1);
    const auto below = [&](int32_t count) {
        return static_cast<int32_t>(random() % static_cast<uint32_t>(count));
    };
    refine::Model model;
    model.step = 2;
    model.views = 2;
    model.gaps = {0, 2, 2, 4};
    for (int32_t kind = 0; kind < 4; ++kind) {
        const int32_t width = 2 * (kind + 2);
        model.kinds.push_back({width, 1, 4 * kind, 2 * kind});
        for (int32_t state = 0; state < 4; ++state) {
            model.states.push_back({state & 1, below(2), below(2), state, state > 1});
        }
        for (int32_t pin = 0; pin < 2; ++pin) {
            const int32_t x = below(width);
            model.kindPins.push_back({x, width - x, pin * 3, 6 - pin * 3});
        }
    }
    model.kinds.push_back({0, 1, 16, 8});
    for (int32_t row = 0; row < rows; ++row) {
        model.rows.push_back({row * 6, row % 2 == 1});
        model.runs.push_back({row, 0, 10 * cellsInRow, 0});
        for (int32_t i = 0; i < cellsInRow; ++i) {
            model.cells.push_back({below(4), row, 20 * i, below(4)});
        }
    }
    const auto cells = static_cast<int32_t>(model.cells.size());
    for (int32_t net = 0; net < cells; ++net) {
        model.nets.push_back({1, static_cast<int32_t>(model.pins.size())});
        const int32_t center = below(cells);
        for (int32_t pin = below(3) + 2; pin > 0; --pin) {
            model.pins.push_back({(center + below(3 * cellsInRow)) % cells, below(2)});
        }
    }
    model.nets.push_back({1, static_cast<int32_t>(model.pins.size())});
    return model;
}

/// Cells that take 98 % of the sites, or more, each anywhere near the rows. Neighbours of some views must be
/// a site apart; each kind has a state without them.
refine::Model fullRows(uint32_t seed, int32_t rows, int32_t sites, int32_t share)
{
    std::mt19937 random(seed);
    const auto below = [&](int32_t count) {
        return static_cast<int32_t>(random() % static_cast<uint32_t>(count));
    };
    refine::Model model;
    model.step = 2;
    model.views = 3;
    model.gaps = {0, 0, 0, 0, 2, 0, 0, 0, 2};
    for (int32_t kind = 0; kind < 6; ++kind) {
        model.kinds.push_back({2 * (kind + 1), 1, 4 * kind, kind});
        model.states.push_back({0, 0, 1, 0, false});
        for (int32_t state = 1; state < 4; ++state) {
            model.states.push_back({below(3), below(3), 0, state, below(2) == 0});
        }
        model.kindPins.push_back({kind, kind + 2, 3, 3});
    }
    model.kinds.push_back({0, 1, 24, 6});
    for (int32_t row = 0; row < rows; ++row) {
        model.rows.push_back({row * 6, row % 2 == 1});
        model.runs.push_back({row, row, sites, 0});
    }
    for (int32_t taken = 0; 1000 * taken < share * rows * sites;) {
        const int32_t kind = below(6);
        model.cells.push_back({kind, below(rows), below(2 * sites + 20) - 10, below(4)});
        taken += kind + 1;
    }
    const auto cells = static_cast<int32_t>(model.cells.size());
    for (int32_t net = 0; net < cells; ++net) {
        model.nets.push_back({1, static_cast<int32_t>(model.pins.size())});
        for (int32_t pin = 0; pin < 3; ++pin) {
            model.pins.push_back({below(cells), 0});
        }
    }
    model.nets.push_back({1, static_cast<int32_t>(model.pins.size())});
    return model;
}

/// Free sites of the fullest run that a cell would fit into, counted from what truly stands there.
bool hasRoomFor(const refine::Model& model, const refine::Cell& cell,
                const std::vector<refine::Homeless>& homeless)
{
    return std::ranges::any_of(model.runs, [&](const refine::Run& run) {
        int32_t room = run.sites * model.step;
        for (size_t i = 0; i < model.cells.size(); ++i) {
            const bool isAway = std::ranges::any_of(homeless, [i](const refine::Homeless& other) {
                return static_cast<size_t>(other.cell) == i;
            });
            if (model.cells[i].row == run.row && !isAway) {
                room -= model.kinds[static_cast<size_t>(model.cells[i].kind)].width;
            }
        }
        return room >= model.kinds[static_cast<size_t>(cell.kind)].width;
    });
}

} // namespace

TEST(Improve, CellsOfAlmostFullRowsBecomeLegalOrAreProvedToHaveNoPlace)
{
    int32_t homeless = 0;
    for (uint32_t seed = 1; seed <= 40; ++seed) {
        refine::Model model = fullRows(seed, 12, 100, 980 + 5 * static_cast<int32_t>(seed % 6));
        const std::vector<refine::Homeless> left = refine::legalize(model);
        for (const refine::Homeless& cell : left) {
            EXPECT_TRUE(cell.isProved) << seed;
            EXPECT_FALSE(hasRoomFor(model, model.cells[static_cast<size_t>(cell.cell)], left)) << seed;
        }
        homeless += static_cast<int32_t>(left.size());
        refine::Model others = model; // without those that have no place
        for (const refine::Homeless& cell : left) {
            others.cells[static_cast<size_t>(cell.cell)].fixed = true;
            others.cells[static_cast<size_t>(cell.cell)].x = refine::FARTHEST / 2;
        }
        EXPECT_EQ(refine::violationsOf(others).sum(), 0) << seed;
    }
    EXPECT_GT(homeless, 0) << "some rows are too full";
}

PROPERTY_TIMES(Improve, ObjectiveNeverBecomesWorse, 5)
{
    refine::Model model = drawLegal();
    const refine::Options options = drawRun();
    const test::Objective objective(model, options);
    const int64_t before = objective.of(model);
    refine::improve(model, options, {});
    RC_ASSERT(objective.of(model) <= before);
}

PROPERTY_TIMES(Improve, WhatIsLegalStaysLegal, 5)
{
    refine::Model model = drawLegal();
    refine::improve(model, drawRun(), {});
    RC_ASSERT(test::isLegal(model));
    RC_ASSERT(refine::violationsOf(model).sum() == 0);
}

PROPERTY_TIMES(Improve, OnlyPlacesAndStatesOfCellsThatMayMoveAreChanged, 5)
{
    refine::Model model = test::scattered({.sites = 12, .cells = 16, .wideFixed = true});
    const std::vector<refine::Cell> before = model.cells;
    refine::improve(model, drawRun(), {});
    RC_ASSERT(model.cells.size() == before.size());
    for (size_t i = 0; i < before.size(); ++i) {
        const refine::Cell& now = model.cells[i];
        RC_ASSERT(now.kind == before[i].kind);
        RC_ASSERT(now.fence == before[i].fence);
        RC_ASSERT(now.fixed == before[i].fixed);
        if (now.fixed) {
            RC_ASSERT(now.row == before[i].row);
            RC_ASSERT(now.x == before[i].x);
            RC_ASSERT(now.state == before[i].state);
        }
        RC_ASSERT(now.state >= 0);
        RC_ASSERT(now.state < model.stateCount(now.kind));
    }
}

PROPERTY_TIMES(Improve, ModelsBecomeLegalIfAllCellsHaveAPlace, 3)
{
    refine::Model model = test::scattered({.sites = 12, .cells = 16, .wideFixed = true});
    const refine::Result result = refine::improve(model, drawRun(), {});
    RC_LOG() << test::textOf(model);
    RC_ASSERT(!result.homeless.empty() || test::isLegal(model));
}

PROPERTY_TIMES(Improve, LegalModelsAreNotMadeLegal, 2)
{
    refine::Model model = drawLegal();
    const refine::Result result = refine::improve(model, drawRun(), {});
    RC_ASSERT(result.legalized == 0);
    RC_ASSERT(result.homeless.empty());
}

PROPERTY_TIMES(Improve, ObjectiveNeverBecomesWorseThanThatOfTheLegalStart, 5)
{
    refine::Model model = test::scattered({.sites = 12, .cells = 16, .wideFixed = true});
    refine::Options options = drawRun();
    options.displacementPrice = 0;
    refine::Model start = model;
    refine::legalize(start);
    refine::improve(model, options, {});
    const test::Objective objective(model, options);
    RC_ASSERT(objective.of(model) <= objective.of(start));
}

PROPERTY_TIMES(Improve, NoCellGoesFartherThanTheLargestDisplacement, 5)
{
    refine::Model model = drawLegal();
    refine::Options options = drawRun();
    options.maxDisplacement = test::draw(0, 30);
    const test::Starts starts(model);
    const std::vector<int64_t> most = test::mostDisplacements(model, starts, options.maxDisplacement);
    refine::improve(model, options, {});
    RC_ASSERT(test::isNear(model, starts, most));
}

PROPERTY_TIMES(Improve, ResultTellsWireAndStitchesBeforeAndAfter, 3)
{
    refine::Model model = drawLegal();
    const int64_t wirelength = test::Objective(model, {}).of(model) / refine::Options::PRICE_PARTS;
    const int64_t stitches = test::stitchesOf(model);
    const refine::Result result = refine::improve(model, drawRun(), {});
    RC_ASSERT(result.wirelengthBefore == wirelength);
    RC_ASSERT(result.stitchesBefore == stitches);
    RC_ASSERT(result.wirelengthAfter == refine::wirelength(model));
    RC_ASSERT(result.stitchesAfter == test::stitchesOf(model));
    RC_ASSERT_FALSE(result.stopped);
}

PROPERTY_TIMES(Improve, SameModelsGiveTheSame, 3)
{
    refine::Model model = drawLegal();
    refine::Model other = model;
    const refine::Options options = drawRun();
    refine::improve(model, options, {});
    refine::improve(other, options, {});
    RC_ASSERT(areEqual(model.cells, other.cells));
}

PROPERTY(Improve, NoEffortChangesNothing)
{
    refine::Model model = test::scattered({.sites = 12, .cells = 16, .wideFixed = true});
    const std::vector<refine::Cell> before = model.cells;
    refine::Options options = drawRun();
    options.effort = 0;
    const refine::Result result = refine::improve(model, options, {});
    RC_ASSERT(areEqual(model.cells, before));
    RC_ASSERT(result.passes.empty());
    RC_ASSERT(result.wirelengthAfter == result.wirelengthBefore);
    RC_ASSERT(result.stitchesAfter == result.stitchesBefore);
}

TEST(Improve, ModelsWithoutAnythingAreLeftAlone)
{
    for (const bool hasRows : {false, true}) {
        refine::Model model;
        model.kinds.emplace_back();
        model.nets.emplace_back();
        if (hasRows) {
            model.rows.emplace_back();
            model.runs.push_back({0, 0, 5, 0});
        }
        const refine::Result result = refine::improve(model, {}, {});
        EXPECT_EQ(result.wirelengthAfter, 0);
        EXPECT_FALSE(result.stopped);
    }
}

TEST(Improve, MuchIsGainedWhereMuchIsToGain)
{
    refine::Model model = scatteredNets(10, 30);
    const refine::Result result = refine::improve(model, {.stitchPrice = 2}, {});
    EXPECT_LT(result.wirelengthAfter, result.wirelengthBefore * 3 / 4);
    EXPECT_LE(result.stitchesAfter, result.stitchesBefore);
    EXPECT_TRUE(test::isLegal(model));
    ASSERT_FALSE(result.passes.empty());
    const refine::Pass& first = result.passes.front();
    for (const refine::Move move :
         {refine::Move::ROW, refine::Move::REORDER, refine::Move::INSERT, refine::Move::SWAP}) {
        const refine::MoveFigures& figures = first.moves[static_cast<size_t>(move)];
        EXPECT_GT(figures.taken, 0);
        EXPECT_GE(figures.tried, figures.taken);
        EXPECT_GT(figures.gain, 0);
    }
}

TEST(Improve, ResultIsTheSameForAnyNumberOfThreads)
{
    for (const int32_t effort : {2, 6}) {
        refine::Model one = scatteredNets(10, 40);
        refine::improve(one, {.effort = effort, .jobs = 1}, {});
        for (const int32_t jobs : {2, 3, 8}) {
            refine::Model other = scatteredNets(10, 40);
            refine::improve(other, {.effort = effort, .jobs = jobs}, {});
            EXPECT_TRUE(areEqual(one.cells, other.cells)) << jobs << " threads, effort " << effort;
        }
    }
}

PROPERTY(Improve, SmallModelsAreTheSameForAnyNumberOfThreads)
{
    refine::Model model = drawLegal();
    refine::Model other = model;
    refine::Options options = drawRun();
    refine::improve(model, options, {});
    options.jobs = test::drawOne({2, 3, 8});
    refine::improve(other, options, {});
    RC_ASSERT(areEqual(model.cells, other.cells));
}

TEST(Improve, HookEndsTheRunWithTheBestPlacementSoFar)
{
    refine::Model model = scatteredNets(30, 100);
    const refine::Model before = model;
    int32_t calls = 0;
    int64_t told = 0;
    const refine::Options options{.effort = 9, .stitchPrice = 2, .displacementPrice = 4};
    const refine::Hooks hooks{[&](int32_t pass, double share, int64_t wirelength) {
        EXPECT_GE(pass, 0);
        EXPECT_GE(share, 0.0);
        EXPECT_LE(share, 1.0);
        told = wirelength;
        return ++calls < 3;
    }};
    const refine::Result result = refine::improve(model, options, hooks);
    EXPECT_TRUE(result.stopped);
    EXPECT_EQ(calls, 3);
    EXPECT_GT(told, 0);
    EXPECT_TRUE(test::isLegal(model));
    EXPECT_EQ(result.wirelengthAfter, refine::wirelength(model));
    const test::Objective objective(before, options);
    EXPECT_LE(objective.of(model), objective.of(before));
}

TEST(Improve, HookIsToldOfAnEndOfItsOwnAccord)
{
    refine::Model model = scatteredNets(10, 30);
    const refine::Result result =
        refine::improve(model, {.effort = 1}, {[](int32_t, double, int64_t) { return true; }});
    EXPECT_FALSE(result.stopped);
}
