// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "kit/engines/place/options.h"

namespace kit::place {

/// Runs the placer and writes OUT.place, OUT.colors and OUT.json, with copies of the other inputs; if the run
/// gives no placement, OUT.json alone.
///
/// @return exit status: 0 placed and clean; 1 with conflicts, cells without a place, or no placement; 2 if
/// the
///         inputs cannot be read
///
/// Errors: throws Fault if the results cannot be written.
int place(const Options& options);

} // namespace kit::place
