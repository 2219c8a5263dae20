// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "kit/base/text/json.h"
#include "kit/tools/flow/options.h"

namespace kit::flow {

/// The member "summary" of the JSON that a subcommand tells.
std::string summaryIn(const Json& result);

/// A run of a subcommand.
struct Step {
    std::string name;               ///< of the subcommand
    std::vector<std::string> words; ///< subcommand and arguments
    std::string result{};           ///< path of the JSON that tells what came out; empty: it prints that
    std::string needs{};            ///< member of the JSON without which it has failed
    int goodStatus = 0;             ///< highest exit status with which it goes on
    std::string advice;             ///< what to do if it fails
    bool tellsMessages = true;      ///< its messages are shown even if it does not fail
    /// What came out, in a line, from the JSON; null if there is none.
    std::function<std::string(const Json& result)> summary = summaryIn;
};

/// Where the files in between are.
struct Places {
    std::string folder;  ///< of all of them
    std::string base;    ///< of the imported design, without extension
    std::string placed;  ///< of the placed design, without extension
    std::string refined; ///< of that with shorter wires, without extension
    std::string result;  ///< of the one of them that is exported, and of results until all are complete
    std::string cellDir; ///< of the colour files
    std::string colored; ///< list of the cells that are coloured
};

/// The places of a run; that of the colour files is empty if it was not given.
Places placesOf(const Options& options);

/// Reads LEF and DEF into a design of the placer.
Step importStep(const Options& options, const Places& places);

/// Makes the colour files of the library.
///
/// @param site    size of a site, W,H in micrometres
/// @param folder  where the colour files are made
Step colorStep(const Options& options, const Places& places, const std::string& site,
               const std::string& folder);

/// Looks for problems of the design.
Step lintStep(const Options& options, const Places& places);

/// Places and colours the design.
Step placeStep(const Options& options, const Places& places);

/// Makes the wires of the placed design shorter.
///
/// @param anew  start from the imported design
Step refineStep(const Options& options, const Places& places, bool anew);

/// Judges the placed design.
Step verifyStep(const Options& options, const Places& places);

/// Writes DEF and GDSII of the placed design.
Step exportStep(const Options& options, const Places& places);

/// Draws the placed design as a page.
Step viewStep(const Options& options, const Places& places);

} // namespace kit::flow
