// SPDX-License-Identifier: BSD-3-Clause
// The model that shorter wires are searched in, and the way back.
#include "kit/engines/refine/model.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

#include "kit/base/fault.h"
#include "kit/design/standing.h"
#include "kit/engines/refine/refineCase.h"
#include "kit/formats/placer/reader.h"

namespace {

using kit::design::Scale;
using kit::design::Standing;
using kit::design::Stencil;
using kit::refine::Built;
using kit::refine::Demands;
using kit::refine::Inputs;
using kit::refine::Placed;
using refine::Cell;
using refine::Model;
using refine::State;
using test::runKit;
using test::Words;
using KitRefineModel = test::RefineCase;

State& stateOf(Model& model, const Cell& cell)
{
    return model.states.at(
        static_cast<size_t>(model.kinds.at(static_cast<size_t>(cell.kind)).stateBegin + cell.state));
}

/// The design of the examples, imported and placed.
class KitRefineGcd : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        s_dir = new test::TempDir;
        const std::string raw = VIRELOCE_KIT_EXAMPLES "/raw/";
        EXPECT_EQ(runKit({"import", "--lef", raw + "Nangate45_stdcell.lef", "--def",
                          raw + "gcd_nangate45.def", "-o", s_dir->path("d")})
                      .status,
                  0);
        EXPECT_EQ(runKit({"place", s_dir->path("d"), "--cell-path", lib(), "-o", base(), "--rescue",
                          "--true-orientation"})
                      .status,
                  0);
    }
    static void TearDownTestSuite()
    {
        delete s_dir;
        s_dir = nullptr;
    }

    static std::string base() { return s_dir->path("o"); }
    static std::string lib() { return VIRELOCE_KIT_EXAMPLES "/nangate45_color"; }

    static inline test::TempDir* s_dir = nullptr;

    const Inputs m_inputs = kit::refine::readInputs({.base = base(), .cellDir = lib()});
};

TEST_F(KitRefineGcd, WirelengthIsThatFromPinToPin)
{
    const Built built = kit::refine::buildModel(m_inputs, {});
    EXPECT_EQ(refine::faultOf(built.model), "");
    ASSERT_TRUE(m_inputs.placed.pinLength);
    EXPECT_EQ(refine::wirelength(built.model), *m_inputs.placed.pinLength);
    EXPECT_TRUE(built.strays.empty());
}

TEST_F(KitRefineGcd, CleanPlacementBreaksNothing)
{
    EXPECT_EQ(refine::violationsOf(kit::refine::buildModel(m_inputs, {}).model).sum(), 0);
}

/// The placement of a model as files would have it.
kit::placer::Design designOf(const Inputs& inputs, const std::vector<Placed>& placed)
{
    kit::placer::Design design = inputs.placed.design;
    const kit::design::TrueOrients orients(design.rows, *inputs.map);
    for (size_t i = 0; i < placed.size(); ++i) {
        kit::placer::Component& comp = design.components[i];
        comp.x = placed[i].x;
        comp.y = placed[i].y;
        comp.orient = placed[i].mirrored ? "FN" : "N";
        comp.orient = std::string(nameOf(orients.of(comp).value()));
    }
    return design;
}

TEST_F(KitRefineGcd, WherePinsGoTheWayBackFollows)
{
    Built built = kit::refine::buildModel(m_inputs, {});
    Model model = built.model;
    std::mt19937 random(5);
    const auto below = [&random](size_t count) { return static_cast<int32_t>(random() % count); };
    int32_t mirrored = 0;
    for (Cell& cell : model.cells) {
        const refine::Run& run = model.runs.at(static_cast<size_t>(below(model.runs.size())));
        cell.row = run.row;
        cell.x = run.x + below(static_cast<size_t>(run.sites)) * model.step;
        cell.state = below(static_cast<size_t>(model.stateCount(cell.kind)));
        mirrored += stateOf(model, cell).mirrored ? 1 : 0;
    }
    EXPECT_GT(mirrored, 100);
    EXPECT_LT(mirrored, 400);
    const kit::placer::Design design = designOf(m_inputs, kit::refine::placedOf(built, model));
    EXPECT_EQ(kit::design::pinLength(*m_inputs.offsets, design), refine::wirelength(model));
}

