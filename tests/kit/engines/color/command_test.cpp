// SPDX-License-Identifier: BSD-3-Clause
// The subcommand color: its messages, its exit status, and what it writes.
#include <filesystem>

#include "kit/base/text/json.h"
#include "kit/kitRun.h"

namespace {

using namespace test;

/// A master with a pin A of some rectangles.
std::string master(const std::string& name, const std::string& rects,
                   const std::string& head = "CLASS CORE ;", const std::string& size = "SIZE 0.38 BY 1.4 ;")
{
    return "MACRO " + name + "\n  " + head + "\n  " + size +
           "\n  PIN A\n    DIRECTION INPUT ;\n    USE SIGNAL ;\n    PORT\n      LAYER m1 ;\n" + rects +
           "    END\n  END A\nEND " + name + "\n";
}

const std::string BAR = "        RECT 0.1 0.5 0.17 0.9 ;\n";
const std::string SITE = "SITE core\n  CLASS CORE ;\n  SIZE 0.19 BY 1.4 ;\nEND core\n";

/// Four squares that are all closer than 185 to one another.
const std::string SQUARES = "        RECT 0.04 0.4 0.1 0.5 ;\n        RECT 0.2 0.4 0.3 0.5 ;\n"
                            "        RECT 0.04 0.6 0.1 0.7 ;\n        RECT 0.2 0.6 0.3 0.7 ;\n";

/// Runs of the subcommand on LEF texts in a folder of their own.
class KitColorCommand : public testing::Test {
protected:
    void write(const std::string& text, const std::string& name = "a.lef") const
    {
        std::ofstream(m_dir.path(name)) << "VERSION 5.7 ;\n" << text << "END LIBRARY\n";
    }

    KitOutcome color(const Words& more = {}, const std::string& layer = "m1") const
    {
        Words words{"color", "--lef", m_dir.path("a.lef"), "--layer", layer, "-o", out()};
        words.insert(words.end(), more.begin(), more.end());
        return runKit(words);
    }

    std::string out() const { return m_dir.path("out"); }
    std::string file(const std::string& name) const { return contentOf(out() + "/" + name); }
    bool exists(const std::string& name) const { return std::filesystem::exists(out() + "/" + name); }

    /// Text of a message after the path of the file.
    std::string messageOf(const KitOutcome& outcome) const
    {
        const std::string path = m_dir.path("a.lef");
        const size_t at = outcome.error.find(path);
        return at == std::string::npos ? outcome.error : outcome.error.substr(at + path.size());
    }

