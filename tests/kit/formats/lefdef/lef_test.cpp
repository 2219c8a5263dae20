// SPDX-License-Identifier: BSD-3-Clause
// Each rule of the LEF reader, with what it makes of a text and says about it.
#include "kit/base/fault.h"
#include "kit/formats/lefdef/described.h"
#include "kit/formats/lefdef/library.h"

namespace {

using test::describeLef;
using test::Lines;
using test::ReadCase;

class LefReader : public testing::TestWithParam<ReadCase> {};

TEST_P(LefReader, MakesThisOfTheText)
{
    EXPECT_EQ(describeLef(GetParam().text), GetParam().want);
}

/// A macro A with these statements.
std::string inMacro(const std::string& statements)
{
    return "MACRO A\n" + statements + "\nEND A\n";
}

/// A macro A with a pin P of one port.
std::string inPort(const std::string& shapes)
{
    return inMacro("PIN P PORT\n" + shapes + "\nEND END P");
}

const char* const MACRO_A = "macro A class [] site [] 0 by 0";
const char* const PIN_P = "pin P SIGNAL";

const ReadCase LIBRARIES[] = {
    {"HeaderIsOptionalAndSoIsTheEnd", "VERSION 5.6 ;\nMACRO A END A", {MACRO_A}},
    {"Units",
     "UNITS TIME NANOSECONDS 1 ; DATABASE MICRONS 2000 ; ; END UNITS UNITS DATABASE MICRONS 100; END UNITS "
     "END "
     "LIBRARY",
     {"units 2000"}},
    {"UnitsOfZero",
     "UNITS DATABASE MICRONS 0 ; END UNITS",
     {"error range 1:24: the number of database units is 0; give a number from 1 on"}},
    {"UnitsWithoutEnd",
     "UNITS DATABASE MICRONS 100 ;\nMACRO A END A",
     {"units 100", MACRO_A, "error no-end 1:1: the section \"UNITS\" has no end; write END UNITS behind it"}},
    {"Site",
     "SITE core CLASS CORE ; SYMMETRY X Y ; ROWPATTERN a N b FS ; SIZE 0.19 BY 1.4 ; END core SITE io CLASS "
     "PAD; "
     "SIZE 1 BY 2; END io",
     {"site core class [CORE] 190000 by 1400000", "site io class [PAD] 1000000 by 2000000"}},
    {"SameSiteTwiceIsFine",
     "SITE s SIZE 1 BY 2 ; END s SITE s SIZE 1 BY 2 ; END s",
     {"site s class [] 1000000 by 2000000"}},
    {"OtherSiteOfTheName",
     "SITE s SIZE 1 BY 2 ; END s\nSITE s SIZE 1 BY 3 ; END s",
     {"site s class [] 1000000 by 2000000",
      "warning name-twice 2:1: site \"s\" stands in line 1 already, and "
      "that one stays; give each its own name"}},
    {"SiteOfNegativeSize",
     "SITE s SIZE 1 BY -2 ; END s",
     {"site s class [] 0 by 0", "error range 1:13: the size of \"s\" is negative; correct it"}},
    {"SiteWithoutEnd",
     "SITE s SIZE 1 BY 2 ;\nMACRO A END A",
     {"site s class [] 1000000 by 2000000", MACRO_A,
      "error no-end 1:1: the site \"s\" has no end; write END s behind it"}},
    {"EverythingElseIsSkipped",
     "VERSION 5.8 ; NAMESCASESENSITIVE ON ; BUSBITCHARS \"[]\" ; DIVIDERCHAR \"/\" ; MANUFACTURINGGRID 0.005 "
     ";\n"
     "PROPERTYDEFINITIONS MACRO p STRING \"END ;\" ; END PROPERTYDEFINITIONS\n"
     "LAYER M1 TYPE ROUTING ; WIDTH 0.1 ; PROPERTY LEF58_SPACING \"SPACING 1 ;\n  SPACING 2 ;\" ; END M1\n"
     "MAXVIASTACK 4 ; VIA v DEFAULT LAYER M1 ; RECT 0 0 1 1 ; END v VIARULE r GENERATE LAYER M1 ; END r\n"
     "NONDEFAULTRULE n LAYER M1 WIDTH 1 ; END M1 VIA w LAYER M2 ; END w SPACING SAMENET M1 M1 1 ; END "
     "SPACING END n\n"
     "SPACING SAMENET M1 M1 1 STACK ; END SPACING ARRAY a SITE s 0 0 N DO 1 BY 1 STEP 0 0 ; FLOORPLAN f "
     "CANPLACE s 0 "
     "0 N DO 1 BY 1 STEP 0 0 ; END f END a\n"
     "BEGINEXT \"x\" MACRO B END LIBRARY ENDEXT NOISETABLE 1 ; END NOISETABLE MACRO A END A END LIBRARY",
     {MACRO_A}},
    {"KeywordsInAnyCase",
     "version 5.8 ; units Database Microns 2000; end Units propertydefinitions macro p string ; end "
     "PropertyDefinitions\n"
     "layer M1 type routing ; end M1 Via v default layer M1 ; rect 0 0 1 1 ; end v ViaRULE r generate ; end "
     "r\n"
     "Site s class core; size 1 by 2; end s macro A class Core Spacer; origin 0 0 ; symmetry x y ; site s ; "
     "Size 1 By 2 ; "
     "pin P direction input; use power; shape abutment ; port layer M1 ; rect mask 1 iterate 0 0 1 1 do 1 by "
     "1 "
     "step 1 1 ; "
     "end end P obs layer M1 ; polygon 0 0 0 1 1 1 ; end end A end library",
     {"units 2000", "site s class [CORE] 1000000 by 2000000",
      "macro A class [CORE SPACER] site [s] 1000000 by 2000000 X Y", "pin P POWER",
      "rect mask 1 (0 0)(1000000 1000000)", "obstruction polygon (0 0)(0 1000000)(1000000 1000000)"}},
    {"NamesKeepTheirCase",
     "MACRO End PIN pin PORT LAYER m1 ; RECT 0 0 1 1 ; END END pin PIN PIN END PIN END End\n"
     "MACRO END_ PIN p END P END END_ MACRO end_ END end_",
     {"macro End class [] site [] 0 by 0", "pin pin SIGNAL", "pin PIN SIGNAL",
      "macro END_ class [] site [] 0 by 0", "pin p SIGNAL", "macro end_ class [] site [] 0 by 0"}},
    {"EndInSmallLettersIsANameInsideAStatement",
     "MACRO A FOREIGN end ; EEQ END_ ; PIN P MUSTJOIN end ; END P END A",
     {MACRO_A, "pin P SIGNAL"}},
    {"AliasesAreSkipped",
     "&defines &x = \"a\" ; &DEFINE &y = 1 ; &ALIAS &&z = MACRO B END B &ENDALIAS MACRO A END A",
     {MACRO_A}},
    {"RuleMayEndWithoutItsName",
     "NONDEFAULTRULE n LAYER M1 WIDTH 1 ; END M1\nEND\nNONDEFAULTRULE m LAYER M1 END M1 END m\nMACRO A END A",
     {MACRO_A}},
    {"NewerVersionPassesWithOneNote",
     "VERSION 6.0 ; NEWS 1 ; NEWER a b ; END NEWER MACRO A NEWEST 1 ; PIN P PORT LAYER M1 FOR x ; CIRCLE 0 0 "
     "1 ; "
     "; RECT 0 0 1 1 WIDE ; END END P END A END LIBRARY",
     {MACRO_A, PIN_P, "rect (0 0)(1000000 1000000)",
      "note version 1:9: the version is \"6.0\", and 5.3 to 5.8 are known; statements that are not known are "
      "passed over without a word"}},
    {"UnknownStatement",
     "MACROS A ; MACRO A END A",
     {MACRO_A,
      "warning unknown-statement 1:1: \"MACROS\" starts no known statement, and is ignored; see whether "
      "it is misspelt, or what stands before it is incomplete"}},
    {"TextBehindTheEnd",
     "END LIBRARY\nMACRO A END A",
     {"warning after-end 2:1: what stands behind the end is not read; make a file of its own of it, or "
      "remove it"}},
    {"SectionEndsWithAnotherName",
     "LAYER M1 TYPE ROUTING ; END M2\nMACRO A END A",
     {MACRO_A, "error wrong-end 1:25: END \"M2\" stands where the section \"M1\" ends; write END M1"}},
    {"SectionEndsWithTheLibrary",
     "LAYER M1 TYPE ROUTING ; END LIBRARY",
     {"error wrong-end 1:25: END \"LIBRARY\" stands where the section \"M1\" ends; write END M1"}},
    {"NestedSectionWithoutEnd",
     "NONDEFAULTRULE n LAYER M1 END M1 END LIBRARY",
     {"error wrong-end 1:34: END \"LIBRARY\" stands where the section \"n\" ends; write END n"}},
    {"EndWithoutBegin",
     "END A MACRO A END A",
     {MACRO_A, "error wrong-end 1:1: END \"A\" stands where the file \"LIBRARY\" ends; write END LIBRARY"}},
    {"NamesMissing",
     "MACRO ; END ; SITE ; LAYER ; VIA ; END LIBRARY",
     {"error syntax 1:7: \";\" stands where the name of the macro belongs; correct the statement",
      "error wrong-end 1:9: END \";\" stands where the macro \"\" ends; write END ",
      "error syntax 1:20: \";\" stands where the name of the site belongs; correct the statement",
      "error syntax 1:28: \";\" stands where the name belongs; correct the statement",
      "error syntax 1:34: \";\" stands where the name of the via belongs; correct the statement"}},
};
INSTANTIATE_TEST_SUITE_P(Libraries, LefReader, testing::ValuesIn(LIBRARIES),
                         testing::PrintToStringParamName());

const ReadCase MACROS[] = {
    {"EveryStatement",
     "MACRO A CLASS CORE SPACER ; FIXEDMASK ; FOREIGN A 0 0 N ; ORIGIN 0 0 ; EEQ B ; SIZE 0.38 BY 1.4 ;\n"
     "SYMMETRY X Y R90 ; SITE s 0 0 N DO 1 BY 1 STEP 0 0 ; SITE core ; PROPERTY p \"END A\" ;\n"
     "DENSITY LAYER M1 ; RECT 0 0 1 1 50.0 ; ; END TIMING FROMPIN a ; END TIMING BEGINEXT \"x\" END A ENDEXT "
     "END A",
     {"macro A class [CORE SPACER] site [core] 380000 by 1400000 X Y"}},
    {"GluedSemicolons",
     "MACRO A CLASS BLOCK; SIZE 1 BY 2; SYMMETRY Y; ORIGIN 0 0; END A",
     {"macro A class [BLOCK] site [] 1000000 by 2000000 Y"}},
    {"UseOfPins",
     "MACRO A PIN a USE POWER ; END a PIN b USE GROUND; END b PIN c DIRECTION INPUT ; END c PIN d USE CLOCK "
     "; SHAPE "
     "ABUTMENT ; ANTENNAGATEAREA 0.1 ; NETEXPR \"x END\" ; END d PIN e USE ANALOG ; END e END A",
     {MACRO_A, "pin a POWER", "pin b GROUND", "pin c SIGNAL", "pin d CLOCK", "pin e ANALOG"}},
    {"NoUse",
     "MACRO A PIN a USE VDD ; END a END A",
     {MACRO_A, "pin a SIGNAL",
      "warning use 1:19: \"VDD\" is no use of a pin or net, and SIGNAL is taken; write SIGNAL, ANALOG, "
      "CLOCK, POWER, GROUND, SCAN, "
      "TIEOFF or "
      "RESET"}},
    {"PinsNamedLikeWords",
     "MACRO A PIN USE USE POWER ; END USE PIN PORT PORT LAYER M1 ; RECT 0 0 1 1 ; END END PORT END A",
     {MACRO_A, "pin USE POWER", "pin PORT SIGNAL", "rect (0 0)(1000000 1000000)"}},
    {"PortsTogether",
     "MACRO A PIN P PORT CLASS CORE ; LAYER M1 ; RECT 0 0 1 1 ; END PORT LAYER M2 ; RECT 0 0 3 3 ; LAYER M1 "
     "; RECT 0 "
     "0 2 2 ; END END P OBS LAYER M1 ; RECT 0 0 3 3 ; END END A",
     {MACRO_A, PIN_P, "rect (0 0)(1000000 1000000)", "rect (0 0)(2000000 2000000)",
      "obstruction rect (0 0)(3000000 3000000)"}},
    {"OriginIsAddedWhereverItStands",
     "MACRO A PIN P PORT LAYER M1 ; RECT 0 0 1 1 ; END END P OBS LAYER M1 ; POLYGON 0 0 0 1 1 1 ; END ORIGIN "
     "0.5 -1 ; "
     "END A MACRO B OBS LAYER M1 ; RECT 0 0 1 1 ; END END B",
     {MACRO_A, PIN_P, "rect (500000 -1000000)(1500000 0)",
      "obstruction polygon (500000 -1000000)(500000 0)(1500000 0)", "macro B class [] site [] 0 by 0",
      "obstruction rect (0 0)(1000000 1000000)"}},
    {"MacroTwice",
     "MACRO A SIZE 1 BY 1 ; END A\nMACRO A END A",
     {"macro A class [] site [] 1000000 by 1000000", "warning name-twice 2:1: macro \"A\" stands in line 1 "
                                                     "already, and that one stays; give each its own name"}},
    {"PinTwice",
     "MACRO A PIN P USE POWER ; END P\nPIN P END P END A",
     {MACRO_A, "pin P POWER",
      "warning name-twice 2:1: pin \"P\" of \"A\" stands in line 1 already, and that one stays; give each "
      "its "
      "own "
      "name"}},
    {"NegativeSize",
     "MACRO A SIZE -1 BY 2 ; END A",
     {MACRO_A, "error range 1:14: the size of \"A\" is negative; correct it"}},
    {"SizeWithoutBy",
     "MACRO A SIZE 1 2 ; SYMMETRY X ; END A",
     {"macro A class [] site [] 0 by 0 X",
      "error syntax 1:16: \"2\" stands where \"BY\" belongs; correct the statement"}},
    {"NoSemicolon",
     "MACRO A SIZE 1 BY 2 SYMMETRY X ; CLASS CORE END A",
     {MACRO_A,
      "error no-semicolon 1:21: \"SYMMETRY\" stands where a \";\" ends the statement; end it with a \";\" "
      "that has a "
      "blank before it",
      "error no-semicolon 1:45: \"END\" stands where a \";\" ends the statement; end it with a \";\" that "
      "has a blank "
      "before it"}},
    {"MacroWithoutEnd",
     "MACRO A SIZE 1 BY 1 ;\nMACRO B END B",
     {"macro A class [] site [] 1000000 by 1000000", "macro B class [] site [] 0 by 0",
      "error no-end 1:1: the macro \"A\" has no end; write END A behind it"}},
    {"FileEndsInAMacro",
     "MACRO A SIZE 1 BY 1 ;",
     {"macro A class [] site [] 1000000 by 1000000",
      "error no-end 1:1: the macro \"A\" has no end; write END A behind it"}},
    {"MacroEndsWithAnotherName",
     "MACRO A END B\nMACRO C END C",
     {MACRO_A, "macro C class [] site [] 0 by 0",
      "error wrong-end 1:9: END \"B\" stands where the macro \"A\" ends; write END A"}},
    {"MacroEndsWithTheLibrary",
     "MACRO A END LIBRARY",
     {MACRO_A, "error wrong-end 1:9: END \"LIBRARY\" stands where the macro \"A\" ends; write END A"}},
    {"PinEndsWithAnotherName",
     "MACRO A PIN P END Q PIN R END R END A",
     {MACRO_A, PIN_P, "pin R SIGNAL",
      "error wrong-end 1:15: END \"Q\" stands where the pin \"P\" ends; write END P"}},
    {"PinEndsWithTheMacro",
     "MACRO A PIN P END A MACRO B END B",
     {MACRO_A, PIN_P, "macro B class [] site [] 0 by 0",
      "error wrong-end 1:15: END \"A\" stands where the pin \"P\" ends; write END P"}},
    {"PinWithoutEnd",
     "MACRO A PIN P USE POWER ; PIN Q OBS LAYER M1 ; END END A",
     {MACRO_A, "pin P POWER", "pin Q SIGNAL",
      "error no-end 1:9: the pin \"P\" has no end; write END P behind it",
      "error no-end 1:27: the pin \"Q\" has no end; write END Q behind it"}},
    {"PortWithoutEnd",
     "MACRO A PIN P PORT LAYER M1 ; RECT 0 0 1 1 ; END P PIN Q PORT LAYER M1 ; PIN R END R END A",
     {MACRO_A, PIN_P, "rect (0 0)(1000000 1000000)", "pin Q SIGNAL", "pin R SIGNAL",
      "error no-end 1:9: the last port of the pin \"P\" has no end; write END P behind it",
      "error no-end 1:63: the port has no end; write END behind it",
      "error no-end 1:52: the pin \"Q\" has no end; write END Q behind it"}},
    {"ObstructionWithoutEnd",
     "MACRO A OBS LAYER M1 ; RECT 0 0 1 1 ; END A\nMACRO B END B",
     {MACRO_A, "obstruction rect (0 0)(1000000 1000000)", "macro B class [] site [] 0 by 0",
      "error no-end 1:1: the last part of the macro \"A\" has no end; write END A behind it"}},
    {"DensityWithoutEnd",
     "MACRO A DENSITY LAYER M1 ; RECT 0 0 1 1 2 ;",
     {MACRO_A, "error no-end 1:9: the density has no end; write END behind it",
      "error no-end 1:1: the macro \"A\" has no end; write END A behind it"}},
};
INSTANTIATE_TEST_SUITE_P(Macros, LefReader, testing::ValuesIn(MACROS), testing::PrintToStringParamName());

const ReadCase SHAPES[] = {
    {"RectWithAndWithoutMask",
     inPort("LAYER M1 ; RECT 0.1 0.2 0.3 0.4 ; RECT MASK 2 ( 1 1 ) ( 0 0 ) ;"),
     {MACRO_A, PIN_P, "rect (100000 200000)(300000 400000)", "rect mask 2 (0 0)(1000000 1000000)"}},
    {"RectIterate",
     inPort("LAYER M1 ; RECT MASK 1 ITERATE 0 0 1 1 DO 2 BY 2 STEP 10 -20 ;"),
     {MACRO_A, PIN_P, "rect mask 1 (0 0)(1000000 1000000)", "rect mask 1 (10000000 0)(11000000 1000000)",
      "rect mask 1 (0 -20000000)(1000000 -19000000)",
      "rect mask 1 (10000000 -20000000)(11000000 -19000000)"}},
    {"Polygon",
     inPort("LAYER M1 ; POLYGON 0 0 0 1 1 1 1 0 ; POLYGON MASK 3 ITERATE 0 0 0 1 1 1 DO 1 BY 2 STEP 0 2 ;"),
     {MACRO_A, PIN_P, "polygon (0 0)(0 1000000)(1000000 1000000)(1000000 0)",
      "polygon mask 3 (0 0)(0 1000000)(1000000 1000000)",
      "polygon mask 3 (0 2000000)(0 3000000)(1000000 3000000)"}},
    {"LayerWithClauses",
     inPort("LAYER M1 EXCEPTPGNET ; RECT 0 0 1 1 ; LAYER M1 SPACING 0.1 ; RECT 0 0 2 2 ; LAYER M1 "
            "DESIGNRULEWIDTH 1; "
            "WIDTH 0.1 ; RECT 0 0 3 3 ;"),
     {MACRO_A, PIN_P, "rect (0 0)(1000000 1000000)", "rect (0 0)(2000000 2000000)",
      "rect (0 0)(3000000 3000000)"}},
    {"LayerWithAnotherClause",
     inPort("LAYER M1 WIDE ; RECT 0 0 1 1 ;"),
     {MACRO_A, PIN_P, "rect (0 0)(1000000 1000000)",
      "error no-semicolon 3:10: \"WIDE\" stands where a \";\" ends the statement; end it with a \";\" that "
      "has a blank before it"}},
    {"OtherLayersAreNotRead",
     inPort("LAYER m1 ; RECT 0 0 x ; PATH 0 0 1 1 ; LAYER M10 ; POLYGON 0 0 ; LAYER M1 ; RECT 0 0 1 1 ;"),
     {MACRO_A, PIN_P, "rect (0 0)(1000000 1000000)"}},
    {"PathOnTheLayer",
     inPort("LAYER M1 ; PATH MASK 1 0 0 1 1 ;\nPATH ITERATE 0 0 1 1 DO 1 BY 1 STEP 1 1 ;"),
     {MACRO_A, PIN_P,
      "warning not-read 3:12: this path on layer \"M1\" is not read; write it as a RECT or POLYGON",
      "warning not-read 4:1: this path on layer \"M1\" is not read; write it as a RECT or POLYGON"}},
    {"ViaWithMetalOfTheLayer",
     "VIA on DEFAULT LAYER V1 ; RECT 0 0 1 1 ; LAYER M1 ; RECT 0 0 1 1 ; END on VIA off LAYER M2 ; END off\n"
     "VIA made VIARULE r ; CUTSIZE 1 1 ; LAYERS M1 V1 M2 ; END made\n" +
         inPort(
             "LAYER M2 ; VIA 0 0 on ; VIA 1 1 off ; VIA ITERATE MASK 031 0 0 made DO 1 BY 1 STEP 1 1 ; VIA "
             "MASK 1 ( 0 "
             "0 ) other ;"),
     {MACRO_A, PIN_P,
      "warning not-read 5:12: this via, \"on\", has metal of layer \"M1\", which is not read; write its "
      "metal of that "
      "layer as a RECT",
      "warning not-read 5:39: this via, \"made\", has metal of layer \"M1\", which is not read; write its "
      "metal of "
      "that layer as a RECT",
      "warning not-read 5:90: this via, \"other\", which is defined in no file before, may have metal of "
      "layer \"M1\", "
      "which is not read; write its metal of that layer as a RECT"}},
    {"ShapeWithoutLayer",
     inPort("RECT 0 0 1 1 ; LAYER M1 ; RECT 0 0 2 2 ;"),
     {MACRO_A, PIN_P, "rect (0 0)(2000000 2000000)",
      "error no-layer 3:1: a shape stands before the first LAYER; name its layer first"}},
    {"LayerOfThePortBeforeDoesNotCount",
     "MACRO A PIN P PORT LAYER M1 ; END PORT\nRECT 0 0 1 1 ; END END P END A",
     {MACRO_A, PIN_P, "error no-layer 2:1: a shape stands before the first LAYER; name its layer first"}},
    {"MaskOutOfRange",
     inPort("LAYER M1 ; RECT MASK 4 0 0 1 1 ; RECT MASK 0 0 0 1 1 ;"),
     {MACRO_A, PIN_P, "error mask 3:22: the mask is 4; the masks are 1, 2 and 3",
      "error range 3:44: the mask is 0; give a number from 1 on"}},
    {"TooFewCorners",
     inPort("LAYER M1 ; RECT 0 0 1 ; POLYGON 0 0 1 1 ; POLYGON 0 0 1 1 2 ;"),
     {MACRO_A, PIN_P, "error syntax 3:23: \";\" stands where the y coordinate belongs; correct the statement",
      "error polygon 3:33: the polygon has fewer than three corners; give three or more",
      "error syntax 3:61: \";\" stands where the y coordinate belongs; correct the statement"}},
    {"SurplusCoordinate",
     inPort("LAYER M1 ; RECT 0 0 1 1 1 ;"),
     {MACRO_A, PIN_P,
      "error no-semicolon 3:25: \"1\" stands where a \";\" ends the statement; end it with a \";\" that has "
      "a blank "
      "before it"}},
    {"NumberTooLarge",
     inPort(
         "LAYER M1 ; RECT 0 0 1e9 -1000000000 ; RECT 0 0 1000000000.000001 1 ; RECT 0 0 1 1e99999999999 ;"),
     {MACRO_A, PIN_P, "rect (0 -1000000000000000)(1000000000000000 0)",
      "error range 3:48: the x coordinate, \"1000000000.000001\", is out of range; give a number between "
      "-1000000000 "
      "and 1000000000 micrometres",
      "error range 3:81: the y coordinate, \"1e99999999999\", is out of range; give a number between "
      "-1000000000 and "
      "1000000000 micrometres"}},
    {"NoNumber",
     inPort("LAYER M1 ; RECT 0 0 1 0x1 ; RECT 0 0 \"1\" 1 ; RECT ( 0 0 1 1 ;"),
     {MACRO_A, PIN_P, "error number 3:23: the y coordinate is \"0x1\", and a number belongs here; correct it",
      "error syntax 3:38: \"1\" stands where the x coordinate belongs; correct the statement",
      "error syntax 3:57: \"1\" stands where \")\" belongs; correct the statement"}},
    {"TooManyCopies",
     inPort("LAYER M1 ; RECT ITERATE 0 0 1 1 DO 2000000000 BY 2000000000 STEP 1 1 ; RECT ITERATE 0 0 1 1 DO "
            "1 BY 500001 "
            "STEP 1 1 ;"),
     {MACRO_A, PIN_P,
      "error iterate 3:36: all copies of shapes in the file have more than 1000000 corners; copy less",
      "error iterate 3:96: all copies of shapes in the file have more than 1000000 corners; copy less"}},
    {"CopiesTooFarAway",
     inPort("LAYER M1 ; RECT ITERATE 0 0 1 1 DO 11 BY 1 STEP 1e8 1 ; RECT ITERATE 0 0 1 1 DO 1 BY 11 STEP 0 "
            "-1e8 ;"),
     {MACRO_A, PIN_P, "error range 3:36: the copies reach beyond 1000000000 micrometres; correct the steps",
      "error range 3:81: the copies reach beyond 1000000000 micrometres; correct the steps"}},
    {"CopiesWithoutNumber",
     inPort("LAYER M1 ; RECT ITERATE 0 0 1 1 ; RECT ITERATE 0 0 1 1 DO 0 BY 1 STEP 1 1 ;"),
     {MACRO_A, PIN_P, "error syntax 3:33: \";\" stands where \"DO\" belongs; correct the statement",
      "error range 3:59: the number of columns is 0; give a number from 1 on"}},
    {"UnknownShape",
     inPort("LAYER M1 ; CIRCLE 0 0 1 ; RECT 0 0 1 1 ;"),
     {MACRO_A, PIN_P, "rect (0 0)(1000000 1000000)",
      "error syntax 3:12: \"CIRCLE\" stands where a shape or END belongs; correct the statement"}},
};
INSTANTIATE_TEST_SUITE_P(Shapes, LefReader, testing::ValuesIn(SHAPES), testing::PrintToStringParamName());

TEST(LefReader, CountsAllCopiesOfAFile)
{
    std::string shapes = "LAYER M1 ;\n";
    for (int i = 0; i < 6; ++i) {
        shapes += "RECT ITERATE 0 0 1 1 DO 100 BY 1000 STEP 1 1 ;\n";
    }
    const kit::lefdef::Source source("d.lef", inPort(shapes));
    kit::Findings findings;
    kit::lefdef::Lef lef;
    readLef(source, "M1", 0, lef, findings);
    EXPECT_EQ(lef.macros.at(0).pins.at(0).shapes.size(), 500'000U); // the sixth is one too many
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].code, "iterate");
}

