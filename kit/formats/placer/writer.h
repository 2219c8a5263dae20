// SPDX-License-Identifier: BSD-3-Clause
// Writers of the placer's files. Coordinates are DBU of the placement, in the colour file library
// coordinates. All throw Fault if not everything can be written.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "kit/base/files/outputFile.h"
#include "kit/formats/placer/design.h"

namespace kit::placer {

/// What a placement file begins with.
struct PlaceHeader {
    std::string design;
    int32_t dbuPerMicron = 0;
    std::array<int64_t, 4> core{};       ///< left, bottom, right, top of the rows
    const std::array<int64_t, 4>* die{}; ///< the same of the die, not owned; nullptr if it is not known
};

/// Writes a placement file part by part: the header, rows, then components, then blocks.
class PlaceWriter {
public:
    /// Writes the header. @param out  must outlive the writer
    PlaceWriter(const PlaceHeader& header, OutputFile& out);

    /// Writes a row. @param step  distance of two sites
    void row(std::string_view name, std::string_view site, int64_t x, int64_t y, std::string_view orient,
             int64_t sites, int64_t step);

    /// Ends the rows. @param count  of the components
    void beginComponents(size_t count);
    /// Writes a component by its lower left corner.
    void component(std::string_view name, std::string_view cell, int64_t x, int64_t y,
                   std::string_view orient);

    /// Ends the components. @param count  of the blocks
    void beginBlocks(size_t count);
    /// Writes a fixed block by its lower left corner and its size.
    void block(std::string_view name, int64_t x, int64_t y, int64_t width, int64_t height);

    /// Ends the blocks and the file.
    void end();

private:
    OutputFile& m_out;
};

/// Writes a terminal of a pin file, which begins with their number.
void writePin(OutputFile& out, std::string_view name, int64_t x, int64_t y);

/// Writes a net of a netlist, which begins with their number.
///
/// @param nameOf  gives the name of the member at an index from 0
template <typename NameOf>
void writeNet(OutputFile& out, size_t degree, NameOf nameOf)
{
    constexpr size_t MEMBERS_A_LINE = 8;
    out << degree;
    for (size_t i = 0; i < degree; ++i) {
        out << (i % MEMBERS_A_LINE == 0 ? "\n " : " ") << nameOf(i);
    }
    out << "\n";
}

/// Writes a cell list.
void writeCellList(OutputFile& out, const std::vector<std::string>& names);

/// Writes the colour file of a cell.
void writeColorFile(OutputFile& out, const Cell& cell);

} // namespace kit::placer
