// SPDX-License-Identifier: BSD-3-Clause
#include "kit/view/inputs.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <vector>

#include "kit/base/folder.h"
#include "kit/fault.h"
#include "kit/input/colors.h"
#include "kit/input/frame.h"
#include "kit/input/reader.h"
#include "kit/lefdef/trueOrient.h"
#include "kit/view/build.h"
#include "kit/view/conflicts.h"

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

/// Names of the cells that a placement uses, each once.
std::vector<std::string> usedCells(const std::string& placement)
{
    input::Design design;
    input::Findings findings; // the placement is read once more, with the cells
    input::readPlacement(placement, design, findings);
    std::set<std::string> names;
    for (const input::Component& comp : design.components) {
        names.insert(comp.cellName);
    }
    return {names.begin(), names.end()};
}

void readCellsOf(const InputPaths& paths, input::Design& design, input::Findings& findings)
{
    if (paths.cellDir.empty()) {
        return;
    }
    if (!paths.cells.empty()) {
        input::readLibrary(paths.cells, paths.cellDir, design, findings);
    } else {
        input::readCells(usedCells(paths.placement), paths.cellDir, design, findings);
    }
}

void checkColours(const std::vector<const input::ColorRecord*>& colours, const InputPaths& paths)
{
    const auto isKnown = [](const input::ColorRecord* record) { return record != nullptr; };
    if (!colours.empty() && std::none_of(colours.begin(), colours.end(), isKnown)) {
        throw Fault(paths.colors + " has colours of no component of " + paths.placement);
    }
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
                           paths.colors, lefdef::mapOf(paths.placement), lefdef::mapOf(paths.before)});
    return all;
}

Scene readScene(const InputPaths& paths, int32_t minDist, input::Findings& findings)
{
    input::Design design;
    readCellsOf(paths, design, findings);
    input::readPlacement(paths.placement, design, findings);
    lefdef::restoreOrientations(paths.placement, design, findings);
    if (!paths.netlist.empty()) {
        if (!paths.pins.empty()) {
            input::readPins(paths.pins, design, findings);
        }
        input::readNets(paths.netlist, design, findings);
    }
    Extras extras;
    std::vector<input::ColorRecord> records;
    if (!paths.colors.empty()) {
        records = input::readColors(paths.colors, findings);
        extras.colours = matchColours(design, records);
        checkColours(extras.colours, paths);
    }
    input::Design before;
    if (!paths.before.empty()) {
        input::readPlacement(paths.before, before, findings);
        lefdef::restoreOrientations(paths.before, before, findings);
        extras.before = &before;
    }
    Scene scene = buildScene(design, extras);
    scene.title = paths.placement;
    scene.dbuPerMicron = input::frameOf(design, paths.placement).dbuPerMicron;
    scene.minDist = minDist;
    if (scene.coloured) {
        scene.conflicts = findConflicts(design, extras.colours, scene.siteWidth, minDist);
    }
    return scene;
}

} // namespace kit::view
