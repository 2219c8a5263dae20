// SPDX-License-Identifier: BSD-3-Clause
// All runs of a folder in one table.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "kit/base/files/outputFile.h"
#include "kit/base/text/json.h"
#include "kit/tools/sweep/task.h"

namespace kit::sweep {

/// What a column of a table holds.
struct Column {
    std::string name;
    const char* type; ///< as SQLite names it: "TEXT", "INTEGER" or "REAL"
};

/// A table of values, null where there is none.
struct Table {
    std::vector<Column> columns;
    std::vector<std::vector<Json>> rows; ///< [row][column]
    std::vector<std::string> troubles;   ///< a line per run that is missing or failed
};

/// The table of a folder, a row per task, in their order.
///
/// @param times  whether to have what differs from run to run as well: times, memory, host, message
///
/// Errors: throws Fault if there are no tasks.
Table tableOf(const std::string& dir, bool times);

/// Writes a table as the table `runs` of an SQLite database, and nothing else, into a file.
///
/// Errors: throws Fault if it cannot be written.
void writeSqlite(const Table& table, const OutputFile& file);

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
