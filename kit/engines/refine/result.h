// SPDX-License-Identifier: BSD-3-Clause
// The member "refine" of a result, as engines/place/result.schema.json describes it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "kit/base/text/json.h"
#include "kit/engines/refine/options.h"
#include "kit/engines/refine/start.h"
#include "refine/improve.h"

namespace kit::refine {

/// What a run has done.
struct Outcome {
    ::refine::Result search;
    int64_t lengthBefore = 0; ///< wirelength, each net once, half DBU
    int64_t lengthAfter = 0;
    int64_t stitchesBefore = 0;
    int64_t stitchesAfter = 0;
    std::optional<Comparison> base{}; ///< with the earlier result that it started from
    int64_t movedCells = 0;
    int64_t mirroredCells = 0;
    int64_t recoloredCells = 0;
    /// A component without a legal place.
    struct Homeless {
        std::string name;
        bool isProved = false; ///< no row has as many free sites as it takes
    };
    std::vector<Homeless> homeless{};
    std::vector<std::string> strays{}; ///< names of the components that stay for want of colors
    std::string stopped{};             ///< "time" or "interrupt"; empty if it came to its end
    double seconds = 0.0;              ///< wall time of the search
    double stitchPrice = 0.0;          ///< half DBU
};

/// The member "refine".
///
/// @param byPins        wirelength is that from pin to pin
/// @param dbuPerMicron  0 if it is not known
Json refineJson(const Options& options, const Outcome& outcome, bool byPins, int32_t dbuPerMicron);

/// The member "refine" in a line for people.
std::string summaryOf(const Json& refine);

} // namespace kit::refine
