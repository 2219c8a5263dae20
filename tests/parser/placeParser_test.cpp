// SPDX-License-Identifier: BSD-3-Clause
// What the placement reader takes from a file.
#include "parser/placeParser.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include "db/memberOrder.h"
#include "parser/reading.h"
#include "qlib/qLibRTree.h"
#include "support/property.h"

namespace {

using test::Reading;

const std::string ROW_LINE = "ROW row_0 core 0 0 N DO 560 BY 1 STEP 190 0 ;\n";

/// The two lines of a component record.
std::string componentRecord(const std::string& name, const std::string& orient = "N")
{
    return "- " + name + " C1 + PLACED ( 3800 5700 ) " + orient + " ;\n  + SOURCE DIST ;\n";
}

/// The two lines of a macro record.
std::string macroRecord(const std::string& name)
{
    return "- " + name + " + FIXED ( 380 1900 ) N 950 3800 SIZE ;\n  + WEIGHT 1 ;\n";
}

/// A core-box section with the four values.
std::string coreBox(const std::vector<std::string>& values)
{
    std::string text = "PROPERTYDEFINITIONS\n  COMPONENTPIN designRuleWidth REAL ;\n";
    for (const std::string& value : values) {
        text += "  DESIGN FE_CORE_BOX REAL " + value + " ;\n";
    }
    return text + "END PROPERTYDEFINITIONS\n";
}

std::vector<std::string> componentNames(const Design& design)
{
    std::vector<std::string> names;
    for (const Component* comp : design.components) {
        names.push_back(comp->name);
    }
    return names;
}

using Names = std::vector<std::string>;

TEST(PlaceParser, IsBoundToItsDesignWithNothingRead)
{
    const Design design;
    EXPECT_EQ(design.placeParser.design, &design);
    EXPECT_FALSE(design.placeParser.in.is_open());
    EXPECT_EQ(design.placeParser.compNum, 0);
    EXPECT_EQ(design.placeParser.macroNum, 0);
}

TEST(PlaceParser, HasItsMembersInOrder)
{
    const Design design;
    const PlaceParser& parser = design.placeParser;
    test::expectInOrder({&parser.design, &parser.in, &parser.statement, &parser.statementType,
                         &parser.compNum, &parser.macroNum});
}

TEST(PlaceParser, StatementKindsHaveTheirNumbers)
{
    EXPECT_EQ(PlaceParser::ROW_STMT, 0);
    EXPECT_EQ(PlaceParser::COMPONENTS_STMT, 1);
    EXPECT_EQ(PlaceParser::BIGNODES_STMT, 2);
    EXPECT_EQ(PlaceParser::PROPERTY_STMT, 3);
    EXPECT_EQ(PlaceParser::OTHER_STMT, 4);
    EXPECT_EQ(sizeof(PlaceParser::Statement_e), 4U);
}

TEST(PlaceParser, MissingFileEndsTheRunAndNothingIsRead)
{
    Reading r;
    const std::string report = test::reportOfEndedRun([&] { r.design.placeParser.run(r.base); });
    EXPECT_EQ(report, "ERROR| cannot open file: " + r.base + ".place\n");
    EXPECT_TRUE(r.design.rows.empty());
}

TEST(PlaceParser, FileWithOnlyARowYieldsOneRowAndABoundOfZeros)
{
    Reading r;
    EXPECT_EQ(r.place(ROW_LINE), "");
    EXPECT_EQ(r.design.rows.size(), 1U);
    EXPECT_TRUE(r.design.components.empty());
    EXPECT_TRUE(r.design.macros.empty());
    EXPECT_EQ(r.design.boundXl, 0);
    EXPECT_EQ(r.design.boundXh, 0);
    EXPECT_EQ(r.design.boundYl, 0);
    EXPECT_EQ(r.design.boundYh, 0);
}

TEST(PlaceParser, RowTakesItsFieldsByTokenPosition)
{
    Reading r;
    r.place("ROW row_7 core -380 1900 FS x 560 y z w 190 more words\n");
    ASSERT_EQ(r.design.rows.size(), 1U);
    const Row& row = *r.design.rows[0];
    EXPECT_EQ(row.name, "row_7");
    EXPECT_EQ(row.siteName, "core");
    EXPECT_EQ(row.x, -380);
    EXPECT_EQ(row.y, 1900);
    EXPECT_EQ(row.orient, "FS");
    EXPECT_EQ(row.numSites, 560);
    EXPECT_EQ(row.step, 190);
    EXPECT_TRUE(row.components.empty());
    EXPECT_TRUE(row.segments.empty());
}

TEST(PlaceParser, RowNeedsNoTokenAfterTheStep)
{
    Reading r;
    EXPECT_EQ(r.place("ROW r s 1 2 N D 3 B 1 S 4"), "");
    ASSERT_EQ(r.design.rows.size(), 1U);
    EXPECT_EQ(r.design.rows[0]->step, 4);
}

TEST(PlaceParser, OfTwoRowsAtOneYTheMapHoldsTheSecond)
{
    Reading r;
    r.place("ROW a s 0 1900 N D 1 B 1 S 190\nROW b s 0 0 N D 1 B 1 S 190\nROW c s 9 1900 N D 1 B 1 S 190\n");
    ASSERT_EQ(r.design.rows.size(), 3U);
    const std::map<int32_t, int32_t> want{{0, 1}, {1900, 2}};
    EXPECT_EQ(r.design.rowIndexByY, want);
}

TEST(PlaceParser, ComponentTakesItsFieldsByTokenPosition)
{
    Reading r;
    EXPECT_EQ(r.place("COMPONENTS 1 ;\n- u12 C1 + PLACED ( 3800 -5700 ) FN ;\nROW is no keyword here\n"), "");
    ASSERT_EQ(r.design.components.size(), 1U);
    const Component& comp = *r.design.components[0];
    EXPECT_EQ(comp.name, "u12");
    EXPECT_EQ(comp.cellName, "C1");
    EXPECT_EQ(comp.cellIdx, 1);
    EXPECT_EQ(comp.x, 3800);
    EXPECT_EQ(comp.y, -5700);
    EXPECT_EQ(comp.orientName, "FN");
    EXPECT_EQ(comp.orient, Component::FN);
    EXPECT_EQ(comp.siteX, 0);
    EXPECT_EQ(comp.solution, 0);
    EXPECT_TRUE(comp.nets.empty());
    EXPECT_TRUE(comp.leftIDs.empty());
    EXPECT_TRUE(comp.rightIDs.empty());
    EXPECT_TRUE(r.design.rows.empty());
}

TEST(PlaceParser, ComponentOfACellThatTheLibraryLacksHasIndexMinusOne)
{
    Reading r;
    r.place("COMPONENTS 1\n- u NO_SUCH + PLACED ( 0 0 ) N ;\n;\n");
    ASSERT_EQ(r.design.components.size(), 1U);
    EXPECT_EQ(r.design.components[0]->cellIdx, -1);
}

TEST(PlaceParser, OrientationTextSIsUnflippedAndEntersTheMap)
{
    Reading r;
    ASSERT_EQ(Component::s_orientMap.count("S"), 0U);
    r.place("COMPONENTS 1 ;\n" + componentRecord("u", "S"));
    EXPECT_EQ(r.design.components.at(0)->orientName, "S");
    EXPECT_EQ(r.design.components.at(0)->orient, Component::N);
    ASSERT_EQ(Component::s_orientMap.count("S"), 1U);
    EXPECT_EQ(Component::s_orientMap["S"], Component::N);
}

TEST(PlaceParser, RepeatedComponentNameKeepsBothAndTheMapHoldsTheLater)
{
    Reading r;
    r.place("COMPONENTS 3 ;\n" + componentRecord("u") + componentRecord("v") + componentRecord("u"));
    EXPECT_EQ(componentNames(r.design), (Names{"u", "v", "u"}));
    const std::map<std::string, int32_t> want{{"u", 2}, {"v", 1}};
    EXPECT_EQ(r.design.compIndex, want);
}

TEST(PlaceParser, MapHoldsTheComponentsOfAllSections)
{
    Reading r;
    r.place("COMPONENTS 2 ;\n" + componentRecord("m") + componentRecord("z") + "END COMPONENTS\n" +
            "COMPONENTS 4 ;\n" + componentRecord("z") + componentRecord("a") + componentRecord("FILLER_1"));
    const std::map<std::string, int32_t> want{{"a", 3}, {"m", 0}, {"z", 2}};
    EXPECT_EQ(r.design.compIndex, want);
}

PROPERTY(PlaceParser, MapHoldsTheLastComponentOfEveryName)
{
    // Names that are alike, differ late, begin with each other, or hold bytes beyond ASCII.
    std::vector<std::string> names(test::drawCount());
    for (std::string& name : names) {
        name = test::drawOne<std::string>({"", "u", "core/alu/", "core/alu/adder/bit_"});
        name += test::drawText("ab1\xe4") + "x";
    }
    std::string text = "COMPONENTS " + std::to_string(names.size()) + "\n";
    std::map<std::string, int32_t> want;
    for (size_t i = 0; i < names.size(); ++i) {
        text += componentRecord(names[i].substr(0, 200));
        want[names[i].substr(0, 200)] = static_cast<int32_t>(i);
    }
    Reading r;
    r.place(text);
    RC_ASSERT(r.design.compIndex == want);
}

TEST(PlaceParser, ComponentsHeaderWithCountZeroReadsNoRecordLine)
{
    Reading r;
    EXPECT_EQ(r.place("COMPONENTS 0 ;\n" + ROW_LINE + "END COMPONENTS\n"), "");
    EXPECT_TRUE(r.design.components.empty());
    EXPECT_EQ(r.design.rows.size(), 1U);
    EXPECT_EQ(r.design.placeParser.compNum, 0);
}

TEST(PlaceParser, NegativeCountReadsNoRecordLine)
{
    Reading r;
    EXPECT_EQ(r.place("COMPONENTS -3 ;\n" + ROW_LINE + "BIGNODES -1\n" + ROW_LINE), "");
    EXPECT_EQ(r.design.rows.size(), 2U);
    EXPECT_EQ(r.design.placeParser.compNum, -3);
    EXPECT_EQ(r.design.placeParser.macroNum, -1);
}

TEST(PlaceParser, CountThatIsNoNumberIsZero)
{
    Reading r;
    EXPECT_EQ(r.place("COMPONENTS ;\n" + ROW_LINE + "BIGNODES many\n" + ROW_LINE), "");
    EXPECT_EQ(r.design.rows.size(), 2U);
}

TEST(PlaceParser, CountTooLargeTakesTheFollowingLinesAsRecords)
{
    Reading r;
    r.place("COMPONENTS 2 ;\n" + componentRecord("u") + ROW_LINE + ROW_LINE + ROW_LINE);
    EXPECT_EQ(componentNames(r.design), (Names{"u", "row_0"}));
    const Component& taken = *r.design.components[1];
    EXPECT_EQ(taken.cellName, "core");
    EXPECT_EQ(taken.x, 0); // DO
    EXPECT_EQ(taken.y, 560);
    EXPECT_EQ(taken.orientName, "1");
    EXPECT_EQ(r.design.rows.size(), 1U);
}

TEST(PlaceParser, CountTooSmallLeavesTheRestToTheMainLoop)
{
    Reading r;
    EXPECT_EQ(r.place("COMPONENTS 1 ;\n" + componentRecord("u") + componentRecord("v") + ROW_LINE), "");
    EXPECT_EQ(componentNames(r.design), (Names{"u"}));
    EXPECT_EQ(r.design.rows.size(), 1U);
}

TEST(PlaceParser, FirstFillerAsFirstRecordYieldsNoComponents)
{
    Reading r;
    EXPECT_EQ(r.place("COMPONENTS 2 ;\n" + componentRecord("FILLER_1") + componentRecord("u") + ROW_LINE),
              "");
    EXPECT_TRUE(r.design.components.empty());
    EXPECT_TRUE(r.design.compIndex.empty());
    EXPECT_EQ(r.design.rows.size(), 1U);
    EXPECT_EQ(r.design.placeParser.compNum, 2);
}

TEST(PlaceParser, FirstFillerCutsTheListWhereItStands)
{
    Reading r;
    r.place("COMPONENTS 3 ;\n" + componentRecord("u") + componentRecord("FILLER_1") + componentRecord("v"));
    EXPECT_EQ(componentNames(r.design), (Names{"u"}));
}

TEST(PlaceParser, SecondLineOfTheFirstFillerGoesBackToTheMainLoop)
{
    Reading r;
    r.place("COMPONENTS 1 ;\n- FILLER_1 C0 ;\n" + ROW_LINE);
    EXPECT_EQ(r.design.rows.size(), 1U);
}

TEST(PlaceParser, FirstFillerNeedsNoTokenAfterItsName)
{
    Reading r;
    EXPECT_EQ(r.place("COMPONENTS 1 ;\n- FILLER_1"), "");
    EXPECT_TRUE(r.design.components.empty());
}

TEST(PlaceParser, OtherFillerNamesAreComponents)
{
    Reading r;
    r.place("COMPONENTS 4 ;\n" + componentRecord("FILLER_2") + componentRecord("FILLER_10") +
            componentRecord("FILLER") + componentRecord("filler_1"));
    EXPECT_EQ(componentNames(r.design), (Names{"FILLER_2", "FILLER_10", "FILLER", "filler_1"}));
}

TEST(PlaceParser, SeveralSectionsOfOneKindAreAppended)
{
    Reading r;
    r.place("COMPONENTS 1\n" + componentRecord("u") + "BIGNODES 1\n" + macroRecord("m") + "COMPONENTS 2\n" +
            componentRecord("v") + componentRecord("w") + "BIGNODES 1\n" + macroRecord("n"));
    EXPECT_EQ(componentNames(r.design), (Names{"u", "v", "w"}));
    ASSERT_EQ(r.design.macros.size(), 2U);
    EXPECT_EQ(r.design.macros[1]->name, "n");
    EXPECT_EQ(r.design.placeParser.compNum, 2);
    EXPECT_EQ(r.design.placeParser.macroNum, 1);
}

TEST(PlaceParser, MacroTakesItsFieldsByTokenPosition)
{
    Reading r;
    EXPECT_EQ(r.place("BIGNODES 1 ;\n- blk a b c -380 1900 d e 950 3800 f g\nROW is no keyword here\n"), "");
    ASSERT_EQ(r.design.macros.size(), 1U);
    const Macro& macro = *r.design.macros[0];
    EXPECT_EQ(macro.name, "blk");
    EXPECT_EQ(macro.x, -380);
    EXPECT_EQ(macro.y, 1900);
    EXPECT_EQ(macro.width, 950);
    EXPECT_EQ(macro.height, 3800);
    EXPECT_TRUE(r.design.rows.empty());
}

TEST(PlaceParser, MacroEntersTheTreeWithItsRectangle)
{
    Reading r;
    r.place("BIGNODES 1 ;\n" + macroRecord("m")); // from (380, 1900) to (1330, 5700)
    const auto hits = [&](int x, int y) { return qLib::searchItems(r.design.macroTree, x, y, x, y).size(); };
    EXPECT_EQ(hits(380, 1900), 1U);
    EXPECT_EQ(hits(1330, 5700), 1U);
    EXPECT_EQ(hits(379, 1900), 0U);
    EXPECT_EQ(hits(380, 1899), 0U);
    EXPECT_EQ(hits(1331, 5700), 0U);
    EXPECT_EQ(hits(1330, 5701), 0U);
}

TEST(PlaceParser, MacroOfWidthZeroEntersTheTreeAsADegenerateRectangle)
{
    Reading r;
    r.place("BIGNODES 1 ;\n- m + FIXED ( 380 0 ) N 0 1900 SIZE ;\n;\n");
    const std::vector<Macro*>& found = qLib::searchItems(r.design.macroTree, 380, 100, 380, 100);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0], r.design.macros.at(0));
    EXPECT_TRUE(qLib::searchItems(r.design.macroTree, 381, 100, 400, 100).empty());
}

