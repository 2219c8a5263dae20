// SPDX-License-Identifier: BSD-3-Clause
// Cells beside metal that stays where it is.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>

#include "kit/base/files/writeOutput.h"
#include "kit/base/text/json.h"
#include "kit/design/fixedCells.h"
#include "kit/design/standing.h"
#include "kit/engines/place/clearance.h"
#include "kit/engines/place/fixedSolutions.h"
#include "kit/engines/place/schema.h"
#include "kit/formats/placer/writer.h"
#include "kit/kitRun.h"
#include "support/guards.h"

namespace {

using kit::Json;
using kit::placer::ColorRecord;
using kit::placer::Rect;
using test::contentOf;
using test::KitOutcome;
using test::runKit;
using test::Words;

/// A site of 190 DBU, which are library units. BARS is two sites wide and has a bar near either edge, TAP one
/// with a bar in the middle; the metal of RAM reaches its edges.
const std::string LEF = R"(UNITS DATABASE MICRONS 1000 ; END UNITS
SITE core CLASS CORE ; SIZE 0.19 BY 1.4 ; END core
MACRO BARS CLASS CORE ; SIZE 0.38 BY 1.4 ; SITE core ;
  PIN A PORT LAYER metal1 ; RECT 0.04 0.4 0.1 1.0 ; END END A
  PIN Z PORT LAYER metal1 ; RECT 0.26 0.4 0.32 1.0 ; END END Z
END BARS
MACRO TAP CLASS CORE WELLTAP ; SIZE 0.19 BY 1.4 ; OBS LAYER metal1 ; RECT 0.04 0.4 0.15 1.0 ; END END TAP
MACRO RAM CLASS BLOCK ; SIZE 0.57 BY 2.8 ; OBS LAYER metal1 ; RECT 0 0.3 0.57 2.5 ; END END RAM
END LIBRARY
)";

kit::placer::Cell cellOf(int32_t width, const std::vector<Rect>& bars,
                         const std::vector<std::vector<int32_t>>& masks)
{
    kit::placer::Cell cell;
    cell.width = width;
    cell.height = 1400;
    cell.shapes.push_back({.rects = {{0, 0, width, 80}}});
    cell.shapes.push_back({.rects = {{0, 1320, width, 1400}}});
    for (const Rect& bar : bars) {
        cell.shapes.push_back({.rects = {bar}});
    }
    for (std::vector<int32_t> of : masks) {
        of.insert(of.begin(), {0, 0});
        cell.solutions.push_back({.masks = std::move(of)});
    }
    return cell;
}

const std::vector<Rect> BARS{{40, 400, 100, 1000}, {260, 400, 320, 1000}};
const std::vector<Rect> TAP{{40, 400, 150, 1000}};

/// A small design of two rows that is imported and placed.
class KitPlaceFixed : public testing::Test {
protected:
    /// Masks of the bars of each cell, by solution.
    void color(const std::vector<std::vector<int32_t>>& bars, const std::vector<std::vector<int32_t>>& tap)
    {
        write("BARS", cellOf(380, BARS, bars));
        write("TAP", cellOf(190, TAP, tap));
    }

    void write(const std::string& name, const kit::placer::Cell& cell)
    {
        test::writeOutput(lib() + "/" + name + ".color",
                          [&](kit::OutputFile& out) { kit::placer::writeColorFile(out, cell); });
    }

    void import(const Words& records, int32_t sites = 12)
    {
        std::string def = "VERSION 5.8 ;\nDESIGN d ;\nUNITS DISTANCE MICRONS 1000 ;\n";
        for (const std::string row : {"r0 core 0 0 N", "r1 core 0 1400 FS"}) {
            def += "ROW " + row + " DO " + std::to_string(sites) + " BY 1 STEP 190 0 ;\n";
        }
        def += "COMPONENTS " + std::to_string(records.size()) + " ;\n";
        for (const std::string& record : records) {
            def += "- " + record + " ;\n";
        }
        def += "END COMPONENTS\nEND DESIGN\n";
        const KitOutcome outcome = runKit({"import", "--lef", m_dir.write("l.lef", LEF), "--def",
                                           m_dir.write("d.def", def), "-o", base(), "--force"});
        ASSERT_EQ(outcome.status, 0) << outcome.error;
    }

    KitOutcome place(const Words& more = {}) const
    {
        Words words{"place", base(), "--cell-path", lib(), "-o", out(), "--force"};
        words.insert(words.end(), more.begin(), more.end());
        return runKit(words);
    }

