// SPDX-License-Identifier: BSD-3-Clause
// A design as it is known outside of the placer's files: in layouts, markers and pictures.
#pragma once

#include <cstdint>
#include <string>

#include "kit/formats/placer/design.h"

namespace kit::design {

/// DBU of a micrometre in a placement that does not say its UNITS: that is what the core box has.
inline constexpr int32_t USUAL_DBU_PER_MICRON = 2000;

/// The name and the scale of a design.
struct Frame {
    std::string topCell;      ///< as a GDSII file may have it
    int32_t dbuPerMicron = 0; ///< positive
};

/// The frame of a design by DESIGN and UNITS of its placement; without them the file's name, and 2000.
///
/// @param placement  path of the placement file
Frame frameOf(const placer::Design& design, const std::string& placement);

} // namespace kit::design
