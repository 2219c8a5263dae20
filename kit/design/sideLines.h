// SPDX-License-Identifier: BSD-3-Clause
// The lines of a file that import writes beside a placement: a first line that says what it is, counts with
// as many lines as they say, and a last line "END". Words are parted by single blanks.
#pragma once

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "kit/base/finding.h"
#include "kit/geometry/rect.h"

namespace kit::design {

/// What to do about such a file that is not as it should be.
inline constexpr const char* IMPORT_ANEW = "import the design anew: this file belongs to its placement";

/// Takes the words of a line, which single blanks part.
class LineWords {
public:
    explicit LineWords(std::string_view line) : m_rest(line) {}

    bool atEnd() const { return m_rest.empty(); }
    std::string_view rest() const { return m_rest; }

    /// The next word; empty if there is none.
    std::string_view word()
    {
        const std::string_view word = m_rest.substr(0, m_rest.find(' '));
        skip(word.size());
        return word;
    }

    /// A whole number from `least` to `most`, up to `end`, which is taken as well.
    template <typename Number>
    std::optional<Number> number(Number least, Number most, char end = ' ')
    {
        Number value{};
        const char* const from = m_rest.data();
        const auto [stop, error] = std::from_chars(from, from + m_rest.size(), value);
        const auto size = static_cast<size_t>(stop - from);
        if (error != std::errc() || value < least || value > most ||
            (size < m_rest.size() ? m_rest[size] != end : end != ' ')) {
            return {};
        }
        skip(size);
        return value;
    }

    /// Two whole numbers from `-most` to `most`.
    std::optional<geometry::Point> point(int64_t most)
    {
        const std::optional<int64_t> x = number(-most, most);
        const std::optional<int64_t> y = x ? number(-most, most) : x;
        return y ? std::optional(geometry::Point{*x, *y}) : std::nullopt;
    }

private:
    void skip(size_t size) { m_rest.remove_prefix(std::min(size + 1, m_rest.size())); }

    std::string_view m_rest;
};

/// Goes through the lines. Each step says whether its lines were as they should be; the first that were not
/// are told, and end the reading.
class SideLines {
public:
    static constexpr int32_t MOST = std::numeric_limits<int32_t>::max();

    /// @param text  must outlive this
    /// @param code  of the findings
    SideLines(std::string_view text, Reporter reporter, const char* code)
        : m_text(text), m_reporter(std::move(reporter)), m_code(code)
    {
    }

    /// Goes to the next line. @return false at the end; a line that is cut off is none
    bool next()
    {
        m_line = {};
        ++m_number;
        const size_t size = m_text.find('\n');
        if (size == std::string_view::npos) {
            m_text = {};
            return false;
        }
        m_line = m_text.substr(0, size);
        m_text.remove_prefix(size + 1);
        return true;
    }

    /// The words of the next line; none at the end.
    LineWords nextWords() { return LineWords(next() ? m_line : std::string_view()); }

    /// Tells that the line is not what was expected. @return false
    bool fail(const std::string& expected)
    {
        m_reporter.error(m_code, {m_number, 0}, "the line is not " + expected, IMPORT_ANEW);
        return false;
    }

    /// Reads a line that must be this one.
    bool readExactly(std::string_view line)
    {
        return (next() && m_line == line) || fail("\"" + std::string(line) + "\"");
    }

    /// Reads a count, and as much as it says.
    ///
    /// @param readOne  reads one from the words of a line; tells whether it was as it should be
    template <typename ReadOne>
    bool readCounted(const std::string& keyword, const std::string& expected, ReadOne readOne)
    {
        LineWords words = nextWords();
        const bool named = words.word() == keyword;
        const std::optional<int32_t> count = words.number(0, MOST);
        if (!named || !count || !words.atEnd()) {
            return fail("\"" + keyword + "\" and a count");
        }
        for (int32_t i = 0; i < *count; ++i) {
            if (!next() || !readOne(LineWords(m_line))) {
                return fail(expected);
            }
        }
        return true;
    }

    /// Reads the last line.
    bool readEnd()
    {
        if (!readExactly("END")) {
            return false;
        }
        ++m_number;
        return m_text.empty() || fail("the end of the file, which \"END\" is");
    }

    int64_t number() const { return m_number; } ///< of the line, from 1

private:
    std::string_view m_text; ///< after m_line
    Reporter m_reporter;
    const char* m_code;
    std::string_view m_line;
    int64_t m_number = 0;
};

} // namespace kit::design
