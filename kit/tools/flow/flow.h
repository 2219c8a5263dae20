// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <iosfwd>

#include "kit/tools/flow/options.h"

namespace kit::flow {

/// Goes from LEF and DEF files to a coloured, legal DEF, a GDSII file with three masks and a page to look at:
/// imports, colours the library, lints, places, verifies, exports and draws, each step a run of this program,
/// and writes a table of them.
///
/// It stops at the first step that fails, with what to do, and leaves the files in between then.
///
/// Errors: throws Fault if a result exists and `force` is not given, or a step cannot be run.
///
/// @param out     takes the table
/// @param errors  takes messages of the steps, and what to do where one fails
/// @return exit status: 0 done; 1 the placement is not clean; 2 a step could not do its work
int flow(const Options& options, std::ostream& out, std::ostream& errors);

} // namespace kit::flow
