// SPDX-License-Identifier: BSD-3-Clause
// New places in a DEF file, and everything else as it was.
#include <gtest/gtest.h>

#include "kit/base/files/writeOutput.h"
#include "kit/design/nameMap.h"
#include "kit/engines/export/smallExport.h"
#include "kit/formats/lefdef/edits.h"
#include "support/property.h"

namespace {

using namespace test;
using kit::lefdef::Edits;

/// The text with a part replaced that is in it once.
std::string with(std::string text, const std::string& part, const std::string& by)
{
    const size_t at = text.find(part);
    EXPECT_NE(at, std::string::npos) << part;
    EXPECT_EQ(text.find(part, at + 1), std::string::npos) << part;
    return text.replace(at, part.size(), by);
}

struct Patch {
    const char* name;
    const char* record;   ///< in the DEF file
    const char* expected; ///< after the export of u at ( 380 0 ) N
};

class KitExportDef : public testing::TestWithParam<Patch> {};

TEST_P(KitExportDef, ChangesThePlaceAlone)
{
    const SmallExport files("- u INV + PLACED ( 380 0 ) N\n ;\n", GetParam().record);
    const KitOutcome outcome = files.run();
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(files.output("new.def"), with(files.def, GetParam().record, GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(
    Records, KitExportDef,
    testing::Values(
        Patch{"Placed", "- u INV + PLACED ( 190 1400 ) FS ;\n", "- u INV + PLACED ( 380 0 ) N ;\n"},
        Patch{"WithOptionsAround", "-  u  INV + SOURCE DIST + PLACED (  1\t2 ) W + WEIGHT 3 ; # x\n",
              "-  u  INV + SOURCE DIST + PLACED ( 380 0 ) N + WEIGHT 3 ; # x\n"},
        Patch{"OverLines", "- u INV\n + PLACED\n ( 1 2 )\n FN\n ;\r\n",
              "- u INV\n + PLACED ( 380 0 ) N\n ;\r\n"},
        Patch{"InItsPlaceAlready", "- u INV + PLACED  ( 380  0 )  N ;\n",
              "- u INV + PLACED  ( 380  0 )  N ;\n"},
        Patch{"Unplaced", "- u INV + UNPLACED + WEIGHT 3 ;\n", "- u INV + PLACED ( 380 0 ) N + WEIGHT 3 ;\n"},
        Patch{"WithoutAPlace", "- u INV + WEIGHT 3 ;\n", "- u INV + PLACED ( 380 0 ) N + WEIGHT 3 ;\n"},
        Patch{"WithNothing", "- u INV ;\n", "- u INV + PLACED ( 380 0 ) N ;\n"}),
    [](const auto& param) { return param.param.name; });

struct Lying {
    const char* row;    ///< orientation of the row
    const char* placed; ///< orientation in the placement
    bool flipped;       ///< in the map
    const char* expected;
};

class KitExportOrient : public testing::TestWithParam<Lying> {};

TEST_P(KitExportOrient, IsMirroredAsPlacedAndUpsideDownAsTheRow)
{
    SmallExport files(std::string("- u INV + PLACED ( 380 0 ) ") + GetParam().placed + "\n ;\n",
                      "- u INV + PLACED ( 0 0 ) N ;\n");
    files.place = with(files.place, "ROW r0 core 0 0 N", std::string("ROW r0 core 0 0 ") + GetParam().row);
    kit::design::NameMap map{.def = "in.def", .hash = kit::design::hashOf(files.def)};
    map.siteWidth = map.siteHeight = 1;
    if (GetParam().flipped) {
        map.flipped = {"u"};
    }
    test::writeOutput(files.path("out.map"),
                      [&map](kit::OutputFile& out) { kit::design::writeNameMap(map, out); });
    const KitOutcome outcome = files.run();
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(files.output("new.def"),
              with(files.def, "( 0 0 ) N ;", std::string("( 380 0 ) ") + GetParam().expected + " ;"));
}

INSTANTIATE_TEST_SUITE_P(
    All, KitExportOrient,
    testing::Values(Lying{"N", "N", false, "N"}, Lying{"N", "FN", false, "FN"}, Lying{"FS", "N", false, "FS"},
                    Lying{"FS", "FN", false, "S"}, Lying{"N", "N", true, "FS"}, Lying{"N", "FN", true, "S"},
                    Lying{"FS", "N", true, "N"}, Lying{"FS", "FN", true, "FN"}, Lying{"S", "N", false, "FS"},
                    Lying{"FN", "N", false, "N"},
                    // Placements that were not imported have the rows' flips in the components.
                    Lying{"FS", "FS", false, "FS"}, Lying{"N", "FS", false, "N"},
                    Lying{"N", "S", false, "FN"}, Lying{"FS", "S", false, "S"}));

TEST(KitExportNames, AreThoseOfTheDefFile)
{
    SmallExport files("- FILLER_1_ INV + PLACED ( 380 0 ) N\n ;\n", "- FILLER_1 INV + PLACED ( 0 0 ) N ;\n");
    kit::design::NameMap map{.def = "in.def", .hash = kit::design::hashOf(files.def)};
    map.siteWidth = map.siteHeight = 1;
    map.names = {{"FILLER_1_", "FILLER_1"}};
    test::writeOutput(files.path("out.map"),
                      [&map](kit::OutputFile& out) { kit::design::writeNameMap(map, out); });
    const KitOutcome outcome = files.run();
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(outcome.output, "new.def: 1 component, 1 in a new place\n");
    EXPECT_EQ(files.output("new.def"), with(files.def, "( 0 0 ) N ;", "( 380 0 ) N ;"));
}

TEST(KitExportFillers, StayUnlessTheyAreToBeDropped)
{
    const SmallExport files("- u INV + PLACED ( 380 0 ) N\n ;\n", "- u INV + PLACED ( 0 0 ) N ;\n"
                                                                  "- f1 FILL1 + PLACED ( 570 0 ) N ;\n"
                                                                  "- f2 FILL1 + PLACED ( 760 0 ) N ;\n"
                                                                  "- f3 FILL1 + PLACED ( 570 1400 ) N ;\n");
    const KitOutcome outcome = files.run({"--lef", files.path("lef"), "--layer", "M1"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.error,
              "in.def: note: 3 fillers stay where they are, and placed cells lie on 1 of them; "
              "--drop-fillers leaves them out, and --fill fills the gaps [fillers]\n0 errors, 0 warnings, 1 "
              "note\n");
    EXPECT_EQ(files.output("new.def"), with(files.def, "u INV + PLACED ( 0 0 )", "u INV + PLACED ( 380 0 )"));
}

TEST(KitExportFillers, GoWithTheirLinesAndTheirCount)
{
    const SmallExport files("- u INV + PLACED ( 0 0 ) N\n ;\n",
                            "  - f1 FILL1 + PLACED ( 570 0 ) N\n    + PROPERTY a \" ; \" ;\r\n"
                            "- u INV + PLACED ( 0 0 ) N ; - f2 FILL1 + PLACED ( 760 0 ) N ;\n"
                            "- FILLER_3 INV + PLACED ( 760 1400 ) N ;\n"
                            "- f4 FILL1 + FIXED ( 760 1400 ) N ;\n");
    const KitOutcome outcome = files.run({"--drop-fillers"});
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(outcome.output, "new.def: 1 component, 0 in a new place, 3 fillers left out\n");
    EXPECT_EQ(files.output("new.def"),
              files.def.substr(0, files.def.find("COMPONENTS 9")) +
                  "COMPONENTS 2 ;\n- u INV + PLACED ( 0 0 ) N ; \n- f4 FILL1 + FIXED ( 760 1400 ) N ;\n"
                  "END COMPONENTS\nEND DESIGN\n");
}

TEST(KitExportFillers, StayIfTheyAreNamedElsewhere)
{
    SmallExport files("- u INV + PLACED ( 0 0 ) N\n ;\n", "- f1 FILL1 + PLACED ( 570 0 ) N ;\n"
                                                          "- u INV + PLACED ( 0 0 ) N ;\n"
                                                          "- f2 FILL1 + PLACED ( 760 0 ) N ;\n");
    files.def =
        with(files.def, "END DESIGN", "SPECIALNETS 1 ;\n- VDD ( f2 VDD ) ;\nEND SPECIALNETS\nEND DESIGN");
    const KitOutcome outcome = files.run({"--drop-fillers"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.error, "in.def:13: warning: the filler f2 is named here, and stays in the file "
                             "[filler-in-use]\n0 errors, 1 warning, 0 notes\n");
    EXPECT_EQ(files.output("new.def"), with(with(files.def, "- f1 FILL1 + PLACED ( 570 0 ) N ;\n", ""),
                                            "COMPONENTS 9", "COMPONENTS 2"));
}

TEST(KitExportFillers, AreWhatTheLibrarySaysWhateverTheirNames)
{
    const SmallExport files("- u INV + PLACED ( 0 0 ) N\n ;\n", "- u INV + PLACED ( 0 0 ) N ;\n"
                                                                "- FILLED INV + PLACED ( 570 0 ) N ;\n");
    const KitOutcome outcome = files.run({"--lef", files.path("lef"), "--layer", "M1", "--drop-fillers"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(
        outcome.error,
        "in.def:9: warning: the component FILLED is not in the placement, and stays where it is; export "
        "into the file that the placement was made from [left-out]\n0 errors, 1 warning, 0 notes\n");
    EXPECT_EQ(files.output("new.def"), files.def);
}

/// Nets of u, which moves, and of v, which does not.
struct Routing {
    const char* name;
    const char* nets;
    const char* expected;
    int64_t dropped = 1; ///< nets
};

class KitExportRouting : public testing::TestWithParam<Routing> {};

/// A DEF file with some nets.
std::string defWith(const std::string& def, const std::string& nets)
{
    return with(def, "END DESIGN",
                nets + "SPECIALNETS 1 ;\n- VDD ( u VDD ) + ROUTED M1 10 ( 0 0 ) ( 9 * ) ;\nEND SPECIALNETS\n"
                       "END DESIGN");
}

constexpr const char* MOVED = "- u INV + PLACED ( 380 0 ) N\n ;\n- v INV + PLACED ( 760 0 ) N\n ;\n";
constexpr const char* BEFORE = "- u INV + PLACED ( 0 0 ) N ;\n- v INV + PLACED ( 760 0 ) N ;\n";

TEST_P(KitExportRouting, IsLeftOutWhereACellHasMoved)
{
    SmallExport files(MOVED, BEFORE);
    files.def = defWith(files.def, GetParam().nets);
    const KitOutcome outcome = files.run();
    EXPECT_EQ(outcome.error, "");
    const std::string routing = GetParam().dropped == 0
                                    ? ""
                                    : ", the routing of " + std::to_string(GetParam().dropped) +
                                          (GetParam().dropped == 1 ? " net left out" : " nets left out");
    EXPECT_EQ(outcome.output, "new.def: 2 components, 1 in a new place" + routing + "\n");
    EXPECT_EQ(files.output("new.def"), with(with(files.def, GetParam().nets, GetParam().expected),
                                            "u INV + PLACED ( 0 0 )", "u INV + PLACED ( 380 0 )"));
}

INSTANTIATE_TEST_SUITE_P(
    Nets, KitExportRouting,
    testing::Values(
        Routing{
            "AtTheEnd",
            "NETS 1 ;\n- n ( u A ) ( v Z )\n + ROUTED M1 ( 0 0 ) ( 9 * )\n NEW M2 ( 9 0 ) V12 ;\nEND NETS\n",
            "NETS 1 ;\n- n ( u A ) ( v Z )\n ;\nEND NETS\n"},
        Routing{"BetweenOptions",
                "NETS 1 ;\n- n ( v Z ) ( u A ) + WEIGHT 2\n + ROUTED M1 TAPER ( 0 0 ) ( 9 * ) RECT ( 0 0 1 1 "
                ")\n + USE "
                "CLOCK ;\nEND NETS\n",
                "NETS 1 ;\n- n ( v Z ) ( u A ) + WEIGHT 2\n + USE CLOCK ;\nEND NETS\n"},
        Routing{"OfAllKinds",
                "NETS 1 ;\n- n ( u A ) + FIXED M1 ( 0 0 ) ( 1 * ) + COVER M1 ( 0 0 ) ( 2 * ) + ROUTED M1 ( 0 "
                "0 ) ( 3 * ) + "
                "NOSHIELD M1 ( 0 0 ) ( 4 * ) + FIXEDBUMP ;\nEND NETS\n",
                "NETS 1 ;\n- n ( u A ) + FIXEDBUMP ;\nEND NETS\n"},
        Routing{"OfSubnets",
                "NETS 1 ;\n- n ( u A ) + VPIN p ( 0 0 ) ( 1 1 ) PLACED ( 5 5 ) N + SUBNET s ( u A ) ( VPIN p "
                ") + ROUTED M1 ( "
                "0 0 ) ( 3 * ) ;\nEND NETS\n",
                "NETS 1 ;\n- n ( u A ) + VPIN p ( 0 0 ) ( 1 1 ) PLACED ( 5 5 ) N + SUBNET s ( u A ) ( VPIN p "
                ") ;\nEND "
                "NETS\n"},
        Routing{"BehindAComment", "NETS 1 ;\n- n ( u A ) # x\n + ROUTED M1 ( 0 0 ) ( 9 * ) ;\nEND NETS\n",
                "NETS 1 ;\n- n ( u A ) # x\n ;\nEND NETS\n"},
        Routing{"OfSupplyNets", "NETS 1 ;\n- n ( u A ) + USE POWER + ROUTED M1 ( 0 0 ) ( 9 * ) ;\nEND NETS\n",
                "NETS 1 ;\n- n ( u A ) + USE POWER ;\nEND NETS\n"},
        Routing{"NotOfNetsThatStay",
                "NETS 1 ;\n- n ( v A ) ( PIN u ) + ROUTED M1 ( 0 0 ) ( 9 * ) ;\nEND NETS\n",
                "NETS 1 ;\n- n ( v A ) ( PIN u ) + ROUTED M1 ( 0 0 ) ( 9 * ) ;\nEND NETS\n", 0}),
    [](const auto& param) { return param.param.name; });

TEST(KitExportKeptRouting, StaysWhereItIsToStayWithAWarning)
{
    SmallExport files(MOVED, BEFORE);
    files.def = defWith(files.def, "NETS 1 ;\n- n ( u A ) + ROUTED M1 ( 0 0 ) ( 9 * ) ;\nEND NETS\n");
    const KitOutcome outcome = files.run({"--keep-routing"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.error,
              "in.def: warning: the routing of 1 net ends where components were; leave --keep-routing "
              "out, or route these nets anew [routing]\n0 errors, 1 warning, 0 notes\n");
    EXPECT_EQ(files.output("new.def"), with(files.def, "u INV + PLACED ( 0 0 )", "u INV + PLACED ( 380 0 )"));
}

PROPERTY(KitExportEdits, KeepWhatIsOutsideOfThem)
{
    const std::string text = test::drawText();
    Edits edits;
    std::string expected;
    size_t done = 0;
    std::vector<std::tuple<size_t, size_t, std::string>> all;
    for (int i = test::draw(0, 4); i > 0 && done <= text.size(); --i) {
        const size_t begin = test::draw(done, text.size() + 1);
        const size_t end = test::draw(begin, text.size() + 1);
        const auto by = test::drawText();
        expected += text.substr(done, begin - done) + by;
        all.emplace_back(begin, end, by);
        done = end + 1; // two at one place have no order
        expected += end < text.size() ? text.substr(end, 1) : "";
    }
    expected += done < text.size() ? text.substr(done) : "";
    for (auto edit = all.rbegin(); edit != all.rend(); ++edit) {
        edits.replace(std::get<0>(*edit), std::get<1>(*edit), std::get<2>(*edit));
    }
    RC_ASSERT(edits.apply(text, 0, text.size()) == expected);
}

TEST(KitExportStatement, EndsAtItsSemicolon)
{
    using kit::lefdef::endOfStatement;
    EXPECT_EQ(endOfStatement("RECT 1 2 ; x", 0), 9U);
    EXPECT_EQ(endOfStatement("a \" ; \" ; x", 0), 8U);
    EXPECT_EQ(endOfStatement("a # ; \n ; x", 0), 8U);
    EXPECT_EQ(endOfStatement("a b", 0), 3U);
}

} // namespace
