// SPDX-License-Identifier: BSD-3-Clause
// The placer on generated designs: it must come to its final report.
#include "app/commandLine.h"
#include "app/driver.h"
#include "kit/kitRun.h"

namespace {

using test::GeneratedDesign;
using test::Words;

struct PlacerCase {
    const char* name;
    Words options;
};

void PrintTo(const PlacerCase& row, std::ostream* out)
{
    *out << row.name;
}

class PlacerRun : public testing::TestWithParam<PlacerCase> {
protected:
    /// The report of an algorithm on the design of this case.
    std::string run(const char* algo)
    {
        const test::ParameterGuard parameters;
        const test::OrientMapGuard orientations;
        test::CommandLine line({"-inlib", m_files.base(), "-cellPath", m_files.lib(), "-algo", algo});
        return test::reportOf([&line] { vireloce::runPlacer(line.argc(), line.argv()); });
    }

    GeneratedDesign m_files{GetParam().options};
};

TEST_P(PlacerRun, EndsWithTheFinalReport)
{
    for (const char* algo : {"0", "1", "3", "4"}) {
        const std::string report = run(algo);
        EXPECT_NE(report.find("STAT | final HPWL "), std::string::npos) << algo;
        EXPECT_NE(report.find("STAT | final conflict #         = 0\n"), std::string::npos) << algo;
        EXPECT_NE(report.find("STAT | Virelocer CPU time "), std::string::npos) << algo;
        EXPECT_EQ(report.find("WARNING"), std::string::npos) << algo;
    }
}

const PlacerCase PLACER_CASES[] = {
    {"Defaults", {}},
    {"Dense", {"--utilization", "95", "--sites-per-row", "100", "--solutions", "6"}},
    {"DensePieces", {"--utilization", "95", "--macros", "9", "--sites-per-row", "150", "--seed", "3"}},
    {"OneSolution", {"--solutions", "1", "--utilization", "95", "--cell-types", "30"}},
    {"Sparse", {"--utilization", "10", "--sites-per-row", "100", "--solutions", "4"}},
    {"WideNets", {"--wide-nets", "50", "--window-rows", "10", "--sites-per-row", "100", "--solutions", "4"}},
    {"FineStep", {"--site-step", "190", "--mirrored", "100", "--sites-per-row", "100", "--solutions", "4"}},
};

INSTANTIATE_TEST_SUITE_P(KitPlacer, PlacerRun, testing::ValuesIn(PLACER_CASES),
                         [](const auto& row) { return std::string(row.param.name); });

} // namespace
