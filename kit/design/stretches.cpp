// SPDX-License-Identifier: BSD-3-Clause
#include "kit/design/stretches.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <map>
#include <set>

namespace kit::design {

namespace {

/// A range of x, DBU. Wider than the files' numbers, since a sum of two may be.
using Range = geometry::RangeOf<int64_t>;

/// [row] what the macros cover of it, from the left: those that overlap it by more than its edge.
std::vector<std::vector<Range>> coverOfRows(const placer::Design& design)
{
    const int64_t height = rowHeight(design);
    std::multimap<int64_t, size_t> rows; // by y
    for (size_t i = 0; i < design.rows.size(); ++i) {
        rows.emplace(design.rows[i].y, i);
    }
    std::vector<std::vector<Range>> cover(design.rows.size());
    for (const placer::Macro& macro : design.macros) {
        const int64_t top = int64_t{macro.y} + macro.height;
        for (auto at = rows.upper_bound(macro.y - height); at != rows.end() && at->first < top; ++at) {
            cover[at->second].push_back({macro.x, int64_t{macro.x} + macro.width});
        }
    }
    for (std::vector<Range>& ranges : cover) {
        std::ranges::sort(ranges, {}, &Range::begin);
    }
    return cover;
}

void addStretch(std::vector<Stretch>& stretches, size_t row, Range range, int32_t site)
{
    const int64_t sites = (range.end - range.begin) / site;
    if (sites > 0) {
        stretches.push_back({static_cast<int32_t>(row), static_cast<int32_t>(range.begin),
                             static_cast<int32_t>(sites), range.end});
    }
}

/// The stretches by y and x.
class StretchMap {
public:
    StretchMap(const placer::Design& design, const std::vector<Stretch>& stretches)
        : m_design(design), m_stretches(stretches), m_height(rowHeight(design)), m_site(siteWidth(design))
    {
        for (size_t i = 0; i < stretches.size(); ++i) {
            const placer::Row& row = design.rows[static_cast<size_t>(stretches[i].row)];
            m_byY[row.y].push_back(static_cast<int32_t>(i));
        }
        for (auto& [y, row] : m_byY) {
            std::ranges::sort(row, {}, [this](int32_t i) { return leftOf(i); });
        }
    }

    int32_t find(const placer::Component& comp) const
    {
        const auto own = m_byY.find(comp.y);
        int32_t found = own != m_byY.end() ? findIn(own->second, comp) : -1;
        auto other = m_byY.upper_bound(comp.y - m_height);
        for (; found < 0 && other != m_byY.end() && other->first < comp.y + m_height; ++other) {
            found = findIn(other->second, comp);
        }
        return found;
    }

private:
    int64_t leftOf(int32_t stretch) const { return m_stretches[static_cast<size_t>(stretch)].x; }

    int64_t rightOf(int32_t stretch) const
    {
        return leftOf(stretch) + m_stretches[static_cast<size_t>(stretch)].numSites * m_site;
    }

    int32_t findIn(const std::vector<int32_t>& row, const placer::Component& comp) const
    {
        const auto next =
            std::upper_bound(row.begin(), row.end(), comp.x,
                             [this](int32_t x, int32_t stretch) { return x < leftOf(stretch); });
        if (next != row.begin() && comp.x < rightOf(*(next - 1))) {
            return *(next - 1);
        }
        const int64_t right = comp.x + widthInSites(m_design, comp) * m_site;
        return next != row.end() && leftOf(*next) < right ? *next : -1;
    }

    const placer::Design& m_design;
    const std::vector<Stretch>& m_stretches;
    int64_t m_height;
    int64_t m_site;
    std::map<int64_t, std::vector<int32_t>> m_byY; ///< stretches of a y from the left
};

} // namespace

int32_t rowHeight(const placer::Design& design)
{
    std::set<int64_t> ys;
    for (const placer::Row& row : design.rows) {
        ys.insert(row.y);
    }
    if (ys.size() < 2) {
        return design.cells.empty() ? 1 : std::max(design.cells[0].height, 1);
    }
    int64_t least = std::numeric_limits<int32_t>::max();
    for (auto y = std::next(ys.begin()); y != ys.end(); ++y) {
        least = std::min(least, *y - *std::prev(y));
    }
    return static_cast<int32_t>(least);
}

int32_t siteWidth(const placer::Design& design)
{
    return design.rows.size() < 2 ? placer::LIBRARY_SITE : std::max(design.rows[0].step, 1);
}

std::vector<Stretch> freeStretches(const placer::Design& design)
{
    const std::vector<std::vector<Range>> cover = coverOfRows(design);
    const int32_t site = siteWidth(design);
    std::vector<Stretch> stretches;
    for (size_t i = 0; i < design.rows.size(); ++i) {
        int64_t begin = design.rows[i].x;
        const int64_t end = begin + int64_t{design.rows[i].numSites} * site;
        for (const Range& macro : cover[i]) {
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
    const int64_t width = design.cellOf(comp)->width;
    return static_cast<int32_t>((std::max(width, int64_t{0}) + placer::LIBRARY_SITE - 1) /
                                placer::LIBRARY_SITE);
}

Occupancy occupancyOf(const placer::Design& design)
{
    Occupancy occupancy;
    occupancy.stretches = freeStretches(design);
    occupancy.components.resize(occupancy.stretches.size());
    const StretchMap map(design, occupancy.stretches);
    for (size_t i = 0; i < design.components.size(); ++i) {
        const int32_t stretch = map.find(design.components[i]);
        occupancy.stretchOf.push_back(stretch);
        if (stretch >= 0) {
            occupancy.components[static_cast<size_t>(stretch)].push_back(static_cast<int32_t>(i));
        }
    }
    const auto xOf = [&design](int32_t comp) { return design.component(comp).x; };
    for (std::vector<int32_t>& comps : occupancy.components) {
        std::ranges::stable_sort(comps, {}, xOf);
    }
    return occupancy;
}

} // namespace kit::design
