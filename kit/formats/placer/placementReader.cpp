// SPDX-License-Identifier: BSD-3-Clause
#include <algorithm>
#include <array>
#include <cassert>
#include <cctype>
#include <utility>

#include "kit/base/files/readFile.h"
#include "kit/base/finding.h"
#include "kit/base/text/text.h"
#include "kit/formats/placer/design.h"
#include "kit/formats/placer/reader.h"
#include "kit/formats/placer/words.h"

namespace kit::placer {

namespace {

constexpr size_t LONGEST_LINE = 255;
constexpr std::array<std::string_view, 4> KEYWORDS = {"ROW", "COMPONENTS", "BIGNODES", "PROPERTYDEFINITIONS"};

std::string upperCase(std::string_view word)
{
    std::string upper(word);
    std::transform(upper.begin(), upper.end(), upper.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return upper;
}

/// The keyword that a line's first word is, in any case; empty if it is none.
std::string_view keywordOf(std::string_view word)
{
    // Most lines are records, and their first word is short.
    if (word.size() < KEYWORDS[0].size()) {
        return {};
    }
    const auto* const at = std::ranges::find(KEYWORDS, upperCase(word));
    return at != KEYWORDS.end() ? *at : std::string_view();
}

/// The tokens of a statement or record by position, from 1 as in the format's description, with a finding for
/// each that is not as it should be.
class Fields {
public:
    /// @param lines     at the line; must outlive this
    /// @param reporter  of the file; must outlive this
    /// @param record    what the line holds, for the texts: "ROW"
    Fields(const LineReader& lines, Reporter& reporter, const char* record)
        : m_lines(lines), m_reporter(reporter), m_record(record)
    {
    }

    /// Whether the line has as many tokens; a finding if not. The other operations need that.
    bool require(size_t count)
    {
        const size_t got = m_lines.tokens().size();
        if (got >= count) {
            return true;
        }
        m_reporter.error("missing-tokens", {m_lines.number(), 0},
                         std::string(m_record) + " has " + counted(static_cast<int64_t>(got), "token") +
                             " of " + std::to_string(count) + ", and the placer ends here",
                         "complete the line");
        return false;
    }

    /// A token.
    std::string text(size_t position) const { return std::string(token(position).text); }

    /// A token as a number, as the placer takes it; a finding if it is not one.
    int32_t integer(size_t position)
    {
        const Integer number = parseInteger(withoutTabs(token(position).text));
        if (!number.sound) {
            m_reporter.error("not-a-number", at(position),
                             "token " + std::to_string(position) + " of the " + m_record + ", " +
                                 inQuotes(token(position).text) +
                                 ", is no 32-bit integer, and the placer takes " +
                                 std::to_string(number.value),
                             "write a whole number");
        }
        return number.value;
    }

    /// A finding if a token is not the given one.
    void literal(size_t position, std::string_view expected)
    {
        if (withoutTabs(token(position).text) == expected) {
            return;
        }
        m_reporter.warning("punctuation", at(position),
                           "token " + std::to_string(position) + " of the " + m_record + " is " +
                               inQuotes(token(position).text) + " where " + inQuotes(expected) + " belongs",
                           "check that no token is missing before it: the placer counts them");
    }

    /// A finding if there are tokens from a position on, other than a closing ";".
    void endAt(size_t position)
    {
        const size_t got = m_lines.tokens().size();
        if (got < position || (got == position && token(position).text == ";")) {
            return;
        }
        m_reporter.warning("surplus-tokens", at(position),
                           std::string(m_record) + " goes on with " + inQuotes(token(position).text) +
                               ", which the placer ignores",
                           "remove what follows, or check the tokens before it");
    }

    /// Where a token stands.
    Place at(size_t position) const { return {m_lines.number(), token(position).column}; }

private:
    const Token& token(size_t position) const
    {
        assert(position >= 1 && position <= m_lines.tokens().size());
        return m_lines.tokens()[position - 1];
    }

    const LineReader& m_lines;
    Reporter& m_reporter;
    const char* m_record;
};

/// Reads the text of a placement file into a design.
class PlacementReader {
public:
    /// @param text      the file; must outlive the reader
    /// @param design    in: its cells; out: rows, macros, components, fillers
    /// @param reporter  of the file
    PlacementReader(std::string_view text, Design& design, Reporter reporter)
        : m_lines(text), m_design(design), m_reporter(std::move(reporter)), m_cells(indexNames(design.cells))
    {
    }

    /// Reads to the end of the text.
    void run()
    {
        while (nextLine()) {
            statement();
        }
        reportReturns();
    }

private:
    /// A section of records of two lines each.
    struct Section {
        const char* keyword;
        const char* record; ///< what a record is called in texts
        void (PlacementReader::*read)(Fields& fields);
        int64_t line = 0;    ///< of the keyword
        int64_t count = 0;   ///< records by the header, -1 if it does not say
        int64_t seen = 0;    ///< records met
        bool hidden = false; ///< the placer ignores the keyword, and so the section
    };

    /// A section's line, or the end of it.
    enum class Kind { RECORD, BLANK, END };

    bool nextLine()
    {
        const int64_t before = m_lines.number();
        if (!m_lines.next()) {
            return false;
        }
        if (m_lines.number() == before) {
            return true; // seen before
        }
        if (m_lines.endsWithReturn()) {
            m_firstReturn = m_returns == 0 ? m_lines.number() : m_firstReturn;
            ++m_returns;
        }
        const size_t length = m_lines.line().size() + (m_lines.endsWithReturn() ? 1 : 0);
        if (length > LONGEST_LINE) {
            m_reporter.error("long-line", {m_lines.number(), static_cast<int64_t>(LONGEST_LINE) + 1},
                             "the line has " + std::to_string(length) +
                                 " characters, and the placer reads nothing after the first 255",
                             "break or shorten it");
        }
        return true;
    }

    void checkTabs()
    {
        const size_t tab = m_lines.line().find('\t');
        if (tab != std::string_view::npos) {
            m_reporter.warning("tab", {m_lines.number(), static_cast<int64_t>(tab) + 1},
                               "the placer takes a tab for part of a token", "write spaces");
        }
    }

    void reportReturns()
    {
        if (m_returns == 0) {
            return;
        }
        m_reporter.warning("carriage-return", {m_firstReturn, 0},
                           "carriage returns stand at the end of " + counted(m_returns, "line") +
                               ", and belong to the last token there: FN is then taken as N",
                           "convert the file to plain line ends");
    }

    void statement()
    {
        const std::string_view keyword = keywordOf(m_lines.firstWord());
        if (keyword.empty()) {
            readHeader();
            return;
        }
        const bool hidden = isHidden(keyword);
        if (hidden) {
            // The core box is of no consequence.
            m_reporter.add(keyword == "PROPERTYDEFINITIONS" ? Severity::WARNING : Severity::ERROR,
                           "hidden-keyword", {m_lines.number(), m_lines.tokens()[0].column},
                           "the placer ignores this " + std::string(keyword) + " line",
                           "let the keyword start the line, in capitals, with a space behind it");
            m_lines.splitAtTabs();
        }
        readStatement(keyword, hidden);
    }

    void readStatement(std::string_view keyword, bool hidden)
    {
        if (keyword == "ROW") {
            readRow();
        } else if (keyword == "COMPONENTS") {
            readSection({"COMPONENTS", "component", &PlacementReader::readComponent, 0, 0, 0, hidden});
        } else if (keyword == "BIGNODES") {
            readSection({"BIGNODES", "macro", &PlacementReader::readMacro, 0, 0, 0, hidden});
        } else if (!hidden) {
            readCoreBox();
        }
    }

    bool isHidden(std::string_view keyword) const
    {
        const std::string_view line = m_lines.line();
        const bool first = line.substr(0, keyword.size()) == keyword;
        return !first || (line.size() > keyword.size() && line[keyword.size()] == '\t');
    }

    /// Takes what the placer has no use for: it measures nothing in micrometres but the core box.
    void readHeader()
    {
        const std::vector<Token>& tokens = m_lines.tokens();
        const auto is = [&tokens](size_t i, std::string_view word) {
            return tokens.size() > i && tokens[i].text == word;
        };
        // Other lines that begin so are properties.
        if (is(0, "DESIGN") && is(2, ";") && m_design.name.empty()) {
            m_design.name = tokens[1].text;
        } else if (is(0, "UNITS") && is(1, "DISTANCE") && is(2, "MICRONS")) {
            readUnits();
        }
    }

    void readUnits()
    {
        const std::string_view word = m_lines.tokens().size() > 3 ? m_lines.tokens()[3].text : "";
        const Integer units = parseInteger(word);
        if (!units.sound || units.value <= 0) {
            m_reporter.warning("units", {m_lines.number(), 0},
                               "UNITS DISTANCE MICRONS has " + inQuotes(word) +
                                   " where a positive integer belongs",
                               "write the DBU of a micrometre: markers and pictures take 2000");
            return;
        }
        m_design.dbuPerMicron = units.value;
    }

    void readRow()
    {
        checkTabs();
        Fields fields(m_lines, m_reporter, "ROW");
        if (!fields.require(12)) {
            return;
        }
        m_design.rows.push_back({.name = fields.text(2),
                                 .siteName = fields.text(3),
                                 .x = fields.integer(4),
                                 .y = fields.integer(5),
                                 .orient = fields.text(6),
                                 .numSites = fields.integer(8),
                                 .step = fields.integer(12),
                                 .line = m_lines.number()});
        fields.literal(7, "DO");
        fields.literal(9, "BY");
        fields.literal(10, "1");
        fields.literal(11, "STEP");
        const bool hasYStep = m_lines.tokens().size() > 12 && m_lines.tokens()[12].text == "0";
        fields.endAt(hasYStep ? 14 : 13);
    }

    void readSection(Section section)
    {
        section.line = m_lines.number();
        m_fillers = false;
        readCount(section);
        while (nextLine()) {
            const Kind kind = kindOfLine(section);
            if (kind == Kind::END) {
                m_lines.putBack();
                break;
            }
            if (kind == Kind::RECORD) {
                readRecord(section);
            } else if (!m_fillers && !section.hidden) {
                m_reporter.error("blank-line", {m_lines.number(), 0},
                                 std::string("a blank line stands where the placer reads a ") +
                                     section.record + ", and it ends here",
                                 "remove it");
            }
        }
        checkCount(section);
    }

    void readCount(Section& section)
    {
        checkTabs();
        section.count = -1;
        Fields fields(m_lines, m_reporter, section.keyword);
        if (!fields.require(2)) {
            return;
        }
        const bool sound = parseInteger(fields.text(2)).sound;
        const int32_t count = fields.integer(2);
        section.count = sound ? std::max(count, 0) : -1;
        fields.endAt(3);
    }

    Kind kindOfLine(const Section& section) const
    {
        const std::string_view word = m_lines.firstWord();
        const bool more = section.count < 0 || section.seen < section.count;
        if (word.empty()) {
            return more ? Kind::BLANK : Kind::END;
        }
        if (word == "END" || (word == keywordOf(word) && m_lines.line().starts_with(word))) {
            return Kind::END;
        }
        return word == "-" || (more && !section.hidden) ? Kind::RECORD : Kind::END;
    }

    void readRecord(Section& section)
    {
        ++section.seen;
        checkTabs();
        Fields fields(m_lines, m_reporter, section.record);
        fields.literal(1, "-");
        (this->*section.read)(fields);
        skipSecondLine(section);
    }

    void skipSecondLine(const Section& section)
    {
        const int64_t record = m_lines.number();
        if (!nextLine()) {
            m_reporter.error("short-section", {record, 0},
                             "the file ends before the second line of the " + std::string(section.record),
                             "end each record with a line of its own, \" ;\"");
            return;
        }
        const std::string_view word = m_lines.firstWord();
        const bool keyword = !word.empty() && word == keywordOf(word) && m_lines.line().starts_with(word);
        const bool end = word == "END" && m_lines.tokens().size() > 1;
        if (word != "-" && !end && !keyword) {
            return;
        }
        m_lines.putBack();
        m_reporter.add(end || m_fillers ? Severity::WARNING : Severity::ERROR, "no-second-line",
                       {m_lines.number(), 0},
                       std::string(end       ? "the end of the section"
                                   : keyword ? "a statement"
                                             : "a record") +
                           " stands where the second line of the " + section.record +
                           " before it belongs, and the placer passes over it",
                       "end each record with a line of its own, \" ;\"");
    }

    void checkCount(const Section& section)
    {
        if (section.count < 0 || section.seen == section.count || section.hidden) {
            return;
        }
        const bool few = section.seen < section.count;
        const std::string what = std::string(section.keyword) + " says " + counted(section.count, "record") +
                                 ", and " + std::to_string(section.seen) + " follow";
        const char* const effect = m_fillers ? ""
                                   : few     ? "; the placer reads on behind the section, and ends"
                                             : "; the placer leaves the rest out";
        m_reporter.add(m_fillers ? Severity::WARNING : Severity::ERROR, "wrong-count", {section.line, 0},
                       what + effect, "write " + std::to_string(section.seen));
    }

    void readComponent(Fields& fields)
    {
        m_fillers = m_fillers || (m_lines.tokens().size() > 1 && fields.text(2) == "FILLER_1");
        if (!m_fillers) {
            if (fields.require(10)) {
                m_design.components.push_back(componentOf(fields));
            }
        } else if (m_lines.tokens().size() >= 10) {
            m_design.fillers.push_back(componentOf(fields));
        }
    }

    Component componentOf(Fields& fields)
    {
        Component comp{.name = fields.text(2),
                       .cellName = fields.text(3),
                       .cell = findName(m_cells, fields.text(3)),
                       .x = fields.integer(7),
                       .y = fields.integer(8),
                       .orient = fields.text(10),
                       .line = m_lines.number()};
        fields.literal(6, "(");
        fields.literal(9, ")");
        fields.endAt(11);
        if (!m_fillers && comp.cell < 0 && !m_cells.empty()) {
            m_reporter.error("unknown-cell", fields.at(3),
                             "the cell " + comp.cellName + " of " + comp.name + " is not in the cell list",
                             "add it to the list, with a colour file, or correct the name");
        }
        return comp;
    }

    void readMacro(Fields& fields)
    {
        if (!fields.require(13)) {
            return;
        }
        m_design.macros.push_back({.name = fields.text(2),
                                   .x = fields.integer(6),
                                   .y = fields.integer(7),
                                   .width = fields.integer(10),
                                   .height = fields.integer(11),
                                   .line = m_lines.number()});
        fields.literal(5, "(");
        fields.literal(8, ")");
        fields.endAt(14);
    }

    void readCoreBox()
    {
        const int64_t line = m_lines.number();
        if (!readBoxEdges()) {
            m_lines.putBack();
            m_reporter.error(
                "short-section", {line, 0},
                "PROPERTYDEFINITIONS has fewer than the five lines that the placer takes for the "
                "core box",
                "write a line of any kind and the four edges");
        }
    }

    bool readBoxEdges()
    {
        bool whole = nextLine() && m_lines.firstWord() != "END";
        for (int i = 0; i < 4 && whole; ++i) {
            whole = nextLine() && readBoxEdge();
        }
        return whole;
    }

    bool readBoxEdge()
    {
        const std::string_view word = m_lines.firstWord();
        if (word == "END" || word == keywordOf(word)) {
            return false;
        }
        checkTabs();
        Fields fields(m_lines, m_reporter, "core box property");
        if (fields.require(4) && !isReal(fields.text(4))) {
            m_reporter.warning("not-a-number", fields.at(4),
                               "token 4 of the core box property, " + inQuotes(fields.text(4)) +
                                   ", is no number",
                               "write the edge in micrometres");
        }
        return true;
    }

    LineReader m_lines;
    Design& m_design;
    Reporter m_reporter;
    NameIndex m_cells;
    bool m_fillers = false;    ///< the rest of the section is fillers, which the placer passes over
    int64_t m_returns = 0;     ///< lines with a carriage return
    int64_t m_firstReturn = 0; ///< the first of them
};

} // namespace

void readPlacement(const std::string& path, Design& design, Findings& findings)
{
    const std::string text = readFile(path);
    PlacementReader(text, design, Reporter(findings, path)).run();
}

} // namespace kit::placer