TEST_F(KitRefineGcd, WhatDoesNotMoveComesBackAsItWas)
{
    const Built built = kit::refine::buildModel(m_inputs, {});
    const std::vector<Placed> placed = kit::refine::placedOf(built, built.model);
    ASSERT_EQ(placed.size(), m_inputs.placed.design.components.size());
    for (size_t i = 0; i < placed.size(); ++i) {
        EXPECT_EQ(placed[i].x, m_inputs.placed.design.components[i].x);
        EXPECT_EQ(placed[i].y, m_inputs.placed.design.components[i].y);
        // Colors may change for those of fewer stitches alone.
        const auto& solutions =
            m_inputs.placed.design.cellOf(m_inputs.placed.design.components[i])->solutions;
        const auto stitches = [&](int32_t solution) {
            return solutions.at(static_cast<size_t>(solution)).stitches;
        };
        const int32_t before = m_inputs.placed.colors[i].solution;
        EXPECT_TRUE(placed[i].solution == before || stitches(placed[i].solution) < stitches(before));
    }
}

/// Pairs of states, by the judge's own gauge. A row is an argument: its cells may lie upside down.
class GapCheck {
public:
    GapCheck(const Inputs& inputs, const Built& built)
        : m_design(inputs.placed.design), m_model(built.model), m_scale{m_design.rows.front().step},
          m_gauge(m_scale.ofLibrary(185))
    {
    }

    /// Compares two components of the design in some states, side by side in a row.
    void compare(size_t left, const State& leftState, size_t right, const State& rightState, bool turned)
    {
        const Stencil first = stencilOf(left, leftState, turned);
        const Stencil second = stencilOf(right, rightState, turned);
        const int32_t gap =
            m_model.gaps.at(static_cast<size_t>(leftState.right) * static_cast<size_t>(m_model.views) +
                            static_cast<size_t>(rightState.left)) /
            2;
        const int32_t width = m_model.kinds.at(static_cast<size_t>(m_model.cells[left].kind)).width / 2;
        const auto isClose = [&](int32_t apart) {
            const Standing one{.stencil = &first, .masks = masksOf(left, leftState)};
            const Standing other{
                .stencil = &second, .masks = masksOf(right, rightState), .x = Scale::ofDbu(width + apart)};
            return m_gauge.measure(one, other).metal.shapePairs > 0;
        };
        EXPECT_GE(gap, 0);
        EXPECT_FALSE(isClose(gap));
        EXPECT_FALSE(isClose(gap + 50));
        EXPECT_TRUE(gap == 0 || isClose(gap - 1)) << gap;
        m_positive += gap > 0 ? 1 : 0;
    }

    int32_t positive() const { return m_positive; }

private:
    Stencil stencilOf(size_t component, const State& state, bool turned) const
    {
        const kit::placer::Component& comp = m_design.components[component];
        const Cell& cell = m_model.cells[component];
        const bool against =
            kit::design::turnOf(comp.orient).mirrorY != m_model.rows.at(static_cast<size_t>(cell.row)).turned;
        return kit::design::stencilOf(*m_design.cellOf(comp),
                                      {.mirrorX = state.mirrored, .mirrorY = against != turned}, m_scale);
    }

    std::span<const int32_t> masksOf(size_t component, const State& state) const
    {
        const kit::placer::Cell& cell = *m_design.cellOf(m_design.components[component]);
        return cell.solutions.at(static_cast<size_t>(state.solution)).masks;
    }

    const kit::placer::Design& m_design;
    const Model& m_model;
    Scale m_scale;
    kit::design::MetalGauge m_gauge;
    int32_t m_positive = 0;
};

