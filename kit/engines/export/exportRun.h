// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "kit/engines/export/options.h"

namespace kit::exporter {

/// Exports a result: findings go to standard error, a line per file written to standard output.
///
/// @return exit status: 0 if all is well, 1 if there are warnings, 2 if there are errors; then nothing is
///         written
///
/// Errors: throws Fault if a file cannot be opened or written, if one would replace an input, or anything
/// without `force`, or if the design in the DEF file is another one.
int exportResult(const Options& options);

} // namespace kit::exporter
