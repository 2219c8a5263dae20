// SPDX-License-Identifier: BSD-3-Clause
// A placed and colored design as the model that shorter wires are searched in, and the way back.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "kit/design/distance.h"
#include "kit/engines/refine/inputs.h"
#include "refine/model.h"

namespace kit::refine {

/// What is asked for.
struct Demands {
    int32_t minDist = design::Distance::USUAL; ///< that shapes of one mask need, library units
    bool rowsMeet = false;                     ///< masks 1 and 2 have changed places in every second row
    std::set<std::string> fixed{};             ///< components that stay where they are
    std::vector<int32_t> weights{};            ///< [net] positive; empty for 1 each
    std::vector<bool> changed{};               ///< [component] to be improved; empty for all
};

/// Where a component stands, and how.
struct Placed {
    int32_t x = 0; ///< left edge, DBU
    int32_t y = 0; ///< bottom edge, DBU
    bool mirrored = false;
    int32_t solution = -1; ///< index in its color file
};

/// A model, and what its numbers are in the design.
struct Built {
    ::refine::Model model;         ///< half DBU; the components first, in the order of the design
    std::vector<int32_t> strays{}; ///< components that stay because they are bare or in rows with other sites
    std::vector<::refine::Cell> start{}; ///< [component] as built
    std::vector<Placed> placed{};        ///< [component] as in the design
    std::vector<int32_t> half{}; ///< [component] solutions of the first kind where rows meet, 0 for others
    std::vector<int32_t> stitches{}; ///< [component] as in the design
    std::vector<bool> otherRow{};    ///< [row of the model] has solutions of the second kind
};

/// The model of a design. A component that is in no row gets the nearest one: where it stands truly, startX
/// and startY say.
///
/// Errors: throws Fault if the design has none: without rows, too large, or with colors that are not those of
/// its cells.
Built buildModel(const Inputs& inputs, const Demands& demands);

/// [component] where the components are in a model that was built, and changed since.
///
/// @param model  of the same cells
std::vector<Placed> placedOf(const Built& built, const ::refine::Model& model);

} // namespace kit::refine
