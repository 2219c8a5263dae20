// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>

#include "kit/base/files/outputFile.h"
#include "kit/engines/view/scene.h"

namespace kit::view {

/// How much of a placement a static picture shows, so that its file stays below a few MB.
enum class Detail {
    METAL, ///< cells with their metal
    BOXES, ///< cells as boxes
    MAP    ///< density and conflicts alone
};

inline constexpr int64_t MOST_SVG_METAL = 60'000; ///< rectangles of metal that are drawn
inline constexpr int64_t MOST_SVG_CELLS = 60'000; ///< cells that are drawn

/// The detail that a picture of a placement can have.
Detail detailOf(const Scene& scene);

/// Writes a picture of a placement, its title saying what was left out.
void writeSvg(OutputFile& file, const Scene& scene);

} // namespace kit::view
