// SPDX-License-Identifier: BSD-3-Clause
#include "refine/improve.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <limits>
#include <stdexcept>

#include "refine/crew.h"
#include "refine/legalize.h"
#include "refine/moves.h"
#include "refine/placement.h"

namespace refine {

namespace {

using Clock = std::chrono::steady_clock;

/// What a move is to be tried with: a cell, or ranks in a row.
struct Task {
    int32_t cell = 0; ///< the cell, or the first one of the ranks
    int32_t row = 0;
    size_t first = 0; ///< rank
    size_t last = 0;  ///< behind the last rank
};

/// One run.
///
/// Tasks go in batches. All tasks of a batch look for a proposal in the placement as it is before the batch,
/// side by side. Then the proposals are carried out one after the other, as far as those before have left
/// them possible and good. So the result is the same for any number of threads.
class Improver {
public:
    Improver(Model& model, const Options& options, const Hooks& hooks)
        : m_model(model), m_options(options), m_hooks(hooks), m_at(model), m_crew(options.jobs),
          m_tried(model.cells.size() * MOVES, 0),
          m_batch(std::clamp<size_t>(model.cells.size() / 512, 8, 256))
    {
        const int64_t price = std::clamp<int64_t>(options.displacementPrice, 0, MOST_PRICE);
        m_at.setDisplacementWeight(
            static_cast<int32_t>((price * m_at.parts() + Options::PRICE_PARTS - 1) / Options::PRICE_PARTS));
        for (int32_t i = 0; i < m_crew.size(); ++i) {
            m_movers.emplace_back(m_at, options);
        }
        m_tasks.reserve(m_batch);
        m_proposals.resize(2 * m_batch);
        m_again.reserve(m_batch);
    }

    Result run()
    {
        Result result;
        result.wirelengthBefore = wirelength(m_model);
        result.stitchesBefore = stitches();
        remember();
        const Plan plan = planOf(m_options.effort, m_model.cells.size());
        for (int32_t pass = 0; pass - plan.bent < plan.straight && !m_stopped; ++pass) {
            const int64_t before = m_bestCost;
            m_pass = {};
            m_passNumber = pass;
            bend(pass, plan);
            runPass();
            m_pass.wirelength = wirelength(m_model);
            m_pass.stitches = stitches();
            result.passes.push_back(m_pass);
            remember();
            if (pass >= plan.bent && before - m_bestCost <= before / LEAST_SHARE) {
                break;
            }
        }
        if (cost() > m_bestCost) {
            m_model.cells = m_best;
        }
        result.wirelengthAfter = wirelength(m_model);
        result.stitchesAfter = stitches();
        result.stopped = m_stopped;
        return result;
    }

private:
    static constexpr int64_t MOST_PRICE = int64_t{MOST_WEIGHT} * Options::PRICE_PARTS;
    static constexpr auto TELL_EVERY = std::chrono::milliseconds(100);
    static constexpr int64_t LEAST_SHARE = 20'000; ///< a pass that gains less than this part is the last

    /// How many passes there are.
    struct Plan {
        int32_t bent = 0;     ///< with bent weights
        int32_t straight = 1; ///< at most, without
    };

    static Plan planOf(int32_t effort, size_t cells)
    {
        static constexpr Plan PLANS[Options::MOST_EFFORT] = {{0, 0}, {0, 1}, {0, 1}, {0, 1}, {1, 1},
                                                             {2, 2}, {3, 3}, {5, 5}, {8, 8}};
        constexpr size_t BENT_CELLS = 150'000; // tries that bending is worth
        constexpr int32_t MOST_BENT = 60;
        if (effort < Options::MOST_EFFORT) {
            return PLANS[effort];
        }
        const size_t bent = BENT_CELLS / std::max<size_t>(cells, 1);
        return {static_cast<int32_t>(std::min<size_t>(bent, MOST_BENT)), std::numeric_limits<int32_t>::max()};
    }

    /// Bends the weights for a pass, less from pass to pass: what is better by other weights leads out of
    /// places where nothing is better by the true ones (the noising method, Charon and Hudry, 1993).
    void bend(int32_t pass, const Plan& plan)
    {
        if (pass <= plan.bent && plan.bent > 0) {
            const int32_t most = m_at.parts() / 2 * (plan.bent - pass) / plan.bent;
            m_at.bendWeights(most, static_cast<uint64_t>(pass));
            std::ranges::fill(m_tried, 0);
        }
    }

    void runPass()
    {
        timed(Move::INSERT, [&] { cellPass(); });
        if (m_options.effort > 1) {
            timed(Move::SWAP, [&] { cellPass(); });
        }
        timed(Move::ROW, [&] { rowPass(); });
        timed(Move::REORDER, [&] { reorderPass(); });
    }