    Json verified() const
    {
        return Json::parse(runKit({"verify", out() + ".place", "--colors", out() + ".colors", "--cell-path",
                                   lib(), "--json"})
                               .output);
    }

    Json result() const
    {
        const Json json = Json::parse(contentOf(out() + ".json"));
        EXPECT_EQ(test::faultsOf(json, test::placeSchema()), Words{});
        return json;
    }

    std::vector<int32_t> solutions() const
    {
        kit::Findings findings;
        std::vector<int32_t> all;
        for (const auto& cell : kit::design::readFixed(out() + ".fixed", findings).cells) {
            all.push_back(cell.solution);
        }
        return all;
    }

    void SetUp() override { std::filesystem::create_directory(lib()); }

    std::string lib() const { return m_dir.path("lib"); }
    std::string base() const { return m_dir.path("d"); }
    std::string out() const { return m_dir.path("out"); }

    test::TempDir m_dir;
};

TEST_F(KitPlaceFixed, FixedCellGetsTheSolutionThatItsNeighboursLeaveIt)
{
    color({{2, 1}}, {{1}, {2}, {0}});
    import({"u0 BARS + PLACED ( 0 0 ) N", "t TAP + FIXED ( 380 0 ) N", "u1 BARS + PLACED ( 570 0 ) N"});
    EXPECT_EQ(place().status, 0);
    EXPECT_EQ(solutions(), (std::vector<int32_t>{2})) << "mask 1 is on its left, 2 on its right";
    EXPECT_EQ(contentOf(out() + ".place"), contentOf(base() + ".place"));
    EXPECT_EQ(result()["fixed"]["cells"], 1);
    EXPECT_EQ(result()["fixed"]["wider_macros"], 0);
    EXPECT_EQ(result()["fixed"]["changed"], 0);
    EXPECT_TRUE(verified()["clean"] == Json(true));
    EXPECT_EQ(verified()["counts"]["no-masks"], 0);
}

TEST_F(KitPlaceFixed, NeighbourGetsAnotherSolutionWhereTheFixedCellHasNone)
{
    color({{2, 1}, {1, 2}}, {{1}});
    import({"u0 BARS + PLACED ( 0 0 ) N", "t TAP + FIXED ( 380 0 ) N"});
    ASSERT_EQ(place().status, 0);
    EXPECT_TRUE(verified()["clean"] == Json(true));
    EXPECT_EQ(contentOf(out() + ".place"), contentOf(base() + ".place"));
}

TEST_F(KitPlaceFixed, BlocksAreWiderForThePlacerWhereEverybodyWouldBeTooClose)
{
    color({{1, 1}}, {{1}});
    import({"u0 BARS + PLACED ( 0 0 ) N", "t TAP + FIXED ( 380 0 ) N", "u1 BARS + PLACED ( 570 0 ) N"}, 14);
    const std::string before = contentOf(base() + ".place");
    EXPECT_EQ(place({"--rescue"}).status, 0);
    EXPECT_EQ(result()["fixed"]["wider_macros"], 1);
    EXPECT_TRUE(verified()["clean"] == Json(true));
    const auto blocksOf = [](const std::string& text) { return text.substr(text.find("BIGNODES")); };
    EXPECT_EQ(blocksOf(contentOf(out() + ".place")), blocksOf(before))
        << "the blocks are those of the design";
}

TEST_F(KitPlaceFixed, FullRowLeavesConflictsThatAreTold)
{
    color({{1, 1}}, {{1}});
    import({"u0 BARS + PLACED ( 0 0 ) N", "t TAP + FIXED ( 380 0 ) N", "u1 BARS + PLACED ( 570 0 ) N"}, 5);
    EXPECT_EQ(place().status, 1);
    EXPECT_EQ(result()["fixed"]["wider_macros"], 0);
    EXPECT_EQ(result()["judge"]["conflicts"], 2);
    EXPECT_EQ(verified()["counts"]["conflict"], 2);
}

TEST_F(KitPlaceFixed, RescueTakesCellsAwayFromAFullRow)
{
    color({{1, 1}}, {{1}});
    import({"u0 BARS + PLACED ( 0 0 ) N", "t TAP + FIXED ( 380 0 ) N", "u1 BARS + PLACED ( 570 0 ) N"}, 5);
    EXPECT_EQ(place({"--rescue"}).status, 0);
    EXPECT_TRUE(verified()["clean"] == Json(true));
    EXPECT_EQ(result()["rescue"]["pairs"], 2);
    EXPECT_EQ(result()["rescue"]["mended_pairs"], 2);
    EXPECT_EQ(result()["rescue"]["moved_neighbours"], 2);
}

