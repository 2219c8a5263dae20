// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/gen/designWriter.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <string>

#include "kit/base/files/folder.h"
#include "kit/base/files/outputFile.h"
#include "kit/base/files/outputPaths.h"
#include "kit/formats/placer/writer.h"

namespace kit::gen {

namespace {

constexpr int32_t DBU_PER_MICROMETRE = 2000;

/// From sites and rows to DBU.
struct Scale {
    static constexpr int32_t BORDER_SITES = 6; ///< between the rows and the design's left and right edge
    static constexpr int32_t BORDER_ROWS = 1;  ///< between the rows and its lower and upper edge

    explicit Scale(const Options& options) : step(options.siteStep), height(rowHeight(options)) {}

    /// Left edge of a site, DBU.
    int32_t x(int32_t site) const { return (site + BORDER_SITES) * step; }

    /// Bottom edge of a row, DBU.
    int32_t y(int32_t row) const { return (row + BORDER_ROWS) * height; }

    int32_t step;   ///< site width, DBU
    int32_t height; ///< row height, DBU
};

/// Every other row is upside down, so that rails meet.
const char* orientOfRow(int32_t row)
{
    return row % 2 == 0 ? "N" : "FS";
}

/// The folder of the colour files.
std::string cellFolder(const Options& options)
{
    return options.cellDir.empty() ? options.out + ".colors" : options.cellDir;
}

std::string colorPath(const Options& options, const std::string& cell)
{
    return (std::filesystem::path(cellFolder(options)) / (cell + ".color")).string();
}

/// A cell as the placer's files have it: a rectangle a shape.
placer::Cell placerCell(const LibraryCell& cell)
{
    placer::Cell result;
    result.width = cell.sites * placer::LIBRARY_SITE;
    result.height = LIBRARY_HEIGHT;
    result.headerBoxes = {{0, 0, result.width, result.height}};
    for (const Shape& shape : cell.shapes) {
        result.shapes.push_back({.rects = {shape.box}});
    }
    for (const Solution& solution : cell.solutions) {
        result.solutions.push_back(
            {.stitches = solution.stitches, .masks = {solution.masks.begin(), solution.masks.end()}});
    }
    return result;
}

/// Micrometres with six decimals.
std::string micrometres(double dbu)
{
    std::array<char, 48> text{};
    std::snprintf(text.data(), text.size(), "%.6f", dbu / DBU_PER_MICROMETRE);
    return text.data();
}

/// From library coordinates to micrometres.
class LefScale {
public:
    explicit LefScale(const Options& options) : m_step(options.siteStep) {}

    std::string operator()(int32_t length) const
    {
        return micrometres(static_cast<double>(length) * m_step / placer::LIBRARY_SITE);
    }

    std::string operator()(const placer::Rect& box) const
    {
        return (*this)(box.xl) + " " + (*this)(box.yl) + " " + (*this)(box.xh) + " " + (*this)(box.yh);
    }

private:
    int32_t m_step;
};

/// Number of pins of a cell besides its rails.
int32_t numPins(const LibraryCell& cell)
{
    int32_t count = 0;
    for (const Shape& shape : cell.shapes) {
        count += shape.rail || shape.joined ? 0 : 1;
    }
    return count;
}

void endPin(OutputFile& out, const std::string& name)
{
    if (!name.empty()) {
        out << "    END\n  END " << name << "\n";
    }
}

void writePinsOfCell(OutputFile& out, const LibraryCell& cell, const LefScale& scale)
{
    int32_t pins = 0;
    int32_t rails = 0;
    std::string open;
    for (const Shape& shape : cell.shapes) {
        if (!shape.joined) {
            endPin(out, open);
            const bool ground = shape.rail && rails++ == 0;
            open = shape.rail ? (ground ? "VSS" : "VDD") : "P" + std::to_string(pins++);
            out << "  PIN " << open << "\n    USE "
                << (!shape.rail ? "SIGNAL"
                    : ground    ? "GROUND"
                                : "POWER")
                << " ;\n    PORT\n      LAYER metal1 ;\n";
        }
        out << "        RECT " << scale(shape.box) << " ;\n";
    }
    endPin(out, open);
}

void writeMacroHead(OutputFile& out, const std::string& name, const char* macroClass,
                    const std::string& width, const std::string& height)
{
    out << "\nMACRO " << name << "\n  CLASS " << macroClass << " ;\n  ORIGIN 0 0 ;\n  SIZE " << width
        << " BY " << height << " ;\n";
}

std::string nameOfMacro(size_t index)
{
    return "MACRO_" + std::to_string(index);
}

/// The orientation of a cell in its row.
const char* orientOf(const Placed& cell)
{
    const bool upsideDown = cell.row % 2 != 0;
    return cell.mirrored ? (upsideDown ? "S" : "FN") : orientOfRow(cell.row);
}

/// Writes OUT.def, with the names and places of the placement file. Cells lie as their rows do, mirrored or
/// not.
class DefWriter {
public:
    DefWriter(const Placement& placement, const std::vector<LibraryCell>& library, const Netlist& netlist,
              const Options& options, OutputFile& out)
        : m_placement(placement), m_library(library), m_netlist(netlist), m_options(options),
          m_scale(options), m_out(out), m_used(placement.cells.size())
    {
    }

