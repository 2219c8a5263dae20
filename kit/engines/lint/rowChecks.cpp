// SPDX-License-Identifier: BSD-3-Clause
// The rows, and the macros in them.
#include <algorithm>
#include <cstdlib>
#include <limits>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "kit/base/finding.h"
#include "kit/design/stretches.h"
#include "kit/engines/lint/checks.h"

namespace kit::lint {

namespace {

using placer::Macro;
using placer::Row;

/// Row height as the placer takes it: the least distance of a row to the first one; 0 if two share its y.
int64_t placersHeight(const std::vector<Row>& rows)
{
    int64_t least = std::numeric_limits<int64_t>::max();
    for (size_t i = 1; i < rows.size(); ++i) {
        least = std::min(least, std::abs(int64_t{rows[i].y} - rows[0].y));
    }
    return least;
}

/// The checks of the rows of a design that has some.
class RowCheck {
public:
    explicit RowCheck(const Subject& subject)
        : m_subject(subject), m_rows(subject.design.rows), m_height(design::rowHeight(subject.design)),
          m_reporter(subject.findings, subject.options.paths.place())
    {
    }

    void run()
    {
        if (m_rows.size() == 1) {
            checkSingle();
        } else {
            checkFirst();
            checkScale();
        }
        for (const Row& row : m_rows) {
            checkOne(row);
        }
        checkOverlaps();
    }

private:
    void checkSingle()
    {
        if (m_rows[0].step != placer::LIBRARY_SITE) {
            m_reporter.warning("row-step", {m_rows[0].line, 0},
                               "with a single row the placer does not take its step, " +
                                   std::to_string(m_rows[0].step) + ", but -siteW, 190 by default",
                               "write a design of 190 to the site, or a second row");
        }
    }

    void checkFirst()
    {
        if (m_rows[0].step <= 0) {
            m_reporter.error("row-step", {m_rows[0].line, 0},
                             "the first row's step is " + std::to_string(m_rows[0].step) +
                                 ", and the placer ends",
                             "write the distance of two sites");
        }
        const int64_t height = placersHeight(m_rows);
        if (height != m_height) {
            m_reporter.error("row-height", {m_rows[0].line, 0},
                             "the placer takes the rows to be " + std::to_string(height) +
                                 " high, the least distance to the first row, but two rows are " +
                                 std::to_string(m_height) + " apart",
                             "list the rows by y, with no second row at the first one's y");
        }
    }

    /// Cells are drawn at 190 to the site; the row height must be to the cell height as the step to 190.
    void checkScale()
    {
        const auto& cells = m_subject.design.cells;
        const auto cell = std::ranges::find_if(cells, [](const auto& c) { return c.complete; });
        const int64_t step = m_rows[0].step;
        if (cell == cells.end() || step <= 0) {
            return;
        }
        if (cell->height * step != int64_t{m_height} * placer::LIBRARY_SITE) {
            m_reporter.warning("row-height", {m_rows[0].line, 0},
                               "the rows are " + std::to_string(m_height) + " high, and the cells " +
                                   std::to_string(cell->height * step / placer::LIBRARY_SITE) +
                                   " at this step",
                               "check that the library belongs to the design");
        }
    }

    void checkOne(const Row& row)
    {
        const Row& first = m_rows[0];
        if (row.step != first.step) {
            m_reporter.error("row-step", {row.line, 0},
                             "the step of row " + row.name + " is " + std::to_string(row.step) +
                                 ", and the placer takes the first row's, " + std::to_string(first.step),
                             "give all rows one step");
        }
        if (row.numSites <= 0) {
            m_reporter.note("row-empty", {row.line, 0},
                            "row " + row.name + " has " + std::to_string(row.numSites) + " sites",
                            "that is no problem if it is meant");
        }
        if ((int64_t{row.y} - first.y) % m_height != 0) {
            m_reporter.warning("row-pitch", {row.line, 0},
                               "row " + row.name + " is at y " + std::to_string(row.y) +
                                   ", no whole number of row heights, " + std::to_string(m_height) +
                                   ", from the first row",
                               "check its y");
        }
    }

    /// Rows of one y that share sites. Others cannot overlap: the height is their least distance.
    void checkOverlaps()
    {
        std::vector<const Row*> sorted;
        for (const Row& row : m_rows) {
            sorted.push_back(&row);
        }
        std::ranges::sort(sorted, [](const Row* a, const Row* b) {
            return a->y != b->y ? a->y < b->y : a->x != b->x ? a->x < b->x : a->line < b->line;
        });
        const Row* widest = sorted[0];
        for (size_t i = 1; i < sorted.size(); ++i) {
            const Row& row = *sorted[i];
            if (row.y == widest->y && row.x < endOf(*widest)) {
                reportOverlap(row, *widest);
            }
            const bool stays = row.y == widest->y && endOf(row) <= endOf(*widest);
            widest = stays ? widest : &row;
        }
    }

    void reportOverlap(const Row& row, const Row& other)
    {
        const Row& later = row.line > other.line ? row : other;
        const Row& earlier = row.line > other.line ? other : row;
        m_reporter.error("row-overlap", {later.line, 0},
                         "row " + later.name + " lies over row " + earlier.name + " (line " +
                             std::to_string(earlier.line) + "), and the placer fills both",
                         "remove or move one of them");
    }

    int64_t endOf(const Row& row) const
    {
        return row.x + int64_t{row.numSites} * design::siteWidth(m_subject.design);
    }

