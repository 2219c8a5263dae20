// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <vector>

#include "kit/engines/view/scene.h"
#include "kit/formats/placer/colors.h"
#include "kit/formats/placer/design.h"

namespace kit::view {

/// What to draw besides the design.
struct Extras {
    std::vector<const placer::ColorRecord*> colours; ///< [components] nullptr if unknown; not owned; or empty
    const placer::Design* before = nullptr; ///< the input placement, found by names; not owned; or none
};

/// A design as it is drawn. Coordinates beyond +-500 million DBU are drawn there.
Scene buildScene(const placer::Design& design, const Extras& extras);

} // namespace kit::view
