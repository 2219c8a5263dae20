// SPDX-License-Identifier: BSD-3-Clause
#include <algorithm>
#include <ostream>

#include "kit/base/finding.h"
#include "kit/base/text/escape.h"
#include "kit/base/text/text.h"
#include "kit/engines/verify/report.h"

namespace kit::verify {

namespace {

/// A number with one digit behind the point, rounded down: what is too close must not look far enough.
std::string rounded(double value)
{
    const auto tenths = static_cast<int64_t>(value * 10);
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10);
}

std::string describe(const placer::Design& design, int32_t component)
{
    const placer::Component& comp = design.components[static_cast<size_t>(component)];
    return comp.name + " (" + comp.cellName + ") at (" + std::to_string(comp.x) + ", " +
           std::to_string(comp.y) + ")";
}

std::string padded(const std::string& text, size_t width)
{
    return std::string(width - std::min(width, text.size()), ' ') + text;
}

/// Writes the text report.
class TextReport {
public:
    TextReport(const Options& options, const design::ColoredPlacement& input, const design::Issues& issues,
               std::ostream& out)
        : m_options(options), m_input(input), m_issues(issues), m_out(out),
          m_minDist(options.minDist.textOn(design::siteLength(input.design)))
    {
    }

    void write()
    {
        for (const Finding& fault : m_input.faults) {
            m_out << lineOf(fault);
        }
        for (const design::Issue& issue : m_issues) {
            if (issue.kind != design::Kind::ROW_CONFLICT) {
                writeIssue(issue);
            }
        }
        for (const design::Issue* issue : closest(design::Kind::ROW_CONFLICT)) {
            writeIssue(*issue);
        }
        writeTable();
        writeCounts();
        m_out.flush();
    }

private:
    void writeIssue(const design::Issue& issue)
    {
        const design::KindInfo& info = design::infoOf(issue.kind);
        m_out << lineOf({.severity = info.severity,
                         .code = info.name,
                         .file = issue.inColors ? m_options.colors : m_options.placement,
                         .line = issue.line,
                         .what = textOf(issue, m_input.design, m_minDist),
                         .advice = {}});
    }

    /// The closest pairs of a kind, as many as are asked for; of equal ones those met first.
    std::vector<const design::Issue*> closest(design::Kind kind) const
    {
        std::vector<const design::Issue*> pairs;
        for (const design::Issue& issue : m_issues) {
            if (issue.kind == kind) {
                pairs.push_back(&issue);
            }
        }
        std::stable_sort(pairs.begin(), pairs.end(), [](const design::Issue* a, const design::Issue* b) {
            return a->distance < b->distance;
        });
        pairs.resize(std::min(pairs.size(), static_cast<size_t>(m_options.worst)));
        return pairs;
    }

    void writeTable()
    {
        const std::vector<const design::Issue*> pairs = closest(design::Kind::CONFLICT);
        if (pairs.empty()) {
            return;
        }
        m_out << "\nClosest pairs of cells in a row, of "
              << countKinds(m_issues)[static_cast<size_t>(design::Kind::CONFLICT)]
              << "; shapes of one mask must be " << m_minDist << " apart\n"
              << "distance  shape pairs  mask  cells\n";
        for (const design::Issue* pair : pairs) {
            m_out << padded(rounded(pair->distance), 8) << padded(std::to_string(pair->shapePairs), 13)
                  << padded(std::to_string(pair->mask), 6) << "  "
                  << printable(describe(m_input.design, pair->component)) << ", "
                  << printable(describe(m_input.design, pair->other)) << '\n';
        }
    }

    void writeCounts()
    {
        const std::vector<int64_t> counts = countKinds(m_issues);
        m_out << '\n';
        for (size_t i = 0; i < counts.size(); ++i) {
            const design::KindInfo& info = design::kinds()[i];
            if (counts[i] > 0) {
                m_out << padded(std::to_string(counts[i]), 8) << "  " << info.name << ": " << info.title
                      << '\n';
            }
        }
        m_out << printable(m_options.placement) << ": " << summaryOf(m_input, m_issues) << '\n';
    }

    const Options& m_options;
    const design::ColoredPlacement& m_input;
    const design::Issues& m_issues;
    std::ostream& m_out;
    std::string m_minDist; ///< for people
};

} // namespace

std::string textOf(const design::Issue& issue, const placer::Design& design, const std::string& minDist)
{
    if (!issue.what.empty() || issue.other < 0) {
        return issue.what;
    }
    const std::string pair = describe(design, issue.component) + " and " + describe(design, issue.other);
    if (!design::isConflict(issue)) {
        return pair + " overlap";
    }
    return pair + " have shapes of mask " + std::to_string(issue.mask) + " " + rounded(issue.distance) +
           " apart, " + minDist + " are needed; " + counted(issue.shapePairs, "pair") +
           " of shapes too close";
}

std::string summaryOf(const design::ColoredPlacement& input, const design::Issues& issues)
{
    int64_t errors = static_cast<int64_t>(input.faults.size());
    int64_t notes = 0;
    for (const design::Issue& issue : issues) {
        ++(design::infoOf(issue.kind).severity == Severity::ERROR ? errors : notes);
    }
    return (errors == 0 ? "clean, " : "not clean, ") + counted(errors, "error") + ", " +
           counted(notes, "note");
}

void writeText(const Options& options, const design::ColoredPlacement& input, const design::Issues& issues,
               std::ostream& out)
{
    TextReport(options, input, issues, out).write();
}

} // namespace kit::verify