    TempDir m_dir;
};

TEST_F(KitColorCommand, WritesAColourFile)
{
    write(SITE + master("INV", BAR));
    const KitOutcome outcome = color({"--max-solutions", "3"});
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(file("INV.color"), "380 1400\n1\n0 0 380 1400\n2\n1\n0 0 0 1\n1\n100 500 170 900\n3\n"
                                 "0 0 0\n0 0 1\n0 0 2\n");
    const std::string table = "1 cell, layer m1, site 0.19 x 1.4 um, distance 185 (0.185 um)\n\n"
                              "solutions    cells\n        3        1\n\n"
                              " stitches    cells\n        0        1\n\n"
                              "0 cells without a colouring free of conflicts\n"
                              "1 colour file in ";
    EXPECT_EQ(outcome.output.substr(0, table.size()), table);
}

TEST_F(KitColorCommand, SummaryAsJson)
{
    write(SITE + master("INV", BAR));
    const KitOutcome outcome = color({"--json"});
    const kit::Json json = kit::Json::parse(outcome.output);
    EXPECT_EQ(json.at("cells"), 1);
    EXPECT_EQ(json.at("files"), 1);
    EXPECT_EQ(json.at("without_coloring"), 0);
    EXPECT_EQ(json.at("summary"),
              "1 cell, layer m1, site 0.19 x 1.4 um, distance 185 (0.185 um); 0 cells without a "
              "colouring free of conflicts");
}

TEST_F(KitColorCommand, CellsWhoseRowsMeetAreCountedAndTheOthersNamed)
{
    const std::string near = "        RECT 0.1 0.05 0.17 0.9 ;\n";
    const std::string close = "        RECT 0.05 0.05 0.1 0.9 ;\n        RECT 0.2 0.05 0.25 0.9 ;\n";
    write(SITE + master("INV", near) + master("BUF", close));
    const KitOutcome outcome = color({"--rows-meet"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.output.find("\n1 cell with all metal near the next rows on mask 1\n"),
              std::string::npos)
        << outcome.output;
    EXPECT_NE(messageOf(outcome).find(
                  "note: BUF has no colouring that keeps all metal near the next rows on mask 1\n"),
              std::string::npos)
        << outcome.error;
    EXPECT_EQ(kit::Json::parse(color({"--rows-meet", "--json", "--force"}).output).at("rows_meet"), 1);
    EXPECT_FALSE(kit::Json::parse(color({"--json", "--force"}).output).contains("rows_meet"));
}

TEST_F(KitColorCommand, LayerIsFoundIfItIsNotGiven)
{
    write(SITE + master("INV", BAR));
    const KitOutcome outcome = test::runKit({"color", "--lef", m_dir.path("a.lef"), "-o", out()});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.error.find("note: metal 1 is layer m1"), std::string::npos) << outcome.error;
    EXPECT_NE(outcome.output.find("1 cell, layer m1, "), std::string::npos) << outcome.output;
}

TEST_F(KitColorCommand, OnlyListedCellsAreColoured)
{
    write(SITE + master("INV", BAR) + master("BUF", SQUARES) + master("RAM", BAR, "CLASS BLOCK ;"));
    m_dir.write("list", "2\nINV\nRAM\n");
    const KitOutcome outcome = color({"--cells", m_dir.path("list")});
    EXPECT_EQ(outcome.status, 0) << "of a cell that is not listed nothing is said: " << outcome.error;
    EXPECT_TRUE(exists("INV.color"));
    EXPECT_TRUE(exists("RAM.color"));
    EXPECT_FALSE(exists("BUF.color"));
}

TEST_F(KitColorCommand, ListThatDoesNotFitIsAnError)
{
    write(SITE + master("INV", BAR));
    for (const auto& [list, why] :
         {std::pair{"1 BUF", "the cell BUF of the list is in none of the LEF files\n"},
          std::pair{"3 INV BUF NAND", "the cell BUF of the list is in none of the LEF files, as "
                                      "are 1 more\n"},
          std::pair{"INV BUF", "is no list of cells: the number of names comes first"},
          std::pair{"2 INV", "is no list of cells"}, std::pair{"0", "lists no cell"}}) {
        m_dir.write("list", list);
        const KitOutcome outcome = color({"--cells", m_dir.path("list")});
        EXPECT_EQ(outcome.status, 2);
        EXPECT_NE(outcome.error.find(why), std::string::npos) << outcome.error;
        EXPECT_FALSE(std::filesystem::exists(out()));
    }
}

TEST_F(KitColorCommand, SeveralFilesAreOneLibrary)
{
    write(master("INV", BAR));
    write(SITE, "b.lef");
    const KitOutcome outcome = color({"--lef", m_dir.path("b.lef")});
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(exists("INV.color"));
}

TEST_F(KitColorCommand, SiteIsTheCommonDivisorOfTheWidthsWhereThereIsNone)
{
    write(master("INV", BAR) + master("BUF", BAR, "CLASS CORE ;", "SIZE 0.57 BY 1.4 ;"));
    const KitOutcome outcome = color();
    EXPECT_EQ(messageOf(outcome),
              ": note: there is no site of class CORE, and the cells' widths are multiples of "
              "0.19 um, which is taken for its width; give --site W,H if it is another\n");
    EXPECT_EQ(outcome.status, 0);
}

TEST_F(KitColorCommand, SiteThatMostCellsNameIsTaken)
{
    write("SITE wide\n  CLASS CORE ;\n  SIZE 0.38 BY 1.4 ;\nEND wide\n" + SITE +
          master("INV", BAR, "CLASS CORE ;\n  SITE core ;"));
    EXPECT_NE(color().output.find("site 0.19 x 1.4 um"), std::string::npos);
}

TEST_F(KitColorCommand, SiteOptionComesFirst)
{
    write(SITE + master("INV", BAR));
    const KitOutcome outcome = color({"--site", "0.38,1.4", "--max-solutions", "1"});
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(file("INV.color").substr(0, 9), "190 700\n1");
    EXPECT_NE(file("INV.color").find("50 250 85 450"), std::string::npos);
}

TEST_F(KitColorCommand, RoundedLengthsAreToldOnce)
{
    write(master("INV", BAR) + master("BUF", BAR));
    EXPECT_EQ(messageOf(color({"--site", "0.19,1.4"})), "");
    const KitOutcome outcome = color({"--site", "0.2,1.4", "--force"});
    EXPECT_EQ(outcome.status, 0);
    const std::string text =
        ": warning: lengths of INV are rounded, as a site of 0.2 um is 190 wide in colour files";
    EXPECT_NE(outcome.error.find(":2:1" + text), std::string::npos) << outcome.error;
    EXPECT_EQ(outcome.error.find("lengths of BUF"), std::string::npos) << outcome.error;
}

TEST_F(KitColorCommand, MetalIsWrittenWhereLengthsAreRounded)
{
    write(master("INV", BAR));
    color({"--site", "0.2,1.4"});
    EXPECT_EQ(file("INV.metal").substr(0, 57),
              "VIRELOCE METAL 1\nSITE 200000\nSIZE 380000 1400000\nRECTS 1\n");
    std::filesystem::remove(out() + "/INV.color");
    EXPECT_EQ(color({"--site", "0.19,1.4"}).status, 2) << "INV.metal is there";
    EXPECT_TRUE(exists("INV.metal"));
    color({"--site", "0.19,1.4", "--force"});
    EXPECT_FALSE(exists("INV.metal")) << "that of the earlier run";
}

TEST_F(KitColorCommand, WidthThatIsNoMultipleOfTheSiteIsAWarning)
{
    write(SITE + master("INV", BAR, "CLASS CORE ;", "SIZE 0.4 BY 1.4 ;"));
    EXPECT_EQ(messageOf(color()), ":6:1: warning: INV is 0.4 um wide, no whole number of sites of 0.19 um\n");
}

TEST_F(KitColorCommand, CellOfAnotherHeightIsLeftOut)
{
    write(SITE + master("INV", BAR) + master("TALL", BAR, "CLASS CORE ;", "SIZE 0.38 BY 2.8 ;"));
    const KitOutcome outcome = color();
    EXPECT_NE(
        messageOf(outcome).find(": warning: TALL is 2.8 um high and the rows 1.4 um: the placer takes every "
                                "cell to be one row high, and it gets no colour file"),
        std::string::npos)
        << outcome.error;
    EXPECT_FALSE(exists("TALL.color"));
    EXPECT_TRUE(exists("INV.color"));
    EXPECT_EQ(outcome.status, 0);
}

TEST_F(KitColorCommand, OnlyCellsThatStandInRowsAreColoured)
{
    write(SITE + master("A1", BAR, "CLASS CORE TIEHIGH ;") + master("A2", BAR, "CLASS CORE SPACER ;") +
          master("A3", BAR, "CLASS ENDCAP PRE ;") + master("B1", BAR, "CLASS BLOCK ;") +
          master("B2", BAR, "CLASS PAD ;") + master("B3", BAR, "CLASS COVER ;") +
          master("B4", BAR, "CLASS ENDCAP TOPLEFT ;"));
    EXPECT_EQ(color().status, 0);
    for (const char* name : {"A1", "A2", "A3"}) {
        EXPECT_TRUE(exists(std::string(name) + ".color")) << name;
    }
    for (const char* name : {"B1", "B2", "B3", "B4"}) {
        EXPECT_FALSE(exists(std::string(name) + ".color")) << name;
    }
}

TEST_F(KitColorCommand, FillerWithoutMetalGetsAFileAsWell)
{
    write(SITE + master("INV", BAR) + "MACRO FILL\n  CLASS CORE SPACER ;\n  SIZE 0.19 BY 1.4 ;\nEND FILL\n");
    EXPECT_EQ(color().status, 0);
    EXPECT_EQ(file("FILL.color"), "190 1400\n1\n0 0 190 1400\n1\n1\n0 0 0 1\n1\n0 0\n");
}

TEST_F(KitColorCommand, CellsMoveAlikeWhereOneHasRailsBelow)
{
    write(SITE + master("INV", BAR) + master("LOW", BAR + "        RECT 0.02 -0.085 0.04 0.1 ;\n"));
    EXPECT_EQ(color().status, 0);
    EXPECT_NE(file("INV.color").find("1\n0 -85 0 85\n"), std::string::npos);
}

TEST_F(KitColorCommand, UncolourableCellIsAnErrorAtItsPlace)
{
    write(SITE + master("BAD", SQUARES) + master("INV", BAR));
    const KitOutcome outcome = color();
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(messageOf(outcome),
              ":6:1: error: BAD has no colouring: 4 shapes that are all closer than 185 to one another: "
              "A (40 400 100 500), A (200 400 300 500), A (40 600 100 700), A (200 600 300 700); distances "
              "A - A 100.0, A - A 100.0, A - A 141.4, A - A 141.4, A - A 100.0, A - A 100.0; it can be "
              "coloured with --mindp 141 (0.141 um)\n");
    EXPECT_FALSE(exists("BAD.color"));
    EXPECT_TRUE(exists("INV.color"));
    EXPECT_NE(outcome.output.find("\n1 cell without a colouring free of conflicts\n"
                                  "  BAD: 4 shapes too close together; --mindp 141 (0.141 um) would do\n"),
              std::string::npos)
        << outcome.output;
    EXPECT_EQ(color({"--mindp", "0.141um", "--force"}).status, 0);
}

TEST_F(KitColorCommand, AllowedConflictsAreWrittenAndTold)
{
    write(SITE + master("BAD", SQUARES));
    const KitOutcome outcome = color({"--allow-conflicts"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(messageOf(outcome).find(":6:1: warning: BAD has no colouring"), std::string::npos)
        << outcome.error;
    EXPECT_NE(messageOf(outcome).find("; its file has 1 conflict left, the closest at 141.4\n"),
              std::string::npos);
    EXPECT_NE(outcome.output.find("--mindp 141 (0.141 um) would do; 1 conflict left, the closest at 141.4\n"),
              std::string::npos);
    EXPECT_TRUE(exists("BAD.color"));
}

TEST_F(KitColorCommand, CellThatCannotBeReadIsNamedAndLeftOut)
{
    write(SITE + master("BAD", "        POLYGON 0 0 0.1 0.1 0.1 0 ;\n") + master("INV", BAR));
    const KitOutcome outcome = color();
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.error.find("error"), std::string::npos) << outcome.error;
    EXPECT_NE(outcome.error.find("BAD"), std::string::npos) << outcome.error;
    EXPECT_FALSE(exists("BAD.color"));
}

TEST_F(KitColorCommand, NameThatIsNoFileNameIsAnError)
{
    write(SITE + master("../BAD", BAR) + master("INV", BAR));
    const KitOutcome outcome = color();
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(messageOf(outcome),
              ":6:1: error: ../BAD gets no colour file: its name cannot be that of a file\n");
    EXPECT_FALSE(std::filesystem::exists(m_dir.path("BAD.color")));
}

TEST_F(KitColorCommand, PinsThatTouchAreAWarning)
{
    write(SITE +
          "MACRO M\n  CLASS CORE ;\n  SIZE 0.38 BY 1.4 ;\n"
          "  PIN A\n    PORT\n      LAYER m1 ;\n        RECT 0.1 0.5 0.17 0.9 ;\n    END\n  END A\n"
          "  PIN B\n    PORT\n      LAYER m1 ;\n        RECT 0.17 0.5 0.2 0.9 ;\n    END\n  END B\nEND M\n");
    EXPECT_EQ(messageOf(color()),
              ":6:1: warning: M: metal of the pins A and B touches, and is taken for one net\n");
}

TEST_F(KitColorCommand, GivenMasksAreIgnored)
{
    write(SITE + master("INV", "        RECT MASK 2 0.1 0.5 0.17 0.9 ;\n") +
          master("BUF", "        RECT MASK 2 0.1 0.5 0.17 0.9 ;\n"));
    EXPECT_EQ(messageOf(color()), ":6:1: note: INV has shapes with masks, which are ignored\n");
}

TEST_F(KitColorCommand, ErrorsOfTheReaderEndIt)
{
    write(SITE + "MACRO INV\n  SIZE x BY 1.4 ;\nEND INV\n");
    const KitOutcome outcome = color();
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.error.find("a.lef:7:"), std::string::npos) << outcome.error;
    EXPECT_EQ(outcome.output, "");
    EXPECT_FALSE(std::filesystem::exists(out()));
}

struct FaultCase {
    const char* name;
    std::string text;
    Words more;
    std::string layer;
    const char* want;
};

const FaultCase FAULTS[] = {
    {"NoCells", SITE, {}, "m1", "the files have no cells of class CORE"},
    {"NoMetal",
     SITE + master("INV", BAR),
     {},
     "metal1",
     "/a.lef: give another with --layer; they have shapes on m1"},
    {"NoMetalAtAll", SITE + master("INV", ""), {}, "m1", "the cells have no metal"},
    {"NoRowHeight",
     SITE + master("INV", BAR),
     {"--site", "0.19,2"},
     "m1",
     "no cell is as high as the site, 2 um"},
    {"BadSite", SITE, {"--site", "0.19"}, "m1", "--site: \"0.19\" is not W,H in micrometres"},
    {"BadDistance", SITE, {"--mindp", "-1"}, "m1", "no distance from 0 to 10000"},
    {"NoSolutions", SITE, {"--max-solutions", "0"}, "m1", "--max-solutions: Value 0 not in range"},
    {"NoThreads", SITE, {"--jobs", "0"}, "m1", "--jobs: Value 0 not in range"},
    {"NoFile", SITE, {"--lef", "/nowhere.lef"}, "m1", "/nowhere.lef"},
};

class KitColorCommandFaults : public KitColorCommand, public testing::WithParamInterface<FaultCase> {};

TEST_P(KitColorCommandFaults, IsOneLineAndStatusTwo)
{
    write(GetParam().text);
    const KitOutcome outcome = color(GetParam().more, GetParam().layer);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.error.find(GetParam().want), std::string::npos) << outcome.error;
    EXPECT_EQ(std::count(outcome.error.begin(), outcome.error.end(), '\n'), 1) << outcome.error;
    EXPECT_FALSE(std::filesystem::exists(out()));
}

