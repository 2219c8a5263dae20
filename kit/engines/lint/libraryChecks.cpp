// SPDX-License-Identifier: BSD-3-Clause
#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "kit/base/finding.h"
#include "kit/base/text/text.h"
#include "kit/design/spacing.h"
#include "kit/engines/lint/checks.h"
#include "kit/formats/placer/design.h"
#include "kit/geometry/sets.h"

namespace kit::lint {

namespace {

using placer::Cell;
using placer::Rect;
using placer::Shape;

/// Entries that the placer's spacing table may have.
constexpr int64_t LARGEST_TABLE = 500'000'000;

std::string textOf(const Rect& rect)
{
    return std::string("(") + std::to_string(rect.xl) + " " + std::to_string(rect.yl) + ")-(" +
           std::to_string(rect.xh) + " " + std::to_string(rect.yh) + ")";
}

std::vector<int64_t> usersOf(const placer::Design& design)
{
    std::vector<int64_t> users(design.cells.size());
    for (const placer::Component& comp : design.components) {
        if (comp.cell >= 0) {
            ++users[static_cast<size_t>(comp.cell)];
        }
    }
    return users;
}

/// The checks of one cell.
class CellCheck {
public:
    CellCheck(const Cell& cell, int64_t users, Findings& findings)
        : m_cell(cell), m_users(users), m_reporter(findings, cell.path)
    {
    }

    void run()
    {
        checkSize();
        checkSolutions();
        for (size_t i = 0; i < m_cell.shapes.size(); ++i) {
            checkShape(i);
        }
        checkOrigin();
    }

private:
    void checkSize()
    {
        if (m_cell.width < 0) {
            m_reporter.error("cell-size", {1, 0},
                             "the cell is " + std::to_string(m_cell.width) +
                                 " wide, and the placer ends here",
                             "correct the width");
        } else if (m_cell.width == 0) {
            m_reporter.warning("cell-size", {1, 0}, "the cell has no width", "correct the width");
        } else if (m_cell.width % placer::LIBRARY_SITE != 0) {
            m_reporter.warning("cell-size", {1, 0},
                               "the cell's width, " + std::to_string(m_cell.width) +
                                   ", is no whole number of sites of 190, and the placer rounds it up",
                               "make it a multiple of 190");
        }
    }

    void checkSolutions()
    {
        if (m_cell.solutions.empty()) {
            m_reporter.add(m_users > 0 ? Severity::ERROR : Severity::WARNING, "no-solutions", {},
                           "the cell has no colour solution" +
                               (m_users > 0
                                    ? ", " + counted(m_users, "component") + " of it make the placer end"
                                    : std::string(", but no component uses it")),
                           "add a solution");
        }
        for (const placer::Solution& solution : m_cell.solutions) {
            for (size_t i = 0; i < solution.masks.size(); ++i) {
                checkMask(solution, i);
            }
        }
    }

    void checkMask(const placer::Solution& solution, size_t shape)
    {
        const int32_t mask = solution.masks[shape];
        if (mask < 0 || mask > 2) {
            m_reporter.error("mask-range", {solution.line, 0},
                             "shape " + std::to_string(shape + 1) + " is on mask " + std::to_string(mask) +
                                 ", and the placer sees no conflict there",
                             "the masks are 0, 1 and 2");
        }
    }

    void checkShape(size_t index)
    {
        const Shape& shape = m_cell.shapes[index];
        const std::string name = "shape " + std::to_string(index + 1);
        if (shape.rects.empty()) {
            m_reporter.warning("empty-shape", {shape.line, 0}, name + " has no rectangles", "remove it");
        }
        for (const Rect& rect : shape.rects) {
            if (rect.xl < 0 || rect.xh > m_cell.width) {
                reportOutside(shape, name, rect, "left or right", Severity::ERROR);
            } else if (rect.yh <= 0 || rect.yl >= m_cell.height) { // a rail lies astride the edge
                reportOutside(shape, name, rect, "above or below", Severity::WARNING);
            }
        }
    }

    void reportOutside(const Shape& shape, const std::string& name, const Rect& rect, const char* where,
                       Severity severity)
    {
        m_reporter.add(severity, "outside-cell", {shape.line, 0},
                       name + " has a rectangle " + textOf(rect) + " that lies outside the cell, (0 0)-(" +
                           std::to_string(m_cell.width) + " " + std::to_string(m_cell.height) + "), " + where,
                       "move it inside, or correct the cell's size");
    }

    /// The placer moves the leftmost shape to the cell's left edge.
    void checkOrigin()
    {
        int32_t left = std::numeric_limits<int32_t>::max();
        for (const Shape& shape : m_cell.shapes) {
            for (const Rect& rect : shape.rects) {
                left = std::min(left, rect.xl);
            }
        }
        if (!m_cell.shapes.empty() && left != 0 && left != std::numeric_limits<int32_t>::max()) {
            m_reporter.warning("origin", {m_cell.shapes[0].line, 0},
                               "the leftmost shape begins at " + std::to_string(left) +
                                   ", and the placer moves all shapes until it begins at 0",
                               "let the rails span the cell");
        }
    }

