// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <iosfwd>

#include "kit/flow/options.h"

namespace kit::flow {

/// Goes from LEF and DEF files to a coloured, legal DEF, a GDSII file with three masks and a page to look at:
/// imports, colours the library, lints, places, verifies, exports and draws, each step a run of this program,
/// and writes a table of them.
///
/// It stops at the first step that fails, with what to do, and leaves the files in between then.
///
/// @return exit status: 0 done; 1 the placement is not clean; 2 a step could not do its work
///
/// Errors: throws Fault if a result exists and `force` is not given, or a step cannot be run.
int flow(const Options& options, std::ostream& out);

} // namespace kit::flow
