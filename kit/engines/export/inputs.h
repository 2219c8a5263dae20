// SPDX-License-Identifier: BSD-3-Clause
// Everything that an export reads.
#pragma once

#include <memory>
#include <vector>

#include "kit/base/finding.h"
#include "kit/design/coloredPlacement.h"
#include "kit/design/nameMap.h"
#include "kit/design/placeResult.h"
#include "kit/engines/export/options.h"
#include "kit/formats/lefdef/def.h"
#include "kit/formats/lefdef/library.h"
#include "kit/formats/placer/colors.h"
#include "kit/formats/placer/design.h"

namespace kit::exporter {

/// The files as they were read. Def has views into its source.
struct Inputs {
    design::ResultFiles files;
    placer::Design design;                           ///< the placement; its cells if colours were asked for
    std::vector<placer::ColorRecord> records;        ///< of the colours file, if asked for
    std::vector<placer::ColorRecord> fixedRecords;   ///< of the cells that stay where they are
    std::vector<const placer::ColorRecord*> colours; ///< [component] into records, nullptr for none; behind
                                                     ///< them those of the cells that stay where they are
    design::NameMap map;                             ///< empty if there is none
    bool imported = false;                           ///< the map is that of this very DEF file
    std::unique_ptr<lefdef::Source> defSource;
    lefdef::Def def;
    lefdef::Library library;
    design::Frame frame; ///< of the placement; what it does not say is the DEF file's
};

/// Whether an export needs the colours of the cells, and not only their places: fillers keep off them.
bool needsColours(const Options& options);

/// Reads everything.
///
/// @param findings  out: errors in the form of the files, and colours that do not fit their cells;
///                  "no-solution", a warning for a component without colours; "other-file", a warning for a
///                  DEF file that is not the one that was imported;
///                  "units", an error for one in other units than the placement
///
/// Errors: throws Fault if a file cannot be opened, or a result would replace an input.
Inputs readInputs(const Options& options, Findings& findings);

} // namespace kit::exporter