struct CoreBoxCase {
    const char* name;
    const char* micrometres;
    int32_t want; ///< DBU
};

void PrintTo(const CoreBoxCase& row, std::ostream* out)
{
    *out << row.micrometres;
}

class CoreBoxValue : public testing::TestWithParam<CoreBoxCase> {};

TEST_P(CoreBoxValue, IsTruncatedTowardZeroAfterTheProduct)
{
    Reading r;
    EXPECT_EQ(r.place(coreBox({GetParam().micrometres, "0", "0", "0"})), "");
    EXPECT_EQ(r.design.boundXl, GetParam().want);
}

const CoreBoxCase CORE_BOX_CASES[] = {
    {"NotToNearest", "0.9999", 1999},
    {"NegativeTowardZero", "-0.0004", 0},
    {"NegativeTowardZeroToo", "-0.9999", -1999},
    {"Exact", "0.950", 1900},
    {"Integer", "3", 6000},
    {"Exponent", "1e2", 200000},
    {"TextIsZero", "wide", 0},
    {"PrefixCounts", "1.5um", 3000},
    {"LargestThatFits", "1073741.8235", 2147483647},
    {"TooLargeIsTheSmallestInteger", "1e9", std::numeric_limits<int32_t>::min()},
    {"TooSmallIsTheSmallestInteger", "-1e9", std::numeric_limits<int32_t>::min()},
    {"NotANumberIsTheSmallestInteger", "nan", std::numeric_limits<int32_t>::min()},
};

