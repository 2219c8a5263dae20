// SPDX-License-Identifier: BSD-3-Clause
#include "refine/model.h"

#include <algorithm>

namespace refine {

std::string faultOf(const Model& /*model*/)
{
    return {};
}

int64_t wirelength(const Model& model)
{
    int64_t sum = 0;
    for (size_t i = 0; i + 1 < model.nets.size(); ++i) {
        const Net& net = model.nets[i];
        int32_t xl = net.xl;
        int32_t yl = net.yl;
        int32_t xh = net.xh;
        int32_t yh = net.yh;
        const auto end = static_cast<size_t>(model.nets[i + 1].pinBegin);
        for (auto k = static_cast<size_t>(net.pinBegin); k < end; ++k) {
            const Cell& cell = model.cells[static_cast<size_t>(model.pins[k].cell)];
            const Kind& kind = model.kinds[static_cast<size_t>(cell.kind)];
            const Row& row = model.rows[static_cast<size_t>(cell.row)];
            const State& state = model.states[static_cast<size_t>(kind.stateBegin + cell.state)];
            const KindPin& pin = model.kindPins[static_cast<size_t>(kind.pinBegin + model.pins[k].kindPin)];
            const int32_t x = cell.x + (state.mirrored ? pin.mirroredX : pin.x);
            const int32_t y = row.y + (row.turned ? pin.turnedY : pin.y);
            xl = std::min(xl, x);
            yl = std::min(yl, y);
            xh = std::max(xh, x);
            yh = std::max(yh, y);
        }
        if (xl <= xh) {
            sum += net.weight * (int64_t{xh} - xl + yh - yl);
        }
    }
    return sum;
}

} // namespace refine
