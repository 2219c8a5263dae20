// SPDX-License-Identifier: BSD-3-Clause
#include "kit/formats/placer/colors.h"

#include <charconv>
#include <optional>
#include <string_view>

#include "kit/base/files/outputFile.h"
#include "kit/base/files/readFile.h"
#include "kit/base/finding.h"

namespace kit::placer {

namespace {

constexpr std::string_view FIRST_LINE = "VIRELOCE COLORS 1";
constexpr std::string_view COUNT = "COMPONENTS ";
constexpr std::string_view LAST_LINE = "END";

/// A whole text as a decimal integer.
std::optional<int32_t> toInteger(std::string_view text)
{
    int32_t value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && stop == end ? std::optional(value) : std::nullopt;
}

/// Takes what stands before the next blank, the blank with it.
std::string_view takeWord(std::string_view& line)
{
    const size_t size = line.find(' ');
    const std::string_view word = line.substr(0, size);
    line.remove_prefix(size == std::string_view::npos ? line.size() : size + 1);
    return word;
}

/// Takes the next word into `value` if it is an integer.
bool takeInteger(std::string_view& line, int32_t& value)
{
    const std::optional<int32_t> integer = toInteger(takeWord(line));
    value = integer.value_or(0);
    return integer.has_value();
}

/// The record of a line.
std::optional<ColorRecord> recordOf(std::string_view line)
{
    ColorRecord record;
    record.name = takeWord(line);
    record.cell = takeWord(line);
    if (record.name.empty() || record.cell.empty() || !takeInteger(line, record.solution) ||
        !takeInteger(line, record.stitches)) {
        return std::nullopt;
    }
    while (!line.empty()) {
        if (!takeInteger(line, record.masks.emplace_back())) {
            return std::nullopt;
        }
    }
    return record;
}

/// Reads the text of a colours file from line to line.
class ColorReader {
public:
    ColorReader(std::string_view text, Reporter reporter) : m_text(text), m_reporter(std::move(reporter)) {}

    std::vector<ColorRecord> read()
    {
        if (!nextLine() || m_line != FIRST_LINE) {
            m_reporter.error("colors-header", {m_number, 0},
                             "the file does not begin with \"" + std::string(FIRST_LINE) + "\"",
                             "give the file that the placement was written with");
            return {};
        }
        readCount();
        readRecords();
        checkCount();
        return std::move(m_records);
    }

private:
    bool nextLine()
    {
        if (m_text.empty()) {
            return false;
        }
        const size_t size = m_text.find('\n');
        m_line = m_text.substr(0, size);
        m_text.remove_prefix(size == std::string_view::npos ? m_text.size() : size + 1);
        ++m_number;
        return true;
    }

    void readCount()
    {
        if (nextLine() && m_line.starts_with(COUNT)) {
            m_count = toInteger(m_line.substr(COUNT.size()));
        }
        if (!m_count) {
            m_reporter.error("colors-count", {m_number, 0}, "the line is not \"COMPONENTS\" and a count", "");
        }
    }

    void readRecords()
    {
        while (nextLine() && m_line != LAST_LINE) {
            if (std::optional<ColorRecord> record = recordOf(m_line)) {
                record->line = m_number;
                m_records.push_back(std::move(*record));
            } else {
                m_reporter.error(
                    "colors-record", {m_number, 0},
                    "the line is not a component, its cell, its solution, its stitches and its masks, parted "
                    "by single blanks",
                    "");
                m_brokenRecords = true;
            }
        }
        if (m_line != LAST_LINE) {
            m_reporter.error("colors-end", {m_number, 0}, "the file ends without \"END\"",
                             "write it anew: something is missing");
        } else if (!m_text.empty()) {
            m_reporter.error("colors-end", {m_number + 1, 0}, "the file goes on after \"END\"", "");
        }
    }

    /// Broken lines are a finding already.
    void checkCount()
    {
        if (m_count && !m_brokenRecords && static_cast<size_t>(*m_count) != m_records.size()) {
            m_reporter.error("colors-count", {2, 0},
                             "the file should have " + std::to_string(*m_count) + " components and has " +
                                 std::to_string(m_records.size()),
                             "");
        }
    }

    std::string_view m_text; ///< after m_line
    Reporter m_reporter;
    std::string_view m_line;
    int64_t m_number = 0; ///< of m_line, from 1
    std::optional<int32_t> m_count;
    std::vector<ColorRecord> m_records;
    bool m_brokenRecords = false;
};

} // namespace

std::vector<ColorRecord> readColors(const std::string& path, Findings& findings)
{
    const std::string text = readFile(path);
    return ColorReader(text, Reporter(findings, path)).read();
}

void writeColors(const std::vector<ColorRecord>& records, OutputFile& out)
{
    out << FIRST_LINE << "\n" << COUNT << records.size() << "\n";
    for (const ColorRecord& record : records) {
        out << record.name << " " << record.cell << " " << record.solution << " " << record.stitches;
        for (const int32_t mask : record.masks) {
            out << " " << mask;
        }
        out << "\n";
    }
    out << LAST_LINE << "\n";
}

} // namespace kit::placer