INSTANTIATE_TEST_SUITE_P(All, KitColorCommandFaults, testing::ValuesIn(FAULTS),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(KitColorCommand, ReplacesNothingWithoutForce)
{
    write(SITE + master("INV", BAR) + master("BUF", BAR));
    EXPECT_EQ(color().status, 0);
    std::filesystem::remove(out() + "/INV.color");
    std::ofstream(out() + "/BUF.color") << "mine";
    const KitOutcome outcome = color();
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.error.find("BUF.color exists: choose another name, or --force to replace it"),
              std::string::npos);
    EXPECT_EQ(file("BUF.color"), "mine");
    EXPECT_FALSE(exists("INV.color"));
    EXPECT_EQ(color({"--force"}).status, 0);
    EXPECT_NE(file("BUF.color"), "mine");
}

TEST_F(KitColorCommand, PicturesAreNotReplacedEither)
{
    write(SITE + master("INV", BAR));
    std::filesystem::create_directory(out());
    std::ofstream(out() + "/INV.svg") << "mine";
    EXPECT_EQ(color({"--svg"}).status, 2);
    EXPECT_EQ(color().status, 0);
    EXPECT_EQ(file("INV.svg"), "mine");
}

TEST_F(KitColorCommand, FolderThatCannotBeMadeIsTold)
{
    write(SITE + master("INV", BAR));
    std::ofstream(out()) << "a file";
    const KitOutcome outcome = color();
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.error.find("cannot make the folder"), std::string::npos) << outcome.error;
}

