// SPDX-License-Identifier: BSD-3-Clause
// Rows of a DEF in the placement file, and what cuts them.
#include "kit/engines/import/importCase.h"

namespace {

using test::components;
using test::KitImport;
using test::Words;

using KitImportRows = KitImport;

TEST_F(KitImportRows, AreKeptInOrderWithTheirOrientation)
{
    importWell("");
    EXPECT_EQ(rows(), (Words{"r0 core 1000 0 N DO 20 BY 1 STEP 200 0 ;",
                             "r1 core 1000 2000 FS DO 20 BY 1 STEP 200 0 ;"}));
    EXPECT_EQ(records("BIGNODES"), Words{});
}

TEST_F(KitImportRows, OfOneHeightAreJoinedAndTheGapIsBlocked)
{
    importWell("", {}, std::string(test::TWO_ROWS) + "ROW r0b core 6000 0 N DO 5 BY 1 STEP 200 0 ;\n");
    EXPECT_EQ(rows().front(), "r0 core 1000 0 N DO 30 BY 1 STEP 200 0 ;");
    EXPECT_EQ(records("BIGNODES"), Words{"BLOCK_0 BLOCK + ( 5000 0 ) ( 1000 2000 ) N"});
}

TEST_F(KitImportRows, OffEachOthersSitesAreJoinedWithTheRestOfTheLastSiteBlocked)
{
    importWell("", {}, std::string(test::TWO_ROWS) + "ROW r0b core 6100 0 N DO 5 BY 1 STEP 200 0 ;\n");
    EXPECT_EQ(rows().front(), "r0 core 1000 0 N DO 31 BY 1 STEP 200 0 ;");
    EXPECT_EQ(records("BIGNODES"), (Words{"BLOCK_0 BLOCK + ( 5000 0 ) ( 1100 2000 ) N",
                                          "BLOCK_1 BLOCK + ( 7100 0 ) ( 100 2000 ) N"}));
}

TEST_F(KitImportRows, OfAnotherSiteAreLeftOutWithAWarning)
{
    const auto outcome =
        import("", {}, std::string(test::TWO_ROWS) + "ROW t tall 1000 0 N DO 20 BY 1 STEP 200 0 ;\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.error.find("d.def:6:1: warning: row t of site tall is left out"), std::string::npos)
        << outcome.error;
    EXPECT_EQ(rows().size(), 2U);
}

TEST_F(KitImportRows, FirstOneHasANeighbourOneHeightAway)
{
    importWell("", {},
               "ROW a core 0 0 N DO 2 BY 1 STEP 200 0 ;\nROW b core 0 6000 N DO 2 BY 1 STEP 200 0 ;\n"
               "ROW c core 0 8000 N DO 2 BY 1 STEP 200 0 ;\n");
    EXPECT_EQ(rows(), (Words{"b core 0 6000 N DO 2 BY 1 STEP 200 0 ;", "a core 0 0 N DO 2 BY 1 STEP 200 0 ;",
                             "c core 0 8000 N DO 2 BY 1 STEP 200 0 ;"}));
}

TEST_F(KitImportRows, RowThatTellsTheHeightStandsAboveTheHighest)
{
    importWell("", {},
               "ROW a core 0 0 N DO 2 BY 1 STEP 200 0 ;\nROW b core 0 2100 N DO 2 BY 1 STEP 200 0 ;\n");
    EXPECT_EQ(rows(), (Words{"b core 0 2100 N DO 2 BY 1 STEP 200 0 ;", "a core 0 0 N DO 2 BY 1 STEP 200 0 ;",
                             "ROW_HEIGHT core 0 4100 N DO 0 BY 1 STEP 200 0 ;"}));
}

TEST_F(KitImportRows, WithoutNeighboursGetOneWithoutSitesThatTellsTheHeight)
{
    importWell("", {}, "ROW a core 0 0 N DO 2 BY 1 STEP 200 0 ;\n");
    EXPECT_EQ(rows().back(), "ROW_HEIGHT core 0 2000 N DO 0 BY 1 STEP 200 0 ;");
}

TEST_F(KitImportRows, SiteComesFromTheRowsWhereTheLefHasNone)
{
    const std::string lef = "MACRO A CLASS CORE ; SIZE 0.4 BY 2 ; END A\n";
    importWell(components({"u A + PLACED ( 1200 0 ) N"}), {}, test::TWO_ROWS, lef);
    EXPECT_EQ(map().siteWidth, 200'000);
    EXPECT_EQ(map().siteHeight, 2'000'000);
}

TEST_F(KitImportRows, SiteOptionComesFirst)
{
    importWell("", {"--site", "0.2,2"}, test::TWO_ROWS, "MACRO A CLASS CORE ; SIZE 0.4 BY 2 ; END A\n");
    const auto other = import("", {"--site", "0.1,2"});
    EXPECT_EQ(other.status, 2);
    EXPECT_NE(
        other.error.find("row r0 of site core is left out: it has step 200, not the site's width of 100"),
        std::string::npos)
        << other.error;
    EXPECT_EQ(import("", {"--site", "0.1"}).status, 2);
    EXPECT_EQ(import("", {"--site", "0.1,-2"}).status, 2);
}

struct BadRows {
    const char* rule;
    const char* rows;
    const char* message;
};

class KitImportBadRows : public KitImport, public testing::WithParamInterface<BadRows> {};

TEST_P(KitImportBadRows, AreToldAndNothingIsWritten)
{
    const auto outcome = import("", {}, GetParam().rows);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.error.find(GetParam().message), std::string::npos) << outcome.error;
    EXPECT_FALSE(std::filesystem::exists(base() + ".place"));
}

INSTANTIATE_TEST_SUITE_P(
    Rules, KitImportBadRows,
    testing::Values(
        BadRows{"NoRows", "", "the DEF has no rows"},
        BadRows{"OnlyOtherSites",
                "ROW t tall 0 0 N DO 2 BY 1 STEP 200 0 ;\nROW t2 core 0 0 N DO 2 BY 1 STEP 100 0 ;\n",
                "d.def:4:1: error: no row is left; see the warnings above"},
        BadRows{"OnlyVertical", "ROW r core 0 0 N DO 1 BY 5 STEP 0 2000 ;\n",
                "error: no row is left; see the warnings above"},
        BadRows{"WithoutSites", "ROW r core 0 0 N DO 0 BY 1 STEP 200 0 ;\n", "the number of columns is 0"},
        BadRows{"OutOfRange", "ROW a core 2147483000 0 N DO 5 BY 1 STEP 200 0 ;\n",
                "leaves the range of 32 bits"}),
    [](const auto& instance) { return instance.param.rule; });

/// A row beside r0 and r1, and why it is left out.
struct OtherRow {
    const char* rule;
    const char* row;
    const char* why;
};

class KitImportOtherRows : public KitImport, public testing::WithParamInterface<OtherRow> {};

TEST_P(KitImportOtherRows, AreLeftOutWithAWarning)
{
    importWell("");
    const std::string before = fileOf(".place");
    const auto outcome = import("", {}, std::string(test::TWO_ROWS) + "ROW x " + GetParam().row + " ;\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.error.find(std::string("d.def:6:1: warning: row x of site ") + GetParam().why),
              std::string::npos)
        << outcome.error;
    EXPECT_EQ(fileOf(".place"), before);
}

INSTANTIATE_TEST_SUITE_P(
    Rules, KitImportOtherRows,
    testing::Values(
        OtherRow{"OfAnotherHeight", "tall 1000 0 N DO 20 BY 1 STEP 200 0", "tall is left out; only rows"},
        OtherRow{"OfPads", "pad 0 9000 N DO 20 BY 1 STEP 1000 0", "pad is left out; only rows"},
        OtherRow{"OnItsSide", "core 0 9000 W DO 20 BY 1 STEP 200 0", "core is left out: it is vertical"},
        OtherRow{"OfSeveralHeights", "core 0 9000 N DO 1 BY 20 STEP 0 2000", "core is left out: it is vert"},
        OtherRow{"OfAnotherStep", "odd 0 9000 N DO 20 BY 1 STEP 300 0", "odd is left out: it has step 300, "},
        OtherRow{"OverAnother", "core 1000 1000 N DO 20 BY 1 STEP 200 0",
                 "core is left out: it is 1000 DBU from row r1, less than the site's height of 2000"},
        OtherRow{"UnderAnother", "core 1000 -1 N DO 20 BY 1 STEP 200 0",
                 "core is left out: it is 1 DBU from row r0, less than"},
        OtherRow{"OffTheSitesOfAnother", "core 1100 0 N DO 20 BY 1 STEP 200 0",
                 "core is left out: it overlaps another at its height, and their sites do not meet"},
        OtherRow{"LyingOther", "core 9000 0 FS DO 20 BY 1 STEP 200 0",
                 "core is left out: it lies FS, and row r0 at the same height N"}),
    [](const auto& instance) { return instance.param.rule; });

TEST_F(KitImportRows, OfTheCoresSiteGoBeforeOthers)
{
    importWell(components({"u A + PLACED ( 1000 0 ) N"}), {},
               "ROW x odd 1100 0 FS DO 9 BY 1 STEP 200 0 ;\n" + std::string(test::TWO_ROWS));
    EXPECT_EQ(rows().front(), "r0 core 1000 0 N DO 20 BY 1 STEP 200 0 ;");
    EXPECT_EQ(rows().size(), 2U);
}

TEST_F(KitImportRows, SiteIsThatOfMostMovableCells)
{
    const std::string rows = std::string(test::TWO_ROWS) + "ROW t0 tall 1000 0 N DO 20 BY 1 STEP 200 0 ;\n";
    const Words cells{"a TALL + PLACED ( 1000 0 ) N", "b TALL + PLACED ( 2000 0 ) N",
                      "c A + FIXED ( 4000 0 ) N",     "d A + FIXED ( 4400 0 ) N",
                      "e FILL + PLACED ( 4800 0 ) N", "f A + PLACED ( 3000 0 ) N"};
    importWell(components(cells), {}, rows);
    EXPECT_EQ(map().siteHeight, 4'000'000);
    EXPECT_EQ(this->rows().front(), "t0 tall 1000 0 N DO 20 BY 1 STEP 200 0 ;");
    importWell(components({cells[0], "g A + PLACED ( 3400 0 ) N", cells[5]}), {}, rows);
    EXPECT_EQ(map().siteHeight, 2'000'000);
}

TEST_F(KitImportRows, SiteThatNoLefHasIsAsHighAsTheCellsThatNameIt)
{
    const std::string lef = "SITE tall CLASS CORE ; SIZE 0.2 BY 4.0 ; END tall\n"
                            "MACRO A CLASS CORE ; SIZE 0.4 BY 2 ; SITE core ; END A\n"
                            "MACRO B CLASS CORE ; SIZE 0.4 BY 4 ; SITE tall ; END B\n";
    importWell(components({"a A + PLACED ( 1000 0 ) N", "b B + PLACED ( 1400 0 ) N"}), {},
               "ROW t tall 1000 0 N DO 20 BY 1 STEP 200 0 ;\n" + std::string(test::TWO_ROWS), lef);
    EXPECT_EQ(map().siteHeight, 2'000'000);
    EXPECT_EQ(rows().size(), 2U);
}

TEST_F(KitImportRows, OneOfAnUnknownSiteIsAsHighAsMostCells)
{
    importWell(components({"u A + PLACED ( 0 0 ) N"}), {}, "ROW a x 0 0 N DO 5 BY 1 STEP 200 0 ;\n",
               "MACRO A CLASS CORE ; SIZE 0.4 BY 2 ; END A\nMACRO B CLASS CORE ; SIZE 0.4 BY 3 ; END B\n");
    EXPECT_EQ(map().siteHeight, 2'000'000);
}

TEST_F(KitImportRows, OfLongNamesFitTheirLine)
{
    const std::string longName(90, 'x');
    const std::string row = longName + " core 1000 0 N DO 20 BY 1 STEP 200 0 ;\n";
    importWell("", {}, "ROW " + row + "ROW r1 core 1000 2000 FS DO 20 BY 1 STEP 200 0 ;\n");
    EXPECT_EQ(rows().front(), "ROW core 1000 0 N DO 20 BY 1 STEP 200 0 ;");
}

TEST_F(KitImportRows, ManyBlocksOnOnePlaceAreOne)
{
    std::string body = "BLOCKAGES 500 ;\n";
    for (int i = 0; i < 500; ++i) {
        body += "- PLACEMENT RECT ( " + std::to_string(1400 + i % 3 * 200) + " 0 ) ( 2600 4000 ) ;\n";
    }
    importWell(body + "END BLOCKAGES\n");
    EXPECT_EQ(records("BIGNODES"), (Words{"BLOCK_0 BLOCK + ( 1400 0 ) ( 1200 2000 ) N",
                                          "BLOCK_1 BLOCK + ( 1400 2000 ) ( 1200 2000 ) N"}));
}

TEST_F(KitImportRows, WithoutLefSiteStepOrPitchAskForTheSite)
{
    const auto outcome = import("", {}, "ROW a x 0 0 N DO 5 BY 1 STEP 200 0 ;\n",
                                "MACRO A CLASS CORE ; SIZE 0.4 BY 2 ; END A\n");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.error.find("neither the LEF files nor the rows tell the size of site x"),
              std::string::npos)
        << outcome.error;
}

TEST_F(KitImportRows, SiteThatIsNoWholeNumberOfDbuIsAnError)
{
    const auto outcome = import("", {"--site", "0.2005,2"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.error.find("no whole number of DBU"), std::string::npos) << outcome.error;
}

/// What cuts rows, and the blocks that come of it.
struct Cut {
    const char* rule;
    const char* body;
    std::vector<std::string> blocks;
};

class KitImportCuts : public KitImport, public testing::WithParamInterface<Cut> {};

TEST_P(KitImportCuts, LeaveExactlyTheFreeSites)
{
    importWell(GetParam().body);
    EXPECT_EQ(records("BIGNODES"), GetParam().blocks);
}

INSTANTIATE_TEST_SUITE_P(
    Rules, KitImportCuts,
    testing::Values(
        Cut{"FixedCell",
            "COMPONENTS 1 ;\n- f A + FIXED ( 1400 0 ) N ;\nEND COMPONENTS\n",
            {"BLOCK_0 BLOCK + ( 1400 0 ) ( 400 2000 ) N"}},
        Cut{"CoverCell",
            "COMPONENTS 1 ;\n- f A + COVER ( 1400 2000 ) FS ;\nEND COMPONENTS\n",
            {"BLOCK_0 BLOCK + ( 1400 2000 ) ( 400 2000 ) N"}},
        Cut{"ARecordARow",
            "COMPONENTS 1 ;\n- f RAM + FIXED ( 1400 0 ) N ;\nEND COMPONENTS\n",
            {"BLOCK_0 BLOCK + ( 1400 0 ) ( 1200 2000 ) N", "BLOCK_1 BLOCK + ( 1400 2000 ) ( 1200 2000 ) N"}},
        Cut{"OnItsSide",
            "COMPONENTS 1 ;\n- f RAM + FIXED ( 1400 0 ) W ;\nEND COMPONENTS\n",
            {"BLOCK_0 BLOCK + ( 1400 0 ) ( 3000 2000 ) N"}},
        Cut{"WholeSitesOnly",
            "COMPONENTS 1 ;\n- f A + FIXED ( 1450 0 ) N ;\nEND COMPONENTS\n",
            {"BLOCK_0 BLOCK + ( 1400 0 ) ( 600 2000 ) N"}},
        Cut{"AbuttingAndOverlappingOnesAreOne",
            "COMPONENTS 3 ;\n- f A + FIXED ( 1400 0 ) N ;\n- g A + FIXED ( 1800 0 ) N ;\n- h B + FIXED ( "
            "1600 0 ) N ;\n"
            "END COMPONENTS\n",
            {"BLOCK_0 BLOCK + ( 1400 0 ) ( 1000 2000 ) N"}},
        Cut{"ClippedToTheRow",
            "COMPONENTS 2 ;\n- f B + FIXED ( 600 0 ) N ;\n- g B + FIXED ( 4800 2000 ) N ;\nEND COMPONENTS\n",
            {"BLOCK_0 BLOCK + ( 1000 0 ) ( 400 2000 ) N", "BLOCK_1 BLOCK + ( 4800 2000 ) ( 200 2000 ) N"}},
        Cut{"TouchingFromOutsideIsNone",
            "COMPONENTS 2 ;\n- f A + FIXED ( 600 0 ) N ;\n- g A + FIXED ( 1400 4000 ) N ;\nEND COMPONENTS\n",
            {}},
        Cut{"WholeRow",
            "BLOCKAGES 1 ;\n- PLACEMENT RECT ( 0 0 ) ( 9000 2000 ) ;\nEND BLOCKAGES\n",
            {"BLOCK_0 BLOCK + ( 1000 0 ) ( 4000 2000 ) N"}},
        Cut{"PlacementBlockage",
            "BLOCKAGES 2 ;\n- PLACEMENT RECT ( 1500 500 ) ( 1700 2500 ) ;\n- LAYER metal1 RECT ( 0 0 ) ( "
            "9000 9000 ) ;\n"
            "END BLOCKAGES\n",
            {"BLOCK_0 BLOCK + ( 1400 0 ) ( 400 2000 ) N", "BLOCK_1 BLOCK + ( 1400 2000 ) ( 400 2000 ) N"}},
        Cut{"SoftBlockageIsNone",
            "BLOCKAGES 2 ;\n- PLACEMENT + SOFT RECT ( 1500 500 ) ( 1700 2500 ) ;\n"
            "- PLACEMENT + PARTIAL 0.5 RECT ( 1500 500 ) ( 1700 2500 ) ;\nEND BLOCKAGES\n",
            {}},
        Cut{"PlacedMacroTapAndHighCellStay",
            "COMPONENTS 3 ;\n- t TAP + PLACED ( 1000 0 ) N ;\n- m RAM + PLACED ( 1400 2000 ) N ;\n"
            "- h TALL + PLACED ( 4000 0 ) N ;\nEND COMPONENTS\n",
            {"BLOCK_0 BLOCK + ( 1000 0 ) ( 200 2000 ) N", "BLOCK_1 BLOCK + ( 4000 0 ) ( 400 2000 ) N",
             "BLOCK_2 BLOCK + ( 1400 2000 ) ( 1200 2000 ) N",
             "BLOCK_3 BLOCK + ( 4000 2000 ) ( 400 2000 ) N"}},
        Cut{"FillerIsNone", "COMPONENTS 1 ;\n- f FILL + PLACED ( 1000 0 ) N ;\nEND COMPONENTS\n", {}}),
    [](const auto& instance) { return instance.param.rule; });

} // namespace
