// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "kit/base/files/outputFile.h"
#include "kit/tools/sweep/table.h"

namespace kit::sweep {

/// Writes a table as the table `runs` of an SQLite database, and nothing else, into a file.
///
/// Errors: throws Fault if it cannot be written.
void writeSqlite(const Table& table, const OutputFile& file);

} // namespace kit::sweep
