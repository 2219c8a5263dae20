// SPDX-License-Identifier: BSD-3-Clause
// The chosen colours of a placement, as a file.
//
// A line "VIRELOCE COLORS 1", a line "COMPONENTS <count>", a line per component in the order of the placement
// file, and a line "END". A component's line is its name, its cell's name, the index of its solution from 0
// or -1 for none, its stitches, and the mask of each shape of the cell, parted by single blanks.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kit/base/files/outputFile.h"
#include "kit/base/finding.h"

namespace kit::placer {

/// The colours of one component.
struct ColorRecord {
    std::string name;           ///< of the component
    std::string cell;           ///< name of its cell
    int32_t solution = -1;      ///< index of the solution in the cell's colour file, -1 if none is chosen
    int32_t stitches = 0;       ///< of the solution
    std::vector<int32_t> masks; ///< [shape] 0, 1, 2
    int64_t line = 0;           ///< in the file; writeColors() does not read it
};

/// Reads a colours file to the end, whatever is wrong with it: records that cannot be read are left out.
///
/// Every problem of form is appended to `findings` as an error: "colors-header", "colors-count",
/// "colors-record" and "colors-end". Of a file without the right first line nothing is read.
///
/// Errors: throws Fault if the file cannot be opened or read.
std::vector<ColorRecord> readColors(const std::string& path, Findings& findings);

/// Writes a colours file.
///
/// Errors: throws Fault if the file cannot be written.
void writeColors(const std::vector<ColorRecord>& records, OutputFile& out);

} // namespace kit::placer
