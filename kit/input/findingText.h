// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

#include "kit/input/finding.h"

namespace kit::input {

/// "error", "warning" or "note".
const char* wordOf(Severity severity);

/// How a finding tells its place.
enum class PlaceText { LINE, LINE_AND_COLUMN };

/// A finding as a line: "FILE:LINE: error|warning|note: what; advice [code]" with its line end. What
/// would not show is written as printable() does.
std::string lineOf(const Finding& finding, PlaceText place = PlaceText::LINE);

} // namespace kit::input
