// SPDX-License-Identifier: BSD-3-Clause
#include "kit/input/reader.h"

#include "kit/base/readFile.h"
#include "kit/input/placementReader.h"

namespace kit::input {

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

} // namespace kit::input
