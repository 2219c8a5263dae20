// SPDX-License-Identifier: BSD-3-Clause
#include "refine/window.h"

#include <rapidcheck/Log.h>

#include "refine/randomModel.h"
#include "refine/windowSearch.h"

namespace {

using refine::WindowSolver;

constexpr int64_t ANY_WORTH = std::numeric_limits<int64_t>::min();

/// A random model and a window of it.
class WindowCase {
public:
    explicit WindowCase(const test::Variety& variety)
        : model(test::RandomModel(variety).model), at(model), options(test::drawOptions()),
          objective(bent(at, options), options),
          most(test::mostDisplacements(model, objective.starts, options.maxDisplacement))
    {
        RC_LOG() << test::textOf(model);
        for (int32_t i = 0; i < static_cast<int32_t>(model.cells.size()); ++i) {
            if (!at.cell(i).fixed) {
                m_moving.push_back(i);
            }
        }
        if (m_moving.empty()) {
            return;
        }
        drawFrame();
        for (size_t i = 0; i < taken.size(); ++i) {
            order.push_back(static_cast<int32_t>(i));
        }
    }

    bool empty() const { return m_moving.empty(); }

    /// Puts them in any order, near any places.
    void shuffle()
    {
        for (size_t i = order.size(); i > 1; --i) {
            std::swap(order[i - 1], order[static_cast<size_t>(test::draw(0, static_cast<int32_t>(i)))]);
        }
        for (int32_t& target : targets) {
            target = test::draw(-10, 40);
        }
    }

    /// The same with a cell of another row, if there is one.
    void takeStranger()
    {
        const int32_t cell = drawMoving();
        if (at.cell(cell).row != frame.row && at.cell(cell).fence == frame.run->fence) {
            order.push_back(static_cast<int32_t>(taken.size()));
            taken.push_back(cell);
            targets.push_back(at.cell(cell).x);
        }
    }

    /// Takes cells to be elsewhere. Those beside the window stay.
    void assumeSome()
    {
        for (int32_t count = test::draw(1, 3); count > 0; --count) {
            const int32_t cell = drawMoving();
            if (cell != frame.left && cell != frame.right &&
                std::ranges::find(assumed, cell, &refine::Change::cell) == assumed.end()) {
                assumed.push_back(test::drawChange(model, cell, assumed));
            }
        }
    }

    /// The model with the cells where they are assumed to be.
    refine::Model assumedModel() const
    {
        refine::Model result = model;
        test::change(result, assumed);
        return result;
    }

    std::vector<int32_t> cellsInOrder() const
    {
        std::vector<int32_t> cells;
        for (const int32_t i : order) {
            cells.push_back(taken[static_cast<size_t>(i)]);
        }
        return cells;
    }

    int64_t cost(const refine::Model& of) const { return objective.of(of); }

    std::optional<int64_t> leastCost() const
    {
        test::WindowSearch search(assumedModel(), objective, most, frame);
        return search.leastCost(cellsInOrder());
    }

    int64_t solve(WindowSolver& solver, int32_t sites, int64_t worth) const
    {
        solver.assume(assumed);
        solver.take(taken, frame.row);
        return solver.solve(frame, order, targets, sites, worth);
    }

    /// Whether the arrangement that a solver gave a gain for has this gain, and stands as it may.
    void assertArranged(WindowSolver& solver, int64_t gain) const
    {
        std::vector<refine::Change> changes;
        solver.changes(changes);
        refine::Model after = assumedModel();
        const int64_t before = cost(after);
        test::change(after, changes);
        RC_ASSERT(before - cost(after) == gain);
        RC_ASSERT(test::WindowSearch::isSpaced(after, frame, cellsInOrder()));
        RC_ASSERT(changes.size() == taken.size());
        for (const refine::Change& change : changes) {
            RC_ASSERT(change.row == frame.row);
            RC_ASSERT(objective.starts.displacementOf(after, static_cast<size_t>(change.cell)) <=
                      most[static_cast<size_t>(change.cell)]);
            RC_ASSERT(test::isOnSites(after, after.cells[static_cast<size_t>(change.cell)]));
            RC_ASSERT(frame.run == at.runAt(change.row, change.x));
        }
    }

