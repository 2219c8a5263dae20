// SPDX-License-Identifier: BSD-3-Clause
#include "kit/export/inputs.h"

#include <algorithm>
#include <iterator>

#include "kit/input/reader.h"
#include "kit/verify/matching.h"
#include "kit/verify/verify.h"

namespace kit::exporter {

namespace {

using input::Finding;
using input::Findings;
using input::Severity;

/// Keeps the errors: the rest is for those who make the files.
void addErrors(const Findings& from, Findings& to)
{
    std::copy_if(from.begin(), from.end(), std::back_inserter(to),
                 [](const Finding& finding) { return finding.severity == Severity::ERROR; });
}

bool hasErrors(const Findings& findings)
{
    return std::any_of(findings.begin(), findings.end(),
                       [](const Finding& finding) { return finding.severity == Severity::ERROR; });
}

std::vector<std::string> pathsOf(const Options& options, const ResultFiles& files)
{
    std::vector<std::string> paths{files.json, files.place, files.colors, options.def};
    if (!files.map.empty()) {
        paths.push_back(files.map);
    }
    paths.insert(paths.end(), options.lefs.begin(), options.lefs.end());
    return paths;
}

/// Whether an issue is about a component that the placer left without a solution.
bool isUncoloured(const verify::Issue& issue, const std::vector<const input::ColorRecord*>& colours)
{
    const input::ColorRecord* const record =
        issue.component < 0 ? nullptr : colours[static_cast<size_t>(issue.component)];
    return record != nullptr && record->solution == -1 &&
           (issue.kind == verify::Kind::BAD_SOLUTION || issue.kind == verify::Kind::MASK_COUNT);
}

void addUncoloured(const verify::Issue& issue, const Inputs& inputs, Findings& findings)
{
    if (issue.kind == verify::Kind::BAD_SOLUTION) { // the lack of masks follows from it
        const std::string& name = inputs.design.components[static_cast<size_t>(issue.component)].name;
        findings.push_back({.severity = Severity::WARNING,
                            .code = "no-solution",
                            .file = inputs.files.colors,
                            .line = issue.line,
                            .what = name + " has no colour solution: its metal is on no mask",
                            .advice = "place with --rescue"});
    }
}

void matchColours(Inputs& inputs, Findings& findings)
{
    verify::Issues issues;
    inputs.colours = verify::matchColors(inputs.design, inputs.records, issues);
    verify::checkColors(inputs.design, inputs.colours, issues);
    for (const verify::Issue& issue : issues) {
        if (isUncoloured(issue, inputs.colours)) {
            addUncoloured(issue, inputs, findings);
            continue;
        }
        findings.push_back(
            {.severity = verify::infoOf(issue.kind).severity,
             .code = verify::infoOf(issue.kind).name,
             .file = issue.inColors ? inputs.files.colors : inputs.files.place,
             .line = issue.line,
             .what = issue.what,
             .advice = "export a placement with the colours and colour files that it was made with"});
    }
}

void readResult(const Options& options, Inputs& inputs, Findings& findings)
{
    if (!needsColours(options)) {
        Findings ofPlacement;
        input::readPlacement(inputs.files.place, inputs.design, ofPlacement);
        addErrors(ofPlacement, findings);
        return;
    }
    verify::Options from;
    from.placement = inputs.files.place;
    from.colors = inputs.files.colors;
    from.cellDir = inputs.files.cellDir;
    verify::Input input = verify::readInput(from);
    addErrors(input.faults, findings);
    inputs.design = std::move(input.design);
    inputs.records = std::move(input.colors);
    std::vector<std::string> paths;
    for (const input::Cell& cell : inputs.design.cells) {
        paths.push_back(cell.path);
    }
    checkOutputs(options, paths);
    if (!hasErrors(findings)) {
        matchColours(inputs, findings);
    }
}

void readDef(const Options& options, Inputs& inputs, Findings& findings)
{
    Findings ofDef;
    inputs.defSource = std::make_unique<lefdef::Source>(options.def);
    inputs.def = lefdef::readDef(*inputs.defSource, ofDef);
    addErrors(ofDef, findings);
    if (inputs.files.map.empty()) {
        return;
    }
    inputs.map = lefdef::readNameMap(inputs.files.map, findings);
    inputs.imported = inputs.map.hash == lefdef::hashOf(inputs.defSource->text());
    if (!inputs.imported && !hasErrors(findings)) {
        findings.push_back({.severity = Severity::WARNING,
                            .code = "other-file",
                            .file = options.def,
                            .what = "the file is not the one that was imported, " + inputs.map.def,
                            .advice = "export into that one, unless you know what has changed"});
    }
}

void findFrame(const Options& options, Inputs& inputs, Findings& findings)
{
    input::Design& design = inputs.design;
    const int32_t units = inputs.def.databaseMicrons;
    if (design.name.empty()) {
        design.name = inputs.def.design;
    }
    if (design.dbuPerMicron == 0) {
        design.dbuPerMicron = units;
    }
    if (units > 0 && design.dbuPerMicron != units) {
        findings.push_back({.severity = Severity::ERROR,
                            .code = "units",
                            .file = options.def,
                            .what = "a micrometre has " + std::to_string(units) + " DBU here, and " +
                                    std::to_string(design.dbuPerMicron) + " in the placement",
                            .advice = "export into the DEF file that the placement was made from"});
    }
    inputs.frame = input::frameOf(design, inputs.files.place);
}

void readLefs(const Options& options, Inputs& inputs, Findings& findings)
{
    Findings ofLefs;
    for (const std::string& path : options.lefs) {
        inputs.lefSources.push_back(std::make_unique<lefdef::Source>(path));
        lefdef::readLef(*inputs.lefSources.back(), options.layer,
                        static_cast<int32_t>(inputs.lefSources.size() - 1), inputs.lef, ofLefs);
    }
    addErrors(ofLefs, findings);
}

} // namespace

bool needsColours(const Options& options)
{
    return !options.gds.empty() || !options.lefMasks.empty();
}

Inputs readInputs(const Options& options, Findings& findings)
{
    Inputs inputs;
    inputs.files = findResult(options.result, options.cellDir);
    checkOutputs(options, pathsOf(options, inputs.files));
    readResult(options, inputs, findings);
    readDef(options, inputs, findings);
    findFrame(options, inputs, findings);
    readLefs(options, inputs, findings);
    return inputs;
}

} // namespace kit::exporter
