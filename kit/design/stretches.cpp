// SPDX-License-Identifier: BSD-3-Clause
#include "kit/design/stretches.h"

#include <algorithm>
#include <limits>

namespace kit::design {

namespace {

/// A range of x, DBU. Wider than the files' numbers, since a sum of two may be.
struct Range {
    int64_t begin;
    int64_t end;
};

std::vector<int32_t> ascendingYs(const placer::Design& design)
{
    std::vector<int32_t> ys;
    for (const placer::Row& row : design.rows) {
        ys.push_back(row.y);
    }
    std::sort(ys.begin(), ys.end());
    ys.erase(std::unique(ys.begin(), ys.end()), ys.end());
    return ys;
}

/// What the macros cover of each row, from the left.
class CoverOfRows {
public:
    explicit CoverOfRows(const placer::Design& design) : m_design(design), m_height(rowHeight(design))
    {
        for (size_t i = 0; i < design.rows.size(); ++i) {
            m_byY.push_back(static_cast<int32_t>(i));
        }
        std::sort(m_byY.begin(), m_byY.end(), [this](int32_t a, int32_t b) { return yOf(a) < yOf(b); });
        m_cover.resize(design.rows.size());
        for (const placer::Macro& macro : design.macros) {
            add(macro);
        }
        for (std::vector<Range>& cover : m_cover) {
            std::sort(cover.begin(), cover.end(),
                      [](const Range& a, const Range& b) { return a.begin < b.begin; });
        }
    }

    const std::vector<Range>& of(size_t row) const { return m_cover[row]; }

private:
    int64_t yOf(int32_t row) const { return m_design.rows[static_cast<size_t>(row)].y; }

    /// Adds a macro to the rows that it overlaps by more than their edge.
    void add(const placer::Macro& macro)
    {
        const int64_t top = int64_t{macro.y} + macro.height;
        auto at = std::upper_bound(m_byY.begin(), m_byY.end(), macro.y - m_height,
                                   [this](int64_t y, int32_t row) { return y < yOf(row); });
        for (; at != m_byY.end() && yOf(*at) < top; ++at) {
            m_cover[static_cast<size_t>(*at)].push_back({macro.x, int64_t{macro.x} + macro.width});
        }
    }

    const placer::Design& m_design;
    int64_t m_height;
    std::vector<int32_t> m_byY; ///< rows from the bottom
    std::vector<std::vector<Range>> m_cover;
};

void addStretch(std::vector<Stretch>& stretches, size_t row, Range range, int32_t site)
{
    const int64_t sites = (range.end - range.begin) / site;
    if (sites > 0) {
        stretches.push_back(
            {static_cast<int32_t>(row), static_cast<int32_t>(range.begin), static_cast<int32_t>(sites)});
    }
}

} // namespace

int32_t rowHeight(const placer::Design& design)
{
    const std::vector<int32_t> ys = ascendingYs(design);
    int64_t least = std::numeric_limits<int32_t>::max();
    for (size_t i = 1; i < ys.size(); ++i) {
        least = std::min(least, int64_t{ys[i]} - ys[i - 1]);
    }
    if (ys.size() < 2) {
        least = design.cells.empty() ? 1 : std::max(design.cells[0].height, 1);
    }
    return static_cast<int32_t>(least);
}

int32_t siteWidth(const placer::Design& design)
{
    return design.rows.size() < 2 ? placer::LIBRARY_SITE : std::max(design.rows[0].step, 1);
}

std::vector<Stretch> freeStretches(const placer::Design& design)
{
    const CoverOfRows cover(design);
    const int32_t site = siteWidth(design);
    std::vector<Stretch> stretches;
    for (size_t i = 0; i < design.rows.size(); ++i) {
        int64_t begin = design.rows[i].x;
        const int64_t end = begin + int64_t{design.rows[i].numSites} * site;
        for (const Range& macro : cover.of(i)) {
            addStretch(stretches, i, {begin, std::min(macro.begin, end)}, site);
            begin = std::max(begin, macro.end);
        }
        addStretch(stretches, i, {begin, end}, site);
    }
    return stretches;
}

int32_t widthInSites(const placer::Design& design, const placer::Component& comp)
{
    if (comp.cell < 0) {
        return 0;
    }
    const int64_t width = design.cells[static_cast<size_t>(comp.cell)].width;
    return static_cast<int32_t>((std::max(width, int64_t{0}) + placer::LIBRARY_SITE - 1) /
                                placer::LIBRARY_SITE);
}

} // namespace kit::design