    int64_t stitches() const
    {
        int64_t sum = 0;
        for (const Cell& cell : m_model.cells) {
            sum += m_at.stateOf(cell).stitches;
        }
        return sum;
    }

    /// The objective by the true weights, in parts.
    int64_t cost() const
    {
        int64_t displacement = 0;
        for (int32_t i = 0; i < static_cast<int32_t>(m_model.cells.size()); ++i) {
            const Cell& cell = m_at.cell(i);
            displacement += std::abs(int64_t{cell.x} - m_at.startX(i)) +
                            std::abs(int64_t{m_at.yOf(cell.row)} - m_at.startY(i));
        }
        return m_at.parts() * (wirelength(m_model) +
                               std::min(m_options.stitchPrice, Options::MOST_STITCH_PRICE) * stitches()) +
               m_at.displacementWeight() * displacement;
    }

    void remember()
    {
        if (const int64_t now = cost(); m_best.empty() || now < m_bestCost) {
            m_bestCost = now;
            m_best = m_model.cells;
            m_bestWirelength = wirelength(m_model);
        }
    }

    template <typename Work>
    void timed(Move move, Work work)
    {
        const Clock::time_point begin = Clock::now();
        m_figures = &m_pass.moves[static_cast<int32_t>(move)];
        m_move = move;
        work();
        while (!m_tasks.empty()) {
            carryOut();
        }
        m_figures->gain /= m_at.parts();
        m_figures->seconds = std::chrono::duration<double>(Clock::now() - begin).count();
    }

    uint32_t& triedOf(int32_t cell)
    {
        return m_tried[static_cast<size_t>(cell) * MOVES + static_cast<size_t>(m_move)];
    }

    /// Whether a cell or what it depends on has changed since this move tried it.
    bool isDue(int32_t cell) { return m_at.touched(cell) > triedOf(cell); }

    void add(const Task& task)
    {
        m_tasks.push_back(task);
        if (m_tasks.size() >= m_batch) {
            carryOut();
        }
    }

    /// Calls the hook, if it is time to.
    void tell()
    {
        const Clock::time_point now = Clock::now();
        if (m_hooks.onProgress && now - m_told > TELL_EVERY) {
            m_told = now;
            const double done =
                static_cast<double>(m_figures->tried) / static_cast<double>(m_model.cells.size());
            const double share = (static_cast<double>(m_move) + std::min(done, 1.0)) / MOVES;
            m_stopped = m_stopped || !m_hooks.onProgress(m_passNumber, share, m_bestWirelength);
        }
    }

    /// Does the tasks of a batch.
    void carryOut()
    {
        tell();
        if (m_stopped) {
            m_tasks.clear();
            return;
        }
        const uint32_t since = m_now;
        m_crew.run(m_tasks.size(), [&](size_t worker, size_t i) {
            Proposal& proposal = m_proposals[i];
            proposal.gain = 0;
            propose(m_movers[worker], m_tasks[i], proposal);
        });
        for (size_t i = 0; i < m_tasks.size(); ++i) {
            Proposal& proposal = m_proposals[i];
            ++m_figures->tried;
            for (size_t rank = m_tasks[i].first; rank < m_tasks[i].last; ++rank) {
                triedOf(m_at.items(m_tasks[i].row)[rank].cell) = since;
            }
            triedOf(m_tasks[i].cell) = since;
            if (proposal.gain <= 0) {
                continue;
            }
            if (m_now != since) {
                proposal.gain =
                    m_movers.front().isPossible(proposal, since) ? m_movers.front().gainOf(proposal) : 0;
            }
            if (proposal.gain > 0 && !m_at.keepsDistance(proposal.changes)) {
                continue; // it has looked at next neighbours only
            }
            if (proposal.gain > 0) {
                ++m_figures->taken;
                m_figures->gain += proposal.gain;
                m_at.apply(proposal.changes, ++m_now);
            } else {
                m_again.push_back(m_tasks[i]);
            }
        }
        m_tasks.clear();
        std::swap(m_tasks, m_again);
    }

    void propose(Mover& mover, const Task& task, Proposal& proposal) const
    {
        Limits limits;
        if (m_options.effort < 3) {
            limits.rows = 2;
            limits.slots = 2;
        }
        switch (m_move) {
        case Move::ROW:
            mover.arrange(task.row, task.first, task.last, OrderedProgram::MOST_SITES, proposal);
            break;
        case Move::REORDER:
            mover.reorder(task.row, task.first, task.last, proposal);
            break;
        case Move::INSERT:
            mover.insert(task.cell, limits, proposal);
            break;
        case Move::SWAP:
            mover.swap(task.cell, limits, proposal);
            break;
        }
    }

