// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "kit/base/finding.h"
#include "kit/engines/lint/options.h"

namespace kit::lint {

/// Reads a design and checks all of it. A file that cannot be read is a finding, too.
///
/// @return every problem, sorted by file and line; warnings are errors if the options say so
Findings findingsOf(const Options& options);

/// Writes findingsOf() to standard output.
///
/// @return exit status: 0 without findings or with notes only, 1 with warnings, 2 with errors
int run(const Options& options);

} // namespace kit::lint
