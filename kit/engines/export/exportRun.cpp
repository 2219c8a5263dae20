// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/export/exportRun.h"

#include <algorithm>
#include <iostream>
#include <memory>
#include <optional>

#include "kit/base/fault.h"
#include "kit/base/files/outputFile.h"
#include "kit/base/finding.h"
#include "kit/base/text/json.h"
#include "kit/base/text/text.h"
#include "kit/design/stretches.h"
#include "kit/engines/export/defPatch.h"
#include "kit/engines/export/fill.h"
#include "kit/engines/export/layerProperties.h"
#include "kit/engines/export/layout.h"
#include "kit/engines/export/lefMasks.h"
#include "kit/engines/export/masters.h"
#include "kit/formats/lefdef/library.h"
#include "kit/formats/placer/reader.h"

namespace kit::exporter {

namespace {

constexpr int WARNED = 1;
constexpr int FAILED = 2;
constexpr size_t MOST_OF_A_KIND = 20;
using lefdef::Length;

/// The files, with a line for the user about each.
class Outputs {
public:
    template <typename Write>
    void add(const std::string& path, const std::string& line, const Write& write)
    {
        m_set.add(path, write);
        m_told.push_back({{"path", path}, {"summary", line}});
    }

    void commit(bool json)
    {
        m_set.commit();
        if (json) {
            std::cout << Json{{"schema", 1}, {"files", m_told}} << '\n';
        } else {
            for (const Json& file : m_told.items()) {
                std::cout << file["path"].asString() << ": " << file["summary"].asString() << '\n';
            }
        }
        std::cout << std::flush; // before the findings
    }

private:
    OutputSet m_set;
    Json m_told = Json::array();
};

class ExportRun {
public:
    explicit ExportRun(const Options& options) : m_options(options), m_inputs(readInputs(options, m_findings))
    {
    }

    int run()
    {
        if (hasErrors(m_findings)) {
            return tell();
        }
        m_macros = indexMacros(m_inputs.library.lef);
        const Sides sides{m_inputs.design, m_inputs.files.place, m_inputs.map, m_inputs.def,
                          *m_inputs.defSource};
        m_matching = matchComponents(sides, m_findings);
        requireLayer();
        m_kept = matchKept(m_inputs.def, m_matching, m_inputs.design, m_inputs.fixedRecords);
        m_fillers = findFillers(m_inputs.def, m_matching, m_macros);
        // The import left out on purpose what it did; and errors tell more.
        if (!m_inputs.imported && !hasErrors(m_findings)) {
            tellLeftOut(sides, m_matching, m_fillers, m_findings);
        }
        if (hasErrors(m_findings)) {
            return tell();
        }
        lefdef::Edits edits;
        const std::string changes = change(edits);
        if (!m_options.lefMasks.empty()) {
            m_masters = nameMasters(m_inputs, m_matching.placed, m_kept, m_filling, m_macros, m_findings);
        }
        if (hasErrors(m_findings)) {
            return tell();
        }
        writeDefs(edits, changes);
        writeMasters();
        writeGds();
        m_outputs.commit(m_options.json);
        return tell();
    }

private:
    /// Shows the findings. @return the exit status
    int tell()
    {
        limitFindings(m_findings, MOST_OF_A_KIND);
        if (!m_findings.empty()) {
            writeText(m_findings, std::cerr);
        }
        const Counts counts = countsOf(m_findings);
        return counts.errors > 0 ? FAILED : counts.warnings > 0 ? WARNED : 0;
    }

    /// Of the cells in the placement, as far as the LEF files have them.
    void requireLayer() const
    {
        std::vector<const lefdef::LefMacro*> macros;
        for (const Placed& placed : m_matching.placed) {
            const auto macro = m_macros.find(m_inputs.def.components[placed.inDef].macro);
            if (macro != m_macros.end()) {
                macros.push_back(macro->second);
            }
        }
        requireMetal(m_inputs.library.lef, macros);
    }

    void note(const char* code, std::string what, std::string advice)
    {
        Reporter(m_findings, m_options.def).note(code, {}, std::move(what), std::move(advice));
    }

