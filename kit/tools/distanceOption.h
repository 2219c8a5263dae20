// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <optional>

#include "kit/base/commandLine.h"
#include "kit/design/distance.h"

namespace kit {

/// Adds the option --mindp to a subcommand.
///
/// @param distance  out: what is given; must live until the arguments are read
void addDistanceOption(const Command& command, design::Distance& distance);

/// As the other, where not giving it means something of its own.
void addDistanceOption(const Command& command, std::optional<design::Distance>& distance);

} // namespace kit
