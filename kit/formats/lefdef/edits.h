// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

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

} // namespace kit::lefdef
