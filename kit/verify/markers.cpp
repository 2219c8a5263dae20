// SPDX-License-Identifier: BSD-3-Clause
#include <array>
#include <charconv>
#include <filesystem>

#include "kit/base/outputFile.h"
#include "kit/verify/report.h"

namespace kit::verify {

namespace {

constexpr double DBU_PER_MICROMETRE = 2000;

/// A text in XML: bytes that a parser would refuse become question marks.
std::string escaped(const std::string& text)
{
    std::string xml;
    for (const char c : text) {
        switch (c) {
        case '&':
            xml += "&amp;";
            break;
        case '<':
            xml += "&lt;";
            break;
        case '>':
            xml += "&gt;";
            break;
        default:
            xml += c < ' ' || c > '~' ? '?' : c;
        }
    }
    return xml;
}

/// A text as a quoted word of the database.
std::string quoted(const std::string& text)
{
    std::string word = "'";
    for (const char c : text) {
        if (c == '\'' || c == '\\') {
            word += '\\';
        }
        word += c;
    }
    return word + "'";
}

std::string micrometres(double dbu)
{
    std::array<char, 64> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), dbu / DBU_PER_MICROMETRE,
                                   std::chars_format::fixed, 6);
    return {text.data(), end.ptr};
}

/// Two corners, in parentheses.
std::string corners(double x1, double y1, double x2, double y2)
{
    return "(" + micrometres(x1) + "," + micrometres(y1) + ";" + micrometres(x2) + "," + micrometres(y2) +
           ")";
}

/// The sides by which two rectangles face each other.
std::string facingSides(const DbuBox& a, const DbuBox& b)
{
    if (a.xh <= b.xl) {
        return corners(a.xh, a.yl, a.xh, a.yh) + "/" + corners(b.xl, b.yh, b.xl, b.yl);
    }
    if (b.xh <= a.xl) {
        return facingSides(b, a);
    }
    const DbuBox& lower = a.yl <= b.yl ? a : b;
    const DbuBox& upper = a.yl <= b.yl ? b : a;
    return corners(lower.xh, lower.yh, lower.xl, lower.yh) + "/" +
           corners(upper.xl, upper.yl, upper.xh, upper.yl);
}

std::string valueOf(const Issue& issue)
{
    if (isConflict(issue)) {
        return "edge-pair: " + facingSides(issue.box, issue.otherBox);
    }
    return "box: " + corners(issue.box.xl, issue.box.yl, issue.box.xh, issue.box.yh);
}

/// Whether the issue has a place in the layout.
bool hasMarker(const Issue& issue)
{
    return issue.box.xl < issue.box.xh || issue.box.yl < issue.box.yh || isConflict(issue);
}

/// Writes a report database.
class MarkerFile {
public:
    MarkerFile(const Options& options, const Input& input)
        : m_options(options), m_input(input), m_out(options.lyrdb),
          m_cell(escaped(std::filesystem::path(options.placement).stem().string()))
    {
    }

    void write(const Issues& issues)
    {
        writeHead();
        writeCategories(countKinds(issues));
        m_out << " <cells>\n  <cell>\n   <name>" << m_cell << "</name>\n  </cell>\n </cells>\n <items>\n";
        for (const Issue& issue : issues) {
            if (hasMarker(issue)) {
                writeItem(issue);
            }
        }
        m_out << " </items>\n</report-database>\n";
        m_out.commit();
    }

private:
    void writeHead()
    {
        m_out << "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<report-database>\n <description>"
              << "Judgement of " << escaped(m_options.placement) << " with " << escaped(m_options.colors)
              << "</description>\n <original-file>" << escaped(m_options.placement)
              << "</original-file>\n <generator>vireloce-kit verify</generator>\n <top-cell>" << m_cell
              << "</top-cell>\n";
    }

    void writeCategories(const std::vector<int64_t>& counts)
    {
        m_out << " <categories>\n";
        for (size_t i = 0; i < counts.size(); ++i) {
            if (counts[i] > 0) {
                m_out << "  <category>\n   <name>" << kinds()[i].name << "</name>\n   <description>"
                      << kinds()[i].title << "</description>\n  </category>\n";
            }
        }
        m_out << " </categories>\n";
    }

    void writeItem(const Issue& issue)
    {
        const std::string text = textOf(issue, m_input.design, m_options.minDist);
        m_out << "  <item>\n   <category>" << quoted(infoOf(issue.kind).name) << "</category>\n   <cell>"
              << m_cell << "</cell>\n   <values>\n    <value>" << valueOf(issue)
              << "</value>\n    <value>text: " << escaped(quoted(text))
              << "</value>\n   </values>\n  </item>\n";
    }

    const Options& m_options;
    const Input& m_input;
    OutputFile m_out;
    std::string m_cell; ///< name of the top cell, as XML
};

} // namespace

void writeMarkers(const Options& options, const Input& input, const Issues& issues)
{
    MarkerFile(options, input).write(issues);
}

} // namespace kit::verify
