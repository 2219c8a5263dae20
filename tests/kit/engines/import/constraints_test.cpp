// SPDX-License-Identifier: BSD-3-Clause
// What a DEF asks of a placement beside its rows, and sections that it does not have.
#include "kit/engines/import/importCase.h"
#include "kit/sharedDesigns.h"

namespace {

using test::components;
using test::KitImport;
using test::Words;

const Words CELLS{"f/a A + PLACED ( 1000 0 ) N", "f/b A + PLACED ( 1400 0 ) N", "g/c A + PLACED ( 3000 0 ) N",
                  "g/m RAM + FIXED ( 3400 2000 ) N"};

/// Regions and groups, and what is said about them.
struct RegionCase {
    const char* rule;
    const char* body;
    int status;
    const char* message; ///< empty: nothing is said
};

class KitImportRegions : public KitImport, public testing::WithParamInterface<RegionCase> {};

TEST_P(KitImportRegions, AreKeptOrToldByName)
{
    const auto outcome = import(components(CELLS) + GetParam().body, {"--layer", "metal1"});
    EXPECT_EQ(outcome.status, GetParam().status);
    EXPECT_EQ(outcome.error.empty() ? "" : outcome.error.substr(m_dir.path("d.def").size() + 1),
              *GetParam().message == '\0' ? "" : std::string(GetParam().message) + "]\n");
}

INSTANTIATE_TEST_SUITE_P(
    Rules, KitImportRegions,
    testing::Values(
        RegionCase{"FenceWithMovableMembers",
                   "REGIONS 1 ; - r ( 1000 0 ) ( 2000 2000 ) + TYPE FENCE + PROPERTY p 1 ; END REGIONS\n"
                   "GROUPS 2 ; - g1 f/* + SOFT MAXX 5 + REGION r ; - g2 g/m f/a none + REGION r ; END GROUPS",
                   2,
                   "12:15: error: region r is a fence around 2 movable components of group g1, g2, and the "
                   "placer cannot "
                   "keep cells inside a region; fix them, make it a GUIDE, or take it out [region"},
        RegionCase{
            "FenceOfFixedMembers",
            "REGIONS 1 ; - r ( 4600 2000 ) ( 5000 4000 ) + TYPE FENCE ; END REGIONS\n"
            "GROUPS 1 ; - g2 g/m + REGION r ; END GROUPS",
            0, "12:15: note: region r is a fence without movable members, and its rows are blocked [fence"},
        RegionCase{"Guide",
                   "REGIONS 1 ; - r ( 0 0 ) ( 1 1 ) + TYPE guide ; END REGIONS\n"
                   "GROUPS 1 ; - all *a* * *b + REGION r ; END GROUPS",
                   0,
                   "12:15: note: region r is a guide for 3 movable components of group all, and is not "
                   "followed [guide"},
        RegionCase{"WithoutATypeItHoldsItsMembers",
                   "REGIONS 1 ; - r ( 0 0 ) ( 1 1 ) ; END REGIONS GROUPS 1 ; - g *c + REGION r ; END GROUPS",
                   2,
                   "12:15: error: region r must hold 1 movable component of group g, and the placer cannot "
                   "keep cells inside "
                   "a region; fix them, make it a GUIDE, or take it out [region"},
        RegionCase{"WithoutATypeAndMembersItAsksNothing", "REGIONS 1 ; - r ( 0 0 ) ( 1 1 ) ; END REGIONS", 0,
                   ""},
        RegionCase{"GroupWithCornersOfItsOwn", "GROUPS 1 ; - g f/* + REGION ( 0 0 ) ( 9 9 ) ; END GROUPS", 2,
                   "12:14: error: region g must hold 2 movable components of group g, and the placer cannot "
                   "keep cells "
                   "inside a region; fix them, make it a GUIDE, or take it out [region"},
        RegionCase{"GroupWithoutARegion", "GROUPS 1 ; - g f/* + SOFT ; END GROUPS", 0,
                   "12:14: note: group g has no region, and is not followed [group"},
        RegionCase{"UnknownRegion", "GROUPS 1 ; - g f/a + REGION r ; END GROUPS", 0,
                   "12:14: warning: region r, which 1 movable component of group g should be in, is in no "
                   "section; correct "
                   "the name, or add it to REGIONS [unknown-region"}),
    [](const auto& instance) { return instance.param.rule; });

using KitImportConstraints = KitImport;

TEST_F(KitImportConstraints, RegionIsNamedByComponentsAsWell)
{
    const auto outcome =
        import(components({"a A + PLACED ( 1000 0 ) N + REGION r", "b A + PLACED ( 1400 0 ) N + REGION "
                                                                   "( 0 0 ) ( 9 9 )"}) +
               "REGIONS 1 ; - r ( 0 0 ) ( 9 9 ) + TYPE FENCE ; END REGIONS");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.error.find("region r is a fence around 1 movable component, "), std::string::npos)
        << outcome.error;
    EXPECT_NE(outcome.error.find("region b must hold 1 movable component, "), std::string::npos)
        << outcome.error;
}

TEST_F(KitImportConstraints, FenceOfFixedMembersKeepsOthersOut)
{
    const std::string fence = "REGIONS 1 ; - r ( 2000 0 ) ( 2600 2000 ) + TYPE FENCE ; END REGIONS\n";
    importWell(components({"a A + PLACED ( 1000 0 ) N"}) + fence);
    EXPECT_EQ(records("BIGNODES"), Words{"BLOCK_0 BLOCK + ( 2000 0 ) ( 600 2000 ) N"});
    EXPECT_EQ(import(components({"a A + PLACED ( 2400 0 ) N"}) + fence).status, 2);
}

