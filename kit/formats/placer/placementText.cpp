// SPDX-License-Identifier: BSD-3-Clause
#include "kit/formats/placer/placementText.h"

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <string_view>
#include <vector>

#include "kit/base/fault.h"
#include "kit/base/files/outputFile.h"

namespace kit::placer {

namespace {

/// Tokens of a component record, from 0: "- NAME CELL + PLACED ( X Y ) ORIENT".
constexpr size_t NAME_TOKEN = 1;
constexpr size_t CELL_TOKEN = 2;
constexpr size_t X_TOKEN = 6;
constexpr size_t Y_TOKEN = 7;
constexpr size_t ORIENT_TOKEN = 9;

/// Tokens of a macro's record: "- NAME MASTER + ( X Y ) ( WIDTH HEIGHT ) ORIENT".
constexpr size_t MACRO_X_TOKEN = 5;
constexpr size_t MACRO_WIDTH_TOKEN = 9;

/// The words of a line between blanks.
std::vector<std::string_view> tokensOf(std::string_view line)
{
    std::vector<std::string_view> tokens;
    size_t end = 0;
    while ((line.find_first_not_of(' ', end)) != std::string_view::npos) {
        const size_t begin = line.find_first_not_of(' ', end);
        end = std::min(line.find(' ', begin), line.size());
        tokens.push_back(line.substr(begin, end - begin));
    }
    return tokens;
}

/// Writes a line with other words in place of some.
class LineWriter {
public:
    LineWriter(std::string_view line, const std::vector<std::string_view>& tokens, OutputFile& out)
        : m_line(line), m_tokens(tokens), m_out(out)
    {
    }

    /// Writes the line up to a token, which is behind those before, and a word in its place.
    void put(size_t token, std::string_view word)
    {
        const auto begin = static_cast<size_t>(m_tokens[token].data() - m_line.data());
        m_out << m_line.substr(m_done, begin - m_done) << word;
        m_done = begin + m_tokens[token].size();
    }

    /// Writes the rest.
    void finish() { m_out << m_line.substr(m_done); }

private:
    std::string_view m_line;
    const std::vector<std::string_view>& m_tokens;
    OutputFile& m_out;
    size_t m_done = 0; ///< bytes of the line
};

/// Copies a placement file line by line, with changed records.
class Rewriter {
public:
    Rewriter(const std::string& path, size_t count, const ChangesOf& changesOf, OutputFile& out,
             const MacroChanges& macros)
        : m_path(path), m_in(path, std::ios::binary), m_count(count), m_changesOf(changesOf), m_out(out),
          m_macros(macros)
    {
        if (!m_in.is_open()) {
            throw systemFault("cannot open file " + path, errno);
        }
    }

    void run()
    {
        while (next()) {
            if (const auto macro = m_macros.find(m_number); macro != m_macros.end()) {
                rewriteMacro(macro->second);
                continue;
            }
            copy();
            const std::vector<std::string_view> tokens = tokensOf(m_line);
            // A keyword counts at the start of its line only.
            if (m_line.starts_with("COMPONENTS") && tokens.size() > 1 && tokens[0] == "COMPONENTS") {
                rewriteRecords(std::strtol(std::string(tokens[1]).c_str(), nullptr, 10));
            }
        }
        if (m_written != m_count) {
            fail("the file does not hold all components");
        }
    }

private:
    bool next()
    {
        ++m_number;
        return static_cast<bool>(std::getline(m_in, m_line));
    }

    /// Writes the line as it was, with its end if it had one.
    void copy() { m_out << m_line << (m_in.eof() ? "" : "\n"); }

    void rewriteRecords(long count)
    {
        for (long i = 0; i < count && next(); ++i) {
            const std::vector<std::string_view> tokens = tokensOf(m_line);
            if (tokens.size() > NAME_TOKEN && tokens[NAME_TOKEN] == "FILLER_1") {
                copy(); // what follows is not placed
                return;
            }
            rewriteRecord(tokens);
            if (next()) {
                copy(); // the record's second line
            }
        }
    }

    void rewriteRecord(const std::vector<std::string_view>& tokens)
    {
        m_changes = {};
        if (tokens.size() > ORIENT_TOKEN && m_written < m_count) {
            m_changesOf(m_written++, m_changes);
        }
        if (tokens.size() <= ORIENT_TOKEN || tokens[NAME_TOKEN] != m_changes.name) {
            fail("the record is not that of the component that was placed");
        }
        LineWriter line(m_line, tokens, m_out);
        if (!m_changes.cell.empty()) {
            line.put(CELL_TOKEN, m_changes.cell);
        }
        if (m_changes.at) {
            line.put(X_TOKEN, std::to_string(m_changes.at->x));
            line.put(Y_TOKEN, std::to_string(m_changes.at->y));
        }
        if (!m_changes.orient.empty()) {
            line.put(ORIENT_TOKEN, m_changes.orient);
        }
        line.finish();
        m_out << (m_in.eof() ? "" : "\n");
    }

    void rewriteMacro(const MacroChange& change)
    {
        const std::vector<std::string_view> tokens = tokensOf(m_line);
        if (tokens.size() <= MACRO_WIDTH_TOKEN) {
            fail("the record is not that of a macro");
        }
        LineWriter line(m_line, tokens, m_out);
        line.put(MACRO_X_TOKEN, std::to_string(change.x));
        line.put(MACRO_WIDTH_TOKEN, std::to_string(change.width));
        line.finish();
        m_out << (m_in.eof() ? "" : "\n");
    }

    [[noreturn]] void fail(const std::string& what)
    {
        throw Fault(m_path + ":" + std::to_string(m_number) + ": cannot be written anew: " + what);
    }

    const std::string& m_path;
    std::ifstream m_in;
    size_t m_count; ///< components
    const ChangesOf& m_changesOf;
    OutputFile& m_out;
    const MacroChanges& m_macros;
    std::string m_line;
    RecordChanges m_changes; ///< of the record at hand
    int64_t m_number = 0;    ///< of m_line
    size_t m_written = 0;    ///< components so far
};

} // namespace

void rewritePlacement(const std::string& path, size_t count, const ChangesOf& changesOf, OutputFile& out,
                      const MacroChanges& macros)
{
    Rewriter(path, count, changesOf, out, macros).run();
}

} // namespace kit::placer
