// SPDX-License-Identifier: BSD-3-Clause
// A strict judge of a placement and its colours. It shares no code with the placer.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kit/input/colors.h"
#include "kit/input/design.h"
#include "kit/input/finding.h"
#include "kit/verify/issue.h"

namespace kit::verify {

/// What is judged, and how.
struct Options {
    std::string placement; ///< path of the placement file
    std::string colors;    ///< path of the colours file
    std::string mapOf{};   ///< path of the placement file beside which the map lies; empty for this one
    std::string cellDir;   ///< folder of the colour files of the cells
    std::string cells;     ///< path of the cell list; empty for the cells that the placement names
    int32_t minDist = 185; ///< distance that shapes of one mask need, library coordinates
    bool json = false;     ///< JSON in place of text on standard output
    std::string lyrdb;     ///< path of a report database to be written, empty for none
    int32_t worst = 20;    ///< rows of the tables of the closest pairs
};

/// The inputs as they were read.
struct Input {
    input::Design design;
    std::vector<input::ColorRecord> colors;
    input::Findings faults; ///< in the form of the files
};

/// Reads what is to be judged. Errors: throws Fault if a file cannot be opened.
Input readInput(const Options& options);

/// All issues of a placement.
///
/// Errors: throws Fault if the first row's step is not positive.
Issues judge(const Input& input, int32_t minDist);

/// Issues per kind, the index is the Kind.
std::vector<int64_t> countKinds(const Issues& issues);

/// The exit status of the subcommand: 2 if the inputs have faults of form, 1 if an issue is more than a note.
int exitStatusOf(const Input& input, const Issues& issues);

} // namespace kit::verify
