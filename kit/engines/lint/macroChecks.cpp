// SPDX-License-Identifier: BSD-3-Clause
#include <algorithm>
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
        std::sort(m_byY.begin(), m_byY.end(), [this](size_t a, size_t b) { return macro(a).y < macro(b).y; });
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
        std::sort(found.begin(), found.end(), [this](size_t a, size_t b) {
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

void checkMacros(const Subject& subject)
{
    MacroCheck(subject).run();
}

} // namespace kit::lint
