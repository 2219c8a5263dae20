// SPDX-License-Identifier: BSD-3-Clause
// Other starts than the placement that is given: that of an earlier result, or that which `place` was given.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kit/engines/refine/inputs.h"

namespace kit::refine {

/// How a design compares with that of an earlier result.
struct Comparison {
    std::vector<bool> changed{}; ///< [component] is not as there: new, or of another master or on other nets
    int64_t kept = 0;
    int64_t changes = 0;
    int64_t news = 0;
};

/// Starts from an earlier result of a design that may have been changed since: components that are known by
/// their names get its places, and those of the same master its orientations and solutions as well. What
/// stays where it is gets its solutions if it has none.
///
/// @param base    path of the earlier result without extension
/// @param inputs  out: the design
///
/// Errors: throws Fault if a file cannot be read, or has errors, or has another unit of length.
Comparison startFrom(const std::string& base, Inputs& inputs);

/// Starts where the components were before they were placed.
///
/// @param placement  path of the placement that `place` was given
/// @param inputs     out: the design
///
/// Errors: throws Fault if the file cannot be read, has errors, or is of other components.
void startBefore(const std::string& placement, Inputs& inputs);

/// Gives all components without a solution one, if their cells have any, and where rows meet those of the
/// kind that their row has.
void settleColors(bool rowsMeet, Inputs& inputs);

} // namespace kit::refine
