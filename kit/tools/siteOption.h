// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <optional>
#include <string>

#include "kit/base/commandLine.h"
#include "kit/formats/lefdef/lef.h"

namespace kit {

/// Reads "W,H" in micrometres. @return none if it is not two positive numbers
std::optional<lefdef::SiteSize> parseSite(const std::string& text);

/// Adds the option --site W,H to a subcommand.
///
/// @param site  out: the size if the option is given; must live until the arguments are read
void addSiteOption(const Command& command, std::optional<lefdef::SiteSize>& site);

} // namespace kit
