// SPDX-License-Identifier: BSD-3-Clause
// Rows whose metal near the next rows is on mask 1 in one and on mask 2 in the next.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "kit/base/files/writeOutput.h"
#include "kit/base/text/json.h"
#include "kit/design/fixedCells.h"
#include "kit/design/rowKinds.h"
#include "kit/engines/place/schema.h"
#include "kit/formats/placer/colors.h"
#include "kit/formats/placer/reader.h"
#include "kit/formats/placer/writer.h"
#include "kit/kitRun.h"

namespace {

using kit::Json;
using kit::placer::ColorRecord;
using test::contentOf;
using test::KitOutcome;
using test::runKit;
using test::Words;

/// A site of 190 DBU, which are library units. The bars of EDGES are 50 from the next rows, which is closer
/// than 185 to those of the cells there.
const std::string EDGES_LEF = R"(UNITS DATABASE MICRONS 1000 ; END UNITS
SITE core CLASS CORE ; SIZE 0.19 BY 1.4 ; END core
MACRO EDGES CLASS CORE ; SIZE 0.38 BY 1.4 ; SITE core ;
  PIN A PORT LAYER metal1 ; RECT 0.04 0.05 0.15 0.5 ; END END A
  PIN Z PORT LAYER metal1 ; RECT 0.04 0.9 0.15 1.35 ; END END Z
END EDGES
MACRO RIGHT CLASS CORE ; SIZE 0.38 BY 1.4 ; SITE core ;
  PIN A PORT LAYER metal1 ; RECT 0.3 0.05 0.36 0.5 ; END END A
END RIGHT
END LIBRARY
)";

/// Columns of EDGES in four rows, every second one upside down. The left ones are fixed.
class KitPlaceRowsMeet : public testing::Test {
protected:
    void SetUp() override
    {
        Words records;
        for (int row = 0; row < 4; ++row) {
            const std::string place = std::to_string(1400 * row) + (row % 2 == 0 ? " ) N" : " ) FS");
            records.push_back("f" + std::to_string(row) + " EDGES + FIXED ( 0 " + place);
            records.push_back("u" + std::to_string(row) + " EDGES + PLACED ( 760 " + place);
        }
        import(records, 12);
    }

    void import(const Words& records, int32_t sites) const
    {
        std::string def = "VERSION 5.8 ;\nDESIGN d ;\nUNITS DISTANCE MICRONS 1000 ;\n";
        for (int row = 0; row < 4; ++row) {
            def += "ROW r" + std::to_string(row) + " core 0 " + std::to_string(1400 * row) +
                   (row % 2 == 0 ? " N" : " FS") + " DO " + std::to_string(sites) + " BY 1 STEP 190 0 ;\n";
        }
        def += "COMPONENTS " + std::to_string(records.size()) + " ;\n";
        for (const std::string& record : records) {
            def += "- " + record + " ;\n";
        }
        def += "END COMPONENTS\nEND DESIGN\n";
        const KitOutcome outcome = runKit({"import", "--lef", m_dir.write("l.lef", EDGES_LEF), "--def",
                                           m_dir.write("d.def", def), "-o", base(), "--force"});
        ASSERT_EQ(outcome.status, 0) << outcome.error;
    }

    void color(const Words& more = {}) const
    {
        Words words{"color", "--lef", m_dir.path("l.lef"), "--max-solutions", "1", "-o", lib()};
        words.insert(words.end(), more.begin(), more.end());
        ASSERT_EQ(runKit(words).status, 0);
    }

    KitOutcome place(const Words& more = {}) const
    {
        Words words{"place", base(), "--cell-path", lib(), "-o", out(), "--true-orientation"};
        words.insert(words.end(), more.begin(), more.end());
        return runKit(words);
    }

    /// Conflicts across rows by the judge.
    Json rowConflicts() const
    {
        const Json judged = Json::parse(runKit({"verify", out() + ".place", "--colors", out() + ".colors",
                                                "--cell-path", lib(), "--across-rows", "--json"})
                                            .output);
        return judged["counts"]["row-conflict"];
    }

    /// Numbers of the solutions of all fixed cells.
    std::string fixedSolutions() const
    {
        kit::Findings findings;
        std::string solutions;
        for (const kit::design::FixedCell& cell : kit::design::readFixed(out() + ".fixed", findings).cells) {
            solutions += std::to_string(cell.solution);
        }
        return solutions;
    }

    std::string lib() const { return m_dir.path("lib"); }
    std::string base() const { return m_dir.path("d"); }
    std::string out() const { return m_dir.path("out"); }

    test::TempDir m_dir;
};

