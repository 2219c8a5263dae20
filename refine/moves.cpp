// SPDX-License-Identifier: BSD-3-Clause
#include "refine/moves.h"

#include <algorithm>
#include <cstdlib>

namespace refine {

namespace {

/// What a range grows by if it is to include another.
int32_t growth(const Range& range, int32_t low, int32_t high)
{
    return range.empty() ? high - low : std::max(0, range.low - low) + std::max(0, high - range.high);
}

} // namespace

WindowFrame Mover::frameOf(int32_t row, const Run& run, size_t first, size_t last, int32_t without) const
{
    const std::vector<Item>& items = m_at.items(row);
    WindowFrame frame{.row = row, .run = &run};
    if (first > 0 && items[first - 1].cell == without) {
        --first;
    }
    if (first > 0) {
        frame.left = items[first - 1].cell;
    }
    if (last < items.size() && items[last].cell == without) {
        ++last;
    }
    if (last < items.size()) {
        frame.right = items[last].cell;
    }
    return frame;
}

Stretch Mover::stretchOf(const WindowFrame& frame) const
{
    const size_t first = frame.left < 0 ? 0 : m_at.rankOf(frame.left) + 1;
    const size_t last = frame.right < 0 ? m_at.items(frame.row).size() : m_at.rankOf(frame.right);
    return {frame.row, frame.left, frame.right, last - first};
}

bool Mover::isPossible(const Proposal& proposal, uint32_t since) const
{
    const auto stands = [&](int32_t cell) { return cell < 0 || m_at.moved(cell) <= since; };
    return std::ranges::all_of(proposal.changes, stands, &Change::cell) &&
           std::ranges::all_of(proposal.stretches, [&](const Stretch& stretch) {
               return stands(stretch.left) && stands(stretch.right) &&
                      stretchOf({.row = stretch.row, .left = stretch.left, .right = stretch.right}).count ==
                          stretch.count;
           });
}

int64_t Mover::gainOf(const Proposal& proposal)
{
    m_window.assume(proposal.changes);
    m_cells.clear();
    for (const Change& change : proposal.changes) {
        m_cells.push_back(change.cell);
    }
    const int64_t gain = m_window.gainOf(m_cells);
    m_window.assume({});
    return gain;
}

/// Takes neighbours, in the order in which they are.
WindowFrame Mover::takeRanks(int32_t row, size_t first, size_t last)
{
    const std::vector<Item>& items = m_at.items(row);
    m_cells.clear();
    m_order.clear();
    m_targets.clear();
    for (size_t i = first; i < last; ++i) {
        m_order.push_back(static_cast<int32_t>(m_cells.size()));
        m_cells.push_back(items[i].cell);
        m_targets.push_back(items[i].x);
    }
    m_window.take(m_cells, row);
    return frameOf(row, *m_at.runAt(row, items[first].x), first, last, -1);
}

/// Solves what was taken, and proposes it if it is better than what is proposed so far.
void Mover::solve(const WindowFrame& frame, int32_t sites, Proposal& result)
{
    const int64_t gain = m_window.solve(frame, m_order, m_targets, sites, result.gain);
    if (gain > result.gain) {
        result.gain = gain;
        result.changes.clear();
        m_window.changes(result.changes);
        result.stretches = {stretchOf(frame)};
    }
}

void Mover::arrange(int32_t row, size_t first, size_t last, int32_t sites, Proposal& result)
{
    const WindowFrame frame = takeRanks(row, first, last);
    solve(frame, sites, result);
}

void Mover::reorder(int32_t row, size_t first, size_t last, Proposal& result)
{
    const WindowFrame frame = takeRanks(row, first, last);
    std::ranges::fill(m_targets, (m_targets.front() + m_targets.back()) / 2);
    while (std::ranges::next_permutation(m_order).found) {
        solve(frame, Limits().sites, result);
    }
}

void Mover::gather(int32_t index, int32_t without, Pulls& pulls)
{
    pulls.clear();
    for (const Term& term : m_at.terms(index)) {
        Pull& pull = pulls.emplace_back();
        pull.outside = m_at.fixedBoxOf(term.net);
        pull.weight = m_at.weightOf(term.net);
        pull.reach = &m_at.reachOf(term);
        for (const Placement::PlacedPin& pin : m_at.pinsOf(term.net)) {
            if (pin.cell == without) {
                pulls.pop_back();
                break;
            }
            if (pin.cell != index) {
                pull.outside.x.add(pin.x);
                pull.outside.y.add(pin.y);
            }
        }
    }
    if (m_at.displacementWeight() > 0) { // the way to its start is a net of its own
        const int32_t x = m_at.startX(index);
        const int32_t y = m_at.startY(index);
        pulls.push_back({{{x, x}, {y, y}}, m_at.displacementWeight(), &CORNER});
    }
}

int64_t Mover::heightCost(const Pulls& pulls, int32_t row) const
{
    const int32_t y = m_at.yOf(row);
    const int turned = m_at.isTurned(row) ? 1 : 0;
    int64_t cost = 0;
    for (const Pull& pull : pulls) {
        const Range& reach = pull.reach->y[turned];
        cost += int64_t{pull.weight} * growth(pull.outside.y, y + reach.low, y + reach.high);
    }
    return cost;
}

int64_t Mover::lengthCost(const Pulls& pulls, int32_t x, bool mirrored) const
{
    int64_t cost = 0;
    for (const Pull& pull : pulls) {
        const Range& reach = pull.reach->x[mirrored ? 1 : 0];
        cost += int64_t{pull.weight} * growth(pull.outside.x, x + reach.low, x + reach.high);
    }
    return cost;
}

/// Where the weighted sum of the distances to all bends is least.
///
/// @param none  what it is without bends
Range Mover::middleOfBends(int32_t none)
{
    std::ranges::sort(m_bends);
    int64_t slope = 0; // twice
    for (const auto& [x, weight] : m_bends) {
        slope -= weight;
    }
    for (size_t i = 0; i < m_bends.size(); ++i) {
        slope += 2 * int64_t{m_bends[i].second};
        if (slope >= 0) {
            const bool isFlat = slope == 0 && i + 1 < m_bends.size();
            return {m_bends[i].first, m_bends[i + (isFlat ? 1 : 0)].first};
        }
    }
    return {none, none};
}

Range Mover::bestX(bool mirrored)
{
    m_bends.clear();
    for (const Pull& pull : m_pulls) {
        if (const Range& outside = pull.outside.x; !outside.empty()) {
            const Range& reach = pull.reach->x[mirrored ? 1 : 0];
            m_bends.emplace_back(outside.low - reach.low, pull.weight);
            m_bends.emplace_back(outside.high - reach.high, pull.weight);
        }
    }
    return middleOfBends(0);
}

/// The heights that cost least.
Range Mover::bestY(int32_t row)
{
    m_bends.clear();
    for (const Pull& pull : m_pulls) {
        if (const Range& outside = pull.outside.y; !outside.empty()) {
            m_bends.emplace_back(outside.low, pull.weight);
            m_bends.emplace_back(outside.high, pull.weight);
        }
    }
    return middleOfBends(m_at.yOf(row));
}

void Mover::insert(int32_t index, const Limits& limits, Proposal& result)
{
    const Cell& cell = m_at.cell(index);
    gather(index);
    const bool mirrored = m_at.stateOf(cell).mirrored;
    const int64_t now = heightCost(cell.row) + lengthCost(cell.x, mirrored);
    m_best[0] = bestX(false);
    m_best[1] = bestX(true);
    const int64_t least = std::min(lengthCost(m_best[0].low, false), lengthCost(m_best[1].low, true));
    if (now - least <= 0) {
        return;
    }
    const Range wanted = bestY(cell.row);
    const std::vector<Row>& rows = m_at.model().rows;
    const int32_t target = std::clamp(m_at.yOf(cell.row), wanted.low, wanted.high);
    const auto above =
        static_cast<int32_t>(std::ranges::lower_bound(rows, target, {}, &Row::y) - rows.begin());
    const auto count = static_cast<int32_t>(rows.size());
    for (int32_t k = 0; k < 2 * limits.rows; ++k) {
        const int32_t row = k % 2 == 0 ? above + k / 2 : above - 1 - k / 2;
        if (row < 0 || row >= count) {
            continue;
        }
        const int64_t budget = now - heightCost(row);
        if (budget - least > result.gain) {
            insertInRow(index, row, budget, limits, result);
        }
    }
}

void Mover::insertInRow(int32_t index, int32_t row, int64_t budget, const Limits& limits, Proposal& result)
{
    const Cell& cell = m_at.cell(index);
    const std::vector<Item>& items = m_at.items(row);
    const Range& best = m_best[m_at.stateOf(cell).mirrored ? 1 : 0];
    const int32_t width = m_at.kindOf(cell).width;
    const int32_t target = std::clamp(cell.x, best.low, best.high);
    // Places beside the target, the nearest first: rank is that of the cell on the right.
    size_t right = m_at.rankFrom(row, target);
    size_t left = right;
    const auto boundOf = [&](size_t rank) {
        const int32_t low = rank > 0 ? items[rank - 1].x : std::numeric_limits<int32_t>::min() / 2;
        const int32_t high = rank < items.size() ? items[rank].x : std::numeric_limits<int32_t>::max() / 2;
        return leastBetween(low, std::max(low, high));
    };
    int32_t tried = 0;
    bool leftOpen = true;
    bool rightOpen = true;
    for (bool onRight = true; tried < limits.slots && (leftOpen || rightOpen); onRight = !onRight) {
        bool& open = onRight ? rightOpen : leftOpen;
        if (!open) {
            continue;
        }
        if (onRight ? right > items.size() : left == 0) {
            open = false;
            continue;
        }
        const size_t rank = onRight ? right++ : --left;
        if (budget - boundOf(rank) <= result.gain) {
            open = false;
            continue;
        }
        if (rank > 0 && items[rank - 1].cell == index) {
            continue; // the same place as on its other side
        }
        ++tried;
        const int32_t low = rank > 0 ? items[rank - 1].x + m_at.kindOf(m_at.cell(items[rank - 1].cell)).width
                                     : std::numeric_limits<int32_t>::min() / 2;
        const int32_t high =
            rank < items.size() ? items[rank].x - width : std::numeric_limits<int32_t>::max() / 2;
        tryPlace(index, row, rank, low <= high ? std::clamp(target, low, high) : low, budget, limits, result);
    }
}

void Mover::settle(int32_t index, int32_t row, int32_t x, const Limits& limits, Proposal& result)
{
    constexpr int64_t ANY_COST = std::numeric_limits<int64_t>::max() / 4;
    gather(index);
    m_best[0] = m_best[1] = {x, x};
    const size_t count = m_at.items(row).size();
    const Cell& cell = m_at.cell(index);
    for (const Run& run : m_at.runs(row)) {
        const int32_t last = run.x + run.sites * m_at.model().step - m_at.kindOf(cell).width;
        const int32_t target = std::clamp(x, run.x, std::max(run.x, last));
        const int64_t way = std::abs(int64_t{target} - x) * m_at.displacementWeight();
        if (run.fence != cell.fence || last < run.x || -way <= result.gain) {
            continue;
        }
        const size_t rank = m_at.rankFrom(row, target);
        for (size_t k = 0; k < static_cast<size_t>(limits.slots); ++k) {
            if (k <= rank) {
                tryPlace(index, row, rank - k, target, ANY_COST, limits, result);
            }
            if (k > 0 && rank + k <= count) {
                tryPlace(index, row, rank + k, target, ANY_COST, limits, result);
            }
        }
    }
}

int64_t Mover::leastBetween(int32_t low, int32_t high) const
{
    int64_t least = std::numeric_limits<int64_t>::max();
    for (const bool mirrored : {false, true}) {
        const Range& best = m_best[mirrored ? 1 : 0];
        const int32_t x = best.high < low ? low : best.low > high ? high : std::max(best.low, low);
        least = std::min(least, lengthCost(x, mirrored));
    }
    return least;
}

Range Mover::roomOf(const WindowFrame& frame) const
{
    Range room{frame.run->x, frame.run->x + frame.run->sites * m_at.model().step};
    if (frame.left >= 0) {
        const Cell& cell = m_at.cell(frame.left);
        room.low = std::max(room.low, cell.x + (cell.fixed ? 0 : m_at.kindOf(cell).width));
    }
    if (frame.right >= 0) {
        const Cell& cell = m_at.cell(frame.right);
        room.high = std::min(room.high, cell.x + (cell.fixed ? m_at.kindOf(cell).width : 0));
    }
    return room;
}

/// The run of a fence that is nearest to a place in a row, nullptr if there is none.
const Run* Mover::runNear(int32_t row, int32_t x, int32_t fence) const
{
    const Run* nearest = m_at.runAt(row, x);
    if (nearest != nullptr && nearest->fence == fence) {
        return nearest;
    }
    nearest = nullptr;
    int32_t least = std::numeric_limits<int32_t>::max();
    for (const Run& run : m_at.runs(row)) {
        const int32_t away = std::max(run.x - x, x - run.x - run.sites * m_at.model().step);
        if (run.fence == fence && away < least) {
            least = away;
            nearest = &run;
        }
    }
    return nearest;
}

void Mover::tryPlace(int32_t index, int32_t row, size_t rank, int32_t target, int64_t budget,
                     const Limits& limits, Proposal& result)
{
    const std::vector<Item>& items = m_at.items(row);
    const Cell& cell = m_at.cell(index);
    const int32_t step = m_at.model().step;
    const Run* const run = runNear(row, target, cell.fence);
    if (run == nullptr) {
        return;
    }
    const int32_t runEnd = run->x + run->sites * step;
    const auto mayMove = [&](size_t i) {
        return !m_at.cell(items[i].cell).fixed && items[i].x >= run->x && items[i].x < runEnd;
    };
    size_t first = rank;
    size_t last = rank;
    int32_t beside = limits.beside;
    m_cells.clear();
    m_targets.clear();
    m_order.clear();
    for (; first > 0 && beside > 0 && mayMove(first - 1); --first) {
        beside -= items[first - 1].cell == index ? 0 : 1;
    }
    beside = limits.beside;
    for (; last < items.size() && beside > 0 && mayMove(last); ++last) {
        beside -= items[last].cell == index ? 0 : 1;
    }
    for (size_t i = first; i < last; ++i) {
        if (i == rank) {
            m_order.push_back(static_cast<int32_t>(m_cells.size()));
            m_cells.push_back(index);
            m_targets.push_back(target);
        }
        if (items[i].cell != index) {
            m_order.push_back(static_cast<int32_t>(m_cells.size()));
            m_cells.push_back(items[i].cell);
            m_targets.push_back(items[i].x);
        }
    }
    if (rank == last) {
        m_order.push_back(static_cast<int32_t>(m_cells.size()));
        m_cells.push_back(index);
        m_targets.push_back(target);
    }
    const WindowFrame frame = frameOf(row, *run, first, last, index);
    const Range room = roomOf(frame);
    int32_t left = 0; // widths of those on the left of the cell
    int32_t all = 0;
    for (const int32_t other : m_cells) {
        left = other == index ? all : left;
        all += m_at.kindOf(m_at.cell(other)).width;
    }
    const int32_t slack = room.high - room.low - all;
    if (slack < 0) {
        return;
    }
    const int32_t low = room.low + left;
    if (budget - leastBetween(low, low + slack) <= result.gain) {
        return;
    }
    m_window.take(m_cells, row);
    solve(frame, limits.sites, result);
}

void Mover::swap(int32_t index, const Limits& limits, Proposal& result)
{
    const Cell& cell = m_at.cell(index);
    gather(index);
    const bool mirrored = m_at.stateOf(cell).mirrored;
    const int64_t now = heightCost(cell.row) + lengthCost(cell.x, mirrored);
    const Range best = bestX(mirrored);
    const int64_t least = lengthCost(best.low, mirrored);
    const Range wanted = bestY(cell.row);
    const std::vector<Row>& rows = m_at.model().rows;
    const int32_t target = std::clamp(m_at.yOf(cell.row), wanted.low, wanted.high);
    const auto above =
        static_cast<int32_t>(std::ranges::lower_bound(rows, target, {}, &Row::y) - rows.begin());
    const auto count = static_cast<int32_t>(rows.size());
    const int32_t x = std::clamp(cell.x, best.low, best.high);
    const int32_t width = m_at.kindOf(cell).width;
    std::vector<std::pair<int64_t, int32_t>> candidates;
    for (int32_t k = 0; k < 2 * limits.rows; ++k) {
        const int32_t row = k % 2 == 0 ? above + k / 2 : above - 1 - k / 2;
        if (row < 0 || row >= count) {
            continue;
        }
        const int64_t budget = now - heightCost(row);
        if (budget - least <= 0) {
            continue;
        }
        const std::vector<Item>& items = m_at.items(row);
        const size_t rank = m_at.rankFrom(row, x);
        const auto slots = static_cast<size_t>(limits.slots);
        for (size_t i = rank - std::min(rank, slots); i < std::min(items.size(), rank + slots); ++i) {
            const int32_t otherIndex = items[i].cell;
            const Cell& other = m_at.cell(otherIndex);
            if (otherIndex == index || other.fixed || other.fence != cell.fence) {
                continue;
            }
            const int32_t shift = (m_at.kindOf(other).width - width) / 2;
            const int64_t first = budget - lengthCost(other.x + shift, mirrored);
            if (first <= 0) {
                continue;
            }
            gather(otherIndex, index, m_otherPulls);
            const bool otherMirrored = m_at.stateOf(other).mirrored;
            const int64_t second =
                heightCost(m_otherPulls, other.row) + lengthCost(m_otherPulls, other.x, otherMirrored) -
                heightCost(m_otherPulls, cell.row) - lengthCost(m_otherPulls, cell.x - shift, otherMirrored);
            if (first + second > 0) {
                candidates.emplace_back(-first - second, otherIndex);
            }
        }
    }
    std::ranges::sort(candidates);
    for (size_t i = 0; i < std::min<size_t>(candidates.size(), 4); ++i) {
        trySwap(index, candidates[i].second, limits, result);
    }
}

/// Takes the cells around one, with another in its place.
bool Mover::takeBeside(int32_t row, size_t rank, int32_t instead, const Limits& limits, WindowFrame& frame)
{
    const std::vector<Item>& items = m_at.items(row);
    const Run* const run = m_at.runAt(row, items[rank].x);
    if (run == nullptr) {
        return false;
    }
    const int32_t runEnd = run->x + run->sites * m_at.model().step;
    const auto mayMove = [&](size_t i) {
        return !m_at.cell(items[i].cell).fixed && items[i].x >= run->x && items[i].x < runEnd;
    };
    size_t first = rank;
    size_t last = rank + 1;
    const auto beside = static_cast<size_t>(limits.beside);
    for (; first > 0 && rank - first < beside && mayMove(first - 1); --first) {
    }
    for (; last < items.size() && last - rank <= beside && mayMove(last); ++last) {
    }
    m_cells.clear();
    m_targets.clear();
    m_order.clear();
    for (size_t i = first; i < last; ++i) {
        m_order.push_back(static_cast<int32_t>(m_cells.size()));
        m_cells.push_back(i == rank ? instead : items[i].cell);
        m_targets.push_back(items[i].x);
    }
    frame = frameOf(row, *run, first, last, -1);
    return true;
}

void Mover::trySwap(int32_t index, int32_t otherIndex, const Limits& limits, Proposal& result)
{
    const Cell& cell = m_at.cell(index);
    const Cell& other = m_at.cell(otherIndex);
    const size_t rank = m_at.rankOf(index);
    const size_t otherRank = m_at.rankOf(otherIndex);
    const size_t apart = 2 * static_cast<size_t>(limits.beside) + 1;
    if (cell.row == other.row && (rank < otherRank ? otherRank - rank : rank - otherRank) <= apart) {
        return;
    }
    const int32_t both[] = {index, otherIndex};
    m_assumed = {{index, other.row, other.x, cell.state}, {otherIndex, cell.row, cell.x, other.state}};
    m_window.assume(m_assumed);
    int64_t gain = m_window.gainOf(both);
    std::vector<Change> changes;
    std::vector<Stretch> stretches;
    for (const bool isOther : {true, false}) {
        WindowFrame frame;
        if (!takeBeside(isOther ? other.row : cell.row, isOther ? otherRank : rank,
                        isOther ? index : otherIndex, limits, frame)) {
            m_window.assume({});
            return;
        }
        const Range room = roomOf(frame);
        int32_t slack = room.high - room.low;
        for (const int32_t one : m_cells) {
            slack -= m_at.kindOf(m_at.cell(one)).width;
        }
        if (slack < 0) {
            m_window.assume({});
            return;
        }
        m_window.take(m_cells, frame.row);
        const int64_t more =
            m_window.solve(frame, m_order, m_targets, limits.sites,
                           isOther ? std::numeric_limits<int64_t>::min() : result.gain - gain);
        if (more == WindowSolver::IMPOSSIBLE) {
            m_window.assume({});
            return;
        }
        gain += more;
        m_window.changes(changes);
        stretches.push_back(stretchOf(frame));
        m_assumed = changes;
        if (isOther) {
            m_assumed.push_back({otherIndex, cell.row, cell.x, other.state});
            m_window.assume(m_assumed);
        }
    }
    m_window.assume({});
    if (gain > result.gain) {
        result.gain = gain;
        result.changes = changes;
        result.stretches = stretches;
    }
}

} // namespace refine