TEST_F(KitPlaceFixed, RescueSeesFixedCellsOfRowsThatAreUpsideDown)
{
    write("BARS", cellOf(380, {{40, 200, 100, 500}, {260, 200, 320, 500}}, {{1, 1}}));
    write("TAP", cellOf(190, {{40, 200, 150, 500}}, {{1}}));
    import({"u0 BARS + PLACED ( 0 1400 ) FS", "t TAP + FIXED ( 380 1400 ) FS",
            "u1 BARS + PLACED ( 570 1400 ) FS"},
           5);
    EXPECT_EQ(place({"--rescue"}).status, 0);
    EXPECT_TRUE(verified()["clean"] == Json(true));
    EXPECT_EQ(result()["rescue"]["pairs"], 2) << "one above the other, if only the fixed cell were turned";
    EXPECT_EQ(result()["rescue"]["mended_pairs"], 2);
}

TEST_F(KitPlaceFixed, CellsKeepTheirDistanceFromTheMetalOfBlocks)
{
    color({{1, 2}}, {{1}});
    import({"u0 BARS + PLACED ( 0 0 ) N", "r RAM + FIXED ( 380 0 ) N", "u1 BARS + PLACED ( 950 1400 ) N"});
    EXPECT_EQ(place({"--rescue"}).status, 0);
    EXPECT_EQ(result()["fixed"]["blocks"], 1);
    EXPECT_EQ(result()["fixed"]["wider_macros"], 2) << "one for each row";
    EXPECT_TRUE(verified()["clean"] == Json(true));
}

TEST_F(KitPlaceFixed, DesignWithoutTheFileIsPlacedAsItIs)
{
    color({{1, 1}}, {{1}});
    import({"u0 BARS + PLACED ( 0 0 ) N", "t TAP + FIXED ( 760 0 ) N"});
    EXPECT_EQ(place().status, 0);
    EXPECT_TRUE(std::filesystem::exists(out() + ".fixed"));
    std::filesystem::remove(base() + ".fixed");
    const KitOutcome outcome = place();
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_FALSE(std::filesystem::exists(out() + ".fixed")) << "that of the earlier result";
    EXPECT_FALSE(result().contains("fixed"));
    EXPECT_EQ(contentOf(out() + ".place"), contentOf(base() + ".place"));
    EXPECT_FALSE(verified()["counts"].contains("no-masks"));
}

TEST_F(KitPlaceFixed, DamagedFileIsAFaultOfTheResult)
{
    color({{1, 1}}, {{1}});
    import({"u0 BARS + PLACED ( 0 0 ) N", "t TAP + FIXED ( 760 0 ) N"});
    m_dir.write("d.fixed", "VIRELOCE FIXED 1\nCELLS 2\nTAP 760 0 N -1 t\nBLOCKS 0\nEND\n");
    EXPECT_EQ(place().status, 1);
    EXPECT_EQ(result()["judge"]["errors"], 1);
    EXPECT_EQ(contentOf(out() + ".fixed"), contentOf(base() + ".fixed"));
    EXPECT_FALSE(result().contains("fixed"));
}

TEST_F(KitPlaceFixed, FixedCellsWithoutAColourFileAreNotJudged)
{
    color({{1, 1}}, {{1}});
    std::filesystem::remove(lib() + "/TAP.color");
    import({"u0 BARS + PLACED ( 0 0 ) N", "t TAP + FIXED ( 380 0 ) N"});
    EXPECT_EQ(place().status, 0);
    EXPECT_EQ(solutions(), (std::vector<int32_t>{-1}));
    EXPECT_EQ(verified()["counts"]["no-masks"], 1);
}

