// SPDX-License-Identifier: BSD-3-Clause
// What stays where it is in an imported design, as a file beside its placement: BASE.fixed. The placer sees
// blocks in its place; its metal is metal all the same.
//
//     VIRELOCE FIXED 1
//     CELLS <count>
//     <master> <x> <y> <orientation> <solution> <name, to the end of the line>
//     BLOCKS <count>
//     BLOCK <master> <x> <y> <rectangles> <name, to the end of the line>
//     <xl> <yl> <xh> <yh>
//     END
//
// Lengths are DBU of the placement. Cells stand in rows, and have masks as their colour files say: a solution
// is counted from 0, and -1 for none. Blocks are all others, with their metal near the edges as it lies,
// which counts as being on all masks.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kit/base/files/outputFile.h"
#include "kit/base/finding.h"
#include "kit/formats/lefdef/orient.h"
#include "kit/formats/placer/colors.h"
#include "kit/formats/placer/design.h"
#include "kit/geometry/rect.h"

namespace kit::design {

/// A cell that stays where it is.
struct FixedCell {
    std::string name; ///< of the component, as in the DEF file
    std::string master;
    int32_t x = 0; ///< left edge, DBU
    int32_t y = 0; ///< bottom edge, DBU
    lefdef::Orient orient = lefdef::Orient::N;
    int32_t solution = -1; ///< index in its colour file, -1 for none
};

/// Another component that stays where it is.
struct FixedBlock {
    std::string name; ///< of the component, as in the DEF file
    std::string master;
    int32_t x = 0;                       ///< left edge, DBU
    int32_t y = 0;                       ///< bottom edge, DBU
    std::vector<geometry::Rect> metal{}; ///< DBU
};

/// All of a design.
struct FixedParts {
    std::vector<FixedCell> cells;
    std::vector<FixedBlock> blocks;

    bool empty() const { return cells.empty() && blocks.empty(); }
};

/// The parts that belong to a placement: its path with ".fixed" in place of ".place".
std::string fixedOf(const std::string& placement);

/// Reads the parts up to the first line that is not as it should be; that is an error, code "fixed-line".
/// Without the file there are none.
///
/// @param findings  out: problems, each with its line
///
/// Errors: throws Fault if the file cannot be opened or read.
FixedParts readFixed(const std::string& path, Findings& findings);

/// Writes the parts. A line end in a name becomes "?".
///
/// Errors: throws Fault if the file cannot be written.
void writeFixed(const FixedParts& parts, OutputFile& out);

/// Gives a design what stays where it is: first the cells, then the blocks. The masters of the cells become
/// cells of the design, as far as there are colour files.
///
/// @param cellDir   folder of the colour files
/// @param design    with its cells
/// @param findings  out: problems of colour files
void addFixed(const FixedParts& parts, const std::string& cellDir, placer::Design& design,
              Findings& findings);

/// The colours of the cells that stay where they are.
///
/// @param design    has the parts
/// @return [cell] without masks if it has no solution of that number
std::vector<placer::ColorRecord> fixedColorsOf(const FixedParts& parts, const placer::Design& design);

/// Tells of solutions that their cells do not have: "fixed-solution", an error.
///
/// @param design  has the parts
/// @param path    of the parts
void checkFixedSolutions(const FixedParts& parts, const placer::Design& design, const std::string& path,
                         Findings& findings);

} // namespace kit::design
