// SPDX-License-Identifier: BSD-3-Clause
// The files of an imported design.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "kit/base/files/outputFile.h"
#include "kit/design/nameMap.h"
#include "kit/design/pinOffsets.h"
#include "kit/engines/import/cells.h"
#include "kit/engines/import/core.h"
#include "kit/engines/import/nets.h"

namespace kit::importing {

/// Whether the placer's files can carry a name: it has no blanks or control characters, fits its line, and
/// does not mean the end of the components.
bool isCarried(std::string_view name);

/// A terminal of the placer: one of the design's, or a pin of a component that stays where it is.
struct Terminal {
    std::string name;
    int64_t x = 0; ///< DBU
    int64_t y = 0; ///< DBU
};

/// A design as it is written.
struct DesignFiles {
    const lefdef::Def& def;
    const lefdef::Lef& lef;
    const Core& core;
    const Cells& cells;
    std::vector<std::string> cellNames{}; ///< [index in Cells::movable]
    std::vector<Terminal> terminals{};    ///< in order
    std::vector<int32_t> members{};  ///< of all nets: index in Cells::movable, or -1 - index in terminals
    std::vector<size_t> netBegin{0}; ///< [net] its first member; one more at the end
    design::PinOffsets offsets{};    ///< of the same cells, terminals and nets

    /// Number of nets.
    size_t numNets() const { return netBegin.size() - 1; }

    /// The name of a member.
    const std::string& nameOf(int32_t member) const
    {
        return member >= 0 ? cellNames[static_cast<size_t>(member)]
                           : terminals[static_cast<size_t>(-1 - member)].name;
    }
};

/// Names of the masters of the movable cells, sorted.
std::vector<std::string> usedMasters(const DesignFiles& files);

/// Writes BASE.place. Errors: throws Fault if it cannot be written, as the others do.
void writePlace(const DesignFiles& files, OutputFile& out);
/// Writes BASE.pins.
void writePins(const DesignFiles& files, OutputFile& out);
/// Writes BASE.netlist.
void writeNetlist(const DesignFiles& files, OutputFile& out);
/// Writes BASE.cells.
void writeCells(const DesignFiles& files, OutputFile& out);
/// Writes BASE.offsets.
void writeOffsets(const DesignFiles& files, OutputFile& out);

/// Fills in the names of the cells, the terminals, the members of the nets, and where their pins are.
///
/// Terminals are the design's signal pins that have a place, then the pins of components that stay where they
/// are, each in the middle of its metal, or else of its component. Members without a place are left out of
/// their nets, with a warning.
///
/// @param renamed  out: names of cells that had to be changed
void nameAll(const Nets& nets, const Names& names, lefdef::SourceReporter& reporter, DesignFiles& files,
             std::vector<design::Renamed>& renamed);

} // namespace kit::importing
