// SPDX-License-Identifier: BSD-3-Clause
// A run by values, inside this process.
#include "app/place.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <new>
#include <sstream>

#include "app/commandLine.h"
#include "app/driver.h"
#include "db/designFiles.h"
#include "support/pattern.h"

namespace {

using test::DesignFiles;
using vireloce::place;
using vireloce::PlaceHooks;
using vireloce::PlaceOptions;
using vireloce::PlaceResult;

PlaceOptions optionsOf(const DesignFiles& files, int32_t algo = 0)
{
    PlaceOptions options;
    options.placePath = files.base();
    options.cellPath = files.lib();
    options.algo = algo;
    return options;
}

PlaceOptions gcd()
{
    PlaceOptions options;
    options.placePath = VIRELOCE_EXAMPLES "/gcd/gcd";
    options.cellPath = VIRELOCE_EXAMPLES "/nangate45_color";
    return options;
}

/// A run and its report, with stars for the times.
struct Told {
    explicit Told(const PlaceOptions& options)
    {
        std::ostringstream text;
        PlaceHooks hooks;
        hooks.report = &text;
        result = place(options, hooks);
        report = test::withoutTimes(text.str());
    }

    /// The number behind a label, as printed.
    std::string operator[](const std::string& label) const
    {
        const std::vector<test::Match> lines = test::matchesOf(report, "STAT \\| " + label + " *= (.*)\n");
        return lines.empty() ? "none" : lines[0][1];
    }

