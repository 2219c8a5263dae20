// SPDX-License-Identifier: BSD-3-Clause
// Each rule of the DEF reader, with what it makes of a text and says about it.
#include "kit/formats/lefdef/described.h"

namespace {

using test::describeDef;
using test::Lines;
using test::ReadCase;

class DefReader : public testing::TestWithParam<ReadCase> {};

TEST_P(DefReader, MakesThisOfTheText)
{
    EXPECT_EQ(describeDef(GetParam().text), GetParam().want);
}

const ReadCase HEADERS[] = {
    {"Statements",
     "VERSION 5.8 ;\nDIVIDERCHAR \"/\" ;\nBUSBITCHARS \"[]\" ;\nDESIGN gcd ;\nTECHNOLOGY t ;\n"
     "UNITS DISTANCE MICRONS 2000 ;\nDIEAREA ( 0 0 ) ( 100 200 ) ;\nEND DESIGN\n",
     {"design gcd", "units 2000", "die (0 0)(100 200)"}},
    {"SeveralOnALineAndOneOverSeveral",
     "VERSION 5.8 ; DESIGN\n\ngcd\n; UNITS DISTANCE MICRONS 2000 ; END DESIGN",
     {"design gcd", "units 2000"}},
    {"CarriageReturnsAndTabs", "VERSION\t5.8\t;\r\nDESIGN gcd ;\r\nEND DESIGN\r\n", {"design gcd"}},
    {"ByteOrderMark", "\xEF\xBB\xBFVERSION 5.8 ; DESIGN gcd ; END DESIGN", {"design gcd"}},
    {"CommentsAtWhereATokenStarts",
     "# DESIGN a ;\nDESIGN # b ;\ngcd#1 ; # ; END DESIGN\nEND DESIGN # of it",
     {"design gcd#1"}},
    {"StringHoldsAnything",
     "HISTORY \"a \\\" ; # b\nEND DESIGN\" ; DESIGN \"g c d\" ; END DESIGN",
     {"design g c d"}},
    {"HistoryIsAnyText", "HISTORY moved u1 - and u2 + the END of it ; DESIGN d ; END DESIGN", {"design d"}},
    {"EscapesStayInNames", "DESIGN \\a\\[1\\];\\\" ; END DESIGN", {"design \\a\\[1\\];\\\""}},
    {"SemicolonGluedToNumberAndKeyword",
     "VERSION 5.8; NAMESCASESENSITIVE ON; UNITS DISTANCE MICRONS 100; DIEAREA ( 0 0 ) ( 1 1 ); END DESIGN",
     {"units 100", "die (0 0)(1 1)"}},
    {"SemicolonGluedToNameBelongsToIt", "DESIGN gcd; ; END DESIGN", {"design gcd;"}},
    {"EmptyStatement", "; DESIGN gcd ; ; END DESIGN", {"design gcd"}},
    {"DieAreaOfCorners",
     "DIEAREA ( 0 10 ) ( 0 50 ) ( 40 * ) ( * -5 ) ( 10 -5 ) ( * 10 ) ; END DESIGN",
     {"die (0 -5)(40 50)"}},
    {"DieAreaOfOnePoint",
     "DIEAREA ( 0 10 ) ; END DESIGN",
     {"error syntax 1:18: \";\" stands where \"(\" belongs; correct the statement"}},
    {"UnitsOfZero",
     "UNITS DISTANCE MICRONS 0 ; END DESIGN",
     {"error range 1:24: the number of database units is 0; give a number from 1 on"}},
    {"UnknownVersion",
     "VERSION 5.2 ; VERSION 5.3 ; VERSION new ; END DESIGN",
     {"warning version 1:9: the version is \"5.2\", and 5.3 to 5.8 are known; look for statements that are "
      "skipped",
      "warning version 1:37: the version is \"new\", and 5.3 to 5.8 are known; look for statements that are "
      "skipped"}},
    {"NewerVersionPassesWithOneNote",
     "VERSION 6.0 ; NEWS 1 ; THINGS 1 ; - a + b ; END THINGS OTHERS 1 ; END OTHERS\n"
     "ROW r c 0 0 N DO 1 BY 1 STEP 1 1 TURNED ; COMPONENTS 1 ; - a INV + NEW x + PLACED ( 0 0 ) N ; END "
     "COMPONENTS "
     "END DESIGN",
     {"row r c (0 0) N 1x1 step (1 1)", "component a INV PLACED (0 0) N [PLACED ( 0 0 ) N]",
      "note version 1:9: the version is \"6.0\", and 5.3 to 5.8 are known; statements that are not known are "
      "passed over without a word"}},
    {"KeywordsInAnyCase",
     "version 5.8 ; Design D ; units distance microns 100; diearea ( 0 0 ) ( 1 1 ); row r c 0 0 fs do 2 by 1 "
     "step "
     "1 0 ;\n"
     "Vias 1 ; - v + ViaRule r ; end Vias components 1 ; - a INV + placed ( 1 2 ) fn ; end COMPONENTS\n"
     "pins 1 ; - end + net end + use power + fixed ( 1 2 ) n ; end pins specialnets 1 ; - s ( a end ) + use "
     "x ; end "
     "specialnets\n"
     "nets 2 ; - end ( PIN end ) + Routed m1 ( 0 0 ) end + use ground; - b ; end nets blockages 1 ; - "
     "placement + "
     "soft "
     "rect ( 0 0 ) ( 1 1 ) ; end blockages end design",
     {"design D", "units 100", "die (0 0)(1 1)", "row r c (0 0) FS 2x1 step (1 0)",
      "component a INV PLACED (1 2) FN [placed ( 1 2 ) fn]", "pin end on end at (1 2) supply",
      "net end PIN/end supply", "net b", "soft blockage (0 0)(1 1)"}},
    {"NamesWithoutCase",
     "NAMESCASESENSITIVE OFF ; END DESIGN",
     {"warning names-case 1:20: names are compared with their case all the same; write each name in one "
      "way"}},
    {"UnknownStatement",
     "DESIGNS gcd ; DESIGN gcd ; END DESIGN",
     {"design gcd",
      "warning unknown-statement 1:1: \"DESIGNS\" starts no known statement, and is ignored; see whether "
      "it is misspelt, or what stands before it is incomplete"}},
    {"UnknownSection",
     "THINGS 2 ; - a ; - b + PLACED ( 1 1 ) N ; END THINGS DESIGN gcd ; END DESIGN",
     {"design gcd",
      "warning unknown-statement 1:1: \"THINGS\" starts no known statement, and is ignored; see whether "
      "it is misspelt, or what stands before it is incomplete"}},
    {"EmptyFile", "", {"error no-end 1:1: the file \"DESIGN\" has no end; write END DESIGN behind it"}},
    {"NoEndOfFile",
     "DESIGN a ;\n",
     {"design a", "error no-end 2:1: the file \"DESIGN\" has no end; write END DESIGN behind it"}},
    {"StatementCutByTheEnd",
     "DESIGN a",
     {"error no-semicolon 1:9: the end of the file stands where a \";\" ends the statement; end it with a "
      "\";\" "
      "that has a blank before it",
      "error no-end 1:9: the file \"DESIGN\" has no end; write END DESIGN behind it"}},
    {"TextBehindTheEnd",
     "END DESIGN\nDESIGN a ;",
     {"warning after-end 2:1: what stands behind the end is not read; make a file of its own of it, or "
      "remove it"}},
    {"EndWithoutBegin",
     "END NETS\nDESIGN a ; END DESIGN",
     {"design a",
      "error wrong-end 1:1: END \"NETS\" stands where the file \"DESIGN\" ends; write END DESIGN"}},
    {"EndOfAnEmptyName",
     "END \"\"\nDESIGN a ; END DESIGN",
     {"design a", "error wrong-end 1:1: END \"\" stands where the file \"DESIGN\" ends; write END DESIGN"}},
    {"ZeroByte",
     std::string("DESIGN a\0b ; END DESIGN", 23),
     {std::string("design a\0b", 10), "error not-text 1:9: a zero byte stands here, and the file is no text; "
                                      "give a text file, or remove the byte"}},
    {"CompressedFile",
     "\x1f\x8b ; END DESIGN",
     {"error not-text 1:1: the file is compressed; unpack it first",
      "warning unknown-statement 1:1: \"\x1f\x8b\" starts no known statement, and is ignored; see "
      "whether "
      "it is misspelt, or what stands before it is incomplete"}},
    {"OpenQuotationMark",
     "DESIGN \"a ;\nEND DESIGN",
     {"design \"a", "error open-quote 1:8: a quotation mark has no second one; close the string"}},
    {"EmptyName",
     "DESIGN \"\" ; END DESIGN",
     {"error syntax 1:8: \"\" stands where the design's name belongs; correct the statement"}},
};
INSTANTIATE_TEST_SUITE_P(Headers, DefReader, testing::ValuesIn(HEADERS), testing::PrintToStringParamName());

const ReadCase ROWS[] = {
    {"AllOrientations",
     "ROW r core 0 -5 N DO 10 BY 1 STEP 380 0 ;\nROW r core 1 2 W ; ROW r c 0 0 S ; ROW r c 0 0 E ;\n"
     "ROW r c 0 0 FN ; ROW r c 0 0 FW ; ROW r c 0 0 FS DO 1 BY 9 STEP 0 10 ; ROW r c 0 0 FE ; END DESIGN",
     {"row r core (0 -5) N 10x1 step (380 0)", "row r core (1 2) W 1x1 step (0 0)",
      "row r c (0 0) S 1x1 step (0 0)", "row r c (0 0) E 1x1 step (0 0)", "row r c (0 0) FN 1x1 step (0 0)",
      "row r c (0 0) FW 1x1 step (0 0)", "row r c (0 0) FS 1x9 step (0 10)",
      "row r c (0 0) FE 1x1 step (0 0)"}},
    {"WithoutStepAndWithProperties",
     "ROW r c 0 0 N DO 3 BY 1 + PROPERTY a 1 b \"x ; y\" + PROPERTY c -2 ; END DESIGN",
     {"row r c (0 0) N 3x1 step (0 0)"}},
    {"WholeNumbersInAnyForm",
     "ROW r c +380 -0380.000 N DO 1e1 BY 1 STEP 3.8E2 0 ; END DESIGN",
     {"row r c (380 -380) N 10x1 step (380 0)"}},
    {"LargestCoordinates",
     "ROW r c 2147483647 -2147483648 N ; END DESIGN",
     {"row r c (2147483647 -2147483648) N 1x1 step (0 0)"}},
    {"CoordinateOutOfRange",
     "ROW r c 2147483648 0 N ; ROW r c 0 -2147483649 N ; ROW r c 99999999999999999999999 0 N ; END DESIGN",
     {"error range 1:9: the row's x coordinate, \"2147483648\", is out of range; give a number between "
      "-2147483648 and 2147483647",
      "error range 1:36: the row's y coordinate, \"-2147483649\", is out of range; give a number between "
      "-2147483648 and 2147483647",
      "error range 1:60: the row's x coordinate, \"99999999999999999999999\", is out of range; give a number "
      "between -2147483648 and 2147483647"}},
    {"NoNumber",
     "ROW r c x 0 N ; ROW r c 0 1.5 N ; ROW s c 0 0 N ; END DESIGN",
     {"row s c (0 0) N 1x1 step (0 0)",
      "error number 1:9: the row's x coordinate is \"x\", and a number belongs here; correct it",
      "error number 1:27: the row's y coordinate is \"1.5\", and a number belongs here; correct it"}},
    {"NoOrientation",
     "ROW r c 0 0 R0 ; END DESIGN",
     {"error orient 1:13: \"R0\" is no orientation; write N, S, W, E, FN, FS, FW or FE"}},
    {"NoColumns",
     "ROW r c 0 0 N DO 0 BY 1 ; ROW r c 0 0 N DO 1 BY -1 ; END DESIGN",
     {"error range 1:18: the number of columns is 0; give a number from 1 on",
      "error range 1:49: the number of rows is -1; give a number from 1 on"}},
    {"SurplusWord",
     "ROW r c 0 0 N TO 5 ; ROW r c 0 0 N DO 1 OF 2 ; END DESIGN",
     {"error no-semicolon 1:15: \"TO\" stands where a \";\" ends the statement; end it with a \";\" that has "
      "a "
      "blank before it",
      "error syntax 1:41: \"OF\" stands where \"BY\" belongs; correct the statement"}},
};
INSTANTIATE_TEST_SUITE_P(Rows, DefReader, testing::ValuesIn(ROWS), testing::PrintToStringParamName());

const ReadCase COMPONENTS[] = {
    {"OfEachStatus",
     "COMPONENTS 6 ;\n- a INV ; - b INV + UNPLACED ; - c INV + PLACED ( 1 -2 ) FS ;\n"
     "- d INV + FIXED ( 3 4 ) W ; - e INV + COVER ( 5 6 ) FE ; - f INV + UNPLACED ( 7 8 ) S ;\n"
     "END COMPONENTS END DESIGN",
     {"component a INV NONE (0 0) N []", "component b INV UNPLACED (0 0) N [UNPLACED]",
      "component c INV PLACED (1 -2) FS [PLACED ( 1 -2 ) FS]",
      "component d INV FIXED (3 4) W [FIXED ( 3 4 ) W]", "component e INV COVER (5 6) FE [COVER ( 5 6 ) FE]",
      "component f INV UNPLACED (7 8) S [UNPLACED ( 7 8 ) S]"}},
    {"WithEveryOption",
     "COMPONENTS 1 ; - a/b[1] INV_X1 + EEQMASTER INV_X2 + GENERATE g p + SOURCE TIMING + MASKSHIFT 102 + "
     "FIXED\n"
     "( 1 2 ) N + HALO SOFT 1 2 3 4 + ROUTEHALO 10 M1 M2 + WEIGHT 3 + REGION r + PROPERTY p \"+ PLACED ; - "
     "\" q "
     "-5 ; END COMPONENTS END DESIGN",
     {"component a/b[1] INV_X1 FIXED (1 2) N [FIXED\n( 1 2 ) N]", "soft halo of a/b[1] (1 2)(3 4)"}},
    {"SemicolonGluedToTheOrientation",
     "COMPONENTS 2 ; - a INV + PLACED ( 1 2 ) FN; - b INV + WEIGHT 3; END COMPONENTS END DESIGN",
     {"component a INV PLACED (1 2) FN [PLACED ( 1 2 ) FN]", "component b INV NONE (0 0) N []"}},
    {"NamesThatLookLikeSomethingElse",
     "COMPONENTS 2 ; - \"a b\" \"+\" ; - PLACED NETS + SOURCE ENDS; - c# \\d\" ; END COMPONENTS END DESIGN",
     {"component a b + NONE (0 0) N []", "component PLACED NETS NONE (0 0) N []",
      "component c# \\d\" NONE (0 0) N []",
      "warning wrong-count 1:1: COMPONENTS says 2 records, and 3 follow; "
      "write 3"}},
    {"NetsBehindTheMacro",
     "COMPONENTS 2 ; - a INV n1 n2 + PLACED ( 0 0 ) N ; - b INV ; END COMPONENTS END DESIGN",
     {"component b INV NONE (0 0) N []",
      "error syntax 1:24: \"n1\" stands where \"+\" belongs; correct the statement"}},
    {"NoPlace",
     "COMPONENTS 4 ; - a INV + PLACED ; - b INV + PLACED ( 1 ) N ; - c INV + FIXED ( 1 1 ) ; - d INV + "
     "PLACED ( "
     "1 3000000000 ) N ; END COMPONENTS END DESIGN",
     {"error syntax 1:33: \";\" stands where \"(\" belongs; correct the statement",
      "error syntax 1:56: \")\" stands where the y coordinate belongs; correct the statement",
      "error syntax 1:86: \";\" stands where the orientation belongs; correct the statement",
      "error range 1:109: the y coordinate, \"3000000000\", is out of range; give a number between "
      "-2147483648 "
      "and 2147483647"}},
    {"TwoPlaces",
     "COMPONENTS 1 ; - a INV + PLACED ( 1 1 ) N + FIXED ( 1 1 ) N ; END COMPONENTS END DESIGN",
     {"error place-twice 1:45: the component \"a\" has a second place; leave one"}},
    {"NameTwice",
     "COMPONENTS 3 ;\n- a INV ;\n- b INV ;\n- a BUF ;\nEND COMPONENTS END DESIGN",
     {"component a INV NONE (0 0) N []", "component b INV NONE (0 0) N []",
      "error name-twice 4:3: component \"a\" stands in line 2 already, and that one stays; give each its own "
      "name"}},
    {"WrongCount",
     "COMPONENTS 1 ; END COMPONENTS\nCOMPONENTS -1 ; - a INV ; END COMPONENTS END DESIGN",
     {"component a INV NONE (0 0) N []",
      "warning wrong-count 1:1: COMPONENTS says 1 record, and 0 follow; write 0",
      "warning wrong-count 2:1: COMPONENTS says -1 records, and 1 follow; write 1"}},
    {"HugeCount",
     "COMPONENTS 2147483647 ; - a INV ; END COMPONENTS END DESIGN",
     {"component a INV NONE (0 0) N []",
      "warning wrong-count 1:1: COMPONENTS says 2147483647 records, and 1 follow; write 1"}},
    {"NoCount",
     "COMPONENTS ; - a INV ; END COMPONENTS END DESIGN",
     {"component a INV NONE (0 0) N []",
      "error syntax 1:12: \";\" stands where the number of records belongs; correct the statement"}},
    {"NoSemicolon",
     "COMPONENTS 3\n- a INV + PLACED ( 1 1 ) N\n- b INV + SOURCE DIST\n- c INV\nEND COMPONENTS END DESIGN",
     {"error no-semicolon 2:1: \"-\" stands where a \";\" ends the statement; end it with a \";\" that has a "
      "blank "
      "before it",
      "error no-semicolon 3:1: \"-\" stands where a \";\" ends the statement; end it with a \";\" that has a "
      "blank "
      "before it",
      "error no-semicolon 4:1: \"-\" stands where a \";\" ends the statement; end it with a \";\" that has a "
      "blank "
      "before it",
      "error no-semicolon 5:1: \"END\" stands where a \";\" ends the statement; end it with a \";\" that has "
      "a "
      "blank before it"}},
    {"SemicolonTwice",
     "COMPONENTS 1 ; - a INV ; ; END COMPONENTS ; END DESIGN",
     {"component a INV NONE (0 0) N []"}},
    {"RecordWithoutDash",
     "COMPONENTS 2 ; a INV ; - b INV ; END COMPONENTS END DESIGN",
     {"component b INV NONE (0 0) N []",
      "error syntax 1:16: \"a\" stands where a record or END belongs; start each record with a \"-\" that "
      "has a "
      "blank behind it",
      "warning wrong-count 1:1: COMPONENTS says 2 records, and 1 follow; write 1"}},
    {"DashGluedToTheName",
     "COMPONENTS 1 ; -a INV ; END COMPONENTS END DESIGN",
     {"error syntax 1:16: \"-a\" stands where a record or END belongs; start each record with a \"-\" that "
      "has a "
      "blank behind it",
      "warning wrong-count 1:1: COMPONENTS says 1 record, and 0 follow; write 0"}},
    {"RecordWithoutMacro",
     "COMPONENTS 2 ; - a ; - ; END COMPONENTS END DESIGN",
     {"error syntax 1:20: \";\" stands where the name of the component's macro belongs; correct the "
      "statement",
      "error syntax 1:24: \";\" stands where the component's name belongs; correct the statement"}},
    {"EndOfAnother",
     "COMPONENTS 1 ; - a INV ; END COMPONENT\nDESIGN d ; END DESIGN",
     {"design d", "component a INV NONE (0 0) N []",
      "error wrong-end 1:26: END \"COMPONENT\" stands where the section \"COMPONENTS\" ends; write END "
      "COMPONENTS"}},
    {"EndWithoutName",
     "COMPONENTS 1 ; - a INV ; END\nPINS 1 ; - p ; END PINS END DESIGN",
     {"component a INV NONE (0 0) N []", "pin p on  not placed",
      "error wrong-end 1:26: END stands where the section \"COMPONENTS\" ends; write END COMPONENTS"}},
    {"EndOfTheDesign",
     "COMPONENTS 1 ; - a INV ; END DESIGN",
     {"component a INV NONE (0 0) N []", "error wrong-end 1:26: END \"DESIGN\" stands where the section "
                                         "\"COMPONENTS\" ends; write END COMPONENTS"}},
    {"EndMissing",
     "COMPONENTS 1 ; - a INV ;\nPINS 1 ; - p ; END PINS END DESIGN",
     {"component a INV NONE (0 0) N []", "pin p on  not placed",
      "error no-end 1:1: the section \"COMPONENTS\" has no end; write END COMPONENTS behind it"}},
    {"FileEndsInside",
     "COMPONENTS 2 ;\n- a INV ;\n- b INV + PLACED (",
     {"component a INV NONE (0 0) N []",
      "error syntax 3:19: the end of the file stands where the x coordinate belongs; correct the statement",
      "error no-end 1:1: the section \"COMPONENTS\" has no end; write END COMPONENTS behind it",
      "error no-end 3:19: the file \"DESIGN\" has no end; write END DESIGN behind it"}},
    {"EndInARecord",
     "COMPONENTS 1 ; - END COMPONENTS END DESIGN",
     {"error syntax 1:18: \"END\" stands where the component's name belongs; correct the statement"}},
    {"TwoSections",
     "COMPONENTS 1 ; - a INV ; END COMPONENTS COMPONENTS 2 ; - b INV ; - a INV ; END COMPONENTS END DESIGN",
     {"component a INV NONE (0 0) N []", "component b INV NONE (0 0) N []",
      "error name-twice 1:68: component \"a\" stands in line 1 already, and that one stays; give each its "
      "own "
      "name"}},
};
INSTANTIATE_TEST_SUITE_P(Components, DefReader, testing::ValuesIn(COMPONENTS),
                         testing::PrintToStringParamName());

const ReadCase PINS[] = {
    {"PlacedItselfOrInItsPorts",
     "PINS 6 ;\n- a + NET n + SPECIAL + DIRECTION INPUT + USE SIGNAL + LAYER M1 MASK 1 ( -1 -1 ) ( 1 1 ) + "
     "PLACED ( "
     "1 2 ) N ;\n"
     "- b + NET n + PORT + LAYER M1 ( 0 0 ) ( 1 1 ) + VIA v ( 0 0 ) + PORT + FIXED ( 3 4 ) S + PORT + COVER "
     "( 5 6 ) "
     "E ;\n"
     "- c + NET n + POLYGON M1 ( 0 0 ) ( 1 1 ) ( 2 2 ) ; - d + NET n + USE GROUND + NETEXPR \"p + USE\" ; - "
     "e ;\n"
     "- f + NET n + UNPLACED ; END PINS END DESIGN",
     {"pin a on n at (1 2)", "pin b on n at (3 4)", "pin c on n not placed", "pin d on n not placed supply",
      "pin e on  not placed", "pin f on n not placed"}},
    {"OfEachUse",
     "PINS 8 ; - a + USE POWER ; - b + USE GROUND ; - c + USE ANALOG ; - d + USE CLOCK ; - e + USE RESET ; - "
     "f + "
     "USE SCAN ; - g + USE SIGNAL ; - h + USE TIEOFF; END PINS END DESIGN",
     {"pin a on  not placed supply", "pin b on  not placed supply", "pin c on  not placed",
      "pin d on  not placed", "pin e on  not placed", "pin f on  not placed", "pin g on  not placed",
      "pin h on  not placed"}},
    {"OfNoUse",
     "PINS 1 ; - a + USE VDD ; END PINS END DESIGN",
     {"pin a on  not placed", "warning use 1:20: \"VDD\" is no use of a pin or net, and SIGNAL is taken; "
                              "write SIGNAL, ANALOG, CLOCK, POWER, GROUND, SCAN, "
                              "TIEOFF or RESET"}},
    {"NameTwice",
     "PINS 2 ; - a ;\n- a ; END PINS END DESIGN",
     {"pin a on  not placed",
      "warning name-twice 2:3: pin \"a\" stands in line 1 already, and that one stays; "
      "give each its own name"}},
    {"PlaceOutOfRange",
     "PINS 1 ; - a + PLACED ( 3e9 0 ) N ; END PINS END DESIGN",
     {"error range 1:25: the x coordinate, \"3e9\", is out of range; give a number between -2147483648 and "
      "2147483647"}},
};
INSTANTIATE_TEST_SUITE_P(Pins, DefReader, testing::ValuesIn(PINS), testing::PrintToStringParamName());

const ReadCase NETS[] = {
    {"MembersBeforeTheFirstOption",
     "NETS 4 ; - n1 ( u1 A ) ( u2 Z + SYNTHESIZED )\n( PIN in[0] ) ; - n2 ; - n3 ( u1 B ) + USE POWER ;\n"
     "- n4 ( PIN p + SYNTHESIZED ) + USE CLOCK + WEIGHT 3 ; END NETS END DESIGN",
     {"net n1 u1/A u2/Z PIN/in[0]", "net n2", "net n3 u1/B supply", "net n4 PIN/p"}},
    {"RoutingIsSkipped",
     "NETS 2 ; - n1 ( u1 A ) + ROUTED M1 ( 0 0 ) ( * 10 ) via1 NEW M2 ( -5 5 ) VIRTUAL ( 1 1 ) RECT ( 0 0 1 "
     "1 )\n"
     "NEW END_via 10 + USE GROUND + FIXED M1 ( 0 0 ) ; - n2 + COVER M1 ( 0 0 ) + NOSHIELD M1 ( 0 0 ) ; END "
     "NETS "
     "END DESIGN",
     {"net n1 u1/A supply", "net n2"}},
    {"EveryOtherOptionIsSkipped",
     "NETS 1 ; - n ( u1 A ) + SHIELDNET g + VPIN v LAYER M1 ( 0 0 ) ( 1 1 ) PLACED ( 0 0 ) N + SUBNET s ( u1 "
     "A ) "
     "( VPIN v ) ROUTED M1 ( 0 0 ) + XTALK 2 + NONDEFAULTRULE r + SOURCE NETLIST + FIXEDBUMP + FREQUENCY 1.5 "
     "+ "
     "ORIGINAL o + PATTERN STEINER + ESTCAP 1e-3 + PROPERTY p \"( u9 Z ) ; + USE POWER\" ; END NETS END "
     "DESIGN",
     {"net n u1/A"}},
    {"SemicolonGluedToTheRouting",
     "NETS 2 ; - n1 ( u1 A ) + ROUTED M1 ( 0 0 ) ( 0 10 ); - n2 + ROUTED M1 ( 0 0 ) ( 0 10 ) a;b ; END NETS "
     "END "
     "DESIGN",
     {"net n1 u1/A", "net n2"}},
    {"CommentsAndStringsInTheRouting",
     "NETS 1 ; - n ( u1 A ) + ROUTED M1 # ; - x ( y z ) ;\n\"; END NETS\" ( 0 0 ) x#y + USE GROUND ; END "
     "NETS END "
     "DESIGN",
     {"net n u1/A supply"}},
    {"MustJoinIsNoName",
     "NETS 2 ; - MUSTJOIN ( u1 A ) ; - MUSTJOIN ( u2 A ) ; END NETS END DESIGN",
     {"net MUSTJOIN u1/A", "net MUSTJOIN u2/A"}},
    {"PinsAsNamesLikeSigns",
     "NETS 1 ; - n ( u1 + ) ( u1 - ) ( u2 ; END NETS END DESIGN",
     {"error syntax 1:37: \";\" stands where the name of the component's pin belongs; correct the "
      "statement"}},
    {"SignsAreNamesOfPins", "NETS 1 ; - n ( u1 + ) ( u1 - ) ; END NETS END DESIGN", {"net n u1/+ u1/-"}},
    {"MembersOfABrokenNetAreLeftOut",
     "NETS 3 ; - a ( u1 A ) ; - b ( u2 B ) ( u3 C ; - c ( u4 D ) ; END NETS END DESIGN",
     {"net a u1/A", "net c u4/D",
      "error syntax 1:45: \";\" stands where \")\" belongs; correct the statement"}},
    {"NameTwice",
     "NETS 3 ; - a ( u1 A ) ;\n- a ( u2 A ) ;\n- b ( u3 A ) ; END NETS END DESIGN",
     {"net a u1/A", "net b u3/A",
      "warning name-twice 2:3: net \"a\" stands in line 1 already, and that one stays; give each its own "
      "name"}},
    {"NoSemicolonBehindTheRouting",
     "NETS 2 ; - a + ROUTED M1 ( 0 0 ) ( 1 0 )\n- b ; END NETS END DESIGN",
     {"net b", "error no-semicolon 2:1: \"-\" stands where a \";\" ends the statement; end it with a \";\" "
               "that has a blank "
               "before it"}},
    {"WordInPlaceOfSynthesized",
     "NETS 1 ; - a ( u1 A + NEW ) ; END NETS END DESIGN",
     {"error syntax 1:23: \"NEW\" stands where \"SYNTHESIZED\" belongs; correct the statement"}},
};
INSTANTIATE_TEST_SUITE_P(Nets, DefReader, testing::ValuesIn(NETS), testing::PrintToStringParamName());

const ReadCase BLOCKAGES[] = {
    {"OfPlacement",
     "BLOCKAGES 6 ; - PLACEMENT RECT ( 0 0 ) ( 10 20 ) RECT ( 30 20 ) ( 20 * ) ;\n"
     "- PLACEMENT + SOFT RECT ( 5 6 ) ( * 9 ) ; - PLACEMENT + PARTIAL 0.5 RECT ( 0 0 ) ( 1 1 ) ;\n"
     "- PLACEMENT + PUSHDOWN + COMPONENT RECT + EXCEPTPGNET RECT ( -1 -1 ) ( 1 1 ) ;\n"
     "- LAYER M1 + SLOTS RECT ( 0 0 ) ( 1 1 ) ; - LAYER M1 + MASK 1 POLYGON ( 0 0 ) ( 5 1 ) ( 9 9 ) ;\n"
     "END BLOCKAGES END DESIGN",
     {"blockage (0 0)(10 20) (20 20)(30 20)", "soft blockage (5 6)(5 9)", "soft blockage (0 0)(1 1)",
      "blockage (-1 -1)(1 1)"}},
    {"PolygonIsCutIntoRectangles",
     "BLOCKAGES 1 ; - PLACEMENT POLYGON ( 0 0 ) ( 0 20 ) ( 10 * ) ( * 10 ) ( 30 * ) ( * 0 ) RECT ( 50 50 ) ( "
     "60 60 ) "
     "; END BLOCKAGES END DESIGN",
     {"blockage (0 0)(30 10) (0 10)(10 20) (50 50)(60 60)"}},
    {"PolygonSlanted",
     "BLOCKAGES 2 ; - PLACEMENT POLYGON ( 0 0 ) ( 0 20 ) ( 10 10 ) ( 10 0 ) ; - PLACEMENT POLYGON ( 0 0 ) ( "
     "0 1 ) ( "
     "1 1 ) ; END BLOCKAGES END DESIGN",
     {"error polygon 1:35: the polygon has fewer than four corners, or a slanted edge; give one with "
      "horizontal and vertical edges",
      "error polygon 1:93: the polygon has fewer than four corners, or a slanted edge; give one with "
      "horizontal and vertical edges"}},
    {"FirstPointRepeatsNothing",
     "BLOCKAGES 1 ; - PLACEMENT RECT ( * 0 ) ( 1 1 ) ; END BLOCKAGES END DESIGN",
     {"error number 1:34: the x coordinate is \"*\", and a number belongs here; correct it"}},
    {"NoShape",
     "BLOCKAGES 3 ; - PLACEMENT ; - ROUTING RECT ( 0 0 ) ( 1 1 ) ; - PLACEMENT RECT ( 0 0 ) ( 1 1 ) + SOFT ; "
     "END "
     "BLOCKAGES END DESIGN",
     {"error syntax 1:27: \";\" stands where \"RECT\" belongs; correct the statement",
      "error syntax 1:31: \"ROUTING\" stands where \"PLACEMENT\" belongs; correct the statement",
      "error syntax 1:95: \"+\" stands where \"RECT\" belongs; correct the statement"}},
};
INSTANTIATE_TEST_SUITE_P(Blockages, DefReader, testing::ValuesIn(BLOCKAGES),
                         testing::PrintToStringParamName());

const ReadCase REGIONS[] = {
    {"OfEachType",
     "REGIONS 3 ; - a ( 0 5 ) ( 10 0 ) ( 20 0 ) ( 30 * ) + TYPE FENCE + PROPERTY p \"+ TYPE\" ; - b ( 0 0 ) "
     "( 1 1 ) + TYPE "
     "GUIDE ;\n"
     "- c ( 0 0 ) ( 1 1 ) ; END REGIONS END DESIGN",
     {"fence a (0 0)(10 5) (20 0)(30 0)", "guide b (0 0)(1 1)", "region c (0 0)(1 1)"}},
    {"OfNoType",
     "REGIONS 1 ; - a ( 0 0 ) ( 1 1 ) + TYPE WALL ; END REGIONS END DESIGN",
     {"error region 1:40: \"WALL\" is no type of a region; write FENCE or GUIDE"}},
    {"Groups",
     "GROUPS 3 ; - a u1 v/* + SOFT MAXX 5 MAXY 6 + REGION r + PROPERTY p 1 ; - b + REGION ( 0 0 ) ( 5 5 ) ; "
     "- c * ; END "
     "GROUPS END DESIGN",
     {"region b (0 0)(5 5)", "group a in [r] u1 v/*", "group b in [b]", "group c in [] *"}},
    {"OfComponents",
     "COMPONENTS 2 ; - a INV + REGION r + HALO 1 2 3 4 ; - b INV + REGION ( 0 0 ) ( 5 5 ) ; END COMPONENTS "
     "END DESIGN",
     {"component a INV NONE (0 0) N []", "component b INV NONE (0 0) N []", "region b (0 0)(5 5)",
      "halo of a (1 2)(3 4)"}},
};
INSTANTIATE_TEST_SUITE_P(Regions, DefReader, testing::ValuesIn(REGIONS), testing::PrintToStringParamName());

TEST(DefReader, KnowsWhereThingsStand)
{
    const std::string text =
        "ROW r s 0 0 N ;\nCOMPONENTS 2 ; - c1 INV + PLACED ( 0 0 ) N; - \"c2\" INV ; END COMPONENTS\n"
        "PINS 1 ; - p1 ; END PINS NETS 1 ; - n1 ; END NETS BLOCKAGES 1 ; - PLACEMENT RECT ( 0 0 ) "
        "( 1 1 ) ; END BLOCKAGES END DESIGN";
    const kit::lefdef::Source source("d.def", text);
    kit::Findings findings;
    const kit::lefdef::Def def = readDef(source, findings);
    EXPECT_EQ(def.rows.at(0).offset, text.find("ROW"));
    EXPECT_EQ(def.components.at(0).offset, text.find("c1"));
    EXPECT_EQ(def.components.at(0).endOffset, text.find("; - \"c2"));
    EXPECT_EQ(def.components.at(1).offset, text.find("\"c2"));
    EXPECT_EQ(def.components.at(1).endOffset, text.find("; END COMP"));
    EXPECT_EQ(def.pins.at(0).offset, text.find("p1"));
    EXPECT_EQ(def.nets.at(0).offset, text.find("n1"));
    EXPECT_EQ(def.blockages.at(0).offset, text.find("PLACEMENT"));
}

TEST(DefReader, TakesNoMemoryForWhatTheHeaderPromises)
{
    const kit::lefdef::Source source("d.def", "COMPONENTS 2000000000 ; - a INV ; END COMPONENTS END DESIGN");
    kit::Findings findings;
    EXPECT_LE(readDef(source, findings).components.capacity(), source.text().size());
}

/// What a DEF of more than a million bytes says.
Lines describeLarge(const std::string& before, const std::string& behind)
{
    return describeDef(before + "COMPONENTS 1 ;\n" + std::string(1 << 20U, '#') +
                       "\n- u INV + PLACED ( 1 2 ) N ;\nEND COMPONENTS\n" + behind);
}

TEST(DefReader, ReadsLargeFilesAsSmallOnes)
{
    struct Row {
        const char* name;
        std::string before;
        std::string behind;
    };
    const std::string nets =
        "NETS 2 ;\n- n ( u1 A ) ( PIN p ) + ROUTED m1 ( 0 0 ) ( * 5 ) ;\n- m ( u2 B ) ;\nEND NETS\n";
    const Row rows[] = {
        {"Nets", "", nets + "PINS 1 ;\n- p + NET n ;\nEND PINS\nEND DESIGN"},
        {"TwoSections", "", nets + "NETS 2 ;\n- k ( u3 C ) ;\n- n ;\nEND NETS\nEND DESIGN"},
        {"TwiceTheName", "", "NETS 2 ;\n- n ;\n- n ;\nEND NETS\nEND DESIGN"},
        {"WrongCount", "", "NETS 5 ;\n- n ;\nEND NETS\nEND DESIGN"},
        {"NoEnd", "", "NETS 1 ;\n- n ( u1 A ) ;\n"},
        {"InAString", "HISTORY \"\nNETS 1 ;\n- s ;\nEND NETS\n\" ;\n", nets + "END DESIGN"},
        {"InAnExtension", "BEGINEXT\nNETS 1 ;\n- s ;\nEND NETS\nENDEXT\n", nets + "END DESIGN"},
        {"OpenQuoteBefore", "DESIGN \"d ;\n", nets + "END DESIGN"},
        {"OpenQuoteInside", "", "NETS 1 ;\n- \"n ( u1 A ) ;\nEND NETS\nEND DESIGN"},
        {"LaterVersion", "VERSION 6.0 ;\n", "NETS 1 ;\n- n ( u1 A ) NEW ;\nEND NETS\nEND DESIGN"},
        {"NoNets", "", "END DESIGN"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        // Behind a blank, no section is read ahead.
        std::string slowly = row.behind;
        for (size_t at = 0; (at = slowly.find("NETS ", at)) != std::string::npos; at += 6) {
            slowly.insert(at, " ");
        }
        std::string before = row.before;
        if (before.find("\nNETS ") != std::string::npos) {
            before.replace(before.find("\nNETS "), 6, "\nNETZ ");
        }
        const Lines want = describeLarge(before, slowly);
        const Lines got = describeLarge(row.before, row.behind);
        ASSERT_EQ(got.size(), want.size());
        for (size_t i = 0; i < got.size(); ++i) { // the column of a finding may differ by the blank
            EXPECT_EQ(got[i].substr(0, got[i].find(':')), want[i].substr(0, want[i].find(':')));
        }
    }
}

TEST(DefReader, RefusesPolygonsOfTooManyCorners)
{
    std::string text = "BLOCKAGES 1 ; - PLACEMENT POLYGON ";
    for (int i = 0; i < 1001; ++i) {
        text += "( 0 0 ) ";
    }
    EXPECT_EQ(describeDef(text + "; END BLOCKAGES END DESIGN"),
              (Lines{"error polygon 1:35: the polygon has more than 1000 corners; cut it into several"}));
}

TEST(DefReader, TellsAThousandProblemsOfAKind)
{
    std::string text = "BLOCKAGES 3000 ;\n";
    for (int i = 0; i < 3000; ++i) {
        text += "- PLACEMENT ;\n";
    }
    for (int i = 0; i < 2000; ++i) {
        text += "END\n";
    }
    const Lines lines = describeDef(text + "THING ;\nEND DESIGN");
    ASSERT_EQ(lines.size(), 1002U);
    EXPECT_EQ(lines[0].substr(0, 17), "error syntax 2:13");
    EXPECT_EQ(lines[1000],
              "error too-many 1002:13: from here on no error is told, there were 1000 before; correct "
              "those first");
    EXPECT_EQ(lines[1001].substr(0, 33), "warning unknown-statement 5002:1:");
}

const ReadCase SKIPPED[] = {
    {"SectionsWithoutUse",
     "PROPERTYDEFINITIONS COMPONENTPROPERTY p STRING \"; END\" ; END PROPERTYDEFINITIONS\n"
     "VIAS 1 ; - v + RECT M1 ( 0 0 ) ( 1 1 ) ; END VIAS STYLES 1 ; - STYLE 0 ( 0 0 ) ; END STYLES\n"
     "NONDEFAULTRULES 1 ; - r + LAYER M1 WIDTH 1 ; END NONDEFAULTRULES "
     "PINPROPERTIES 1 ; - PIN p + PROPERTY a 1 ; END PINPROPERTIES SLOTS 1 ; - LAYER M1 RECT ( 0 0 ) ( 1 1 ) "
     "; END "
     "SLOTS\n"
     "FILLS 1 ; - LAYER M1 RECT ( 0 0 ) ( 1 1 ) ; END FILLS SPECIALNETS 9 ; - VDD ( * VDD ) + USE POWER ; "
     "END "
     "SPECIALNETS\n"
     "SCANCHAINS 1 ; - s + START a b ; END SCANCHAINS\n"
     "TRACKS X 0 DO 5 STEP 10 LAYER M1 ; GCELLGRID X 0 DO 5 STEP 10 ; DESIGN d ; END DESIGN",
     {"design d"}},
    {"Extension",
     "BEGINEXT \"tag\" anything ; - + END DESIGN NETS 5 ENDEXT DESIGN d ; END DESIGN",
     {"design d"}},
    {"ExtensionWithoutEnd",
     "BEGINEXT \"tag\" END DESIGN",
     {"error no-end 1:10: the extension has no end; write ENDEXT behind it",
      "error no-end 1:26: the file \"DESIGN\" has no end; write END DESIGN behind it"}},
    {"SectionWithoutEnd",
     "VIAS 1 ; - v ; END DESIGN",
     {"error wrong-end 1:16: END \"DESIGN\" stands where the section \"VIAS\" ends; write END VIAS"}},
    {"SectionUpToTheEndOfTheFile",
     "VIAS 1 ; - v ;",
     {"error no-end 1:6: the section \"VIAS\" has no end; write END VIAS behind it",
      "error no-end 1:15: the file \"DESIGN\" has no end; write END DESIGN behind it"}},
};
INSTANTIATE_TEST_SUITE_P(Skipped, DefReader, testing::ValuesIn(SKIPPED), testing::PrintToStringParamName());

struct Ports {
    const char* name;
    const char* options; ///< of the pin
    const char* want;    ///< half DBU
};

const Ports PORTS[] = {
    {"MiddleOfTheRectangle", "+ LAYER M1 ( -1 -1 ) ( 2 4 ) + PLACED ( 10 20 ) N", "(21 43)"},
    {"MiddleOfAllRectangles",
     "+ LAYER M1 MASK 1 SPACING 5 ( 0 0 ) ( 2 2 ) + LAYER M2 DESIGNRULEWIDTH 7 ( 4 0 ) ( 6 * ) + FIXED ( 0 0 "
     ") N",
     "(6 2)"},
    {"TurnedAboutItsPlace", "+ LAYER M1 ( 0 0 ) ( 2 4 ) + PLACED ( 0 0 ) W", "(-4 2)"},
    {"Mirrored", "+ LAYER M1 ( 0 0 ) ( 2 4 ) + COVER ( 0 0 ) FN", "(-2 4)"},
    {"WithoutARectangle", "+ PLACED ( 10 20 ) S", "(20 40)"},
    {"RectanglesBehindThePlaceAreNone", "+ PLACED ( 10 20 ) S + LAYER M1 ( 0 0 ) ( 2 2 )", "(20 40)"},
    {"EachPlacedPort",
     "+ PORT + LAYER M1 ( 0 0 ) ( 2 2 ) + PLACED ( 0 0 ) N + PORT + LAYER M1 ( 0 0 ) ( 9 9 ) + PORT + LAYER "
     "M1 ( 0 0 "
     ") ( 4 4 ) + PLACED ( 50 0 ) N",
     "(2 2)(104 4)"},
    {"NotPlaced", "+ LAYER M1 ( 0 0 ) ( 2 2 ) + UNPLACED", ""}};

class DefPorts : public testing::TestWithParam<Ports> {};

TEST_P(DefPorts, StandWhereTheirRectanglesDo)
{
    const kit::lefdef::Source source("d.def", std::string("PINS 2 ; - a + PLACED ( 0 0 ) N ; - b ") +
                                                  GetParam().options + " ; END PINS END DESIGN");
    kit::Findings findings;
    const kit::lefdef::Def def = readDef(source, findings);
    EXPECT_TRUE(findings.empty());
    ASSERT_EQ(def.pins.size(), 2U);
    std::string points;
    for (size_t i = 0; i < def.pins[1].numPorts; ++i) {
        const auto& [x, y] = def.ports.at(def.pins[1].firstPort + i);
        points += test::point(x, y);
    }
    EXPECT_EQ(points, GetParam().want);
}

INSTANTIATE_TEST_SUITE_P(All, DefPorts, testing::ValuesIn(PORTS),
                         [](const auto& row) { return std::string(row.param.name); });

} // namespace
