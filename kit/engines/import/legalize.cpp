// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/import/cells.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <map>
#include <numeric>
#include <optional>

namespace kit::importing {

namespace {

using lefdef::Def;

constexpr size_t LARGE_NET = 100; ///< members

using geometry::Point; ///< DBU

/// The free sites of a row.
class FreeSites {
public:
    FreeSites(const Row& row, int64_t siteWidth) : m_siteWidth(siteWidth)
    {
        for (const Interval& stretch : freeStretches(row)) {
            m_gaps.emplace(stretch.begin, stretch.end);
        }
    }

    /// Takes sites. @return false if they are not free, or `x` is between two sites
    bool take(int64_t x, int64_t width)
    {
        auto at = m_gaps.upper_bound(x);
        if (at == m_gaps.begin()) {
            return false;
        }
        --at;
        const auto [begin, end] = *at;
        // All that was taken before was whole sites, so gaps begin on one.
        if (x + width > end || (x - begin) % m_siteWidth != 0) {
            return false;
        }
        m_gaps.erase(at);
        if (begin < x) {
            m_gaps.emplace(begin, x);
        }
        if (x + width < end) {
            m_gaps.emplace(x + width, end);
        }
        return true;
    }

    /// The left edge nearest to `x` of free sites, none if there is not so much room within `reach`.
    std::optional<int64_t> nearest(int64_t x, int64_t width, int64_t reach) const
    {
        std::optional<int64_t> best;
        const auto right = m_gaps.upper_bound(x);
        for (auto at = right; at != m_gaps.end() && at->first - x < reach; ++at) {
            if (tryGap(*at, x, width, best, reach)) {
                break; // those further on are further off
            }
        }
        for (auto at = right; at != m_gaps.begin();) {
            --at;
            if (x - at->second + width >= reach || tryGap(*at, x, width, best, reach)) {
                break;
            }
        }
        return best;
    }

private:
    /// @return whether the gap is wide enough
    bool tryGap(const std::pair<const int64_t, int64_t>& gap, int64_t x, int64_t width,
                std::optional<int64_t>& best, int64_t& reach) const
    {
        const auto [begin, end] = gap;
        const int64_t last = begin + (end - width - begin) / m_siteWidth * m_siteWidth;
        if (end - begin < width) {
            return false;
        }
        const int64_t sites = std::max<int64_t>(0, x - begin + m_siteWidth / 2) / m_siteWidth;
        const int64_t place = std::min(begin + sites * m_siteWidth, last);
        if (std::abs(place - x) < reach) {
            reach = std::abs(place - x);
            best = place;
        }
        return true;
    }

    int64_t m_siteWidth;
    std::map<int64_t, int64_t> m_gaps; ///< their ends by their begins
};

class Legalizer {
public:
    Legalizer(const Def& def, const Core& core, const Nets& nets, Cells& cells)
        : m_def(def), m_core(core), m_nets(nets), m_cells(cells)
    {
        for (const Row& row : core.rows) {
            m_free.emplace_back(row, core.siteWidth);
        }
    }

    std::vector<size_t> run()
    {
        const std::vector<size_t> homeless = settle();
        const std::vector<Point> targets = targetsOf(homeless);
        std::vector<size_t> order(homeless.size());
        std::iota(order.begin(), order.end(), size_t{0});
        std::ranges::stable_sort(order, [&](size_t a, size_t b) {
            return m_cells.movable[homeless[a]].width > m_cells.movable[homeless[b]].width;
        });
        std::vector<size_t> left;
        for (const size_t i : order) {
            if (!place(m_cells.movable[homeless[i]], targets[i])) {
                left.push_back(homeless[i]);
            }
        }
        return left;
    }

private:
    /// Lets the cells stay that stand well. @return the others
    std::vector<size_t> settle()
    {
        std::vector<size_t> order(m_cells.movable.size());
        std::iota(order.begin(), order.end(), size_t{0});
        std::ranges::stable_sort(order, {}, [&](size_t i) { return m_cells.movable[i].x; });
        std::vector<size_t> homeless;
        for (const size_t index : order) {
            Cell& cell = m_cells.movable[index];
            if (cell.row == NONE || !m_free[cell.row].take(cell.x, cell.width)) {
                cell.row = NONE;
                homeless.push_back(index);
            }
        }
        std::ranges::sort(homeless);
        return homeless;
    }

