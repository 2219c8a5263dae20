// SPDX-License-Identifier: BSD-3-Clause
// New fillers in the gaps of a placement.
#include <gtest/gtest.h>

#include <random>
#include <sstream>

#include "kit/engines/export/smallExport.h"
#include "kit/formats/gds/gdsReader.h"
#include "kit/formats/lefdef/def.h"
#include "kit/sharedDesigns.h"

namespace {

using namespace test;

/// A filler of some sites with rails, and other shapes.
std::string fillerLef(const std::string& name, int32_t sites, const std::string& shapes = "",
                      double height = 1.4)
{
    const std::string width = std::to_string(0.19 * sites);
    return "MACRO " + name + "\n  CLASS CORE SPACER ;\n  SIZE " + width + " BY " + std::to_string(height) +
           " ;\n  PIN VSS USE GROUND ; PORT LAYER M1 ;\n    RECT 0 -0.085 " + width + " 0.085 ;\n" + shapes +
           "  END END VSS\nEND " + name + "\n";
}

/// A placement of an INV at ( 380 0 ) in two rows of ten sites, and a DEF file with other records.
class KitFill : public testing::Test {
protected:
    KitFill()
    {
        std::string lef = SMALL_LEF;
        lef.erase(lef.find("MACRO FILL1"));
        m_files.write("lef", lef + fillerLef("FILL1", 1) + fillerLef("FILL2", 2) + fillerLef("FILL3", 3) +
                                 fillerLef("FILL3B", 3) +
                                 fillerLef("FILLBAR", 5, "    RECT 0.1 0.5 0.2 0.9 ;\n") +
                                 fillerLef("FILLRAIL", 5, "    RECT 0.1 0.08 0.2 0.9 ;\n") +
                                 fillerLef("FILLHIGH", 5, "", 2.8) + "END LIBRARY\n");
    }

    /// Fills the gaps of a DEF file with these records, and others behind its components.
    KitOutcome fill(const std::string& records, const std::string& behind = "", const Words& more = {})
    {
        const size_t at = m_files.def.find("- u INV");
        m_files.def.insert(at, records);
        m_files.def.insert(m_files.def.find("END DESIGN"), behind);
        m_files.colors = "u INV 0 0 0 0 1 1\n";
        Words words{"--lef", m_files.path("lef"), "--layer", "M1", "--fill"};
        words.insert(words.end(), more.begin(), more.end());
        return m_files.run(words);
    }

    /// The records of the fillers, without their names if they are as they should be.
    static Words fillersOf(const std::string& text)
    {
        std::istringstream lines(text);
        Words fillers;
        for (std::string line; std::getline(lines, line);) {
            const std::string begin = "- FILLER_" + std::to_string(fillers.size() + 1) + " ";
            const std::string dist = " + SOURCE DIST + PLACED";
            if (line.starts_with(begin) && line.find(dist) != std::string::npos) {
                line.erase(line.find(dist), dist.size());
                fillers.push_back(line.substr(begin.size(), line.size() - begin.size() - 2));
            } else {
                EXPECT_FALSE(line.starts_with("- FILLER")) << line;
            }
        }
        return fillers;
    }

    Words fillers() const { return fillersOf(m_files.output("new.def")); }

