// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <vector>

#include "kit/program.h"

namespace kit {

/// The subcommands, in the order of the help text.
std::vector<AddCommand> allCommands();

} // namespace kit