TEST_F(KitRefineGcd, GapsAreTheLeastThatTheJudgeLetsPass)
{
    const Built built = kit::refine::buildModel(m_inputs, {});
    const Model& model = built.model;
    GapCheck check(m_inputs, built);
    std::mt19937 random(7);
    for (int i = 0; i < 5000; ++i) {
        const size_t pair[] = {random() % built.placed.size(), random() % built.placed.size()};
        const State* states[2];
        for (int k = 0; k < 2; ++k) {
            const int32_t kind = model.cells[pair[k]].kind;
            const auto state = static_cast<int32_t>(random() % static_cast<size_t>(model.stateCount(kind)));
            states[k] = &model.states.at(
                static_cast<size_t>(model.kinds[static_cast<size_t>(kind)].stateBegin + state));
        }
        check.compare(pair[0], *states[0], pair[1], *states[1], random() % 2 == 0);
    }
    EXPECT_GT(check.positive(), 500);
}

TEST_F(KitRefineGcd, SidesThatNeedTheSameAreOneView)
{
    const Model model = kit::refine::buildModel(m_inputs, {}).model;
    const auto views = static_cast<size_t>(model.views);
    std::set<std::vector<int32_t>> rows;
    for (size_t i = 0; i < views; ++i) {
        const auto row = model.gaps.begin() + static_cast<ptrdiff_t>(i * views);
        rows.emplace(row, row + static_cast<ptrdiff_t>(views));
    }
    EXPECT_EQ(rows.size(), views);
    std::set<int32_t> used;
    for (size_t kind = 0; kind + 1 < model.kinds.size(); ++kind) {
        std::set<std::tuple<bool, int32_t, int32_t>> states;
        for (int32_t s = model.kinds[kind].stateBegin; s < model.kinds[kind + 1].stateBegin; ++s) {
            const State& state = model.states[static_cast<size_t>(s)];
            EXPECT_TRUE(states.emplace(state.mirrored, state.left, state.right).second);
            used.insert({state.left, state.right});
        }
    }
    EXPECT_EQ(used.size(), views);
}

TEST_F(KitRefineModel, CellsAreMirroredOnlyIfTheLibraryLetsThem)
{
    color({{0, {1, 2}}});
    import({"u BARS + PLACED ( 0 0 ) N", "v BARS + PLACED ( 760 0 ) FN"});
    choose({0, 0});
    Built built = build();
    EXPECT_EQ(built.model.cells[0].kind, built.model.cells[1].kind);
    EXPECT_EQ(built.model.stateCount(0), 2);
    EXPECT_TRUE(stateOf(built.model, built.model.cells[1]).mirrored);
    m_dir.write("d.map", test::replaced(test::contentOf(m_dir.path("d.map")), "MIRRORABLE 1\nBARS\n",
                                        "MIRRORABLE 0\n"));
    built = build();
    EXPECT_NE(built.model.cells[0].kind, built.model.cells[1].kind);
    EXPECT_EQ(built.model.stateCount(0), 1);
    EXPECT_TRUE(stateOf(built.model, built.model.cells[1]).mirrored);
}

TEST_F(KitRefineModel, OfStatesThatNeighboursTakeForOneTheOneOfFewestStitchesStays)
{
    color({{1, {1, 2}}, {0, {1, 2}}, {0, {1, 2}}, {0, {0, 2}}});
    import({"u BARS + PLACED ( 0 0 ) N", "v BARS + PLACED ( 760 0 ) N"});
    choose({0, 2});
    Built built = build();
    EXPECT_EQ(built.model.stateCount(0), 4) << "two solutions, mirrored or not";
    EXPECT_EQ(stateOf(built.model, built.model.cells[0]).solution, 1);
    EXPECT_EQ(stateOf(built.model, built.model.cells[1]).solution, 1);
    const std::vector<Placed> placed = kit::refine::placedOf(built, built.model);
    EXPECT_EQ(placed[0].solution, 1);
    EXPECT_EQ(placed[1].solution, 2) << "it has as few stitches";
}

