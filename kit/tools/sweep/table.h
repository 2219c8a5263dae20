// SPDX-License-Identifier: BSD-3-Clause
// All runs of a folder in one table.
#pragma once

#include <string>
#include <vector>

#include "kit/base/text/json.h"
#include "kit/tools/sweep/folder.h"
#include "kit/tools/sweep/task.h"

namespace kit::sweep {

/// What a column holds.
enum class Kind { TEXT, INTEGER, REAL };

struct Column {
    std::string name;
    Kind kind;
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

/// As comma-separated values (RFC 4180, with line ends of one character), the names first.
std::string toCsv(const Table& table);

/// As a JSON object per line.
std::string toJsonLines(const Table& table);

} // namespace kit::sweep
