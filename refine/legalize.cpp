// SPDX-License-Identifier: BSD-3-Clause
#include "refine/legalize.h"

#include <algorithm>
#include <cstdlib>
#include <deque>
#include <limits>
#include <optional>

#include "refine/moves.h"
#include "refine/placement.h"

namespace refine {

namespace {

constexpr int64_t NOTHING = std::numeric_limits<int64_t>::min();

/// One run.
class Legalizer {
public:
    explicit Legalizer(Model& model) : m_model(model), m_at(model), m_mover(m_at, m_options)
    {
        m_at.startHere();
        m_at.setDisplacementWeight(DISPLACEMENT * m_at.parts());
    }

    std::vector<Homeless> run()
    {
        for (int32_t row = 0; row < static_cast<int32_t>(m_model.rows.size()); ++row) {
            liftStrays(row);
            mendRow(row);
        }
        // The widest first: it is them for whom places are rare.
        std::ranges::stable_sort(m_lifted, std::ranges::greater(),
                                 [this](int32_t cell) { return widthOf(cell); });
        std::vector<Homeless> homeless;
        std::deque<int32_t> waiting(m_lifted.begin(), m_lifted.end());
        while (!waiting.empty()) {
            const int32_t cell = waiting.front();
            waiting.pop_front();
            if (settle(cell)) {
                continue;
            }
            if (const int32_t other = exchange(cell); other >= 0) {
                waiting.push_front(other);
            } else {
                homeless.push_back({cell, !hasRoom(cell)});
            }
        }
        return homeless;
    }

private:
    static constexpr int32_t DISPLACEMENT = 16; ///< of a unit, in units of wirelength
    static constexpr size_t BESIDE = 4;         ///< cells on each side of a conflict that may move for it
    static constexpr int32_t EXCHANGED_ROWS = 40;

    int32_t widthOf(int32_t cell) const { return m_at.kindOf(m_at.cell(cell)).width; }

    bool fits(const Cell& cell) const
    {
        const Run* const run = m_at.runAt(cell.row, cell.x);
        return run != nullptr && run->fence == cell.fence && (cell.x - run->x) % m_model.step == 0 &&
               cell.x + m_at.kindOf(cell).width <= run->x + run->sites * m_model.step;
    }

    void lift(int32_t cell)
    {
        m_at.lift(cell);
        m_lifted.push_back(cell);
    }

    /// Those that are on no site.
    void liftStrays(int32_t row)
    {
        std::vector<int32_t> strays;
        for (const Item& item : m_at.items(row)) {
            if (const Cell& cell = m_at.cell(item.cell); !cell.fixed && !fits(cell)) {
                strays.push_back(item.cell);
            }
        }
        std::ranges::for_each(strays, [this](int32_t cell) { lift(cell); });
    }

    bool areTooClose(const Cell& left, const Cell& right) const
    {
        const int32_t gap = m_at.pairs().between(left.kind, left.state, right.kind, right.state);
        return !(left.fixed && right.fixed) && left.x + m_at.kindOf(left).width + gap > right.x;
    }

    void mendRow(int32_t row)
    {
        const std::vector<Item>& items = m_at.items(row);
        for (size_t i = 1; i < items.size();) {
            const Cell& left = m_at.cell(items[i - 1].cell);
            const Cell& right = m_at.cell(items[i].cell);
            if (!areTooClose(left, right)) {
                ++i;
                continue;
            }
            if (const std::optional<size_t> first = arrangeAround(row, i)) {
                i = std::max<size_t>(1, *first);
                continue;
            }
            const bool leavesRight =
                left.fixed || (!right.fixed && widthOf(items[i].cell) <= widthOf(items[i - 1].cell));
            lift(items[leavesRight ? i : i - 1].cell);
            i = std::max<size_t>(1, i - 1);
        }
    }

    /// Arranges the cells around a conflict of a rank and the one before. @return the first rank that moved
    std::optional<size_t> arrangeAround(int32_t row, size_t rank)
    {
        const std::vector<Item>& items = m_at.items(row);
        const size_t middle = m_at.cell(items[rank].cell).fixed ? rank - 1 : rank;
        const Run* const run = m_at.runAt(row, items[middle].x);
        const int32_t end = run->x + run->sites * m_model.step;
        const auto mayMove = [&](size_t i) {
            return !m_at.cell(items[i].cell).fixed && items[i].x >= run->x && items[i].x < end;
        };
        size_t first = middle;
        size_t last = middle + 1;
        for (; first > 0 && middle - first < BESIDE && mayMove(first - 1); --first) {
        }
        for (; last < items.size() && last - middle < BESIDE && mayMove(last); ++last) {
        }
        Proposal proposal{.gain = NOTHING};
        m_mover.arrange(row, first, last, OrderedProgram::MOST_SITES, proposal);
        if (proposal.gain == NOTHING || !m_at.keepsDistance(proposal.changes)) {
            return {};
        }
        m_at.apply(proposal.changes, ++m_now);
        return first;
    }

