// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

#include "kit/lefdef/lef.h"

namespace kit::color {

/// A length in micrometres, without zeros at the end of its decimals.
std::string micronText(lefdef::Length length);

} // namespace kit::color
