// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <iosfwd>
#include <string>

namespace kit::sweep {

/// What `sweep collect` is asked to do. Empty paths were not given.
struct CollectOptions {
    std::string dir;
    std::string csv;
    std::string jsonl;
    std::string sqlite;
    bool noTimes = false; ///< leave out what differs from run to run
    bool force = false;   ///< replace files that are there
};

/// Writes the table of all runs: as CSV on `out` if no file is asked for. Tells runs that are missing or
/// failed on standard error.
///
/// @return exit status: 1 if there are such runs
///
/// Errors: throws Fault if a file is there and `force` is not given, or cannot be written.
int collect(const CollectOptions& options, std::ostream& out);

} // namespace kit::sweep
