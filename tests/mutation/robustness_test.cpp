// SPDX-License-Identifier: BSD-3-Clause
// Inputs that no random change is likely to find.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <string>
#include <vector>

#include "app/driver.h"
#include "app/parameters.h"
#include "lut/library.h"
#include "mutation/childRun.h"
#include "mutation/inputs.h"
#include "mutation/verdict.h"
#include "support/guards.h"
#include "support/restorer.h"

namespace {

using mutation::Outcome;

/// One row of 100 sites of 1 DBU with two cells, A and B, that need a distance in all their solutions.
class Robustness : public testing::Test {
protected:
    Robustness()
    {
        m_dir.write("d.cells", "2 A B");
        m_dir.write("lib/A.color", SMALL_CELL);
        m_dir.write("lib/B.color", SMALL_CELL);
        m_dir.write("d.pins", "0");
        m_dir.write("d.netlist", "0");
        writePlacement("100");
    }

    void writePlacement(const std::string& sites)
    {
        m_dir.write("d.place", "ROW r s 0 0 N DO " + sites +
                                   " BY 1 STEP 1 0 ;\n"
                                   "COMPONENTS 2 ;\n"
                                   "- u1 A + PLACED ( 0 0 ) N\n ;\n"
                                   "- u2 B + PLACED ( 10 0 ) N\n ;\n"
                                   "END COMPONENTS\n");
    }

    /// Runs the placer in a child.
    ///
    /// @param memory  bytes that the child may take, -1 for as many as there are
    mutation::Verdict run(const std::vector<std::string>& options, int64_t memory = -1)
    {
        std::vector<std::string> words{"vireloce", "-inlib", "d", "-cellPath", "lib", "-siteW", "1"};
        words.insert(words.end(), options.begin(), options.end());
        const mutation::ChildPlace place{m_dir.path("."), m_dir.path("report"), m_dir.path("errors")};
        const mutation::ChildEnd end = mutation::runChild(place, /*seconds=*/20, [&] {
            if (memory >= 0) {
                const rlimit most{static_cast<rlim_t>(memory), static_cast<rlim_t>(memory)};
                setrlimit(RLIMIT_AS, &most);
            }
            std::vector<char*> argv;
            for (std::string& word : words) {
                argv.push_back(word.data());
            }
            vireloce::runPlacer(static_cast<int>(argv.size()), argv.data());
        });
        return mutation::judge(end, read("report"), read("errors"));
    }

    std::string read(const std::string& name) const { return mutation::readFile(m_dir.path(name)); }

    /// The report without its CPU times and options.
    std::string result() const
    {
        const std::string report = read("report");
        const size_t begin = report.find("STAT | final HPWL");
        return report.substr(begin, report.find("\n\n", begin) - begin);
    }

    static constexpr const char* SMALL_CELL = "5 1900  0  1  1  0 500 5 900  1  0 1";
    test::TempDir m_dir;
};

TEST_F(Robustness, ACellOfNearly32BitsOfSitesFindsNoRoom)
{
    // Its width and the spacing in front of it add up to more than 32 bits.
    m_dir.write("lib/B.color", "2147483520 1900  0  1  1  0 500 5 900  1  0 1");
    for (const char* algo : {"0", "1", "3", "4"}) {
        EXPECT_EQ(run({"-mindp", "30000", "-algo", algo}).what, "no room") << algo;
    }
}

TEST_F(Robustness, AnyLargeShiftRangeReachesTheWholeSegment)
{
    for (const char* algo : {"3", "4"}) {
        ASSERT_EQ(run({"-M", "100000", "-algo", algo}).outcome, Outcome::FINAL_REPORT);
        const std::string whole = result();
        for (const char* range : {"100000000", "536870912", "1073741823", "1073741824", "2147483647"}) {
            EXPECT_EQ(run({"-M", range, "-algo", algo}).outcome, Outcome::FINAL_REPORT) << range;
            EXPECT_EQ(result(), whole) << range;
        }
    }
}

TEST_F(Robustness, AnyNegativeShiftRangeLeavesNoShifts)
{
    ASSERT_EQ(run({"-M", "-1", "-algo", "3"}).outcome, Outcome::FINAL_REPORT);
    const std::string none = result();
    for (const char* range : {"-2", "-1073741824", "-1610612736", "-2147483648"}) {
        EXPECT_EQ(run({"-M", range, "-algo", "3"}).outcome, Outcome::FINAL_REPORT) << range;
        EXPECT_EQ(result(), none) << range;
    }
}

TEST_F(Robustness, RunningOutOfMemoryIsAnError)
{
    if (mutation::hasAddressSanitizer()) {
        GTEST_SKIP() << "the address sanitizer ends a program that runs out of memory";
    }
    writePlacement("20000000");
    EXPECT_EQ(run({"-algo", "0", "-W", "-1"}, int64_t{200} << 20U).what, "out of memory"); // needs all sites
}

TEST(LUTable, ALibraryTooLargeForATableEndsTheRunBeforeTheTableIsBuilt)
{
    const test::Restorer guard(LUTable::s_maxTableSize);
    test::Library library;
    library.addFile("A", "190 1900  0  0  3  0 1 2");
    // Two cells of three solutions, each unflipped and flipped: a side of 2 * (2 + 6).
    const std::string list = library.addList("2 A A");
    test::reportOf([&] { library.lut.readCells(list); });
    LUTable::s_maxTableSize = 16 * 16;
    EXPECT_EQ(test::reportOf([&] { library.lut.genLUTable(); }), "STAT | LUTable item #           = 144\n");
    LUTable::s_maxTableSize = 16 * 16 - 1;
    EXPECT_EQ(test::reportOfEndedRun([&] { library.lut.genLUTable(); }),
              "ERROR| the library is too large for a spacing table: 2 cells with 6 colour solutions\n");
}

} // namespace