    SmallExport m_files{"- u INV + PLACED ( 380 0 ) N\n ;\n", "- u INV + PLACED ( 0 0 ) N ;\n"};
};

TEST(KitFillFixed, KeepsOffTheMetalOfFixedCellsAndBlocks)
{
    const auto filled = [](const std::string& fixed) {
        SmallExport files("- u INV + PLACED ( 380 0 ) N\n ;\n",
                          "- u INV + PLACED ( 0 0 ) N ;\n- f INV + FIXED ( 1140 0 ) N ;\n"
                          "- b BAR + PLACED ( 760 1400 ) N ;\n");
        // Its bar is 150 from either edge, and on mask 1.
        files.write("lib/BAR.color", "380 1400\n1 0 0 380 1400\n1\n1 150 400 230 800\n1\n0 1\n");
        files.write("more.lef", "MACRO BAR\n  CLASS CORE SPACER ;\n  SIZE 0.38 BY 1.4 ;\n  OBS LAYER M1 ;\n"
                                "    RECT 0.15 0.4 0.23 0.8 ;\n  END\nEND BAR\nEND LIBRARY\n");
        files.write("out.fixed", "VIRELOCE FIXED 1\n" + fixed + "END\n");
        files.colors = "u INV 1 0 0 0 1 2\n";
        const KitOutcome outcome = files.run(
            {"--lef", files.path("lef"), "--lef", files.path("more.lef"), "--layer", "M1", "--fill"});
        EXPECT_EQ(outcome.status, 0) << outcome.error;
        return files.output("new.def").find(" BAR + SOURCE DIST + PLACED ( 760 0 ) N ;") != std::string::npos;
    };
    EXPECT_TRUE(filled("CELLS 1\nINV 1140 0 N 2 f\nBLOCKS 0\n"));
    EXPECT_FALSE(filled("CELLS 1\nINV 1140 0 N 0 f\nBLOCKS 0\n")) << "its left bar is on mask 1, 170 away";
    EXPECT_FALSE(filled("CELLS 0\nBLOCKS 1\nBLOCK RAM 0 0 1 r\n1160 500 1300 600\n"));
}

TEST_F(KitFill, PutsTheSameMastersIntoTheGapsWidestFirst)
{
    const KitOutcome outcome = fill("- a FILL1 + PLACED ( 570 0 ) N ;\n- b FILL3 + PLACED ( 760 0 ) N ;\n");
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(outcome.output, "new.def: 1 component, 1 in a new place, 2 fillers left out, 8 put in\n");
    EXPECT_EQ(fillers(), (Words{"FILL1 ( 0 0 ) N", "FILL1 ( 190 0 ) N", "FILL3 ( 760 0 ) N",
                                "FILL3 ( 1330 0 ) N", "FILL3 ( 0 1400 ) FS", "FILL3 ( 570 1400 ) FS",
                                "FILL3 ( 1140 1400 ) FS", "FILL1 ( 1710 1400 ) FS"}));
    const std::string def = m_files.output("new.def");
    EXPECT_NE(def.find("COMPONENTS 9 ;\n- u INV + PLACED ( 380 0 ) N ;\n- FILLER_1 "), std::string::npos)
        << def;
    EXPECT_NE(def.find(" ;\nEND COMPONENTS\nEND DESIGN\n"), std::string::npos) << def;
}

TEST_F(KitFill, LeavesAsFewSitesFreeAsCanBe)
{
    fill(
        "- a FILL2 + PLACED ( 570 0 ) N ;\n- b FILL3 + PLACED ( 950 0 ) N ;\n- t INV + FIXED ( 1520 0 ) N ;\n"
        "- w INV + FIXED ( 0 1400 ) FS ;\n- x INV + FIXED ( 570 1400 ) FS ;\n");
    EXPECT_EQ(fillers(), (Words{"FILL2 ( 0 0 ) N", "FILL2 ( 760 0 ) N", "FILL2 ( 1140 0 ) N",
                                "FILL3 ( 950 1400 ) FS", "FILL2 ( 1520 1400 ) FS"}))
        << "one site has no room";
}

TEST_F(KitFill, TakesTheCommonerOfTwoMastersOfAWidth)
{
    fill("- a FILL3 + PLACED ( 570 0 ) N ;\n- b FILL3B + PLACED ( 1140 0 ) N ;\n- c FILL3B + PLACED ( 0 1400 "
         ") FS ;\n");
    EXPECT_EQ(fillers(), (Words{"FILL3B ( 760 0 ) N", "FILL3B ( 1330 0 ) N", "FILL3B ( 0 1400 ) FS",
                                "FILL3B ( 570 1400 ) FS", "FILL3B ( 1140 1400 ) FS"}));
}

TEST_F(KitFill, KeepsOffBlockagesThatHadNoFillers)
{
    fill("- a FILL2 + PLACED ( 0 1400 ) FS ;\n",
         "BLOCKAGES 3 ;\n- PLACEMENT RECT ( 0 1500 ) ( 380 1600 ) ;\n"
         "- PLACEMENT + SOFT RECT ( 700 1400 ) ( 1200 1500 ) ;\n- PLACEMENT RECT ( 1000 0 ) ( 1001 1 ) ;\n"
         "END BLOCKAGES\n");
    EXPECT_EQ(fillers(), (Words{"FILL2 ( 0 0 ) N", "FILL2 ( 1140 0 ) N", "FILL2 ( 1520 0 ) N",
                                "FILL2 ( 0 1400 ) FS", "FILL2 ( 1330 1400 ) FS"}))
        << "the first blockage had one";
}

TEST_F(KitFill, RowsOverOneAnotherAreFilledOnce)
{
    m_files.def.insert(m_files.def.find("COMPONENTS"), "ROW r2 other 190 0 N DO 11 BY 1 STEP 190 0 ;\n"
                                                       "ROW r3 side 0 0 W DO 50 BY 1 STEP 190 0 ;\n");
    fill("- a FILL3 + PLACED ( 570 0 ) N ;\n- w INV + FIXED ( 0 1400 ) FS ;\n- x INV + FIXED ( 570 1400 ) FS "
         ";\n");
    EXPECT_EQ(fillers(), (Words{"FILL3 ( 760 0 ) N", "FILL3 ( 1330 0 ) N", "FILL3 ( 950 1400 ) FS"}));
}

TEST_F(KitFill, NamesAreThoseOfNoComponent)
{
    fill("- a FILL3 + PLACED ( 570 0 ) N ;\n- FILLER_2 INV + FIXED ( 0 1400 ) FS ;\n");
    const std::string def = m_files.output("new.def");
    for (const char* name : {"- FILLER_1 FILL3", "- FILLER_3 FILL3", "- FILLER_2 INV"}) {
        EXPECT_NE(def.find(name), std::string::npos) << name;
    }
    EXPECT_EQ(def.find("- FILLER_2 FILL3"), std::string::npos);
}

TEST_F(KitFill, MasterWithOtherMetalThanRailsIsLeftOut)
{
    const KitOutcome outcome =
        fill("- a FILLBAR + PLACED ( 570 0 ) N ;\n- b FILL3 + PLACED ( 0 1400 ) FS ;\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.error,
              "in.def: note: the filler FILLBAR has other metal than rails, and no colour file: it is "
              "left out [filler-metal]\n0 errors, 0 warnings, 1 note\n");
    EXPECT_EQ(fillers().size(), 5U);
}

/// A colour file of FILLBAR, whose bar is 120 units from the right bar of u where it stands beside it.
std::string barColor(const std::string& solutions)
{
    return "950 1400\n1 0 0 950 1400\n2\n1 0 -85 950 85\n1 100 500 200 900\n" + solutions;
}

TEST_F(KitFill, OtherMetalGetsTheFirstSolutionThatKeepsItsDistance)
{
    m_files.write("lib/FILLBAR.color", barColor("3\n1 0 2\n0 0 1\n2 0 0\n"));
    EXPECT_EQ(fill("- a FILLBAR + PLACED ( 570 0 ) N ;\n", "", {"--gds", m_files.path("new.gds")}).error, "");
    EXPECT_EQ(fillers(), (Words{"FILLBAR ( 760 0 ) N", "FILLBAR ( 0 1400 ) FS", "FILLBAR ( 950 1400 ) FS"}));
    EXPECT_EQ(readGds(m_files.output("new.gds")).order,
              (Words{"INV_S0_N", "FILLBAR_S0_N", "FILLBAR_S1_FS", "small"}))
        << "beside u mask 1 is too close";
}

TEST_F(KitFill, OtherMetalKeepsItsDistanceFromThatOfFillers)
{
    m_files.write("lib/FILLBAR.color", "950 1400\n1 0 0 950 1400\n2\n1 0 -85 950 85\n1 20 500 940 900\n"
                                       "2\n0 0 1\n0 0 2\n");
    fill("- a FILLBAR + PLACED ( 570 0 ) N ;\n", "", {"--gds", m_files.path("new.gds")});
    const GdsLibrary library = readGds(m_files.output("new.gds"));
    Words structures;
    for (const GdsInstance& instance : library.structures.at("small").instances) {
        structures.push_back(instance.structure);
    }
    EXPECT_EQ(structures, (Words{"INV_S0_N", "FILLBAR_S1_N", "FILLBAR_S0_FS", "FILLBAR_S1_FS"}));
}

TEST_F(KitFill, WhereNoSolutionKeepsItsDistanceAnotherMasterStands)
{
    m_files.write("lib/FILLBAR.color", barColor("1\n0 0 1\n"));
    fill("- a FILLBAR + PLACED ( 570 0 ) N ;\n- b FILL1 + PLACED ( 1520 0 ) N ;\n- w INV + FIXED ( 0 1400 ) "
         "FS ;\n");
    EXPECT_EQ(fillers(), (Words{"FILL1 ( 0 0 ) N", "FILL1 ( 190 0 ) N", "FILL1 ( 760 0 ) N",
                                "FILLBAR ( 950 0 ) N", "FILLBAR ( 380 1400 ) FS", "FILL1 ( 1330 1400 ) FS",
                                "FILL1 ( 1520 1400 ) FS", "FILL1 ( 1710 1400 ) FS"}));
}

TEST_F(KitFill, DistanceIsThatOfTheRun)
{
    m_files.write("lib/FILLBAR.color", barColor("1\n0 0 1\n"));
    m_files.json.insert(m_files.json.find("\"cell_path\""), "\"mindp\": 120, ");
    fill("- a FILLBAR + PLACED ( 570 0 ) N ;\n");
    EXPECT_EQ(fillers().at(0), "FILLBAR ( 760 0 ) N");
}

TEST_F(KitFill, MetalThatHangsOnARailIsARail)
{
    EXPECT_EQ(fill("- a FILLRAIL + PLACED ( 570 0 ) N ;\n").error, "");
    EXPECT_EQ(fillers(),
              (Words{"FILLRAIL ( 760 0 ) N", "FILLRAIL ( 0 1400 ) FS", "FILLRAIL ( 950 1400 ) FS"}));
}

TEST_F(KitFill, MasterThatIsNotAsHighAsARowIsLeftOut)
{
    const KitOutcome outcome = fill("- a FILLHIGH + PLACED ( 950 0 ) N ;\n");
    EXPECT_EQ(outcome.error, "in.def: note: the filler FILLHIGH is not as high as a row: it is left out "
                             "[filler-height]\n0 errors, 0 warnings, 1 note\n");
    EXPECT_EQ(fillers(), Words());
}

TEST_F(KitFill, ComponentOfUnknownSizeIsAnError)
{
    const KitOutcome outcome = fill("- a FILL3 + PLACED ( 570 0 ) N ;\n- w OTHER + FIXED ( 0 1400 ) FS ;\n");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.error.find("error: the macro OTHER of the component w is in none of the LEF files"),
              std::string::npos)
        << outcome.error;
}