    void write()
    {
        writeHead();
        writeComponents();
        writeTerminals();
        writeNets();
        m_out << "\nEND DESIGN\n";
    }

private:
    void writeHead()
    {
        const Floorplan& plan = m_placement.plan;
        m_out << "VERSION 5.8 ;\nDIVIDERCHAR \"/\" ;\nBUSBITCHARS \"[]\" ;\nDESIGN "
              << std::filesystem::path(m_options.out).filename().string() << " ;\nUNITS DISTANCE MICRONS "
              << DBU_PER_MICROMETRE << " ;\nDIEAREA ( 0 0 ) ( "
              << m_scale.x(plan.sitesPerRow + Scale::BORDER_SITES) << " "
              << m_scale.y(plan.rows + Scale::BORDER_ROWS) << " ) ;\n";
        for (int32_t row = 0; row < plan.rows; ++row) {
            m_out << "ROW ROW_" << row << " core " << m_scale.x(0) << " " << m_scale.y(row) << " "
                  << orientOfRow(row) << " DO " << plan.sitesPerRow << " BY 1 STEP " << m_scale.step
                  << " 0 ;\n";
        }
    }

    void writeComponents()
    {
        const std::vector<MacroBox>& macros = m_placement.plan.macros;
        m_out << "\nCOMPONENTS " << m_placement.cells.size() + macros.size() << " ;\n";
        for (size_t i = 0; i < m_placement.cells.size(); ++i) {
            const Placed& cell = m_placement.cells[i];
            m_out << "- u" << i << " " << m_library[cell.type].name << " + PLACED ( " << m_scale.x(cell.site)
                  << " " << m_scale.y(cell.row) << " ) " << orientOf(cell) << " ;\n";
        }
        for (size_t i = 0; i < macros.size(); ++i) {
            m_out << "- m" << i << " " << nameOfMacro(i) << " + FIXED ( " << m_scale.x(macros[i].site) << " "
                  << m_scale.y(macros[i].row) << " ) N ;\n";
        }
        m_out << "END COMPONENTS\n";
    }

    void writeTerminals()
    {
        const std::vector<size_t> nets = netsOfPins();
        m_out << "\nPINS " << m_netlist.pins.size() << " ;\n";
        for (size_t i = 0; i < m_netlist.pins.size(); ++i) {
            const BorderPin& pin = m_netlist.pins[i];
            m_out << "- p" << i << " + NET n" << nets[i] << " + DIRECTION INOUT + USE SIGNAL + PLACED ( "
                  << m_scale.x(pin.site) << " " << m_scale.y(pin.row) << " ) N ;\n";
        }
        m_out << "END PINS\n";
    }

    std::vector<size_t> netsOfPins() const
    {
        std::vector<size_t> nets(m_netlist.pins.size());
        for (size_t net = 0; net + 1 < m_netlist.netBegin.size(); ++net) {
            for (size_t i = m_netlist.netBegin[net]; i < m_netlist.netBegin[net + 1]; ++i) {
                const int32_t member = m_netlist.members[i];
                if (member < 0) {
                    nets[static_cast<size_t>(-1 - member)] = net;
                }
            }
        }
        return nets;
    }

    void writeNets()
    {
        const std::vector<size_t>& begin = m_netlist.netBegin;
        m_out << "\nNETS " << begin.size() - 1 << " ;\n";
        for (size_t net = 0; net + 1 < begin.size(); ++net) {
            m_out << "- n" << net;
            for (size_t i = begin[net]; i < begin[net + 1]; ++i) {
                writeMember(m_netlist.members[i]);
            }
            m_out << " + USE SIGNAL ;\n";
        }
        m_out << "END NETS\n";
    }

    /// A component's pins take turns.
    void writeMember(int32_t member)
    {
        if (member < 0) {
            m_out << " ( PIN p" << -1 - member << " )";
            return;
        }
        const auto index = static_cast<size_t>(member);
        const int32_t pins = std::max(1, numPins(m_library[m_placement.cells[index].type]));
        m_out << " ( u" << member << " P" << m_used[index]++ % pins << " )";
    }

