// SPDX-License-Identifier: BSD-3-Clause
// Layouts, read back literally, and their units.
#include "kit/engines/export/layout.h"

#include <gtest/gtest.h>

#include "kit/engines/export/smallExport.h"
#include "kit/formats/gds/gdsReader.h"
#include "support/property.h"

namespace {

using namespace test;
using kit::exporter::Grid;

/// The rectangles of a structure on a layer: left, bottom, right, top.
std::vector<std::vector<int64_t>> boxesOn(const GdsStructure& structure, int64_t layer)
{
    std::vector<std::vector<int64_t>> boxes;
    for (const GdsShape& shape : structure.shapes) {
        if (shape.layer == layer) {
            const auto& [xl, yl] = shape.points.at(0);
            const auto& [xh, yh] = shape.points.at(2);
            boxes.push_back({xl, yl, xh, yh});
        }
    }
    return boxes;
}

using Boxes = std::vector<std::vector<int64_t>>;

TEST(KitLayout, HasAStructurePerCellSolutionAndOrientation)
{
    SmallExport files("- a INV + PLACED ( 0 0 ) N\n ;\n- b INV + PLACED ( 380 0 ) N\n ;\n"
                      "- c INV + PLACED ( 760 0 ) N\n ;\n- d INV + PLACED ( 0 1400 ) FN\n ;\n",
                      "- a INV ;\n- b INV ;\n- c INV ;\n- d INV ;\n");
    files.colors = "a INV 1 0 0 0 1 2\nb INV 1 0 0 0 1 2\nc INV 0 0 0 0 1 1\nd INV 1 0 0 0 1 2\n";
    EXPECT_EQ(files.run({"--gds", files.path("new.gds")}).error, "");
    const GdsLibrary library = readGds(files.output("new.gds"));
    EXPECT_EQ(library.order, (Words{"INV_S1_N", "INV_S0_N", "INV_S1_S", "small"}));
    EXPECT_EQ(library.structures.at("small").instances,
              (std::vector<GdsInstance>{{"INV_S1_N", {0, 0}, "a"},
                                        {"INV_S1_N", {380, 0}, "b"},
                                        {"INV_S0_N", {760, 0}, "c"},
                                        {"INV_S1_S", {0, 1400}, "d"}}));
    EXPECT_EQ(library.metreUnit, 1e-9);
}

TEST(KitLayout, HasTheMetalOfTheLefFileWhereItIsKnown)
{
    SmallExport files("- a INV + PLACED ( 0 0 ) N\n ;\n- b INV + PLACED ( 0 1400 ) N\n ;\n",
                      "- a INV ;\n- b INV ;\n");
    files.colors = "a INV 1 0 0 0 1 2\nb INV 1 0 0 0 1 2\n";
    files.write("lib/INV.metal", "VIRELOCE METAL 1\nSITE 190000\nSIZE 380000 1401000\nRECTS 4\n"
                                 "0 -85000 380000 85000\n0 1315000 380000 1485000\n"
                                 "21000 300000 90000 900000\n300000 301000 360000 900000\nEND\n");
    EXPECT_EQ(files.run({"--gds", files.path("new.gds")}).error, "");
    const auto structures = readGds(files.output("new.gds")).structures;
    EXPECT_EQ(boxesOn(structures.at("INV_S1_N"), 101), (Boxes{{21, 300, 90, 900}}));
    EXPECT_EQ(boxesOn(structures.at("INV_S1_N"), 102), (Boxes{{300, 301, 360, 900}}));
    EXPECT_EQ(boxesOn(structures.at("INV_S1_FS"), 101), (Boxes{{21, 501, 90, 1101}}));
    EXPECT_EQ(boxesOn(structures.at("INV_S1_FS"), 99), (Boxes{{0, 0, 380, 1401}}));
}

TEST(KitLayout, HasEveryShapeOnItsLayers)
{
    SmallExport files("- a INV + PLACED ( 0 0 ) N\n ;\n", "- a INV ;\n");
    files.colors = "a INV 1 0 0 0 1 2\n";
    files.run({"--gds", files.path("new.gds")});
    const GdsStructure structure = readGds(files.output("new.gds")).structures.at("INV_S1_N");
    const Boxes rails{{0, -85, 380, 85}, {0, 1315, 380, 1485}};
    const Boxes left{{20, 300, 90, 900}};
    const Boxes right{{300, 300, 360, 700}, {300, 700, 360, 900}};
    EXPECT_EQ(boxesOn(structure, 99), (Boxes{{0, 0, 380, 1400}}));
    EXPECT_EQ(boxesOn(structure, 1), (Boxes{rails[0], rails[1], left[0], right[0], right[1]}));
    EXPECT_EQ(boxesOn(structure, 100), rails);
    EXPECT_EQ(boxesOn(structure, 101), left);
    EXPECT_EQ(boxesOn(structure, 102), right);
}

TEST(KitLayout, ShapesAreTurnedAsTheCellLies)
{
    SmallExport files("- a INV + PLACED ( 0 1400 ) FN\n ;\n", "- a INV ;\n");
    files.colors = "a INV 1 0 0 0 1 2\n";
    files.run({"--gds", files.path("new.gds")});
    const GdsStructure structure = readGds(files.output("new.gds")).structures.at("INV_S1_S");
    EXPECT_EQ(boxesOn(structure, 101), (Boxes{{290, 500, 360, 1100}}));
    EXPECT_EQ(boxesOn(structure, 100), (Boxes{{0, 1315, 380, 1485}, {0, -85, 380, 85}}));
}

TEST(KitLayout, ComponentWithoutASolutionHasMetalWithoutMasks)
{
    SmallExport files("- a INV + PLACED ( 0 0 ) N\n ;\n", "- a INV ;\n");
    files.colors = "a INV -1 0\n";
    EXPECT_EQ(files.run({"--gds", files.path("new.gds")}).status, 1);
    const GdsStructure structure = readGds(files.output("new.gds")).structures.at("INV_N");
    EXPECT_EQ(boxesOn(structure, 1).size(), 5U);
    EXPECT_EQ(structure.shapes.size(), 6U);
}

TEST(KitLayout, ComponentsThatStayHaveTheMetalOfTheLibrary)
{
    SmallExport files("- a INV + PLACED ( 0 0 ) N\n ;\n",
                      "- a INV ;\n- f INV + FIXED ( 760 0 ) FN ;\n- g FILL1 + PLACED ( 570 0 ) N ;\n"
                      "- h OTHER + FIXED ( 0 1400 ) N ;\n- i INV + UNPLACED ;\n");
    files.colors = "a INV 1 0 0 0 1 2\n";
    const KitOutcome outcome =
        files.run({"--gds", files.path("new.gds"), "--lef", files.path("lef"), "--layer", "M1"});
    EXPECT_NE(outcome.error.find("in.def: note: the layout lacks 1 component, as no outline is known"),
              std::string::npos)
        << outcome.error;
    const GdsLibrary library = readGds(files.output("new.gds"));
    EXPECT_EQ(library.order, (Words{"INV_S1_N", "INV_FN", "FILL1_N", "small"}));
    EXPECT_EQ(boxesOn(library.structures.at("INV_FN"), 1),
              (Boxes{{290, 300, 360, 900}, {20, 300, 80, 900}, {0, -85, 380, 85}, {0, 1315, 380, 1485}}));
    EXPECT_EQ(boxesOn(library.structures.at("FILL1_N"), 99), (Boxes{{0, 0, 190, 1400}}));
}

TEST(KitLayout, FixedCellsHaveTheirMasks)
{
    SmallExport files("- a INV + PLACED ( 0 0 ) N\n ;\n",
                      "- a INV ;\n- f INV + FIXED ( 760 0 ) FN ;\n- g INV + FIXED ( 1140 1400 ) FS ;\n"
                      "- h INV + FIXED ( 1520 0 ) N ;\n");
    files.colors = "a INV 1 0 0 0 1 2\n";
    files.write("out.fixed", "VIRELOCE FIXED 1\nCELLS 3\nINV 760 0 FN 2 f\nINV 1140 1400 FS 1 g\n"
                             "INV 1520 0 N -1 h\nBLOCKS 0\nEND\n");
    EXPECT_EQ(files.run({"--gds", files.path("new.gds"), "--lef", files.path("lef"), "--layer", "M1"}).error,
              "");
    const GdsLibrary library = readGds(files.output("new.gds"));
    EXPECT_EQ(library.structures.at("small").instances,
              (std::vector<GdsInstance>{{"INV_S1_N", {0, 0}, "a"},
                                        {"INV_S2_FN", {760, 0}, "f"},
                                        {"INV_S1_FS", {1140, 1400}, "g"},
                                        {"INV_N", {1520, 0}, "h"}}));
    EXPECT_EQ(boxesOn(library.structures.at("INV_S2_FN"), 102), (Boxes{{290, 300, 360, 900}}));
    EXPECT_EQ(boxesOn(library.structures.at("INV_N"), 102), Boxes{}) << "it has no solution";
}

TEST(KitLayout, DroppedFillersAreNotThere)
{
    SmallExport files("- a INV + PLACED ( 0 0 ) N\n ;\n", "- a INV ;\n- g FILL1 + PLACED ( 570 0 ) N ;\n");
    files.colors = "a INV 1 0 0 0 1 2\n";
    files.run(
        {"--gds", files.path("new.gds"), "--lef", files.path("lef"), "--layer", "M1", "--drop-fillers"});
    EXPECT_EQ(readGds(files.output("new.gds")).order, (Words{"INV_S1_N", "small"}));
}

TEST(KitLayout, NamesAreThoseOfTheDefFile)
{
    SmallExport files("- a INV + PLACED ( 0 0 ) N\n ;\n", "- a INV ;\n");
    files.colors = "a INV 1 0 0 0 1 2\n";
    files.def.replace(files.def.find("DESIGN small"), 12, "DESIGN a/b-c");
    files.run({"--gds", files.path("new.gds")});
    EXPECT_EQ(readGds(files.output("new.gds")).order.back(), "a_b_c");
}

TEST(KitLayout, RoundingIsSaid)
{
    SmallExport files("- a INV + PLACED ( 0 0 ) N\n ;\n",
                      "- a INV ;\n- b OTHER + FIXED ( 1000000000 0 ) N ;\n");
    files.colors = "a INV 1 0 0 0 1 2\n";
    files.place.replace(files.place.find("STEP 190"), 8, "STEP 191");
    const KitOutcome outcome = files.run({"--gds", files.path("new.gds")});
    EXPECT_NE(
        outcome.error.find("in.def: note: the layout is too large for units in which all metal is exact: "
                           "it is rounded to the units of the DEF file [rounded]"),
        std::string::npos)
        << outcome.error;
    EXPECT_EQ(readGds(files.output("new.gds")).metreUnit, 1e-9);
}

/// Twice the area of a closed polygon.
int64_t doubledAreaOf(const GdsPoints& points)
{
    int64_t area = 0;
    for (size_t i = 0; i + 1 < points.size(); ++i) {
        area += points[i].first * points[i + 1].second - points[i + 1].first * points[i].second;
    }
    return std::abs(area);
}

TEST(KitLayout, NoPolygonIsWithoutArea)
{
    for (const int64_t units : {100, 1000, 2000, 4000}) {
        for (const int64_t far : {1000, 1'000'000'000}) { // so far that metal is rounded to DBU
            const std::string step = std::to_string(units * 19 / 100);
            SmallExport files("- a INV + PLACED ( 0 0 ) FN\n ;\n",
                              "- a INV ;\n- b BLOCK + FIXED ( " + std::to_string(far) + " 0 ) E ;\n");
            files.colors = "a INV 0 0 0 1 2 0\n";
            for (std::string* const text : {&files.place, &files.def}) {
                for (size_t at = 0; (at = text->find("STEP 190", at)) != std::string::npos; ++at) {
                    text->replace(at, 8, "STEP " + step);
                }
            }
            files.def.replace(files.def.find("MICRONS 1000"), 12, "MICRONS " + std::to_string(units));
            files.write("lib/INV.color", "380 1400\n0\n4\n2 0 0 0 1400 0 0 380 85\n1 20 300 90 300\n"
                                         "2 200 300 201 900 300 300 304 900\n1 40 40 40 40\n1\n0 0 1 2 0\n");
            files.write("block.lef", "MACRO BLOCK\n  CLASS BLOCK ;\n  SIZE 1 BY 1 ;\n  OBS\n    LAYER M1 ;\n"
                                     "      RECT 0.1 0.1 0.1 0.9 ;\n      RECT 0.2 0.1 0.3 0.9 ;\n"
                                     "      RECT 0.4 0.1 0.4001 0.9 ;\n"
                                     "      POLYGON 0.5 0.5 0.9 0.5 0.9 0.5001 0.5 0.5001 ;\n"
                                     "      POLYGON 0.5 0.6 0.9 0.6 0.9 0.9 0.5 0.7 ;\n  END\nEND BLOCK\n");
            const KitOutcome outcome = files.run(
                {"--gds", files.path("new.gds"), "--lef", files.path("block.lef"), "--layer", "M1"});
            EXPECT_LE(outcome.status, 1) << outcome.error;
            const GdsLibrary library = readGds(files.output("new.gds"));
            EXPECT_EQ(library.order, (Words{"INV_S0_FN", "BLOCK_E", "small"}));
            for (const char* const name : {"INV_S0_FN", "BLOCK_E"}) {
                for (const GdsShape& shape : library.structures.at(name).shapes) {
                    EXPECT_GT(doubledAreaOf(shape.points), 0) << units << " " << name << " " << shape.layer;
                }
            }
            EXPECT_EQ(library.structures.at("BLOCK_E").shapes.size(), 3U); // outline, rectangle, polygon
            EXPECT_GE(boxesOn(library.structures.at("INV_S0_FN"), 102).size(), far > 1000 ? 0U : 2U);
        }
    }
}

struct Units {
    const char* name;
    int64_t step;
    int64_t reach;
    int64_t perMicron;
    int64_t ofLibrary190; ///< one site
    bool rounded;
};

class KitGrid : public testing::TestWithParam<Units> {};

TEST_P(KitGrid, IsTheCoarsestInWhichAllIsWhole)
{
    const Grid grid(2000, GetParam().step, GetParam().reach);
    EXPECT_EQ(grid.unitsPerMicron(), GetParam().perMicron);
    EXPECT_EQ(grid.ofLibrary(190), GetParam().ofLibrary190);
    EXPECT_EQ(grid.ofDbu(GetParam().step), GetParam().ofLibrary190);
    EXPECT_EQ(grid.isRounded(), GetParam().rounded);
}

INSTANTIATE_TEST_SUITE_P(Each, KitGrid,
                         testing::Values(Units{"TwoDbuToAUnit", 380, 1'000'000, 2000, 380, false},
                                         Units{"OneToOne", 190, 1'000'000, 2000, 190, false},
                                         Units{"NineteenToADbu", 400, 1'000'000, 38'000, 7600, false},
                                         Units{"AllToADbu", 1, 1'000'000, 380'000, 190, false},
                                         Units{"LargestThatFits", 400, 2'147'483'647 / 19, 38'000, 7600,
                                               false},
                                         Units{"TooLarge", 400, 2'147'483'647 / 19 + 1, 2000, 400, true}),
                         [](const auto& param) { return param.param.name; });

PROPERTY(KitGrid, LibraryUnitsAreWholeUnlessItSaysOtherwise)
{
    const int64_t step = test::draw(1, 5000);
    const int64_t length = test::draw(-100'000, 100'000);
    const Grid grid(1000, step, 1'000'000);
    RC_ASSERT(!grid.isRounded());
    const int64_t perDbu = grid.ofDbu(1);
    RC_ASSERT(grid.ofLibrary(length) * 190 == length * step * perDbu);
}

PROPERTY(KitGrid, LengthsAreRoundedToTheNearestUnit)
{
    const int64_t length = test::draw<int64_t>(-2'000'000'000'000, 2'000'000'000'000);
    const int64_t micron = test::draw(1, 20'000);
    const int64_t dbu = kit::exporter::dbuOf(length, micron);
    // The distance from the exact value is at most half a unit.
    RC_ASSERT(std::abs(length * micron - dbu * 1'000'000) * 2 <= 1'000'000);
}

} // namespace
