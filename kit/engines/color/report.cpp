// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/color/report.h"

#include <algorithm>
#include <iomanip>
#include <map>
#include <ostream>
#include <sstream>

#include "kit/base/findingText.h"
#include "kit/base/text/printable.h"
#include "kit/base/text/text.h"
#include "kit/design/distance.h"
#include "kit/formats/lefdef/units.h"

namespace kit::color {

namespace {

constexpr int COLUMN = 9; // width of a column of numbers

/// Writes a table of how many cells have a number of something.
void writeHistogram(const std::map<size_t, size_t>& cells, const char* what, std::ostream& out)
{
    out << '\n' << std::setw(COLUMN) << what << std::setw(COLUMN) << "cells" << '\n';
    for (const auto& [value, count] : cells) {
        out << std::setw(COLUMN) << value << std::setw(COLUMN) << count << '\n';
    }
}

/// The conflicts that are left in the first solution.
std::string conflictText(const ColouredCell& cell)
{
    const std::vector<LeftConflict>& conflicts = cell.conflicts.front();
    int64_t least = std::numeric_limits<int64_t>::max();
    for (const LeftConflict& conflict : conflicts) {
        least = std::min(least, conflict.squared);
    }
    return counted(static_cast<int64_t>(conflicts.size()), "conflict") + " left, the closest at " +
           distanceText(least);
}

void writeTroubles(const Result& result, std::ostream& out)
{
    for (size_t i = 0; i < result.colours.size(); ++i) {
        const ColouredCell& cell = result.colours[i];
        if (cell.tooLarge) {
            out << "  " << printable(result.metal[i].name) << ": the search was given up\n";
        } else if (cell.trouble) {
            out << "  " << printable(result.metal[i].name) << ": "
                << counted(static_cast<int64_t>(cell.trouble->polygons.size()), "shape")
                << " too close together; --mindp "
                << design::Distance::text(cell.trouble->goodDistance, result.selection.site.width)
                << " would do" << (cell.file ? "; " + conflictText(cell) : "") << '\n';
        }
    }
}

} // namespace

void writeMessages(const Findings& findings, std::ostream& out)
{
    for (const Finding& finding : findings) {
        std::string line = lineOf(finding, PlaceText::LINE_AND_COLUMN);
        line.resize(line.rfind(" [")); // codes are not shown
        out << line << '\n';
    }
}

std::string troubleText(const CellMetal& metal, const ColouredCell& cell, const Rules& rules,
                        lefdef::Length site)
{
    if (cell.tooLarge) {
        return metal.name +
               " gets no colour file: too many of its shapes depend on each other, and the search "
               "was given up";
    }
    return metal.name + " has no colouring: " + textOf(*cell.trouble, metal, rules) +
           "; it can be coloured with --mindp " + design::Distance::text(cell.trouble->goodDistance, site) +
           (cell.file ? "; its file has " + conflictText(cell) : "");
}

void writeSummary(const Result& result, const Options& options, std::ostream& out)
{
    std::map<size_t, size_t> solutions;
    std::map<size_t, size_t> stitches;
    size_t files = 0;
    size_t bad = 0;
    for (const ColouredCell& cell : result.colours) {
        bad += cell.trouble || cell.tooLarge ? 1 : 0;
        files += cell.file ? 1 : 0;
        if (cell.file) {
            ++solutions[cell.file->solutions.size()];
            ++stitches[static_cast<size_t>(cell.file->solutions.front().stitches)];
        }
    }
    out << counted(static_cast<int64_t>(result.colours.size()), "cell") << ", layer " << options.layer
        << ", site " << lefdef::micronText(result.selection.site.width) << " x "
        << lefdef::micronText(result.selection.site.height) << " um, distance "
        << design::Distance::text(options.settings.rules.distance, result.selection.site.width) << '\n';
    writeHistogram(solutions, "solutions", out);
    writeHistogram(stitches, "stitches", out);
    out << '\n' << counted(static_cast<int64_t>(bad), "cell") << " without a colouring free of conflicts\n";
    writeTroubles(result, out);
    std::ostringstream seconds; // the stream's own format stays as it is
    seconds << std::fixed << std::setprecision(2) << result.seconds;
    out << counted(static_cast<int64_t>(files), "colour file") << " in " << options.outDir << ", "
        << seconds.str() << " s\n";
    out.flush();
}

} // namespace kit::color