TEST(LefReader, AddsToTheFilesBefore)
{
    kit::Findings findings;
    kit::lefdef::Lef lef;
    const kit::lefdef::Source tech("tech.lef",
                                   "UNITS DATABASE MICRONS 100 ; END UNITS SITE s SIZE 1 BY 1 ; END s "
                                   "VIA v LAYER M2 ; END v MACRO A SIZE 1 BY 1 ; END A END LIBRARY");
    const kit::lefdef::Source cells("cells.lef",
                                    "SITE s SIZE 1 BY 1 ; END s SITE t SIZE 1 BY 1 ; END t MACRO A END A "
                                    "MACRO B OBS VIA 0 0 v ; END END B END LIBRARY");
    readLef(tech, "M1", 0, lef, findings);
    readLef(cells, "M1", 1, lef, findings);
    EXPECT_EQ(describeLef(lef, findings),
              (Lines{"units 100", "site s class [] 1000000 by 1000000", "site t class [] 1000000 by 1000000",
                     "macro A class [] site [] 1000000 by 1000000", "macro B class [] site [] 0 by 0",
                     "warning name-twice 1:55: macro \"A\" stands in an earlier file already, and that one "
                     "stays; give "
                     "each its own name"}));
    EXPECT_EQ(lef.sites[1].source, 1);
    EXPECT_EQ(lef.macros[0].source, 0);
    EXPECT_EQ(lef.macros[1].source, 1);
}

