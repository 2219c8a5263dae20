// SPDX-License-Identifier: BSD-3-Clause
// The result of `place`, as it is found beside its OUT.json.
#pragma once

#include <cstdint>
#include <string>

namespace kit::exporter {

/// The files of a result.
struct ResultFiles {
    std::string json;
    std::string place;
    std::string colors;
    std::string map{}; ///< empty if there is none: the design was not imported
    std::string cellDir{};
    int64_t errors = 0;  ///< that the judge found in the placement
    int32_t minDist = 0; ///< distance that shapes of one mask need, library units
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

} // namespace kit::exporter
