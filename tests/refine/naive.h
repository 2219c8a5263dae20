// SPDX-License-Identifier: BSD-3-Clause
// What a model is worth and whether it is legal, counted without any of the engine's shortcuts.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <span>
#include <string>
#include <vector>

#include "refine/improve.h"
#include "refine/model.h"
#include "refine/placement.h"

namespace test {

inline const refine::Kind& kindOf(const refine::Model& model, const refine::Cell& cell)
{
    return model.kinds[static_cast<size_t>(cell.kind)];
}

inline const refine::State& stateOf(const refine::Model& model, const refine::Cell& cell)
{
    return model.states[static_cast<size_t>(kindOf(model, cell).stateBegin + cell.state)];
}

/// Right edge, units.
inline int32_t endOf(const refine::Model& model, const refine::Cell& cell)
{
    return cell.x + kindOf(model, cell).width;
}

/// The gap of two cells side by side, units.
inline int32_t gapBetween(const refine::Model& model, const refine::Cell& left, const refine::Cell& right)
{
    return model.gaps[static_cast<size_t>(stateOf(model, left).right) * static_cast<size_t>(model.views) +
                      static_cast<size_t>(stateOf(model, right).left)];
}

inline int32_t widestGap(const refine::Model& model)
{
    return model.gaps.empty() ? 0 : *std::ranges::max_element(model.gaps);
}

/// Half perimeter of a net's box, units.
inline int64_t lengthOf(const refine::Model& model, size_t net)
{
    const refine::Net& at = model.nets[net];
    std::vector<int64_t> xs;
    std::vector<int64_t> ys;
    if (at.xl <= at.xh) {
        xs = {at.xl, at.xh};
        ys = {at.yl, at.yh};
    }
    for (int32_t i = at.pinBegin; i < model.nets[net + 1].pinBegin; ++i) {
        const refine::Pin& pin = model.pins[static_cast<size_t>(i)];
        const refine::Cell& cell = model.cells[static_cast<size_t>(pin.cell)];
        const refine::Row& row = model.rows[static_cast<size_t>(cell.row)];
        const refine::KindPin& offset =
            model.kindPins[static_cast<size_t>(kindOf(model, cell).pinBegin + pin.kindPin)];
        xs.push_back(cell.x + (stateOf(model, cell).mirrored ? offset.mirroredX : offset.x));
        ys.push_back(row.y + (row.turned ? offset.turnedY : offset.y));
    }
    if (xs.empty()) {
        return 0;
    }
    return *std::ranges::max_element(xs) - *std::ranges::min_element(xs) + *std::ranges::max_element(ys) -
           *std::ranges::min_element(ys);
}

inline int64_t stitchesOf(const refine::Model& model)
{
    int64_t stitches = 0;
    for (const refine::Cell& cell : model.cells) {
        stitches += stateOf(model, cell).stitches;
    }
    return stitches;
}

/// Where the displacement of cells is measured from, units.
struct Starts {
    std::vector<int32_t> x; ///< [cell]
    std::vector<int32_t> y; ///< [cell]

    explicit Starts(const refine::Model& model) : x(model.startX), y(model.startY)
    {
        for (size_t i = x.size(); i < model.cells.size(); ++i) {
            x.push_back(model.cells[i].x);
        }
        for (size_t i = y.size(); i < model.cells.size(); ++i) {
            y.push_back(model.rows[static_cast<size_t>(model.cells[i].row)].y);
        }
    }

    /// |dx| + |dy| of a cell.
    int64_t displacementOf(const refine::Model& model, size_t cell) const
    {
        const refine::Cell& at = model.cells[cell];
        return std::abs(int64_t{at.x} - x[cell]) +
               std::abs(int64_t{model.rows[static_cast<size_t>(at.row)].y} - y[cell]);
    }
};

/// What arrangements are compared by.
struct Objective {
    std::vector<int64_t> weights; ///< [net]
    int64_t stitchPrice = 0;
    int64_t displacementPrice = 0; ///< of a unit
    Starts starts;

    /// The true one, in thousandths.
    Objective(const refine::Model& model, const refine::Options& options)
        : stitchPrice(refine::Options::PRICE_PARTS * options.stitchPrice),
          displacementPrice(options.displacementPrice), starts(model)
    {
        for (size_t net = 0; net + 1 < model.nets.size(); ++net) {
            weights.push_back(refine::Options::PRICE_PARTS * model.nets[net].weight);
        }
    }

    /// The one of a placement, in its parts. Its cells are still where they started.
    Objective(const refine::Placement& at, const refine::Options& options)
        : stitchPrice(options.stitchPrice * at.parts()), displacementPrice(at.displacementWeight()),
          starts(at.model())
    {
        for (size_t net = 0; net + 1 < at.model().nets.size(); ++net) {
            weights.push_back(at.weightOf(static_cast<int32_t>(net)));
        }
    }

