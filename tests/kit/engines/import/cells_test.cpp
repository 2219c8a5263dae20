// SPDX-License-Identifier: BSD-3-Clause
// Components, pins, nets and names of a DEF in the placer's files.
#include "kit/design/nameMap.h"
#include "kit/engines/import/importCase.h"
#include "kit/formats/placer/reader.h"

namespace {

using test::components;
using test::contentOf;
using test::KitImport;
using test::Words;

using KitImportCells = KitImport;
using KitImportNets = KitImport;
using KitImportNames = KitImport;
using KitLegalize = KitImport;

TEST_F(KitImportCells, LayerWithoutMetalIsAnErrorInALine)
{
    const test::KitOutcome outcome =
        import("COMPONENTS 2 ;\n- a A + PLACED ( 1000 0 ) N ;\n- b B + PLACED ( 1400 0 ) N ;\nEND COMPONENTS",
               {"--layer", "M1"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.error, "vireloce-kit: no cell in use has metal on the layer M1 in " +
                                 m_dir.path("l.lef") +
                                 ": give another with --layer; they have shapes on metal1\n");
    EXPECT_FALSE(std::filesystem::exists(base() + ".place"));
    // What others have, as the RAM, is nothing to cells without shapes.
    importWell(
        "COMPONENTS 2 ;\n- r RAM + FIXED ( 3000 0 ) N ;\n- b B + PLACED ( 1400 0 ) N ;\nEND COMPONENTS",
        {"--layer", "M1"});
}

TEST_F(KitImportCells, LayerIsFoundByThoseInUse)
{
    std::string lef = test::SMALL_LEF;
    lef.replace(lef.find("MACRO B"), 0,
                "MACRO X CLASS CORE ; PIN p PORT LAYER M1 ; RECT 0 0 1 1 ; END END p END X\n");
    const std::string cells = components({"a A + PLACED ( 1000 0 ) N", "r RAM + FIXED ( 3000 0 ) N"});
    const auto outcome = import(cells, {"--json"}, test::TWO_ROWS, lef);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.error, m_dir.path("l.lef") +
                                 ": note: metal 1 is layer metal1: 1 of 1 cell with pins have some "
                                 "on it; give --layer if it is another [layer]\n");
    EXPECT_NE(outcome.output.find("\"layer\":\"metal1\""), std::string::npos) << outcome.output;
    EXPECT_EQ(import(cells, {"--layer", "metal1"}).error, "");
}

TEST_F(KitImportCells, CompressedFilesGiveTheSameDesign)
{
    const std::string body = components({"a A + PLACED ( 1000 0 ) N", "b A + PLACED ( 1400 0 ) N"});
    importWell(body);
    const std::string plain = fileOf(".place") + fileOf(".map").substr(fileOf(".map").find("HASH"));
    for (const char* const name : {"l.lef", "d.def"}) {
        const std::string text = contentOf(m_dir.path(name));
        kit::OutputFile file(m_dir.path(name) + ".gz");
        file << text;
        file.commit();
        std::filesystem::rename(m_dir.path(name) + ".gz", m_dir.path(name));
    }
    const auto outcome = test::runKit(
        {"import", "--lef", m_dir.path("l.lef"), "--def", m_dir.path("d.def"), "-o", base(), "--force"});
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(fileOf(".place") + fileOf(".map").substr(fileOf(".map").find("HASH")), plain);
}

TEST_F(KitImportCells, OrientationIsMirroredOrNot)
{
    importWell(components({"a A + PLACED ( 1000 0 ) N", "b A + PLACED ( 1400 2000 ) FS",
                           "c A + PLACED ( 1800 0 ) FN", "d A + PLACED ( 2200 2000 ) S"}));
    EXPECT_EQ(records("COMPONENTS"), (Words{"a A + PLACED ( 1000 0 ) N", "b A + PLACED ( 1400 2000 ) N",
                                            "c A + PLACED ( 1800 0 ) FN", "d A + PLACED ( 2200 2000 ) FN"}));
    EXPECT_TRUE(map().flipped.empty());
    EXPECT_EQ(fileOf(".cells"), "1\nA\n");
}

TEST_F(KitImportCells, MastersOfSymmetryYAreKnownToBeMirrorable)
{
    std::string lef = test::SMALL_LEF;
    lef.replace(lef.find("SIZE 0.4 BY 2"), 0, "SYMMETRY X Y ; ");
    const std::string cells = components({"a A + PLACED ( 1000 0 ) N", "b B + PLACED ( 1400 0 ) N"});
    EXPECT_EQ(import(cells, {}, test::TWO_ROWS, lef).status, 0);
    EXPECT_EQ(map().mirrorable, Words{"A"});
    lef.replace(lef.find("SYMMETRY X Y"), 12, "SYMMETRY X");
    EXPECT_EQ(import(cells, {}, test::TWO_ROWS, lef).status, 0);
    EXPECT_EQ(map().mirrorable, Words{});
}

TEST_F(KitImportCells, UpsideDownInTheirRowAreKeptAside)
{
    const auto outcome = import(components({"a A + PLACED ( 1000 0 ) FS", "b A + PLACED ( 1400 2000 ) N"}));
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.error.find("d.def:7:3: warning: component a lies upside down in its row"),
              std::string::npos)
        << outcome.error;
    EXPECT_EQ(map().flipped, (Words{"a", "b"}));
}