TEST_F(KitFill, WithoutFillersBeforeThereAreNoneAfter)
{
    EXPECT_EQ(fill("").output, "new.def: 1 component, 1 in a new place, 0 fillers left out\n");
    EXPECT_EQ(fillers(), Words());
}

TEST_F(KitFill, NeedsALibrary)
{
    EXPECT_EQ(m_files.run({"--fill"}).status, 2);
}

TEST_F(KitFill, RailsAreOnMask0InTheLayout)
{
    fill("- a FILL3 + PLACED ( 570 0 ) N ;\n", "", {"--gds", m_files.path("new.gds")});
    const GdsLibrary library = readGds(m_files.output("new.gds"));
    EXPECT_EQ(library.order, (Words{"INV_S0_N", "FILL3_S0_N", "FILL3_S0_FS", "small"}));
    const auto& instances = library.structures.at("small").instances;
    ASSERT_EQ(instances.size(), 6U);
    EXPECT_EQ(instances[1], (GdsInstance{"FILL3_S0_N", {760, 0}, "FILLER_1"}));
    std::map<int64_t, std::vector<std::pair<int64_t, int64_t>>> corners; // by layer, the lower left ones
    for (const GdsShape& shape : library.structures.at("FILL3_S0_N").shapes) {
        corners[shape.layer].push_back(shape.points.at(0));
    }
    const std::vector<std::pair<int64_t, int64_t>> rail{{0, -85}};
    EXPECT_EQ(corners.at(1), rail);
    EXPECT_EQ(corners.at(100), rail);
    EXPECT_EQ(corners.size(), 3U) << "and the outline";
}

