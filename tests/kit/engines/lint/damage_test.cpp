// SPDX-License-Identifier: BSD-3-Clause
// What lint says of each kind of damage: all of its lines but the last.
#include <sstream>

#include "kit/engines/lint/smallDesign.h"

namespace {

using test::Damage;
using test::KitOutcome;
using test::SmallDesign;

struct DamageCase {
    const char* name;
    std::vector<Damage> damages;
    int status;
    std::vector<std::string> lines;
};

void PrintTo(const DamageCase& row, std::ostream* out)
{
    *out << row.name;
}

class Lint : public testing::TestWithParam<DamageCase> {};

std::vector<std::string> linesButLast(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    if (!lines.empty()) {
        lines.pop_back();
    }
    return lines;
}

TEST_P(Lint, TellsTheDamage)
{
    const KitOutcome outcome = SmallDesign(GetParam().damages).lint();
    EXPECT_EQ(linesButLast(outcome.output), GetParam().lines);
    EXPECT_EQ(outcome.status, GetParam().status);
    EXPECT_EQ(outcome.error, "");
}

const DamageCase DAMAGES[] = {
    {"Sound", {}, 0, {}},
    {"RowWithoutStep",
     {{"d.place", "ROW row_0 core 0 0 N DO 12 BY 1 STEP 190 0 ;", "ROW row_0 core 0 0 N DO 12 BY 1 STEP"}},
     2,
     {"d.place:10: error: ROW has 11 tokens of 12, and the placer ends here; complete the line "
      "[missing-tokens]",
      "d.place:14: error: u1 at (0 0) is in no free part of a row, and the placer puts it into any; place it "
      "on a row, clear of macros [off-row]",
      "d.place:16: error: u2 at (380 0) is in no free part of a row, and the placer puts it into any; place "
      "it on a row, clear of macros [off-row]",
      "d.place:18: error: u3 at (760 0) is in no free part of a row, and the placer puts it into any; place "
      "it on a row, clear of macros [off-row]"}},
    {"RowWithSurplusTokens",
     {{"d.place", "ROW row_0 core 0 0 N DO 12 BY 1 STEP 190 0 ;",
       "ROW row_0 core 0 0 N DO 12 BY 1 STEP 190 0 0 ;"}},
     1,
     {"d.place:10: warning: ROW goes on with \"0\", which the placer ignores; remove what follows, or check "
      "the tokens before it [surplus-tokens]"}},
    {"RowWithOtherPunctuation",
     {{"d.place", "ROW row_0 core 0 0 N DO 12 BY 1 STEP 190 0 ;",
       "ROW row_0 core 0 0 N FOR 12 X 2 BY 190 0 ;"}},
     1,
     {"d.place:10: warning: token 7 of the ROW is \"FOR\" where \"DO\" belongs; check that no token is "
      "missing before it: the placer counts them [punctuation]",
      "d.place:10: warning: token 9 of the ROW is \"X\" where \"BY\" belongs; check that no token is missing "
      "before it: the placer counts them [punctuation]",
      "d.place:10: warning: token 10 of the ROW is \"2\" where \"1\" belongs; check that no token is missing "
      "before it: the placer counts them [punctuation]",
      "d.place:10: warning: token 11 of the ROW is \"BY\" where \"STEP\" belongs; check that no token is "
      "missing before it: the placer counts them [punctuation]"}},
    {"RowWithTextForNumber",
     {{"d.place", "ROW row_0 core 0 0 N DO 12 BY 1 STEP 190 0 ;",
       "ROW row_0 core 0 0 N DO 12x BY 1 STEP 190 0 ;"}},
     2,
     {"d.place:10: error: token 8 of the ROW, \"12x\", is no 32-bit integer, and the placer takes 12; write "
      "a whole number [not-a-number]"}},
    {"RowBeyondIntegers",
     {{"d.place", "ROW row_0 core 0 0 N DO 12 BY 1 STEP 190 0 ;",
       "ROW row_0 core 0 0 N DO 4294967308 BY 1 STEP 190 0 ;"}},
     2,
     {"d.place:10: error: token 8 of the ROW, \"4294967308\", is no 32-bit integer, and the placer takes 12; "
      "write a whole number [not-a-number]"}},
    {"IndentedRow",
     {{"d.place", "ROW row_0 core 0 0 N DO 12 BY 1 STEP 190 0 ;",
       " ROW row_0 core 0 0 N DO 12 BY 1 STEP 190 0 ;"}},
     2,
     {"d.place:10: error: the placer ignores this ROW line; let the keyword start the line, in capitals, "
      "with a space behind it [hidden-keyword]"}},
    {"RowInSmallLetters",
     {{"d.place", "ROW row_0 core 0 0 N DO 12 BY 1 STEP 190 0 ;",
       "row row_0 core 0 0 N DO 12 BY 1 STEP 190 0 ;"}},
     2,
     {"d.place:10: error: the placer ignores this ROW line; let the keyword start the line, in capitals, "
      "with a space behind it [hidden-keyword]"}},
    {"UnitsOfNothing",
     {{"d.place", "VERSION 5.6 ;\n", "VERSION 5.6 ;\nUNITS DISTANCE MICRONS 0 ;\n"}},
     1,
     {"d.place:2: warning: UNITS DISTANCE MICRONS has \"0\" where a positive integer belongs; write the DBU "
      "of a "
      "micrometre: markers and pictures take 2000 [units]"}},
    {"TabBehindKeyword",
     {{"d.place", "COMPONENTS 4 ;", "COMPONENTS\t4 ;"}},
     2,
     {"d.place:13: error: the placer ignores this COMPONENTS line; let the keyword start the line, in "
      "capitals, with a space behind it [hidden-keyword]",
      "d.place:13: warning: the placer takes a tab for part of a token; write spaces [tab]"}},
    {"IndentedSection",
     {{"d.place", "BIGNODES 1 ;", " BIGNODES 1 ;"}},
     2,
     {"d.place:24: error: the placer ignores this BIGNODES line; let the keyword start the line, in "
      "capitals, with a space behind it [hidden-keyword]"}},
    {"IndentedCoreBox",
     {{"d.place", "PROPERTYDEFINITIONS\n  COMP", " PROPERTYDEFINITIONS\n  COMP"}},
     1,
     {"d.place:2: warning: the placer ignores this PROPERTYDEFINITIONS line; let the keyword start the line, "
      "in capitals, with a space behind it [hidden-keyword]"}},
    {"TabInRecord",
     {{"d.place", "( 0 0 ) N", "( 0 0 )\tN N"}},
     1,
     {"d.place:14: warning: token 9 of the component is \")\\x09N\" where \")\" belongs; check that no token "
      "is "
      "missing before it: the placer counts them [punctuation]",
      "d.place:14: warning: the placer takes a tab for part of a token; write spaces [tab]"}},
    {"TabInName",
     {{"d.place", "- u1 INV", "- u1\t INV"}},
     2,
     {"d.place:14: warning: the placer takes a tab for part of a token; write spaces [tab]",
      "d.netlist:2: error: u1 is neither a component nor a pin; add it, or correct the name [unknown-member]",
      "d.netlist:3: error: u1 is neither a component nor a pin; add it, or correct the name "
      "[unknown-member]"}},
    {"LongLine",
     {{"d.place", "END COMPONENTS", "END COMPONENTS " + std::string(241, 'x')}},
     2,
     {"d.place:22: error: the line has 256 characters, and the placer reads nothing after the first 255; "
      "break or shorten it [long-line]"}},
    {"LineAtItsLongest", {{"d.place", "END COMPONENTS", "END COMPONENTS " + std::string(240, 'x')}}, 0, {}},
    {"CarriageReturns",
     {{"d.place", "( 760 0 ) N\n", "( 760 0 ) N\r\n"}},
     1,
     {"d.place:18: warning: carriage returns stand at the end of 1 line, and belong to the last token there: "
      "FN is then taken as N; convert the file to plain line ends [carriage-return]"}},
    {"CarriageReturnBehindMirrored",
     {{"d.place", "( 380 0 ) FN\n", "( 380 0 ) FN\r\n"}},
     1,
     {"d.place:16: warning: carriage returns stand at the end of 1 line, and belong to the last token there: "
      "FN is then taken as N; convert the file to plain line ends [carriage-return]"}},
    {"CountTooSmall",
     {{"d.place", "COMPONENTS 4", "COMPONENTS 3"}},
     2,
     {"d.place:13: error: COMPONENTS says 3 records, and 4 follow; the placer leaves the rest out; write 4 "
      "[wrong-count]"}},
    {"CountTooLarge",
     {{"d.place", "COMPONENTS 4", "COMPONENTS 5"}},
     2,
     {"d.place:13: error: COMPONENTS says 5 records, and 4 follow; the placer reads on behind the section, "
      "and ends; write 4 [wrong-count]"}},
    {"CountMissing",
     {{"d.place", "COMPONENTS 4 ;", "COMPONENTS"}},
     2,
     {"d.place:13: error: COMPONENTS has 1 token of 2, and the placer ends here; complete the line "
      "[missing-tokens]"}},
    {"CountIsText",
     {{"d.place", "BIGNODES 1", "BIGNODES one"}},
     2,
     {"d.place:24: error: token 2 of the BIGNODES, \"one\", is no 32-bit integer, and the placer takes 0; "
      "write a whole number [not-a-number]"}},
    {"CountWithSurplusTokens",
     {{"d.place", "BIGNODES 1 ;", "BIGNODES 1 2"}},
     1,
     {"d.place:24: warning: BIGNODES goes on with \"2\", which the placer ignores; remove what follows, or "
      "check the tokens before it [surplus-tokens]"}},
    {"RecordTooShort",
     {{"d.place", "- u3 NAND + PLACED ( 760 0 ) N", "- u3 NAND + PLACED ( 760 0"}},
     2,
     {"d.place:18: error: component has 8 tokens of 10, and the placer ends here; complete the line "
      "[missing-tokens]",
      "d.netlist:4: error: u3 is neither a component nor a pin; add it, or correct the name [unknown-member]",
      "d.netlist:5: error: u3 is neither a component nor a pin; add it, or correct the name "
      "[unknown-member]"}},
    {"RecordLacksToken",
     {{"d.place", "- u3 NAND + PLACED ( 760 0 ) N", "- u3 NAND PLACED ( 760 0 ) N ;"}},
     2,
     {"d.place:16: warning: u2 at (380 0) overlaps u3 (line 18), which ends at 570, and the placer moves "
      "them apart; legalize the placement first [overlap]",
      "d.place:18: warning: the orientation of u3 is ;, and the placer takes it as N; write N, FS or, if it "
      "is mirrored left to right, FN [orientation]",
      "d.place:18: warning: u3 at (0 0) overlaps u1 (line 14), which ends at 380, and the placer moves them "
      "apart; legalize the placement first [overlap]",
      "d.place:18: warning: token 6 of the component is \"760\" where \"(\" belongs; check that no token is "
      "missing before it: the placer counts them [punctuation]",
      "d.place:18: error: token 8 of the component, \")\", is no 32-bit integer, and the placer takes 0; "
      "write a whole number [not-a-number]",
      "d.place:18: warning: token 9 of the component is \"N\" where \")\" belongs; check that no token is "
      "missing before it: the placer counts them [punctuation]"}},
    {"RecordGoesOn",
     {{"d.place", "( 760 0 ) N", "( 760 0 ) N + FIXED"}},
     1,
     {"d.place:18: warning: component goes on with \"+\", which the placer ignores; remove what follows, or "
      "check the tokens before it [surplus-tokens]"}},
    {"RecordWithoutDash",
     {{"d.place", "- u1 INV", "* u1 INV"}},
     1,
     {"d.place:14: warning: token 1 of the component is \"*\" where \"-\" belongs; check that no token is "
      "missing before it: the placer counts them [punctuation]"}},
    {"RecordWithoutSecondLine",
     {{"d.place", "- u1 INV + PLACED ( 0 0 ) N\n ;\n", "- u1 INV + PLACED ( 0 0 ) N ;\n"}},
     2,
     {"d.place:15: error: a record stands where the second line of the component before it belongs, and the "
      "placer passes over it; end each record with a line of its own, \" ;\" [no-second-line]"}},
    {"LastRecordWithoutSecondLine",
     {{"d.place", "- u4 INV + PLACED ( 1520 1900 ) FS\n ;\n", "- u4 INV + PLACED ( 1520 1900 ) FS\n"}},
     1,
     {"d.place:21: warning: the end of the section stands where the second line of the component before it "
      "belongs, and the placer passes over it; end each record with a line of its own, \" ;\" "
      "[no-second-line]"}},
    {"StatementForSecondLine",
     {{"d.place",
       "END COMPONENTS\n\nBIGNODES 1 ;\n- tap_1 TAP + ( 0 1900 ) ( 190 1900 ) N\n ;\nEND BIGNODES\n",
       "END COMPONENTS\n\nBIGNODES 1 ;\n- tap_1 TAP + ( 0 1900 ) ( 190 1900 ) N\nROW row_2 core 0 3800 N DO "
       "12 BY 1 STEP 190 0 ;\n"}},
     2,
     {"d.place:26: error: a statement stands where the second line of the macro before it belongs, and the "
      "placer passes over it; end each record with a line of its own, \" ;\" [no-second-line]"}},
    {"FileEndsInRecord",
     {{"d.place", " ;\nEND BIGNODES\n", ""}},
     2,
     {"d.place:25: error: the file ends before the second line of the macro; end each record with a line of "
      "its own, \" ;\" [short-section]"}},
    {"BlankLineInSection",
     {{"d.place", "- u1 INV + PLACED ( 0 0 ) N\n ;\n", "- u1 INV + PLACED ( 0 0 ) N\n ;\n\n"}},
     2,
     {"d.place:16: error: a blank line stands where the placer reads a component, and it ends here; remove "
      "it [blank-line]"}},
    {"MacroTooShort",
     {{"d.place", "( 190 1900 ) N", "( 190 1900 )"}},
     2,
     {"d.place:25: error: macro has 12 tokens of 13, and the placer ends here; complete the line "
      "[missing-tokens]"}},
    {"MacroWithTextForNumber",
     {{"d.place", "( 190 1900 ) N", "( 190 tall ) N"}},
     2,
     {"d.place:25: warning: macro tap_1 is 190 by 0; correct its size, or remove it [macro-size]",
      "d.place:25: error: token 11 of the macro, \"tall\", is no 32-bit integer, and the placer takes 0; "
      "write a whole number [not-a-number]"}},
    {"MacroGoesOn",
     {{"d.place", "( 190 1900 ) N", "( 190 1900 ) N + FIXED"}},
     1,
     {"d.place:25: warning: macro goes on with \"+\", which the placer ignores; remove what follows, or "
      "check the tokens before it [surplus-tokens]"}},
    {"MacroWithOtherPunctuation",
     {{"d.place", "+ ( 0 1900 ) (", "+ [ 0 1900 ] ["}},
     1,
     {"d.place:25: warning: token 5 of the macro is \"[\" where \"(\" belongs; check that no token is "
      "missing before it: the placer counts them [punctuation]",
      "d.place:25: warning: token 8 of the macro is \"]\" where \")\" belongs; check that no token is "
      "missing before it: the placer counts them [punctuation]"}},
    {"CoreBoxTooShort",
     {{"d.place", "  DESIGN CORE_BOX_UR_Y REAL 1.9000 ;\n", ""}},
     2,
     {"d.place:2: error: PROPERTYDEFINITIONS has fewer than the five lines that the placer takes for the "
      "core box; write a line of any kind and the four edges [short-section]"}},
    {"CoreBoxWithoutEdge",
     {{"d.place", "UR_Y REAL 1.9000 ;", "UR_Y"}},
     2,
     {"d.place:7: error: core box property has 2 tokens of 4, and the placer ends here; complete the line "
      "[missing-tokens]"}},
    {"CoreBoxIsText",
     {{"d.place", "REAL 1.1400 ;", "REAL wide ;"}},
     1,
     {"d.place:5: warning: token 4 of the core box property, \"wide\", is no number; write the edge in "
      "micrometres [not-a-number]"}},
    {"UnknownCell",
     {{"d.place", "- u1 INV", "- u1 INVX"}},
     2,
     {"d.place:14: error: the cell INVX of u1 is not in the cell list; add it to the list, with a colour "
      "file, or correct the name [unknown-cell]"}},
    {"BehindFiller",
     {{"d.place", "- u4 INV + PLACED ( 1520 1900 ) FS\n ;\n",
       "- FILLER_1 FILL + PLACED ( 2090 0 ) N\n ;\n- u4 INV + PLACED ( 1520 1900 ) FS\n ;\n"}},
     2,
     {"d.place:13: warning: COMPONENTS says 4 records, and 5 follow; write 5 [wrong-count]",
      "d.place:20: note: the placer leaves out FILLER_1 and what follows it, 2 records in all; that is no "
      "problem if they are fillers [fillers]",
      "d.place:22: warning: u4 stands after FILLER_1, and the placer leaves it out; move its record before "
      "FILLER_1 [after-filler]",
      "d.netlist:5: error: u4 stands after FILLER_1 in the placement, and the placer does not know it; move "
      "its record before FILLER_1 [unknown-member]"}},
    {"FillerCountTooLarge",
     {{"d.place", "COMPONENTS 4 ;",
       "COMPONENTS 4 ;\nEND COMPONENTS\nCOMPONENTS 2 ;\n- FILLER_1 FILL + PLACED ( 2090 0 ) N\n ;\nEND "
       "COMPONENTS\nCOMPONENTS 4 ;"}},
     2,
     {"d.place:13: error: COMPONENTS says 4 records, and 0 follow; the placer reads on behind the section, "
      "and ends; write 0 [wrong-count]",
      "d.place:15: warning: COMPONENTS says 2 records, and 1 follow; write 1 [wrong-count]",
      "d.place:16: note: the placer leaves out FILLER_1 and what follows it, 1 record in all; that is no "
      "problem if they are fillers [fillers]"}},
    {"ListCountTooSmall",
     {{"d.cells", "2", "1"}},
     2,
     {"d.cells:1: error: the list says 1 cell, and 2 names follow; write 2 [wrong-count]"}},
    {"ListCountTooLarge",
     {{"d.cells", "2", "3"}},
     2,
     {"d.cells:1: error: the list says 3 cells, and 2 names follow; write 2 [wrong-count]"}},
    {"ListCountIsText",
     {{"d.cells", "2", "two"}},
     2,
     {"d.cells:1: error: the number of cells, \"two\", is no 32-bit integer; begin the list with the number "
      "of cells [not-a-number]"}},
    {"CellListedTwice",
     {{"d.cells", "2\nINV NAND", "3\nINV NAND\nINV"}},
     1,
     {"d.cells:3: warning: the cell INV is also on line 2, and the components get the later one; rename or "
      "remove one of them [duplicate-name]"}},
    {"NoCells",
     {{"d.cells", "2\nINV NAND", "0"}},
     2,
     {"d.cells: error: there are no cells, and the placer ends at the first component; list the cells of the "
      "components [no-cells]"}},
    {"NoColourFile",
     {{"lib/INV.color", "", ""}},
     2,
     {"d.cells:2: error: cannot open file lib/INV.color: No such file or directory; write the colour file, "
      "or correct the cell's name "
      "[no-file]"}},
    {"NoCellList",
     {{"d.cells", "", ""}},
     2,
     {"d.cells: error: cannot open file d.cells: No such file or directory; write it, or correct BASE "
      "[no-file]"}},
    {"NoPlacement",
     {{"d.place", "", ""}},
     2,
     {"d.place: error: cannot open file d.place: No such file or directory; write it, or correct BASE "
      "[no-file]"}},
    {"NoPins",
     {{"d.pins", "", ""}},
     2,
     {"d.pins: error: cannot open file d.pins: No such file or directory; write it, or correct BASE "
      "[no-file]"}},
    {"NoNetlist",
     {{"d.netlist", "", ""}},
     2,
     {"d.netlist: error: cannot open file d.netlist: No such file or directory; write it, or correct BASE "
      "[no-file]"}},
    {"ColourFileIsText",
     {{"lib/INV.color", "380 1900\n", "380 high\n"}},
     2,
     {"lib/INV.color:1: error: the cell height, \"high\", is no 32-bit integer; write a whole number "
      "[not-a-number]",
      "lib/INV.color:7: warning: shape 2 has a rectangle (0 1815)-(380 1985) that lies outside the cell, (0 "
      "0)-(380 0), above or below; move it inside, or correct the cell's size [outside-cell]",
      "lib/INV.color:9: warning: shape 3 has a rectangle (20 400)-(85 1500) that lies outside the cell, (0 "
      "0)-(380 0), above or below; move it inside, or correct the cell's size [outside-cell]",
      "lib/INV.color:11: warning: shape 4 has a rectangle (295 400)-(360 1500) that lies outside the cell, "
      "(0 0)-(380 0), above or below; move it inside, or correct the cell's size [outside-cell]",
      "lib/NAND.color:1: warning: the cell's height is 1900 and that of INV 0, and the placer takes every "
      "cell to be one row high; leave cells of other heights out, or make them macros [cell-height]",
      "d.place:10: warning: the rows are 1900 high, and the cells 0 at this step; check that the library "
      "belongs to the design [row-height]"}},
    {"ColourFileEndsEarly",
     {{"lib/INV.color", "0  0 0 1 2\n", "0  0 0 1\n"}},
     2,
     {"lib/INV.color:15: error: the file ends before the mask; complete it, or correct the counts "
      "[short-file]"}},
    {"ColourFileGoesOn",
     {{"lib/INV.color", "0  0 0 1 2\n", "0  0 0 1 2 0\n"}},
     1,
     {"lib/INV.color:15: warning: the file goes on with \"0\" after the last mask, which the placer ignores; "
      "check the counts of shapes and solutions [surplus-tokens]"}},
    {"CountBeyondFile",
     {{"lib/INV.color", "1900\n4\n1\n", "1900\n4\n1000\n"}},
     2,
     {"lib/INV.color:5: error: the number of rectangles is 1000, which the file cannot hold; correct it "
      "[wrong-count]"}},
    {"CountOfBoxesIsText",
     {{"lib/INV.color", "380 1900\n1\n", "380 1900\nbox\n"}},
     2,
     {"lib/INV.color:2: error: the number of header boxes, \"box\", is no 32-bit integer; write a whole "
      "number [not-a-number]"}},
    {"NegativeWidth",
     {{"lib/INV.color", "380 1900\n1", "-380 1900\n1"}},
     2,
     {"lib/INV.color:1: error: the cell is -380 wide, and the placer ends here; correct the width "
      "[cell-size]",
      "lib/INV.color:5: error: shape 1 has a rectangle (0 -85)-(380 85) that lies outside the cell, (0 "
      "0)-(-380 1900), left or right; move it inside, or correct the cell's size [outside-cell]",
      "lib/INV.color:7: error: shape 2 has a rectangle (0 1815)-(380 1985) that lies outside the cell, (0 "
      "0)-(-380 1900), left or right; move it inside, or correct the cell's size [outside-cell]",
      "lib/INV.color:9: error: shape 3 has a rectangle (20 400)-(85 1500) that lies outside the cell, (0 "
      "0)-(-380 1900), left or right; move it inside, or correct the cell's size [outside-cell]",
      "lib/INV.color:11: error: shape 4 has a rectangle (295 400)-(360 1500) that lies outside the cell, (0 "
      "0)-(-380 1900), left or right; move it inside, or correct the cell's size [outside-cell]"}},
    {"NoWidth",
     {{"lib/INV.color", "380 1900\n1", "0 1900\n1"}},
     2,
     {"lib/INV.color:1: warning: the cell has no width; correct the width [cell-size]",
      "lib/INV.color:5: error: shape 1 has a rectangle (0 -85)-(380 85) that lies outside the cell, (0 0)-(0 "
      "1900), left or right; move it inside, or correct the cell's size [outside-cell]",
      "lib/INV.color:7: error: shape 2 has a rectangle (0 1815)-(380 1985) that lies outside the cell, (0 "
      "0)-(0 1900), left or right; move it inside, or correct the cell's size [outside-cell]",
      "lib/INV.color:9: error: shape 3 has a rectangle (20 400)-(85 1500) that lies outside the cell, (0 "
      "0)-(0 1900), left or right; move it inside, or correct the cell's size [outside-cell]",
      "lib/INV.color:11: error: shape 4 has a rectangle (295 400)-(360 1500) that lies outside the cell, (0 "
      "0)-(0 1900), left or right; move it inside, or correct the cell's size [outside-cell]"}},
    {"OddWidth",
     {{"lib/INV.color", "380 1900\n1", "400 1900\n1"}},
     1,
     {"lib/INV.color:1: warning: the cell's width, 400, is no whole number of sites of 190, and the placer "
      "rounds it up; make it a multiple of 190 [cell-size]",
      "d.place:16: warning: u2 at (380 0) overlaps u1 (line 14), which ends at 570, and the placer moves "
      "them apart; legalize the placement first [overlap]",
      "d.place:18: warning: u3 at (760 0) overlaps u2 (line 16), which ends at 950, and the placer moves "
      "them apart; legalize the placement first [overlap]"}},
    {"OtherHeight",
     {{"lib/INV.color", "380 1900\n1", "380 1800\n1"}},
     1,
     {"lib/INV.color:7: warning: shape 2 has a rectangle (0 1815)-(380 1985) that lies outside the cell, (0 "
      "0)-(380 1800), above or below; move it inside, or correct the cell's size [outside-cell]",
      "lib/NAND.color:1: warning: the cell's height is 1900 and that of INV 1800, and the placer takes every "
      "cell to be one row high; leave cells of other heights out, or make them macros [cell-height]",
      "d.place:10: warning: the rows are 1900 high, and the cells 1800 at this step; check that the library "
      "belongs to the design [row-height]"}},
    {"NoSolutionsInUse",
     {{"lib/INV.color", "2\n0  0 0 1 1\n0  0 0 1 2\n", "0\n"}},
     2,
     {"lib/INV.color: error: the cell has no colour solution, 3 components of it make the placer end; add a "
      "solution [no-solutions]"}},
    {"MaskOutOfRange",
     {{"lib/INV.color", "0  0 0 1 2", "0  0 0 1 3"}},
     2,
     {"lib/INV.color:15: error: shape 4 is on mask 3, and the placer sees no conflict there; the masks are "
      "0, 1 and 2 [mask-range]"}},
    {"NegativeMask",
     {{"lib/INV.color", "0  0 0 1 2", "0  0 0 -1 2"}},
     2,
     {"lib/INV.color:15: error: shape 3 is on mask -1, and the placer sees no conflict there; the masks are "
      "0, 1 and 2 [mask-range]"}},
    {"ShapeBesideCell",
     {{"lib/INV.color", "295 400 360", "295 400 390"}},
     2,
     {"lib/INV.color:11: error: shape 4 has a rectangle (295 400)-(390 1500) that lies outside the cell, (0 "
      "0)-(380 1900), left or right; move it inside, or correct the cell's size [outside-cell]"}},
    {"ShapeAboveCell",
     {{"lib/INV.color", "295 400 360 1500", "295 1995 360 2000"}},
     1,
     {"lib/INV.color:11: warning: shape 4 has a rectangle (295 1995)-(360 2000) that lies outside the cell, "
      "(0 0)-(380 1900), above or below; move it inside, or correct the cell's size [outside-cell]"}},
    {"ShapesOffOrigin",
     {{"lib/INV.color", "0 -85 380 85\n1\n0 1815", "5 -85 380 85\n1\n5 1815"}},
     1,
     {"lib/INV.color:5: warning: the leftmost shape begins at 5, and the placer moves all shapes until it "
      "begins at 0; let the rails span the cell [origin]"}},
    {"ShapeWithoutRectangles",
     {{"lib/INV.color", "1\n20 400 85 1500", "0"}},
     1,
     {"lib/INV.color:9: warning: shape 3 has no rectangles; remove it [empty-shape]"}},
    {"SameMaskTooClose",
     {{"lib/INV.color", "295 400 360", "200 400 360"}},
     1,
     {"lib/INV.color:14: warning: shapes 3 and 4 are on mask 1 and only 115 apart, less than 185; colour "
      "them differently: the placer does not look inside a cell [same-mask]"}},
    {"SameMaskAtDistance", {{"lib/INV.color", "295 400 360", "270 400 360"}}, 0, {}},
    {"SameMaskTouching", {{"lib/INV.color", "20 400 85 1500\n1\n295", "20 400 295 1500\n1\n295"}}, 0, {}},
    {"ComponentTwice",
     {{"d.place", "- u3 NAND", "- u1 NAND"}},
     2,
     {"d.place:18: error: the component u1 is also on line 14, and all nets of that name get the later one; "
      "rename or remove one of them [duplicate-name]",
      "d.netlist:4: error: u3 is neither a component nor a pin; add it, or correct the name [unknown-member]",
      "d.netlist:5: error: u3 is neither a component nor a pin; add it, or correct the name "
      "[unknown-member]"}},
    {"RowTwice",
     {{"d.place", "ROW row_1", "ROW row_0"}},
     1,
     {"d.place:11: warning: the row row_0 is also on line 10; rename or remove one of them "
      "[duplicate-name]"}},
    {"MacroTwice",
     {{"d.place", "BIGNODES 1 ;\n- tap_1 TAP + ( 0 1900 ) ( 190 1900 ) N\n ;\n",
       "BIGNODES 2 ;\n- tap_1 TAP + ( 0 1900 ) ( 190 1900 ) N\n ;\n- tap_1 TAP + ( 190 1900 ) ( 190 1900 ) "
       "N\n ;\n"}},
     1,
     {"d.place:27: warning: the macro tap_1 is also on line 25; rename or remove one of them "
      "[duplicate-name]"}},
    {"PinTwice",
     {{"d.pins", "2\nin  0    950\n", "3\nin  0    950\nin  0    0\n"}},
     2,
     {"d.pins:3: error: the pin in is also on line 2, and all nets of that name get the later one; rename or "
      "remove one of them [duplicate-name]"}},
    {"PinNamedAsComponent",
     {{"d.pins", "2\nin", "3\nu1 0 0\nin"}},
     1,
     {"d.pins:2: warning: the pin u1 has the name of a component (line 14 of the placement), and nets of "
      "that name get the component; rename one of them [duplicate-name]"}},
    {"OtherStep",
     {{"d.place", "ROW row_1 core 0 1900 FS DO 12 BY 1 STEP 190 0 ;",
       "ROW row_1 core 0 1900 FS DO 12 BY 1 STEP 380 0 ;"}},
     2,
     {"d.place:11: error: the step of row row_1 is 380, and the placer takes the first row's, 190; give all "
      "rows one step [row-step]"}},
    {"NoStep",
     {{"d.place", "12 BY 1 STEP 190", "12 BY 1 STEP 0"}, {"d.place", "12 BY 1 STEP 190", "12 BY 1 STEP 0"}},
     2,
     {"d.place:10: error: the first row's step is 0, and the placer ends; write the distance of two sites "
      "[row-step]",
      "d.place:16: error: u2 at (380 0) is in no free part of a row, and the placer puts it into any; place "
      "it on a row, clear of macros [off-row]",
      "d.place:18: error: u3 at (760 0) is in no free part of a row, and the placer puts it into any; place "
      "it on a row, clear of macros [off-row]",
      "d.place:20: error: u4 at (1520 1900) is in no free part of a row, and the placer puts it into any; "
      "place it on a row, clear of macros [off-row]",
      "d.place:25: error: macro tap_1 reaches or touches an end of row row_1 (line 11) from outside, and the "
      "placer makes a segment outside the row; cut the macro at the row's end, or leave a gap between them "
      "[macro-ends]"}},
    {"SingleRowOfOtherStep",
     {{"d.place",
       "ROW row_0 core 0 0 N DO 12 BY 1 STEP 190 0 ;\nROW row_1 core 0 1900 FS DO 12 BY 1 STEP 190 0 ;",
       "ROW row_0 core 0 0 N DO 12 BY 1 STEP 200 0 ;"}},
     2,
     {"d.place:10: warning: with a single row the placer does not take its step, 200, but -siteW, 190 by "
      "default; write a design of 190 to the site, or a second row [row-step]",
      "d.place:19: error: u4 at (1520 1900) is in no free part of a row, and the placer puts it into any; "
      "place it on a row, clear of macros [off-row]"}},
    {"SecondRowAtFirstY",
     {{"d.place", "ROW row_1 core 0 1900 FS DO 12 BY 1 STEP 190 0 ;",
       "ROW row_1 core 0 1900 FS DO 12 BY 1 STEP 190 0 ;\nROW row_2 core 4560 0 N DO 12 BY 1 STEP 190 0 ;"}},
     2,
     {"d.place:10: error: the placer takes the rows to be 0 high, the least distance to the first row, but "
      "two rows are 1900 apart; list the rows by y, with no second row at the first one's y [row-height]"}},
    {"RowOffPitch",
     {{"d.place", "ROW row_1 core 0 1900 FS DO 12 BY 1 STEP 190 0 ;",
       "ROW row_1 core 0 1900 FS DO 12 BY 1 STEP 190 0 ;\nROW row_2 core 0 4000 N DO 12 BY 1 STEP 190 0 ;"}},
     1,
     {"d.place:12: warning: row row_2 is at y 4000, no whole number of row heights, 1900, from the first "
      "row; check its y [row-pitch]"}},
    {"RowsOfOtherHeight",
     {{"d.place", "ROW row_1 core 0 1900 FS DO 12 BY 1 STEP 190 0 ;",
       "ROW row_1 core 0 2000 FS DO 12 BY 1 STEP 190 0 ;"}},
     1,
     {"d.place:10: warning: the rows are 2000 high, and the cells 1900 at this step; check that the library "
      "belongs to the design [row-height]",
      "d.place:14: warning: u1 at (0 0) overlaps a macro, and the placer moves it into the part of the row "
      "from 190 to 2280; move it there [over-macro]",
      "d.place:20: warning: u4 at (1520 1900) is between rows, and the placer moves it to one of them; give "
      "it the y of a row: that of row_0 is 0 [off-row]"}},
    {"EmptyRow",
     {{"d.place", "ROW row_1 core 0 1900 FS DO 12 BY 1 STEP 190 0 ;",
       "ROW row_1 core 0 1900 FS DO 12 BY 1 STEP 190 0 ;\nROW row_2 core 0 3800 N DO 0 BY 1 STEP 190 0 ;"}},
     0,
     {"d.place:12: note: row row_2 has 0 sites; that is no problem if it is meant [row-empty]"}},
    {"RowOverRow",
     {{"d.place", "ROW row_1 core 0 1900 FS DO 12 BY 1 STEP 190 0 ;",
       "ROW row_1 core 0 1900 FS DO 12 BY 1 STEP 190 0 ;\nROW row_2 core 1900 1900 N DO 12 BY 1 STEP 190 0 "
       ";"}},
     2,
     {"d.place:12: error: row row_2 lies over row row_1 (line 11), and the placer fills both; remove or move "
      "one of them [row-overlap]"}},
    {"NoRows",
     {{"d.place",
       "ROW row_0 core 0 0 N DO 12 BY 1 STEP 190 0 ;\nROW row_1 core 0 1900 FS DO 12 BY 1 STEP 190 0 ;", ""}},
     2,
     {"d.place: error: there are no rows, and the components have no place; add the rows [no-rows]"}},
    {"MacroOverRowEnd",
     {{"d.place", "( 0 1900 ) ( 190", "( -190 1900 ) ( 380"}},
     2,
     {"d.place:25: error: macro tap_1 reaches or touches an end of row row_1 (line 11) from outside, and the "
      "placer makes a segment outside the row; cut the macro at the row's end, or leave a gap between them "
      "[macro-ends]"}},
    {"MacroTouchesRowEnd",
     {{"d.place", "( 0 1900 ) ( 190", "( 2280 1900 ) ( 190"}},
     2,
     {"d.place:25: error: macro tap_1 reaches or touches an end of row row_1 (line 11) from outside, and the "
      "placer makes a segment outside the row; cut the macro at the row's end, or leave a gap between them "
      "[macro-ends]"}},
    {"MacroBesideRow", {{"d.place", "( 0 1900 ) ( 190", "( 2281 1900 ) ( 190"}}, 0, {}},
    {"MacroOffGrid",
     {{"d.place", "( 0 1900 ) ( 190", "( 0 1900 ) ( 200"}},
     1,
     {"d.place:20: warning: u4 at (1520 1900) is off the site grid, and the placer moves it to the right; "
      "give it an x of 200 and a multiple of 190 [off-site]",
      "d.place:25: warning: macro tap_1 ends off the site grid of row row_1, and the placer counts the sites "
      "behind it from there; move its right edge to a multiple of 190 from the row's start [macro-grid]"}},
    {"MacroOverMacro",
     {{"d.place", "BIGNODES 1 ;\n- tap_1 TAP + ( 0 1900 ) ( 190 1900 ) N\n ;\n",
       "BIGNODES 2 ;\n- tap_1 TAP + ( 0 1900 ) ( 190 1900 ) N\n ;\n- tap_2 TAP + ( 0 1900 ) ( 380 1900 ) N\n "
       ";\n"}},
     2,
     {"d.place:27: error: macro tap_2 overlaps macro tap_1 (line 25) in a row, and the placer cuts the row "
      "wrongly; join them into one [macro-overlap]"}},
    {"MacroWithoutWidth",
     {{"d.place", "( 190 1900 ) N", "( 0 1900 ) N"}},
     1,
     {"d.place:25: warning: macro tap_1 is 0 by 1900; correct its size, or remove it [macro-size]"}},
    {"OtherOrientation",
     {{"d.place", "( 0 0 ) N", "( 0 0 ) W"}},
     1,
     {"d.place:14: warning: the orientation of u1 is W, and the placer takes it as N; write N, FS or, if it "
      "is mirrored left to right, FN [orientation]"}},
    {"RotatedComponent",
     {{"d.place", "( 0 0 ) N", "( 0 0 ) S"}},
     1,
     {"d.place:14: warning: the orientation of u1 is S, and the placer takes it as N; write FN: a cell in S "
      "is mirrored left to right [orientation]"}},
    {"OffEveryRow",
     {{"d.place", "( 1520 1900 )", "( 1520 9500 )"}},
     2,
     {"d.place:20: error: u4 at (1520 9500) is in no free part of a row, and the placer puts it into any; "
      "place it on a row, clear of macros [off-row]"}},
    {"BetweenRows",
     {{"d.place", "( 1520 1900 )", "( 1520 1910 )"}},
     1,
     {"d.place:20: warning: u4 at (1520 1910) is between rows, and the placer moves it to one of them; give "
      "it the y of a row: that of row_1 is 1900 [off-row]"}},
    {"OffSiteGrid",
     {{"d.place", "( 1520 1900 )", "( 1530 1900 )"}},
     1,
     {"d.place:20: warning: u4 at (1530 1900) is off the site grid, and the placer moves it to the right; "
      "give it an x of 190 and a multiple of 190 [off-site]"}},
    {"OverRowEnd",
     {{"d.place", "( 1520 1900 )", "( 2090 1900 )"}},
     1,
     {"d.place:20: warning: u4 at (2090 1900) sticks out of row row_1, and the placer moves it into the part "
      "of the row from 190 to 2280; move it there [outside-row]"}},
    {"OverMacro",
     {{"d.place", "( 1520 1900 )", "( 0 1900 )"}},
     1,
     {"d.place:20: warning: u4 at (0 1900) overlaps a macro, and the placer moves it into the part of the "
      "row from 190 to 2280; move it there [over-macro]"}},
    {"ComponentsOverlap",
     {{"d.place", "( 760 0 )", "( 570 0 )"}},
     1,
     {"d.place:18: warning: u3 at (570 0) overlaps u2 (line 16), which ends at 760, and the placer moves "
      "them apart; legalize the placement first [overlap]"}},
    {"OverfullRow",
     {{"d.place", "ROW row_0 core 0 0 N DO 12 BY 1 STEP 190 0 ;",
       "ROW row_0 core 0 0 N DO 6 BY 1 STEP 190 0 ;"}},
     1,
     {"d.place:10: warning: the components in row row_0 from x 0 on take 7 sites of 6 (117 %), which fits "
      "only if others leave the row; move some of them to other rows [overfull-row]",
      "d.place:18: warning: u3 at (760 0) sticks out of row row_0, and the placer moves it into the part of "
      "the row from 0 to 1140; move it there [outside-row]"}},
    {"FullRow",
     {{"d.place", "ROW row_0 core 0 0 N DO 12 BY 1 STEP 190 0 ;",
       "ROW row_0 core 0 0 N DO 7 BY 1 STEP 190 0 ;"}},
     0,
     {}},
    {"OverfullDesign",
     {{"d.place",
       "ROW row_0 core 0 0 N DO 12 BY 1 STEP 190 0 ;\nROW row_1 core 0 1900 FS DO 12 BY 1 STEP 190 0 ;",
       "ROW row_0 core 0 0 N DO 6 BY 1 STEP 190 0 ;\nROW row_1 core 0 1900 FS DO 2 BY 1 STEP 190 0 ;"}},
     2,
     {"d.place: error: the components take 9 sites of the 7 in all rows, and no placement is legal; add "
      "rows, or remove cells [overfull-design]",
      "d.place:10: warning: the components in row row_0 from x 0 on take 7 sites of 6 (117 %), which fits "
      "only if others leave the row; move some of them to other rows [overfull-row]",
      "d.place:18: warning: u3 at (760 0) sticks out of row row_0, and the placer moves it into the part of "
      "the row from 0 to 1140; move it there [outside-row]",
      "d.place:20: error: u4 at (1520 1900) is in no free part of a row, and the placer puts it into any; "
      "place it on a row, clear of macros [off-row]"}},
    {"RowTooFullForItsColours",
     {{"lib/INV.color", "0  0 0 1 1\n0  0 0 1 2\n", "0  0 0 1 1\n0  0 0 1 1\n"},
      {"d.place", "DO 12", "DO 7"}},
     1,
     {"d.place:10: warning: the components in row row_0 from x 0 on take 8 sites of 7 (115 %), spacings "
      "included, whatever the colour solutions, in the order in which they stand; leave more room in the "
      "row, or add solutions to its cells [overfull-colors]"}},
    {"PinCountTooSmall",
     {{"d.pins", "2\n", "1\n"}},
     2,
     {"d.pins:1: error: the file says 1 pin, and 2 follow; write 2 [wrong-count]"}},
    {"PinCountTooLarge",
     {{"d.pins", "2\n", "3\n"}},
     2,
     {"d.pins:1: error: the file says 3 pins, and 2 follow; write 2 [wrong-count]"}},
    {"PinCountIsText",
     {{"d.pins", "2\nin", "few\nin"}},
     2,
     {"d.pins:1: error: the number of pins, \"few\", is no 32-bit integer; begin the file with the number of "
      "pins [not-a-number]"}},
    {"PinIsText",
     {{"d.pins", "0    950", "0    high"}},
     2,
     {"d.pins:2: error: pin in is not a name and two 32-bit integers: \"high\"; write NAME X Y "
      "[not-a-number]",
      "d.netlist:2: error: in is neither a component nor a pin; add it, or correct the name "
      "[unknown-member]"}},
    {"PinsEndEarly",
     {{"d.pins", "2280 950\n", "2280\n"}},
     2,
     {"d.pins:3: error: pin out is not a name and two 32-bit integers: the file ends; write NAME X Y "
      "[not-a-number]",
      "d.netlist:4: error: out is neither a component nor a pin; add it, or correct the name "
      "[unknown-member]"}},
    {"NetCountTooSmall",
     {{"d.netlist", "4\n", "3\n"}},
     2,
     {"d.netlist:1: error: the file says 3 nets, and 4 follow; the placer leaves the rest out; write 4 "
      "[wrong-count]"}},
    {"NetCountTooLarge",
     {{"d.netlist", "4\n", "5\n"}},
     1,
     {"d.netlist:1: warning: the file says 5 nets, and 4 follow; write 4 [wrong-count]"}},
    {"NetCountIsText",
     {{"d.netlist", "4\n", "four\n"}},
     2,
     {"d.netlist:1: error: the number of nets, \"four\", is no 32-bit integer; begin the file with the "
      "number of nets [not-a-number]"}},
    {"UnknownMember",
     {{"d.netlist", "2 u1 u2", "2 u1 u9"}},
     2,
     {"d.netlist:3: error: u9 is neither a component nor a pin; add it, or correct the name "
      "[unknown-member]"}},
    {"FillerInNet",
     {{"d.place", "- u4 INV + PLACED ( 1520 1900 ) FS\n ;\n",
       "- FILLER_1 INV + PLACED ( 2090 0 ) N\n ;\n- u4 INV + PLACED ( 1520 1900 ) FS\n ;\n"}},
     2,
     {"d.place:13: warning: COMPONENTS says 4 records, and 5 follow; write 5 [wrong-count]",
      "d.place:20: note: the placer leaves out FILLER_1 and what follows it, 2 records in all; that is no "
      "problem if they are fillers [fillers]",
      "d.place:22: warning: u4 stands after FILLER_1, and the placer leaves it out; move its record before "
      "FILLER_1 [after-filler]",
      "d.netlist:5: error: u4 stands after FILLER_1 in the placement, and the placer does not know it; move "
      "its record before FILLER_1 [unknown-member]"}},
    {"DegreeTooLarge",
     {{"d.netlist", "2 u1 u2", "3 u1 u2"}},
     2,
     {"d.netlist:3: error: the net has the degree 3, and 2 follow, and the placer ends here; correct the "
      "degree, or add the members [short-net]"}},
    {"DegreeTooSmall",
     {{"d.netlist", "3 u2 u3 out", "2 u2 u3 out"}},
     2,
     {"d.netlist:1: error: the file says 4 nets, and 5 follow; the placer leaves the rest out; write 5 "
      "[wrong-count]",
      "d.netlist:4: error: the degree of a net is no 32-bit integer but \"out\", and the placer reads no "
      "more nets; write the number of its members, or correct that of the net before [not-a-number]"}},
    {"DegreeOne",
     {{"d.netlist", "2 u1 u2", "1 u1"}},
     0,
     {"d.netlist:3: note: the net has the degree 1, and the placer drops it: it has no wirelength; that is "
      "no problem if it is meant [small-net]"}},
    {"UnknownMemberOfDegreeOne",
     {{"d.netlist", "2 u1 u2", "1 u9"}},
     1,
     {"d.netlist:3: note: the net has the degree 1, and the placer drops it: it has no wirelength; that is "
      "no problem if it is meant [small-net]",
      "d.netlist:3: warning: u9 is neither a component nor a pin; add it, or correct the name "
      "[unknown-member]"}},
    {"NegativeDegree",
     {{"d.netlist", "2 u1 u2", "-2"}},
     1,
     {"d.netlist:3: warning: the net has the degree -2, and the placer drops it: it has no wirelength; "
      "correct the degree [small-net]"}},
    {"NetEndsEarly",
     {{"d.netlist", "2 u3 u4", "2 u3"}},
     2,
     {"d.netlist:5: error: the net has the degree 2, and 1 follow before the file ends, and the placer ends "
      "here; correct the degree, or add the members [short-net]"}},
};

INSTANTIATE_TEST_SUITE_P(Damages, Lint, testing::ValuesIn(DAMAGES), testing::PrintToStringParamName());

} // namespace
