// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

#include "kit/sweep/table.h"

namespace kit::sweep {

/// Writes a table as the table `runs` of an SQLite database, in place of a file of that name.
///
/// Errors: throws Fault if it cannot be written.
void writeSqlite(const Table& table, const std::string& path);

} // namespace kit::sweep