TEST_F(KitFill, MastersWithMasksHaveThemToo)
{
    fill("- a FILL3 + PLACED ( 570 0 ) N ;\n- b FILL1 + PLACED ( 1140 0 ) N ;\n", "",
         {"--lef-masks", m_files.path("masks.lef"), "--def-masks", m_files.path("masks.def")});
    const std::string lef = m_files.output("masks.lef");
    const size_t begin = lef.find("MACRO FILL3_S0\n");
    ASSERT_NE(begin, std::string::npos) << lef;
    EXPECT_NE(lef.find("RECT MASK 1 0 -0.085 0.570000 0.085 ;", begin), std::string::npos) << lef;
    EXPECT_EQ(fillersOf(m_files.output("masks.def")).at(2), "FILL3_S0 ( 760 0 ) N");
    EXPECT_EQ(fillers().at(2), "FILL3 ( 760 0 ) N");
}

TEST_F(KitFill, OfRandomRowsLeavesNoGapAndNoOverlap)
{
    constexpr int64_t SITES = 10;
    std::mt19937 random(7);
    for (int round = 0; round < 60; ++round) {
        SmallExport files("- u INV + PLACED ( 0 0 ) N\n ;\n", "");
        files.write("lef", contentOf(m_files.path("lef")));
        files.colors = "u INV 0 0 0 0 1 1\n";
        std::string records = "- u INV + PLACED ( 0 0 ) N ;\n- a FILL3 + PLACED ( 380 0 ) N ;\n";
        records +=
            round % 2 == 0 ? "- b FILL2 + PLACED ( 380 0 ) N ;\n" : "- b FILLRAIL + PLACED ( 380 0 ) N ;\n";
        for (int64_t site = 2; site + 1 < 2 * SITES; site += 2 + random() % 6) {
            if (site % SITES < SITES - 1) {
                records += "- i" + std::to_string(site) + " INV + FIXED ( " +
                           std::to_string(site % SITES * 190) + " " + std::to_string(site / SITES * 1400) +
                           " ) N ;\n";
            }
        }
        files.def.insert(files.def.find("END COMPONENTS"), records);
        ASSERT_NE(files.run({"--lef", files.path("lef"), "--layer", "M1", "--fill"}).status, 2);
        const kit::lefdef::Source source(files.path("new.def"));
        kit::Findings findings;
        const kit::lefdef::Def def = readDef(source, findings);
        std::vector<int> taken(2 * SITES);
        for (const auto& comp : def.components) {
            const int64_t width = comp.macro == "FILL3" ? 3 : comp.macro == "FILLRAIL" ? 5 : 2;
            for (int64_t i = 0; i < width; ++i) {
                const int64_t site = comp.x / 190 + i;
                ASSERT_LT(site, SITES);
                ++taken[static_cast<size_t>(comp.y / 1400 * SITES + site)];
            }
        }
        EXPECT_EQ(std::ranges::max(taken), 1) << files.output("new.def");
        const int64_t narrowest = round % 2 == 0 ? 2 : 3;
        for (size_t begin = 0, free = 0; begin < taken.size(); ++begin) {
            free = taken[begin] > 0 || begin % SITES == 0 ? 0 : free;
            free += taken[begin] == 0 ? 1 : 0;
            EXPECT_LT(free, static_cast<size_t>(narrowest)) << files.output("new.def");
        }
    }
}