TEST_F(KitPlaceFixed, CellThatAWiderBlockHidesIsPutBesideIt)
{
    color({{1, 1}}, {{1}});
    write("NARROW", cellOf(190, {{40, 400, 150, 1000}}, {{1}}));
    std::string lef = LEF;
    lef.insert(lef.find("MACRO TAP"),
               "MACRO NARROW CLASS CORE ; SIZE 0.19 BY 1.4 ; SITE core ;\n  PIN A PORT "
               "LAYER metal1 ; RECT 0.04 0.4 0.15 1.0 ; END END A\nEND NARROW\n");
    m_dir.write("l.lef", lef);
    const std::string def =
        "VERSION 5.8 ;\nDESIGN d ;\nUNITS DISTANCE MICRONS 1000 ;\n"
        "ROW r0 core 0 0 N DO 9 BY 1 STEP 190 0 ;\nROW r1 core 0 1400 FS DO 9 BY 1 STEP "
        "190 0 ;\nCOMPONENTS 3 ;\n- t TAP + FIXED ( 760 0 ) N ;\n- a NARROW + PLACED ( 570 "
        "0 ) N ;\n- b NARROW + PLACED ( 950 0 ) N ;\nEND COMPONENTS\nEND DESIGN\n";
    ASSERT_EQ(
        runKit({"import", "--lef", m_dir.path("l.lef"), "--def", m_dir.write("d.def", def), "-o", base()})
            .status,
        0);
    EXPECT_EQ(place().status, 0);
    EXPECT_EQ(result()["fixed"]["wider_macros"], 1);
    const std::string placed = contentOf(out() + ".place");
    EXPECT_EQ(result()["placement"]["dropped_cells"].size(), 0U);
    const auto xOf = [&placed](const std::string& name) {
        return std::stoi(placed.substr(placed.find(name + " NARROW + PLACED ( ") + 20));
    };
    EXPECT_LE(xOf("a"), 380) << "the stretch on the left ends there";
    EXPECT_GE(xOf("b"), 1140) << "the one on the right begins there";
}

/// Two rows of cells, some of them fixed.
struct RowDesign {
    kit::placer::Design design;
    std::vector<ColorRecord> colors;

    void add(int32_t cell, int32_t x, bool isFixed, int32_t solution)
    {
        auto& list = isFixed ? design.fixed : design.components;
        list.push_back({.name = std::string(isFixed ? "f" : "u") + std::to_string(list.size()),
                        .cellName = std::to_string(cell),
                        .cell = cell,
                        .x = x,
                        .y = 0,
                        .orient = "N"});
        const kit::placer::Cell& type = design.cells[static_cast<size_t>(cell)];
        if (isFixed) {
            design.macros.push_back({"m", x, 0, type.width, 1400, 1});
        } else {
            colors.push_back({list.back().name, list.back().cellName, solution, 0,
                              type.solutions[static_cast<size_t>(solution)].masks, 0});
        }
    }
};

RowDesign emptyRows(std::mt19937& random)
{
    RowDesign rows;
    rows.design.dbuPerMicron = 1000;
    for (int32_t i = 0; i < 2; ++i) {
        rows.design.rows.push_back({"r", "core", 0, i * 1400, "N", 60, 190, 1});
    }
    for (int32_t i = 0; i < 4; ++i) {
        std::vector<std::vector<int32_t>> masks;
        for (uint32_t k = 0; k < 1 + random() % 3; ++k) {
            masks.push_back({static_cast<int32_t>(random() % 3), static_cast<int32_t>(random() % 3)});
        }
        rows.design.cells.push_back(cellOf(380, BARS, masks));
        rows.design.cells.back().name = std::to_string(i);
    }
    return rows;
}

/// Next neighbours in the lower row that are too close, of which one at least is fixed.
int64_t conflictsOf(const kit::placer::Design& design, const std::vector<ColorRecord>& colors,
                    const std::vector<int32_t>& fixed)
{
    std::vector<ColorRecord> fixedColors(fixed.size());
    std::vector<const ColorRecord*> records;
    for (const ColorRecord& record : colors) {
        records.push_back(&record);
    }
    for (size_t i = 0; i < fixed.size(); ++i) {
        fixedColors[i].masks = design.cellOf(design.fixed[i])->solutions[static_cast<size_t>(fixed[i])].masks;
        records.push_back(&fixedColors[i]);
    }
    const kit::design::Scale scale{190};
    const kit::design::Layout layout(design, records, scale);
    kit::design::MetalGauge gauge(scale.ofLibrary(185));
    int64_t conflicts = 0;
    const std::vector<kit::design::Standing>& cells = layout.bands().front().cells;
    for (size_t i = 1; i < cells.size(); ++i) {
        const bool any = design.isFixed(cells[i - 1].component) || design.isFixed(cells[i].component);
        conflicts += any && gauge.measure(cells[i - 1], cells[i]).metal.shapePairs > 0 ? 1 : 0;
    }
    return conflicts;
}

