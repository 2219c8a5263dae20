// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/import/importRun.h"

#include <future>
#include <ostream>
#include <string_view>
#include <unordered_set>

#include "kit/base/files/outputFile.h"
#include "kit/base/files/outputPaths.h"
#include "kit/base/finding.h"
#include "kit/design/nameMap.h"
#include "kit/engines/import/cells.h"
#include "kit/engines/import/constraints.h"
#include "kit/engines/import/designFiles.h"
#include "kit/formats/lefdef/library.h"

namespace kit::importing {

namespace {
using lefdef::Def;
using lefdef::Lef;
using lefdef::Source;
using lefdef::SourceReporter;

/// Findings of a kind that are told one by one.
constexpr size_t MOST_OF_A_KIND = 3;

void checkOutputsOf(const Options& options)
{
    std::vector<std::string> outputs;
    for (const char* extension : WRITTEN) {
        outputs.push_back(options.out + extension);
    }
    std::vector<std::string> inputs = options.lefs;
    inputs.push_back(options.def);
    checkOutputs(outputs, inputs, options.force);
}

/// The libraries of a design.
Lef readLefs(const Options& options, const Def& def, Findings& findings)
{
    std::unordered_set<std::string_view> used; // filled where it is asked for
    const auto isUsed = [&](const lefdef::LefMacro& macro) {
        if (used.empty()) {
            for (const lefdef::DefComponent& component : def.components) {
                used.insert(component.macro);
            }
        }
        return used.count(macro.name) > 0 && standsInRows(macro) && !isFiller(macro);
    };
    return lefdef::readLibrary(options.lefs, options.layer, findings, isUsed).lef;
}

/// A run from the files read to the files written.
class Import {
public:
    Import(const Options& options, const Source& source, Findings& findings)
        : m_options(options), m_findings(findings), m_reporter(findings, source, MOST_OF_A_KIND),
          m_hash(std::async([&source] { return design::hashOf(source.text()); })),
          m_def(readDef(source, m_ofDef)), m_lef(readLefs(options, m_def, findings))
    {
        m_findings.insert(m_findings.end(), m_ofDef.begin(), m_ofDef.end());
        limitFindings(m_findings, MOST_OF_A_KIND);
    }

    /// @return whether the design was written
    bool run(Summary& summary)
    {
        const bool written = takeAndWrite(summary);
        m_reporter.tellRest();
        return written;
    }

private:
    bool takeAndWrite(Summary& summary)
    {
        requireUnits();
        const Names names(m_def);
        if (hasErrors(m_findings) || !takeRows() || !takeComponents(names)) {
            return false;
        }
        const Nets nets = readNets(m_def, names, m_reporter);
        giveRows(nets);
        requireMasterNames();
        requireLayer();
        DesignFiles files{.def = m_def, .lef = m_lef, .core = m_core, .cells = m_cells};
        std::vector<design::Renamed> renamed;
        nameAll(nets, names, m_reporter, files, renamed);
        if (hasErrors(m_findings)) {
            return false;
        }
        write(files, renamed);
        summarize(files, renamed, summary);
        return true;
    }

    void requireUnits()
    {
        if (m_def.databaseMicrons <= 0) {
            m_reporter.error("no-units", 0, "the DEF has no UNITS DISTANCE MICRONS",
                             "add it: lengths mean nothing without");
        }
    }

    bool takeRows()
    {
        m_cells.masterOf = findMasters(m_def, m_lef);
        const std::vector<int64_t> movable = countMovable(m_def, m_lef, m_cells.masterOf);
        std::optional<Core> core = readCore(m_def, m_lef, movable, m_options.site, m_reporter);
        if (core) {
            m_core = std::move(*core);
        }
        return core.has_value();
    }

    bool takeComponents(const Names& names)
    {
        if (!takeCells(m_def, m_lef, m_core, m_options.legalize, m_reporter, m_cells)) {
            return false;
        }
        std::vector<lefdef::DefRect> blocked = m_cells.blocks;
        for (const std::vector<lefdef::DefRect>& more :
             {keepBlockages(m_def, m_reporter), keepRegions(m_def, names, m_cells, m_reporter),
              keepHalos(m_def, m_lef, names, m_cells, m_reporter)}) {
            blocked.insert(blocked.end(), more.begin(), more.end());
        }
        addBlocks(m_core, blocked);
        findRows(m_def, m_core, m_cells);
        return true;
    }

    /// Puts the cells without a legal row on one if that is wished, and names those that have none in the
    /// end.
    void giveRows(const Nets& nets)
    {
        if (m_options.legalize) {
            const std::vector<Cell> before = m_cells.movable;
            for (const size_t index : legalize(m_def, m_core, nets, m_cells)) {
                const Cell& cell = m_cells.movable[index];
                tell(cell, "no-room",
                     "finds no " + std::to_string(cell.width / m_core.siteWidth) + " free sites side by side",
                     "make room in the rows: cells that stand well are not moved");
            }
            for (size_t i = 0; i < before.size(); ++i) {
                const Cell& cell = m_cells.movable[i];
                m_moved += !before[i].placed || cell.x != before[i].x || cell.y != before[i].y ? 1 : 0;
            }
            return;
        }
        for (const Cell& cell : m_cells.movable) {
            if (cell.row == NONE) {
                tell(cell, "off-row", "does not stand on free sites of a row",
                     "move it, or give --legalize to have it put on the nearest ones");
            } else if (cell.flipped) {
                m_reporter.warning("flipped", m_def.components[cell.component].offset,
                                   "component " + nameOf(cell) + " lies upside down in its row",
                                   "its supply pins meet the wrong rails");
            }
        }
    }

