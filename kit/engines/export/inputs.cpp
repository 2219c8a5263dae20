// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/export/inputs.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <unordered_set>

#include "kit/base/files/outputPaths.h"
#include "kit/design/coloredPlacement.h"
#include "kit/formats/placer/reader.h"

namespace kit::exporter {

namespace {

/// Adds the errors: the rest is for those who make the files.
void addErrors(const Findings& from, Findings& to)
{
    const Findings errors = errorsOf(from);
    to.insert(to.end(), errors.begin(), errors.end());
}

std::vector<std::string> pathsOf(const Options& options, const design::ResultFiles& files)
{
    std::vector<std::string> paths{files.json, files.place, files.colors, options.def};
    if (!files.map.empty()) {
        paths.push_back(files.map);
    }
    paths.push_back(design::fixedOf(files.place));
    paths.insert(paths.end(), options.lefs.begin(), options.lefs.end());
    return paths;
}

/// Whether an issue is about a component that the placer left without a solution.
bool isUncoloured(const design::Issue& issue, const std::vector<const placer::ColorRecord*>& colours)
{
    const placer::ColorRecord* const record =
        issue.component < 0 ? nullptr : colours[static_cast<size_t>(issue.component)];
    return record != nullptr && record->solution == -1 &&
           (issue.kind == design::Kind::BAD_SOLUTION || issue.kind == design::Kind::MASK_COUNT);
}

void addUncoloured(const design::Issue& issue, const Inputs& inputs, Findings& findings)
{
    if (issue.kind == design::Kind::BAD_SOLUTION) { // the lack of masks follows from it
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
    design::Issues issues;
    inputs.colours = design::matchColors(inputs.design, inputs.records, issues);
    design::checkColors(inputs.design, inputs.colours, issues);
    for (const design::Issue& issue : issues) {
        if (isUncoloured(issue, inputs.colours)) {
            addUncoloured(issue, inputs, findings);
            continue;
        }
        findings.push_back(
            {.severity = design::infoOf(issue.kind).severity,
             .code = design::infoOf(issue.kind).name,
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
        placer::readPlacement(inputs.files.place, inputs.design, ofPlacement);
        addErrors(ofPlacement, findings);
        return;
    }
    design::ColoredPlacement input = design::readColoredPlacement({.placement = inputs.files.place,
                                                                   .colors = inputs.files.colors,
                                                                   .cellDir = inputs.files.cellDir,
                                                                   .cells = {}});
    addErrors(input.faults, findings);
    inputs.design = std::move(input.design);
    inputs.records = std::move(input.colors);
    inputs.fixedRecords = std::move(input.fixedColors);
    std::vector<std::string> paths;
    for (const placer::Cell& cell : inputs.design.cells) {
        paths.push_back(cell.path);
    }
    checkOutputs(outputsOf(options), paths, options.force);
    if (!hasErrors(findings)) {
        matchColours(inputs, findings);
        design::addFixedColors(inputs.fixedRecords, inputs.colours);
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
    inputs.map = design::readNameMap(inputs.files.map, findings);
    inputs.imported = inputs.map.hash == design::hashOf(inputs.defSource->text());
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
    placer::Design& design = inputs.design;
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
    inputs.frame = design::frameOf(design, inputs.files.place);
}

void readLefs(const Options& options, Inputs& inputs, Findings& findings)
{
    Findings ofLefs;
    std::unordered_set<std::string_view> used;
    for (const lefdef::DefComponent& component : inputs.def.components) {
        used.insert(component.macro);
    }
    inputs.library =
        lefdef::readLibrary(options.lefs, options.layer, ofLefs, [&used](const lefdef::LefMacro& macro) {
            return used.count(macro.name) > 0 && standsInRows(macro);
        });
    addErrors(ofLefs, findings);
}

} // namespace

bool needsColours(const Options& options)
{
    return !options.gds.empty() || !options.lefMasks.empty() || options.fill;
}

Inputs readInputs(const Options& options, Findings& findings)
{
    Inputs inputs;
    inputs.files = design::findResult(options.result, options.cellDir);
    checkOutputs(outputsOf(options), pathsOf(options, inputs.files), options.force);
    readResult(options, inputs, findings);
    readDef(options, inputs, findings);
    findFrame(options, inputs, findings);
    readLefs(options, inputs, findings);
    return inputs;
}

} // namespace kit::exporter