INSTANTIATE_TEST_SUITE_P(PlaceParser, CoreBoxValue, testing::ValuesIn(CORE_BOX_CASES),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(PlaceParser, CoreBoxHasBothXEdgesBeforeBothYEdges)
{
    Reading r;
    r.place(coreBox({"1", "2", "3", "4"}));
    EXPECT_EQ(r.design.boundXl, 2000);
    EXPECT_EQ(r.design.boundXh, 4000);
    EXPECT_EQ(r.design.boundYl, 6000);
    EXPECT_EQ(r.design.boundYh, 8000);
}

TEST(PlaceParser, CoreBoxLinesAreNotClassified)
{
    Reading r;
    EXPECT_EQ(
        r.place("PROPERTYDEFINITIONS\n" + ROW_LINE + "ROW a b 1 ;\nROW a b 2\nROW a b 3 ;\nROW a b 4 ;\n"),
        "");
    EXPECT_TRUE(r.design.rows.empty());
    EXPECT_EQ(r.design.boundXh, 4000);
    EXPECT_EQ(r.design.boundYh, 8000);
}

TEST(PlaceParser, TextInANumericPositionIsZero)
{
    Reading r;
    EXPECT_EQ(r.place("ROW r s left bottom N DO some BY 1 STEP wide 0 ;\n"), "");
    const Row& row = *r.design.rows.at(0);
    EXPECT_EQ(row.x, 0);
    EXPECT_EQ(row.y, 0);
    EXPECT_EQ(row.numSites, 0);
    EXPECT_EQ(row.step, 0);
}

TEST(PlaceParser, IntegerIsTheLongestDecimalPrefixCutTo32Bits)
{
    Reading r;
    r.place("ROW r s +12abc 4294967297 N DO 0x10 BY 1 STEP -2147483649 0 ;\n");
    const Row& row = *r.design.rows.at(0);
    EXPECT_EQ(row.x, 12);
    EXPECT_EQ(row.y, 1);
    EXPECT_EQ(row.numSites, 0);
    EXPECT_EQ(row.step, 2147483647);
}

TEST(PlaceParser, RunsOfSpacesCountAsOne)
{
    Reading r;
    r.place("ROW   r    s  5 6   N D   7 B 1 S     8   \n");
    const Row& row = *r.design.rows.at(0);
    EXPECT_EQ(row.name, "r");
    EXPECT_EQ(row.x, 5);
    EXPECT_EQ(row.numSites, 7);
    EXPECT_EQ(row.step, 8);
}

TEST(PlaceParser, TabIsPartOfAToken)
{
    Reading r;
    r.place("ROW r\tx s 5 6 N D 7 B 1 S 8\nROW\tr s 5 6 N D 7 B 1 S 8\n");
    ASSERT_EQ(r.design.rows.size(), 1U);
    EXPECT_EQ(r.design.rows[0]->name, "r\tx");
}

TEST(PlaceParser, EmptyLinesAndLinesOfSpacesAreSkipped)
{
    Reading r;
    EXPECT_EQ(r.place("\n\n   \n" + ROW_LINE + "\n \n" + ROW_LINE + "\n"), "");
    EXPECT_EQ(r.design.rows.size(), 2U);
}

TEST(PlaceParser, EmptyLineIsNoStatement)
{
    Reading r;
    r.place(ROW_LINE + "\n\n");
    EXPECT_EQ(r.design.placeParser.statementType, PlaceParser::ROW_STMT);
    r.place(ROW_LINE + " \n\n");
    EXPECT_EQ(r.design.placeParser.statementType, PlaceParser::OTHER_STMT) << "a line of spaces is one";
}

TEST(PlaceParser, LastLineWithoutALineEndIsProcessed)
{
    Reading r;
    r.place("DESIGN d ;\n" + ROW_LINE.substr(0, ROW_LINE.size() - 1));
    EXPECT_EQ(r.design.rows.size(), 1U);
    r.place("COMPONENTS 1\n- u C0 + PLACED ( 0 0 ) N ;\n+ SOURCE DIST ;");
    EXPECT_EQ(r.design.components.size(), 1U);
}

TEST(PlaceParser, EmptyFileIsAnEmptyDesign)
{
    Reading r;
    EXPECT_EQ(r.place(""), "");
    EXPECT_TRUE(r.design.rows.empty());
}

TEST(PlaceParser, FolderInPlaceOfTheFileIsAnEmptyDesign)
{
    Reading r;
    std::filesystem::create_directory(r.base + ".place");
    EXPECT_EQ(test::reportOf([&] { r.design.placeParser.run(r.base); }), "");
    EXPECT_TRUE(r.design.rows.empty());
}

TEST(PlaceParser, RunLeavesTheFileClosedAndCanRunAgain)
{
    Reading r;
    r.place(ROW_LINE);
    EXPECT_FALSE(r.design.placeParser.in.is_open());
    r.place(ROW_LINE);
    EXPECT_FALSE(r.design.placeParser.in.is_open());
    EXPECT_EQ(r.design.rows.size(), 2U);
}

// A carriage return is an ordinary character at the end of the last token.

TEST(PlaceParser, CoreBoxHeaderWithACarriageReturnIsNotRecognised)
{
    Reading r;
    EXPECT_EQ(r.place("PROPERTYDEFINITIONS\r\n  a b c ;\r\n  a b c 1 ;\r\n  a b c 1 ;\r\n  a b c 1 ;\r\n"),
              "");
    EXPECT_EQ(r.design.boundXl, 0);
}

TEST(PlaceParser, SectionHeadersWithACarriageReturnAreRecognised)
{
    Reading r;
    r.place("COMPONENTS 1\r\n- u C1 + PLACED ( 3800 0 ) FN ;\r\n  + SOURCE DIST ;\r\n"
            "BIGNODES 1 ;\r\n- m + FIXED ( 380 0 ) N 950 1900 SIZE ;\r\n;\r\n");
    EXPECT_EQ(componentNames(r.design), (Names{"u"}));
    EXPECT_EQ(r.design.components[0]->orient, Component::FN);
    EXPECT_EQ(r.design.macros.size(), 1U);
}

TEST(PlaceParser, CarriageReturnStaysPartOfTheLastToken)
{
    Reading r;
    r.place("ROW r s 0 0 N DO 560 BY 1 STEP 190\r\nCOMPONENTS 1\r\n- u C1 + PLACED ( 0 0 ) FN\r\n\r\n");
    EXPECT_EQ(r.design.rows.at(0)->step, 190);
    EXPECT_EQ(r.design.components.at(0)->orientName, "FN\r");
    EXPECT_EQ(r.design.components.at(0)->orient, Component::N);
}

TEST(PlaceParser, LineOfACarriageReturnAloneIsSkipped)
{
    Reading r;
    EXPECT_EQ(r.place("\r\nROW\r\n" + ROW_LINE), "");
    EXPECT_EQ(r.design.rows.size(), 1U);
}

// setStatement() and processStmt() as operations of their own.

struct StatementCase {
    const char* name;
    const char* line;
    PlaceParser::Statement_e want;
};

void PrintTo(const StatementCase& row, std::ostream* out)
{
    *out << row.name;
}

class Statement : public testing::TestWithParam<StatementCase> {};

TEST_P(Statement, HasTheKindOfItsFirstToken)
{
    Design design;
    std::string line = GetParam().line;
    design.placeParser.setStatement(line.data());
    EXPECT_EQ(design.placeParser.statementType, GetParam().want);
    EXPECT_EQ(design.placeParser.statement, line.data());
}

const StatementCase STATEMENT_CASES[] = {
    {"Row", "ROW row_0 core", PlaceParser::ROW_STMT},
    {"RowAlone", "ROW", PlaceParser::ROW_STMT},
    {"RowAndSpace", "ROW ", PlaceParser::ROW_STMT},
    {"Components", "COMPONENTS 3 ;", PlaceParser::COMPONENTS_STMT},
    {"Macros", "BIGNODES 3 ;", PlaceParser::BIGNODES_STMT},
    {"CoreBox", "PROPERTYDEFINITIONS", PlaceParser::PROPERTY_STMT},
    {"CoreBoxWithMore", "PROPERTYDEFINITIONS ;", PlaceParser::PROPERTY_STMT},
    {"CoreBoxWithCarriageReturn", "PROPERTYDEFINITIONS\r", PlaceParser::OTHER_STMT},
    {"IndentedKeyword", " ROW row_0 core", PlaceParser::OTHER_STMT},
    {"KeywordAfterATab", "\tROW row_0 core", PlaceParser::OTHER_STMT},
    {"KeywordBeforeATab", "ROW\trow_0 core", PlaceParser::OTHER_STMT},
    {"LongerWord", "ROWS row_0 core", PlaceParser::OTHER_STMT},
    {"ShorterWord", "RO row_0 core", PlaceParser::OTHER_STMT},
    {"LowerCase", "row row_0 core", PlaceParser::OTHER_STMT},
    {"ComponentLowerCase", "Components 1", PlaceParser::OTHER_STMT},
    {"EndOfASection", "END COMPONENTS", PlaceParser::OTHER_STMT},
    {"Empty", "", PlaceParser::OTHER_STMT},
    {"SpacesOnly", "   ", PlaceParser::OTHER_STMT},
};

INSTANTIATE_TEST_SUITE_P(PlaceParser, Statement, testing::ValuesIn(STATEMENT_CASES),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(PlaceParser, StatementIsCutBehindItsFirstTokenOnly)
{
    Design design;
    char line[] = "COMPONENTS 3 ;";
    design.placeParser.setStatement(line);
    EXPECT_STREQ(line, "COMPONENTS");
    EXPECT_STREQ(line + sizeof "COMPONENTS", "3 ;");
}

TEST(PlaceParser, RestOfAStatementIsItsOwnWhateverElseIsTokenised)
{
    Design design;
    char line[] = "ROW r s 5 6 N D 7 B 1 S 8";
    design.placeParser.setStatement(line);
    char other[] = "some other text";
    std::strtok(other, " ");
    design.placeParser.processStmt();
    ASSERT_EQ(design.rows.size(), 1U);
    EXPECT_EQ(design.rows[0]->step, 8);
}

TEST(PlaceParser, ProcessedStatementContinuesWithTheRestOfItsLine)
{
    Design design;
    char line[] = "ROW r s 5 6 N D 7 B 1 S 8";
    design.placeParser.setStatement(line);
    design.placeParser.processStmt();
    ASSERT_EQ(design.rows.size(), 1U);
    EXPECT_EQ(design.rows[0]->name, "r");
    EXPECT_EQ(design.rows[0]->step, 8);
}

TEST(PlaceParser, ProcessedSectionReadsItsRecordsFromTheStream)
{
    Reading r;
    PlaceParser& parser = r.design.placeParser;
    parser.in.open(r.dir.write("records", componentRecord("u") + componentRecord("v") + "the rest\n"));
    char line[] = "COMPONENTS 2 ;";
    parser.setStatement(line);
    parser.processStmt();
    EXPECT_EQ(componentNames(r.design), (Names{"u", "v"}));
    std::string rest;
    std::getline(parser.in, rest);
    EXPECT_EQ(rest, "the rest");
}

TEST(PlaceParser, ProcessedOtherStatementDoesNothing)
{
    Reading r;
    PlaceParser& parser = r.design.placeParser;
    parser.in.open(r.dir.write("records", "the rest\n"));
    char line[] = "END COMPONENTS";
    parser.setStatement(line);
    EXPECT_EQ(test::reportOf([&] { parser.processStmt(); }), "");
    std::string rest;
    std::getline(parser.in, rest);
    EXPECT_EQ(rest, "the rest");
}

TEST(PlaceParser, RowLineThatBeginsWithASpaceOrATabIsSkipped)
{
    Reading r;
    EXPECT_EQ(r.place(" " + ROW_LINE + "  " + ROW_LINE + "\t" + ROW_LINE), "");
    EXPECT_TRUE(r.design.rows.empty());
}

TEST(PlaceParser, LineWhoseFirstTokenIsRowsIsNoRow)
{
    Reading r;
    EXPECT_EQ(r.place("ROWS row_0 core 0 0 N DO 560 BY 1 STEP 190 0 ;\n"), "");
    EXPECT_TRUE(r.design.rows.empty());
}

TEST(PlaceParser, KeywordInsideALineIsNone)
{
    Reading r;
    EXPECT_EQ(r.place("END ROW\nEND COMPONENTS 5\nx BIGNODES 5\nx PROPERTYDEFINITIONS\n"), "");
    EXPECT_TRUE(r.design.components.empty());
}

} // namespace