    /// Changes the DEF file but for the new fillers and the names of masters. @return what changes, in a line
    std::string change(lefdef::Edits& edits)
    {
        const lefdef::Def& def = m_inputs.def;
        const int64_t changed = placeComponents(*m_inputs.defSource, def, m_matching.placed, edits);
        std::string line = counted(static_cast<int64_t>(m_matching.placed.size()), "component") + ", " +
                           std::to_string(changed) + " in a new place" + changeRouting(edits);
        if (m_inputs.files.errors > 0) { // whoever goes on with the file alone would not know
            edits.replace(0, 0,
                          "# Not clean: verify finds " + counted(m_inputs.files.errors, "error") + "\n");
        }
        if (!m_options.dropFillers && !m_options.fill) {
            tellFillers();
            return line;
        }
        std::vector<bool> dropped = m_fillers;
        const int64_t fewer = dropFillers(*m_inputs.defSource, def, dropped, edits, m_findings);
        line += ", " + counted(fewer, "filler") + " left out";
        if (m_options.fill) {
            m_filling = fillGaps({.def = def,
                                  .lef = m_inputs.library.lef,
                                  .matching = m_matching,
                                  .macros = m_macros,
                                  .fillers = m_fillers,
                                  .dropped = dropped,
                                  .design = m_inputs.design,
                                  .colours = m_inputs.colours,
                                  .cellDir = m_inputs.files.cellDir,
                                  .minDist = m_inputs.files.minDist,
                                  .defPath = m_options.def,
                                  .micron = static_cast<int32_t>(micron()),
                                  .siteWidth = step(),
                                  .rowHeight = design::rowHeight(m_inputs.design)},
                                 m_findings);
            line += fewer > 0 ? ", " + std::to_string(m_filling.fillers.size()) + " put in" : "";
        }
        std::erase_if(m_matching.untouched, [&](size_t index) { return dropped[index]; });
        const auto all = static_cast<int64_t>(def.components.size() + m_filling.fillers.size());
        countComponents(*m_inputs.defSource, def, all - fewer, edits);
        return line;
    }

    /// Removes routing that ends where components were, or tells of it. @return what changes
    std::string changeRouting(lefdef::Edits& edits)
    {
        const std::vector<bool> moved = movedComponents(m_inputs.def, m_matching.placed);
        const int64_t nets = dropRouting(m_inputs.def, moved, m_options.keepRouting ? nullptr : &edits);
        if (nets > 0 && m_options.keepRouting) {
            Reporter(m_findings, m_options.def)
                .warning("routing", {},
                         "the routing of " + counted(nets, "net") + " ends where components were",
                         "leave --keep-routing out, or route these nets anew");
        }
        return nets > 0 && !m_options.keepRouting ? ", the routing of " + counted(nets, "net") + " left out"
                                                  : "";
    }

    void writeDefs(const lefdef::Edits& edits, const std::string& changes)
    {
        lefdef::Edits plain = edits;
        std::vector<std::string_view> macros;
        for (const Filled& filler : m_filling.fillers) {
            macros.push_back(m_filling.masters[filler.master].name);
        }
        addFillers(*m_inputs.defSource, m_inputs.def, m_filling.fillers, macros, plain);
        m_outputs.add(m_options.out, changes,
                      [&](OutputFile& file) { plain.write(m_inputs.defSource->text(), file); });
        if (m_options.defMasks.empty()) {
            return;
        }
        lefdef::Edits masked = edits;
        renameMacros(masked);
        for (size_t i = 0; i < macros.size(); ++i) {
            macros[i] = m_masters.at(keyOf(m_filling.fillers[i]));
        }
        addFillers(*m_inputs.defSource, m_inputs.def, m_filling.fillers, macros, masked);
        m_outputs.add(m_options.defMasks, changes,
                      [&](OutputFile& file) { masked.write(m_inputs.defSource->text(), file); });
    }

    void tellFillers()
    {
        const int64_t fillers = std::count(m_fillers.begin(), m_fillers.end(), true);
        if (fillers == 0) {
            return;
        }
        const int64_t covered = countCovered(m_inputs.def, m_matching, m_fillers,
                                             [this](std::string_view macro) { return widthOfMacro(macro); });
        note("fillers",
             counted(fillers, "filler") + " stay where they are, and placed cells lie on " +
                 std::to_string(covered) + " of them",
             "--drop-fillers leaves them out, and --fill fills the gaps");
    }

    void renameMacros(lefdef::Edits& edits)
    {
        for (const Placed& placed : m_matching.placed) {
            const placer::ColorRecord* const colours = m_inputs.colours[placed.inPlace];
            if (colours != nullptr && colours->solution >= 0) {
                const int32_t cell = m_inputs.design.components[placed.inPlace].cell;
                renameMacro(*m_inputs.defSource, m_inputs.def.components[placed.inDef],
                            m_masters.at({cell, colours->solution}), edits);
            }
        }
        for (const Kept& kept : m_kept) {
            renameMacro(*m_inputs.defSource, m_inputs.def.components[kept.inDef],
                        m_masters.at({kept.cell, kept.solution}), edits);
        }
    }