struct LayerCase {
    const char* name;
    const char* text; ///< of a LEF file
    const char* want; ///< what is wrong with the layer M1; empty if nothing is
};

void PrintTo(const LayerCase& row, std::ostream* out)
{
    *out << row.name;
}

const LayerCase LAYERS[] = {
    {"NoCells", "LAYER M2 TYPE ROUTING ; END M2", ""},
    {"NoShapes", "MACRO A END A MACRO B OBS LAYER M2 ; END END B", ""},
    {"Some", "MACRO A OBS LAYER M2 ; RECT 0 0 1 1 ; LAYER M1 ; RECT 0 0 1 1 ; END END A", ""},
    {"OneOfTwo",
     "MACRO A PIN P PORT LAYER M2 ; RECT 0 0 1 1 ; END END P END A "
     "MACRO B PIN P PORT LAYER M1 ; RECT 0 0 1 1 ; END END P END B",
     ""},
    {"OthersOnly",
     "MACRO A PIN P PORT LAYER M3 ; RECT 0 0 1 1 ; END END P END A "
     "MACRO B OBS LAYER M2 ; POLYGON 0 0 0 1 1 1 ; LAYER M4 ; END END B",
     "no cell in use has metal on the layer M1 in d.lef: give another with --layer; they have shapes on M2, "
     "M3"},
};

