// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/gen/colouring.h"

#include <algorithm>
#include <optional>

namespace kit::gen {

namespace {

constexpr int32_t MOST_STITCHES = 3;
constexpr int32_t TRIES_PER_SOLUTION = 30;
constexpr int32_t STITCHED_SHARE = 400; // per mille of the solutions that have stitches
constexpr int32_t STITCHES = 400;       // per mille of the joints that part in a solution with stitches
constexpr int32_t PINNED = 250;         // per mille of the shapes that have one mask in all solutions

using Conflicts = std::vector<std::vector<size_t>>; ///< [shape] earlier shapes that need another mask

Conflicts findConflicts(const std::vector<Shape>& shapes)
{
    Conflicts conflicts(shapes.size());
    for (size_t i = 0; i < shapes.size(); ++i) {
        for (size_t j = 0; j < i; ++j) {
            const bool sameBar = shapes[i].joined && j + 1 == i;
            if (!sameBar && !shapes[i].rail && tooClose(shapes[i].box, shapes[j].box)) {
                conflicts[i].push_back(j);
            }
        }
    }
    return conflicts;
}

/// Colours the shapes of a cell one by one at random.
class Painter {
public:
    Painter(const std::vector<Shape>& shapes, Random& random)
        : m_shapes(shapes), m_conflicts(findConflicts(shapes)), m_pins(shapes.size(), -1), m_random(random)
    {
    }

    /// Keeps some shapes on their masks in a solution from now on.
    void pin(const Solution& solution)
    {
        for (size_t i = 0; i < m_pins.size(); ++i) {
            m_pins[i] = m_random.perMille(PINNED) ? solution.masks[i] : -1;
        }
    }

    /// A solution, or nothing where this attempt got stuck.
    std::optional<Solution> paint(bool withStitches)
    {
        Solution solution;
        for (size_t i = 0; i < m_shapes.size(); ++i) {
            const int32_t mask = m_shapes[i].rail ? 0 : chooseMask(i, solution.masks, withStitches);
            if (mask < 0) {
                return std::nullopt;
            }
            solution.stitches += m_shapes[i].joined && mask != solution.masks.back() ? 1 : 0;
            solution.masks.push_back(mask);
        }
        return solution.stitches <= MOST_STITCHES ? std::optional(solution) : std::nullopt;
    }

private:
    /// A mask that no conflict forbids, -1 if there is none.
    int32_t chooseMask(size_t shape, const std::vector<int32_t>& masks, bool withStitches)
    {
        std::vector<int32_t> free;
        for (int32_t mask = 0; mask < MASKS; ++mask) {
            if ((m_pins[shape] < 0 || m_pins[shape] == mask) &&
                std::none_of(m_conflicts[shape].begin(), m_conflicts[shape].end(),
                             [&](size_t other) { return masks[other] == mask; })) {
                free.push_back(mask);
            }
        }
        if (m_shapes[shape].joined && !(withStitches && m_random.perMille(STITCHES))) {
            return std::find(free.begin(), free.end(), masks.back()) != free.end() ? masks.back() : -1;
        }
        return free.empty() ? -1 : m_random.pick(free);
    }

    const std::vector<Shape>& m_shapes;
    Conflicts m_conflicts;
    std::vector<int32_t> m_pins; ///< [shape] its only mask, -1: any
    Random& m_random;
};

/// Appends new solutions, either all with or all without stitches, until there are enough or the tries are
/// used up.
void collect(std::vector<Solution>& solutions, Painter& painter, int32_t most, bool withStitches)
{
    const auto enough = static_cast<size_t>(most);
    for (int32_t i = 0; i < most * TRIES_PER_SOLUTION && solutions.size() < enough; ++i) {
        const std::optional<Solution> solution = painter.paint(withStitches);
        if (solution && (solution->stitches > 0) == withStitches &&
            std::find(solutions.begin(), solutions.end(), *solution) == solutions.end()) {
            solutions.push_back(*solution);
        }
    }
}

} // namespace

std::vector<Solution> findSolutions(const std::vector<Shape>& shapes, int32_t most, Random& random)
{
    Painter painter(shapes, random);
    std::vector<Solution> solutions;
    collect(solutions, painter, 1, /*withStitches=*/false);
    if (solutions.empty()) {
        return solutions;
    }
    painter.pin(solutions.front());
    collect(solutions, painter, most - most * STITCHED_SHARE / 1000, /*withStitches=*/false);
    collect(solutions, painter, most, /*withStitches=*/true);
    collect(solutions, painter, most, /*withStitches=*/false); // where stitches are no help
    std::stable_sort(solutions.begin(), solutions.end(),
                     [](const Solution& a, const Solution& b) { return a.stitches < b.stitches; });
    return solutions;
}

} // namespace kit::gen
