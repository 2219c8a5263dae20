// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/sweep/plot.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <map>
#include <numeric>
#include <set>
#include <tuple>

#include "kit/base/fault.h"
#include "kit/base/files/folder.h"
#include "kit/base/files/outputFile.h"
#include "kit/base/files/outputPaths.h"
#include "kit/base/text/text.h"

namespace kit::sweep {

namespace fs = std::filesystem;

namespace {

constexpr const char* METHODS[] = {"sites and colours", "colours, then sites", "greedy", "local shifts",
                                   "shifts, pruned"}; // [algo]

constexpr const char* BESIDE = "; marks at one place are side by side";

size_t algoOf(const Task& task)
{
    return static_cast<size_t>(std::clamp(task.options.algo.value_or(0), 0.0, 4.0));
}

/// A series per method in use, and its index by method.
class Methods {
public:
    explicit Methods(const std::vector<Made>& runs)
    {
        for (const Made& run : runs) {
            m_index.emplace(algoOf(run.task), 0);
        }
        for (auto& [algo, index] : m_index) {
            index = series.size();
            series.push_back({"algo " + std::to_string(algo) + ": " + METHODS[algo], algo});
        }
    }

    size_t indexOf(const Task& task) const { return m_index.at(algoOf(task)); }

    std::vector<Series> series;

private:
    std::map<size_t, size_t> m_index;
};

/// Lowest and highest of some values.
struct Span {
    double low = 0;
    double high = 0;
};

Span spanOf(const std::vector<Mark>& marks, double Costs::*cost)
{
    const auto [low, high] = std::minmax_element(
        marks.begin(), marks.end(), [cost](const Mark& a, const Mark& b) { return a.at.*cost < b.at.*cost; });
    return {low->at.*cost, high->at.*cost};
}

/// Names the options of runs, those of all that differ for labels, the given ones for titles.
class Naming {
public:
    explicit Naming(const std::vector<Made>& runs)
    {
        std::map<std::string, std::set<std::string>> values;
        for (const Made& run : runs) {
            const Json options = toJson(run.task.options);
            for (const auto& [name, value] : options.members()) {
                values[name].insert(value.dump());
            }
        }
        for (const auto& [name, seen] : values) {
            if (seen.size() > 1 && name != "algo") {
                m_differing.insert(name);
            }
        }
    }

    std::string label(const Task& task) const
    {
        const Json options = toJson(task.options);
        std::string text;
        const auto add = [&](const std::string& name, const char* prefix) {
            if (m_differing.count(name) > 0 && !options[name].isNull()) {
                text.append(text.empty() ? "" : ", ").append(prefix).append(options[name].dump());
            }
        };
        for (const NumberOption& option : NUMBER_OPTIONS) {
            add(option.name, option.label);
        }
        for (const FlagOption& option : FLAG_OPTIONS) {
            add(option.name, option.label);
        }
        return text;
    }