class LefLayer : public testing::TestWithParam<LayerCase> {};

TEST_P(LefLayer, MustHaveMetalIfCellsHaveAny)
{
    const kit::lefdef::Source source("d.lef", GetParam().text);
    kit::Findings findings;
    kit::lefdef::Lef lef;
    readLef(source, "M1", 0, lef, findings);
    std::vector<const kit::lefdef::LefMacro*> macros;
    for (const kit::lefdef::LefMacro& macro : lef.macros) {
        macros.push_back(&macro);
    }
    std::string fault;
    try {
        requireMetal(lef, macros);
    } catch (const kit::Fault& thrown) {
        fault = thrown.what();
    }
    EXPECT_EQ(fault, GetParam().want);
}

INSTANTIATE_TEST_SUITE_P(All, LefLayer, testing::ValuesIn(LAYERS),
                         [](const auto& row) { return std::string(row.param.name); });

struct Bounds {
    const char* name;
    const char* pin; ///< its statements
    std::string want;
};

const Bounds BOUNDS[] = {
    {"AroundAllShapesOfAllLayers",
     "PORT LAYER M1 ; RECT 1 2 2 3 ; LAYER M2 ; RECT MASK 2 ( 4 5 ) ( 3 4 ) ; END PORT LAYER M3 ; POLYGON 0 "
     "9 1 9 1 8 ; "
     "END",
     "(0 2000000)(4000000 9000000)"},
    {"OriginIsTakenIntoAccount", "PORT LAYER M2 ; RECT 0 0 1 1 ; END } ORIGIN 2 3 ;",
     "(2000000 3000000)(3000000 4000000)"},
    {"CopiesAreShapes", "PORT LAYER M2 ; RECT ITERATE 0 0 1 1 DO 2 BY 3 STEP 10 -5 ; END",
     "(0 -10000000)(11000000 1000000)"},
    {"CopiesOnTheLayerAreShapes", "PORT LAYER M1 ; RECT ITERATE 0 0 1 1 DO 2 BY 3 STEP 10 -5 ; END",
     "(0 -10000000)(11000000 1000000)"},
    {"ViasAndPathsAreNone", "PORT LAYER M2 ; PATH 0 0 1 1 ; VIA 5 5 v ; END", "none"},
    {"UnsoundShapesOfOtherLayersAreNone",
     "PORT LAYER M2 ; RECT 0 0 x 1 ; RECT 0 0 1 ; RECT 0 0 1 1 1 ; POLYGON 0 0 1 1 ; RECT ITERATE 0 0 1 1 DO "
     "0 BY 1 "
     "STEP 1 1 ; RECT 7 7 8 8 ; END",
     "(7000000 7000000)(8000000 8000000)"},
    {"ObstructionsAreNone", "PORT LAYER M1 ; RECT 0 0 1 1 ; END } OBS LAYER M2 ; RECT 0 0 9 9 ; END",
     "(0 0)(1000000 1000000)"},
    {"WithoutAShape", "", "none"}};

