// SPDX-License-Identifier: BSD-3-Clause
// Pictures of results.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include "kit/tools/sweep/chart.h"
#include "kit/tools/sweep/plot.h"
#include "kit/tools/sweep/sweepCase.h"
#include "support/pattern.h"
#include "support/property.h"

namespace {

namespace fs = std::filesystem;

using kit::sweep::Axis;
using kit::sweep::Chart;
using kit::sweep::Costs;
using kit::sweep::Labels;
using kit::sweep::Made;
using kit::sweep::Rect;
using kit::sweep::Status;
using test::contentOf;
using test::runKit;

/// The front by its definition.
std::vector<size_t> frontByPairs(const std::vector<Costs>& points)
{
    std::vector<size_t> front;
    for (size_t i = 0; i < points.size(); ++i) {
        const bool beaten = std::any_of(points.begin(), points.end(), [&](const Costs& other) {
            return other.x <= points[i].x && other.y <= points[i].y &&
                   (other.x < points[i].x || other.y < points[i].y);
        });
        if (!beaten) {
            front.push_back(i);
        }
    }
    return front;
}

/// Some pairs of numbers below two limits.
std::vector<std::pair<int, int>> pairsBelow(int x, int y)
{
    std::vector<std::pair<int, int>> pairs(test::drawCount());
    for (auto& pair : pairs) {
        pair = {test::draw(0, x), test::draw(0, y)};
    }
    return pairs;
}

PROPERTY(KitSweepPareto, FrontIsWhatNoOtherBeats)
{
    const auto numbers = pairsBelow(9, 9);
    std::vector<Costs> points;
    for (const auto& [x, y] : numbers) {
        points.push_back({static_cast<double>(x), static_cast<double>(y)});
    }
    std::vector<size_t> front = kit::sweep::frontOf(points);
    RC_ASSERT(std::is_sorted(front.begin(), front.end(),
                             [&](size_t a, size_t b) { return points[a].x < points[b].x; }));
    std::sort(front.begin(), front.end());
    RC_ASSERT(front == frontByPairs(points));
}

std::vector<std::string> labelsOf(const Axis& axis)
{
    std::vector<std::string> labels;
    for (const auto& tick : axis.ticks) {
        labels.push_back(tick.label);
    }
    return labels;
}

TEST(KitSweepAxis, LinearTicksAreRound)
{
    const Axis axis = kit::sweep::linearAxis("HPWL", "DBU", 4'260'000, 4'860'000);
    EXPECT_EQ(axis.title, "HPWL, million DBU");
    EXPECT_EQ(labelsOf(axis), (std::vector<std::string>{"4.3", "4.4", "4.5", "4.6", "4.7", "4.8"}));
}

TEST(KitSweepAxis, CountsHaveNoFractions)
{
    EXPECT_EQ(labelsOf(kit::sweep::linearAxis("stitches", "", 61, 61)),
              (std::vector<std::string>{"60", "61", "62"}));
    EXPECT_EQ(labelsOf(kit::sweep::linearAxis("stitches", "", 0, 2)),
              (std::vector<std::string>{"0", "1", "2"}));
}

TEST(KitSweepAxis, LogarithmicTicksAreRound)
{
    EXPECT_EQ(labelsOf(kit::sweep::logarithmicAxis("components", 426, 32000)),
              (std::vector<std::string>{"200", "500", "1000", "2000", "5000", "10000", "20000", "50000"}));
    EXPECT_EQ(labelsOf(kit::sweep::logarithmicAxis("components", 1, 900'000)),
              (std::vector<std::string>{"",     "1", "", "",      "10", "", "",       "100", "", "",
                                        "1000", "",  "", "10000", "",   "", "100000", "",    "", "1000000"}));
}

PROPERTY(KitSweepAxis, ValuesAreInsideAndTicksFewAndInOrder)
{
    const double low = test::draw(0, 1'000'000);
    const double high = low + test::draw(0, 1'000'000'000);
    for (const Axis& axis :
         {kit::sweep::linearAxis("a", "DBU", low, high), kit::sweep::linearAxis("a", "", low, high),
          kit::sweep::logarithmicAxis("a", low + 1, high + 1)}) {
        const double shift = axis.logarithmic ? 1 : 0;
        RC_ASSERT(axis.at(low + shift) >= 0 && axis.at(high + shift) <= 1);
        const auto labels = labelsOf(axis);
        const auto named =
            std::count_if(labels.begin(), labels.end(), [](const auto& text) { return !text.empty(); });
        RC_ASSERT(named >= 1 && named <= 11);
        for (size_t i = 0; i < axis.ticks.size(); ++i) {
            RC_ASSERT(axis.at(axis.ticks[i].value) >= -1e-9 && axis.at(axis.ticks[i].value) <= 1 + 1e-9);
            if (i > 0) { // RC_ASSERT evaluates all of its expression
                RC_ASSERT(axis.ticks[i].value > axis.ticks[i - 1].value);
            }
        }
    }
}

PROPERTY(KitSweepLabels, NoneOverlapsAnythingOrLeavesTheFrame)
{
    const Rect frame{0, 0, 300, 200};
    Labels labels(frame);
    std::vector<Rect> taken;
    const auto points = pairsBelow(300, 200);
    for (const auto& [x, y] : points) {
        taken.push_back({x - 5.0, y - 5.0, 10, 10});
        labels.block(taken.back());
    }
    for (const auto& [x, y] : points) {
        if (const auto place = labels.place(x, y, 40, 12, 6)) {
            RC_ASSERT(frame.contains(*place));
            for (const Rect& other : taken) {
                RC_ASSERT(!place->overlaps(other));
            }
            taken.push_back(*place);
        }
    }
}

TEST(KitSweepLabels, LonelyPointHasItsLabelRightAbove)
{
    Labels labels({0, 0, 300, 200});
    const auto place = labels.place(100, 100, 40, 12, 6);
    ASSERT_TRUE(place.has_value());
    EXPECT_EQ(place->x, 106);
    EXPECT_EQ(place->y, 82);
}

Made made(int algo, double weight, int stitches, int hpwl, Status status = Status::CLEAN)
{
    Made run;
    run.task.design = "d";
    run.task.components = 100 * (algo + 1);
    run.task.options.algo = algo;
    run.task.options.weight = weight;
    run.result.status = status;
    run.result.ending.cpuSeconds = weight;
    run.result.metrics = {{"hpwl", hpwl}, {"stitches", stitches}};
    return run;
}

TEST(KitSweepPlot, FrontIsOfCleanRunsAndLabelledWithWhatDiffers)
{
    const auto chart =
        kit::sweep::tradeOffChart("d", {made(0, 1, 5, 100), made(0, 2, 3, 120), made(1, 3, 5, 130),
                                        made(1, 4, 1, 90, Status::NOT_CLEAN)});
    ASSERT_TRUE(chart.has_value());
    ASSERT_EQ(chart->marks.size(), 4U);
    EXPECT_EQ(chart->marks[0].label, "w 1");
    EXPECT_EQ(chart->marks[1].label, "w 2");
    EXPECT_EQ(chart->marks[2].label, "");
    EXPECT_EQ(chart->marks[3].label, "");
    EXPECT_TRUE(chart->marks[3].hollow);
    ASSERT_EQ(chart->lines.size(), 1U);
    EXPECT_EQ(chart->lines[0].points.size(), 2U);
    EXPECT_EQ(chart->hollowName, "not clean");
}

TEST(KitSweepPlot, OtherDesignsAreNotInThePicture)
{
    EXPECT_FALSE(kit::sweep::tradeOffChart("e", {made(0, 1, 5, 100)}).has_value());
    EXPECT_FALSE(kit::sweep::timeChart({}).has_value());
}

TEST(KitSweepPlot, TimeLinesGoThroughMedians)
{
    const auto chart =
        kit::sweep::timeChart({made(0, 1, 5, 1), made(0, 9, 5, 1), made(0, 2, 5, 1), made(1, 5, 5, 1)});
    ASSERT_TRUE(chart.has_value());
    ASSERT_EQ(chart->lines.size(), 2U);
    EXPECT_EQ(chart->lines[0].points[0].x, 100);
    EXPECT_EQ(chart->lines[0].points[0].y, 2);
    EXPECT_EQ(chart->lines[1].points[0].y, 5);
    EXPECT_TRUE(chart->x.logarithmic && chart->y.logarithmic);
}

TEST(KitSweepPlot, MethodsDifferInColourAndShape)
{
    const test::TempDir dir;
    std::vector<Made> runs;
    for (int algo = 0; algo <= 4; ++algo) {
        runs.push_back(made(algo, algo + 1, algo, 100 - algo));
    }
    kit::OutputFile file(dir.path("x.svg"));
    kit::sweep::writeChart(file, *kit::sweep::tradeOffChart("d", runs));
    file.commit();
    const std::string text = contentOf(dir.path("x.svg"));
    std::set<std::string> colours;
    std::set<std::string> shapes;
    for (const test::Match& mark : test::matchesOf(
             text, "class=\"mark\" fill=\"([^\"]+)\" transform=\"[^\"]+\" d=\"([^\"]+)\"><title>")) {
        colours.insert(mark[1]);
        shapes.insert(mark[2]);
    }
    EXPECT_EQ(colours.size(), 5U);
    EXPECT_EQ(shapes.size(), 5U);
}

TEST(KitSweepPlot, MarksAtOnePlaceAreBesideEachOther)
{
    const test::TempDir dir;
    kit::OutputFile file(dir.path("x.svg"));
    kit::sweep::writeChart(
        file, *kit::sweep::tradeOffChart("d", {made(0, 1, 5, 100), made(1, 1, 5, 100), made(2, 1, 5, 100)}));
    file.commit();
    const std::string text = contentOf(dir.path("x.svg"));
    std::vector<double> xs;
    for (const test::Match& place :
         test::matchesOf(text, "translate\\(([0-9.]+) ([0-9.]+)\\)\" d=\"[^\"]+\"><title>")) {
        xs.push_back(std::stod(place[1]));
    }
    std::sort(xs.begin(), xs.end());
    ASSERT_EQ(xs.size(), 3U);
    EXPECT_GE(xs[1] - xs[0], 10.9);
    EXPECT_GE(xs[2] - xs[1], 10.9);
}

class KitSweepPlotCommand : public test::SweepCase {};

TEST_F(KitSweepPlotCommand, WritesAPicturePerDesignAndOneOfTimes)
{
    plan(2);
    EXPECT_EQ(runKit({"sweep", "plot", dir(), "-o", m_dir.path("p")}).status, 1)
        << "there is nothing to draw";
    EXPECT_FALSE(fs::exists(m_dir.path("p")));
    ASSERT_EQ(run("placed"), 0);
    EXPECT_EQ(runKit({"sweep", "plot", dir(), "-o", m_dir.path("p")}).status, 0);
    EXPECT_EQ(filesIn(m_dir.path("p")).size(), 2U);
    const test::KitOutcome again = runKit({"sweep", "plot", dir(), "-o", m_dir.path("p")});
    EXPECT_EQ(again.status, 2);
    EXPECT_NE(again.error.find("exists"), std::string::npos);
    EXPECT_EQ(runKit({"sweep", "plot", dir(), "-o", m_dir.path("p"), "--force"}).status, 0);
    EXPECT_NE(contentOf(m_dir.path("p/tradeoff-d.svg")).find("<title>--weight=1 (clean)</title>"),
              std::string::npos);
}

} // namespace
