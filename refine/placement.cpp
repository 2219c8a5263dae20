// SPDX-License-Identifier: BSD-3-Clause
#include "refine/placement.h"

#include <algorithm>

namespace refine {

namespace {

constexpr size_t NEAR = 4;       ///< ranks: cells that far away may be in one window
constexpr size_t LARGE_NET = 32; ///< pins: a cell more or less changes little for the others

/// A number that looks like chance, the same on every machine: the finalizer of SplitMix64 (Steele et al.,
/// 2014).
uint64_t mixed(uint64_t value)
{
    value += 0x9E3779B97F4A7C15U;
    value = (value ^ value >> 30) * 0xBF58476D1CE4E5B9U;
    value = (value ^ value >> 27) * 0x94D049BB133111EBU;
    return value ^ value >> 31;
}

} // namespace

Placement::Placement(Model& model)
    : m_model(model), m_pairs(model), m_runBegin(model.rows.size() + 1, 0), m_items(model.rows.size()),
      m_pinBegin(model.cells.size() + 1, 0), m_pinsOfCell(model.pins.size()),
      m_termBegin(model.cells.size() + 1, 0), m_weights(model.nets.size()), m_touched(model.cells.size(), 1),
      m_moved(model.cells.size(), 0), m_lifted(model.cells.size(), false),
      m_isChanged(model.cells.size(), false), m_farthest(model.rows.size(), 0)
{
    int32_t heaviest = 1;
    for (const Net& net : model.nets) {
        heaviest = std::max(heaviest, net.weight);
    }
    m_parts = std::clamp(MOST_WEIGHT / heaviest, 1, m_parts);
    bendWeights(0, 0);
    fillRows();
    fillPins();
    fillTerms();
    findReach();
}

void Placement::fillRows()
{
    for (const Run& run : m_model.runs) {
        ++m_runBegin[static_cast<size_t>(run.row) + 1];
    }
    for (size_t i = 1; i < m_runBegin.size(); ++i) {
        m_runBegin[i] += m_runBegin[i - 1];
    }
    int32_t widest = 0;
    for (size_t i = 0; i < m_model.cells.size(); ++i) {
        const Cell& at = m_model.cells[i];
        m_start.push_back({m_model.startX.empty() ? at.x : m_model.startX[i],
                           m_model.startY.empty() ? yOf(at.row) : m_model.startY[i]});
        m_items[static_cast<size_t>(at.row)].push_back({at.x, static_cast<int32_t>(i)});
        int32_t& farthest = at.fixed ? m_farthest[static_cast<size_t>(at.row)] : widest;
        farthest = std::max(farthest, kindOf(at).width);
    }
    for (std::vector<Item>& items : m_items) {
        std::ranges::sort(items, {}, [](const Item& item) { return std::pair(item.x, item.cell); });
    }
    for (int32_t& farthest : m_farthest) {
        farthest = std::max(farthest, widest) + m_pairs.largest();
    }
}

void Placement::fillPins()
{
    for (const Pin& pin : m_model.pins) {
        m_pins.push_back({0, 0, pin.cell});
        ++m_pinBegin[static_cast<size_t>(pin.cell) + 1];
    }
    for (size_t i = 1; i < m_pinBegin.size(); ++i) {
        m_pinBegin[i] += m_pinBegin[i - 1];
    }
    std::vector<int32_t> next(m_pinBegin.begin(), m_pinBegin.end() - 1);
    for (size_t i = 0; i < m_model.pins.size(); ++i) {
        int32_t& slot = next[static_cast<size_t>(m_model.pins[i].cell)];
        m_pinsOfCell[static_cast<size_t>(slot++)] = static_cast<int32_t>(i);
    }
    for (size_t i = 0; i < m_model.cells.size(); ++i) {
        movePins(static_cast<int32_t>(i));
    }
}

/// The reach of several pins of a kind, by their numbers in Model::kindPins.
int32_t Placement::reachOf(const std::vector<int32_t>& kindPins)
{
    if (kindPins.size() == 1) {
        return kindPins.front();
    }
    const auto [entry, isNew] = m_known.try_emplace(kindPins, static_cast<int32_t>(m_reaches.size()));
    if (isNew) {
        Reach all;
        for (const int32_t one : kindPins) {
            const Reach& other = m_reaches[static_cast<size_t>(one)];
            for (int side = 0; side < 2; ++side) {
                all.x[side].add(other.x[side]);
                all.y[side].add(other.y[side]);
            }
        }
        m_reaches.push_back(all);
    }
    return entry->second;
}

void Placement::fillTerms()
{
    for (const KindPin& pin : m_model.kindPins) {
        m_reaches.push_back(
            {{{pin.x, pin.x}, {pin.mirroredX, pin.mirroredX}}, {{pin.y, pin.y}, {pin.turnedY, pin.turnedY}}});
    }
    std::vector<int32_t> netOf(m_model.pins.size());
    for (size_t net = 0; net + 1 < m_model.nets.size(); ++net) {
        for (int32_t pin = m_model.nets[net].pinBegin; pin < m_model.nets[net + 1].pinBegin; ++pin) {
            netOf[static_cast<size_t>(pin)] = static_cast<int32_t>(net);
        }
    }
    for (size_t i = 0; i < m_model.cells.size(); ++i) {
        const Cell& at = m_model.cells[i];
        // The pins of a cell are in the order of the nets.
        for (int32_t k = m_pinBegin[i]; k < m_pinBegin[i + 1] && !at.fixed;) {
            const int32_t net = netOf[static_cast<size_t>(m_pinsOfCell[static_cast<size_t>(k)])];
            std::vector<int32_t> kindPins;
            for (; k < m_pinBegin[i + 1]; ++k) {
                const auto pin = static_cast<size_t>(m_pinsOfCell[static_cast<size_t>(k)]);
                if (netOf[pin] != net) {
                    break;
                }
                kindPins.push_back(kindOf(at).pinBegin + m_model.pins[pin].kindPin);
            }
            const Net& fixed = m_model.nets[static_cast<size_t>(net)];
            if (pinsOf(net).size() > kindPins.size() || fixed.xl <= fixed.xh) {
                m_terms.push_back({net, reachOf(kindPins)});
            }
        }
        m_termBegin[i + 1] = static_cast<int32_t>(m_terms.size());
    }
}

void Placement::bendWeights(int32_t most, uint64_t seed)
{
    const uint64_t choices = 2 * static_cast<uint64_t>(most) + 1;
    for (size_t net = 0; net < m_weights.size(); ++net) {
        const auto bend = static_cast<int32_t>(mixed(seed << 32 | net) % choices) - most;
        m_weights[net] = m_model.nets[net].weight * (m_parts + bend);
    }
}

size_t Placement::rankFrom(int32_t row, int32_t x) const
{
    const std::vector<Item>& all = items(row);
    return static_cast<size_t>(std::ranges::lower_bound(all, x, {}, &Item::x) - all.begin());
}

size_t Placement::rankOf(int32_t index) const
{
    const Cell& at = cell(index);
    const std::vector<Item>& all = items(at.row);
    size_t rank = rankFrom(at.row, at.x);
    while (all[rank].cell != index) {
        ++rank;
    }
    return rank;
}

std::span<const Run> Placement::runs(int32_t row) const
{
    const int32_t* const at = m_runBegin.data() + row;
    return {m_model.runs.data() + at[0], m_model.runs.data() + at[1]};
}

const Run* Placement::runAt(int32_t row, int32_t x) const
{
    const std::span<const Run> all = runs(row);
    const auto next = std::ranges::upper_bound(all, x, {}, &Run::x);
    if (next == all.begin()) {
        return nullptr;
    }
    const Run& run = *std::prev(next);
    return x < run.x + run.sites * m_model.step ? &run : nullptr;
}

void Placement::movePins(int32_t index)
{
    const Cell& at = cell(index);
    const bool mirrored = stateOf(at).mirrored;
    const bool turned = isTurned(at.row);
    const int32_t y = yOf(at.row);
    for (int32_t k = m_pinBegin[static_cast<size_t>(index)]; k < m_pinBegin[static_cast<size_t>(index) + 1];
         ++k) {
        const auto pin = static_cast<size_t>(m_pinsOfCell[static_cast<size_t>(k)]);
        const KindPin& offset = m_model.kindPin(at.kind, m_model.pins[pin].kindPin);
        m_pins[pin].x = at.x + (mirrored ? offset.mirroredX : offset.x);
        m_pins[pin].y = y + (turned ? offset.turnedY : offset.y);
    }
}

void Placement::touchAround(int32_t row, int32_t x, uint32_t now)
{
    const std::vector<Item>& all = items(row);
    const size_t rank = rankFrom(row, x);
    for (size_t i = rank - std::min(rank, NEAR); i < std::min(all.size(), rank + NEAR); ++i) {
        touch(all[i].cell, now);
    }
}

void Placement::touchNets(int32_t index, uint32_t now)
{
    for (const Term& term : terms(index)) {
        const std::span<const PlacedPin> pins = pinsOf(term.net);
        for (size_t i = 0; i < pins.size() && pins.size() <= LARGE_NET; ++i) {
            touch(pins[i].cell, now);
        }
    }
}

/// Those that changed, and those beside them.
void Placement::findReach()
{
    m_isInReach.assign(m_model.cells.size(), true);
    if (m_model.changed.empty()) {
        return;
    }
    std::ranges::fill(m_touched, 0);
    for (size_t i = 0; i < m_model.cells.size(); ++i) {
        const Cell& at = m_model.cells[i];
        if (m_model.changed[i] && !at.fixed) {
            const std::vector<Item>& all = items(at.row);
            const size_t rank = rankOf(static_cast<int32_t>(i));
            for (size_t k = rank - std::min<size_t>(rank, 1); k < std::min(all.size(), rank + 2); ++k) {
                touch(all[k].cell, 1);
            }
        }
    }
    for (size_t i = 0; i < m_model.cells.size(); ++i) {
        m_isInReach[i] = m_touched[i] > 0;
    }
}

void Placement::startHere()
{
    for (size_t i = 0; i < m_start.size(); ++i) {
        m_start[i] = {m_model.cells[i].x, yOf(m_model.cells[i].row)};
    }
}

bool Placement::keepsDistance(std::span<const Change> changes)
{
    const auto placed = [this](const Change& change) {
        const Cell& at = cell(change.cell);
        return Cell{at.kind, change.row, change.x, change.state, at.fence, at.fixed};
    };
    for (const Change& change : changes) {
        m_isChanged[static_cast<size_t>(change.cell)] = true;
    }
    bool keeps = true;
    for (size_t i = 0; i < changes.size(); ++i) {
        const Cell own = placed(changes[i]);
        const std::vector<Item>& all = items(own.row);
        const int32_t end = own.x + kindOf(own).width + m_pairs.largest();
        for (size_t k = rankFrom(own.row, own.x - m_farthest[static_cast<size_t>(own.row)]);
             keeps && k < all.size() && all[k].x < end; ++k) {
            const Cell& other = cell(all[k].cell);
            keeps = m_isChanged[static_cast<size_t>(all[k].cell)] || areApart(own, other);
        }
        for (size_t k = 0; keeps && k < i; ++k) {
            const Cell other = placed(changes[k]);
            keeps = other.row != own.row || areApart(own, other);
        }
    }
    for (const Change& change : changes) {
        m_isChanged[static_cast<size_t>(change.cell)] = false;
    }
    return keeps;
}

bool Placement::areApart(const Cell& a, const Cell& b) const
{
    const Cell& left = a.x <= b.x ? a : b;
    const Cell& right = a.x <= b.x ? b : a;
    const int32_t gap =
        m_model.gaps[static_cast<size_t>(stateOf(left).right) * static_cast<size_t>(m_model.views) +
                     static_cast<size_t>(stateOf(right).left)];
    const bool anyFixed = left.fixed || right.fixed;
    return left.x + kindOf(left).width + (anyFixed ? gap : std::max(0, gap)) <= right.x;
}

void Placement::lift(int32_t index)
{
    std::vector<Item>& from = m_items[static_cast<size_t>(cell(index).row)];
    from.erase(from.begin() + static_cast<std::ptrdiff_t>(rankOf(index)));
    m_lifted[static_cast<size_t>(index)] = true;
}

void Placement::apply(std::span<const Change> changes, uint32_t now)
{
    // All leave before any comes, so that ranks can be found by x.
    for (const Change& change : changes) {
        const Cell& at = cell(change.cell);
        if (m_lifted[static_cast<size_t>(change.cell)]) {
            m_lifted[static_cast<size_t>(change.cell)] = false;
            continue;
        }
        std::vector<Item>& from = m_items[static_cast<size_t>(at.row)];
        from.erase(from.begin() + static_cast<std::ptrdiff_t>(rankOf(change.cell)));
        if (at.row != change.row) {
            touchAround(at.row, at.x, now);
        }
    }
    for (const Change& change : changes) {
        Cell& at = m_model.cells[static_cast<size_t>(change.cell)];
        at.row = change.row;
        at.x = change.x;
        at.state = change.state;
        m_moved[static_cast<size_t>(change.cell)] = now;
        std::vector<Item>& to = m_items[static_cast<size_t>(change.row)];
        to.insert(to.begin() + static_cast<std::ptrdiff_t>(rankFrom(change.row, change.x)),
                  {change.x, change.cell});
        movePins(change.cell);
    }
    for (const Change& change : changes) {
        touchAround(change.row, change.x, now);
        touchNets(change.cell, now);
    }
}

} // namespace refine
