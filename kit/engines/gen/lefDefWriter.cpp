// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/gen/lefDefWriter.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <string>

#include "kit/base/files/outputFile.h"
#include "kit/engines/gen/scale.h"

namespace kit::gen {

namespace {

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

    std::string operator()(const Box& box) const
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

} // namespace

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

void writeDef(const Placement& placement, const std::vector<LibraryCell>& library, const Netlist& netlist,
              const Options& options, OutputFile& out)
{
    DefWriter(placement, library, netlist, options, out).write();
}

} // namespace kit::gen