TEST_F(KitRefineModel, RailsOnMaskZeroAskForNothing)
{
    color({{0, {1, 2}}});
    import({"u BARS + PLACED ( 0 0 ) N", "v BARS + PLACED ( 760 0 ) N"});
    choose({0, 0});
    const Model model = build().model;
    for (const int32_t gap : model.gaps) {
        EXPECT_TRUE(gap == 0 || gap == 2 * (185 - 60 - 60) || gap == 2 * (185 - 40 - 40)) << gap;
    }
    EXPECT_GT(*std::ranges::max_element(model.gaps), 0);
}

TEST_F(KitRefineModel, WhatStaysIsFixedAndItsMetalCounts)
{
    color({{0, {0, 1}}}, {{0, {1}}});
    for (const auto& [y, orient] : {std::pair{"0", "N"}, {"1400", "FS"}}) {
        const std::string at = std::string(" ") + y + " ) " + orient;
        import({"u BARS + PLACED ( 0" + at, "t TAP + FIXED ( 760" + at});
        m_dir.write("d.fixed", test::replaced(test::contentOf(m_dir.path("d.fixed")), " -1 t", " 0 t"));
        choose({0});
        Built built = build();
        ASSERT_EQ(built.model.cells.size(), 2U);
        const Cell& tap = built.model.cells[1];
        EXPECT_TRUE(tap.fixed);
        EXPECT_EQ(tap.x, 2 * 760);
        EXPECT_EQ(built.model.kinds[static_cast<size_t>(tap.kind)].width, 2 * 190);
        EXPECT_EQ(built.model.runs.size(), 3U) << "its row is cut";
        // The right bar is high, that of TAP low: 200 apart. Mirrored, it is the low one, on mask 0.
        std::map<bool, int32_t> gaps;
        for (int32_t s = 0; s < built.model.stateCount(0); ++s) {
            const State& state = built.model.states[static_cast<size_t>(s)];
            gaps[state.mirrored] = built.model.gaps[static_cast<size_t>(state.right * built.model.views +
                                                                        stateOf(built.model, tap).left)];
        }
        EXPECT_LE(gaps[false], 0);
        EXPECT_LE(gaps[true], 0);
    }
}

TEST_F(KitRefineModel, MetalOfFixedCellsKeepsItsDistanceInTurnedRowsToo)
{
    color({{0, {1, 0}}}, {{0, {1}}}); // the low bar, on the left, is on the mask of TAP
    for (const auto& [y, orient] : {std::pair{"0", "N"}, {"1400", "FS"}}) {
        const std::string at = std::string(" ") + y + " ) " + orient;
        import({"t TAP + FIXED ( 0" + at, "u BARS + PLACED ( 760" + at});
        m_dir.write("d.fixed", test::replaced(test::contentOf(m_dir.path("d.fixed")), " -1 t", " 0 t"));
        choose({0});
        Built built = build();
        const State tap = stateOf(built.model, built.model.cells[1]);
        for (int32_t s = 0; s < built.model.stateCount(0); ++s) {
            const State& state = built.model.states[static_cast<size_t>(s)];
            const int32_t gap =
                built.model.gaps[static_cast<size_t>(tap.right * built.model.views + state.left)];
            EXPECT_EQ(gap > 0, !state.mirrored) << orient;
            EXPECT_EQ(state.mirrored ? 2 * (185 - 40 - 40) : gap, 2 * (185 - 40 - 40)) << orient;
        }
    }
}

TEST_F(KitRefineModel, WhereRowsMeetSolutionsOfTheSecondKindComeBack)
{
    color({{0, {1, 2}}, {0, {0, 2}}, {0, {2, 1}}, {0, {0, 1}}});
    import({"u BARS + PLACED ( 0 0 ) N", "v BARS + PLACED ( 760 1400 ) FS"});
    choose({1, 3});
    const Built built = build({.rowsMeet = true});
    EXPECT_EQ(built.model.stateCount(0), 4) << "two solutions, mirrored or not";
    Model model = built.model;
    EXPECT_EQ(stateOf(model, model.cells[0]).solution, 1);
    EXPECT_EQ(stateOf(model, model.cells[1]).solution, 1);
    std::swap(model.cells[0].row, model.cells[1].row);
    const std::vector<Placed> placed = kit::refine::placedOf(built, model);
    EXPECT_EQ(placed[0].solution, 3);
    EXPECT_EQ(placed[1].solution, 1);
    choose({1, 1});
    EXPECT_THROW(build({.rowsMeet = true}), kit::Fault) << "v has a solution of the first kind";
}