TEST_F(KitImportCells, TrueOrientationsComeBackFromRowsAndMap)
{
    import(components({"a A + PLACED ( 1000 0 ) FS", "b A + PLACED ( 1400 2000 ) N",
                       "c A + PLACED ( 1800 0 ) FN", "d A + PLACED ( 2200 2000 ) S",
                       "e A + PLACED ( 2600 2000 ) FS"}));
    kit::Findings findings;
    kit::placer::Design design;
    kit::placer::readPlacement(base() + ".place", design, findings);
    kit::design::restoreOrientations(base() + ".place", design, findings);
    Words orients;
    for (const auto& comp : design.components) {
        orients.push_back(comp.orient);
    }
    EXPECT_EQ(orients, (Words{"FS", "N", "FN", "S", "FS"}));
    // Without the map they are what the file says.
    std::filesystem::remove(base() + ".map");
    kit::placer::Design plain;
    kit::placer::readPlacement(base() + ".place", plain, findings);
    kit::design::restoreOrientations(base() + ".place", plain, findings);
    EXPECT_EQ(plain.components.back().orient, "N");
    EXPECT_TRUE(findings.empty());
}

TEST_F(KitImportCells, TrueOrientationOfACellOnNoRowIsWhatTheFileSays)
{
    import(components({"a A + PLACED ( 1400 2000 ) FS"}));
    kit::Findings findings;
    kit::placer::Design design;
    kit::placer::readPlacement(base() + ".place", design, findings);
    const kit::placer::Component onRow = design.components[0];
    design.components.assign(4, onRow);
    const kit::placer::Row row = design.rows[1];
    ASSERT_EQ(row.y, onRow.y);
    design.components[1].x = row.x - 1;
    design.components[2].x = row.x + row.numSites * row.step;
    design.components[3].y += 1;
    kit::design::restoreOrientations(base() + ".place", design, findings);
    Words orients;
    for (const auto& comp : design.components) {
        orients.push_back(comp.orient);
    }
    EXPECT_EQ(orients, (Words{"FS", "N", "N", "N"}));
}

TEST_F(KitImportCells, FillersAreLeftOut)
{
    importWell(components({"f FILL + PLACED ( 1000 0 ) N", "a A + PLACED ( 1400 0 ) N"}));
    EXPECT_EQ(records("COMPONENTS"), Words{"a A + PLACED ( 1400 0 ) N"});
}

struct BadComponent {
    const char* rule;
    const char* record;
    const char* message;
};

class KitImportBadCells : public KitImport, public testing::WithParamInterface<BadComponent> {};

TEST_P(KitImportBadCells, AreNamedAndNothingIsWritten)
{
    const auto outcome = import(components({GetParam().record}));
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.error.find(std::string("d.def:7:3: error: ") + GetParam().message), std::string::npos)
        << outcome.error;
    EXPECT_FALSE(std::filesystem::exists(base() + ".place"));
}