class LefBounds : public testing::TestWithParam<Bounds> {};

TEST_P(LefBounds, OfAPin)
{
    const std::string pin = GetParam().pin;
    const size_t brace = std::min(pin.find('}'), pin.size()); // behind it, statements of the macro
    const kit::lefdef::Source source("d.lef", "MACRO A PIN P " + pin.substr(0, brace) + " END P " +
                                                  pin.substr(std::min(brace + 1, pin.size())) + " END A");
    kit::Findings findings;
    kit::lefdef::Lef lef;
    readLef(source, "M1", 0, lef, findings);
    ASSERT_EQ(lef.macros.size(), 1U);
    const auto& bounds = lef.macros[0].pins.at(0).bounds;
    EXPECT_EQ(bounds ? test::point(bounds->xl, bounds->yl) + test::point(bounds->xh, bounds->yh) : "none",
              GetParam().want);
}

INSTANTIATE_TEST_SUITE_P(All, LefBounds, testing::ValuesIn(BOUNDS),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(LefReader, KnowsWhereThingsStand)
{
    const std::string text =
        "VERSION 5.8 ; SITE s END s\nMACRO A PIN P PORT LAYER M1 ; RECT 0 0 1 1 ; END END P END\n A "
        "# c\nMACRO B END \"B\" ";
    const kit::lefdef::Source source("d.lef", text);
    kit::Findings findings;
    kit::lefdef::Lef lef;
    readLef(source, "M1", 0, lef, findings);
    ASSERT_EQ(lef.macros.size(), 2U);
    const kit::lefdef::LefMacro& macro = lef.macros[0];
    EXPECT_EQ(lef.sites[0].offset, text.find("SITE"));
    EXPECT_EQ(macro.offset, text.find("MACRO"));
    EXPECT_EQ(macro.pins[0].offset, text.find("PIN"));
    EXPECT_EQ(macro.pins[0].shapes[0].offset, text.find("RECT"));
    EXPECT_EQ(text.substr(macro.offset, macro.endOffset - macro.offset).substr(0, 7), "MACRO A");
    EXPECT_EQ(text.substr(macro.endOffset, 4), " # c");
    EXPECT_EQ(text.substr(lef.macros[1].offset, lef.macros[1].endOffset), "MACRO B END \"B\" ");
    EXPECT_EQ(lef.macros[1].endOffset, text.size() - 1);
}

} // namespace
