// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/export/masters.h"

#include <algorithm>
#include <set>

#include "kit/base/text/text.h"
#include "kit/engines/export/lefMasks.h"

namespace kit::exporter {

namespace {

/// A cell by its index in MasterNames.
const placer::Cell& cellOf(const Inputs& inputs, const Filling& filling, int32_t index)
{
    return index < 0 ? filling.masters[static_cast<size_t>(-1 - index)]
                     : inputs.design.cells[static_cast<size_t>(index)];
}

std::string freeName(const placer::Cell& cell, int32_t solution, const MacroIndex& macros)
{
    std::string name;
    std::string blanks = "_";
    do {
        name = cell.name + blanks + "S" + std::to_string(solution);
        blanks += "_";
    } while (macros.count(name) != 0);
    return name;
}

void tellMissing(const Inputs& inputs, const MasterNames& names, const Filling& filling,
                 const MacroIndex& macros, Findings& findings)
{
    std::set<std::string_view> told;
    Reporter reporter(findings, inputs.files.place);
    for (const auto& [key, name] : names) {
        const placer::Cell& cell = cellOf(inputs, filling, key.first);
        if (macros.count(cell.name) == 0 && told.insert(cell.name).second) {
            reporter.error("no-macro", {}, "the cell " + cell.name + " is in none of the LEF files",
                           "give the file that has it with --lef");
        }
    }
}

} // namespace

MasterNames nameMasters(const Inputs& inputs, const std::vector<Placed>& placed,
                        const std::vector<Kept>& kept, const Filling& filling, const MacroIndex& macros,
                        Findings& findings)
{
    MasterNames names;
    const auto addName = [&](int32_t cell, int32_t solution) {
        std::string& name = names[{cell, solution}];
        name = name.empty() ? freeName(cellOf(inputs, filling, cell), solution, macros) : name;
    };
    for (const Placed& one : placed) {
        const placer::ColorRecord* const colours = inputs.colours[one.inPlace];
        const int32_t cell = inputs.design.components[one.inPlace].cell;
        if (colours != nullptr && colours->solution >= 0 && cell >= 0) {
            addName(cell, colours->solution);
        }
    }
    for (const Kept& one : kept) {
        addName(one.cell, one.solution);
    }
    for (const Filled& filler : filling.fillers) {
        addName(keyOf(filler).first, filler.solution);
    }
    tellMissing(inputs, names, filling, macros, findings);
    return names;
}

std::string masterText(const Inputs& inputs, const MasterNames& names, const Filling& filling,
                       const MacroIndex& macros, lefdef::Length siteWidth, Findings& findings)
{
    std::string text;
    for (const auto& [key, name] : names) {
        const placer::Cell& cell = cellOf(inputs, filling, key.first);
        const lefdef::LefMacro& macro = *macros.at(cell.name);
        const lefdef::Source& source = sourceOf(inputs.library, macro);
        if (text.empty()) {
            text = lefHead(source);
        }
        const placer::Solution& solution = cell.solutions[static_cast<size_t>(key.second)];
        const MaskedMacro masked = maskedMacro(source, macro, {cell, solution, siteWidth}, name);
        text += "\n" + masked.text + "\n";
        if (masked.bareMetal > 0) {
            lefdef::SourceReporter(findings, source)
                .warning("bare-metal", macro.offset,
                         counted(masked.bareMetal, "shape") + " of " + name +
                             " have metal without a mask, for " + cell.path + " does not have it",
                         "colour the cells of this library");
        }
    }
    return (text.empty() ? "VERSION 5.8 ;\n" : text) + "\nEND LIBRARY\n";
}

} // namespace kit::exporter
