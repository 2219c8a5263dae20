// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

namespace kit {

/// A text as a field of comma-separated values (RFC 4180).
inline std::string escapedForCsv(const std::string& text)
{
    if (text.find_first_of(",\"\n\r") == std::string::npos) {
        return text;
    }
    std::string escaped = "\"";
    for (const char c : text) {
        escaped += c == '"' ? "\"\"" : std::string(1, c);
    }
    return escaped + '"';
}

} // namespace kit