INSTANTIATE_TEST_SUITE_P(
    Rules, KitImportBadCells,
    testing::Values(
        BadComponent{"UnknownMaster", "a NONE + PLACED ( 1000 0 ) N",
                     "component a is of master NONE, which no LEF"},
        BadComponent{"UnknownMasterOfAFixedOne", "a NONE + FIXED ( 1000 0 ) N",
                     "component a is of master NONE"},
        BadComponent{"Unplaced", "a A + UNPLACED", "component a is not placed; place it, or give --legalize"},
        BadComponent{"WithoutAPlace", "a A", "component a is not placed"},
        BadComponent{"OffItsRow", "a A + PLACED ( 1000 100 ) N", "component a does not stand on free sites"},
        BadComponent{"LeftOfItsRow", "a A + PLACED ( 800 0 ) N", "component a does not stand on free sites"},
        BadComponent{"BeyondItsRow", "a A + PLACED ( 4800 0 ) N",
                     "component a does not stand on free sites"}),
    [](const auto& instance) { return instance.param.rule; });

TEST_F(KitImportCells, OnABlockAreAnError)
{
    const auto outcome = import(components({"f A + FIXED ( 1400 0 ) N", "b B + PLACED ( 1000 0 ) N"}));
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.error.find("component b does not stand on free sites"), std::string::npos)
        << outcome.error;
}

TEST_F(KitImportCells, ThatStayAreToldIfTheyAreOrdinaryOnes)
{
    const auto outcome = import(components({"h TALL + PLACED ( 4000 0 ) N", "w A + PLACED ( 1000 0 ) E"}));
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.error.find("component h is higher than a row and stays where it is"),
              std::string::npos);
    EXPECT_NE(outcome.error.find("component w lies on its side and stays where it is"), std::string::npos);
}

TEST_F(KitImportCells, UnitsAreRequired)
{
    m_dir.write("l.lef", test::SMALL_LEF);
    m_dir.write("d.def", std::string("DESIGN d ;\n") + test::TWO_ROWS + "END DESIGN\n");
    const auto outcome =
        test::runKit({"import", "--lef", m_dir.path("l.lef"), "--def", m_dir.path("d.def"), "-o", base()});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.error.find("has no UNITS DISTANCE MICRONS"), std::string::npos) << outcome.error;
}

TEST_F(KitImportCells, AnInputIsNeverReplaced)
{
    importWell("");
    for (const char* name : {"q.place", "q.map"}) {
        const std::string def = test::contentOf(m_dir.path("d.def"));
        m_dir.write(name, def);
        const auto outcome = test::runKit({"import", "--lef", m_dir.path("l.lef"), "--def", m_dir.path(name),
                                           "-o", m_dir.path("q"), "--force"});
        EXPECT_EQ(outcome.status, 2);
        EXPECT_NE(outcome.error.find("is an input"), std::string::npos) << outcome.error;
        EXPECT_EQ(test::contentOf(m_dir.path(name)), def);
        std::filesystem::remove(m_dir.path(name));
    }
}

TEST_F(KitImportCells, ResultThatCannotBeAFileIsOneLine)
{
    importWell("");
    std::filesystem::create_directory(m_dir.path("p.netlist"));
    for (const std::string& out :
         {m_dir.path("p"), m_dir.path("") + "/", m_dir.path(std::string(300, 'x'))}) {
        const auto outcome = test::runKit(
            {"import", "--lef", m_dir.path("l.lef"), "--def", m_dir.path("d.def"), "-o", out, "--force"});
        EXPECT_EQ(outcome.status, 2) << out;
        EXPECT_EQ(std::count(outcome.error.begin(), outcome.error.end(), '\n'), 1) << outcome.error;
        std::error_code unknown; // the last name is too long for a file
        EXPECT_FALSE(std::filesystem::exists(out + ".place", unknown));
    }
}

TEST_F(KitImportCells, AnEarlierDesignIsNotReplacedWithoutForce)
{
    importWell("");
    const Words words{"import", "--lef", m_dir.path("l.lef"), "--def", m_dir.path("d.def"), "-o", base()};
    const auto outcome = test::runKit(words);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.error.find("o.place exists"), std::string::npos) << outcome.error;
}

TEST_F(KitImportNets, SupplyIsLeftOutAndOrderKept)
{
    importWell(components({"a A + PLACED ( 1000 0 ) N", "b A + PLACED ( 1400 0 ) N"}) +
               "PINS 3 ;\n- p + NET n + USE SIGNAL + PLACED ( 10 20 ) N ;\n- vdd + NET vdd + USE POWER + "
               "PLACED ( 1 2 ) N ;\n"
               "- q + NET m + PORT + LAYER metal1 ( 0 0 ) ( 1 1 ) + PLACED ( 30 40 ) N ;\nEND PINS\n"
               "NETS 4 ;\n- vdd ( a VDD ) ( b VDD ) + USE POWER ;\n- n ( PIN p ) ( b Z ) ( a Z ) ( b Y ) "
               ";\n- m ( PIN q ) ;\n"
               "- none ;\nEND NETS\n");
    EXPECT_EQ(fileOf(".pins"), "2\np 10 20\nq 30 40\n");
    EXPECT_EQ(fileOf(".netlist"), "3\n4\n p b a b\n1\n q\n0\n");
}

