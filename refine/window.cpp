// SPDX-License-Identifier: BSD-3-Clause
#include "refine/window.h"

#include <algorithm>
#include <cstdlib>

namespace refine {

namespace {

int32_t floorDiv(int32_t a, int32_t b)
{
    return a >= 0 ? a / b : -((-a + b - 1) / b);
}

int32_t ceilDiv(int32_t a, int32_t b)
{
    return -floorDiv(-a, b);
}

} // namespace

WindowSolver::WindowSolver(const Placement& placement, const Options& options)
    : m_at(placement), m_options(options),
      m_stitchPrice(std::min(options.stitchPrice, Options::MOST_STITCH_PRICE) * placement.parts()),
      m_cellMark(placement.model().cells.size(), 0), m_netMark(placement.model().nets.size(), 0)
{
    const Model& model = placement.model();
    for (size_t kind = 0; kind + 1 < model.kinds.size(); ++kind) {
        KindFacts& facts = m_facts.emplace_back();
        facts.sites = ceilDiv(model.kinds[kind].width, model.step);
        facts.leastPrice = std::numeric_limits<int32_t>::max();
        const auto states = static_cast<size_t>(model.stateCount(static_cast<int32_t>(kind)));
        for (size_t s = 0; s < states; ++s) {
            const State& state = model.states[static_cast<size_t>(model.kinds[kind].stateBegin) + s];
            const auto price = static_cast<int32_t>(m_stitchPrice * state.stitches);
            facts.lies[state.mirrored ? 1 : 0] = true;
            facts.leastPrice = std::min(facts.leastPrice, price);
            facts.mostPrice = std::max(facts.mostPrice, price);
        }
        m_oneClass.resize(std::max(m_oneClass.size(), states), 0);
    }
}

void WindowSolver::assume(std::span<const Change> changes)
{
    m_assumed.assign(changes.begin(), changes.end());
}

/// The box of a net where its cells are assumed to be.
Box WindowSolver::boxOf(int32_t net, bool withTaken) const
{
    Box box = m_at.fixedBoxOf(net);
    const std::span<const Placement::PlacedPin> pins = m_at.pinsOf(net);
    const Model& model = m_at.model();
    const Pin* const modelPins = model.pins.data() + model.nets[static_cast<size_t>(net)].pinBegin;
    for (size_t i = 0; i < pins.size(); ++i) {
        const Placement::PlacedPin& pin = pins[i];
        if (!withTaken && m_cellMark[static_cast<size_t>(pin.cell)] == m_time) {
            continue;
        }
        const auto at = std::ranges::find(m_assumed, pin.cell, &Change::cell);
        if (at == m_assumed.end()) {
            box.x.add(pin.x);
            box.y.add(pin.y);
            continue;
        }
        const int32_t kind = m_at.cell(pin.cell).kind;
        const KindPin& offset = model.kindPin(kind, modelPins[i].kindPin);
        const bool mirrored = model.state(kind, at->state).mirrored;
        box.x.add(at->x + (mirrored ? offset.mirroredX : offset.x));
        box.y.add(m_at.yOf(at->row) + (m_at.isTurned(at->row) ? offset.turnedY : offset.y));
    }
    return box;
}

int64_t WindowSolver::gainOf(std::span<const int32_t> cells)
{
    ++m_time;
    int64_t gain = 0;
    for (const int32_t cell : cells) {
        const Cell& now = m_at.cell(cell);
        const Change then = placeOf(cell);
        gain += m_stitchPrice * (stitchesOf(now.kind, now.state) - stitchesOf(now.kind, then.state));
        gain += m_at.displacementWeight() *
                (displacementOf(cell, {cell, now.row, now.x, now.state}) - displacementOf(cell, then));
        for (const Term& term : m_at.terms(cell)) {
            uint64_t& mark = m_netMark[static_cast<size_t>(term.net)];
            if (mark >> 32 != m_time) {
                mark = uint64_t{m_time} << 32;
                Box box = m_at.fixedBoxOf(term.net);
                for (const Placement::PlacedPin& pin : m_at.pinsOf(term.net)) {
                    box.x.add(pin.x);
                    box.y.add(pin.y);
                }
                const Box other = boxOf(term.net, true);
                gain += int64_t{m_at.weightOf(term.net)} *
                        (int64_t{box.x.length()} + box.y.length() - other.x.length() - other.y.length());
            }
        }
    }
    return gain;
}

void WindowSolver::take(std::span<const int32_t> cells, int32_t row)
{
    ++m_time;
    m_cells.assign(cells.begin(), cells.end());
    m_row = row;
    m_nets.clear();
    m_terms.clear();
    m_termBegin.clear();
    m_before = 0;
    m_fixedAfter = 0;
    for (const int32_t cell : cells) {
        m_cellMark[static_cast<size_t>(cell)] = m_time;
    }
    for (const int32_t index : cells) {
        m_termBegin.push_back(m_terms.size());
        m_before += m_stitchPrice * stitchesOf(m_at.cell(index).kind, placeOf(index).state);
        for (const Term& term : m_at.terms(index)) {
            uint64_t& mark = m_netMark[static_cast<size_t>(term.net)];
            if (mark >> 32 != m_time) {
                mark = uint64_t{m_time} << 32 | m_nets.size();
                NetUse& net = m_nets.emplace_back();
                net.net = term.net;
                net.weight = m_at.weightOf(term.net);
                Box all;
                if (m_assumed.empty()) {
                    net.outside = m_at.fixedBoxOf(term.net);
                    all = net.outside;
                    for (const Placement::PlacedPin& pin : m_at.pinsOf(term.net)) {
                        all.x.add(pin.x);
                        all.y.add(pin.y);
                        if (m_cellMark[static_cast<size_t>(pin.cell)] != m_time) {
                            net.outside.x.add(pin.x);
                            net.outside.y.add(pin.y);
                        }
                    }
                } else {
                    all = boxOf(term.net, /*withTaken=*/true);
                    net.outside = boxOf(term.net, /*withTaken=*/false);
                }
                const int64_t now = int64_t{all.x.length()} - net.outside.x.length() + all.y.length();
                m_before += net.weight * now;
            }
            m_terms.push_back({static_cast<int32_t>(mark & 0xffffffffU), &m_at.reachOf(term)});
        }
        if (m_at.displacementWeight() > 0) {
            addStart(index);
        }
    }
    m_termBegin.push_back(m_terms.size());
    // Heights are known: all stand in the row.
    const bool turned = m_at.isTurned(row);
    const int32_t y = m_at.yOf(row);
    for (NetUse& net : m_nets) {
        net.first = net.last = -1;
    }
    for (const TermUse& term : m_terms) {
        NetUse& net = m_nets[static_cast<size_t>(term.net)];
        const Range& reach = term.reach->y[turned ? 1 : 0];
        net.outside.y.add({y + reach.low, y + reach.high});
    }
    for (const NetUse& net : m_nets) {
        m_fixedAfter += int64_t{net.weight} * net.outside.y.length();
    }
}

/// The way to its start is a net of the cell's own.
void WindowSolver::addStart(int32_t index)
{
    const int32_t x = m_at.startX(index);
    const int32_t y = m_at.startY(index);
    m_terms.push_back({static_cast<int32_t>(m_nets.size()), &CORNER});
    m_nets.push_back({.weight = m_at.displacementWeight(), .outside = {{x, x}, {y, y}}});
    m_before += m_at.displacementWeight() * displacementOf(index, placeOf(index));
}

int64_t WindowSolver::displacementOf(int32_t index, const Change& place) const
{
    return std::abs(int64_t{place.x} - m_at.startX(index)) +
           std::abs(int64_t{m_at.yOf(place.row)} - m_at.startY(index));
}

Change WindowSolver::placeOf(int32_t index) const
{
    const auto at = std::ranges::find(m_assumed, index, &Change::cell);
    const Cell& cell = m_at.cell(index);
    return at == m_assumed.end() ? Change{index, cell.row, cell.x, cell.state} : *at;
}

WindowSolver::Side WindowSolver::sideOf(const WindowFrame& frame, bool onLeft, int32_t index)
{
    const Model& model = m_at.model();
    const Cell& cell = m_at.cell(index);
    const int32_t neighbour = onLeft ? frame.left : frame.right;
    std::vector<int32_t>& sites = onLeft ? m_program.earliest : m_program.latest;
    const int32_t width = m_at.kindOf(cell).width;
    const int32_t last = frame.run->sites - m_facts[static_cast<size_t>(cell.kind)].sites;
    if (neighbour < 0) {
        sites.push_back(onLeft ? 0 : last);
        return {1, -1, m_oneClass.data()};
    }
    const Cell& beside = m_at.cell(neighbour);
    const int32_t besideWidth = m_at.kindOf(beside).width;
    const int32_t apart = onLeft ? beside.x + besideWidth - frame.run->x : beside.x - width - frame.run->x;
    if (!beside.fixed && apart % model.step == 0) {
        const int32_t site = apart / model.step;
        const PairTable::Pair pair =
            onLeft ? m_at.pairs().of(beside.kind, cell.kind) : m_at.pairs().of(cell.kind, beside.kind);
        if (onLeft) {
            const int32_t* const gaps =
                pair.gaps + static_cast<ptrdiff_t>(pair.leftClassOf[beside.state]) * pair.rightClasses;
            for (int32_t c = 0; c < pair.rightClasses; ++c) {
                sites.push_back(std::max(0, site + gaps[c]));
            }
            return {pair.rightClasses, beside.kind, pair.rightClassOf};
        }
        const int32_t* const gaps = pair.gaps + pair.rightClassOf[beside.state];
        for (int32_t c = 0; c < pair.leftClasses; ++c) {
            sites.push_back(std::min(last, site - gaps[static_cast<ptrdiff_t>(c) * pair.rightClasses]));
        }
        return {pair.leftClasses, beside.kind, pair.leftClassOf};
    }
    std::vector<uint16_t>& classOf = m_classes[onLeft ? 0 : 1];
    const int32_t states = model.stateCount(cell.kind);
    classOf.resize(static_cast<size_t>(states));
    for (int32_t s = 0; s < states; ++s) {
        int32_t site = 0;
        // Metal that stays may reach into free sites, but cells keep their side of it.
        if (onLeft) {
            const int32_t gap = m_at.pairs().between(beside.kind, beside.state, cell.kind, s);
            const int32_t x = std::max(beside.x + 1, beside.x + besideWidth + gap);
            site = std::max(0, ceilDiv(x - frame.run->x, model.step));
        } else {
            const int32_t gap = m_at.pairs().between(cell.kind, s, beside.kind, beside.state);
            const int32_t x = std::min(beside.x - 1, beside.x - gap - width);
            site = std::min(last, floorDiv(x - frame.run->x, model.step));
        }
        const auto at = std::ranges::find(sites, site);
        classOf[static_cast<size_t>(s)] = static_cast<uint16_t>(at - sites.begin());
        if (at == sites.end()) {
            sites.push_back(site);
        }
    }
    return {static_cast<int32_t>(sites.size()), -2, classOf.data()};
}

void WindowSolver::appendOptions(int32_t kind, const uint16_t* leftClassOf, int32_t leftClasses,
                                 const uint16_t* rightClassOf, int32_t rightClasses,
                                 std::vector<ProgramOption>& options)
{
    const Model& model = m_at.model();
    const int32_t states = model.stateCount(kind);
    const State* const first = model.states.data() + model.kinds[static_cast<size_t>(kind)].stateBegin;
    m_best.assign(2 * static_cast<size_t>(leftClasses) * static_cast<size_t>(rightClasses), -1);
    for (int32_t s = 0; s < states; ++s) {
        const State& state = first[s];
        const auto price = static_cast<int32_t>(m_stitchPrice * state.stitches);
        const size_t pair = size_t{leftClassOf[s]} * static_cast<size_t>(rightClasses) + rightClassOf[s];
        int32_t& best = m_best[2 * pair + (state.mirrored ? 1 : 0)];
        if (best < 0) {
            best = static_cast<int32_t>(options.size());
            options.push_back({leftClassOf[s], rightClassOf[s], s, price, state.mirrored});
        } else if (ProgramOption& option = options[static_cast<size_t>(best)]; price < option.price) {
            option.price = price;
            option.state = s;
        }
    }
}

void WindowSolver::addOptions(std::span<const int32_t> order, const Side& left, const Side& right)
{
    constexpr size_t MOST_KNOWN = 1 << 16;
    const PairTable& pairs = m_at.pairs();
    PairTable::Pair before;
    int32_t leftKind = left.kind;
    m_classesOf.clear();
    for (size_t rank = 0; rank < order.size(); ++rank) {
        ProgramItem& item = m_program.items[rank];
        const int32_t kind = m_at.cell(m_cells[static_cast<size_t>(order[rank])]).kind;
        const uint16_t* leftClassOf = left.classOf;
        const uint16_t* rightClassOf = right.classOf;
        item.leftClasses = left.classes;
        item.rightClasses = right.classes;
        int32_t rightKind = right.kind;
        if (rank > 0) {
            item.leftClasses = before.rightClasses;
            leftClassOf = before.rightClassOf;
            item.gaps = before.gaps;
        }
        if (rank + 1 < order.size()) {
            rightKind = m_at.cell(m_cells[static_cast<size_t>(order[rank + 1])]).kind;
            before = pairs.of(kind, rightKind);
            item.rightClasses = before.leftClasses;
            rightClassOf = before.leftClassOf;
        }
        m_classesOf.push_back({leftClassOf, rightClassOf});
        item.optionBegin = static_cast<int32_t>(m_program.options.size());
        if (leftKind == -2 || rightKind == -2) {
            const size_t begin = m_program.options.size();
            std::vector<ProgramOption> own;
            appendOptions(kind, leftClassOf, item.leftClasses, rightClassOf, item.rightClasses, own);
            m_program.options.insert(m_program.options.begin() + static_cast<std::ptrdiff_t>(begin),
                                     own.begin(), own.end());
        } else {
            const uint64_t key = (static_cast<uint64_t>(leftKind + 1) << 42) |
                                 (static_cast<uint64_t>(kind + 1) << 21) |
                                 static_cast<uint64_t>(rightKind + 1);
            if (m_known.empty() || m_knownCount > MOST_KNOWN) {
                m_known.assign(4 * MOST_KNOWN, {});
                m_knownOptions.clear();
                m_knownCount = 0;
            }
            size_t slot = static_cast<size_t>(key * 0x9E3779B97F4A7C15U >> 46) & (m_known.size() - 1);
            while (m_known[slot].key != key && m_known[slot].key != 0) {
                slot = (slot + 1) & (m_known.size() - 1);
            }
            Known& known = m_known[slot];
            if (known.key == 0) {
                ++m_knownCount;
                known.key = key;
                known.begin = static_cast<uint32_t>(m_knownOptions.size());
                appendOptions(kind, leftClassOf, item.leftClasses, rightClassOf, item.rightClasses,
                              m_knownOptions);
                known.end = static_cast<uint32_t>(m_knownOptions.size());
            }
            m_program.options.insert(m_program.options.end(), m_knownOptions.begin() + known.begin,
                                     m_knownOptions.begin() + known.end);
        }
        item.optionEnd = static_cast<int32_t>(m_program.options.size());
        leftKind = kind;
    }
}

void WindowSolver::addProfile(size_t rank, bool mirrored, int32_t x, int32_t sites, int32_t reference)
{
    const int32_t step = m_at.model().step;
    const auto ordinal = static_cast<int32_t>(rank);
    const int32_t span = (sites - 1) * step;
    int32_t* const bends = m_bends.data();
    int64_t base = 0;
    int32_t slope = 0;
    bool bent = false;
    const auto bendAt = [&](int32_t room, int32_t weight) {
        const int32_t whole = room / step;
        const int32_t rest = room - whole * step;
        bends[whole + 1] += weight * (step - rest);
        bends[whole + 2] += weight * rest;
        bent = true;
    };
    for (const TermUse& term : termsAt(rank)) {
        const NetUse& net = m_nets[static_cast<size_t>(term.net)];
        const Range& reach = term.reach->x[mirrored ? 1 : 0];
        const Range& outside = net.outside.x;
        const bool alone = outside.empty();
        if (net.first == ordinal) {
            const int32_t room = (alone ? reference : outside.low) - (x + reach.low);
            if (alone || room > 0) {
                base += int64_t{net.weight} * room;
                slope -= net.weight * step;
                if (!alone && room <= span) {
                    bendAt(room, net.weight);
                }
            }
        }
        if (net.last == ordinal) {
            const int32_t room = (alone ? reference : outside.high) - (x + reach.high);
            if (alone || room <= 0) {
                base -= int64_t{net.weight} * room;
                slope += net.weight * step;
            } else if (room <= span) {
                bendAt(room, net.weight);
            }
        }
    }
    int32_t* const costs = m_program.costRoom(rank, mirrored);
    int32_t cost = 0;
    if (bent) {
        for (int32_t p = 0; p < sites; ++p) {
            costs[p] = cost;
            slope += bends[p + 1];
            bends[p + 1] = 0;
            cost += slope;
        }
        bends[sites + 1] = 0;
    } else {
        for (int32_t p = 0; p < sites; ++p) {
            costs[p] = cost;
            cost += slope;
        }
    }
    m_base[mirrored ? 1 : 0] = base;
    m_program.items[rank].costs[mirrored ? 1 : 0] = costs;
}

/// Finds the first and the last cell of each net. @return the largest weight of the nets of a cell
int64_t WindowSolver::rankNets()
{
    int64_t heaviest = 0;
    for (NetUse& net : m_nets) {
        net.first = -1;
    }
    for (size_t rank = 0; rank < m_order.size(); ++rank) {
        int64_t weight = 0;
        for (const TermUse& term : termsAt(rank)) {
            NetUse& net = m_nets[static_cast<size_t>(term.net)];
            weight += net.weight;
            net.first = net.first < 0 ? static_cast<int32_t>(rank) : net.first;
            net.last = static_cast<int32_t>(rank);
        }
        heaviest = std::max(heaviest, weight);
    }
    return heaviest;
}

/// @param begin   first site of the room
/// @param slack   free sites of it
/// @param window  sites of each cell's window
WindowSolver::Costs WindowSolver::addCosts(std::span<const int32_t> targets, int32_t begin, int32_t slack,
                                           int32_t window)
{
    const int32_t step = m_at.model().step;
    const int32_t reference = m_run->x + begin * step;
    Costs costs;
    int32_t packed = begin;
    for (size_t rank = 0; rank < m_order.size(); ++rank) {
        ProgramItem& item = m_program.items[rank];
        const int32_t target = floorDiv(targets[static_cast<size_t>(m_order[rank])] - m_run->x, step);
        item.low = std::clamp(target - window / 2, packed, packed + slack + 1 - window);
        packed += item.width;
        const KindFacts& facts = m_facts[static_cast<size_t>(cellAt(rank).kind)];
        int64_t least = std::numeric_limits<int64_t>::max();
        for (const size_t mirrored : {size_t{0}, size_t{1}}) {
            if (facts.lies[mirrored]) {
                addProfile(rank, mirrored == 1, m_run->x + item.low * step, window, reference);
                const int32_t* const own = item.costs[mirrored];
                least = std::min(least, m_base[mirrored] + *std::min_element(own, own + window));
            }
        }
        int32_t most = 0;
        for (const size_t mirrored : {size_t{0}, size_t{1}}) {
            if (facts.lies[mirrored]) {
                int32_t* const own = m_program.costRoom(rank, mirrored == 1);
                const auto add = static_cast<int32_t>(m_base[mirrored] - least);
                for (int32_t p = 0; p < window; ++p) {
                    own[p] += add;
                    most = std::max(most, own[p]);
                }
            }
        }
        costs.least += least;
        costs.leastPrice += facts.leastPrice;
        costs.largest += facts.mostPrice + most;
    }
    return costs;
}

int64_t WindowSolver::solve(const WindowFrame& frame, std::span<const int32_t> order,
                            std::span<const int32_t> targets, int32_t sites, int64_t worth)
{
    m_program.clear(order.size());
    m_bends.resize(OrderedProgram::MOST_SITES + 3, 0);
    m_order.assign(order.begin(), order.end());
    m_run = frame.run;
    int32_t width = 0;
    for (size_t rank = 0; rank < order.size(); ++rank) {
        m_program.items[rank].width = m_facts[static_cast<size_t>(cellAt(rank).kind)].sites;
        width += m_program.items[rank].width;
    }
    const Side left = sideOf(frame, /*onLeft=*/true, m_cells[static_cast<size_t>(order.front())]);
    const Side right = sideOf(frame, /*onLeft=*/false, m_cells[static_cast<size_t>(order.back())]);
    const int32_t begin = *std::ranges::min_element(m_program.earliest);
    const int32_t end = *std::ranges::max_element(m_program.latest) + m_program.items.back().width;
    const int32_t slack = end - begin - width;
    if (slack < 0) {
        return IMPOSSIBLE;
    }
    // Costs of a cell fit into 32 bits, and so do those of all.
    const int64_t steepest = 2 * rankNets() * m_at.model().step;
    int32_t window = std::min(slack + 1, sites);
    while (window > 1 && steepest * window >= OrderedProgram::NEVER) {
        window /= 2;
    }
    Costs costs = addCosts(targets, begin, slack, window);
    while (window > 1 && costs.largest >= OrderedProgram::NEVER) {
        window /= 2;
        costs = addCosts(targets, begin, slack, window);
    }
    const int64_t after = m_fixedAfter + costs.least;
    if (costs.largest >= OrderedProgram::NEVER || m_before - after - costs.leastPrice <= worth) {
        return IMPOSSIBLE;
    }
    if (m_options.maxDisplacement < FARTHEST && !closeFarPlaces(order, window)) {
        return IMPOSSIBLE;
    }
    addOptions(order, left, right);
    const int32_t cost = m_program.solve(window);
    return cost >= OrderedProgram::NEVER ? IMPOSSIBLE : m_before - after - cost;
}

/// Places beyond the largest displacement cost NEVER. A cell that is beyond it stays as near as it is.
///
/// @return whether there is a place left for all
bool WindowSolver::closeFarPlaces(std::span<const int32_t> order, int32_t window)
{
    const int32_t step = m_at.model().step;
    for (size_t rank = 0; rank < order.size(); ++rank) {
        const int32_t index = m_cells[static_cast<size_t>(order[rank])];
        const ProgramItem& item = m_program.items[rank];
        const Cell& cell = m_at.cell(index);
        const int64_t up = std::abs(int64_t{m_at.yOf(m_row)} - m_at.startY(index));
        const int64_t now = displacementOf(index, {index, cell.row, cell.x, cell.state});
        const int64_t most = std::max<int64_t>(m_options.maxDisplacement, now) - up;
        bool anyLeft = false;
        for (int32_t p = 0; p < window; ++p) {
            const int64_t x = int64_t{m_run->x} + int64_t{item.low + p} * step;
            if (std::abs(x - m_at.startX(index)) > most) {
                m_program.costRoom(rank, false)[p] = OrderedProgram::NEVER;
                m_program.costRoom(rank, true)[p] = OrderedProgram::NEVER;
            } else {
                anyLeft = true;
            }
        }
        if (!anyLeft) {
            return false;
        }
    }
    return true;
}

/// Of two states that are alike for both neighbours, the one that a cell has.
int32_t WindowSolver::sameOr(int32_t state, int32_t index, const Classes& classes) const
{
    const Cell& cell = m_at.cell(index);
    const State* const states = m_at.model().states.data() + m_at.kindOf(cell).stateBegin;
    const bool alike = classes.left[state] == classes.left[cell.state] &&
                       classes.right[state] == classes.right[cell.state] &&
                       states[state].mirrored == states[cell.state].mirrored &&
                       states[state].stitches == states[cell.state].stitches;
    return alike ? cell.state : state;
}

void WindowSolver::changes(std::vector<Change>& result)
{
    m_program.trace(m_spots);
    for (size_t rank = 0; rank < m_order.size(); ++rank) {
        const int32_t cell = m_cells[static_cast<size_t>(m_order[rank])];
        const int32_t x = m_run->x + m_spots[rank].site * m_at.model().step;
        result.push_back({cell, m_row, x, sameOr(m_spots[rank].state, cell, m_classesOf[rank])});
    }
}

} // namespace refine