    std::vector<Point> targetsOf(const std::vector<size_t>& homeless) const
    {
        std::vector<std::vector<size_t>> netsOf(m_def.components.size());
        for (size_t net = 0; net < m_nets.size(); ++net) {
            for (const Member& member : m_nets.of(net)) {
                if (member.component >= 0) {
                    netsOf[static_cast<size_t>(member.component)].push_back(net);
                }
            }
        }
        std::vector<Point> targets;
        for (const size_t index : homeless) {
            const Cell& cell = m_cells.movable[index];
            targets.push_back(cell.placed ? Point{.x = cell.x, .y = cell.y} : middle(netsOf[cell.component]));
        }
        return targets;
    }

    /// The mean of the places of all members of some nets that have one; the core's middle if none has. Large
    /// nets, a clock's for one, reach everywhere and say nothing.
    Point middle(const std::vector<size_t>& nets) const
    {
        Point sum;
        int64_t count = 0;
        for (const size_t net : nets) {
            if (m_nets.of(net).size() > LARGE_NET) {
                continue;
            }
            for (const Member& member : m_nets.of(net)) {
                const std::optional<Point> at = placeOf(member);
                sum = at ? Point{.x = sum.x + at->x, .y = sum.y + at->y} : sum;
                count += at ? 1 : 0;
            }
        }
        return count > 0 ? Point{.x = sum.x / count, .y = sum.y / count} : coreMiddle();
    }

    std::optional<Point> placeOf(const Member& member) const
    {
        if (member.component < 0) {
            const lefdef::DefPin& pin = m_def.pins[static_cast<size_t>(member.pin)];
            return pin.placed ? std::optional<Point>({.x = pin.x, .y = pin.y}) : std::nullopt;
        }
        const lefdef::DefComponent& comp = m_def.components[static_cast<size_t>(member.component)];
        const bool placed = comp.status != lefdef::Status::NONE && comp.status != lefdef::Status::UNPLACED;
        return placed ? std::optional<Point>({.x = comp.x, .y = comp.y}) : std::nullopt;
    }

    Point coreMiddle() const
    {
        const Row& low = m_core.rows[m_core.byHeight.front()];
        const Row& high = m_core.rows[m_core.byHeight.back()];
        return {.x = (low.begin() + low.end()) / 2, .y = (low.y + high.y) / 2};
    }

    bool place(Cell& cell, const Point& target)
    {
        size_t bestRow = NONE;
        int64_t bestX = 0;
        int64_t reach = std::numeric_limits<int64_t>::max() / 4;
        const auto tryRow = [&](size_t order) {
            const size_t row = m_core.byHeight[order];
            const int64_t away = std::abs(m_core.rows[row].y - target.y);
            if (away >= reach) {
                return false;
            }
            const std::optional<int64_t> x = m_free[row].nearest(target.x, cell.width, reach - away);
            if (x) {
                reach = away + std::abs(*x - target.x);
                bestRow = row;
                bestX = *x;
            }
            return true;
        };
        const size_t middle = m_core.firstAbove(target.y);
        for (size_t i = middle; i < m_core.byHeight.size() && tryRow(i); ++i) {
        }
        for (size_t i = std::min(middle, m_core.byHeight.size()); i-- > 0 && tryRow(i);) {
        }
        if (bestRow == NONE) {
            return false;
        }
        m_free[bestRow].take(bestX, cell.width);
        cell.row = bestRow;
        cell.x = bestX;
        cell.y = m_core.rows[bestRow].y;
        cell.flipped = false;
        return true;
    }

    const Def& m_def;
    const Core& m_core;
    const Nets& m_nets;
    Cells& m_cells;
    std::vector<FreeSites> m_free; ///< [row]
};

} // namespace

std::vector<size_t> legalize(const Def& def, const Core& core, const Nets& nets, Cells& cells)
{
    return Legalizer(def, core, nets, cells).run();
}

} // namespace kit::importing
