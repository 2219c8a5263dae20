// SPDX-License-Identifier: BSD-3-Clause
// Solutions for the cells that stay where they are.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "kit/formats/placer/colors.h"
#include "kit/formats/placer/design.h"

namespace kit::place {

/// A component that gets another solution or place.
struct ChangedCell {
    int32_t component = 0; ///< index in Design::components
    int32_t solution = 0;
    int32_t steps = 0; ///< sites to the right
};

/// Solutions chosen.
struct ChosenSolutions {
    std::vector<int32_t> fixed;       ///< [Design::fixed] -1 for one without solutions
    std::vector<ChangedCell> changed; ///< components
};

/// Chooses solutions for the fixed cells of placements of a design.
class SolutionChooser {
public:
    /// @param design   with what stays where it is; must outlive this, and only places and orientations of
    /// its
    ///                 components may change
    /// @param minDist  distance that shapes of one mask need, library coordinates
    SolutionChooser(const placer::Design& design, int32_t minDist);
    ~SolutionChooser();

    SolutionChooser(const SolutionChooser&) = delete;
    SolutionChooser& operator=(const SolutionChooser&) = delete;
    SolutionChooser(SolutionChooser&&) = delete;
    SolutionChooser& operator=(SolutionChooser&&) = delete;

    /// Chooses, row by row, so that as few pairs of next neighbours as can be are too close, then that they
    /// lack the fewest sites, then with the fewest stitches. Where a fixed cell or block is too close to a
    /// neighbour whatever the choice, up to eight components on each side may get other solutions; if that
    /// does not do, they may be moved by up to three sites as well, but not onto macros.
    ///
    /// @param colors  [component] its colours, where they are now, in true orientations
    ChosenSolutions choose(const std::vector<placer::ColorRecord>& colors);

private:
    class Rows;
    std::unique_ptr<Rows> m_rows;
};

} // namespace kit::place
