// SPDX-License-Identifier: BSD-3-Clause
// Where statements of LEF and DEF files begin and end.
#pragma once

#include <cstddef>
#include <string_view>

namespace kit::lefdef {

/// The place of the ";" that ends a statement; the text's size if there is none. Texts in quotation marks and
/// comments are skipped.
///
/// @param from  somewhere in the statement, outside of both
size_t endOfStatement(std::string_view text, size_t from);

/// What stands between the start of a place's line and the place, if that is white space alone; else empty.
std::string_view indentationOf(std::string_view text, size_t place);

/// A part of a text.
struct Span {
    size_t begin = 0;
    size_t end = 0; ///< behind it
};

/// A record with the lines that it has for itself, so that nothing is left where it stood.
///
/// @param begin  the "-" of the record
/// @param end    behind its ";"
Span wholeLinesOf(std::string_view text, size_t begin, size_t end);

} // namespace kit::lefdef
