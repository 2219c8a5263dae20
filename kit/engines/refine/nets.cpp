// SPDX-License-Identifier: BSD-3-Clause
#include <algorithm>
#include <utility>

#include "kit/base/fault.h"
#include "kit/engines/refine/parts.h"

namespace kit::refine {

namespace {

/// Adds pins of kinds and nets.
class NetBuilder {
public:
    NetBuilder(const Inputs& inputs, const std::vector<int32_t>& weights, const std::vector<KindKey>& kinds,
               Built& built)
        : m_inputs(inputs), m_design(inputs.placed.design), m_weights(weights), m_kinds(kinds),
          m_placed(built.placed), m_model(built.model)
    {
    }

    void add()
    {
        if (m_inputs.offsets) {
            addMasterPins(*m_inputs.offsets);
            const design::PinOffsets& offsets = *m_inputs.offsets;
            for (size_t net = 0; net + 1 < offsets.netBegin.size(); ++net) {
                beginNet();
                for (size_t k = offsets.netBegin[net]; k < offsets.netBegin[net + 1]; ++k) {
                    addMember(offsets, offsets.members[k]);
                }
                endNet(net);
            }
        } else {
            addMiddlePins();
            for (size_t net = 0; net < m_design.nets.size(); ++net) {
                beginNet();
                for (const placer::Member& member : m_design.nets[net].members) {
                    if (member.component >= 0) {
                        addPin(member.component, 0);
                    } else if (member.pin >= 0) {
                        const placer::Pin& pin = m_design.pins[static_cast<size_t>(member.pin)];
                        addPoint(unitsOfDbu(pin.x), unitsOfDbu(pin.y));
                    }
                }
                endNet(net);
            }
        }
        m_model.nets.push_back({.pinBegin = static_cast<int32_t>(m_model.pins.size())});
    }

private:
    void addMasterPins(const design::PinOffsets& offsets)
    {
        const placer::NameIndex masters = placer::indexNames(offsets.masters);
        for (size_t kind = 0; kind + 1 < m_model.kinds.size(); ++kind) {
            m_model.kinds[kind].pinBegin = static_cast<int32_t>(m_model.kindPins.size());
            if (kind >= m_kinds.size()) {
                continue; // stays where it is
            }
            const KindKey& key = m_kinds[kind];
            const placer::Cell& cell = m_design.cells[static_cast<size_t>(key.cell)];
            const int32_t index = placer::findName(masters, cell.name);
            if (index < 0) {
                throw Fault("the cell " + cell.name + " has no pins in the offsets of the placement");
            }
            const design::PinOffsets::Master& master = offsets.masters[static_cast<size_t>(index)];
            for (const design::PinOffsets::Pin& pin : master.pins) {
                ::refine::KindPin one{.x = units(pin.at.x),
                                      .mirroredX = units(master.width - pin.at.x),
                                      .y = units(pin.at.y),
                                      .turnedY = units(master.height - pin.at.y)};
                if (key.upsideDown) {
                    std::swap(one.y, one.turnedY);
                }
                m_model.kindPins.push_back(one);
            }
        }
        m_model.kinds.back().pinBegin = static_cast<int32_t>(m_model.kindPins.size());
    }

    /// A pin in the middle of each kind, rounded down to DBU as the placer counts.
    void addMiddlePins()
    {
        for (size_t kind = 0; kind + 1 < m_model.kinds.size(); ++kind) {
            m_model.kinds[kind].pinBegin = static_cast<int32_t>(m_model.kindPins.size());
            if (kind < m_kinds.size()) {
                const int32_t cell = m_kinds[kind].cell;
                const int64_t height = int64_t{m_design.cells[static_cast<size_t>(cell)].height} *
                                       m_design.rows.front().step / placer::LIBRARY_SITE;
                const int32_t x = unitsOfDbu(m_model.kinds[kind].width / UNITS / 2);
                const int32_t y = unitsOfDbu(height / 2);
                m_model.kindPins.push_back({x, x, y, y});
            }
        }
        m_model.kinds.back().pinBegin = static_cast<int32_t>(m_model.kindPins.size());
    }

    void beginNet()
    {
        m_netPins = 0;
        m_model.nets.push_back({.pinBegin = static_cast<int32_t>(m_model.pins.size())});
    }

    /// Takes a net back that is none.
    void endNet(size_t net)
    {
        if (m_netPins < 2) {
            m_model.pins.resize(static_cast<size_t>(m_model.nets.back().pinBegin));
            m_model.nets.pop_back();
        } else if (!m_weights.empty()) {
            m_model.nets.back().weight = m_weights.at(net);
        }
    }

    void addMember(const design::PinOffsets& offsets, const design::PinOffsets::Member& member)
    {
        const auto pin = static_cast<size_t>(member.pin);
        if (member.component >= 0) {
            addPin(member.component, member.pin);
            return;
        }
        for (size_t at = offsets.pointBegin[pin]; at < offsets.pointBegin[pin + 1]; ++at) {
            addPoint(units(offsets.points[at].x), units(offsets.points[at].y));
        }
    }

    void addPoint(int32_t x, int32_t y)
    {
        ::refine::Net& net = m_model.nets.back();
        net.xl = std::min(net.xl, x);
        net.yl = std::min(net.yl, y);
        net.xh = std::max(net.xh, x);
        net.yh = std::max(net.yh, y);
        ++m_netPins;
    }

    /// Adds a pin of a component; one that stays where it is is a point.
    void addPin(int32_t component, int32_t kindPin)
    {
        const auto index = static_cast<size_t>(component);
        if (index >= m_design.components.size()) {
            throw Fault("the offsets are those of another placement");
        }
        const ::refine::Cell& cell = m_model.cells[index];
        const auto kind = static_cast<size_t>(cell.kind);
        const int32_t pin = m_model.kinds[kind].pinBegin + kindPin;
        if (pin >= m_model.kinds[kind + 1].pinBegin) {
            throw Fault("the offsets are those of another placement");
        }
        if (!cell.fixed) {
            m_model.pins.push_back({component, kindPin});
            ++m_netPins;
            return;
        }
        const ::refine::KindPin& at = m_model.kindPins[static_cast<size_t>(pin)];
        const ::refine::Row& row = m_model.rows[static_cast<size_t>(cell.row)];
        addPoint(cell.x + (m_placed[index].mirrored ? at.mirroredX : at.x),
                 row.y + (row.turned ? at.turnedY : at.y));
    }

    const Inputs& m_inputs;
    const placer::Design& m_design;
    const std::vector<int32_t>& m_weights;
    const std::vector<KindKey>& m_kinds;
    const std::vector<Placed>& m_placed;
    ::refine::Model& m_model;
    int32_t m_netPins = 0; ///< of the net at hand
};

} // namespace

void addNets(const Inputs& inputs, const std::vector<int32_t>& weights, const std::vector<KindKey>& kinds,
             Built& built)
{
    NetBuilder(inputs, weights, kinds, built).add();
}

} // namespace kit::refine