class KitFillShared : public testing::TestWithParam<const char*> {};

TEST_P(KitFillShared, DesignStaysFilledAndLegal)
{
    const std::optional<ListedDesign> design = listedDesign(GetParam());
    if (!design) {
        GTEST_SKIP() << "there are no shared designs beside the checkout: set VIRELOCE_SHARED";
    }
    const TempDir dir;
    Words lefs;
    for (const std::string& lef : design->lefs) {
        lefs.insert(lefs.end(), {"--lef", lef});
    }
    Words words{"flow",        "--def",   design->def,       "--layer",           design->layer, "-o",
                dir.path("o"), "--cache", dir.path("cache"), "--allow-conflicts", "--algo",      "3"};
    words.insert(words.end(), lefs.begin(), lefs.end());
    words.insert(words.begin(), VIRELOCE_KIT_PROGRAM);
    const auto ending = kit::process::run(words, dir.path("out"), dir.path("err"));
    ASSERT_EQ(ending.status, 0) << contentOf(dir.path("err"));
    const kit::Json before = measured(*design, design->def, dir);
    const kit::Json after = measured(*design, dir.path("o.def"), dir, {"--fillers"});
    for (const char* fault : {"overlaps", "off_row", "off_site", "out_of_row", "bad_orient"}) {
        EXPECT_EQ(after.at(fault), 0) << fault;
    }
    const kit::Json fillers = measured(*design, dir.path("o.def"), dir).at("fillers");
    EXPECT_GT(fillers.asInteger(), 0);
    EXPECT_EQ(after.at("cells").asInteger(), before.at("cells").asInteger() + fillers.asInteger());
    const kit::Json result = kit::Json::parse(contentOf(dir.path("o.json")));
    EXPECT_EQ(result["hpwl_pins"]["before"]["dbu"], before.at("hpwl"));
    EXPECT_EQ(result["hpwl_pins"]["after"]["dbu"], after.at("hpwl"));
}

INSTANTIATE_TEST_SUITE_P(Designs, KitFillShared, testing::Values("gcd_nangate45"));

} // namespace
