// SPDX-License-Identifier: BSD-3-Clause
#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include "kit/base/finding.h"
#include "kit/base/text/text.h"
#include "kit/design/stretches.h"
#include "kit/engines/lint/checks.h"
#include "kit/formats/placer/names.h"

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

void checkHeights(const Subject& subject)
{
    const std::vector<Cell>& cells = subject.design.cells;
    const auto first =
        std::find_if(cells.begin(), cells.end(), [](const Cell& cell) { return cell.complete; });
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
    Reporter list(subject.findings, subject.options.paths.cells());
    if (subject.design.cells.empty() && !subject.design.components.empty()) {
        list.error("no-cells", {}, "there are no cells, and the placer ends at the first component",
                   "list the cells of the components");
    }
    const std::vector<Cell>& cells = subject.design.cells;
    const std::vector<int64_t> users = usersOf(subject.design);
    const placer::NameIndex last = placer::indexNames(cells); // components have the last cell of a name
    for (size_t i = 0; i < cells.size(); ++i) {
        if (cells[i].complete && placer::findName(last, cells[i].name) == static_cast<int32_t>(i)) {
            CellCheck(cells[i], users[i], subject.findings).run();
        }
    }
    if (!tableFits(cells)) {
        list.error("large-library", {},
                   "the cells and their solutions are too many for the placer's spacing table",
                   "list only the cells in use, with fewer solutions");
    }
    checkHeights(subject);
}

} // namespace kit::lint
