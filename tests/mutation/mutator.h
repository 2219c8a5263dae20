// SPDX-License-Identifier: BSD-3-Clause
// Random damage to good inputs.
#pragma once

#include <string>
#include <vector>

#include "mutation/inputs.h"
#include "mutation/random.h"

namespace mutation {

/// Makes 1 to 6 random changes to the files and options of a run.
///
/// Half of the time all of them are small ones, a number here and a line there, for they come past the
/// readers more often than damaged bytes do.
///
/// @param inputs  in, out: at least one file
/// @return what was done, in order
std::vector<std::string> mutate(Random& random, Inputs& inputs);

} // namespace mutation
