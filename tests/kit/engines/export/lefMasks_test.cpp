// SPDX-License-Identifier: BSD-3-Clause
// Masters with masks.
#include "kit/engines/export/lefMasks.h"

#include "kit/engines/export/smallExport.h"
#include "kit/formats/placer/reader.h"

namespace {

using namespace test;
using kit::exporter::MaskedMacro;

/// A cell whose colour file has these shapes, a mask each.
kit::placer::Cell cellOf(const std::vector<std::pair<kit::placer::Rect, int32_t>>& shapes)
{
    kit::placer::Cell cell;
    cell.solutions.emplace_back();
    for (const auto& [rect, mask] : shapes) {
        cell.shapes.emplace_back().rects.push_back(rect);
        cell.solutions.front().masks.push_back(mask);
    }
    return cell;
}

/// A macro with one pin.
std::string macroText(const std::string& name, const std::string& shapes, const std::string& more = "")
{
    return "MACRO " + name + "\n" + more +
           "  ORIGIN 0 0 ;\n  SIZE 1 BY 1 ;\n  PIN A\n    PORT\n      LAYER M1 ;\n" + shapes +
           "    END\n  END A\nEND " + name;
}

/// The macro X that another one becomes.
std::string maskedX(const std::string& shapes)
{
    return macroText("X", shapes, "  FIXEDMASK ;\n");
}

MaskedMacro maskedText(const std::string& macro, const kit::placer::Cell& cell, int64_t siteWidth = 190'000)
{
    const kit::lefdef::Source source("a.lef", "VERSION 5.8 ;\n" + macro + "\nEND LIBRARY\n");
    kit::lefdef::Lef lef;
    kit::Findings findings;
    kit::lefdef::readLef(source, "M1", 0, lef, findings);
    EXPECT_TRUE(findings.empty()) << findings.front().what;
    return kit::exporter::maskedMacro(source, lef.macros.at(0), {cell, cell.solutions.front(), siteWidth},
                                      "X");
}

struct Masked {
    const char* name;
    const char* shapes;
    const char* expected;
    int64_t bare;
};

class KitLefMasks : public testing::TestWithParam<Masked> {};

TEST_P(KitLefMasks, ChangesShapesOfTheLayerAlone)
{
    // Left of 400 mask 0, right of it mask 2; nothing above 800.
    const kit::placer::Cell cell = cellOf({{{100, 100, 400, 800}, 0}, {{400, 100, 700, 800}, 2}});
    const MaskedMacro masked = maskedText(macroText("M", GetParam().shapes), cell);
    EXPECT_EQ(masked.text, maskedX(GetParam().expected));
    EXPECT_EQ(masked.bareMetal, GetParam().bare);
}

INSTANTIATE_TEST_SUITE_P(
    Each, KitLefMasks,
    testing::Values(
        Masked{"OneMask", "        RECT 0.1 0.10 0.4 0.8 ;\n", "        RECT MASK 1 0.1 0.10 0.4 0.8 ;\n", 0},
        Masked{"MaskThatItHad", "  RECT MASK 1 0.5 0.1 0.6 0.3;\n", "  RECT MASK 3 0.5 0.1 0.6 0.3;\n", 0},
        Masked{"CutAtTheStitch", "        RECT 0.1 0.2 0.7 0.3 ; # x\n",
               "        RECT MASK 1 0.1 0.2 0.4 0.3 ;\n        RECT MASK 3 0.4 0.2 0.7 0.3 ; # x\n", 0},
        Masked{"CutPolygon", "  POLYGON 0.1 0.2 0.1 0.4 0.7 0.4 0.7 0.2 ;\n",
               "  RECT MASK 1 0.1 0.2 0.4 0.4 ;\n  RECT MASK 3 0.4 0.2 0.7 0.4 ;\n", 0},
        Masked{"PolygonOfOneMask", "  POLYGON 0.1 0.1 0.1 0.5 0.2 0.5 0.2 0.3 0.3 0.3 0.3 0.1 ;\n",
               "  POLYGON MASK 1 0.1 0.1 0.1 0.5 0.2 0.5 0.2 0.3 0.3 0.3 0.3 0.1 ;\n", 0},
        Masked{"SlantingPolygon", "  POLYGON 0.1 0.1 0.1 0.5 0.2 0.5 ;\n",
               "  POLYGON 0.1 0.1 0.1 0.5 0.2 0.5 ;\n", 1},
        Masked{"CopiesOfOneMask", "  RECT ITERATE 0.1 0.1 0.2 0.2 DO 2 BY 1 STEP 0.15 0 ;\n",
               "  RECT MASK 1 ITERATE 0.1 0.1 0.2 0.2 DO 2 BY 1 STEP 0.15 0 ;\n", 0},
        Masked{"CopiesOfTwoMasks", "  RECT ITERATE 0.1 0.1 0.2 0.2 DO 2 BY 1 STEP 0.4 0 ;\n",
               "  RECT MASK 1 0.1 0.1 0.2 0.2 ;\n  RECT MASK 3 0.5 0.1 0.6 0.2 ;\n", 0},
        Masked{"OtherLayer", "  RECT 0.1 0.1 0.2 0.2 ;\n LAYER M2 ;\n  RECT 0.1 0.2 0.7 0.3 ;\n",
               "  RECT MASK 1 0.1 0.1 0.2 0.2 ;\n LAYER M2 ;\n  RECT 0.1 0.2 0.7 0.3 ;\n", 0},
        Masked{"MetalThatTheColourFileLacks", "  RECT 0.1 0.9 0.2 1.0 ;\n", "  RECT 0.1 0.9 0.2 1.0 ;\n", 1},
        Masked{"MetalThatItHasInPart", "  RECT 0.1 0.7 0.2 0.9 ;\n",
               "  RECT 0.1 0.8 0.2 0.9 ;\n  RECT MASK 1 0.1 0.7 0.2 0.8 ;\n", 1}),
    [](const auto& param) { return param.param.name; });

TEST(KitLefMasks, KeywordsMayBeInSmallLetters)
{
    const kit::placer::Cell cell = cellOf({{{100, 100, 400, 800}, 2}});
    const kit::lefdef::Source source("a.lef",
                                     "busbitchars \"<>\" ;\nMACRO M\n  ORIGIN 0 0 ;\n  SIZE 1 BY 1 ;\n  OBS\n"
                                     "    LAYER M1 ;\n    RECT mask 1 0.1 0.1 0.2 0.2 ;\n  END\nEND M\n");
    kit::lefdef::LefMacro macro;
    macro.name = "M";
    macro.offset = source.text().find("MACRO");
    macro.endOffset = source.text().rfind("\n");
    macro.obstructions.push_back({.points = {{100'000, 100'000}, {200'000, 200'000}}, .mask = 1});
    macro.obstructions.back().offset = source.text().find("RECT");
    const MaskedMacro masked =
        kit::exporter::maskedMacro(source, macro, {cell, cell.solutions.front(), 190'000}, "X");
    EXPECT_NE(masked.text.find("    RECT MASK 3 0.1 0.1 0.2 0.2 ;\n"), std::string::npos) << masked.text;
    EXPECT_EQ(kit::exporter::lefHead(source), "VERSION 5.8 ;\nbusbitchars \"<>\" ;\n");
}

struct MaskLayer {
    const char* name;
    const char* text;
    bool lacks;
};

class KitLefMaskLayer : public testing::TestWithParam<MaskLayer> {};

TEST_P(KitLefMaskLayer, HasThreeMasksOrLacksThem)
{
    EXPECT_EQ(kit::exporter::lacksMasks(kit::lefdef::Source("a.lef", GetParam().text), "M1"),
              GetParam().lacks);
}

INSTANTIATE_TEST_SUITE_P(
    All, KitLefMaskLayer,
    testing::Values(MaskLayer{"Three", "LAYER M1 TYPE ROUTING ; MASK 3 ; END M1", false},
                    MaskLayer{"None", "Layer M1 TYPE ROUTING ; WIDTH 1 ; END M1 LAYER M2 MASK 3 ; END M2",
                              true},
                    MaskLayer{"Two", "LAYER M1 TYPE ROUTING ; mask 2 ; END M1", true},
                    MaskLayer{"OtherLayers", "LAYER M2 TYPE ROUTING ; END M2", false},
                    MaskLayer{"LayerOfAShape", "VIA v LAYER M1 ; RECT 0 0 1 1 ; END v MACRO A END A", false},
                    MaskLayer{"NoText", "", false}),
    [](const auto& param) { return param.param.name; });

TEST(KitLefMasks, LayerWithoutThreeMasksIsANote)
{
    SmallExport files("- a INV + PLACED ( 0 0 ) N\n ;\n", "- a INV ;\n");
    files.colors = "a INV 2 0 0 0 2 1\n";
    files.write("tech", "LAYER M1 TYPE ROUTING ; END M1 END LIBRARY\n");
    const KitOutcome outcome = files.run({"--lef", files.path("tech"), "--lef", files.path("lef"), "--layer",
                                          "M1", "--lef-masks", files.path("new.lef")});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.error,
              "tech: note: the layer M1 is not said to have three masks; write MASK 3 into it for those "
              "who read the masters [layer-masks]\n0 errors, 0 warnings, 1 note\n");
}

TEST(KitLefMasks, OriginIsTakenIntoAccount)
{
    const kit::placer::Cell cell = cellOf({{{100, 100, 400, 800}, 0}, {{400, 100, 700, 800}, 2}});
    const std::string before = "MACRO M\n  ORIGIN 0.2 -0.1 ;\n  SIZE 1 BY 1 ;\n"
                               "  OBS\n    LAYER M1 ;\n    RECT -0.1 0.3 0.5 0.4 ;\n  END\nEND M";
    const std::string after = "MACRO X\n  FIXEDMASK ;\n  ORIGIN 0.2 -0.1 ;\n  SIZE 1 BY 1 ;\n"
                              "  OBS\n    LAYER M1 ;\n    RECT MASK 1 -0.1 0.3 0.2 0.4 ;\n"
                              "    RECT MASK 3 0.2 0.3 0.5 0.4 ;\n  END\nEND X";
    EXPECT_EQ(maskedText(before, cell).text, after);
}

TEST(KitLefMasks, RoundedCornersAreThoseOfTheMacro)
{
    // A site of 0.46 micrometres: a library unit is 2.42 nm, and no corner is whole.
    const kit::placer::Cell cell = cellOf({{{41, 41, 83, 124}, 0}, {{83, 41, 124, 124}, 1}});
    EXPECT_EQ(
        maskedText(macroText("M", "RECT 0.1 0.1 0.2 0.3 ;\nRECT 0.2 0.1 0.3 0.3 ;\n"), cell, 460'000).text,
        maskedX("RECT MASK 1 0.1 0.1 0.2 0.3 ;\nRECT MASK 2 0.2 0.1 0.3 0.3 ;\n"));
}

TEST(KitLefMasks, FileHasTheHeadOfItsSource)
{
    SmallExport files("- a INV + PLACED ( 0 0 ) N\n ;\n- b INV + PLACED ( 380 0 ) N\n ;\n",
                      "- a INV ;\n- b INV ;\n");
    files.colors = "a INV 2 0 0 0 2 1\nb INV 0 0 0 0 1 1\n";
    const KitOutcome outcome = files.run({"--lef", files.path("lef"), "--layer", "M1", "--lef-masks",
                                          files.path("new.lef"), "--def-masks", files.path("new2.def")});
    EXPECT_EQ(outcome.error, "");
    const std::string lef = files.output("new.lef");
    EXPECT_EQ(lef.substr(0, lef.find("MACRO")),
              "VERSION 5.8 ;\nBUSBITCHARS \"<>\" ;\nDIVIDERCHAR \"/\" ;\n\n");
    EXPECT_NE(lef.find("\nMACRO INV_S0\n"), std::string::npos);
    EXPECT_NE(lef.find("\nEND INV_S2\n"), std::string::npos);
    EXPECT_NE(lef.find("        RECT MASK 3 0.02 0.3 0.09 0.9 ;\n"), std::string::npos);
    EXPECT_NE(lef.find("      RECT MASK 1 0 1.315 0.38 1.485 ;\n"), std::string::npos);
    EXPECT_TRUE(lef.ends_with("\nEND LIBRARY\n"));
    const std::string def = files.output("new2.def");
    EXPECT_NE(def.find("- a INV_S2 + PLACED ( 0 0 ) N ;\n- b INV_S0 + PLACED ( 380 0 ) N ;\n"),
              std::string::npos);
}

TEST(KitLefMasks, FixedCellsHaveMastersOfTheirSolutionsToo)
{
    SmallExport files("- a INV + PLACED ( 0 0 ) N\n ;\n", "- a INV ;\n- f INV + FIXED ( 760 0 ) FN ;\n");
    files.colors = "a INV 2 0 0 0 2 1\n";
    files.write("out.fixed", "VIRELOCE FIXED 1\nCELLS 1\nINV 760 0 FN 0 f\nBLOCKS 0\nEND\n");
    const KitOutcome outcome = files.run({"--lef", files.path("lef"), "--layer", "M1", "--lef-masks",
                                          files.path("new.lef"), "--def-masks", files.path("new2.def")});
    EXPECT_EQ(outcome.error, "");
    EXPECT_NE(files.output("new.lef").find("\nMACRO INV_S0\n"), std::string::npos);
    EXPECT_NE(
        files.output("new2.def").find("- a INV_S2 + PLACED ( 0 0 ) N ;\n- f INV_S0 + FIXED ( 760 0 ) FN ;\n"),
        std::string::npos);
    EXPECT_NE(files.output("new.def").find("- f INV + FIXED ( 760 0 ) FN ;\n"), std::string::npos);
}

TEST(KitLefMasks, NamesOfTheLibraryAreNotTaken)
{
    SmallExport files("- a INV + PLACED ( 0 0 ) N\n ;\n", "- a INV ;\n");
    files.colors = "a INV 2 0 0 0 2 1\n";
    const std::string more = files.write("more", "MACRO INV_S2\n  SIZE 1 BY 1 ;\nEND INV_S2\nEND LIBRARY\n");
    files.run(
        {"--lef", files.path("lef"), "--lef", more, "--layer", "M1", "--lef-masks", files.path("new.lef")});
    EXPECT_NE(files.output("new.lef").find("\nMACRO INV__S2\n"), std::string::npos);
}

TEST(KitLefMasks, CellWithoutAMacroIsAnError)
{
    SmallExport files("- a INV + PLACED ( 0 0 ) N\n ;\n", "- a INV ;\n");
    files.colors = "a INV 2 0 0 0 2 1\n";
    const std::string none = files.write("none", "VERSION 5.8 ;\nEND LIBRARY\n");
    const KitOutcome outcome =
        files.run({"--lef", none, "--layer", "M1", "--lef-masks", files.path("new.lef")});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.error,
              "out.place: error: the cell INV is in none of the LEF files; give the file that has "
              "it with --lef [no-macro]\n1 error, 0 warnings, 0 notes\n");
}

TEST(KitExportLayer, WithoutMetalIsAnErrorInALine)
{
    SmallExport files("- a INV + PLACED ( 0 0 ) N\n ;\n", "- a INV ;\n");
    files.colors = "a INV 2 0 0 0 2 1\n";
    const KitOutcome outcome =
        files.run({"--lef", files.path("lef"), "--layer", "m1", "--lef-masks", files.path("new.lef")});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.error, "vireloce-kit: no cell in use has metal on the layer m1 in lef: give another "
                             "with --layer; they have shapes on M1, M2\n");
    EXPECT_EQ(files.run({"--lef", files.path("lef"), "--layer", "m1"}).error, outcome.error);
    const std::string other = files.write("none", "VERSION 5.8 ;\nEND LIBRARY\n");
    EXPECT_EQ(files.run({"--lef", other, "--layer", "m1"}).status, 0) << "of no cell in use";
}

TEST(KitLefMasks, BareMetalIsAWarning)
{
    SmallExport files("- a INV + PLACED ( 0 0 ) N\n ;\n", "- a INV ;\n");
    files.colors = "a INV 0 0 1\n";
    files.write("lib/INV.color", "380 1400\n1 0 0 380 1400\n1\n1 20 300 90 900\n1\n0 1\n");
    const KitOutcome outcome =
        files.run({"--lef", files.path("lef"), "--layer", "M1", "--lef-masks", files.path("new.lef")});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(
        outcome.error,
        "lef:4: warning: 3 shapes of INV_S0 have metal without a mask, for lib/INV.color does not have it; "
        "colour the cells of this library [bare-metal]\n0 errors, 1 warning, 0 notes\n");
}

} // namespace