/// The fewest conflicts over all solutions of the fixed cells.
int64_t fewestConflicts(const RowDesign& rows)
{
    std::vector<int32_t> fixed(rows.design.fixed.size());
    int64_t fewest = conflictsOf(rows.design, rows.colors, fixed);
    for (size_t i = 0; i < fixed.size();) {
        const auto solutions =
            static_cast<int32_t>(rows.design.cellOf(rows.design.fixed[i])->solutions.size());
        if (++fixed[i] == solutions) {
            fixed[i++] = 0;
            continue;
        }
        fewest = std::min(fewest, conflictsOf(rows.design, rows.colors, fixed));
        i = 0;
    }
    return fewest;
}

TEST(KitFixedSolutions, AreTheBestOfAllAndComponentsChangeOnlyWhereTheseDoNotDo)
{
    std::mt19937 random(20);
    int64_t clean = 0;
    int64_t helped = 0;
    for (int32_t round = 0; round < 300; ++round) {
        RowDesign rows = emptyRows(random);
        int32_t site = 0;
        while (site < 24) {
            const auto cell = static_cast<int32_t>(random() % 4);
            const auto& all = rows.design.cells[static_cast<size_t>(cell)].solutions;
            rows.add(cell, site * 190, random() % 2 == 0, static_cast<int32_t>(random() % all.size()));
            site += 2 + static_cast<int32_t>(random() % 4 == 0 ? random() % 3 : 0);
        }
        const int64_t fewest = fewestConflicts(rows);
        kit::place::SolutionChooser chooser(rows.design, 185);
        const kit::place::ChosenSolutions chosen = chooser.choose(rows.colors);
        for (const kit::place::ChangedCell& change : chosen.changed) {
            const auto i = static_cast<size_t>(change.component);
            kit::placer::Component& comp = rows.design.components[i];
            comp.x += 190 * change.steps;
            const kit::placer::Cell& type = *rows.design.cellOf(comp);
            rows.colors[i].masks = type.solutions[static_cast<size_t>(change.solution)].masks;
        }
        const int64_t conflicts = conflictsOf(rows.design, rows.colors, chosen.fixed);
        EXPECT_LE(conflicts, fewest) << "round " << round;
        EXPECT_EQ(conflicts == 0 || fewest > 0, true);
        EXPECT_TRUE(fewest > 0 || chosen.changed.empty()) << "round " << round;
        clean += fewest == 0 ? 1 : 0;
        helped += conflicts < fewest ? 1 : 0;
    }
    EXPECT_GT(clean, 20) << "the rows are no test";
    EXPECT_GT(helped, 20) << "the rows are no test";
}

TEST(KitFixedSolutions, CellsThatAreMovedStandInTheirStretchAndOnNothing)
{
    std::mt19937 random(7);
    RowDesign rows = emptyRows(random);
    rows.design.cells[0] = cellOf(380, BARS, {{1, 1}});
    rows.add(0, 0, false, 0);
    rows.add(0, 380, true, 0);
    rows.add(0, 760, false, 0);
    rows.add(0, 1140, false, 0);
    kit::place::SolutionChooser chooser(rows.design, 185);
    const kit::place::ChosenSolutions chosen = chooser.choose(rows.colors);
    // The cell on the left has no room; those on the right make some for each other.
    ASSERT_EQ(chosen.changed.size(), 2U);
    EXPECT_EQ(chosen.changed[0].component, 1);
    EXPECT_EQ(chosen.changed[0].steps, 1);
    EXPECT_EQ(chosen.changed[1].component, 2);
    EXPECT_EQ(chosen.changed[1].steps, 2);
}

TEST(KitWiderMacros, AreThoseBesideWhichMostCellsWouldBeTooClose)
{
    std::mt19937 random(7);
    for (const int32_t good : {0, 1, 2, 3}) {
        RowDesign rows = emptyRows(random);
        rows.design.cells[0] = cellOf(380, BARS, {{1, 1}});
        rows.design.cells[1] = cellOf(380, BARS, {{1, 1}, {2, 2}}); // has a solution that fits
        rows.add(0, 1900, true, 0);
        for (int32_t i = 0; i < 4; ++i) {
            rows.add(i < good ? 1 : 0, 3800 + i * 760, false, 0);
        }
        const auto wider = kit::place::widerMacros(rows.design, 185);
        ASSERT_EQ(wider.size(), good < 2 ? 1U : 0U) << good;
        if (good < 2) {
            EXPECT_EQ(wider[0].x, 1900 - 190);
            EXPECT_EQ(wider[0].width, 380 + 2 * 190);
        }
    }
}

} // namespace
