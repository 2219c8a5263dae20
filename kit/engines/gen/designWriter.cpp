// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/gen/designWriter.h"

#include <filesystem>

#include "kit/base/files/folder.h"
#include "kit/base/files/outputPaths.h"
#include "kit/engines/gen/scale.h"

namespace kit::gen {

namespace {

std::string colorPath(const Options& options, const std::string& cell)
{
    return (std::filesystem::path(cellFolder(options)) / (cell + ".color")).string();
}

void writeBox(OutputFile& out, const Box& box)
{
    out << box.xl << " " << box.yl << " " << box.xh << " " << box.yh << "\n";
}

void writeCell(const LibraryCell& cell, OutputFile& out)
{
    out << cell.sites * placer::LIBRARY_SITE << " " << LIBRARY_HEIGHT << "\n1\n";
    writeBox(out, {0, 0, cell.sites * placer::LIBRARY_SITE, LIBRARY_HEIGHT});
    out << cell.shapes.size() << "\n";
    for (const Shape& shape : cell.shapes) {
        out << "1\n";
        writeBox(out, shape.box);
    }
    out << cell.solutions.size() << "\n";
    for (const Solution& solution : cell.solutions) {
        out << solution.stitches;
        for (const int32_t mask : solution.masks) {
            out << " " << mask;
        }
        out << "\n";
    }
}

/// Micrometres with four decimals, which is exact.
void writeMicrometres(OutputFile& out, int32_t dbu)
{
    const int32_t fraction = dbu % DBU_PER_MICROMETRE * (10'000 / DBU_PER_MICROMETRE);
    const std::string digits = std::to_string(10'000 + fraction).substr(1);
    out << dbu / DBU_PER_MICROMETRE << "." << digits << " ;\n";
}

void writeHeader(OutputFile& out, const Floorplan& plan, const Scale& scale, const Options& options)
{
    out << "VERSION 5.6 ;\nDESIGN " << std::filesystem::path(options.out).filename().string()
        << " ;\nUNITS DISTANCE MICRONS " << DBU_PER_MICROMETRE << " ;\n\nPROPERTYDEFINITIONS\n"
        << "  COMPONENTPIN designRuleWidth REAL ;\n  DESIGN CORE_BOX_LL_X REAL ";
    writeMicrometres(out, scale.x(0));
    out << "  DESIGN CORE_BOX_UR_X REAL ";
    writeMicrometres(out, scale.x(plan.sitesPerRow));
    out << "  DESIGN CORE_BOX_LL_Y REAL ";
    writeMicrometres(out, scale.y(0));
    out << "  DESIGN CORE_BOX_UR_Y REAL ";
    writeMicrometres(out, scale.y(plan.rows));
    out << "END PROPERTYDEFINITIONS\n\nDIEAREA ( 0 0 ) ( " << scale.x(plan.sitesPerRow + Scale::BORDER_SITES)
        << " " << scale.y(plan.rows + Scale::BORDER_ROWS) << " ) ;\n\n";
}

void writeRows(OutputFile& out, const Floorplan& plan, const Scale& scale)
{
    for (int32_t row = 0; row < plan.rows; ++row) {
        out << "ROW ROW_" << row << " core " << scale.x(0) << " " << scale.y(row) << " " << orientOfRow(row)
            << " DO " << plan.sitesPerRow << " BY 1 STEP " << scale.step << " 0 ;\n";
    }
}

void writeComponents(OutputFile& out, const Placement& placement, const std::vector<LibraryCell>& library,
                     const Scale& scale)
{
    out << "\nCOMPONENTS " << placement.cells.size() << " ;\n";
    for (size_t i = 0; i < placement.cells.size(); ++i) {
        const Placed& cell = placement.cells[i];
        // The placer knows a mirrored cell by FN alone, in every row.
        out << "- u" << i << " " << library[cell.type].name << " + PLACED ( " << scale.x(cell.site) << " "
            << scale.y(cell.row) << " ) " << (cell.mirrored ? "FN" : orientOfRow(cell.row)) << "\n  ;\n";
    }
    out << "END COMPONENTS\n";
}

void writeMacros(OutputFile& out, const Floorplan& plan, const Scale& scale)
{
    out << "\nBIGNODES " << plan.macros.size() << " ;\n";
    for (size_t i = 0; i < plan.macros.size(); ++i) {
        const MacroBox& macro = plan.macros[i];
        out << "- m" << i << " MACRO + ( " << scale.x(macro.site) << " " << scale.y(macro.row) << " ) ( "
            << macro.sites * scale.step << " " << macro.rows * scale.height << " ) N\n  ;\n";
    }
    out << "END BIGNODES\n";
}

} // namespace

void checkOutputsOf(const Options& options)
{
    std::vector<std::string> paths;
    for (const char* extension : {".place", ".pins", ".netlist", ".cells"}) {
        paths.push_back(options.out + extension);
    }
    for (int32_t type = 0; type < options.cellTypes; ++type) {
        paths.push_back(colorPath(options, nameOfType(type)));
    }
    if (options.lefDef) {
        paths.push_back(options.out + ".lef");
        paths.push_back(options.out + ".def");
    }
    checkOutputs(paths, {}, options.force);
}

void writeLibrary(const std::vector<LibraryCell>& library, const Options& options, OutputSet& set)
{
    makeFolder(cellFolder(options));
    for (const LibraryCell& cell : library) {
        set.add(colorPath(options, cell.name), [&cell](OutputFile& out) { writeCell(cell, out); });
    }
    set.add(options.out + ".cells", [&library](OutputFile& list) {
        list << library.size() << "\n";
        for (const LibraryCell& cell : library) {
            list << cell.name << "\n";
        }
    });
}

void writePlacement(const Placement& placement, const std::vector<LibraryCell>& library,
                    const Options& options, OutputFile& out)
{
    const Scale scale(options);
    writeHeader(out, placement.plan, scale, options);
    writeRows(out, placement.plan, scale);
    writeComponents(out, placement, library, scale);
    writeMacros(out, placement.plan, scale);
    out << "\nEND DESIGN\n";
}

void writePins(const Netlist& netlist, const Options& options, OutputFile& out)
{
    const Scale scale(options);
    out << netlist.pins.size() << "\n";
    for (size_t i = 0; i < netlist.pins.size(); ++i) {
        out << "p" << i << " " << scale.x(netlist.pins[i].site) << " " << scale.y(netlist.pins[i].row)
            << "\n";
    }
}

void writeNets(const Netlist& netlist, OutputFile& out)
{
    out << netlist.netBegin.size() - 1 << "\n";
    for (size_t net = 0; net + 1 < netlist.netBegin.size(); ++net) {
        out << netlist.netBegin[net + 1] - netlist.netBegin[net];
        for (size_t i = netlist.netBegin[net]; i < netlist.netBegin[net + 1]; ++i) {
            const int32_t member = netlist.members[i];
            out << (member < 0 ? " p" : " u") << (member < 0 ? -1 - member : member);
        }
        out << "\n";
    }
}

} // namespace kit::gen
