// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/refine/inputs.h"

#include <filesystem>
#include <sstream>

#include "kit/base/fault.h"
#include "kit/base/files/readFile.h"
#include "kit/base/text/text.h"
#include "kit/formats/placer/reader.h"

namespace kit::refine {

namespace fs = std::filesystem;

namespace {

/// No weight is larger: sums stay within 64 bits.
constexpr int32_t HEAVIEST = 1000;

} // namespace

Inputs readInputs(const Paths& paths)
{
    const placer::Paths files{.base = paths.base, .cellDir = paths.cellDir};
    std::string colors = paths.colors.empty() ? paths.base + ".colors" : paths.colors;
    if (paths.colors.empty() && paths.mayBeBare && !fs::is_regular_file(colors)) {
        colors.clear();
    }
    Inputs inputs{.placed = design::readColoredPlacement({.placement = files.place(),
                                                          .colors = colors,
                                                          .cellDir = paths.cellDir,
                                                          .cells = files.cells()})};
    Findings findings = std::move(inputs.placed.faults);
    placer::readPins(files.pins(), inputs.placed.design, findings);
    placer::readNets(files.netlist(), inputs.placed.design, findings);
    if (const std::string map = design::mapOf(files.place()); fs::exists(map)) {
        inputs.map = design::readNameMap(map, findings);
    }
    if (const std::string offsets = design::offsetsOf(files.place()); fs::exists(offsets)) {
        inputs.offsets = design::readPinOffsets(offsets, findings);
        if (!hasErrors(findings)) {
            inputs.placed.pinLength = design::pinLengthBeside(files.place(), inputs.placed.design, findings);
        }
    }
    Findings told; // with the placement
    inputs.fixed = design::readFixed(design::fixedOf(files.place()), told);
    inputs.faults = errorsOf(findings);
    return inputs;
}

size_t netCountOf(const Inputs& inputs)
{
    return inputs.offsets ? inputs.offsets->netBegin.size() - 1 : inputs.placed.design.nets.size();
}

std::set<std::string> readFixedNames(const std::string& path, const Inputs& inputs)
{
    const placer::NameIndex known = placer::indexNames(inputs.placed.design.components);
    const placer::NameIndex parts = placer::indexNames(inputs.placed.design.fixed);
    std::unordered_map<std::string_view, std::string_view> renamed; // by the names in the DEF file
    if (inputs.map) {
        for (const design::Renamed& name : inputs.map->names) {
            renamed.emplace(name.original, name.name);
        }
    }
    std::set<std::string> names;
    std::istringstream lines(readFile(path));
    int64_t number = 0;
    for (std::string line; std::getline(lines, line);) {
        ++number;
        if (line.empty() || placer::findName(parts, line) >= 0) {
            continue;
        }
        const auto at = renamed.find(line);
        const std::string_view name = at != renamed.end() ? at->second : std::string_view(line);
        if (placer::findName(known, name) < 0) {
            throw Fault(path + ":" + std::to_string(number) + ": there is no component " + inQuotes(line));
        }
        names.emplace(name);
    }
    return names;
}

std::vector<int32_t> readNetWeights(const std::string& path, size_t nets)
{
    std::vector<int32_t> weights(nets, 1);
    std::istringstream lines(readFile(path));
    int64_t number = 0;
    for (std::string line; std::getline(lines, line);) {
        ++number;
        std::istringstream words(line);
        std::string net;
        std::string weight;
        std::string more;
        words >> net >> weight >> more;
        if (net.empty()) {
            continue;
        }
        const Integer index = parseInteger(net);
        const Integer value = parseInteger(weight);
        if (!index.sound || !value.sound || !more.empty() || index.value < 0 ||
            static_cast<size_t>(index.value) >= nets || value.value < 1 || value.value > HEAVIEST) {
            throw Fault(path + ":" + std::to_string(number) + ": " + inQuotes(line) +
                        " is no number of a net, below " + std::to_string(nets) +
                        ", and a weight from 1 to " + std::to_string(HEAVIEST));
        }
        weights[static_cast<size_t>(index.value)] = value.value;
    }
    return weights;
}

} // namespace kit::refine
