// SPDX-License-Identifier: BSD-3-Clause
// A model on the way to a better one: where everything stands, by rows and by nets.
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <vector>

#include "refine/model.h"
#include "refine/pairTable.h"

namespace refine {

/// A range of whole numbers, empty as it begins.
struct Range {
    int32_t low = std::numeric_limits<int32_t>::max();
    int32_t high = std::numeric_limits<int32_t>::min();

    bool empty() const { return low > high; }
    int32_t length() const { return empty() ? 0 : high - low; }
    void add(int32_t value)
    {
        low = std::min(low, value);
        high = std::max(high, value);
    }
    void add(Range other)
    {
        low = std::min(low, other.low);
        high = std::max(high, other.high);
    }
};

/// A box of pins, units.
struct Box {
    Range x;
    Range y;
};

/// Where the pins of a cell on one net are, from its lower left corner.
struct Reach {
    Range x[2]; ///< [mirrored]
    Range y[2]; ///< [turned]
};

/// That of a pin in the corner.
inline constexpr Reach CORNER{{{0, 0}, {0, 0}}, {{0, 0}, {0, 0}}};

/// A net of a cell.
struct Term {
    int32_t net = 0;
    int32_t reach = 0; ///< in Placement::reachOf
};

/// A cell in the list of its row.
struct Item {
    int32_t x = 0; ///< left edge, units
    int32_t cell = 0;
};

/// A cell that gets another place.
struct Change {
    int32_t cell = 0;
    int32_t row = 0;
    int32_t x = 0;
    int32_t state = 0;
};

/// Keeps the order of cells in rows and the positions of pins. It changes the model's cells and nothing else.
class Placement {
public:
    /// @param model  without faults; must outlive this
    explicit Placement(Model& model);

    const Model& model() const { return m_model; }
    const PairTable& pairs() const { return m_pairs; }
    const Cell& cell(int32_t index) const { return m_model.cells[static_cast<size_t>(index)]; }
    const Kind& kindOf(const Cell& cell) const { return m_model.kind(cell.kind); }
    const State& stateOf(const Cell& cell) const { return m_model.state(cell.kind, cell.state); }
    bool isTurned(int32_t row) const { return m_model.rows[static_cast<size_t>(row)].turned; }
    int32_t yOf(int32_t row) const { return m_model.rows[static_cast<size_t>(row)].y; }

    /// The cells of a row, from the left.
    const std::vector<Item>& items(int32_t row) const { return m_items[static_cast<size_t>(row)]; }
    /// Index of the first item of a row at x or right of it.
    size_t rankFrom(int32_t row, int32_t x) const;
    /// Index of a cell in its row.
    size_t rankOf(int32_t index) const;

    /// The runs of a row.
    std::span<const Run> runs(int32_t row) const;
    /// The run under a place of a row, nullptr if there is none.
    const Run* runAt(int32_t row, int32_t x) const;

    /// The nets of a cell, each once. Nets with one cell and no fixed pin are left out.
    std::span<const Term> terms(int32_t cell) const
    {
        const auto i = static_cast<size_t>(cell);
        return {m_terms.data() + m_termBegin[i], m_terms.data() + m_termBegin[i + 1]};
    }
    const Reach& reachOf(const Term& term) const { return m_reaches[static_cast<size_t>(term.reach)]; }

    /// A pin where it is.
    struct PlacedPin {
        int32_t x = 0;
        int32_t y = 0;
        int32_t cell = 0;
    };
    /// The pins of a net that may move.
    std::span<const PlacedPin> pinsOf(int32_t net) const
    {
        const Net* const at = m_model.nets.data() + net;
        return {m_pins.data() + at[0].pinBegin, m_pins.data() + at[1].pinBegin};
    }
    /// The box of the pins that do not move.
    Box fixedBoxOf(int32_t net) const
    {
        const Net& at = m_model.nets[static_cast<size_t>(net)];
        return {{at.xl, at.xh}, {at.yl, at.yh}};
    }
    /// Weights and prices are counted in so many parts of 1, so that they can be bent a little: in 32, or in
    /// fewer where a net is so heavy that costs would not fit into 32 bits.
    int32_t parts() const { return m_parts; }
    int32_t weightOf(int32_t net) const { return m_weights[static_cast<size_t>(net)]; }

