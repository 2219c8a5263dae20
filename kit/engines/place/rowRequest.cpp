// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/place/rowRequest.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <map>

#include "db/design.h"

namespace kit::place {

namespace {

/// The nets of NetPull have no more.
constexpr size_t MOST_MEMBERS = 64;

} // namespace

NetPull::NetPull(const Design& design, const Component& comp) : m_middle(design.cellOf(comp).width / 2)
{
    for (const Net* net : comp.nets) {
        if (net->components.size() + net->pins.size() <= MOST_MEMBERS) {
            add(design, *net, comp);
        }
    }
}

int64_t NetPull::lengthAt(int64_t x) const
{
    int64_t length = 0;
    for (const auto& [lo, hi] : m_others) {
        length += std::max({lo - (x + m_middle), x + m_middle - hi, int64_t{0}});
    }
    return length;
}

void NetPull::add(const Design& design, const Net& net, const Component& comp)
{
    std::pair<int64_t, int64_t> range{std::numeric_limits<int64_t>::max(),
                                      std::numeric_limits<int64_t>::min()};
    const auto include = [&range](int64_t x) {
        range = {std::min(range.first, x), std::max(range.second, x)};
    };
    for (const Component* other : net.components) {
        if (other != &comp) {
            include(other->x + design.cellOf(*other).width / 2);
        }
    }
    for (const Pin* pin : net.pins) {
        include(pin->x);
    }
    if (range.first <= range.second) {
        m_others.push_back(range);
    }
}

RowRequest::RowRequest(const Design& design, const TrueDesign& truth, Gaps& gaps)
    : m_design(design), m_truth(truth), m_gaps(gaps)
{
    m_problem.apart = [this](int32_t right, int32_t left) {
        return m_gaps.between(m_sideLies[static_cast<size_t>(right)], m_sideLies[static_cast<size_t>(left)]);
    };
    m_problem.cost = [this](size_t cell, int64_t x) { return costOf(cell, x); };
}

void RowRequest::add(const Tenant& tenant, bool isStray)
{
    if (isStray) {
        m_problem.newcomer = m_problem.cells.size();
    }
    const placer::Cell& master = m_truth.design.cells[static_cast<size_t>(tenant.lie.cell)];
    std::map<std::pair<int32_t, int32_t>, std::pair<int64_t, Lie>> ways; // the cheapest by the sides
    for (const bool mirrored : {false, true}) {
        if (mirrored != tenant.lie.mirrored && !m_truth.mirrorable[static_cast<size_t>(tenant.lie.cell)]) {
            continue;
        }
        for (size_t s = 0; s < master.solutions.size(); ++s) {
            Lie lie = tenant.lie;
            lie.solution = static_cast<int32_t>(s);
            lie.mirrored = mirrored;
            const int64_t cost = STITCH * master.solutions[s].stitches +
                                 (mirrored != tenant.lie.mirrored ? MIRRORING : 0) +
                                 (!isStray && lie.solution != tenant.lie.solution ? RECOLORING : 0);
            const Sides sides = m_gaps.sidesOf(lie);
            const auto [at, isNew] = ways.try_emplace({sides.left, sides.right}, cost, lie);
            if (!isNew && (cost < at->second.first || (cost == at->second.first && lie == tenant.lie))) {
                at->second = {cost, lie};
            }
        }
    }
    RowCell& cell = m_problem.cells.emplace_back();
    std::map<int32_t, int64_t> costs; // by way
    for (const auto& [sides, way] : ways) {
        costs.emplace(wayOf(way.second), way.first);
    }
    for (const auto& [way, cost] : costs) {
        cell.ways.push_back(way);
        cell.costs.push_back(cost);
    }
    const Component& comp = *m_design.components[static_cast<size_t>(tenant.component)];
    m_movers.push_back({tenant, isStray, NetPull(m_design, comp)});
}

void RowRequest::addRuns(const Band& band, int64_t begin, int64_t end)
{
    for (SiteRun run : band.runs) {
        const int64_t lacking = std::max(begin - run.x, int64_t{0});
        run.x += (lacking + run.step - 1) / run.step * run.step;
        run.end = std::min(run.end, end);
        if (run.x < run.end) {
            m_problem.runs.push_back(run);
        }
    }
}

std::optional<std::vector<Tenant>> RowRequest::solve(int64_t mostLabels, RowAnswer& answer)
{
    answer = arrange(m_problem, mostLabels);
    if (!answer.spots) {
        return {};
    }
    std::vector<Tenant> tenants;
    for (size_t i = 0; i < m_movers.size(); ++i) {
        const Spot& spot = (*answer.spots)[i];
        tenants.push_back({m_movers[i].tenant.component, spot.x, m_lies[static_cast<size_t>(spot.way)]});
    }
    std::ranges::sort(tenants, {}, &Tenant::x);
    return tenants;
}

int32_t RowRequest::wayOf(const Lie& lie)
{
    const uint64_t key = (uint64_t{static_cast<uint32_t>(lie.cell)} << 32) |
                         (uint64_t{static_cast<uint32_t>(lie.solution)} << 2) | (lie.mirrored ? 1U : 0U) |
                         (lie.upsideDown ? 2U : 0U);
    const auto [at, isNew] = m_ways.try_emplace(key, static_cast<int32_t>(m_lies.size()));
    if (isNew) {
        const Sides sides = m_gaps.sidesOf(lie);
        m_lies.push_back(lie);
        m_problem.ways.push_back(
            {m_gaps.widthOf(lie.cell), sideOf(sides.left, lie), sideOf(sides.right, lie)});
    }
    return at->second;
}

/// The number of a side in the problem.
int32_t RowRequest::sideOf(int32_t number, const Lie& lie)
{
    const auto [at, isNew] = m_sides.try_emplace(number, m_problem.sides);
    if (isNew) {
        m_sideLies.push_back(lie);
        ++m_problem.sides;
    }
    return at->second;
}

int64_t RowRequest::costOf(size_t cell, int64_t x) const
{
    const Mover& mover = m_movers[cell];
    const int64_t step = m_truth.design.rows.front().step;
    const int64_t off = std::abs(x - mover.tenant.x) / step;
    const int64_t moved = mover.isStray ? off : SITE_OFF * off + (off > 0 ? MOVE : 0);
    return moved + mover.pull.lengthAt(x) / step;
}

} // namespace kit::place
