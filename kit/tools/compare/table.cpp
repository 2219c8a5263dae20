// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/compare/table.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>
#include <cstdio>

#include "kit/base/text/escape.h"

namespace kit::compare {

namespace {

/// Where a number stands in a result: a JSON pointer, or a list whose length it is.
struct Source {
    const char* title;
    const char* pointer;
};

constexpr Source SOURCES[] = {
    {"HPWL, DBU", "/placement/hpwl"},
    {"HPWL after rescue, DBU", "/rescue/placement/hpwl"},
    {"HPWL by pins, um", "/hpwl_pins/after/um"},
    {"stitches", "/placement/stitches"},
    {"stitches after refine", "/refine/stitches/after"},
    {"conflicts, as the placer counts", "/placement/conflicts"},
    {"conflicts, by geometry", "/judge/conflicts"},
    {"dropped cells", "/placement/dropped_cells"},
    {"cells beyond their segment", "/placement/cells_beyond_segment"},
    {"overlapping cells", "/placement/overlapping_cells"},
    {"cells not rescued", "/rescue/placement/dropped_cells"},
    {"mean displacement, sites", "/placement/displacement/mean"},
    {"largest displacement, sites", "/placement/displacement/largest"},
    {"passes", "/passes"},
    {"seconds", "/seconds"},
    {"seconds of refine", "/refine/seconds"},
    {"peak memory, KiB", "/peak_memory_kib"},
};

std::optional<double> valueAt(const Json& result, const char* pointer)
{
    const Json& value = result.atPointer(pointer);
    if (value.isArray()) {
        return static_cast<double>(value.size());
    }
    return value.isNumber() ? std::optional(value.asNumber()) : std::nullopt;
}

/// Whole numbers without a fraction, others with three digits of it; a dash for none.
std::string textOf(std::optional<double> value)
{
    if (!value.has_value()) {
        return "-";
    }
    std::array<char, 64> text;
    std::snprintf(text.data(), text.size(), *value == std::floor(*value) ? "%.0f" : "%.3f", *value);
    return text.data();
}

/// [run] whether it has the best value of a line; nobody has if all are equal.
std::vector<bool> bestOf(const Line& line)
{
    std::optional<double> least;
    std::optional<double> most;
    for (const std::optional<double> value : line.values) {
        if (value.has_value()) {
            least = std::min(least.value_or(*value), *value);
            most = std::max(most.value_or(*value), *value);
        }
    }
    std::vector<bool> best;
    for (const std::optional<double> value : line.values) {
        best.push_back(value.has_value() && least < most && *value == *least);
    }
    return best;
}

std::string escapedForMarkdown(const std::string& text)
{
    return replaced(text, {{'|', "\\|"}, {'*', "\\*"}, {'_', "\\_"}, {'\\', "\\\\"}});
}

} // namespace

std::vector<Line> linesOf(const std::vector<Run>& runs)
{
    std::vector<Line> lines;
    for (const Source& source : SOURCES) {
        Line line{source.title, {}};
        for (const Run& run : runs) {
            line.values.push_back(valueAt(run.result, source.pointer));
        }
        const bool hasAny = std::any_of(line.values.begin(), line.values.end(),
                                        [](const auto& value) { return value.has_value(); });
        if (hasAny) {
            lines.push_back(std::move(line));
        }
    }
    return lines;
}

std::string toMarkdown(const std::vector<Run>& runs, const std::vector<Line>& lines)
{
    std::string text = "| |";
    std::string rule = "|---|";
    for (const Run& run : runs) {
        text += " " + escapedForMarkdown(run.name) + " |";
        rule += "---:|";
    }
    text += "\n" + rule + "\n";
    for (const Line& line : lines) {
        assert(line.values.size() == runs.size());
        const std::vector<bool> best = bestOf(line);
        text += "| " + line.title + " |";
        for (size_t i = 0; i < runs.size(); ++i) {
            const std::string mark = best[i] ? "**" : "";
            text.append(" ").append(mark).append(textOf(line.values[i])).append(mark).append(" |");
        }
        text += "\n";
    }
    return text;
}

std::string toCsv(const std::vector<Run>& runs, const std::vector<Line>& lines)
{
    std::string text = "figure";
    for (const Run& run : runs) {
        text += "," + escapedForCsv(run.name);
    }
    text += ",best\n";
    for (const Line& line : lines) {
        const std::vector<bool> best = bestOf(line);
        std::string names;
        text += escapedForCsv(line.title);
        for (size_t i = 0; i < runs.size(); ++i) {
            text += "," + (line.values[i].has_value() ? textOf(line.values[i]) : "");
            names += best[i] ? (names.empty() ? "" : " ") + runs[i].name : "";
        }
        text += "," + escapedForCsv(names) + "\n";
    }
    return text;
}

} // namespace kit::compare