TEST_F(KitRefineModel, CellsWithoutColorsStay)
{
    color({{0, {1, 2}}});
    import({"u BARS + PLACED ( 0 0 ) N", "v BARS + PLACED ( 760 0 ) N", "w BARS + PLACED ( 1520 0 ) N"},
           {"n ( u A ) ( v A ) ( w A )"});
    placeAt({{"760 0", "770 0"}, {"1520 0", "1530 300"}});
    choose({0, 0, -1});
    const Built built = build();
    EXPECT_EQ(built.strays, (std::vector<int32_t>{2}));
    EXPECT_FALSE(built.model.cells[0].fixed);
    EXPECT_FALSE(built.model.cells[1].fixed) << "it may be put on a site";
    EXPECT_EQ(built.model.cells[1].x, 2 * 770);
    EXPECT_TRUE(built.model.cells[2].fixed);
    EXPECT_EQ(built.model.pins.size(), 2U) << "that of the other is a point";
    EXPECT_EQ(refine::wirelength(built.model), *inputs().placed.pinLength);
}

TEST_F(KitRefineModel, CellsInNoRowGetTheNearestOne)
{
    color({{0, {1, 2}}});
    import({"u BARS + PLACED ( 0 0 ) N", "v BARS + PLACED ( 190 0 ) N", "w BARS + PLACED ( 380 0 ) N",
            "x BARS + PLACED ( 570 0 ) FN"});
    placeAt(
        {{"0 0", "0 -9000"}, {"190 0", "190 700"}, {"380 0", "400000000 701"}, {"570 0", "570 2147000000"}});
    choose({0, 0, 0, 0});
    Built built = build();
    const Model& model = built.model;
    EXPECT_EQ(refine::faultOf(model), "");
    EXPECT_EQ(model.rows.size(), 2U);
    const int32_t rows[] = {0, 0, 1, 1};
    const int32_t starts[] = {-2 * 9000, 2 * 700, 2 * 701, refine::FARTHEST};
    for (size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(model.cells[i].row, rows[i]);
        EXPECT_EQ(model.startX.at(i), model.cells[i].x);
        EXPECT_EQ(model.startY.at(i), starts[i]);
        EXPECT_EQ(model.cells[i].kind, model.cells[0].kind) << "they lie as their rows do";
    }
    EXPECT_EQ(model.cells[2].x, refine::FARTHEST) << "as near as it can be";
    EXPECT_TRUE(stateOf(built.model, built.model.cells[3]).mirrored);
    const std::vector<Placed> placed = kit::refine::placedOf(built, built.model);
    EXPECT_EQ(placed[2].x, 400000000) << "what is not moved comes back as it was";
    EXPECT_EQ(placed[2].y, 701);
}

TEST_F(KitRefineModel, CellsInRowsWithOtherSitesStay)
{
    color({{0, {1, 2}}});
    import({"u BARS + PLACED ( 0 0 ) N", "v BARS + PLACED ( 380 1400 ) N", "w BARS + PLACED ( 190 1400 ) N"});
    choose({0, 0, 0});
    std::string place = test::contentOf(base() + ".place");
    place = test::replaced(place, "ROW r1 core 0 1400 FS DO 12 BY 1 STEP 190",
                           "ROW r1 core 0 1400 N DO 6 BY 1 STEP 380");
    m_dir.write("d.place", place);
    const Built built = build();
    EXPECT_EQ(built.strays, (std::vector<int32_t>{1}));
    EXPECT_TRUE(built.model.cells[1].fixed);
    EXPECT_FALSE(built.model.cells[2].fixed) << "it is on none of them";
}

