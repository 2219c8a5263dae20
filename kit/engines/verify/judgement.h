// SPDX-License-Identifier: BSD-3-Clause
// The judgement of a result that has not got its names yet.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "kit/base/files/outputFile.h"
#include "kit/base/text/json.h"

namespace kit::verify {

/// A result to be judged.
struct Result {
    std::string base;      ///< path of the design that it was made from, without extension
    std::string out;       ///< path of the result without extension
    std::string cellPath;  ///< folder of the color files
    int32_t minDist = 0;   ///< distance that shapes of one mask need, library coordinates
    bool rowsMeet = false; ///< judge cells of different rows as well
};

/// What the strict judge of `verify` says of the result files.
struct Judgement {
    bool possible = false; ///< the files could be judged
    int64_t errors = 0;    ///< issues that are more than notes
    int64_t conflicts = 0; ///< of these, pairs of cells in a row with shapes of one mask too close
    int64_t notes = 0;
    std::optional<double>
        minDist{}; ///< least distance of shapes on one mask, micrometres, where UNITS are known
    Json hpwlPins; ///< wirelength by pins before and after, of an imported design; null for another
};

/// Judges OUT.place with OUT.colors, which need not have their names yet. The placer's own count of conflicts
/// follows its spacing rules, which take mirrored cells as unmirrored; this one is of the shapes as they lie,
/// where rows meet across them as well.
///
/// @param files  has both
Judgement judge(const Result& result, const OutputSet& files);

/// For the result, its member "judge": null if there is no judgement.
Json toJson(const Judgement& judgement);

} // namespace kit::verify
