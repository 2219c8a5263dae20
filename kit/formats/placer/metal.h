// SPDX-License-Identifier: BSD-3-Clause
// The metal of a cell as its LEF file has it, in a file beside the colour file, CELL.metal:
//
//     VIRELOCE METAL 1
//     SITE <width that colour files have as 190>
//     SIZE <width> <height>
//     RECTS <count>
//     <left> <bottom> <right> <top>
//     END
//
// All lengths are picometres. `color` writes it where lengths of the colour file are rounded.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "kit/base/files/outputFile.h"
#include "kit/base/finding.h"
#include "kit/formats/placer/design.h"
#include "kit/geometry/pieces.h"

namespace kit::placer {

/// Whether all of it is within what the file may hold: 1000 rectangles, a centimetre, and sites of a
/// millimetre.
bool fitsFile(const TrueMetal& metal);

/// Writes the file. Errors: throws Fault if that cannot be done.
///
/// @pre   fitsFile()
void writeMetal(OutputFile& out, const TrueMetal& metal);

/// Reads the file. What is wrong with it is the error "metal-file", and nothing is read.
///
/// Errors: throws Fault if the file cannot be read.
std::optional<TrueMetal> readMetal(const std::string& path, Findings& findings);

/// The rectangles of a cell's true metal, cut by its shapes. Picometres; the label is the index of the shape.
///
/// @return none if the true metal is not known, or is not that of the shapes
std::vector<geometry::Labelled> truePiecesOf(const Cell& cell);

} // namespace kit::placer
