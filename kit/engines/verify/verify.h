// SPDX-License-Identifier: BSD-3-Clause
// A strict judge of a placement and its colours, which shares no code with the placer, and its reports.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include "kit/design/coloredPlacement.h"
#include "kit/design/distance.h"
#include "kit/design/issue.h"

namespace kit::verify {

/// What is judged, and how.
struct Options : design::PlacementPaths {
    design::Distance minDist; ///< what shapes of one mask need
    bool acrossRows = false;  ///< conflicts of cells in different rows are errors
    bool rails = false;       ///< metal of mask 0 too close to a rail is an error
    bool json = false;        ///< JSON in place of text on standard output
    std::string lyrdb;        ///< path of a report database to be written, empty for none
    int32_t worst = 20;       ///< rows of the tables of the closest pairs
};

/// Pairs of cells with an issue after which the search is given up: cells in a heap have too many.
inline constexpr size_t MOST_PAIRS = 1'000'000;

/// What a placement is judged by.
struct Rules {
    int32_t minDist = 185;         ///< distance that shapes of one mask need, library coordinates
    bool acrossRows = false;       ///< conflicts of cells in different rows are errors
    bool rails = false;            ///< metal of mask 0 too close to a rail is an error
    size_t mostPairs = MOST_PAIRS; ///< pairs with an issue after which the search ends
};

/// All issues of a placement.
///
/// Errors: throws Fault if the first row's step is not positive.
design::Issues judge(const design::ColoredPlacement& input, const Rules& rules);

/// Issues per kind, the index is the Kind.
std::vector<int64_t> countKinds(const design::Issues& issues);

/// The exit status of the subcommand: 2 if the inputs have faults of form, 1 if an issue is more than a note.
int exitStatusOf(const design::ColoredPlacement& input, const design::Issues& issues);

/// What an issue says, without its place.
///
/// @param minDist  the distance that shapes of one mask need, for people
std::string textOf(const design::Issue& issue, const placer::Design& design, const std::string& minDist);

/// The judgement in a few words: "not clean, 2 errors, 0 notes".
std::string summaryOf(const design::ColoredPlacement& input, const design::Issues& issues);

/// Writes issues as lines "FILE:LINE: error|note: what [kind]", the closest pairs as a table, and counts.
///
/// Of the pairs in different rows, which are notes, only the closest get a line.
void writeText(const Options& options, const design::ColoredPlacement& input, const design::Issues& issues,
               std::ostream& out);

/// Writes everything as one JSON object.
void writeJson(const Options& options, const design::ColoredPlacement& input, const design::Issues& issues,
               std::ostream& out);

/// Writes a report database with a marker for each issue that has a place in the layout, micrometres.
///
/// Errors: throws Fault if the file cannot be written.
void writeMarkers(const Options& options, const design::ColoredPlacement& input,
                  const design::Issues& issues);

} // namespace kit::verify
