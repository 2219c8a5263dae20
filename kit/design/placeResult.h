// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string>

#include "kit/base/text/json.h"

namespace kit::design {

/// Reads OUT.json of `place`, as engines/place/result.schema.json describes it.
///
/// Errors: throws Fault if the file cannot be read, or is no such result.
Json readPlaceResult(const std::string& path);

/// The files of a result.
struct ResultFiles {
    std::string json;
    std::string place;
    std::string colors;
    std::string map{}; ///< empty if there is none: the design was not imported
    std::string cellDir{};
    int64_t errors = 0;    ///< that the judge found in the placement
    int32_t minDist = 0;   ///< distance that shapes of one mask need, library units
    bool rowsMeet = false; ///< masks 1 and 2 have changed places in every second row
};

/// Finds the files of a result.
///
/// @param json     path of OUT.json
/// @param cellDir  folder of the colour files; empty for the one in OUT.json, beside which a relative one
/// lies
///
/// Errors: throws Fault if the file is no result, or one of a run without a placement; if its placement is
/// not beside it.
ResultFiles findResult(const std::string& json, const std::string& cellDir);

} // namespace kit::design