    /// Puts a cell where that costs least: in its own row and in others, nearer ones first.
    bool settle(int32_t cell)
    {
        Proposal best{.gain = NOTHING};
        for (const int32_t beside : {3, 12, 48, std::numeric_limits<int32_t>::max()}) {
            const Limits limits{.slots = 4, .beside = beside, .sites = OrderedProgram::MOST_SITES};
            settleWithin(cell, limits, best);
            if (best.gain != NOTHING && m_at.keepsDistance(best.changes)) {
                m_at.apply(best.changes, ++m_now);
                return true;
            }
        }
        return false;
    }

    void settleWithin(int32_t cell, const Limits& limits, Proposal& best)
    {
        const int32_t x = m_at.startX(cell);
        const int32_t y = m_at.startY(cell);
        forRowsFrom(m_at.cell(cell).row, [&](int32_t row) {
            const int64_t climb = std::abs(int64_t{m_at.yOf(row)} - y);
            if (best.gain != NOTHING && -climb * m_at.displacementWeight() <= best.gain) {
                return false;
            }
            m_mover.settle(cell, row, x, limits, best);
            return true;
        });
    }

    /// Calls work(row) for all rows, the nearest first, until it returns false for one on each side.
    template <typename Work>
    void forRowsFrom(int32_t row, Work work)
    {
        const auto count = static_cast<int32_t>(m_model.rows.size());
        bool isUpOpen = true;
        bool isDownOpen = true;
        for (int32_t k = 0; isUpOpen || isDownOpen; ++k) {
            isUpOpen = isUpOpen && row + k < count && work(row + k);
            isDownOpen = isDownOpen && row - k - 1 >= 0 && work(row - k - 1);
        }
    }

    /// Free sites of a run, in units.
    int32_t roomIn(const Run& run) const
    {
        int32_t room = run.sites * m_model.step;
        const std::vector<Item>& items = m_at.items(run.row);
        for (size_t i = m_at.rankFrom(run.row, run.x);
             i < items.size() && items[i].x < run.x + run.sites * m_model.step; ++i) {
            room -= widthOf(items[i].cell);
        }
        return room;
    }

    bool hasRoom(int32_t cell) const
    {
        return std::ranges::any_of(m_model.runs, [&](const Run& run) {
            return run.fence == m_at.cell(cell).fence && roomIn(run) >= widthOf(cell);
        });
    }

    /// Puts a cell where a narrower one leaves. @return who left, -1 if there is none
    int32_t exchange(int32_t cell)
    {
        const int32_t width = widthOf(cell);
        int32_t left = -1;
        int32_t rows = 0;
        forRowsFrom(m_at.cell(cell).row, [&](int32_t row) {
            for (const Run& run : m_at.runs(row)) {
                left = left < 0 && run.fence == m_at.cell(cell).fence
                           ? exchangeIn(cell, run, width - roomIn(run))
                           : left;
            }
            return left < 0 && ++rows < EXCHANGED_ROWS;
        });
        return left;
    }

    /// @param lacking  width that a cell must have to make enough room by leaving
    int32_t exchangeIn(int32_t cell, const Run& run, int32_t lacking)
    {
        std::vector<std::pair<int32_t, int32_t>> candidates; // distance, cell
        for (const Item& item : m_at.items(run.row)) {
            const Cell& other = m_at.cell(item.cell);
            if (!other.fixed && item.x >= run.x && item.x < run.x + run.sites * m_model.step &&
                widthOf(item.cell) >= lacking && widthOf(item.cell) < widthOf(cell)) {
                candidates.emplace_back(std::abs(item.x - m_at.startX(cell)), item.cell);
            }
        }
        if (candidates.empty()) {
            return -1;
        }
        const int32_t other = std::ranges::min_element(candidates)->second;
        const Cell before = m_at.cell(other);
        m_at.lift(other);
        Proposal best{.gain = NOTHING};
        const Limits limits{
            .slots = 4, .beside = std::numeric_limits<int32_t>::max(), .sites = OrderedProgram::MOST_SITES};
        m_mover.settle(cell, run.row, before.x, limits, best);
        const Change back{other, before.row, before.x, before.state};
        const bool isPossible = best.gain != NOTHING && m_at.keepsDistance(best.changes);
        m_at.apply(isPossible ? best.changes : std::vector<Change>{back}, ++m_now);
        return isPossible ? other : -1;
    }

    Model& m_model;
    Options m_options;
    Placement m_at;
    Mover m_mover;
    std::vector<int32_t> m_lifted;
    uint32_t m_now = 1;
};

} // namespace

std::vector<Homeless> legalize(Model& model)
{
    return Legalizer(model).run();
}

} // namespace refine
