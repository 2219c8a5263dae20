// SPDX-License-Identifier: BSD-3-Clause
#include "kit/formats/placer/reader.h"

#include "kit/base/files/readFile.h"
#include "kit/formats/placer/names.h"
#include "kit/formats/placer/placementReader.h"

namespace kit::placer {

namespace {

/// The base name as the placer takes it: without one trailing dot.
std::string trimmed(const std::string& base)
{
    return base.ends_with('.') ? base.substr(0, base.size() - 1) : base;
}

} // namespace

std::string Paths::place() const
{
    return trimmed(base) + ".place";
}

std::string Paths::pins() const
{
    return trimmed(base) + ".pins";
}

std::string Paths::netlist() const
{
    return trimmed(base) + ".netlist";
}

std::string Paths::cells() const
{
    return trimmed(base) + ".cells";
}

std::vector<std::string> usedCells(const Design& design)
{
    std::vector<std::string> names;
    NameIndex seen;
    for (const Component& comp : design.components) {
        if (seen.try_emplace(comp.cellName, 0).second) {
            names.push_back(comp.cellName);
        }
    }
    return names;
}

void findCells(Design& design)
{
    const NameIndex index = indexNames(design.cells);
    for (Component& comp : design.components) {
        comp.cell = findName(index, comp.cellName);
    }
}

void readPlacement(const std::string& path, Design& design, Findings& findings)
{
    const std::string text = readFile(path);
    PlacementReader(text, design, Reporter(findings, path)).run();
}

Design readDesign(const Paths& paths, Findings& findings)
{
    Design design;
    readLibrary(paths, design, findings);
    readPlacement(paths.place(), design, findings);
    readPins(paths.pins(), design, findings);
    readNets(paths.netlist(), design, findings);
    return design;
}

} // namespace kit::placer
