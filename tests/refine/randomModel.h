// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <rapidcheck/Log.h>

#include <cstdint>
#include <vector>

#include "refine/naive.h"
#include "support/property.h"

namespace test {

/// What random models may have.
struct Variety {
    int32_t rows = 3;
    int32_t runs = 2;  ///< of a row
    int32_t sites = 8; ///< of a run
    int32_t cells = 7;
    int32_t states = 4;     ///< of a kind
    bool fixed = true;      ///< cells that stay
    bool wideFixed = false; ///< which are so wide and so far apart that cells on two sides never meet
    bool negative = true;   ///< gaps below 0, beside cells that stay
    bool narrow = true;     ///< cells narrower than the widest gap
    bool spaced = false;    ///< neighbours are apart by spacing()
    bool fences = true;
};

/// Draws a model, with few distinct values, so that ties abound. All cells stand legally.
class RandomModel {
public:
    explicit RandomModel(const Variety& variety) : m_may(variety)
    {
        m_may.negative &= !m_may.wideFixed || oneIn(2);
        model.step = draw(1, 4);
        addViews();
        addRows();
        addKinds();
        addCells();
        addNets();
        if (oneIn(3)) {
            for (const refine::Cell& cell : model.cells) {
                model.startX.push_back(cell.x + draw(-4, 5));
                model.startY.push_back(model.rows[static_cast<size_t>(cell.row)].y + draw(-4, 5));
            }
        }
    }

    refine::Model model;

private:
    static constexpr int32_t HEIGHT = 6; ///< of rows, units

    /// A number of a range, all of them equally likely in every case: of small numbers alone few would make
    /// models that have anything to improve.
    static int32_t pick(int32_t least, int32_t beyond)
    {
        return least + static_cast<int32_t>(drawIndex(static_cast<size_t>(beyond - least)));
    }

    /// True in one of `of` cases, and never if it may not be.
    static bool oneIn(int32_t of, bool may = true) { return may && pick(0, of) == of - 1; }

    void addViews()
    {
        m_moving = pick(1, 4);
        model.views = m_moving + (m_may.fixed ? pick(0, 2) : 0);
        for (int32_t right = 0; right < model.views; ++right) {
            for (int32_t left = 0; left < model.views; ++left) {
                const bool mayBeNegative = m_may.negative && (right >= m_moving || left >= m_moving);
                model.gaps.push_back(pick(0, 3) * pick(0, model.step + 1));
                if (oneIn(2, mayBeNegative)) {
                    model.gaps.back() *= -1;
                }
            }
        }
    }

    void addRows()
    {
        int32_t y = draw(-5, 5);
        for (int32_t row = pick(1, m_may.rows + 1); row > 0; --row) {
            int32_t x = draw(-5, 6);
            for (int32_t run = pick(1, m_may.runs + 1); run > 0; --run) {
                const int32_t sites = pick((m_may.sites + 1) / 2, m_may.sites + 1);
                model.runs.push_back(
                    {static_cast<int32_t>(model.rows.size()), x, sites, oneIn(4, m_may.fences) ? 1 : 0});
                x += sites * model.step + pick(0, 2 * model.step + 1);
            }
            model.rows.push_back({y, oneIn(2)});
            y += HEIGHT + draw(0, 3);
        }
    }

    void addKinds()
    {
        // A cell that stands over the edge of a fixed one still keeps the next cell away from it.
        const int32_t needed = m_may.wideFixed && m_may.negative ? 2 * widestGap(model)
                               : m_may.narrow                    ? 1
                                                                 : std::max(1, widestGap(model));
        const int32_t least = std::max(1, (needed + model.step - 1) / model.step);
        m_movingKinds = pick(1, 4);
        for (int32_t kind = m_movingKinds; kind > 0; --kind) {
            addKind(model.step * pick(least, std::max(4, least + 1)), m_moving);
        }
        for (int32_t kind = m_may.fixed ? pick(1, 3) : 0; kind > 0; --kind) {
            const int32_t wide = m_may.wideFixed ? 3 * widestGap(model) : 0;
            addKind(pick(wide + 1, wide + 3 * model.step + 1), model.views);
        }
        model.kinds.push_back(
            {0, 1, static_cast<int32_t>(model.states.size()), static_cast<int32_t>(model.kindPins.size())});
    }

    void addKind(int32_t width, int32_t views)
    {
        model.kinds.push_back({width, 1, static_cast<int32_t>(model.states.size()),
                               static_cast<int32_t>(model.kindPins.size())});
        const int32_t states = pick(1, m_may.states + 1);
        for (int32_t state = 0; state < states; ++state) {
            model.states.push_back({pick(0, views), pick(0, views), draw(0, 3), state, oneIn(2)});
        }
        for (int32_t pin = pick(0, 4); pin > 0; --pin) {
            const int32_t x = pick(0, width + 1);
            const int32_t y = pick(0, HEIGHT + 1);
            model.kindPins.push_back({x, width - x, y, HEIGHT - y});
        }
    }