TEST_F(KitPlaceRowsMeet, NoCellConflictsWithTheNextRows)
{
    color({"--rows-meet"});
    const KitOutcome outcome = place({"--rows-meet"});
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(rowConflicts(), Json(0));
    const Json result = Json::parse(contentOf(out() + ".json"));
    EXPECT_EQ(test::faultsOf(result, test::placeSchema()), Words{});
    EXPECT_EQ(result["options"]["rows_meet"], Json(true));
    EXPECT_EQ(result["judge"]["errors"], Json(0));
}

TEST_F(KitPlaceRowsMeet, WithoutTheOptionTheyDo)
{
    color({"--rows-meet"});
    EXPECT_EQ(place().status, 0);
    EXPECT_EQ(rowConflicts(), Json(6)) << "three pairs of fixed cells and three of others";
    EXPECT_FALSE(Json::parse(contentOf(out() + ".json"))["options"].contains("rows_meet"));
}

TEST_F(KitPlaceRowsMeet, ConflictAcrossRowsIsNotClean)
{
    color({"--rows-meet"});
    std::string file = contentOf(lib() + "/EDGES.color"); // both bars change masks: to 0, and to 0
    for (size_t i = file.size() - 12; i < file.size(); ++i) {
        file[i] = file[i] == '1' || file[i] == '2' ? '0' : file[i];
    }
    std::ofstream(lib() + "/EDGES.color") << file;
    EXPECT_EQ(place({"--rows-meet"}).status, 1);
    EXPECT_EQ(Json::parse(contentOf(out() + ".json"))["judge"]["errors"], rowConflicts());
}

TEST_F(KitPlaceRowsMeet, EverySecondRowHasSolutionsOfTheSecondKind)
{
    color({"--rows-meet"});
    EXPECT_EQ(place({"--rows-meet"}).status, 0);
    EXPECT_EQ(contentOf(out() + ".colors"),
              "VIRELOCE COLORS 1\nCOMPONENTS 4\nu0 EDGES 0 0 0 1 1\n"
              "u1 EDGES 1 0 0 2 2\nu2 EDGES 0 0 0 1 1\nu3 EDGES 1 0 0 2 2\nEND\n");
    EXPECT_EQ(fixedSolutions(), "0101");
}

TEST_F(KitPlaceRowsMeet, FixedCellsGetNoSolutionOfTheOtherKind)
{
    import({"f RIGHT + FIXED ( 0 0 ) N", "u EDGES + PLACED ( 380 0 ) N"}, 4);
    color({"--rows-meet"});
    EXPECT_EQ(place({"--rows-meet"}).status, 1) << "there is no room, and both have metal near the next rows";
    EXPECT_EQ(fixedSolutions(), "0");
}

TEST_F(KitPlaceRowsMeet, CellsThatAreNotColouredForItAreAnError)
{
    color();
    const KitOutcome outcome = place({"--rows-meet"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(
        outcome.error.find("/EDGES.color has no solutions for every second row: color with --rows-meet\n"),
        std::string::npos)
        << outcome.error;
}

TEST(KitPlaceRowsMeetGenerated, InsideOfRowsNothingChanges)
{
    const test::GeneratedDesign design;
    kit::Findings findings;
    const kit::placer::Design read =
        kit::placer::readDesign({.base = design.base(), .cellDir = design.lib()}, findings);
    std::filesystem::create_directory(design.path("paired"));
    for (kit::placer::Cell cell : read.cells) {
        const std::vector<kit::placer::Solution> first = cell.solutions;
        for (kit::placer::Solution solution : first) {
            kit::design::exchangeMasks(solution.masks);
            cell.solutions.push_back(solution);
        }
        test::writeOutput(design.path("paired/" + cell.name + ".color"),
                          [&](kit::OutputFile& file) { kit::placer::writeColorFile(file, cell); });
    }
    for (const Words& more : {Words{}, Words{"--true-orientation", "--rescue"}}) {
        Words plain{"place", design.base(), "--cell-path", design.lib(), "-o", design.path("a"), "--force"};
        plain.insert(plain.end(), more.begin(), more.end());
        Words meeting = plain;
        meeting[3] = design.path("paired");
        meeting[5] = design.path("b");
        meeting.emplace_back("--rows-meet");
        runKit(plain);
        runKit(meeting);
        EXPECT_EQ(contentOf(design.path("a.place")), contentOf(design.path("b.place")));
        EXPECT_NE(contentOf(design.path("a.colors")), contentOf(design.path("b.colors")));
        const auto conflictsOf = [&](const std::string& name, const std::string& cells) {
            return Json::parse(runKit({"verify", design.path(name + ".place"), "--colors",
                                       design.path(name + ".colors"), "--cell-path", cells, "--json"})
                                   .output)["counts"];
        };
        const Json before = conflictsOf("a", design.lib());
        const Json after = conflictsOf("b", design.path("paired"));
        for (const char* kind :
             {"conflict", "bad-solution", "masks-differ", "stitches-differ", "cell-overlap"}) {
            EXPECT_EQ(before[kind], after[kind]) << kind;
        }
    }
}

} // namespace
