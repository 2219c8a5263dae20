// SPDX-License-Identifier: BSD-3-Clause
// Options that several subcommands have: --mindp, --site and --layer.
#pragma once

#include <optional>
#include <string>

#include "kit/base/commandLine.h"
#include "kit/design/distance.h"
#include "kit/formats/lefdef/lef.h"

namespace kit {

/// Adds the option --mindp to a subcommand.
///
/// @param distance  out: what is given; must live until the arguments are read
void addDistanceOption(const Command& command, design::Distance& distance);

/// As the other, where not giving it means something of its own.
void addDistanceOption(const Command& command, std::optional<design::Distance>& distance);

/// Why a text is not W,H in micrometres, two positive numbers; empty if it is.
std::string faultOfSite(const std::string& text);

/// Adds the option --site W,H to a subcommand.
///
/// @param site  out: the size if the option is given; must live until the arguments are read
void addSiteOption(const Command& command, std::optional<lefdef::SiteSize>& site);

/// Adds the option --layer to a subcommand.
///
/// @param layer  out: the name if it is given; must live until the arguments are read
void addLayerOption(const Command& command, std::string& layer);

} // namespace kit