    void addCells()
    {
        const auto kinds = static_cast<int32_t>(model.kinds.size()) - 1;
        for (int32_t count = pick(1, m_may.cells + 1); count > 0; --count) {
            const refine::Run& run = model.runs[drawIndex(model.runs.size())];
            refine::Cell cell{.row = run.row, .fence = run.fence, .fixed = oneIn(5, m_may.fixed)};
            cell.kind =
                cell.fixed ? pick(m_may.wideFixed ? m_movingKinds : 0, kinds) : pick(0, m_movingKinds);
            cell.state = pick(0, model.stateCount(cell.kind));
            std::vector<int32_t> places;
            for (cell.x = run.x - 3; cell.x < run.x + run.sites * model.step + 3; ++cell.x) {
                if (fits(cell)) {
                    places.push_back(cell.x);
                }
            }
            if (!places.empty()) {
                cell.x = places[drawIndex(places.size())];
                model.cells.push_back(cell);
            }
        }
    }

    bool fits(const refine::Cell& cell)
    {
        if (!cell.fixed && !isOnSites(model, cell)) {
            return false;
        }
        return std::ranges::all_of(model.cells, [&](const refine::Cell& other) {
            const bool isLeft = cell.x < other.x;
            const refine::Cell& left = isLeft ? cell : other;
            const refine::Cell& right = isLeft ? other : cell;
            if (m_may.wideFixed && cell.row == other.row && cell.fixed && other.fixed &&
                right.x < endOf(model, left)) {
                return false;
            }
            return areApart(model, left, right) &&
                   (!m_may.spaced || left.row != right.row || (left.fixed && right.fixed) ||
                    right.x >= endOf(model, left) + spacing(model, left, right));
        });
    }

    void addNets()
    {
        for (int32_t nets = pick(0, 6); nets > 0; --nets) {
            refine::Net net{draw(1, 4), static_cast<int32_t>(model.pins.size())};
            if (oneIn(3)) {
                net.xl = draw(-8, 24);
                net.xh = net.xl + draw(0, 9);
                net.yl = draw(-8, 24);
                net.yh = net.yl + draw(0, 9);
            }
            for (int32_t pins = model.cells.empty() ? 0 : pick(0, 5); pins > 0; --pins) {
                const auto cell = static_cast<int32_t>(drawIndex(model.cells.size()));
                const auto kind = static_cast<size_t>(model.cells[static_cast<size_t>(cell)].kind);
                const int32_t count = model.kinds[kind + 1].pinBegin - model.kinds[kind].pinBegin;
                if (count > 0) {
                    model.pins.push_back({cell, pick(0, count)});
                }
            }
            model.nets.push_back(net);
        }
        model.nets.push_back({1, static_cast<int32_t>(model.pins.size())});
    }

    Variety m_may;
    int32_t m_moving = 0;      ///< views of cells that move
    int32_t m_movingKinds = 0; ///< the first ones
};

/// A model with all lengths and all weights so many times as large.
inline refine::Model multiplied(refine::Model model, int32_t lengths, int32_t weights)
{
    const auto grow = [lengths](auto&... values) { ((values *= lengths), ...); };
    grow(model.step);
    for (refine::Kind& kind : model.kinds) {
        grow(kind.width);
    }
    for (refine::KindPin& pin : model.kindPins) {
        grow(pin.x, pin.mirroredX, pin.y, pin.turnedY);
    }
    for (int32_t& gap : model.gaps) {
        grow(gap);
    }
    for (refine::Row& row : model.rows) {
        grow(row.y);
    }
    for (refine::Run& run : model.runs) {
        grow(run.x);
    }
    for (refine::Cell& cell : model.cells) {
        grow(cell.x);
    }
    for (size_t i = 0; i < model.startX.size(); ++i) {
        grow(model.startX[i], model.startY[i]);
    }
    for (refine::Net& net : model.nets) {
        net.weight *= weights;
        if (net.xl <= net.xh) {
            grow(net.xl, net.yl, net.xh, net.yh);
        }
    }
    return model;
}

/// Prices, and how far cells may go.
inline refine::Options drawOptions()
{
    refine::Options options;
    options.stitchPrice = drawOne({0, 0, 1, 5, 40});
    options.displacementPrice = drawOne({0, 0, 0, 4, 32, 80});
    options.maxDisplacement = drawOne({refine::FARTHEST, refine::FARTHEST, 0, 3, 10});
    return options;
}

/// A place of a cell, anywhere in the rows: off the sites, over others; never at the x of another.
inline refine::Change drawChange(const refine::Model& model, int32_t cell,
                                 std::span<const refine::Change> others)
{
    refine::Change result{cell, draw(0, static_cast<int32_t>(model.rows.size())), draw(-5, 25),
                          draw(0, model.stateCount(model.cells[static_cast<size_t>(cell)].kind))};
    const auto isTaken = [&] {
        const auto isAt = [&](const auto& at) { return at.row == result.row && at.x == result.x; };
        return std::ranges::any_of(model.cells, isAt) || std::ranges::any_of(others, isAt);
    };
    while (isTaken()) {
        ++result.x;
    }
    return result;
}

/// A random model whose cells stand anywhere.
inline refine::Model scattered(const Variety& variety)
{
    refine::Model model = RandomModel(variety).model;
    for (size_t i = 0; i < model.cells.size(); ++i) {
        if (model.cells[i].fixed && variety.wideFixed) {
            continue; // it would meet others
        }
        change(model, std::vector{drawChange(model, static_cast<int32_t>(i), {})});
    }
    RC_LOG() << textOf(model);
    return model;
}

} // namespace test
