// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <string_view>

namespace kit {

/// A text for terminals: control characters and bytes that are no UTF-8 are written as "\x1b". Names in
/// messages come from files, and a terminal would obey them.
std::string printable(std::string_view text);

} // namespace kit
