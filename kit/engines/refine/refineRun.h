// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "kit/engines/refine/options.h"

namespace kit::refine {

/// Makes the wires of a placement shorter, and writes the placement that comes of it: NEW.place, NEW.colors
/// and NEW.json, and copies of the other files of the design. An interrupt (SIGINT) or the end of the given
/// time ends the search; what it has found until then is written.
///
/// @return exit status: 0 the result is clean; 1 it has errors, as `verify` finds them; 2 an input has errors
///
/// Errors: throws Fault for inputs without a model, and if files cannot be read or written.
int refine(const Options& options);

} // namespace kit::refine
