// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/place/planner.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <utility>

#include "db/design.h"
#include "kit/engines/place/rowRequest.h"

namespace kit::place {

namespace {

/// Other rows with room that are tried for a component, the nearest first.
constexpr size_t MOST_BANDS = 6;

/// Rows that are looked at for that, the nearest with so many free sites first.
constexpr size_t MOST_TRIED = 64;

/// Cells to each side that may move, to begin with.
constexpr size_t NEAR = 4;

/// Partial arrangements: of a row that is searched whole, and of a part of a longer one.
constexpr int64_t LABELS_OF_SHORT_ROW = 100'000;
constexpr int64_t LABELS_OF_WINDOW = 1'000;

/// Of all together.
constexpr int64_t LABELS_OF_ALL = 150'000;

/// Cells in arrangements that are asked for, before only few cells at a time may move: so many for each
/// component, and some at any rate.
constexpr int64_t MOST_CELLS_EACH = 5;
constexpr int64_t MOST_CELLS = 50'000;

/// In place of the cell that was refused.
constexpr int32_t PAIR = -1;

/// First ranks of windows that overlap by half and cover a band, the nearest to some ranks first.
std::vector<size_t> windowsNear(size_t count, size_t size, size_t first, size_t last)
{
    const auto middle = static_cast<int64_t>((first + last) / 2);
    const auto half = static_cast<int64_t>(size / 2);
    const auto end = static_cast<int64_t>(count - size);
    std::vector<size_t> windows;
    for (int64_t from = (middle - half) % half; from < end + half; from += half) {
        windows.push_back(static_cast<size_t>(std::clamp(from, int64_t{0}, end)));
    }
    std::ranges::stable_sort(
        windows, {}, [&](size_t from) { return std::abs(static_cast<int64_t>(from) + half - middle); });
    return windows;
}

} // namespace

bool Planner::isExhausted() const
{
    return m_cells > std::max(MOST_CELLS, MOST_CELLS_EACH * static_cast<int64_t>(m_design.components.size()));
}

Component& Planner::componentOf(const Tenant& tenant)
{
    return *m_design.components[static_cast<size_t>(tenant.component)];
}

std::optional<Plan> Planner::planPair(Band& band, size_t left, size_t right)
{
    return planAround(band, left, right + 1, nullptr, /*anyOrder=*/true);
}

std::optional<Plan> Planner::planFor(Band& band, const Tenant& more, bool anyOrder)
{
    const size_t rank = band.rankOf(more.x);
    return planAround(band, rank, rank, &more, anyOrder);
}

/// An arrangement of the tenants from rank `first` to before `last`, with one more if given, between them:
/// with as few of the others around as it takes.
std::optional<Plan> Planner::planAround(Band& band, size_t first, size_t last, const Tenant* more,
                                        bool anyOrder)
{
    const std::pair kind(more == nullptr ? PAIR : more->lie.cell, anyOrder);
    const bool wasRefused = band.refused.contains(kind);
    if (wasRefused && more != nullptr) {
        return {};
    }
    std::optional<Plan> plan;
    const size_t count = band.tenants.size();
    bool isWhole = false; // the band
    for (size_t near = NEAR; !plan && !isWhole; near *= 4) {
        const size_t from = first - std::min(first, near);
        const size_t to = std::min(count, last + near);
        isWhole = to - from == count;
        plan = arrangeIn(band, from, to, more, /*mostLabels=*/0);
        if (isExhausted()) {
            break;
        }
    }
    if (!plan && !isWhole) {
        ++m_searchesGivenUp;
    } else if (!plan && anyOrder && !wasRefused) {
        plan = planInAnyOrder(band, first, last, more);
    }
    if (!plan) {
        band.refused.insert(kind);
    }
    return plan;
}

/// As planAround(), in any order: of the whole band if that is short, or else of so many cells side by
/// side, the nearest first.
std::optional<Plan> Planner::planInAnyOrder(Band& band, size_t first, size_t last, const Tenant* more)
{
    const size_t count = band.tenants.size();
    const size_t most = EVERY_ORDER - (more != nullptr ? 1 : 0);
    const bool isShort = count <= most;
    std::optional<Plan> plan;
    bool gaveUp = !isShort;
    for (const size_t from : isShort ? std::vector<size_t>{0} : windowsNear(count, most, first, last)) {
        const size_t to = std::min(count, from + most);
        if (more == nullptr && (from > first || to < last)) {
            continue; // a pair is mended as a whole
        }
        if (m_labels > LABELS_OF_ALL) {
            gaveUp = true;
            break;
        }
        plan = arrangeIn(band, from, to, more, isShort ? LABELS_OF_SHORT_ROW : LABELS_OF_WINDOW);
        gaveUp = gaveUp || m_gaveUp;
        if (plan) {
            return plan;
        }
    }
    m_searchesGivenUp += gaveUp ? 1 : 0;
    return plan;
}

std::optional<Plan> Planner::arrangeIn(Band& band, size_t from, size_t to, const Tenant* more,
                                       int64_t mostLabels)
{
    m_cells += static_cast<int64_t>(to - from);
    RowRequest request(m_design, m_truth, m_gaps);
    const std::vector<Tenant>& tenants = band.tenants;
    const int64_t begin = from == 0 ? std::numeric_limits<int64_t>::min() / 2
                                    : tenants[from - 1].x + m_gaps.widthOf(tenants[from - 1].lie.cell);
    const int64_t end = to == tenants.size() ? std::numeric_limits<int64_t>::max() / 2 : tenants[to].x;
    request.addRuns(band, begin, end);
    const size_t rank = more == nullptr ? 0 : std::clamp(band.rankOf(more->x), from, to);
    for (size_t i = from; i <= to; ++i) {
        if (more != nullptr && i == rank) {
            request.add(*more, true);
        }
        if (i < to) {
            request.add(tenants[i], false);
        }
    }
    for (size_t i = from; i-- > 0 && tenants[i].x + m_gaps.farthest() > begin;) {
        request.addFixed(tenants[i]);
    }
    for (size_t i = to; i < tenants.size() && tenants[i].x - m_gaps.farthest() < end; ++i) {
        request.addFixed(tenants[i]);
    }
    for (const Tenant& obstacle : band.obstacles) {
        if (obstacle.x + m_gaps.farthestOf(obstacle.lie.cell) > begin &&
            obstacle.x - m_gaps.farthest() < end) {
            request.addFixed(obstacle);
        }
    }
    RowAnswer answer;
    std::optional<std::vector<Tenant>> after = request.solve(mostLabels, answer);
    m_labels += answer.labels;
    m_gaveUp = answer.gaveUp;
    if (!after) {
        return {};
    }
    Plan plan{.band = &band, .first = from, .last = to, .after = std::move(*after)};
    plan.moves = addChanges(plan);
    plan.cost += growthBy(plan) / stepOf();
    return plan;
}

/// Adds what changes of the tenants to the cost of a plan. @return whether one gets another place
bool Planner::addChanges(Plan& plan) const
{
    bool moves = false;
    for (const Tenant& tenant : plan.after) {
        const auto begin = plan.band->tenants.begin();
        const auto end = begin + static_cast<std::ptrdiff_t>(plan.last);
        const auto before =
            std::find_if(begin + static_cast<std::ptrdiff_t>(plan.first), end,
                         [&](const Tenant& other) { return other.component == tenant.component; });
        if (before == end) { // the one more
            const Point start = m_start[static_cast<size_t>(tenant.component)];
            const int64_t off = std::abs(tenant.x - start.x) + std::abs(plan.band->y - start.y);
            plan.cost += off / stepOf();
            continue;
        }
        const int64_t off = std::abs(tenant.x - before->x) / stepOf();
        plan.cost += SITE_OFF * off + (off > 0 ? MOVE : 0);
        plan.cost += tenant.lie.mirrored != before->lie.mirrored ? MIRRORING : 0;
        plan.cost += tenant.lie.solution != before->lie.solution ? RECOLORING : 0;
        moves = moves || off > 0;
    }
    return moves;
}

/// Whether one of a band's runs has enough free sites, as its cells are spread over the runs now.
bool Planner::hasRunFor(const Band& band, const Tenant& tenant) const
{
    size_t next = 0;
    for (const SiteRun& run : band.runs) {
        int64_t room = run.end - run.x;
        for (; next < band.tenants.size() && band.tenants[next].x < run.end; ++next) {
            room -= m_gaps.widthOf(band.tenants[next].lie.cell);
        }
        if (room >= m_gaps.widthOf(tenant.lie.cell)) {
            return true;
        }
    }
    return false;
}

std::optional<Plan> Planner::planElsewhere(std::vector<Band>& bands, Tenant tenant, const Band* own,
                                           std::optional<Plan> best)
{
    const Point start = m_start[static_cast<size_t>(tenant.component)];
    tenant.x = start.x;
    std::vector<Band*> near;
    for (Band& band : bands) {
        if (&band != own && hasRunFor(band, tenant)) {
            near.push_back(&band);
        }
    }
    std::ranges::stable_sort(near, {}, [start](const Band* band) { return std::abs(band->y - start.y); });
    const size_t most = isExhausted() ? MOST_BANDS : MOST_TRIED;
    const bool isCut = near.size() > most;
    near.resize(std::min(near.size(), most));
    size_t found = 0;
    for (const bool anyOrder : {false, true}) {
        for (Band* const band : near) {
            if (best && std::abs(band->y - start.y) / stepOf() > best->cost) {
                break; // the way there alone costs more
            }
            std::optional<Plan> plan = planFor(*band, tenant, anyOrder);
            found += plan ? 1 : 0;
            if (plan && (!best || plan->cost < best->cost)) {
                best = std::move(plan);
            }
            if (found == MOST_BANDS) {
                break;
            }
        }
        if (best) {
            break;
        }
        near.resize(std::min(near.size(), MOST_BANDS));
    }
    m_searchesGivenUp += isCut && !best ? 1 : 0;
    return best;
}

/// What a plan adds to the wirelength, DBU.
int64_t Planner::growthBy(const Plan& plan)
{
    struct Place {
        Component* comp;
        int32_t x;
        int32_t y;
    };
    std::vector<Place> before;
    std::set<int32_t> nets;
    for (const Tenant& tenant : plan.after) {
        Component& comp = componentOf(tenant);
        before.push_back({&comp, comp.x, comp.y});
        for (const Net* net : comp.nets) {
            nets.insert(net->id);
        }
    }
    const int64_t length = lengthOf(nets);
    for (const Tenant& tenant : plan.after) {
        componentOf(tenant).x = static_cast<int32_t>(tenant.x);
        componentOf(tenant).y = static_cast<int32_t>(plan.band->y);
    }
    const int64_t growth = lengthOf(nets) - length;
    for (const Place& place : before) {
        place.comp->x = place.x;
        place.comp->y = place.y;
    }
    return growth;
}

int64_t Planner::lengthOf(const std::set<int32_t>& nets)
{
    int64_t sum = 0;
    for (const int32_t id : nets) {
        Net* net = m_design.nets[static_cast<size_t>(id)];
        m_design.evaluateBound(net);
        sum += int64_t{net->boxXh} - net->boxXl + net->boxYh - net->boxYl;
    }
    return sum;
}

} // namespace kit::place
