// SPDX-License-Identifier: BSD-3-Clause
// The judgement as text and as JSON.
#include <algorithm>
#include <ostream>

#include "kit/base/finding.h"
#include "kit/base/text/escape.h"
#include "kit/base/text/json.h"
#include "kit/base/text/text.h"
#include "kit/design/pinOffsets.h"
#include "kit/engines/verify/verify.h"

namespace kit::verify {

namespace {

/// A number with one digit behind the point, rounded down: what is too close must not look far enough.
std::string rounded(double value)
{
    const auto tenths = static_cast<int64_t>(value * 10);
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10);
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
            if (issue.kind != design::Kind::ROW_CONFLICT || issue.isError) {
                writeIssue(issue);
            }
        }
        if (!m_options.acrossRows) {
            for (const design::Issue* issue : closest(design::Kind::ROW_CONFLICT)) {
                writeIssue(*issue);
            }
        }
        writeTable();
        writeLength();
        writeCounts();
        m_out.flush();
    }

private:
    void writeIssue(const design::Issue& issue)
    {
        const design::KindInfo& info = design::infoOf(issue.kind);
        m_out << lineOf({.severity = severityOf(issue),
                         .code = info.name,
                         .file = issue.inColors ? m_options.colors : m_options.placement,
                         .line = issue.line,
                         .what = textOf(issue, m_input.design, m_minDist),
                         .advice = ""});
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
        std::ranges::stable_sort(
            pairs, [](const design::Issue* a, const design::Issue* b) { return a->distance < b->distance; });
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
                  << padded(std::to_string(pair->mask), 6) << "  " << printable(describe(pair->component))
                  << ", " << printable(describe(pair->other)) << '\n';
        }
    }

    std::string describe(int32_t component) const
    {
        return design::placeText(m_input.design.component(component));
    }

    void writeCounts()
    {
        const std::vector<int64_t> counts = countKinds(m_issues);
        m_out << '\n';
        for (size_t i = 0; i < counts.size(); ++i) {
            const design::KindInfo& info = design::KINDS[i];
            if (counts[i] > 0) {
                m_out << padded(std::to_string(counts[i]), 8) << "  " << info.name << ": " << info.title
                      << '\n';
            }
        }
        m_out << printable(m_options.placement) << ": " << summaryOf(m_input, m_issues) << '\n';
    }

    void writeLength()
    {
        const Json length = design::pinLengthJson(m_input.pinLength, m_input.design.dbuPerMicron);
        if (length.isObject()) {
            m_out << "\nWirelength from pin to pin: " << length["dbu"] << " DBU, "
                  << design::micrometresText(length) << '\n';
        }
    }

    const Options& m_options;
    const design::ColoredPlacement& m_input;
    const design::Issues& m_issues;
    std::ostream& m_out;
    std::string m_minDist; ///< for people
};

constexpr int SCHEMA = 1;

Json jsonOf(const design::DbuBox& box)
{
    return Json::array({box.xl, box.yl, box.xh, box.yh});
}

Json jsonOf(const Finding& fault)
{
    const std::string advice = fault.advice.empty() ? "" : "; " + fault.advice;
    return {{"severity", wordOf(fault.severity)},
            {"code", fault.code},
            {"file", fault.file},
            {"line", fault.line},
            {"what", fault.what + advice}};
}

Json jsonOf(const design::Issue& issue, const Options& options, const placer::Design& design,
            const std::string& minDist)
{
    const design::KindInfo& info = design::infoOf(issue.kind);
    const auto nameOf = [&](int32_t component) { return design.component(component).name; };
    Json json{{"severity", wordOf(severityOf(issue))},
              {"code", info.name},
              {"file", issue.inColors ? options.colors : options.placement},
              {"line", issue.line},
              {"what", textOf(issue, design, minDist)}};
    if (issue.component >= 0) {
        json["component"] = nameOf(issue.component);
    }
    if (issue.other >= 0) {
        json["other"] = nameOf(issue.other);
        json["box"] = jsonOf(issue.box);
    }
    if (design::isConflict(issue)) {
        json["other_box"] = jsonOf(issue.otherBox);
        json["distance"] = issue.distance;
        json["shape_pairs"] = issue.shapePairs;
        json["mask"] = issue.mask;
    }
    return json;
}

Json countsOf(const design::ColoredPlacement& input, const design::Issues& issues)
{
    const std::vector<int64_t> counts = countKinds(issues);
    Json json{{"input-fault", input.faults.size()}};
    for (size_t i = 0; i < counts.size(); ++i) {
        if (i != static_cast<size_t>(design::Kind::NO_MASKS) || !input.design.fixed.empty()) {
            json[design::KINDS[i].name] = counts[i];
        }
    }
    return json;
}

} // namespace

std::string textOf(const design::Issue& issue, const placer::Design& design, const std::string& minDist)
{
    if (!issue.what.empty() || issue.other < 0) {
        return issue.what;
    }
    const std::string pair = design::placeText(design.component(issue.component)) + " and " +
                             design::placeText(design.component(issue.other));
    if (!design::isConflict(issue)) {
        return pair + " overlap";
    }
    return pair + " have shapes of mask " + std::to_string(issue.mask) + " " + rounded(issue.distance) +
           " apart, " + minDist + " are needed; " + counted(issue.shapePairs, "pair") +
           " of shapes too close" + (issue.reason.empty() ? "" : "; " + issue.reason);
}

std::string summaryOf(const design::ColoredPlacement& input, const design::Issues& issues)
{
    int64_t errors = static_cast<int64_t>(input.faults.size());
    int64_t notes = 0;
    for (const design::Issue& issue : issues) {
        ++(severityOf(issue) == Severity::ERROR ? errors : notes);
    }
    return (errors == 0 ? "clean, " : "not clean, ") + counted(errors, "error") + ", " +
           counted(notes, "note");
}

void writeText(const Options& options, const design::ColoredPlacement& input, const design::Issues& issues,
               std::ostream& out)
{
    TextReport(options, input, issues, out).write();
}

void writeJson(const Options& options, const design::ColoredPlacement& input, const design::Issues& issues,
               std::ostream& out)
{
    const lefdef::Length site = design::siteLength(input.design);
    const std::string minDist = options.minDist.textOn(site);
    out << "{\"schema\":" << SCHEMA << ",\"placement\":" << Json(options.placement)
        << ",\"colors\":" << Json(options.colors) << ",\"mindp\":" << options.minDist.unitsOn(site)
        << ",\"mindp_um\":" << (site > 0 ? Json(options.minDist.micronsOn(site)) : Json(nullptr))
        << ",\"clean\":" << (exitStatusOf(input, issues) == 0 ? "true" : "false")
        << ",\"summary\":" << Json(summaryOf(input, issues)) << ",\"counts\":" << countsOf(input, issues)
        << ",\"hpwl_pins\":" << design::pinLengthJson(input.pinLength, input.design.dbuPerMicron)
        << ",\"findings\":[";
    const char* separator = "\n";
    for (const Finding& fault : input.faults) {
        out << separator << jsonOf(fault);
        separator = ",\n";
    }
    for (const design::Issue& issue : issues) { // one by one: a million of them need no second copy
        out << separator << jsonOf(issue, options, input.design, minDist);
        separator = ",\n";
    }
    out << "\n]}\n";
    out.flush();
}

} // namespace kit::verify
