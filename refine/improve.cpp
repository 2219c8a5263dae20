// SPDX-License-Identifier: BSD-3-Clause
#include "refine/improve.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>

#include "refine/moves.h"
#include "refine/placement.h"

namespace refine {

namespace {

using Clock = std::chrono::steady_clock;

/// One run.
class Improver {
public:
    Improver(Model& model, const Options& options, const Hooks& hooks)
        : m_model(model), m_options(options), m_hooks(hooks), m_at(model), m_mover(m_at, options),
          m_tried(model.cells.size() * MOVES, 0)
    {
    }

    Result run()
    {
        Result result;
        result.wirelengthBefore = wirelength(m_model);
        const int32_t passes = m_options.effort == 0 ? 0 : m_options.effort < 9 ? m_options.effort : 1000;
        int64_t last = result.wirelengthBefore;
        for (int32_t pass = 0; pass < passes; ++pass) {
            m_pass = {};
            int32_t amp = 0;
            if (const char* e = getenv("AMP")) { int a=0,n=1; sscanf(e, "%d,%d", &a, &n); amp = pass < n ? a * (n - pass) / n : 0; if (pass<=n) { m_tried.assign(m_tried.size(), 0);} if (pass <= n) m_passForced = true; else m_passForced=false; }
            m_at.noise(amp, static_cast<uint32_t>(pass));
            timed(Move::ROW, [&] { rowPass(); });
            timed(Move::REORDER, [&] { reorderPass(); });
            timed(Move::INSERT, [&] { insertPass(); });
            timed(Move::SWAP, [&] { swapPass(); });
            m_pass.wirelength = wirelength(m_model);
            result.passes.push_back(m_pass);
            if (!m_passForced && last - m_pass.wirelength < last / 10000) {
                break;
            }
            last = m_pass.wirelength;
        }
        result.wirelengthAfter = wirelength(m_model);
        return result;
    }

private:
    template <typename Work>
    void timed(Move move, Work work)
    {
        const Clock::time_point begin = Clock::now();
        m_figures = &m_pass.moves[static_cast<int32_t>(move)];
        m_move = move;
        work();
        m_figures->seconds = std::chrono::duration<double>(Clock::now() - begin).count();
    }

    /// Whether a cell or what it depends on has changed since this move tried it.
    bool isDue(int32_t cell)
    {
        return m_at.touched(cell) > m_tried[static_cast<size_t>(cell) * MOVES + static_cast<size_t>(m_move)];
    }

    void wasTried(int32_t cell)
    {
        m_tried[static_cast<size_t>(cell) * MOVES + static_cast<size_t>(m_move)] = m_now;
    }

    void take(Proposal& proposal)
    {
        ++m_figures->tried;
        if (proposal.gain > 0) {
            ++m_figures->taken;
            m_figures->gain += proposal.gain;
#ifdef CHECK
            std::string old;
            { auto& items = m_at.items(proposal.changes[0].row);
                for (auto& i : items) old += " [" + std::to_string(i.cell) + " " + std::to_string(i.x) + "]"; 
                for (auto& r : m_at.runs(proposal.changes[0].row)) old += " run " + std::to_string(r.x) + " " + std::to_string(r.sites);
                }
#endif
            m_at.apply(proposal.changes, ++m_now);
#ifdef CHECK
            static int64_t known = -1;
            const int64_t now = wirelength(m_model);
            Violations v = violationsOf(m_model);
            if (v.sum() != 0 || (known >= 0 && m_options.stitchPrice == 0 && known - now != proposal.gain)) {
                printf("move %d gain %ld true %ld viol %ld\n", (int)m_move, (long)proposal.gain, (long)(known-now), (long)v.sum());
                for (auto& c : proposal.changes) {
                    printf(" cell %d row %d x %d w %d state %d\n", c.cell, c.row, c.x, m_at.kindOf(m_at.cell(c.cell)).width, c.state);
                }
                auto& items = m_at.items(proposal.changes[0].row);
                for (auto& i : items) printf(" [%d %d %d%s]", i.cell, i.x, i.x + m_at.kindOf(m_at.cell(i.cell)).width, m_at.cell(i.cell).fixed ? " F" : "");
                puts(old.c_str()); exit(1);
            }
            known = now;
#endif
        }
        proposal.gain = 0;
        proposal.changes.clear();
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

    void rowPass()
    {
        constexpr size_t CHUNK = 24;
        forStretches([&](int32_t row, size_t begin, size_t end) {
            for (size_t i = begin; i < end; i += CHUNK / 2) {
                const size_t last = std::min(end, i + CHUNK);
                const std::vector<Item>& items = m_at.items(row);
                if (std::none_of(items.begin() + static_cast<std::ptrdiff_t>(i),
                                 items.begin() + static_cast<std::ptrdiff_t>(last),
                                 [&](const Item& item) { return isDue(item.cell); })) {
                    continue;
                }
                m_mover.arrange(row, i, last, OrderedProgram::MOST_SITES, m_proposal);
                take(m_proposal);
                for (size_t k = i; k < last; ++k) {
                    wasTried(items[k].cell);
                }
                if (last == end) {
                    break;
                }
            }
        });
    }

    void reorderPass()
    {
        constexpr size_t CHUNK = 3;
        forStretches([&](int32_t row, size_t begin, size_t end) {
            for (size_t i = begin; i + CHUNK <= end; ++i) {
                const std::vector<Item>& items = m_at.items(row);
                if (!isDue(items[i].cell) && !isDue(items[i + 1].cell) && !isDue(items[i + 2].cell)) {
                    continue;
                }
                m_mover.reorder(row, i, i + CHUNK, m_proposal);
                wasTried(items[i].cell);
                take(m_proposal);
            }
        });
    }

    void insertPass()
    {
        Limits limits;
        if (const char* e = getenv("LIM")) sscanf(e, "%d,%d,%d,%d", &limits.rows, &limits.slots, &limits.beside, &limits.sites);
        const auto count = static_cast<int32_t>(m_model.cells.size());
        for (int32_t cell = 0; cell < count; ++cell) {
            if (m_at.cell(cell).fixed || !isDue(cell)) {
                continue;
            }
            wasTried(cell);
            m_mover.insert(cell, limits, m_proposal);
            take(m_proposal);
        }
    }

    void swapPass()
    {
        Limits limits;
        if (const char* e = getenv("LIMS")) sscanf(e, "%d,%d,%d,%d", &limits.rows, &limits.slots, &limits.beside, &limits.sites);
        const auto count = static_cast<int32_t>(m_model.cells.size());
        for (int32_t cell = 0; cell < count; ++cell) {
            if (m_at.cell(cell).fixed || !isDue(cell)) {
                continue;
            }
            wasTried(cell);
            m_mover.swap(cell, limits, m_proposal);
            take(m_proposal);
        }
    }

    Model& m_model;
    const Options& m_options;
    const Hooks& m_hooks;
    Placement m_at;
    Mover m_mover;
    std::vector<uint32_t> m_tried; ///< [cell][move] when a move last tried the cell
    uint32_t m_now = 1;
    Pass m_pass;
    bool m_passForced = false;
    MoveFigures* m_figures = nullptr;
    Move m_move = Move::ROW;
    Proposal m_proposal;
};

} // namespace

Result improve(Model& model, const Options& options, const Hooks& hooks)
{
    if (const std::string fault = faultOf(model); !fault.empty()) {
        throw std::invalid_argument(fault);
    }
    return Improver(model, options, hooks).run();
}

} // namespace refine