    void tell(const Cell& cell, const char* code, const std::string& what, std::string advice)
    {
        m_reporter.error(code, m_def.components[cell.component].offset,
                         "component " + nameOf(cell) + " " + what, std::move(advice));
    }

    std::string nameOf(const Cell& cell) const { return std::string(m_def.components[cell.component].name); }

    /// A master's name is a file's name as well.
    void requireMasterNames()
    {
        std::vector<bool> known(m_lef.macros.size());
        for (const Cell& cell : m_cells.movable) {
            const size_t master = m_cells.masterOf[cell.component];
            const std::string& name = m_lef.macros[master].name;
            if (!known[master] && (!isCarried(name) || name.find('/') != std::string::npos)) {
                tell(cell, "master-name", "is of master " + name + ", which cannot name a file",
                     "rename the master");
            }
            known[master] = true;
        }
    }

    void requireLayer() const
    {
        std::vector<const lefdef::LefMacro*> macros;
        for (const Cell& cell : m_cells.movable) {
            macros.push_back(&m_lef.macros[m_cells.masterOf[cell.component]]);
        }
        requireMetal(m_lef, macros);
    }

    void write(const DesignFiles& files, const std::vector<design::Renamed>& renamed) const
    {
        OutputSet set;
        const auto add = [&](const char* extension, void (*writeOne)(const DesignFiles&, OutputFile&)) {
            set.add(m_options.out + extension, [&](OutputFile& out) { writeOne(files, out); });
        };
        add(".place", writePlace);
        add(".pins", writePins);
        add(".netlist", writeNetlist);
        add(".cells", writeCells);
        add(".offsets", writeOffsets);
        design::NameMap map{.def = m_options.def,
                            .hash = m_hash.get(),
                            .siteWidth = inPicometres(m_core.siteWidth),
                            .siteHeight = inPicometres(m_core.siteHeight),
                            .names = renamed};
        std::set<std::string> mirrorable;
        for (size_t i = 0; i < m_cells.movable.size(); ++i) {
            const Cell& cell = m_cells.movable[i];
            if (cell.flipped) {
                map.flipped.push_back(files.cellNames[i]);
            }
            if (const lefdef::LefMacro& macro = m_lef.macros[m_cells.masterOf[cell.component]];
                macro.symmetryY) {
                mirrorable.insert(macro.name);
            }
        }
        map.mirrorable.assign(mirrorable.begin(), mirrorable.end());
        set.add(m_options.out + ".map", [&map](OutputFile& out) { writeNameMap(map, out); });
        if (m_cells.fixed.empty()) {
            set.remove(m_options.out + ".fixed"); // that of an earlier design
        } else {
            set.add(m_options.out + ".fixed", [this](OutputFile& out) { writeFixed(m_cells.fixed, out); });
        }
        set.commit();
    }

    lefdef::Length inPicometres(int64_t dbu) const { return dbu * lefdef::MICRON / m_def.databaseMicrons; }

    void summarize(const DesignFiles& files, const std::vector<design::Renamed>& renamed,
                   Summary& summary) const
    {
        summary.layer = m_lef.layer;
        summary.design = std::string(m_def.design);
        summary.rows = static_cast<int64_t>(m_core.rows.size());
        summary.components = static_cast<int64_t>(m_cells.movable.size());
        summary.masters = static_cast<int64_t>(usedMasters(files).size());
        summary.kept = static_cast<int64_t>(m_cells.blocks.size());
        summary.fillers = m_cells.fillers;
        for (const size_t master : m_cells.fillerMasters) {
            summary.fillerMasters.push_back(m_lef.macros[master].name);
        }
        std::set<std::string> fixedMasters;
        for (const design::FixedCell& cell : m_cells.fixed.cells) {
            fixedMasters.insert(cell.master);
        }
        summary.fixedMasters.assign(fixedMasters.begin(), fixedMasters.end());
        summary.pins = static_cast<int64_t>(files.terminals.size());
        summary.nets = static_cast<int64_t>(files.numNets());
        summary.moved = m_moved;
        summary.renamed = static_cast<int64_t>(renamed.size());
        summary.siteWidth = static_cast<double>(m_core.siteWidth) / m_def.databaseMicrons;
        summary.siteHeight = static_cast<double>(m_core.siteHeight) / m_def.databaseMicrons;
    }

    const Options& m_options;
    Findings& m_findings;
    SourceReporter m_reporter;
    mutable std::future<std::string> m_hash; ///< of the DEF file, made beside its reading
    Findings m_ofDef;                        ///< told behind those of the libraries
    const Def m_def;
    const Lef m_lef;
    Core m_core;
    Cells m_cells;
    int64_t m_moved = 0;
};

} // namespace

int importDesign(const Options& options, std::ostream& out, Summary& summary)
{
    checkOutputsOf(options);
    const Source source(options.def);
    Findings findings;
    const bool written = Import(options, source, findings).run(summary);
    for (const Finding& finding : findings) {
        out << lineOf(finding, PlaceText::LINE_AND_COLUMN);
    }
    out.flush();
    return written ? 0 : 2;
}

} // namespace kit::importing