TEST_F(KitImportNets, PinsOfKeptComponentsAreTerminalsInTheMiddleOfTheirMetal)
{
    importWell(components({"m RAM + FIXED ( 1400 0 ) S", "a A + PLACED ( 1000 0 ) N"}) +
               "NETS 2 ;\n- d ( m D ) ( a Z ) ;\n- q ( m Q ) ( a Z ) ( m D ) ;\nEND NETS\n");
    // D is at (0.3, 0.5) of (1.1, 3), turned by 180 degrees; Q has no metal 1.
    EXPECT_EQ(fileOf(".pins"), "2\nm/D 2200 2500\nm/Q 1950 1500\n");
    EXPECT_EQ(fileOf(".netlist"), "2\n2\n m/D a\n3\n m/Q a m/D\n");
}

TEST_F(KitImportNets, TerminalsStayInTheRangeOf32Bits)
{
    importWell(components({"m RAM + FIXED ( 2147483600 2147483600 ) N", "a A + PLACED ( 1000 0 ) N"}) +
               "NETS 1 ;\n- n ( m D ) ( a Z ) ;\nEND NETS\n");
    EXPECT_EQ(fileOf(".pins"), "1\nm/D 2147483647 2147483647\n");
}

TEST_F(KitImportNets, PinsWithoutAPlaceAreLeftOutWithAWarning)
{
    const auto outcome =
        import(components({"a A + PLACED ( 1000 0 ) N"}) +
               "PINS 1 ;\n- p + NET n ;\nEND PINS\nNETS 1 ;\n- n ( PIN p ) ( a Z ) ;\nEND NETS\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.error.find("warning: pin p has no place"), std::string::npos) << outcome.error;
    EXPECT_EQ(fileOf(".netlist"), "1\n1\n a\n");
}

TEST_F(KitImportNets, WordPinIsATerminalInAnyCaseUnlessAComponentHasThatName)
{
    const std::string pins = "PINS 1 ; - p + NET n + PLACED ( 10 20 ) N ; END PINS\n";
    const std::string nets = "NETS 1 ; - n ( u Z ) ( Pin p ) ; END NETS\n";
    importWell(components({"u A + PLACED ( 1000 0 ) N"}) + pins + nets);
    EXPECT_EQ(fileOf(".netlist"), "1\n2\n u p\n");
    importWell(components({"u A + PLACED ( 1000 0 ) N", "Pin A + PLACED ( 1600 0 ) N"}) + pins + nets);
    EXPECT_EQ(fileOf(".netlist"), "1\n2\n u Pin\n");
}

TEST_F(KitImportNets, UnknownMembersAreLeftOutWithAWarning)
{
    const auto outcome = import(components({"a A + PLACED ( 1000 0 ) N"}) +
                                "NETS 1 ;\n- n ( PIN p ) ( b Z ) ( a Z ) ;\nEND NETS\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.error.find("warning: net n has the unknown pin p, which is left out of it"),
              std::string::npos)
        << outcome.error;
    EXPECT_NE(outcome.error.find("warning: net n has the unknown component b"), std::string::npos)
        << outcome.error;
    EXPECT_EQ(fileOf(".netlist"), "1\n1\n a\n");
}

TEST_F(KitImportCells, FirstThreeProblemsOfAKindAreToldWithTheNumberOfTheRest)
{
    Words records;
    for (int i = 0; i < 5000; ++i) {
        records.push_back("u" + std::to_string(i) + " A + PLACED ( 1000 " + std::to_string(-1 - i) + " ) N");
    }
    records.push_back("v A ; - v A ; - v A ; - v A ; - v A");
    const auto outcome = import(components(records), {"--layer", "metal1"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(std::count(outcome.error.begin(), outcome.error.end(), '\n'), 4) << outcome.error;
    EXPECT_NE(outcome.error.find("name-twice"), std::string::npos) << outcome.error;
    EXPECT_NE(outcome.error.find("1 more like this"), std::string::npos) << outcome.error;
    records.pop_back();
    const auto others = import(components(records), {"--layer", "metal1"});
    EXPECT_EQ(std::count(others.error.begin(), others.error.end(), '\n'), 3) << others.error;
    EXPECT_NE(others.error.find(
                  "component u2 does not stand on free sites of a row; move it, or give --legalize to have "
                  "it put on the nearest ones; 4997 more like this [off-row]\n"),
              std::string::npos)
        << others.error;
}

TEST_F(KitImportNames, ThatTheFilesCannotCarryAreMappedBack)
{
    const std::string longName(300, 'x');
    importWell(components({"FILLER_1 A + PLACED ( 1000 0 ) N", "\"a b\" A + PLACED ( 1400 0 ) N",
                           longName + " A + PLACED ( 1800 0 ) N", "_name0_ A + PLACED ( 2200 0 ) N"}) +
               "NETS 1 ;\n- n ( FILLER_1 Z ) ( \"a b\" Z ) ( " + longName +
               " Z ) ( _name0_ Z ) ;\nEND NETS\n");
    EXPECT_EQ(records("COMPONENTS"),
              (Words{"_name1_ A + PLACED ( 1000 0 ) N", "_name2_ A + PLACED ( 1400 0 ) N",
                     "_name3_ A + PLACED ( 1800 0 ) N", "_name0_ A + PLACED ( 2200 0 ) N"}));
    EXPECT_EQ(fileOf(".netlist"), "1\n4\n _name1_ _name2_ _name3_ _name0_\n");
    Words originals;
    for (const auto& renamed : map().names) {
        originals.push_back(renamed.name + "=" + renamed.original);
    }
    EXPECT_EQ(originals, (Words{"_name1_=FILLER_1", "_name2_=a b", "_name3_=" + longName}));
}

TEST_F(KitImportNames, PinThatIsNamedAsAComponentIsRenamed)
{
    importWell(components({"u A + PLACED ( 1000 0 ) N"}) +
               "PINS 1 ;\n- u + NET n + PLACED ( 5 6 ) N ;\nEND PINS\nNETS 1 ;\n- n ( PIN u ) ( u Z ) ;\nEND "
               "NETS\n");
    EXPECT_EQ(fileOf(".pins"), "1\n_name0_ 5 6\n");
    EXPECT_EQ(fileOf(".netlist"), "1\n2\n _name0_ u\n");
}

TEST_F(KitImportNames, TerminalsOfOneNameAreToldApart)
{
    importWell(components({"m RAM + FIXED ( 1400 0 ) N", "a A + PLACED ( 1000 0 ) N"}) +
               "PINS 1 ;\n- m/D + NET n + PLACED ( 5 6 ) N ;\nEND PINS\n"
               "NETS 2 ;\n- n ( PIN m/D ) ( a Z ) ;\n- o ( m D ) ( a Z ) ;\nEND NETS\n");
    EXPECT_EQ(fileOf(".pins"), "2\nm/D 5 6\n_name0_ 1700 500\n");
    EXPECT_EQ(fileOf(".netlist"), "2\n2\n m/D a\n2\n _name0_ a\n");
}

TEST_F(KitImportNames, LineEndInANameIsAnError)
{
    const auto outcome = import(components({"\"u\nv\" A + PLACED ( 1000 0 ) N"}));
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.error.find("a component's name has a line end in it"), std::string::npos)
        << outcome.error;
}

TEST_F(KitImportNames, MasterThatCannotNameAFileIsAnError)
{
    const auto outcome = import(components({"u A/B + PLACED ( 1000 0 ) N"}), {}, test::TWO_ROWS,
                                "MACRO A/B CLASS CORE ; SIZE 0.4 BY 2 ; END A/B\n");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.error.find("is of master A/B, which cannot name a file"), std::string::npos)
        << outcome.error;
}

/// Cells without a legal place, and the places they are given.
struct Homeless {
    const char* rule;
    Words records;
    Words places; ///< of all components
};

class KitLegalizeCases : public KitImport, public testing::WithParamInterface<Homeless> {};

TEST_P(KitLegalizeCases, GoToTheNearestFreeSites)
{
    importWell(components(GetParam().records), {"--legalize"});
    EXPECT_EQ(records("COMPONENTS"), GetParam().places);
}

INSTANTIATE_TEST_SUITE_P(
    Rules, KitLegalizeCases,
    testing::Values(
        Homeless{"LegalOnesStay", {"a A + PLACED ( 1400 0 ) N"}, {"a A + PLACED ( 1400 0 ) N"}},
        Homeless{"OffTheSites", {"a A + PLACED ( 1490 0 ) N"}, {"a A + PLACED ( 1400 0 ) N"}},
        Homeless{"OffTheSitesUp", {"a A + PLACED ( 1510 0 ) N"}, {"a A + PLACED ( 1600 0 ) N"}},
        Homeless{"OffTheRow", {"a A + PLACED ( 1400 1200 ) FN"}, {"a A + PLACED ( 1400 2000 ) FN"}},
        Homeless{"BelowAllRows", {"a A + PLACED ( 1400 -9000 ) N"}, {"a A + PLACED ( 1400 0 ) N"}},
        Homeless{"AboveAllRows", {"a A + PLACED ( 1400 9000 ) N"}, {"a A + PLACED ( 1400 2000 ) N"}},
        Homeless{"LeftOfTheRow", {"a A + PLACED ( 0 0 ) N"}, {"a A + PLACED ( 1000 0 ) N"}},
        Homeless{"BeyondTheRow", {"a A + PLACED ( 9000 0 ) N"}, {"a A + PLACED ( 4600 0 ) N"}},
        Homeless{"OverlapMovesTheRightOne",
                 {"a A + PLACED ( 1600 0 ) N", "b A + PLACED ( 1400 0 ) N"},
                 {"a A + PLACED ( 1800 0 ) N", "b A + PLACED ( 1400 0 ) N"}},
        Homeless{"WidestFirst",
                 {"f RAM + FIXED ( 1000 0 ) N", "g RAM + FIXED ( 2200 2000 ) N", "a A + PLACED ( 1200 0 ) N",
                  "b B + PLACED ( 1200 0 ) N"},
                 {"a A + PLACED ( 3000 0 ) N", "b B + PLACED ( 2200 0 ) N"}},
        Homeless{"FullRowBesideGoesUp",
                 {"f B + FIXED ( 1000 0 ) N", "g B + FIXED ( 1800 0 ) N", "h B + FIXED ( 2600 0 ) N",
                  "i B + FIXED ( 3400 0 ) N", "j A + FIXED ( 4200 0 ) N", "a B + PLACED ( 1000 0 ) N"},
                 {"a B + PLACED ( 1000 2000 ) N"}}),
    [](const auto& instance) { return instance.param.rule; });

TEST_F(KitLegalize, UnplacedGoToTheMiddleOfTheirNets)
{
    importWell(components({"a A + PLACED ( 1000 0 ) N", "b A + PLACED ( 3000 0 ) N", "c A + UNPLACED"}) +
                   "NETS 1 ;\n- n ( a Z ) ( b Z ) ( c Z ) ;\nEND NETS\n",
               {"--legalize"});
    EXPECT_EQ(records("COMPONENTS").back(), "c A + PLACED ( 2000 0 ) N");
}

TEST_F(KitLegalize, UnplacedWithoutNetsGoToTheMiddleOfTheRows)
{
    importWell(components({"c A"}), {"--legalize"});
    EXPECT_EQ(records("COMPONENTS").back(), "c A + PLACED ( 3000 0 ) N");
}

TEST_F(KitLegalize, CellWithoutRoomIsNamed)
{
    const auto outcome = import("BLOCKAGES 1 ;\n- PLACEMENT RECT ( 0 0 ) ( 9000 9000 ) ;\nEND BLOCKAGES\n" +
                                    components({"c A"}),
                                {"--legalize"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.error.find("component c finds no 2 free sites side by side"), std::string::npos)
        << outcome.error;
}

TEST_F(KitLegalize, BlocksAndHighCellsMustBePlaced)
{
    const auto outcome = import(components({"m RAM", "h TALL + UNPLACED"}), {"--legalize"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.error.find("component m is higher than a row and is not placed"), std::string::npos)
        << outcome.error;
    EXPECT_NE(outcome.error.find("component h is higher than a row and is not placed"), std::string::npos)
        << outcome.error;
}

TEST_F(KitLegalize, MovedCellLiesAsItsRow)
{
    importWell(components({"a A + PLACED ( 1400 1200 ) N"}), {"--legalize"});
    EXPECT_TRUE(map().flipped.empty());
}

} // namespace