    const Placement& m_placement;
    const std::vector<LibraryCell>& m_library;
    const Netlist& m_netlist;
    const Options& m_options;
    Scale m_scale;
    OutputFile& m_out;
    std::vector<int32_t> m_used; ///< [component] pins that have a net
};

/// Writes the cell list and the colour files, their folder as well.
void writeLibrary(const std::vector<LibraryCell>& library, const Options& options, OutputSet& set)
{
    makeFolder(cellFolder(options));
    for (const LibraryCell& cell : library) {
        set.add(colorPath(options, cell.name),
                [&cell](OutputFile& out) { placer::writeColorFile(out, placerCell(cell)); });
    }
    std::vector<std::string> names;
    names.reserve(library.size());
    for (const LibraryCell& cell : library) {
        names.push_back(cell.name);
    }
    set.add(options.out + ".cells", [&names](OutputFile& out) { placer::writeCellList(out, names); });
}

/// Writes rows, components and macros.
void writePlacement(const Placement& placement, const std::vector<LibraryCell>& library,
                    const Options& options, OutputFile& out)
{
    const Scale scale(options);
    const Floorplan& plan = placement.plan;
    const std::array<int64_t, 4> die{0, 0, scale.x(plan.sitesPerRow + Scale::BORDER_SITES),
                                     scale.y(plan.rows + Scale::BORDER_ROWS)};
    placer::PlaceWriter place(
        {.design = std::filesystem::path(options.out).filename().string(),
         .dbuPerMicron = DBU_PER_MICROMETRE,
         .core = {scale.x(0), scale.y(0), scale.x(plan.sitesPerRow), scale.y(plan.rows)},
         .die = &die},
        out);
    for (int32_t row = 0; row < plan.rows; ++row) {
        place.row("ROW_" + std::to_string(row), "core", scale.x(0), scale.y(row), orientOfRow(row),
                  plan.sitesPerRow, scale.step);
    }
    place.beginComponents(placement.cells.size());
    for (size_t i = 0; i < placement.cells.size(); ++i) {
        const Placed& cell = placement.cells[i];
        // The placer knows a mirrored cell by FN alone, in every row.
        place.component("u" + std::to_string(i), library[cell.type].name, scale.x(cell.site),
                        scale.y(cell.row), cell.mirrored ? "FN" : orientOfRow(cell.row));
    }
    place.beginBlocks(plan.macros.size());
    for (size_t i = 0; i < plan.macros.size(); ++i) {
        const MacroBox& macro = plan.macros[i];
        place.block("m" + std::to_string(i), scale.x(macro.site), scale.y(macro.row),
                    int64_t{macro.sites} * scale.step, int64_t{macro.rows} * scale.height);
    }
    place.end();
}

/// Writes the pins.
void writePins(const Netlist& netlist, const Options& options, OutputFile& out)
{
    const Scale scale(options);
    out << netlist.pins.size() << "\n";
    for (size_t i = 0; i < netlist.pins.size(); ++i) {
        placer::writePin(out, "p" + std::to_string(i), scale.x(netlist.pins[i].site),
                         scale.y(netlist.pins[i].row));
    }
}

/// Writes the nets.
void writeNets(const Netlist& netlist, OutputFile& out)
{
    out << netlist.netBegin.size() - 1 << "\n";
    for (size_t net = 0; net + 1 < netlist.netBegin.size(); ++net) {
        const size_t begin = netlist.netBegin[net];
        placer::writeNet(out, netlist.netBegin[net + 1] - begin, [&](size_t i) {
            const int32_t member = netlist.members[begin + i];
            return member < 0 ? "p" + std::to_string(-1 - member) : "u" + std::to_string(member);
        });
    }
}

/// Writes OUT.lef: the site and the cells, each shape that no stitch may part from another as a pin; and a
/// block for every macro.
void writeLef(const std::vector<LibraryCell>& library, const Floorplan& plan, const Options& options,
              OutputFile& out)
{
    const LefScale scale(options);
    const Scale dbu(options);
    out << "VERSION 5.8 ;\nBUSBITCHARS \"[]\" ;\nDIVIDERCHAR \"/\" ;\n\nSITE core\n  CLASS CORE ;\n  SIZE "
        << micrometres(dbu.step) << " BY " << micrometres(dbu.height) << " ;\nEND core\n";
    for (const LibraryCell& cell : library) {
        writeMacroHead(out, cell.name, "CORE", scale(cell.sites * placer::LIBRARY_SITE),
                       micrometres(dbu.height));
        out << "  SYMMETRY X Y ;\n  SITE core ;\n";
        writePinsOfCell(out, cell, scale);
        out << "END " << cell.name << "\n";
    }
    for (size_t i = 0; i < plan.macros.size(); ++i) {
        const MacroBox& macro = plan.macros[i];
        writeMacroHead(out, nameOfMacro(i), "BLOCK", micrometres(static_cast<double>(macro.sites) * dbu.step),
                       micrometres(static_cast<double>(macro.rows) * dbu.height));
        out << "END " << nameOfMacro(i) << "\n";
    }
    out << "\nEND LIBRARY\n";
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

void writeDesign(const std::vector<LibraryCell>& library, const Placement& placement, const Netlist& netlist,
                 const Options& options)
{
    OutputSet set;
    writeLibrary(library, options, set);
    set.add(options.out + ".place",
            [&](OutputFile& out) { writePlacement(placement, library, options, out); });
    set.add(options.out + ".pins", [&](OutputFile& out) { writePins(netlist, options, out); });
    set.add(options.out + ".netlist", [&](OutputFile& out) { writeNets(netlist, out); });
    if (options.lefDef) {
        set.add(options.out + ".lef",
                [&](OutputFile& out) { writeLef(library, placement.plan, options, out); });
        set.add(options.out + ".def",
                [&](OutputFile& out) { DefWriter(placement, library, netlist, options, out).write(); });
    }
    set.commit();
}

} // namespace kit::gen
