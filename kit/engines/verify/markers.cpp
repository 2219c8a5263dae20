// SPDX-License-Identifier: BSD-3-Clause
#include <array>
#include <charconv>

#include "kit/base/files/outputFile.h"
#include "kit/base/text/escape.h"
#include "kit/design/coloredPlacement.h"
#include "kit/engines/verify/verify.h"

namespace kit::verify {

namespace {

/// A text as a quoted word of the database.
std::string inQuotes(const std::string& text)
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

std::string micrometres(double length)
{
    std::array<char, 64> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), length, std::chars_format::fixed, 6);
    return {text.data(), end.ptr};
}

/// Two corners, in parentheses.
std::string corners(double x1, double y1, double x2, double y2)
{
    return "(" + micrometres(x1) + "," + micrometres(y1) + ";" + micrometres(x2) + "," + micrometres(y2) +
           ")";
}

/// A box in micrometres.
design::DbuBox scaled(const design::DbuBox& box, double dbuPerMicron)
{
    return {box.xl / dbuPerMicron, box.yl / dbuPerMicron, box.xh / dbuPerMicron, box.yh / dbuPerMicron};
}

/// The sides by which two rectangles face each other.
std::string facingSides(const design::DbuBox& a, const design::DbuBox& b)
{
    if (a.xh <= b.xl) {
        return corners(a.xh, a.yl, a.xh, a.yh) + "/" + corners(b.xl, b.yh, b.xl, b.yl);
    }
    if (b.xh <= a.xl) {
        return facingSides(b, a);
    }
    const design::DbuBox& lower = a.yl <= b.yl ? a : b;
    const design::DbuBox& upper = a.yl <= b.yl ? b : a;
    return corners(lower.xh, lower.yh, lower.xl, lower.yh) + "/" +
           corners(upper.xl, upper.yl, upper.xh, upper.yl);
}

std::string valueOf(const design::Issue& issue, double dbuPerMicron)
{
    const design::DbuBox box = scaled(issue.box, dbuPerMicron);
    if (design::isConflict(issue)) {
        return "edge-pair: " + facingSides(box, scaled(issue.otherBox, dbuPerMicron));
    }
    return "box: " + corners(box.xl, box.yl, box.xh, box.yh);
}

/// Whether the issue has a place in the layout.
bool hasMarker(const design::Issue& issue)
{
    return issue.box.xl < issue.box.xh || issue.box.yl < issue.box.yh || design::isConflict(issue);
}

/// Writes a report database.
class MarkerFile {
public:
    MarkerFile(const Options& options, const design::ColoredPlacement& input)
        : m_options(options), m_input(input), m_out(options.lyrdb),
          m_frame(design::frameOf(input.design, options.placement)), m_cell(escapeXml(m_frame.topCell)),
          m_minDist(options.minDist.textOn(design::siteLength(input.design)))
    {
    }

    void write(const design::Issues& issues)
    {
        writeHead();
        writeCategories(countKinds(issues));
        m_out << " <cells>\n  <cell>\n   <name>" << m_cell << "</name>\n  </cell>\n </cells>\n <items>\n";
        for (const design::Issue& issue : issues) {
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
              << "Judgement of " << escapeXml(m_options.placement) << " with " << escapeXml(m_options.colors)
              << "</description>\n <original-file>" << escapeXml(m_options.placement)
              << "</original-file>\n <generator>vireloce-kit verify</generator>\n <top-cell>" << m_cell
              << "</top-cell>\n";
    }

    void writeCategories(const std::vector<int64_t>& counts)
    {
        m_out << " <categories>\n";
        for (size_t i = 0; i < counts.size(); ++i) {
            if (counts[i] > 0) {
                m_out << "  <category>\n   <name>" << design::KINDS[i].name << "</name>\n   <description>"
                      << design::KINDS[i].title << "</description>\n  </category>\n";
            }
        }
        m_out << " </categories>\n";
    }

    void writeItem(const design::Issue& issue)
    {
        const std::string text = textOf(issue, m_input.design, m_minDist);
        m_out << "  <item>\n   <category>" << inQuotes(design::infoOf(issue.kind).name)
              << "</category>\n   <cell>" << m_cell << "</cell>\n   <values>\n    <value>"
              << valueOf(issue, m_frame.dbuPerMicron)
              << "</value>\n    <value>text: " << escapeXml(inQuotes(text))
              << "</value>\n   </values>\n  </item>\n";
    }

    const Options& m_options;
    const design::ColoredPlacement& m_input;
    OutputFile m_out;
    design::Frame m_frame;
    std::string m_cell;    ///< name of the top cell, as XML
    std::string m_minDist; ///< for people
};

} // namespace

void writeMarkers(const Options& options, const design::ColoredPlacement& input, const design::Issues& issues)
{
    MarkerFile(options, input).write(issues);
}

} // namespace kit::verify
