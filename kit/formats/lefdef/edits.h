// SPDX-License-Identifier: BSD-3-Clause
// Changes of LEF and DEF texts, and where the statements begin and end that are changed.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "kit/geometry/rect.h"

namespace kit {
class OutputFile;
}

namespace kit::lefdef {

/// Changes of a text at places that do not overlap; all other bytes stay as they are.
class Edits {
public:
    /// Puts `text` in place of the bytes from begin to before end; begin == end inserts.
    void replace(size_t begin, size_t end, std::string text);

    /// The changed text of a part of the text.
    ///
    /// @param text        the whole text
    /// @param begin, end  the part; every change lies in it
    /// @pre   the changes do not overlap (assert)
    std::string apply(std::string_view text, size_t begin, size_t end);

    /// Writes the whole changed text without a second copy of it in memory. Precondition as for apply().
    void write(std::string_view text, OutputFile& out);

    /// Whether nothing is to be changed.
    bool empty() const { return m_edits.empty(); }

private:
    struct Edit {
        size_t begin;
        size_t end;
        std::string text;
    };

    void sort();

    std::vector<Edit> m_edits;
};

/// The place of the ";" that ends a statement; the text's size if there is none. Texts in quotation marks and
/// comments are skipped.
///
/// @param from  somewhere in the statement, outside of both
size_t endOfStatement(std::string_view text, size_t from);

/// What stands between the start of a place's line and the place, if that is white space alone; else empty.
std::string_view indentationOf(std::string_view text, size_t place);

using Span = geometry::RangeOf<size_t>; ///< a part of a text

/// A record with the lines that it has for itself, so that nothing is left where it stood.
///
/// @param begin  the "-" of the record
/// @param end    behind its ";"
Span wholeLinesOf(std::string_view text, size_t begin, size_t end);

} // namespace kit::lefdef
