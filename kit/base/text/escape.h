// SPDX-License-Identifier: BSD-3-Clause
// Texts for terminals, XML, HTML and tables.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

namespace kit {

/// A text in which others stand for some characters.
std::string replaced(std::string_view text, std::initializer_list<std::pair<char, std::string_view>> others);

/// A text for terminals: control characters and bytes that are no UTF-8 are written as "\x1b". Names in
/// messages come from files, and a terminal would obey them.
std::string printable(std::string_view text);

/// A text as the content or a quoted attribute of an XML or HTML element.
///
/// Bytes that XML cannot hold, control characters and what is no UTF-8, become question marks.
std::string escapeXml(std::string_view text);

/// JSON text that can stand in an HTML script element: no "<" is left.
std::string escapeScript(std::string_view json);

/// The text with every byte that is no UTF-8, and every control character, replaced by a question mark.
std::string withoutControls(std::string_view text);

/// A text as a field of comma-separated values (RFC 4180).
std::string escapedForCsv(const std::string& text);

} // namespace kit
