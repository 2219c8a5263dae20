// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <string_view>

namespace kit {

/// A text as the content or a quoted attribute of an XML or HTML element.
///
/// Bytes that XML cannot hold, control characters and what is no UTF-8, become question marks.
std::string escapeXml(std::string_view text);

/// JSON text that can stand in an HTML script element: no "<" is left.
std::string escapeScript(std::string_view json);

/// The text with every byte that is no UTF-8, and every control character, replaced by a question mark.
std::string withoutControls(std::string_view text);

} // namespace kit
