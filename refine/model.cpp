// SPDX-License-Identifier: BSD-3-Clause
#include "refine/model.h"

#include <algorithm>
#include <span>

namespace refine {

namespace {

const Kind& kindOf(const Model& model, const Cell& cell)
{
    return model.kind(cell.kind);
}

const State& stateOf(const Model& model, const Cell& cell)
{
    return model.state(cell.kind, cell.state);
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

namespace {

/// Whether `begin` of the records goes from 0 upwards to a count.
template <typename Record>
bool isDivided(const std::vector<Record>& records, int32_t Record::*begin, size_t count)
{
    return !records.empty() && records.front().*begin == 0 && std::ranges::is_sorted(records, {}, begin) &&
           static_cast<size_t>(records.back().*begin) == count;
}

bool isNear(int64_t value)
{
    return value >= -FARTHEST && value <= FARTHEST;
}

bool isIn(int64_t index, size_t count)
{
    return index >= 0 && static_cast<size_t>(index) < count;
}

bool isPossible(const Model& model, const Run& run)
{
    return isIn(run.row, model.rows.size()) && run.sites > 0 && isNear(run.x) &&
           isNear(run.x + int64_t{run.sites} * model.step);
}

bool isPossible(const Model& model, const Cell& cell)
{
    return isIn(cell.kind, model.kinds.size() - 1) && isIn(cell.row, model.rows.size()) && isNear(cell.x) &&
           isIn(cell.state, static_cast<size_t>(model.stateCount(cell.kind))) &&
           (cell.fixed || (kindOf(model, cell).rows == 1 && kindOf(model, cell).width % model.step == 0));
}

bool isPossible(const Model& model, const Pin& pin)
{
    if (!isIn(pin.cell, model.cells.size())) {
        return false;
    }
    const Kind* const kind = &kindOf(model, model.cells[static_cast<size_t>(pin.cell)]);
    return isIn(pin.kindPin, static_cast<size_t>(kind[1].pinBegin - kind[0].pinBegin));
}

bool isPossible(const Model& model, const State& state)
{
    const auto views = static_cast<size_t>(model.views);
    return isIn(state.left, views) && isIn(state.right, views) && state.stitches >= 0;
}

bool isPossible(const Net& net)
{
    const bool hasBox = net.xl <= net.xh && net.yl <= net.yh;
    return net.weight >= 1 && net.weight <= MOST_WEIGHT &&
           (!hasBox || (isNear(net.xl) && isNear(net.yl) && isNear(net.xh) && isNear(net.yh)));
}

/// The first record that is not possible, as a text.
template <typename Records, typename Check>
std::string firstFault(const char* what, const Records& records, Check check)
{
    const auto bad = std::ranges::find_if_not(records, check);
    return bad == std::ranges::end(records)
               ? ""
               : std::string(what) + " " + std::to_string(bad - std::ranges::begin(records)) +
                     " is not possible";
}

} // namespace

std::string faultOf(const Model& model)
{
    const size_t cells = model.cells.size();
    if (model.step <= 0 || model.step > FARTHEST || model.views < 0 ||
        model.gaps.size() != static_cast<size_t>(model.views) * static_cast<size_t>(model.views) ||
        !std::ranges::all_of(model.gaps, isNear)) {
        return "the step or the gaps are not possible";
    }
    if (!isDivided(model.kinds, &Kind::stateBegin, model.states.size()) ||
        !isDivided(model.kinds, &Kind::pinBegin, model.kindPins.size()) ||
        !isDivided(model.nets, &Net::pinBegin, model.pins.size())) {
        return "states, pins of kinds, or pins of nets are not divided among all";
    }
    if ((!model.startX.empty() && model.startX.size() != cells) ||
        model.startX.size() != model.startY.size() ||
        (!model.changed.empty() && model.changed.size() != cells)) {
        return "starts or changes are not those of all cells";
    }
    if (!std::ranges::all_of(model.kindPins, [](const KindPin& pin) {
            return isNear(pin.x) && isNear(pin.mirroredX) && isNear(pin.y) && isNear(pin.turnedY);
        })) {
        return "a pin of a kind is too far away";
    }
    const auto possible = [&model](const auto& record) { return isPossible(model, record); };
    const std::string faults[] = {
        firstFault("state", model.states, possible),
        firstFault("kind", std::span(model.kinds).first(model.kinds.size() - 1),
                   [](const Kind& kind) { return kind.width > 0 && kind.width <= FARTHEST; }),
        firstFault("row", model.rows, [](const Row& row) { return isNear(row.y); }),
        firstFault("run", model.runs, possible),
        firstFault("cell", model.cells, possible),
        firstFault("pin", model.pins, possible),
        firstFault("net", model.nets, [](const Net& net) { return isPossible(net); }),
    };
    for (const std::string& fault : faults) {
        if (!fault.empty()) {
            return fault;
        }
    }
    for (size_t i = 1; i < model.runs.size(); ++i) {
        const Run& before = model.runs[i - 1];
        const Run& run = model.runs[i];
        if (run.row < before.row || (run.row == before.row && run.x < before.x + before.sites * model.step)) {
            return "run " + std::to_string(i) + " is not on the right of the one before";
        }
    }
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
            const KindPin& offset = model.kindPin(cell.kind, pin.kindPin);
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
