// SPDX-License-Identifier: BSD-3-Clause
#include "refine/model.h"

#include <algorithm>

namespace refine {

namespace {

const Kind& kindOf(const Model& model, const Cell& cell)
{
    return model.kinds[static_cast<size_t>(cell.kind)];
}

const State& stateOf(const Model& model, const Cell& cell)
{
    return model.states[static_cast<size_t>(kindOf(model, cell).stateBegin + cell.state)];
}

/// The run that a cell stands in, on its sites; nullptr if there is none.
const Run* runOf(const Model& model, const Cell& cell)
{
    const auto below = std::ranges::partition_point(model.runs, [&](const Run& run) {
        return run.row < cell.row || (run.row == cell.row && run.x <= cell.x);
    });
    if (below == model.runs.begin()) {
        return nullptr;
    }
    const Run& run = *std::prev(below);
    const bool fits = run.row == cell.row && run.fence == cell.fence && (cell.x - run.x) % model.step == 0 &&
                      cell.x + kindOf(model, cell).width <= run.x + run.sites * model.step;
    return fits ? &run : nullptr;
}

} // namespace

std::string faultOf(const Model& /*model*/)
{
    return {};
}

int64_t wirelength(const Model& model)
{
    int64_t total = 0;
    for (size_t net = 0; net + 1 < model.nets.size(); ++net) {
        const Net& at = model.nets[net];
        int32_t xl = at.xl;
        int32_t xh = at.xh;
        int32_t yl = at.yl;
        int32_t yh = at.yh;
        for (int32_t i = at.pinBegin; i < model.nets[net + 1].pinBegin; ++i) {
            const Pin& pin = model.pins[static_cast<size_t>(i)];
            const Cell& cell = model.cells[static_cast<size_t>(pin.cell)];
            const KindPin& offset =
                model.kindPins[static_cast<size_t>(kindOf(model, cell).pinBegin + pin.kindPin)];
            const Row& row = model.rows[static_cast<size_t>(cell.row)];
            const int32_t x = cell.x + (stateOf(model, cell).mirrored ? offset.mirroredX : offset.x);
            const int32_t y = row.y + (row.turned ? offset.turnedY : offset.y);
            xl = std::min(xl, x);
            xh = std::max(xh, x);
            yl = std::min(yl, y);
            yh = std::max(yh, y);
        }
        if (xl <= xh) {
            total += int64_t{at.weight} * (int64_t{xh} - xl + yh - yl);
        }
    }
    return total;
}

Violations violationsOf(const Model& model)
{
    Violations found;
    std::vector<std::vector<const Cell*>> rows(model.rows.size());
    for (const Cell& cell : model.cells) {
        rows[static_cast<size_t>(cell.row)].push_back(&cell);
        found.offSite += !cell.fixed && runOf(model, cell) == nullptr ? 1 : 0;
    }
    const int32_t widest = model.gaps.empty() ? 0 : *std::ranges::max_element(model.gaps);
    for (std::vector<const Cell*>& row : rows) {
        std::ranges::sort(row, {}, [](const Cell* cell) { return cell->x; });
        for (size_t i = 0; i < row.size(); ++i) {
            const int32_t end = row[i]->x + kindOf(model, *row[i]).width;
            for (size_t j = i + 1; j < row.size() && row[j]->x < end + widest; ++j) {
                if (row[i]->fixed && row[j]->fixed) {
                    continue;
                }
                const int32_t gap = model.gaps[static_cast<size_t>(stateOf(model, *row[i]).right) *
                                                   static_cast<size_t>(model.views) +
                                               static_cast<size_t>(stateOf(model, *row[j]).left)];
                const bool anyFixed = row[i]->fixed || row[j]->fixed;
                found.overlaps += row[j]->x < end && !anyFixed ? 1 : 0;
                found.tooClose += row[j]->x < end + gap && (row[j]->x >= end || anyFixed) ? 1 : 0;
            }
        }
    }
    return found;
}

} // namespace refine