    static std::string title(const Made& run)
    {
        std::string text;
        for (const std::string& word : argumentsOf(run.task.options)) {
            text += (text.empty() ? "" : " ") + word;
        }
        return text + " (" + std::string(nameOf(run.result.status)) + ")";
    }

private:
    std::set<std::string> m_differing;
};

/// The number that a metric is, if it is one.
std::optional<double> metric(const Made& run, const char* name)
{
    const Json& value = run.result.metrics[name];
    return value.isNumber() ? std::optional(value.asNumber()) : std::nullopt;
}

/// Joins the front of the clean runs, and labels the first mark at each of its points.
void addFront(Chart& chart, const std::vector<Made>& drawn, const Naming& naming)
{
    std::vector<Costs> clean;
    std::vector<size_t> indices;
    for (size_t i = 0; i < chart.marks.size(); ++i) {
        if (!chart.marks[i].hollow) {
            clean.push_back(chart.marks[i].at);
            indices.push_back(i);
        }
    }
    Line line;
    line.stairs = true;
    for (const size_t k : frontOf(clean)) {
        const size_t i = indices[k];
        const Costs& at = chart.marks[i].at;
        if (line.points.empty() || line.points.back().x != at.x || line.points.back().y != at.y) {
            line.points.push_back(at);
            chart.marks[i].label = naming.label(drawn[i].task);
        }
    }
    if (!line.points.empty()) {
        chart.lines.push_back(std::move(line));
        chart.stairsName = "best (Pareto front)";
    }
}

/// A line through the medians of a method, one per size.
void addMedians(Chart& chart)
{
    std::map<size_t, std::map<double, std::vector<double>>> times; // [series][size]
    for (const Mark& mark : chart.marks) {
        times[mark.series][mark.at.x].push_back(mark.at.y);
    }
    for (auto& [series, sizes] : times) {
        Line line;
        line.series = series;
        for (auto& [size, values] : sizes) {
            std::sort(values.begin(), values.end());
            line.points.push_back({size, values[values.size() / 2]});
        }
        chart.lines.push_back(std::move(line));
    }
}

std::vector<Made> madeRuns(const std::string& dir)
{
    const Folder folder(dir);
    std::vector<Made> runs;
    for (const Task& task : readTasks(dir)) {
        std::optional<Result> result = readResult(folder, task.id);
        if (result.has_value() && isDone(result->status)) {
            runs.push_back({task, std::move(*result)});
        }
    }
    return runs;
}

} // namespace

std::vector<size_t> frontOf(const std::vector<Costs>& points)
{
    std::vector<size_t> order(points.size());
    std::iota(order.begin(), order.end(), size_t{0});
    std::sort(order.begin(), order.end(), [&](size_t a, size_t b) {
        return std::tie(points[a].x, points[a].y, a) < std::tie(points[b].x, points[b].y, b);
    });
    std::vector<size_t> front;
    for (const size_t i : order) {
        const bool first = front.empty();
        const Costs& best = points[first ? i : front.back()];
        if (first || points[i].y < best.y || (points[i].x == best.x && points[i].y == best.y)) {
            front.push_back(i);
        }
    }
    return front;
}

std::optional<Chart> tradeOffChart(const std::string& design, const std::vector<Made>& runs)
{
    std::vector<Made> drawn;
    for (const Made& run : runs) {
        if (run.task.design == design && metric(run, "hpwl") && metric(run, "stitches")) {
            drawn.push_back(run);
        }
    }
    if (drawn.empty()) {
        return std::nullopt;
    }
    const Methods methods(drawn);
    const Naming naming(drawn);
    Chart chart;
    chart.series = methods.series;
    for (const Made& run : drawn) {
        const Costs at{*metric(run, "stitches"), *metric(run, "hpwl")};
        const bool clean = run.result.status == Status::CLEAN;
        chart.marks.push_back({at, methods.indexOf(run.task), !clean, Naming::title(run), ""});
        chart.hollowName = clean ? chart.hollowName : "not clean";
    }
    addFront(chart, drawn, naming);
    const Span x = spanOf(chart.marks, &Costs::x);
    const Span y = spanOf(chart.marks, &Costs::y);
    chart.x = linearAxis("stitches", "", x.low, x.high);
    chart.y = linearAxis("HPWL", "DBU", y.low, y.high);
    chart.title = design + ": wirelength against stitches";
    chart.subtitle = counted(drawn.front().task.components, "component") + ", " +
                     counted(static_cast<int64_t>(drawn.size()), "run") + BESIDE;
    return chart;
}

std::optional<Chart> timeChart(const std::vector<Made>& runs)
{
    if (runs.empty()) {
        return std::nullopt;
    }
    constexpr double SHORTEST = 1e-3; // seconds; a logarithmic scale has no 0
    const Methods methods(runs);
    Chart chart;
    chart.series = methods.series;
    for (const Made& run : runs) {
        const Costs at{std::max(1.0, static_cast<double>(run.task.components)),
                       std::max(SHORTEST, run.result.ending.cpuSeconds)};
        chart.marks.push_back(
            {at, methods.indexOf(run.task), false, run.task.design + " " + Naming::title(run), ""});
    }
    addMedians(chart);
    const Span x = spanOf(chart.marks, &Costs::x);
    const Span y = spanOf(chart.marks, &Costs::y);
    chart.x = logarithmicAxis("components", x.low, x.high);
    chart.y = logarithmicAxis("processor time, seconds", y.low, y.high);
    chart.title = "Time against size";
    chart.subtitle =
        counted(static_cast<int64_t>(runs.size()), "run") + "; lines go through medians" + BESIDE;
    return chart;
}

int plot(const PlotOptions& options)
{
    const std::vector<Made> runs = madeRuns(options.dir);
    std::map<std::string, std::optional<Chart>> charts; // by file name
    for (const Made& run : runs) {
        const std::string name = "tradeoff-" + run.task.design + ".svg";
        if (charts.count(name) == 0) {
            charts[name] = tradeOffChart(run.task.design, runs);
        }
    }
    charts["time.svg"] = timeChart(runs);
    if (runs.empty()) {
        std::cerr << "vireloce-kit: no run has a placement: there is nothing to draw\n";
        return 1;
    }
    std::erase_if(charts, [](const auto& chart) { return !chart.second.has_value(); });
    std::vector<std::string> paths;
    paths.reserve(charts.size());
    for (const auto& [name, chart] : charts) {
        paths.push_back(options.out + "/" + name);
    }
    checkOutputs(paths, filesOf(options.dir), options.force);
    makeFolder(options.out);
    OutputSet set;
    for (const auto& [name, chart] : charts) {
        set.add(options.out + "/" + name, [&drawn = *chart](OutputFile& file) { writeChart(file, drawn); });
    }
    set.commit();
    return 0;
}

} // namespace kit::sweep