    void writeMasters()
    {
        if (m_options.lefMasks.empty()) {
            return;
        }
        const Length siteWidth = step() * lefdef::MICRON / micron();
        for (const lefdef::Source& source : m_inputs.library.sources) {
            if (lacksMasks(source, m_inputs.library.lef.layer)) {
                Reporter(m_findings, source.path())
                    .note("layer-masks", {},
                          "the layer " + m_inputs.library.lef.layer + " is not said to have three masks",
                          "write MASK 3 into it for those who read the masters");
            }
        }
        m_outputs.add(m_options.lefMasks, counted(static_cast<int64_t>(m_masters.size()), "master"),
                      [&](OutputFile& file) {
                          file << masterText(m_inputs, m_masters, m_filling, m_macros, siteWidth, m_findings);
                      });
    }

    void writeGds()
    {
        if (m_options.gds.empty()) {
            return;
        }
        const Grid grid(micron(), step(), reach());
        if (grid.isRounded()) {
            note("rounded",
                 "the layout is too large for units in which all metal is exact: it is rounded to "
                 "the units of the DEF file",
                 "");
        }
        int64_t leftOut = 0;
        const auto write = [&](OutputFile& file) {
            leftOut = writeLayout({m_inputs.frame.topCell, m_inputs.design, m_inputs.def, m_matching.placed,
                                   m_inputs.colours, m_kept, m_matching.untouched, m_macros, m_filling, grid},
                                  file);
        };
        m_outputs.add(m_options.gds, std::to_string(grid.unitsPerMicron()) + " database units per micrometre",
                      write);
        if (leftOut > 0) {
            note("no-outline",
                 "the layout lacks " + counted(leftOut, "component") + ", as no outline is known",
                 "give their macros with --lef");
        }
        m_outputs.add(layerPropertiesOf(m_options.gds), "layer properties",
                      [](OutputFile& file) { file << layerPropertiesText(); });
    }

    /// DBU per micrometre.
    int64_t micron() const
    {
        if (m_inputs.def.databaseMicrons <= 0) {
            throw Fault(m_options.def + " does not say its UNITS, which layouts and masters need");
        }
        return m_inputs.frame.dbuPerMicron;
    }

    /// Site width, DBU.
    int64_t step() const
    {
        if (m_inputs.design.rows.empty() || m_inputs.design.rows.front().step <= 0) {
            throw Fault(m_inputs.files.place +
                        " has no row with a positive step, which tells the site width");
        }
        return m_inputs.design.rows.front().step;
    }

    /// Width of a macro of the library or, without one, of its colour file; DBU, 0 if neither is there.
    int64_t widthOfMacro(std::string_view name)
    {
        const auto macro = m_macros.find(name);
        if (macro != m_macros.end() && m_inputs.def.databaseMicrons > 0) {
            return dbuOf(macro->second->width, micron());
        }
        const auto [at, isNew] = m_widths.try_emplace(std::string(name), 0);
        if (isNew && !m_inputs.design.rows.empty()) {
            placer::Design one;
            Findings unread; // a filler need not have a colour file
            placer::readCells({at->first}, m_inputs.files.cellDir, one, unread);
            at->second = widthOf(one.cells.front(), m_inputs.design.rows.front().step);
        }
        return at->second;
    }

    /// Largest coordinate of the layout in size, DBU; no cell is larger than the layout.
    int64_t reach() const
    {
        int64_t reach = 0;
        for (const Placed& placed : m_matching.placed) {
            reach = std::max({reach, std::abs(int64_t{placed.x}), std::abs(int64_t{placed.y})});
        }
        for (const lefdef::DefComponent& component : m_inputs.def.components) {
            reach = std::max({reach, std::abs(int64_t{component.x}), std::abs(int64_t{component.y})});
        }
        return 2 * reach;
    }

    const Options& m_options;
    Findings m_findings;
    Inputs m_inputs;
    MacroIndex m_macros;
    Matching m_matching;
    std::vector<Kept> m_kept;
    std::vector<bool> m_fillers; ///< [component of the DEF file]
    Filling m_filling;           ///< the new ones
    MasterNames m_masters;
    std::unordered_map<std::string, int64_t> m_widths; ///< of colour files
    Outputs m_outputs;
};

} // namespace

int exportResult(const Options& options)
{
    return ExportRun(options).run();
}

} // namespace kit::exporter