    /// Calls work(row, first, last) for what may move side by side.
    template <typename Work>
    void forStretches(Work work)
    {
        for (int32_t row = 0; row < static_cast<int32_t>(m_model.rows.size()); ++row) {
            const std::vector<Item>& items = m_at.items(row);
            for (size_t i = 0; i < items.size();) {
                const Run* const run = m_at.runAt(row, items[i].x);
                if (m_at.cell(items[i].cell).fixed || run == nullptr) {
                    ++i;
                    continue;
                }
                size_t last = i;
                while (last < items.size() && !m_at.cell(items[last].cell).fixed &&
                       items[last].x < run->x + run->sites * m_model.step) {
                    ++last;
                }
                work(row, i, last);
                i = last;
            }
        }
    }

    /// Adds the ranks from first to last as a task, unless none of the cells is due.
    void addRanks(int32_t row, size_t first, size_t last)
    {
        const std::vector<Item>& items = m_at.items(row);
        for (size_t i = first; i < last; ++i) {
            if (isDue(items[i].cell)) {
                add({items[first].cell, row, first, last});
                return;
            }
        }
    }

    void rowPass()
    {
        constexpr size_t CHUNK = 24;
        for (const size_t offset : {size_t{0}, CHUNK / 2}) {
            forStretches([&](int32_t row, size_t begin, size_t end) {
                for (size_t i = begin + offset; i < end; i += CHUNK) {
                    addRanks(row, i, std::min(end, i + CHUNK));
                }
            });
            while (!m_tasks.empty()) {
                carryOut();
            }
        }
    }

    void reorderPass()
    {
        constexpr size_t CHUNK = 3;
        for (size_t offset = 0; offset < CHUNK; ++offset) {
            forStretches([&](int32_t row, size_t begin, size_t end) {
                for (size_t i = begin + offset; i + CHUNK <= end; i += CHUNK) {
                    addRanks(row, i, i + CHUNK);
                }
            });
            while (!m_tasks.empty()) {
                carryOut();
            }
        }
    }

    /// The cells of a batch come from all over the design: those with numbers side by side are often near
    /// each other, and in each other's way.
    void cellPass()
    {
        const size_t count = m_model.cells.size();
        const size_t stride = (count + m_batch - 1) / m_batch;
        for (size_t first = 0; first < stride; ++first) {
            for (size_t i = first; i < count; i += stride) {
                const auto cell = static_cast<int32_t>(i);
                if (!m_at.cell(cell).fixed && isDue(cell)) {
                    add({.cell = cell});
                }
            }
        }
    }

    Model& m_model;
    const Options& m_options;
    const Hooks& m_hooks;
    Placement m_at;
    Crew m_crew;
    std::vector<Mover> m_movers;   ///< [worker]
    std::vector<uint32_t> m_tried; ///< [cell][move] when a move last tried the cell
    size_t m_batch;                ///< tasks: the larger the design, the less they are in each other's way
    uint32_t m_now = 1;
    std::vector<Task> m_tasks;
    std::vector<Task> m_again;         ///< others of the batch were in their way
    std::vector<Proposal> m_proposals; ///< [task]
    std::vector<Cell> m_best;
    int64_t m_bestCost = 0;
    int64_t m_bestWirelength = 0;
    Clock::time_point m_told = Clock::now();
    int32_t m_passNumber = 0;
    Pass m_pass;
    MoveFigures* m_figures = nullptr;
    Move m_move = Move::ROW;
    bool m_stopped = false;
};

} // namespace

Result improve(Model& model, const Options& options, const Hooks& hooks)
{
    if (const std::string fault = faultOf(model); !fault.empty()) {
        throw std::invalid_argument(fault);
    }
    std::vector<Homeless> homeless;
    int64_t legalized = 0;
    if (options.effort > 0 && violationsOf(model).sum() > 0) {
        const std::vector<Cell> before = model.cells;
        homeless = legalize(model);
        for (size_t i = 0; i < before.size(); ++i) {
            const Cell& now = model.cells[i];
            legalized +=
                before[i].x != now.x || before[i].row != now.row || before[i].state != now.state ? 1 : 0;
        }
    }
    Result result = Improver(model, options, hooks).run();
    if (!homeless.empty() && violationsOf(model).sum() > 0) {
        result.homeless = std::move(homeless);
    }
    result.legalized = legalized;
    return result;
}

} // namespace refine
