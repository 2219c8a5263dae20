// SPDX-License-Identifier: BSD-3-Clause
// What verify writes: text, JSON, and the report database.
#include "kit/base/text/json.h"
#include "kit/engines/verify/verify.h"

#include <sstream>

#include "kit/base/fault.h"
#include "kit/engines/verify/judged.h"
#include "support/guards.h"
#include "support/pattern.h"

namespace {

using namespace test;
using kit::Json;
using kit::verify::Options;

/// Two conflicts in the lower row, a close pair of the two rows, a cell off the grid, fillers.
Judged mixedInput()
{
    Judged judged(
        {makeCell("A<&>", 190, {{10, 700, 180, 1350}}, {1}), makeCell("B", 380, {{50, 700, 90, 900}}, {1})});
    judged.add(0, 0, 0);
    judged.add(0, 1, 0);
    judged.add(1, 2, 0);
    judged.add(0, 9, 0);
    judged.add(1, 8, 1);
    judged.component(3).x += 7;
    judged.input.design.fillers.push_back({.name = "FILLER_1", .cellName = "F", .orient = "N", .line = 90});
    return judged;
}

/// Two cells in different rows 100 apart, over and over.
Judged noteInput()
{
    Judged judged({makeCell("A", 190, {{10, 100, 180, 1340}}, {1})});
    for (int32_t site = 0; site < 12; site += 4) {
        judged.add(0, site, 0);
        judged.add(0, site, 1);
    }
    judged.component(1).x += 190; // a little farther
    return judged;
}

Options optionsOf(const std::string& lyrdb = "")
{
    Options options;
    options.placement = "out.place";
    options.colors = "out.colors";
    options.lyrdb = lyrdb;
    return options;
}

std::string textOf(const Judged& judged, const Options& options)
{
    std::ostringstream out;
    kit::verify::writeText(options, judged.input, judged.judge(), out);
    return out.str();
}

TEST(KitVerifyReport, TextHasLinesTableAndCounts)
{
    EXPECT_EQ(
        textOf(mixedInput(), optionsOf()),
        "out.place:40: error: u3 (A<&>) at (1717, 0) is 7 DBU right of a site of row_0 [off-grid]\n"
        "out.place:90: note: the fillers from here on, 1, are not judged: fill the rows again [fillers]\n"
        "out.place:10: error: u0 (A<&>) at (0, 0) and u1 (A<&>) at (190, 0) have shapes of mask 1 20.0 "
        "apart, 185 are needed; 1 pair of shapes too close [conflict]\n"
        "out.place:20: error: u1 (A<&>) at (190, 0) and u2 (B) at (380, 0) have shapes of mask 1 60.0 "
        "apart, 185 are needed; 1 pair of shapes too close [conflict]\n"
        "\n"
        "Closest pairs of cells in a row, of 2; shapes of one mask must be 185 apart\n"
        "distance  shape pairs  mask  cells\n"
        "    20.0            1     1  u0 (A<&>) at (0, 0), u1 (A<&>) at (190, 0)\n"
        "    60.0            1     1  u1 (A<&>) at (190, 0), u2 (B) at (380, 0)\n"
        "\n"
        "       1  off-grid: cells between the sites\n"
        "       2  conflict: pairs of cells in a row with metal of one mask too close\n"
        "       1  fillers: fillers, which are not judged\n"
        "out.place: not clean, 3 errors, 1 note\n");
}

TEST(KitVerifyReport, TextOfACleanPlacementIsOneLine)
{
    Judged judged;
    judged.add(0, 0, 0);
    EXPECT_EQ(textOf(judged, optionsOf()), "\nout.place: clean, 0 errors, 0 notes\n");
}

TEST(KitVerifyReport, TextNamesBothCellsOfAnOverlap)
{
    Judged judged({makeCell("A", 380, {}, {})});
    judged.add(0, 0, 0);
    judged.add(0, 1, 0);
    EXPECT_EQ(textOf(judged, optionsOf()),
              "out.place:10: error: u0 (A) at (0, 0) and u1 (A) at (190, 0) overlap [cell-overlap]\n\n"
              "       1  cell-overlap: pairs of cells that overlap\n"
              "out.place: not clean, 1 error, 0 notes\n");
}

TEST(KitVerifyReport, DistancesAreRoundedDown)
{
    Judged judged({makeCell("A", 190, {{0, 500, 6, 900}}, {1})}, 380);
    judged.add(0, 0, 0);
    judged.add(0, 1, 0);
    judged.component(1).x += 1; // 184.5
    judged.input.design.rows[0].step = 1;
    judged.input.design.rows[0].numSites = 10'000;
    judged.input.design.rows.insert(judged.input.design.rows.begin(), judged.input.design.rows[1]);
    EXPECT_NE(textOf(judged, optionsOf()).find(" 184.5 apart"), std::string::npos);
    judged.component(1).x = 190; // 89 in library coordinates
    EXPECT_NE(textOf(judged, optionsOf()).find(" 89.0 apart"), std::string::npos);
}

TEST(KitVerifyReport, OfNotesAboutRowsTheClosestHaveLines)
{
    Options options = optionsOf();
    options.worst = 2;
    const std::string text = textOf(noteInput(), options);
    EXPECT_EQ(text.find("u0 (A)"), std::string::npos) << text;
    EXPECT_NE(
        text.find("out.place:30: note: u2 (A) at (760, 0) and u3 (A) at (760, 1400) have shapes of mask 1 "
                  "160.0 apart"),
        std::string::npos)
        << text;
    EXPECT_NE(text.find("       3  row-conflict: "), std::string::npos) << text;
    EXPECT_NE(text.find("out.place: clean, 0 errors, 3 notes\n"), std::string::npos) << text;
}

TEST(KitVerifyReport, TableHasNoMoreRowsThanAskedFor)
{
    Options options = optionsOf();
    options.worst = 1;
    const std::string text = textOf(mixedInput(), options);
    EXPECT_NE(text.find("\n    20.0 "), std::string::npos) << text;
    EXPECT_EQ(text.find("\n    60.0 "), std::string::npos) << text;
}

TEST(KitVerifyReport, FaultsOfTheInputsComeFirstAndCount)
{
    Judged judged;
    judged.input.faults.push_back(
        {.code = "colors-end", .file = "out.colors", .line = 7, .what = "a", .advice = "b"});
    EXPECT_EQ(textOf(judged, optionsOf()),
              "out.colors:7: error: a; b [colors-end]\n\nout.place: not clean, 1 error, 0 notes\n");
}

TEST(KitVerifyReport, ControlCharactersDoNotReachTheTerminal)
{
    Judged judged;
    judged.add(0, 0, 0);
    judged.component(0).name = "u\x1b[0";
    EXPECT_NE(textOf(judged, optionsOf()).find("u\\x1b[0 (BARS) has no colours"), std::string::npos);
}

Json jsonOf(const Judged& judged)
{
    std::ostringstream out;
    kit::verify::writeJson(optionsOf(), judged.input, judged.judge(), out);
    return Json::parse(out.str());
}

TEST(KitVerifyReport, JsonHasCountsAndFindings)
{
    const Json json = jsonOf(mixedInput());
    EXPECT_EQ(json.at("schema"), 1);
    EXPECT_EQ(json.at("placement"), "out.place");
    EXPECT_EQ(json.at("mindp"), 185);
    EXPECT_EQ(json.at("clean"), false);
    EXPECT_EQ(json.at("summary").asString().rfind("not clean, ", 0), 0U) << json.at("summary");
    EXPECT_EQ(json.at("counts").at("conflict"), 2);
    EXPECT_EQ(json.at("counts").at("off-row"), 0);
    EXPECT_EQ(json.at("counts").size(), std::size(kit::design::KINDS));
    ASSERT_EQ(json.at("findings").size(), 4U);
    const Json& conflict = json.at("findings")[2];
    EXPECT_EQ(conflict.at("severity"), "error");
    EXPECT_EQ(conflict.at("code"), "conflict");
    EXPECT_EQ(conflict.at("file"), "out.place");
    EXPECT_EQ(conflict.at("line"), 10);
    EXPECT_EQ(conflict.at("component"), "u0");
    EXPECT_EQ(conflict.at("other"), "u1");
    EXPECT_EQ(conflict.at("distance"), 20.0);
    EXPECT_EQ(conflict.at("shape_pairs"), 1);
    EXPECT_EQ(conflict.at("mask"), 1);
    EXPECT_EQ(conflict.at("box"), Json::array({10.0, 700.0, 180.0, 1350.0}));
    EXPECT_EQ(conflict.at("other_box"), Json::array({200.0, 700.0, 370.0, 1350.0}));
}

TEST(KitVerifyReport, JsonHasFaultsOfTheInputsAndBrokenText)
{
    Judged judged;
    judged.add(0, 0, 0);
    judged.component(0).name = "u\xff"; // no UTF-8
    judged.input.faults.push_back(
        {.code = "colors-end", .file = "out.colors", .line = 7, .what = "a", .advice = "b"});
    const Json json = jsonOf(judged);
    EXPECT_EQ(json.at("counts").at("input-fault"), 1);
    EXPECT_EQ(json.at("findings")[0].at("what"), "a; b");
    EXPECT_EQ(json.at("findings")[0].at("line"), 7);
    EXPECT_EQ(json.at("findings").size(), 3U);
}

TEST(KitVerifyReport, JsonOfACleanPlacementSaysSo)
{
    EXPECT_EQ(jsonOf(noteInput()).at("clean"), true);
    EXPECT_EQ(jsonOf(Judged()).at("findings").size(), 0U);
}

/// Whether all elements of an XML text are closed in order, and how often each comes.
std::map<std::string, int> elementsOf(const std::string& xml)
{
    std::map<std::string, int> counts;
    std::vector<std::string> open;
    for (const test::Match& tag : test::matchesOf(xml, "<(/?)([a-z-]+)>|<\\?[^>]*\\?>|[<>]")) {
        const std::string& name = tag[2];
        if (name.empty()) {
            EXPECT_EQ(tag[0].substr(0, 2), "<?") << "at byte " << tag.at;
        } else if (tag[1] == "/") {
            EXPECT_FALSE(open.empty() || open.back() != name) << name;
            open.pop_back();
        } else {
            ++counts[name];
            open.push_back(name);
        }
    }
    EXPECT_TRUE(open.empty());
    EXPECT_TRUE(test::matchesOf(xml, "&(?!(amp|lt|gt|quot|#39);)").empty());
    return counts;
}

std::string markersOf(const Judged& judged)
{
    const TempDir dir;
    kit::verify::writeMarkers(optionsOf(dir.path("m.lyrdb")), judged.input, judged.judge());
    std::ostringstream text;
    text << std::ifstream(dir.path("m.lyrdb")).rdbuf();
    return text.str();
}

TEST(KitVerifyReport, MarkersAreWellFormedXml)
{
    std::map<std::string, int> elements = elementsOf(markersOf(mixedInput()));
    EXPECT_EQ(elements["report-database"], 1);
    EXPECT_EQ(elements["category"], 3 + 3); // defined, and one of each item
    EXPECT_EQ(elements["item"], 3);
    EXPECT_EQ(elements["value"], 6);
}

TEST(KitVerifyReport, MarkersAreInMicrometres)
{
    Judged judged = mixedInput(); // one site is 190 DBU, whatever a micrometre is
    struct Row {
        int32_t units; ///< 0: the placement does not say
        const char* box;
        const char* pair;
    };
    for (const Row& row :
         {Row{100, "(17.170000,0.000000;19.070000,14.000000)",
              "(1.800000,7.000000;1.800000,13.500000)/(2.000000,13.500000;2.000000,7.000000)"},
          Row{1000, "(1.717000,0.000000;1.907000,1.400000)",
              "(0.180000,0.700000;0.180000,1.350000)/(0.200000,1.350000;0.200000,0.700000)"},
          Row{2000, "(0.858500,0.000000;0.953500,0.700000)",
              "(0.090000,0.350000;0.090000,0.675000)/(0.100000,0.675000;0.100000,0.350000)"},
          Row{0, "(0.858500,0.000000;0.953500,0.700000)",
              "(0.090000,0.350000;0.090000,0.675000)/(0.100000,0.675000;0.100000,0.350000)"},
          Row{4000, "(0.429250,0.000000;0.476750,0.350000)",
              "(0.045000,0.175000;0.045000,0.337500)/(0.050000,0.337500;0.050000,0.175000)"}}) {
        judged.input.design.dbuPerMicron = row.units;
        const std::string xml = markersOf(judged);
        EXPECT_NE(xml.find(std::string("<value>box: ") + row.box + "</value>"), std::string::npos) << xml;
        EXPECT_NE(xml.find(std::string("<value>edge-pair: ") + row.pair + "</value>"), std::string::npos)
            << xml;
    }
}

TEST(KitVerifyReport, MarkersNameWhatTheyAreAbout)
{
    Judged judged = mixedInput();
    const std::string xml = markersOf(judged);
    EXPECT_NE(xml.find("<value>text: &#39;u0 (A&lt;&amp;&gt;) at (0, 0) and "), std::string::npos) << xml;
    EXPECT_NE(xml.find("<category>'conflict'</category>"), std::string::npos) << xml;
    EXPECT_NE(xml.find("<top-cell>out</top-cell>"), std::string::npos) << xml;
    judged.input.design.name = "top/gcd";
    EXPECT_NE(markersOf(judged).find("<top-cell>top_gcd</top-cell>"), std::string::npos);
}

TEST(KitVerifyReport, MarkersOfShapesAboveEachOtherFaceUpAndDown)
{
    const std::string xml = markersOf(noteInput());
    EXPECT_NE(xml.find("<value>edge-pair: (0.470000,0.670000;0.385000,0.670000)/"
                       "(0.385000,0.750000;0.470000,0.750000)</value>"),
              std::string::npos)
        << xml;
}

TEST(KitVerifyReport, MarkersFromTheRightHaveTheLeftShapeFirst)
{
    Judged judged(
        {makeCell("A", 190, {{100, 100, 180, 1350}}, {1}), makeCell("B", 190, {{10, 50, 20, 90}}, {1})});
    judged.add(0, 0, 0);
    judged.add(1, 1, 1);
    const std::string left = "(0.090000,0.050000;0.090000,0.675000)/";
    EXPECT_NE(markersOf(judged).find("edge-pair: " + left), std::string::npos) << markersOf(judged);
    judged.component(0).y = 1400;
    judged.component(1).y = 0;
    judged.input.design.cells[1].shapes[0].rects[0] = {10, 1380, 20, 1399};
    EXPECT_NE(markersOf(judged).find("edge-pair: (0.090000,0.750000;0.090000,1.375000)/"), std::string::npos)
        << markersOf(judged);
}

TEST(KitVerifyReport, MarkersOfIssuesWithoutAPlaceAreLeftOut)
{
    Judged judged;
    judged.add(0, 0, 0);
    judged.input.colors.clear();
    std::map<std::string, int> elements = elementsOf(markersOf(judged));
    EXPECT_EQ(elements["item"], 0);
    EXPECT_EQ(elements["categories"], 1);
}

TEST(KitVerifyReport, MarkersThatCannotBeWrittenAreAFault)
{
    EXPECT_THROW(kit::verify::writeMarkers(optionsOf("/nowhere/at/all"), Judged().input, {}), kit::Fault);
}

} // namespace