    const Subject& m_subject;
    const std::vector<Row>& m_rows;
    int32_t m_height;
    Reporter m_reporter;
};

int64_t rightOf(const Macro& macro)
{
    return int64_t{macro.x} + macro.width;
}

/// The checks of the macros, row by row; each macro or pair of them is told once.
class MacroCheck {
public:
    explicit MacroCheck(const Subject& subject)
        : m_design(subject.design), m_reporter(subject.findings, subject.options.paths.place()),
          m_height(design::rowHeight(subject.design)), m_site(design::siteWidth(subject.design)),
          m_told(subject.design.macros.size())
    {
        for (size_t i = 0; i < m_design.macros.size(); ++i) {
            m_byY.push_back(i);
            m_tallest = std::max(m_tallest, int64_t{macro(i).height});
        }
        std::ranges::sort(m_byY, {}, [this](size_t i) { return macro(i).y; });
    }

    void run()
    {
        for (const Macro& macro : m_design.macros) {
            checkSize(macro);
        }
        for (const Row& row : m_design.rows) {
            checkRow(row);
        }
    }

private:
    const Macro& macro(size_t index) const { return m_design.macros[index]; }

    void checkSize(const Macro& macro)
    {
        if (macro.width <= 0 || macro.height <= 0) {
            m_reporter.warning("macro-size", {macro.line, 0},
                               "macro " + macro.name + " is " + std::to_string(macro.width) + " by " +
                                   std::to_string(macro.height),
                               "correct its size, or remove it");
        }
    }

    /// Macros that overlap a row by more than its edge, from the left; in x, touching is enough.
    std::vector<size_t> macrosOn(const Row& row) const
    {
        std::vector<size_t> found;
        const int64_t right = row.x + int64_t{row.numSites} * m_site;
        auto at = std::upper_bound(m_byY.begin(), m_byY.end(), row.y - m_tallest,
                                   [this](int64_t y, size_t index) { return y < macro(index).y; });
        for (; at != m_byY.end() && macro(*at).y < int64_t{row.y} + m_height; ++at) {
            const Macro& one = macro(*at);
            if (int64_t{one.y} + one.height > row.y && one.x <= right && rightOf(one) >= row.x) {
                found.push_back(*at);
            }
        }
        std::ranges::sort(found, [this](size_t a, size_t b) {
            return macro(a).x != macro(b).x ? macro(a).x < macro(b).x : a < b;
        });
        return found;
    }

    void checkRow(const Row& row)
    {
        const std::vector<size_t> found = macrosOn(row);
        for (size_t i = 0; i < found.size(); ++i) {
            checkEnds(row, found[i]);
            checkGrid(row, found[i]);
            if (i > 0) {
                checkOverlap(found[i - 1], found[i]);
            }
        }
    }

    void checkEnds(const Row& row, size_t index)
    {
        const Macro& one = macro(index);
        const int64_t right = row.x + int64_t{row.numSites} * m_site;
        if ((one.x >= row.x && rightOf(one) <= right) || std::exchange(m_told[index].ends, true)) {
            return;
        }
        m_reporter.error("macro-ends", {one.line, 0},
                         "macro " + one.name + " reaches or touches an end of row " + row.name + " (line " +
                             std::to_string(row.line) +
                             ") from outside, and the placer makes a segment outside the row",
                         "cut the macro at the row's end, or leave a gap between them");
    }

    /// The sites to the right of a macro are counted from its edge.
    void checkGrid(const Row& row, size_t index)
    {
        const Macro& one = macro(index);
        const int64_t right = row.x + int64_t{row.numSites} * m_site;
        const bool shifts =
            rightOf(one) > row.x && rightOf(one) < right && (rightOf(one) - row.x) % m_site != 0;
        if (shifts && !std::exchange(m_told[index].grid, true)) {
            m_reporter.warning("macro-grid", {one.line, 0},
                               "macro " + one.name + " ends off the site grid of row " + row.name +
                                   ", and the placer counts the sites behind it from there",
                               "move its right edge to a multiple of " + std::to_string(m_site) +
                                   " from the row's start");
        }
    }

    void checkOverlap(size_t left, size_t right)
    {
        const auto pair = std::minmax(left, right);
        if (macro(right).x >= rightOf(macro(left)) || !m_overlaps.insert(pair).second) {
            return;
        }
        const Macro& earlier = macro(pair.first);
        const Macro& later = macro(pair.second);
        m_reporter.error("macro-overlap", {later.line, 0},
                         "macro " + later.name + " overlaps macro " + earlier.name + " (line " +
                             std::to_string(earlier.line) + ") in a row, and the placer cuts the row wrongly",
                         "join them into one");
    }

    /// What has been told of a macro.
    struct Told {
        bool ends = false;
        bool grid = false;
    };

    const placer::Design& m_design;
    Reporter m_reporter;
    int64_t m_height;
    int64_t m_site;
    int64_t m_tallest = 0;
    std::vector<size_t> m_byY;
    std::vector<Told> m_told;
    std::set<std::pair<size_t, size_t>> m_overlaps;
};

} // namespace

void checkRows(const Subject& subject)
{
    if (!subject.design.rows.empty()) {
        RowCheck(subject).run();
    } else if (!subject.design.components.empty()) {
        Reporter(subject.findings, subject.options.paths.place())
            .error("no-rows", {}, "there are no rows, and the components have no place", "add the rows");
    }
}

void checkMacros(const Subject& subject)
{
    MacroCheck(subject).run();
}

} // namespace kit::lint
