// SPDX-License-Identifier: BSD-3-Clause
// The options of a run as values, and how a command line becomes them.
#pragma once

#include <cstdint>
#include <string>

#include "app/parameters.h"

namespace vireloce {

/// The options of a run; each begins as it is without the option.
struct PlaceOptions {
    std::string placePath = "sparc_exu_alu";          ///< path of the design files without extension
    std::string cellPath = "../benchNangate_shifted"; ///< folder of the colour files
    int32_t algo = 0;                                 ///< placement method
    Parameters parameters;
};

/// Echoes the arguments to the report and reads them as pairs of option and value, the last of a kind
/// winning.
///
/// @param argc     number of entries of argv, the program's name included
/// @param argv     [argc]
/// @param options  what the arguments name is replaced
/// @return false after the line "ERROR| can NOT parse: " about an unknown option, or one without a value; the
///         pairs before it have taken effect
bool readOptions(int argc, const char* const* argv, PlaceOptions& options);

/// A path without its last character if that is ".".
std::string withoutDot(std::string path);

} // namespace vireloce