    PlaceResult result;
    std::string report;
};

TEST(Place, ResultHasEveryNumberOfTheReport)
{
    PlaceOptions options = gcd();
    options.algo = 1;
    const Told told(options);
    const vireloce::SetUpFigures& setUp = told.result.setUp;
    const std::pair<const char*, int64_t> figures[] = {
        {"cell type #", setUp.cellTypes},
        {"LUTable item #", setUp.tableEntries},
        {"net #", setUp.nets},
        {"row #", setUp.rows},
        {"segment #", setUp.segments},
        {"component #", setUp.components},
        {"macro #", setUp.macros},
        {"max solution # for cells", setUp.maxSolutions},
        {"max site # on rows", setUp.maxSites},
        {"max componnet # on rows", setUp.maxComponents},
        {"init HPWL", setUp.hpwl},
        {"stitch # lowerB", setUp.stitchLowerBound},
        {"final HPWL", told.result.end.hpwl},
        {"final stitch   #", told.result.end.stitches},
        {"final conflict #", told.result.end.conflicts},
    };
    for (const auto& [label, value] : figures) {
        EXPECT_EQ(told[label], std::to_string(value)) << label;
    }
    char increase[64];
    std::snprintf(increase, sizeof increase, "%ld(%.3f%%)", static_cast<long>(told.result.end.hpwlIncrease),
                  told.result.end.increasePercent);
    EXPECT_EQ(told["HPWL increases"], increase);
    const auto lines = std::count(told.report.begin(), told.report.end(), '=');
    EXPECT_EQ(lines, static_cast<std::ptrdiff_t>(std::size(figures)) + 3)
        << "with the increase and two times";
}

TEST(Place, TimesAreThoseOfTheReport)
{
    std::ostringstream text;
    PlaceHooks hooks;
    hooks.report = &text;
    const PlaceResult result = place(gcd(), hooks);
    char lines[2][64];
    std::snprintf(lines[0], sizeof lines[0], "LUT CPU time             = %.3f s\n", result.setUpTime.cpu);
    std::snprintf(lines[1], sizeof lines[1], "Virelocer CPU time       = %.3f s\n", result.placeTime.cpu);
    for (const char* line : lines) {
        EXPECT_NE(text.str().find(line), std::string::npos) << line;
    }
    EXPECT_GT(result.setUpTime.wall, 0.0);
    EXPECT_GT(result.placeTime.wall, 0.0);
}

TEST(Place, ResultHasEveryComponentAsTheDesignHasItInTheEnd)
{
    std::vector<vireloce::PlacedComponent> want;
    PlaceHooks hooks;
    hooks.afterEvaluation = [&](Design& design, const PlaceResult& /*result*/) {
        for (Component* comp : design.components) {
            want.push_back({comp->name, comp->x, comp->y, comp->siteX, comp->solution});
            comp->x = -1; // too late to count
        }
    };
    const PlaceResult result = place(gcd(), hooks);
    EXPECT_EQ(result.components.size(), result.setUp.components);
    EXPECT_EQ(result.components, want);
}

TEST(Place, ReportIsThatOfTheProgramBehindTheOptions)
{
    const DesignFiles files;
    const Told told(optionsOf(files, 3));
    test::CommandLine line({"-inlib", files.base(), "-cellPath", files.lib(), "-algo", "3"});
    const std::string whole =
        test::withoutTimes(test::reportOf([&] { vireloce::runPlacer(line.argc(), line.argv()); }));
    const size_t begin = whole.find('\n', whole.find("STAT | Parameters: ")) + 1;
    EXPECT_EQ(told.report, whole.substr(begin));
}

TEST(Place, OfAReportOnlyTheResultEndsWithThePasses)
{
    std::ostringstream text;
    PlaceHooks hooks;
    hooks.report = &text;
    hooks.reportOnly = true;
    const PlaceResult result = place(gcd(), hooks);
    EXPECT_EQ(test::withoutTimes(text.str()), Told(gcd()).report);
    EXPECT_EQ(result.passes, Told(gcd()).result.passes);
    EXPECT_EQ(result.end, vireloce::FinalFigures());
    EXPECT_TRUE(result.components.empty());
}

TEST(Place, WithoutAStreamNothingIsPrinted)
{
    const DesignFiles files;
    testing::internal::CaptureStdout();
    place(optionsOf(files));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(Place, OptionsReachTheRun)
{
    const DesignFiles files;
    PlaceOptions options = optionsOf(files, 2);
    options.parameters = {.siteWidth = 95, .minDist = 77, .weight = 2.5F, .moveRange = 3};
    PlaceHooks hooks;
    bool called = false;
    hooks.afterSetUp = [&](Design& design, const PlaceResult& /*result*/) {
        called = true;
        EXPECT_EQ(design.algo, 2);
        EXPECT_EQ(design.designName, "d");
        EXPECT_EQ(design.lut.cells.at(0)->siteWidth, 4) << "380 DBU in sites of 95";
        EXPECT_EQ(SITE_WIDTH, 190) << "the rows' own";
        EXPECT_EQ(MINDPLDIST, 77);
        EXPECT_EQ(WEIGHT_WRLENG, 2.5F);
        EXPECT_EQ(LDP_M, 3);
    };
    place(options, hooks);
    EXPECT_TRUE(called);
}

TEST(Place, HooksSeeTheNamesOfTheDesign)
{
    const DesignFiles files;
    int calls = 0;
    const auto look = [&](Design& design, const PlaceResult& /*result*/) {
        ++calls;
        EXPECT_EQ(design.compIndex, (std::map<std::string, int32_t>{{"u0", 0}, {"u1", 1}, {"u2", 2}}));
        EXPECT_EQ(design.pinIndex, (std::map<std::string, int32_t>{{"p0", 0}}));
        EXPECT_EQ(design.components.at(1)->name, "u1");
    };
    PlaceHooks hooks;
    hooks.afterSetUp = look;
    hooks.afterEvaluation = look;
    place(optionsOf(files), hooks);
    EXPECT_EQ(calls, 2);
}

TEST(Place, HooksSeeTheResultAsFarAsItIs)
{
    const DesignFiles files;
    PlaceHooks hooks;
    hooks.afterSetUp = [](Design& /*design*/, const PlaceResult& result) {
        EXPECT_EQ(result.setUp.hpwl, 5130);
        EXPECT_TRUE(result.passes.empty());
    };
    hooks.afterEvaluation = [](Design& /*design*/, const PlaceResult& result) {
        EXPECT_EQ(result.passes.size(), 1U);
        EXPECT_EQ(result.end.hpwl, 5130);
        EXPECT_EQ(result.components.size(), 3U);
    };
    place(optionsOf(files, -1), hooks);
}

TEST(Place, ResultHasEveryPass)
{
    const DesignFiles files;
    files.write(
        "d.place", DesignFiles::rows() + "COMPONENTS 6 ;\n" + [] {
            std::string text;
            for (int i = 0; i < 6; ++i) { // six cells of 2 sites for a row of 10, and an empty row
                text +=
                    "- u" + std::to_string(i) + " A + PLACED ( " + std::to_string(i * 300) + " 0 ) N ;\n ;\n";
            }
            return text;
        }());
    files.write("d.netlist", "0");
    std::vector<vireloce::Progress> progress;
    PlaceHooks hooks;
    hooks.onProgress = [&](const vireloce::Progress& now, const PlaceResult& result) {
        progress.push_back(now);
        EXPECT_EQ(result.passes.size(), static_cast<size_t>(now.pass));
    };
    const PlaceResult result = place(optionsOf(files), hooks);
    EXPECT_EQ(result.passes, (std::vector<vireloce::Pass>{{1, 1}, {0, 0}}));
    ASSERT_EQ(progress.size(), 4U) << "two segments in two passes";
    EXPECT_EQ(progress.back().pass, 2);
}

TEST(Place, ErrorNamesTheFileTheLineAndTheFault)
{
    const DesignFiles files;
    files.write("d.place", DesignFiles::rows() + "COMPONENTS 1 ;\n- u0 A + PLACED ( 0 0\n");
    std::ostringstream report;
    PlaceHooks hooks;
    hooks.report = &report;
    try {
        place(optionsOf(files), hooks);
        FAIL() << "the run went on";
    } catch (const vireloce::RunError& error) {
        EXPECT_EQ(error.file, files.path("d.place"));
        EXPECT_EQ(error.line, 4);
        EXPECT_EQ(error.text, "component record ends after 8 tokens");
        EXPECT_EQ(report.str(), std::string("STAT | cell type #              = 2\n"
                                            "STAT | LUTable item #           = 36\n") +
                                    error.what() + "\n");
    }
}

TEST(Place, ErrorPutsParametersAndReportBack)
{
    const test::ParameterGuard guard;
    SITE_WIDTH = 7;
    PlaceOptions options;
    options.placePath = "no/such";
    options.parameters.moveRange = 99;
    const std::ostream* const before = &vireloce::report();
    EXPECT_THROW(place(options), vireloce::RunError);
    EXPECT_EQ(SITE_WIDTH, 7);
    EXPECT_EQ(LDP_M, 8);
    EXPECT_EQ(&vireloce::report(), before);
}

TEST(Place, MemoryThatRunsOutIsAnErrorLikeOthers)
{
    const DesignFiles files;
    PlaceHooks hooks;
    hooks.afterSetUp = [](Design& /*design*/, const PlaceResult& /*result*/) { throw std::bad_alloc(); };
    try {
        place(optionsOf(files), hooks);
        FAIL() << "the run went on";
    } catch (const vireloce::RunError& error) {
        EXPECT_STREQ(error.what(), "ERROR| out of memory");
    }
}

TEST(Place, ManyRunsInOneProcessGiveOneResultAndTakeNoMoreMemory)
{
    const Told first(gcd());
    const size_t before = mallinfo2().uordblks; // 0 in builds that watch over the memory themselves
    for (int run = 2; run <= 30; ++run) {
        const Told again(gcd());
        EXPECT_EQ(again.report, first.report) << run;
        EXPECT_EQ(again.result.components, first.result.components) << run;
    }
    EXPECT_LE(mallinfo2().uordblks, before + 65536) << "the rectangles of a run alone take more";
}

} // namespace