    int64_t of(const refine::Model& model) const
    {
        int64_t cost = stitchPrice * stitchesOf(model);
        for (size_t net = 0; net < weights.size(); ++net) {
            cost += weights[net] * lengthOf(model, net);
        }
        for (size_t cell = 0; cell < model.cells.size(); ++cell) {
            cost += displacementPrice * starts.displacementOf(model, cell);
        }
        return cost;
    }
};

/// Whether two cells may be where they are, both of them. Where one stays, a cell keeps to its side of it,
/// even if it may stand over its edge.
inline bool areApart(const refine::Model& model, const refine::Cell& one, const refine::Cell& other)
{
    if (one.row != other.row || (one.fixed && other.fixed)) {
        return true;
    }
    const refine::Cell& left = one.x < other.x ? one : other;
    const refine::Cell& right = one.x < other.x ? other : one;
    return left.x < right.x && right.x >= endOf(model, left) + gapBetween(model, left, right);
}

/// Whether a cell stands on sites of one run, of its fence.
inline bool isOnSites(const refine::Model& model, const refine::Cell& cell)
{
    return std::ranges::any_of(model.runs, [&](const refine::Run& run) {
        return run.row == cell.row && run.fence == cell.fence && cell.x >= run.x &&
               endOf(model, cell) <= run.x + run.sites * model.step && (cell.x - run.x) % model.step == 0;
    });
}

inline bool isLegal(const refine::Model& model)
{
    for (size_t i = 0; i < model.cells.size(); ++i) {
        const refine::Cell& cell = model.cells[i];
        if (!cell.fixed && !isOnSites(model, cell)) {
            return false;
        }
        for (size_t j = 0; j < i; ++j) {
            if (!areApart(model, cell, model.cells[j])) {
                return false;
            }
        }
    }
    return true;
}

/// What two neighbours keep between them so that pairs of cells with one between them need not be looked at,
/// units. Only kinds that move somewhere keep more than their gap.
inline int32_t spacing(const refine::Model& model, const refine::Cell& left, const refine::Cell& right)
{
    const int32_t gap = gapBetween(model, left, right);
    const int32_t width = kindOf(model, right).width;
    const bool moves = !right.fixed || std::ranges::any_of(model.cells, [&](const refine::Cell& cell) {
        return cell.kind == right.kind && !cell.fixed;
    });
    return moves && width < widestGap(model) ? std::max(gap, widestGap(model) - width) : gap;
}

/// Puts cells where changes say.
inline void change(refine::Model& model, std::span<const refine::Change> changes)
{
    for (const refine::Change& one : changes) {
        refine::Cell& cell = model.cells[static_cast<size_t>(one.cell)];
        cell.row = one.row;
        cell.x = one.x;
        cell.state = one.state;
    }
}

/// A model as text, for those who read what failed.
inline std::string textOf(const refine::Model& model)
{
    std::string text = "step " + std::to_string(model.step) + "\n";
    const auto add = [&](const char* word, std::initializer_list<int64_t> numbers) {
        text += word;
        for (const int64_t number : numbers) {
            text += ' ' + std::to_string(number);
        }
        text += '\n';
    };
    for (size_t right = 0; right < static_cast<size_t>(model.views); ++right) {
        text += "gaps of right view " + std::to_string(right) + ":";
        for (size_t left = 0; left < static_cast<size_t>(model.views); ++left) {
            text += ' ' + std::to_string(model.gaps[right * static_cast<size_t>(model.views) + left]);
        }
        text += '\n';
    }
    for (size_t k = 0; k + 1 < model.kinds.size(); ++k) {
        add("kind: width", {model.kinds[k].width});
        for (int32_t s = model.kinds[k].stateBegin; s < model.kinds[k + 1].stateBegin; ++s) {
            const refine::State& state = model.states[static_cast<size_t>(s)];
            add("  state: left, right, stitches, mirrored",
                {state.left, state.right, state.stitches, state.mirrored ? 1 : 0});
        }
        for (int32_t p = model.kinds[k].pinBegin; p < model.kinds[k + 1].pinBegin; ++p) {
            const refine::KindPin& pin = model.kindPins[static_cast<size_t>(p)];
            add("  pin: x, mirrored, y, turned", {pin.x, pin.mirroredX, pin.y, pin.turnedY});
        }
    }
    for (const refine::Row& row : model.rows) {
        add("row: y, turned", {row.y, row.turned ? 1 : 0});
    }
    for (const refine::Run& run : model.runs) {
        add("run: row, x, sites, fence", {run.row, run.x, run.sites, run.fence});
    }
    for (const refine::Cell& cell : model.cells) {
        add("cell: kind, row, x, state, fence, fixed",
            {cell.kind, cell.row, cell.x, cell.state, cell.fence, cell.fixed ? 1 : 0});
    }
    for (size_t i = 0; i < model.startX.size(); ++i) {
        add("start of a cell: x, y", {model.startX[i], model.startY[i]});
    }
    for (size_t net = 0; net + 1 < model.nets.size(); ++net) {
        const refine::Net& at = model.nets[net];
        add("net: weight, xl, yl, xh, yh", {at.weight, at.xl, at.yl, at.xh, at.yh});
        for (int32_t i = at.pinBegin; i < model.nets[net + 1].pinBegin; ++i) {
            add("  pin: cell, pin of its kind",
                {model.pins[static_cast<size_t>(i)].cell, model.pins[static_cast<size_t>(i)].kindPin});
        }
    }
    return text;
}

} // namespace test
