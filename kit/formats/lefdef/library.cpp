// SPDX-License-Identifier: BSD-3-Clause
#include "kit/formats/lefdef/library.h"

#include <algorithm>
#include <iterator>
#include <set>

#include "kit/base/fault.h"
#include "kit/base/text/text.h"

namespace kit::lefdef {

namespace {

using Macros = std::vector<const LefMacro*>;

/// Names with commas in between.
template <typename Names>
std::string listOf(const Names& names)
{
    std::string text;
    for (const std::string& name : names) {
        text += (text.empty() ? "" : ", ") + name;
    }
    return text;
}

bool hasPinsOn(const LefMacro& macro, const std::string& layer)
{
    return std::ranges::find(macro.pinLayers, layer) != macro.pinLayers.end();
}

Macros withPins(const Lef& lef, const MacroTest& isUsed)
{
    Macros macros;
    for (const LefMacro& macro : lef.macros) {
        if (!macro.pinLayers.empty() && isUsed(macro)) {
            macros.push_back(&macro);
        }
    }
    return macros;
}

/// The layers of pins, in the order in which they are named.
std::vector<std::string> layersOf(const Macros& macros)
{
    std::vector<std::string> layers;
    for (const LefMacro* macro : macros) {
        for (const std::string& layer : macro->pinLayers) {
            if (std::ranges::find(layers, layer) == layers.end()) {
                layers.push_back(layer);
            }
        }
    }
    return layers;
}

/// The layer that is metal 1 by where pins are; empty if there are no pins.
std::string findLayer(const Lef& lef, const MacroTest& isUsed, Findings& findings)
{
    const Macros used = withPins(lef, isUsed);
    const Macros macros =
        !used.empty() ? used : withPins(lef, [](const LefMacro& /*macro*/) { return true; });
    for (const std::string& layer : lef.routingLayers.empty() ? layersOf(macros) : lef.routingLayers) {
        const auto on =
            std::ranges::count_if(macros, [&](const LefMacro* macro) { return hasPinsOn(*macro, layer); });
        if (2 * static_cast<size_t>(on) >= macros.size() && !macros.empty()) {
            Reporter(findings, lef.paths.front())
                .note("layer", {},
                      "metal 1 is layer " + layer + ": " + std::to_string(on) + " of " +
                          counted(static_cast<int64_t>(macros.size()), "cell") + " with pins have some on it",
                      "give --layer if it is another");
            return layer;
        }
    }
    if (!used.empty()) {
        throw Fault("no routing layer has pins of half of the cells in use in " + listOf(lef.paths) +
                    ": give --layer; they have pins on " + listOf(layersOf(used)));
    }
    return "";
}

} // namespace

bool standsInRows(const LefMacro& macro)
{
    const std::string& words = macro.macroClass;
    return words.empty() || words == "CORE" || words.starts_with("CORE ") || words == "ENDCAP PRE" ||
           words == "ENDCAP POST";
}

Library readLibrary(const std::vector<std::string>& paths, const std::string& layer, Findings& findings,
                    const MacroTest& isUsed)
{
    Library library;
    for (const std::string& path : paths) {
        library.sources.emplace_back(path);
    }
    const auto read = [&library](const std::string& wanted, Findings& told) {
        Lef lef;
        int32_t number = 0;
        for (const Source& source : library.sources) {
            readLef(source, wanted, number++, lef, told);
        }
        return lef;
    };
    std::string found = layer;
    if (layer.empty()) {
        Findings toldAgain; // by the reading for good
        found = findLayer(read("", toldAgain), isUsed, findings);
    }
    library.lef = read(found, findings);
    return library;
}

const Source& sourceOf(const Library& library, const LefMacro& macro)
{
    return *std::next(library.sources.begin(), macro.source);
}

void requireMetal(const Lef& lef, const std::vector<const LefMacro*>& macros)
{
    std::set<std::string> others;
    for (const LefMacro* macro : macros) {
        if (hasMetal(*macro)) {
            return;
        }
        others.insert(macro->pinLayers.begin(), macro->pinLayers.end());
        others.insert(macro->otherLayers.begin(), macro->otherLayers.end());
    }
    if (!others.empty()) {
        throw Fault("no cell in use has " + (lef.layer.empty() ? "pins" : "metal on the layer " + lef.layer) +
                    " in " + listOf(lef.paths) + ": give another with --layer; they have shapes on " +
                    listOf(others));
    }
}

} // namespace kit::lefdef
