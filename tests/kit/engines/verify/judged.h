// SPDX-License-Identifier: BSD-3-Clause
// Small inputs for the judge, made by hand, and what it says of them.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "kit/engines/verify/verify.h"

namespace test {

using kit::design::Issue;
using kit::design::Issues;
using kit::design::Kind;
using kit::placer::Cell;
using kit::placer::ColorRecord;
using kit::placer::Component;
using kit::placer::Rect;

constexpr int32_t CELL_HEIGHT = 1400;

/// A cell from its rectangles, one per shape, with one solution.
inline Cell makeCell(const std::string& name, int32_t width, const std::vector<Rect>& rects,
                     const std::vector<int32_t>& masks)
{
    Cell cell;
    cell.name = name;
    cell.width = width;
    cell.height = CELL_HEIGHT;
    for (const Rect& rect : rects) {
        cell.shapes.emplace_back().rects.push_back(rect);
    }
    cell.solutions.emplace_back().masks = masks;
    return cell;
}

/// A cell of two sites with two rails, a bar near its left edge and one near its right edge, 40 and 60 from
/// them. Solution 0 has the bars on masks 1 and 2, solution 1 on 2 and 1 with a stitch, solution 2 both on 0.
inline Cell barCell()
{
    Cell cell = makeCell(
        "BARS", 380, {{0, -85, 380, 85}, {0, 1315, 380, 1485}, {40, 400, 100, 1000}, {260, 400, 320, 1000}},
        {0, 0, 1, 2});
    cell.solutions.push_back({1, {0, 0, 2, 1}});
    cell.solutions.push_back({0, {0, 0, 0, 0}});
    return cell;
}

/// An input for the judge: two rows of 12 sites, at 0 and 1400, and whatever a test adds.
class Judged {
public:
    explicit Judged(std::vector<Cell> cells = {barCell()}, int32_t step = 190) : m_step(step)
    {
        input.design.cells = std::move(cells);
        for (int32_t i = 0; i < 2; ++i) {
            addRow(0, i, 12);
        }
    }

    void addRow(int32_t site, int32_t level, int32_t sites)
    {
        input.design.rows.push_back({.name = "row_" + std::to_string(input.design.rows.size()),
                                     .siteName = "core",
                                     .x = site * m_step,
                                     .y = yOf(level),
                                     .orient = "N",
                                     .numSites = sites,
                                     .step = m_step,
                                     .line = static_cast<int64_t>(input.design.rows.size()) + 1});
    }

    /// Adds a component u0, u1, ... with the masks of a solution. Its lines are 10, 20, ... in the placement
    /// and 3, 4, ... in the colours.
    ///
    /// @param level  number of the row from the bottom
    void add(int32_t cell, int32_t site, int32_t level, int32_t solution = 0, const std::string& orient = "N")
    {
        const Cell& type = input.design.cells[static_cast<size_t>(cell)];
        const auto count = static_cast<int64_t>(input.design.components.size());
        const std::string name = "u" + std::to_string(count);
        input.design.components.push_back({.name = name,
                                           .cellName = type.name,
                                           .cell = cell,
                                           .x = site * m_step,
                                           .y = yOf(level),
                                           .orient = orient,
                                           .line = 10 * (count + 1)});
        const kit::placer::Solution& colors = type.solutions[static_cast<size_t>(solution)];
        input.colors.push_back({name, type.name, solution, colors.stitches, colors.masks, count + 3});
    }

    Component& component(size_t i) { return input.design.components[i]; }
    ColorRecord& colors(size_t i) { return input.colors[i]; }

    Issues judge(int32_t minDist = 185) const { return kit::verify::judge(input, {.minDist = minDist}); }

    kit::design::ColoredPlacement input;

private:
    int32_t yOf(int32_t level) const { return level * (CELL_HEIGHT * m_step / 190); }

    int32_t m_step;
};

/// The only issue; a failure if there is none or another.
inline Issue onlyIssue(const Issues& issues)
{
    EXPECT_EQ(issues.size(), 1U);
    return issues.size() == 1 ? issues.front() : Issue{};
}

/// Names of the kinds, one after the other, sorted, parted by blanks.
inline std::string kindsOf(const Issues& issues)
{
    std::vector<std::string> names;
    for (const Issue& issue : issues) {
        names.emplace_back(kit::design::infoOf(issue.kind).name);
    }
    std::sort(names.begin(), names.end());
    std::string all;
    for (const std::string& name : names) {
        all += (all.empty() ? "" : " ") + name;
    }
    return all;
}

} // namespace test
