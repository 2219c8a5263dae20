// SPDX-License-Identifier: BSD-3-Clause
// Results of `place` side by side.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "kit/base/text/json.h"

namespace kit::compare {

/// One result: OUT.json as read.
struct Run {
    std::string name; ///< how it is headed
    const Json& result;
};

/// A line of the table: one number per run, the smaller the better.
struct Line {
    std::string title;
    std::vector<std::optional<double>> values; ///< [run] nothing where a run did not get that far
};

/// The numbers that runs are compared by.
std::vector<Line> linesOf(const std::vector<Run>& runs);

/// The table in Markdown, the best of each line in bold; of equals all, and none where all are equal.
std::string toMarkdown(const std::vector<Run>& runs, const std::vector<Line>& lines);

/// The table as comma-separated values (RFC 4180), the names of the best in a last column.
std::string toCsv(const std::vector<Run>& runs, const std::vector<Line>& lines);

} // namespace kit::compare
