// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "kit/tools/flow/options.h"

namespace kit::flow {

/// A run of a subcommand.
struct Step {
    std::string name;               ///< of the subcommand
    std::vector<std::string> words; ///< subcommand and arguments
    int goodStatus = 0;             ///< highest exit status with which it goes on
    std::string advice;             ///< what to do if it fails
    bool tellsMessages = true;      ///< its messages are shown even if it does not fail
    /// What came out, in a line, from its log.
    std::function<std::string(const std::string& log)> summary;
};

/// Where the files in between are.
struct Places {
    std::string folder;  ///< of all of them
    std::string base;    ///< of the imported design, without extension
    std::string placed;  ///< of the placed design, without extension
    std::string result;  ///< of the results until they are complete, without extension
    std::string cellDir; ///< of the colour files
};

/// The last line of a text that is not blank, empty if there is none.
std::string lastLine(const std::string& log);

/// The places of a run; that of the colour files is empty if it was not given.
Places placesOf(const Options& options);

Step importStep(const Options& options, const Places& places);

/// @param site    size of a site, W,H in micrometres
/// @param folder  where the colour files are made
Step colorStep(const Options& options, const std::string& site, const std::string& folder);
Step lintStep(const Options& options, const Places& places);
Step placeStep(const Options& options, const Places& places);
Step verifyStep(const Options& options, const Places& places);
Step exportStep(const Options& options, const Places& places);
Step viewStep(const Options& options, const Places& places);

} // namespace kit::flow