TEST_F(KitRefineModel, NetsOfOnePinAreLeftOutAndOthersHaveTheirWeights)
{
    color({{0, {1, 2}}});
    import({"u BARS + PLACED ( 0 0 ) N", "v BARS + PLACED ( 760 0 ) N"},
           {"a ( u A )", "b ( u A ) ( v A )", "c ( u Z ) ( v Z )"});
    choose({0, 0});
    const size_t nets = kit::refine::netCountOf(inputs());
    Demands demands;
    demands.weights.assign(nets, 1);
    demands.weights.back() = 7;
    const Model model = build(demands).model;
    ASSERT_EQ(model.nets.size(), 3U);
    EXPECT_EQ(model.nets[0].weight, 1);
    EXPECT_EQ(model.nets[1].weight, 7);
    EXPECT_EQ(refine::wirelength(model), 2 * 8 * 760);
}

/// The runs of a model, x and sites in DBU and row by row.
std::vector<std::vector<int32_t>> runsOf(const Model& model)
{
    std::vector<std::vector<int32_t>> runs;
    for (const refine::Run& run : model.runs) {
        runs.push_back({run.row, run.x / 2, run.sites});
    }
    return runs;
}

TEST_F(KitRefineModel, RunsAreFreeSitesOfRowsSideBySide)
{
    color({{0, {1, 2}}});
    import({"u BARS + PLACED ( 0 0 ) N"});
    choose({0});
    const std::string rows = "ROW r0 core 0 0 N DO 4 BY 1 STEP 190 0 ;\n"
                             "ROW r1 core 665 0 N DO 4 BY 1 STEP 190 0 ;\n"
                             "ROW r2 core 1900 0 N DO 1 BY 1 STEP 190 0 ;\n"
                             "ROW r3 core 0 1400 FS DO 6 BY 1 STEP 190 0 ;\n"
                             "ROW r4 core 1900 1400 N DO 6 BY 1 STEP 190 0 ;\n"
                             "ROW r5 core 0 2800 N DO 6 BY 1 STEP 380 0 ;\n";
    std::string place = test::contentOf(base() + ".place");
    const size_t first = place.find("ROW ");
    place.replace(first, place.find("COMPONENTS") - first, rows);
    m_dir.write("d.place", place);
    const Model model = build().model;
    const std::vector<std::vector<int32_t>> expected{
        {0, 0, 4},
        {0, 855, 3}, // r1 begins inside of r0, on other sites
        {0, 1900, 1},
        {1, 0, 6}}; // r4 is not turned as r3 is, and r5 has other sites
    EXPECT_EQ(runsOf(model), expected);
    EXPECT_EQ(refine::faultOf(model), "");
}

TEST_F(KitRefineModel, ColorsOfOtherCellsAreAFault)
{
    color({{0, {1, 2}}});
    import({"u BARS + PLACED ( 0 0 ) N"});
    choose({0});
    m_dir.write("d.colors", test::replaced(test::contentOf(base() + ".colors"), "u BARS", "u TAP"));
    EXPECT_THROW(build(), kit::Fault);
}

TEST(KitRefineGenerated, WithoutOffsetsWirelengthIsThatOfThePlacer)
{
    const test::GeneratedDesign design({"--macros", "4"});
    runKit({"place", design.base(), "--cell-path", design.lib(), "-o", design.path("o"), "--rescue"});
    const kit::Json json = kit::Json::parse(test::contentOf(design.path("o.json")));
    const kit::Json& rescued = json.atPointer("/rescue/placement/hpwl");
    const Built built = kit::refine::buildModel(
        kit::refine::readInputs({.base = design.path("o"), .cellDir = design.lib()}), {});
    EXPECT_EQ(refine::faultOf(built.model), "");
    EXPECT_EQ(refine::wirelength(built.model), 2 * rescued.asInteger());
}

} // namespace
