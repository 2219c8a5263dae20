// SPDX-License-Identifier: BSD-3-Clause
#include "kit/design/occupancy.h"

#include <algorithm>
#include <map>

namespace kit::design {

namespace {

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
            std::sort(row.begin(), row.end(), [this](int32_t a, int32_t b) { return leftOf(a) < leftOf(b); });
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
    const auto xOf = [&design](int32_t comp) { return design.components[static_cast<size_t>(comp)].x; };
    for (std::vector<int32_t>& comps : occupancy.components) {
        std::stable_sort(comps.begin(), comps.end(), [&](int32_t a, int32_t b) { return xOf(a) < xOf(b); });
    }
    return occupancy;
}

} // namespace kit::design
