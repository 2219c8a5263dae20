// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/view/inputs.h"

#include <algorithm>
#include <filesystem>
#include <vector>

#include "kit/base/fault.h"
#include "kit/base/files/folder.h"
#include "kit/design/coloredPlacement.h"
#include "kit/design/fixedCells.h"
#include "kit/design/nameMap.h"
#include "kit/design/pinOffsets.h"
#include "kit/engines/view/conflicts.h"
#include "kit/engines/view/scene.h"
#include "kit/formats/placer/colors.h"
#include "kit/formats/placer/reader.h"

namespace kit::view {

namespace {

namespace fs = std::filesystem;

/// A path without an ending that it may have.
std::string without(const std::string& path, const std::string& ending)
{
    return path.ends_with(ending) ? path.substr(0, path.size() - ending.size()) : path;
}

std::string mustExist(const std::string& path)
{
    if (!path.empty() && !fs::exists(path)) {
        throw Fault("there is no " + path);
    }
    return path;
}

/// The file of an option; without the option, the first that exists of the bases with the ending.
std::string find(const std::string& named, const std::vector<std::string>& bases, const std::string& ending)
{
    if (!named.empty()) {
        return mustExist(named);
    }
    for (const std::string& base : bases) {
        if (fs::is_regular_file(base + ending)) {
            return base + ending;
        }
    }
    return "";
}

std::string placementFile(const std::string& path)
{
    return path.empty() ? "" : mustExist(without(path, ".place") + ".place");
}

/// Reads the placement and the cells that it uses.
void readPlacedCells(const InputPaths& paths, placer::Design& design, Findings& findings)
{
    if (!paths.cells.empty() && !paths.cellDir.empty()) {
        placer::readLibrary(paths.cells, paths.cellDir, design, findings);
    }
    placer::readPlacement(paths.placement, design, findings);
    if (paths.cells.empty() && !paths.cellDir.empty()) {
        placer::readCells(placer::usedCells(design), paths.cellDir, design, findings);
        placer::findCells(design);
    }
}

void checkColours(const std::vector<const placer::ColorRecord*>& colours, const InputPaths& paths)
{
    const auto isKnown = [](const placer::ColorRecord* record) { return record != nullptr; };
    if (!colours.empty() && std::none_of(colours.begin(), colours.end(), isKnown)) {
        throw Fault(paths.colors + " has colours of no component of " + paths.placement);
    }
}

/// Wirelength from pin to pin for people; empty if it is not known.
std::string pinLengthText(const std::string& placement, const placer::Design& design, int32_t dbuPerMicron,
                          Findings& findings)
{
    const Json length =
        design::pinLengthJson(design::pinLengthBeside(placement, design, findings), dbuPerMicron);
    return length.isObject() ? design::micrometresText(length) : "";
}

} // namespace

InputPaths findInputs(const Options& options)
{
    std::vector<std::string> bases{without(options.placement, ".place")};
    if (!options.before.empty()) {
        bases.push_back(without(options.before, ".place"));
    }
    InputPaths paths;
    paths.placement = placementFile(options.placement);
    paths.before = placementFile(options.before);
    paths.cells = find(options.cells, bases, ".cells");
    paths.pins = find(options.pins, bases, ".pins");
    paths.netlist = find(options.netlist, bases, ".netlist");
    paths.colors = mustExist(options.colors);
    paths.cellDir = mustExist(options.cellDir);
    return paths;
}

std::vector<std::string> allOf(const InputPaths& paths)
{
    std::vector<std::string> all = filesIn(paths.cellDir);
    all.insert(all.end(), {paths.placement, paths.before, paths.cells, paths.pins, paths.netlist,
                           paths.colors, design::mapOf(paths.placement), design::mapOf(paths.before),
                           design::fixedOf(paths.placement)});
    return all;
}

Scene readScene(const InputPaths& paths, const design::Distance& minDist, Findings& findings)
{
    placer::Design design;
    readPlacedCells(paths, design, findings);
    design::restoreOrientations(paths.placement, design, findings);
    if (!paths.netlist.empty()) {
        if (!paths.pins.empty()) {
            placer::readPins(paths.pins, design, findings);
        }
        placer::readNets(paths.netlist, design, findings);
    }
    const int32_t dbuPerMicron = design::frameOf(design, paths.placement).dbuPerMicron;
    const std::string pinLength = pinLengthText(paths.placement, design, dbuPerMicron, findings);
    Extras extras;
    std::vector<placer::ColorRecord> records;
    std::vector<placer::ColorRecord> fixedRecords;
    if (!paths.cellDir.empty()) {
        const design::FixedParts fixed = design::readFixed(design::fixedOf(paths.placement), findings);
        design::addFixed(fixed, paths.cellDir, design, findings);
        fixedRecords = design::fixedColorsOf(fixed, design);
    }
    if (!paths.colors.empty()) {
        records = placer::readColors(paths.colors, findings);
        extras.colours = matchByName(design.components, records);
        checkColours(extras.colours, paths);
        design::addFixedColors(fixedRecords, extras.colours);
    }
    placer::Design before;
    if (!paths.before.empty()) {
        placer::readPlacement(paths.before, before, findings);
        design::restoreOrientations(paths.before, before, findings);
        extras.before = &before;
    }
    Scene scene = buildScene(design, extras);
    scene.title = paths.placement;
    scene.dbuPerMicron = dbuPerMicron;
    scene.pinLength = pinLength;
    if (scene.moved) {
        scene.pinLengthBefore = pinLengthText(paths.before, before, dbuPerMicron, findings);
    }
    const lefdef::Length site = design::siteLength(design);
    scene.minDist = minDist.unitsOn(site);
    scene.minDistText = minDist.textOn(site);
    if (scene.coloured) {
        scene.conflicts = findConflicts(design, extras.colours, scene.siteWidth, scene.minDist);
        const std::vector<int32_t> drawn = drawnCells(design);
        for (Conflict& conflict : scene.conflicts) { // one with a block is shown at the cell
            const int32_t left = drawn[static_cast<size_t>(conflict.left)];
            const int32_t right = drawn[static_cast<size_t>(conflict.right)];
            conflict.left = left < 0 ? right : left;
            conflict.right = right < 0 ? left : right;
        }
    }
    return scene;
}

} // namespace kit::view