size_t countOf(const std::string& text, const std::string& what)
{
    size_t count = 0;
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) {
        ++count;
    }
    return count;
}

TEST_F(KitColorCommand, PictureShowsEverySolution)
{
    write(SITE + master("INV", BAR));
    EXPECT_EQ(color({"--svg"}).status, 0);
    const std::string svg = file("INV.svg");
    const size_t pictures = countOf(svg, "stitches</text>") + countOf(svg, "1 stitch</text>");
    EXPECT_EQ(pictures, 9U);
    EXPECT_EQ(countOf(svg, "<title>A, mask"), 2 * pictures); // the bar has two parts
    EXPECT_EQ(countOf(svg, "class=\"stitch\""), countOf(svg, "1 stitch</text>"));
    EXPECT_GT(countOf(svg, "1 stitch</text>"), 0U);
    EXPECT_EQ(svg.substr(svg.size() - 7), "</svg>\n");
}

TEST_F(KitColorCommand, PictureShowsConflicts)
{
    write(SITE + master("BAD", SQUARES));
    EXPECT_EQ(color({"--svg"}).status, 1);
    EXPECT_EQ(countOf(file("BAD.svg"), "class=\"conflict\""), 6U);
    EXPECT_NE(file("BAD.svg").find("no colouring"), std::string::npos);
    EXPECT_EQ(color({"--svg", "--allow-conflicts", "--force"}).status, 1);
    EXPECT_EQ(countOf(file("BAD.svg"), "class=\"conflict\""), 12U); // one in each solution
}

} // namespace
