// SPDX-License-Identifier: BSD-3-Clause
#include "kit/formats/placer/writer.h"

#include <cstdio>

namespace kit::placer {

namespace {

void writeRects(OutputFile& out, const std::vector<Rect>& rects)
{
    out << rects.size() << "\n";
    for (const Rect& rect : rects) {
        out << rect.xl << " " << rect.yl << " " << rect.xh << " " << rect.yh << "\n";
    }
}

/// A property of the core box. The placer takes 2000 DBU for a micrometre there, whatever UNITS says.
void writeEdge(OutputFile& out, const char* name, int64_t dbu)
{
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.4f", static_cast<double>(dbu) / 2000);
    out << "  DESIGN CORE_BOX_" << name << " REAL " << text.data() << " ;\n";
}

} // namespace

PlaceWriter::PlaceWriter(const PlaceHeader& header, OutputFile& out) : m_out(out)
{
    m_out << "VERSION 5.6 ;\nDESIGN " << header.design << " ;\nUNITS DISTANCE MICRONS " << header.dbuPerMicron
          << " ;\n\nPROPERTYDEFINITIONS\n  COMPONENTPIN designRuleWidth REAL ;\n";
    writeEdge(m_out, "LL_X", header.core[0]);
    writeEdge(m_out, "UR_X", header.core[2]);
    writeEdge(m_out, "LL_Y", header.core[1]);
    writeEdge(m_out, "UR_Y", header.core[3]);
    m_out << "END PROPERTYDEFINITIONS\n\n";
    if (header.die != nullptr) {
        const auto& [left, bottom, right, top] = *header.die;
        m_out << "DIEAREA ( " << left << " " << bottom << " ) ( " << right << " " << top << " ) ;\n\n";
    }
}

void PlaceWriter::row(std::string_view name, std::string_view site, int64_t x, int64_t y,
                      std::string_view orient, int64_t sites, int64_t step)
{
    m_out << "ROW " << name << " " << site << " " << x << " " << y << " " << orient << " DO " << sites
          << " BY 1 STEP " << step << " 0 ;\n";
}

void PlaceWriter::beginComponents(size_t count)
{
    m_out << "\nCOMPONENTS " << count << " ;\n";
}

void PlaceWriter::component(std::string_view name, std::string_view cell, int64_t x, int64_t y,
                            std::string_view orient)
{
    m_out << "- " << name << " " << cell << " + PLACED ( " << x << " " << y << " ) " << orient << "\n  ;\n";
}

void PlaceWriter::beginBlocks(size_t count)
{
    m_out << "END COMPONENTS\n\nBIGNODES " << count << " ;\n";
}

void PlaceWriter::block(std::string_view name, int64_t x, int64_t y, int64_t width, int64_t height)
{
    m_out << "- " << name << " BLOCK + ( " << x << " " << y << " ) ( " << width << " " << height
          << " ) N\n  ;\n";
}

void PlaceWriter::end()
{
    m_out << "END BIGNODES\n\nEND DESIGN\n";
}

void writePin(OutputFile& out, std::string_view name, int64_t x, int64_t y)
{
    out << name << " " << x << " " << y << "\n";
}

void writeCellList(OutputFile& out, const std::vector<std::string>& names)
{
    out << names.size() << "\n";
    for (const std::string& name : names) {
        out << name << "\n";
    }
}

void writeColorFile(OutputFile& out, const Cell& cell)
{
    out << cell.width << " " << cell.height << "\n";
    writeRects(out, cell.headerBoxes);
    out << cell.shapes.size() << "\n";
    for (const Shape& shape : cell.shapes) {
        writeRects(out, shape.rects);
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

} // namespace kit::placer
