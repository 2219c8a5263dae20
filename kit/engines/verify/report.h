// SPDX-License-Identifier: BSD-3-Clause
// The judge's reports: text and JSON on a stream, a report database for layout viewers in a file.
#pragma once

#include <iosfwd>
#include <string>

#include "kit/engines/verify/verify.h"

namespace kit::verify {

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
