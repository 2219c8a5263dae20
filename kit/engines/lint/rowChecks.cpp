// SPDX-License-Identifier: BSD-3-Clause
#include <algorithm>
#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

#include "kit/base/finding.h"
#include "kit/design/stretches.h"
#include "kit/engines/lint/checks.h"

namespace kit::lint {

namespace {
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
        const auto cell = std::find_if(cells.begin(), cells.end(), [](const auto& c) { return c.complete; });
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
        std::sort(sorted.begin(), sorted.end(), [](const Row* a, const Row* b) {
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

} // namespace kit::lint