    refine::Model model;
    refine::Placement at;
    refine::Options options;
    test::Objective objective;
    std::vector<int64_t> most; ///< [cell] largest displacement, units
    refine::WindowFrame frame;
    std::vector<int32_t> taken;
    std::vector<int32_t> targets;
    std::vector<int32_t> order;
    std::vector<refine::Change> assumed;

private:
    /// A placement with bent weights, or straight ones.
    static const refine::Placement& bent(refine::Placement& at, const refine::Options& options)
    {
        at.bendWeights(test::drawOne({0, 0, 16}), 1);
        at.setDisplacementWeight(
            static_cast<int32_t>(options.displacementPrice * at.parts() / refine::Options::PRICE_PARTS));
        return at;
    }

    int32_t drawMoving() const
    {
        return m_moving[static_cast<size_t>(test::draw(0, static_cast<int32_t>(m_moving.size())))];
    }

    void drawFrame()
    {
        const int32_t cell = drawMoving();
        frame.row = at.cell(cell).row;
        frame.run = at.runAt(frame.row, at.cell(cell).x);
        const std::vector<refine::Item>& items = at.items(frame.row);
        const auto mayMove = [&](size_t rank) {
            return !at.cell(items[rank].cell).fixed && at.runAt(frame.row, items[rank].x) == frame.run;
        };
        size_t first = at.rankOf(cell);
        size_t last = first + 1;
        for (int32_t beside = test::draw(0, 3); beside > 0; --beside) {
            if (first > 0 && mayMove(first - 1)) {
                --first;
            } else if (last < items.size() && mayMove(last)) {
                ++last;
            }
        }
        for (size_t rank = first; rank < last; ++rank) {
            taken.push_back(items[rank].cell);
            targets.push_back(items[rank].x);
        }
        frame.left = first > 0 ? items[first - 1].cell : -1;
        frame.right = last < items.size() ? items[last].cell : -1;
    }

    std::vector<int32_t> m_moving;
};

const test::Variety SMALL{.sites = 7, .states = 3};

} // namespace

PROPERTY_TIMES(WindowSolver, NoArrangementIsBetter, 8)
{
    WindowCase window(SMALL);
    if (window.empty()) {
        return;
    }
    window.takeStranger();
    window.shuffle();
    WindowSolver solver(window.at, window.options);
    const int64_t gain = window.solve(solver, refine::OrderedProgram::MOST_SITES, ANY_WORTH);
    const std::optional<int64_t> least = window.leastCost();
    RC_ASSERT((gain != WindowSolver::IMPOSSIBLE) == least.has_value());
    if (least) {
        RC_ASSERT(gain == window.cost(window.model) - *least);
        window.assertArranged(solver, gain);
    }
}

PROPERTY_TIMES(WindowSolver, AssumedCellsAreWhereTheyAreAssumedToBe, 8)
{
    WindowCase window(SMALL);
    if (window.empty()) {
        return;
    }
    window.assumeSome();
    window.takeStranger();
    window.shuffle();
    WindowSolver solver(window.at, window.options);
    const int64_t gain = window.solve(solver, refine::OrderedProgram::MOST_SITES, ANY_WORTH);
    const std::optional<int64_t> least = window.leastCost();
    RC_ASSERT((gain != WindowSolver::IMPOSSIBLE) == least.has_value());
    if (least) {
        RC_ASSERT(gain == window.cost(window.assumedModel()) - *least);
        window.assertArranged(solver, gain);
    }
}

PROPERTY_TIMES(WindowSolver, GainsOfAssumedCellsAreThoseOfTheObjective, 5)
{
    WindowCase window({});
    if (window.empty()) {
        return;
    }
    window.assumeSome();
    std::vector<int32_t> cells;
    for (const refine::Change& change : window.assumed) {
        cells.push_back(change.cell);
    }
    WindowSolver solver(window.at, window.options);
    solver.assume(window.assumed);
    RC_ASSERT(solver.gainOf(cells) == window.cost(window.model) - window.cost(window.assumedModel()));
}