TEST_F(KitImportConstraints, HaloOfAFixedMacroIsPartOfItsBlock)
{
    // 400 to the master's left; by S that is the right side.
    importWell(components({"m RAM + FIXED ( 2000 0 ) N + HALO 400 0 0 0"}));
    EXPECT_EQ(records("BIGNODES").front(), "BLOCK_0 BLOCK + ( 1600 0 ) ( 1600 2000 ) N");
    importWell(components({"m RAM + HALO 400 0 0 0 + FIXED ( 2000 0 ) S"}));
    EXPECT_EQ(records("BIGNODES").front(), "BLOCK_0 BLOCK + ( 2000 0 ) ( 1600 2000 ) N");
}

TEST_F(KitImportConstraints, HalosThatAreNotKeptAreNotes)
{
    const auto outcome =
        import(components({"m RAM + FIXED ( 2000 0 ) N + HALO 400 0 0 0", "a A + PLACED ( 1400 0 ) N",
                           "b A + PLACED ( 1000 2000 ) FS + HALO 9 9 9 9",
                           "n A + FIXED ( 4000 0 ) N + HALO SOFT 400 0 0 0"}),
               {"--layer", "metal1"});
    EXPECT_EQ(outcome.status, 0);
    for (const char* const text :
         {"d.def:7:3: note: the halo of component m is not kept: movable cells stand in it [halo]",
          "d.def:9:3: note: the halo of component b is not kept: the component is not fixed [halo]",
          "d.def:10:3: note: the halo of component n is not kept: it is soft [halo]"}) {
        EXPECT_NE(outcome.error.find(text), std::string::npos) << outcome.error;
    }
    EXPECT_EQ(records("BIGNODES").front(), "BLOCK_0 BLOCK + ( 2000 0 ) ( 1200 2000 ) N");
}

TEST_F(KitImportConstraints, SoftBlockagesAreNotes)
{
    const auto outcome = import("BLOCKAGES 3 ;\n- PLACEMENT + SOFT RECT ( 1500 500 ) ( 1700 2500 ) ;\n"
                                "- PLACEMENT + PARTIAL 0.5 RECT ( 1500 500 ) ( 1700 2500 ) ;\n"
                                "- PLACEMENT + PUSHDOWN RECT ( 3000 0 ) ( 3200 2000 ) ;\nEND BLOCKAGES",
                                {"--layer", "metal1"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(std::count(outcome.error.begin(), outcome.error.end(), '\n'), 2) << outcome.error;
    EXPECT_NE(outcome.error.find("d.def:8:3: note: a blockage that is SOFT or PARTIAL is not kept"),
              std::string::npos)
        << outcome.error;
    EXPECT_EQ(records("BIGNODES"), Words{"BLOCK_0 BLOCK + ( 3000 0 ) ( 200 2000 ) N"});
}

TEST_F(KitImportConstraints, DefWithoutNetsHasNone)
{
    importWell(components({"a A + PLACED ( 1000 0 ) N"}) +
               "PINS 1 ; - p + NET n + PLACED ( 1 2 ) N ; END PINS");
    EXPECT_EQ(fileOf(".netlist"), "0\n");
    EXPECT_EQ(fileOf(".pins"), "1\np 1 2\n");
}

TEST_F(KitImportConstraints, DefWithoutPinsKeepsItsNets)
{
    const auto outcome = import(components({"a A + PLACED ( 1000 0 ) N", "b A + PLACED ( 1400 0 ) N"}) +
                                "NETS 1 ; - n ( a Z ) ( b Z ) ( PIN p ) ; END NETS");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.error.find("warning: net n has the unknown pin p, which is left out"),
              std::string::npos)
        << outcome.error;
    EXPECT_EQ(fileOf(".netlist"), "1\n2\n a b\n");
    EXPECT_EQ(fileOf(".pins"), "0\n");
}

TEST_F(KitImportConstraints, HundredsOfThousandsOfPinsAreTaken)
{
    constexpr int COUNT = 300'000;
    std::string pins = "PINS " + std::to_string(COUNT) + " ;\n";
    std::string nets = "NETS " + std::to_string(COUNT) + " ;\n";
    for (int i = 0; i < COUNT; ++i) {
        const std::string name = "p[" + std::to_string(i) + "]";
        pins += "- " + name + " + NET " + name + " + DIRECTION INPUT + PLACED ( " + std::to_string(i) +
                " 0 ) N ;\n";
        nets += "- " + name + " ( PIN " + name + " ) ;\n";
    }
    importWell(components({"a A + PLACED ( 1000 0 ) N"}) + pins + "END PINS\n" + nets + "END NETS");
    EXPECT_EQ(fileOf(".pins").substr(0, 20), "300000\np[0] 0 0\np[1]");
    EXPECT_EQ(fileOf(".netlist").substr(0, 7), "300000\n");
}

class SharedFences : public test::WithSharedDesigns {};

TEST_F(SharedFences, AreRefusedByName)
{
    const std::string cells = std::string(VIRELOCE_KIT_EXAMPLES) + "/raw/Nangate45_stdcell.lef";
    const test::TempDir dir;
    for (const char* const name : {"fence01", "fence02", "fence03", "regions1", "regions2", "regions3"}) {
        const auto outcome = test::runKit(
            {"import", "--lef", cells, "--lef", test::sharedFile("rules/fake_macros.lef"), "--def",
             test::sharedFile(std::string("rules/") + name + ".def"), "--legalize", "-o", dir.path("o")});
        EXPECT_EQ(outcome.status, 2) << name;
        EXPECT_NE(outcome.error.find(" is a fence around "), std::string::npos) << name << outcome.error;
        EXPECT_FALSE(std::filesystem::exists(dir.path("o.place"))) << name;
    }
}

} // namespace
