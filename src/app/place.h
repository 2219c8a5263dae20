// SPDX-License-Identifier: BSD-3-Clause
// One run of the placer for other programs: options and results as values, errors as an exception.
#pragma once

#include <cstdint>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "app/placeOptions.h"
#include "db/setUpFigures.h"
#include "legalizer/legalizer.h"
#include "qlib/report.h"

namespace vireloce {

/// What a part of a run took, seconds.
struct Times {
    double cpu = 0.0; ///< user time of the process and of its children that it has waited for
    double wall = 0.0;
};

/// What a placement measures in the end.
struct FinalFigures {
    int64_t hpwl = 0;           ///< wirelength, DBU
    int64_t hpwlIncrease = 0;   ///< over that before the placement, DBU
    double increasePercent = 0; ///< the same in percent; not a number, or infinite, if that was 0
    int32_t stitches = 0;       ///< of the components in segments
    int32_t conflicts = 0;      ///< neighbours in a segment that are too close, as the placer counts

    /// Whether all figures are equal.
    bool operator==(const FinalFigures&) const = default;
};

/// A pass over all segments.
struct Pass {
    int32_t overfull = 0; ///< segments that components had to be moved out of
    int32_t movedOut = 0; ///< components moved out

    /// Whether both counts are equal.
    bool operator==(const Pass&) const = default;
};

/// Where a component is in the end.
struct PlacedComponent {
    std::string name;
    int32_t x = 0;        ///< left edge, DBU
    int32_t y = 0;        ///< bottom edge, DBU
    int32_t siteX = 0;    ///< sites from the left end of its segment
    int32_t solution = 0; ///< index of its colour solution

    /// Whether names, places and solutions are equal.
    bool operator==(const PlacedComponent&) const = default;
};

/// What a run gives.
struct PlaceResult {
    SetUpFigures setUp;
    Times setUpTime;
    std::vector<Pass> passes; ///< the last one moved nothing; none without segments
    Times placeTime;          ///< of the passes alone
    FinalFigures end;
    std::vector<PlacedComponent> components; ///< file order
};

/// What is called while the placer runs. The report is the same with them and without.
///
/// They see the design with all its names and indices. The result is as complete as the run is.
struct PlaceHooks {
    std::ostream* report = nullptr; ///< where the report goes, not owned; nullptr: nowhere

    /// Whether nothing but the report is wanted. Then PlaceResult::end and PlaceResult::components stay
    /// empty, which would take some hundredths of the time of a large design.
    bool reportOnly = false;

    std::function<void(Design&, const PlaceResult&)> afterSetUp;         ///< before the first pass
    std::function<void(const Progress&, const PlaceResult&)> onProgress; ///< after every segment of a pass

    /// After the last pass. It may change the design, whose state is in the result already; the names in
    /// PlaceResult::components alone are still missing.
    std::function<void(Design&, const PlaceResult&)> afterEvaluation;
};

/// Places a design: set-up, placement, evaluation. Standard output is not touched, and the parameters are in
/// the end what they were. One run at a time in a process.
///
/// @param options  of the run
/// @param hooks    called on the way; those that are empty are not
///
/// Errors: RunError, also if memory runs out; its line is then the last one of the report.
PlaceResult place(const PlaceOptions& options, const PlaceHooks& hooks = {});

} // namespace vireloce
