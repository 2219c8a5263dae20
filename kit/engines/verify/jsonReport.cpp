// SPDX-License-Identifier: BSD-3-Clause
#include <ostream>

#include "kit/base/finding.h"
#include "kit/base/text/json.h"
#include "kit/engines/verify/report.h"

namespace kit::verify {

namespace {

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
    const auto nameOf = [&](int32_t component) {
        return design.components[static_cast<size_t>(component)].name;
    };
    Json json{{"severity", wordOf(info.severity)},
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
        json[design::kinds()[i].name] = counts[i];
    }
    return json;
}

} // namespace

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