    const Cell& m_cell;
    int64_t m_users;
    Reporter m_reporter;
};

/// The pairs of a cell's shapes that are closer than the colouring distance, and the metal they form.
class MaskCheck {
public:
    MaskCheck(const Cell& cell, int32_t distance, lefdef::Length site, Findings& findings)
        : m_cell(cell), m_reporter(findings, cell.path), m_distance(design::Distance::text(distance, site))
    {
        for (size_t a = 0; a < cell.shapes.size(); ++a) {
            for (size_t b = a + 1; b < cell.shapes.size(); ++b) {
                const int64_t square = design::closestOf(cell.shapes[a].rects, cell.shapes[b].rects).squared;
                if (square < int64_t{distance} * distance) {
                    m_pairs.push_back({a, b, square});
                }
            }
        }
    }

    void run()
    {
        for (const placer::Solution& solution : m_cell.solutions) {
            check(solution);
        }
    }

private:
    struct Pair {
        size_t a;
        size_t b;
        int64_t square; ///< of their distance
    };

    void check(const placer::Solution& solution)
    {
        geometry::Sets metal(m_cell.shapes.size()); // shapes of one mask that touch, directly or by others
        for (const Pair& pair : m_pairs) {
            if (pair.square == 0 && solution.masks[pair.a] == solution.masks[pair.b]) {
                metal.join(pair.a, pair.b);
            }
        }
        for (const Pair& pair : m_pairs) {
            if (metal.leastOf(pair.a) != metal.leastOf(pair.b) && conflicts(pair, solution)) {
                report(pair, solution);
            }
        }
    }

    bool conflicts(const Pair& pair, const placer::Solution& solution) const
    {
        const int32_t mask = solution.masks[pair.a];
        return mask == solution.masks[pair.b] && mask >= 0 && mask <= 2 &&
               !design::isRail(m_cell, pair.a, solution) && !design::isRail(m_cell, pair.b, solution);
    }

    void report(const Pair& pair, const placer::Solution& solution)
    {
        const auto distance = static_cast<int64_t>(std::sqrt(static_cast<double>(pair.square)));
        m_reporter.warning("same-mask", {solution.line, 0},
                           "shapes " + std::to_string(pair.a + 1) + " and " + std::to_string(pair.b + 1) +
                               " are on mask " + std::to_string(solution.masks[pair.a]) + " and only " +
                               std::to_string(distance) + " apart, less than " + m_distance,
                           "colour them differently: the placer does not look inside a cell");
    }

    const Cell& m_cell;
    Reporter m_reporter;
    std::string m_distance;    ///< for messages
    std::vector<Pair> m_pairs; ///< closer than the colouring distance
};

/// Visits the cells that could be read; of a name the last, which is the one that components have.
void forEachCell(const std::vector<Cell>& cells, const std::function<void(size_t)>& visit)
{
    const placer::NameIndex last = placer::indexNames(cells);
    for (size_t i = 0; i < cells.size(); ++i) {
        if (cells[i].complete && placer::findName(last, cells[i].name) == static_cast<int32_t>(i)) {
            visit(i);
        }
    }
}

void checkHeights(const Subject& subject)
{
    const std::vector<Cell>& cells = subject.design.cells;
    const auto first = std::ranges::find_if(cells, [](const Cell& cell) { return cell.complete; });
    for (auto cell = first; cell != cells.end(); ++cell) {
        if (cell->complete && cell->height != first->height) {
            Reporter(subject.findings, cell->path)
                .warning("cell-height", {1, 0},
                         "the cell's height is " + std::to_string(cell->height) + " and that of " +
                             first->name + " " + std::to_string(first->height) +
                             ", and the placer takes every cell to be one row high",
                         "leave cells of other heights out, or make them macros");
        }
    }
}

} // namespace

bool tableFits(const std::vector<Cell>& cells)
{
    int64_t types = 0;
    for (const Cell& cell : cells) {
        types += 2 + 2 * static_cast<int64_t>(cell.solutions.size()); // each cell and its mirror image
    }
    return types == 0 || types <= LARGEST_TABLE / types;
}

void checkLibrary(const Subject& subject)
{
    const std::vector<Cell>& cells = subject.design.cells;
    Reporter list(subject.findings, subject.options.paths.cells());
    if (cells.empty() && !subject.design.components.empty()) {
        list.error("no-cells", {}, "there are no cells, and the placer ends at the first component",
                   "list the cells of the components");
    }
    const std::vector<int64_t> users = usersOf(subject.design);
    forEachCell(cells, [&](size_t i) { CellCheck(cells[i], users[i], subject.findings).run(); });
    if (!tableFits(cells)) {
        list.error("large-library", {},
                   "the cells and their solutions are too many for the placer's spacing table",
                   "list only the cells in use, with fewer solutions");
    }
    checkHeights(subject);
}

void checkMasks(const Subject& subject)
{
    const std::vector<Cell>& cells = subject.design.cells;
    const lefdef::Length site = design::siteLength(subject.design);
    const int32_t distance = subject.options.minDist.unitsOn(site);
    forEachCell(cells, [&](size_t i) { MaskCheck(cells[i], distance, site, subject.findings).run(); });
}

} // namespace kit::lint
