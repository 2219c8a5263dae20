// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "kit/lefdef/lef.h"

namespace kit::color {

/// A length in micrometres, without zeros at the end of its decimals.
std::string micronText(lefdef::Length length);

/// A decimal number of micrometres as a length; nothing if it is none, is not positive, has more than six
/// decimals or is a millimetre or more.
std::optional<lefdef::Length> parseMicron(std::string_view text);

} // namespace kit::color
