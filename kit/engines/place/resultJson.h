// SPDX-License-Identifier: BSD-3-Clause
// The result of a run as JSON, described by result.schema.json.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/place.h"
#include "kit/base/text/json.h"
#include "kit/engines/place/options.h"
#include "kit/engines/place/rescue.h"
#include "kit/engines/place/state.h"

class Design;

namespace kit::place {

/// A run of the placer, as far as it came.
struct PlacerRun {
    vireloce::PlaceResult result;
    bool readable = false; ///< the set-up is in the result
    bool complete = false; ///< the end is, too
};

/// The placement part of the result: what can be said of the design.
///
/// @param start  [component] positions before the placement
Json toJson(const Design& design, const State& state);

/// What a rescue did.
Json toJson(const Design& design, const Rescue& rescue);

/// The whole result; its members "judge" and "hpwl_pins" are null.
///
/// @param minDist    library units
/// @param placement  of toJson(), null if the run gave none
/// @param rescue     null if none was asked for
/// @param seconds    wall time of the run
Json resultJson(const Options& options, int32_t minDist, const PlacerRun& run, Json placement, Json rescue,
                double seconds);

} // namespace kit::place