    /// What a unit that a cell is from its start costs, in the same parts.
    int32_t displacementWeight() const { return m_displacementWeight; }
    void setDisplacementWeight(int32_t weight) { m_displacementWeight = weight; }
    /// Where a cell's displacement is measured from, units.
    int32_t startX(int32_t cell) const { return m_start[static_cast<size_t>(cell)].x; }
    int32_t startY(int32_t cell) const { return m_start[static_cast<size_t>(cell)].y; }

    /// Bends the weights of all nets at random, each by at most `most`; 0 sets them straight.
    ///
    /// @param seed  another one, other weights
    void bendWeights(int32_t most, uint64_t seed);

    bool isLifted(int32_t cell) const { return m_lifted[static_cast<size_t>(cell)]; }

    /// Displacement is measured from where all cells are now.
    void startHere();

    /// Whether cells would stand as far from all others as they must, not only from the next ones.
    bool keepsDistance(std::span<const Change> changes);

    /// Takes a cell out of its row; its pins stay where they are. apply() puts it back.
    void lift(int32_t index);

    /// Moves cells.
    ///
    /// @param now  a number that grows from call to call
    void apply(std::span<const Change> changes, uint32_t now);

    /// When a cell or what it depends on was changed last.
    uint32_t touched(int32_t cell) const { return m_touched[static_cast<size_t>(cell)]; }
    /// When a cell was moved last.
    uint32_t moved(int32_t cell) const { return m_moved[static_cast<size_t>(cell)]; }

private:
    void movePins(int32_t index);
    void touch(int32_t cell, uint32_t now)
    {
        if (m_isInReach[static_cast<size_t>(cell)]) {
            m_touched[static_cast<size_t>(cell)] = now;
        }
    }
    bool areApart(const Cell& a, const Cell& b) const;
    void touchAround(int32_t row, int32_t x, uint32_t now);
    void touchNets(int32_t index, uint32_t now);
    void findReach();
    void fillRows();
    void fillPins();
    void fillTerms();
    int32_t reachOf(const std::vector<int32_t>& kindPins);

    Model& m_model;
    PairTable m_pairs;
    std::vector<int32_t> m_runBegin; ///< [row]
    std::vector<std::vector<Item>> m_items;
    std::vector<PlacedPin> m_pins;     ///< as Model::pins
    std::vector<int32_t> m_pinBegin;   ///< [cell] in m_pinsOfCell
    std::vector<int32_t> m_pinsOfCell; ///< in m_pins
    std::vector<int32_t> m_termBegin;  ///< [cell] in m_terms
    std::vector<Term> m_terms;
    std::map<std::vector<int32_t>, int32_t> m_known; ///< reaches of several pins
    std::vector<Reach> m_reaches;
    struct Point {
        int32_t x;
        int32_t y;
    };
    std::vector<Point> m_start; ///< [cell]
    int32_t m_displacementWeight = 0;
    int32_t m_parts = 32;
    std::vector<int32_t> m_weights;  ///< [net] in parts
    std::vector<bool> m_isInReach;   ///< [cell] whether it may be tried
    std::vector<uint32_t> m_touched; ///< [cell]
    std::vector<uint32_t> m_moved;   ///< [cell]
    std::vector<bool> m_lifted;      ///< [cell]
    std::vector<bool> m_isChanged;   ///< [cell] false but in keepsDistance()
    std::vector<int32_t> m_farthest; ///< [row] no cell reaches further to the right from its left edge, units
};

} // namespace refine
