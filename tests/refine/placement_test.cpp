// SPDX-License-Identifier: BSD-3-Clause
#include "refine/placement.h"

#include <rapidcheck/Log.h>

#include <set>

#include "refine/randomModel.h"

namespace {

void assertAlike(const refine::Placement& one, const refine::Placement& other)
{
    const refine::Model& model = one.model();
    for (int32_t row = 0; row < static_cast<int32_t>(model.rows.size()); ++row) {
        RC_ASSERT(std::ranges::equal(one.items(row), other.items(row), [](const auto& a, const auto& b) {
            return a.x == b.x && a.cell == b.cell;
        }));
        for (size_t rank = 0; rank < one.items(row).size(); ++rank) {
            RC_ASSERT(one.rankOf(one.items(row)[rank].cell) == rank);
        }
    }
    for (int32_t net = 0; net + 1 < static_cast<int32_t>(model.nets.size()); ++net) {
        RC_ASSERT(std::ranges::equal(one.pinsOf(net), other.pinsOf(net), [](const auto& a, const auto& b) {
            return a.x == b.x && a.y == b.y && a.cell == b.cell;
        }));
        RC_ASSERT(one.weightOf(net) == other.weightOf(net));
    }
    for (int32_t cell = 0; cell < static_cast<int32_t>(model.cells.size()); ++cell) {
        RC_ASSERT(std::ranges::equal(one.terms(cell), other.terms(cell), [](const auto& a, const auto& b) {
            return a.net == b.net && a.reach == b.reach;
        }));
    }
}

} // namespace

PROPERTY_TIMES(RefinePlacement, ChangesLeaveItAsOneMadeAnew, 3)
{
    refine::Model model = test::RandomModel({}).model;
    RC_LOG() << test::textOf(model);
    const test::Starts starts(model);
    refine::Placement at(model);
    const size_t calls = test::draw<size_t>(0, 30);
    for (uint32_t call = 0; call < calls && !model.cells.empty(); ++call) {
        std::set<int32_t> cells;
        for (int32_t count = test::draw(0, 4); count > 0; --count) {
            cells.insert(test::draw(0, static_cast<int32_t>(model.cells.size())));
        }
        std::vector<refine::Change> changes;
        for (const int32_t cell : cells) {
            changes.push_back(test::drawChange(model, cell, changes));
        }
        at.apply(changes, call + 2);
        for (const refine::Change& change : changes) {
            RC_ASSERT(at.touched(change.cell) == call + 2);
            RC_ASSERT(at.moved(change.cell) == call + 2);
        }
    }
    for (size_t cell = 0; cell < model.cells.size(); ++cell) {
        RC_ASSERT(at.startX(static_cast<int32_t>(cell)) == starts.x[cell]);
        RC_ASSERT(at.startY(static_cast<int32_t>(cell)) == starts.y[cell]);
    }
    refine::Model copy = model;
    assertAlike(at, refine::Placement(copy));
}

PROPERTY_TIMES(RefinePlacement, PinsAreWhereTheModelHasThem, 2)
{
    refine::Model model = test::RandomModel({}).model;
    RC_LOG() << test::textOf(model);
    const refine::Placement at(model);
    for (size_t net = 0; net + 1 < model.nets.size(); ++net) {
        const auto index = static_cast<int32_t>(net);
        refine::Box box = at.fixedBoxOf(index);
        for (const refine::Placement::PlacedPin& pin : at.pinsOf(index)) {
            box.x.add(pin.x);
            box.y.add(pin.y);
        }
        RC_ASSERT(int64_t{box.x.length()} + box.y.length() == test::lengthOf(model, net));
    }
}

// The box of the pins of a cell on a net is what the net needs of it, whatever the row and the state.
PROPERTY_TIMES(RefinePlacement, ReachesAreTheBoxesOfPinsOfACellOnANet, 2)
{
    refine::Model model = test::RandomModel({}).model;
    RC_LOG() << test::textOf(model);
    const refine::Placement at(model);
    for (int32_t cell = 0; cell < static_cast<int32_t>(model.cells.size()); ++cell) {
        const refine::Cell& own = at.cell(cell);
        std::set<int32_t> nets;
        for (const refine::Term& term : at.terms(cell)) {
            RC_ASSERT(nets.insert(term.net).second);
            refine::Box box;
            for (const refine::Placement::PlacedPin& pin : at.pinsOf(term.net)) {
                if (pin.cell == cell) {
                    box.x.add(pin.x - own.x);
                    box.y.add(pin.y - at.yOf(own.row));
                }
            }
            const refine::Range& x = at.reachOf(term).x[at.stateOf(own).mirrored ? 1 : 0];
            const refine::Range& y = at.reachOf(term).y[at.isTurned(own.row) ? 1 : 0];
            RC_ASSERT(x.low == box.x.low);
            RC_ASSERT(x.high == box.x.high);
            RC_ASSERT(y.low == box.y.low);
            RC_ASSERT(y.high == box.y.high);
        }
        for (int32_t net = 0; net + 1 < static_cast<int32_t>(model.nets.size()) && !own.fixed; ++net) {
            const auto pins = at.pinsOf(net);
            const auto isOwn = [&](const refine::Placement::PlacedPin& pin) { return pin.cell == cell; };
            const bool isAlone = std::ranges::all_of(pins, isOwn) && at.fixedBoxOf(net).x.empty();
            RC_ASSERT(nets.contains(net) == (std::ranges::any_of(pins, isOwn) && !isAlone));
        }
    }
}

PROPERTY_TIMES(RefinePlacement, RunsAreFoundByTheirPlaces, 1)
{
    refine::Model model = test::RandomModel({}).model;
    RC_LOG() << test::textOf(model);
    const refine::Placement at(model);
    for (int32_t row = 0; row < static_cast<int32_t>(model.rows.size()); ++row) {
        for (int32_t x = -8; x < 60; ++x) {
            const auto want = std::ranges::find_if(model.runs, [&](const refine::Run& run) {
                return run.row == row && run.x <= x && x < run.x + run.sites * model.step;
            });
            const refine::Run* const found = at.runAt(row, x);
            RC_ASSERT(found == (want == model.runs.end() ? nullptr : &*want));
        }
    }
}

PROPERTY(RefinePlacement, BentWeightsAreNearTheTrueOnes)
{
    refine::Model model = test::RandomModel({}).model;
    refine::Placement at(model);
    const int32_t most = test::draw(0, refine::Placement::WEIGHT);
    at.bendWeights(most, static_cast<uint64_t>(test::draw(0, 100)));
    for (int32_t net = 0; net + 1 < static_cast<int32_t>(model.nets.size()); ++net) {
        const int32_t weight = model.nets[static_cast<size_t>(net)].weight;
        const int32_t bend = at.weightOf(net) - weight * refine::Placement::WEIGHT;
        RC_ASSERT(std::abs(bend) <= weight * most);
    }
}
