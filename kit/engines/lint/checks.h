// SPDX-License-Identifier: BSD-3-Clause
// What can be wrong with a design whose files are well-formed. Each check appends to the findings.
#pragma once

#include <vector>

#include "kit/base/finding.h"
#include "kit/design/stretches.h"
#include "kit/engines/lint/lint.h"
#include "kit/formats/placer/design.h"

namespace kit::lint {

/// What the checks look at.
struct Subject {
    const placer::Design& design;
    const design::Occupancy& occupancy; ///< of the design
    const Options& options;
    Findings& findings;
};

/// Whether the placer has room for the spacing table of a library.
bool tableFits(const std::vector<placer::Cell>& cells);

/// Cells without solutions, masks that are none, shapes outside the outline, odd sizes.
void checkLibrary(const Subject& subject);

/// Shapes of one cell that are on one mask and closer than the colouring distance.
void checkMasks(const Subject& subject);

/// Names used twice.
void checkNames(const Subject& subject);

/// Steps, heights and places of the rows.
void checkRows(const Subject& subject);

/// Macros over each other, over the ends of rows, and off the site grid.
void checkMacros(const Subject& subject);

/// Components off the rows and the site grid, over each other and over macros; orientations; fillers.
void checkComponents(const Subject& subject);

/// Stretches of rows that are too full, before and after the colouring.
void checkCapacity(const Subject& subject);

} // namespace kit::lint
