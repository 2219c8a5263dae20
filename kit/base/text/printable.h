// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kit {

/// Bytes of the UTF-8 character that a text, not empty, begins with; 0 if that is a control character, or
/// none at all.
size_t shownBytes(std::string_view text);

/// A text for terminals: control characters and bytes that are no UTF-8 are written as "\x1b". Names in
/// messages come from files, and a terminal would obey them.
std::string printable(std::string_view text);

} // namespace kit