PROPERTY_TIMES(WindowSolver, OnlyGainsOfNoUseAreLeftOut, 8)
{
    WindowCase window(SMALL);
    if (window.empty()) {
        return;
    }
    window.takeStranger();
    window.shuffle();
    const int64_t worth = test::draw<int64_t>(-300, 300);
    WindowSolver solver(window.at, window.options);
    const int64_t gain = window.solve(solver, refine::OrderedProgram::MOST_SITES, worth);
    const std::optional<int64_t> least = window.leastCost();
    if (gain == WindowSolver::IMPOSSIBLE) {
        const bool isOfUse =
            least && window.cost(window.model) - *least > worth; // RC_ASSERT looks at all parts
        RC_ASSERT(!isOfUse);
    } else {
        RC_ASSERT(least.has_value());
        RC_ASSERT(gain == window.cost(window.model) - *least);
    }
}

PROPERTY_TIMES(WindowSolver, NarrowWindowsGiveTheGainOfTheirArrangement, 8)
{
    WindowCase window({.sites = 30});
    if (window.empty()) {
        return;
    }
    window.takeStranger();
    window.shuffle();
    WindowSolver solver(window.at, window.options);
    const int64_t gain = window.solve(solver, test::draw(1, 12), ANY_WORTH);
    if (gain != WindowSolver::IMPOSSIBLE) {
        window.assertArranged(solver, gain);
    }
}

PROPERTY_TIMES(WindowSolver, GainsGrowWithLengthsAndWeightsOrAreTooLargeForIt, 3)
{
    refine::Model model = test::RandomModel({.sites = 70}).model;
    refine::Model large =
        test::multiplied(model, test::drawOne({1, 30, 400}), test::drawOne({1, 10, 100, 1000}));
    RC_LOG() << test::textOf(large);
    refine::Placement at(large);
    const refine::Options options;
    const test::Objective objective(at, options);
    WindowSolver solver(at, options);
    for (int32_t cell = 0; cell < static_cast<int32_t>(large.cells.size()); ++cell) {
        if (at.cell(cell).fixed) {
            continue;
        }
        const int32_t row = at.cell(cell).row;
        const size_t rank = at.rankOf(cell);
        const std::vector<refine::Item>& items = at.items(row);
        const refine::WindowFrame frame{row, at.runAt(row, at.cell(cell).x),
                                        rank > 0 ? items[rank - 1].cell : -1,
                                        rank + 1 < items.size() ? items[rank + 1].cell : -1};
        const std::vector cells{cell};
        solver.take(cells, row);
        const int64_t gain = solver.solve(frame, std::vector{0}, std::vector{at.cell(cell).x},
                                          refine::OrderedProgram::MOST_SITES, ANY_WORTH);
        if (gain != WindowSolver::IMPOSSIBLE) {
            std::vector<refine::Change> changes;
            solver.changes(changes);
            refine::Model after = large;
            test::change(after, changes);
            RC_ASSERT(objective.of(large) - objective.of(after) == gain);
        }
    }
}

// So nothing is lost by trying.
PROPERTY_TIMES(WindowSolver, CellsNearWhereTheyAreMayStay, 8)
{
    WindowCase window({.sites = 20, .wideFixed = true, .spaced = true});
    if (window.empty()) {
        return;
    }
    WindowSolver solver(window.at, window.options);
    RC_ASSERT(window.solve(solver, test::draw(1, 12), ANY_WORTH) >= 0);
}

PROPERTY_TIMES(WindowSolver, OneSolverSolvesManyWindows, 3)
{
    WindowCase window(SMALL);
    if (window.empty()) {
        return;
    }
    WindowSolver solver(window.at, window.options);
    for (int32_t times = test::draw(1, 5); times > 0; --times) {
        window.shuffle();
        WindowSolver fresh(window.at, window.options);
        const int64_t gain = window.solve(solver, refine::OrderedProgram::MOST_SITES, ANY_WORTH);
        RC_ASSERT(gain == window.solve(fresh, refine::OrderedProgram::MOST_SITES, ANY_WORTH));
        if (gain != WindowSolver::IMPOSSIBLE) {
            window.assertArranged(solver, gain);
        }
    }
}
