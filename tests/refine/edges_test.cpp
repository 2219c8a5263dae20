// SPDX-License-Identifier: BSD-3-Clause
// Cells that are in each other's way further away than next neighbours, and other edges of what a model may
// be.
#include "refine/improve.h"

#include <rapidcheck/Log.h>

#include "refine/randomModel.h"

namespace {

/// Cells of kind 0, of 2 sites, keep 2 sites apart from each other; those of kind 1, of one site, none. Net i
/// is that of cell i, and pulls it to an x.
refine::Model modelOf(std::vector<refine::Cell> cells, const std::vector<int32_t>& pulls)
{
    refine::Model model;
    model.views = 2;
    model.gaps = {0, 0, 0, 2};
    model.kinds = {{2, 1, 0, 0}, {1, 1, 1, 1}, {5, 1, 2, 2}, {0, 1, 3, 3}};
    model.states = {{.left = 1, .right = 1}, {}, {}};
    model.kindPins = {{0, 2, 0, 0}, {0, 1, 0, 0}, {0, 5, 0, 0}};
    model.rows.emplace_back();
    model.runs = {{0, 0, 12, 0}};
    model.cells = std::move(cells);
    for (size_t i = 0; i < model.cells.size(); ++i) {
        const auto index = static_cast<int32_t>(i);
        model.pins.push_back({index, 0});
        model.nets.push_back({1, index, pulls[i], 0, pulls[i], 0});
    }
    model.nets.push_back({1, static_cast<int32_t>(model.cells.size())});
    return model;
}

void expectLegalAfter(refine::Model model)
{
    EXPECT_TRUE(test::isLegal(model));
    refine::improve(model, {}, {});
    EXPECT_TRUE(test::isLegal(model)) << test::textOf(model);
}

void assertLegalAfter(const test::Variety& variety)
{
    refine::Model model = test::RandomModel(variety).model;
    RC_LOG() << test::textOf(model);
    refine::improve(model, {}, {});
    RC_LOG() << test::textOf(model);
    RC_ASSERT(test::isLegal(model));
}

} // namespace

PROPERTY_TIMES(Improve, NarrowCellsThatStandCloseStayLegal, 20)
{
    assertLegalAfter({.sites = 12, .cells = 8, .fixed = false});
}

PROPERTY_TIMES(Improve, CellsBesideNarrowFixedOnesStayLegal, 20)
{
    assertLegalAfter({.sites = 12, .cells = 8, .negative = false, .spaced = true});
}

PROPERTY_TIMES(Improve, CellsBesideFixedOnesWithNegativeGapsStayLegal, 20)
{
    assertLegalAfter({.sites = 12, .cells = 8, .narrow = false, .spaced = true});
}

// The two on its sides would be one site apart.
TEST(Improve, CellsOnBothSidesOfANarrowFixedOneStayApart)
{
    refine::Model model =
        modelOf({{.kind = 0, .x = 0}, {.kind = 1, .x = 3, .fixed = true}, {.kind = 0, .x = 5}}, {9, 3, 0});
    model.runs.front().sites = 7;
    expectLegalAfter(model);
}

// Its left neighbour would be the narrow one.
TEST(Improve, CellsStayBesideAFixedOneThatEndsBehindTheNext)
{
    expectLegalAfter(
        modelOf({{.kind = 2, .x = 0, .fixed = true}, {.kind = 1, .x = 1, .fixed = true}, {.kind = 0, .x = 7}},
                {0, 1, 0}));
}

// The cell of the other run would go to the end of the narrow one.
TEST(Improve, CellsStayApartFromThoseBehindANarrowOneOfAnotherRun)
{
    refine::Model model = modelOf({{.kind = 0, .x = 0}, {.kind = 1, .x = 2}, {.kind = 0, .x = 6}}, {0, 2, 0});
    model.runs = {{0, 0, 3, 0}, {0, 3, 9, 0}};
    expectLegalAfter(model);
}

// Both may stand over its edges, but not both at once.
TEST(Improve, CellsThatReachOverAFixedOneStayApart)
{
    refine::Model model =
        modelOf({{.kind = 0, .x = 0}, {.kind = 1, .x = 4, .fixed = true}, {.kind = 0, .x = 8}}, {9, 4, 0});
    model.gaps = {0, -1, -1, 2};
    model.runs.front().sites = 10;
    expectLegalAfter(model);
}

// The least price for 159 units is more than a unit of wire.
TEST(Improve, SmallPricesOfDisplacementCount)
{
    refine::Model model = modelOf({{.kind = 0, .x = 159}}, {0});
    model.step = 159;
    model.kinds.front().width = 159;
    model.runs = {{0, 0, 2, 0}};
    model.nets.front().xh = 158;
    refine::improve(model, {.displacementPrice = 1}, {});
    EXPECT_EQ(model.cells.front().x, 159);
}

TEST(Improve, CellsWithoutSitesStay)
{
    refine::Model model;
    model.views = 1;
    model.gaps = {0};
    model.kinds = {{2, 1, 0, 0}, {0, 1, 1, 1}};
    model.states.emplace_back();
    model.kindPins.emplace_back();
    model.rows.emplace_back();
    model.cells = {{.kind = 0, .row = 0, .x = 4}, {.kind = 0, .row = 0, .x = 9}};
    model.nets = {{1, 0}, {1, 2}};
    model.pins = {{0, 0}, {1, 0}};
    refine::improve(model, {}, {});
    EXPECT_EQ(model.cells[0].x, 4);
    EXPECT_EQ(model.cells[1].x, 9);
}

TEST(Improve, HeavyNetsAreShortened)
{
    refine::Model model = modelOf({{.kind = 0, .x = 0}}, {380 * 60});
    model.step = 380;
    model.kinds.front().width = 380;
    model.runs.front().sites = 64;
    model.nets.front().weight = refine::MOST_WEIGHT;
    refine::improve(model, {}, {});
    EXPECT_EQ(model.cells.front().x, 380 * 60);
}

PROPERTY_TIMES(Improve, OnlyCellsWithoutAPlaceAreNamed, 5)
{
    refine::Model model = test::scattered({.sites = 12, .cells = 16, .wideFixed = true});
    const refine::Result result = refine::improve(model, {}, {});
    RC_LOG() << test::textOf(model);
    RC_ASSERT(result.homeless.empty() || !test::isLegal(model));
}

// The run of its fence is free, but not the nearest.
TEST(Improve, CellsFindPlacesInRunsOfTheirFence)
{
    refine::Model model = modelOf({{.kind = 0, .x = 7, .fence = 1}}, {7});
    model.runs = {{0, 0, 6, 1}, {0, 6, 6, 0}};
    const refine::Result result = refine::improve(model, {}, {});
    EXPECT_TRUE(result.homeless.empty());
    EXPECT_TRUE(test::isLegal(model)) << test::textOf(model);
}
