// SPDX-License-Identifier: BSD-3-Clause
// Pictures of what a study found.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "kit/tools/sweep/chart.h"
#include "kit/tools/sweep/result.h"
#include "kit/tools/sweep/task.h"

namespace kit::sweep {

/// A run with its placement.
struct Made {
    Task task;
    Result result;
};

/// The points that no other beats: none is as good in both costs and better in one. Of equal ones all.
///
/// @return their indices, by x, then by y, then by index
std::vector<size_t> frontOf(const std::vector<Costs>& points);

/// Wirelength against stitches for the runs of one design: the front of the clean ones is joined, and
/// labelled with those options that differ. Nothing if no run has both figures.
std::optional<Chart> tradeOffChart(const std::string& design, const std::vector<Made>& runs);

/// Processor time against components for all runs, on logarithmic scales; a line through the medians of each
/// method. Nothing if there are no runs.
std::optional<Chart> timeChart(const std::vector<Made>& runs);

/// What `sweep plot` is asked to do.
struct PlotOptions {
    std::string dir;
    std::string out;    ///< folder of the pictures, made if it is not there
    bool force = false; ///< replace pictures that are there
};

/// Writes OUT/tradeoff-DESIGN.svg for each design, and OUT/time.svg.
///
/// @return exit status: 1 if there is nothing to draw
///
/// Errors: throws Fault if a picture is there and `force` is not given, or cannot be written.
int plot(const PlotOptions& options);

} // namespace kit::sweep
