// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <vector>

#include "kit/input/colors.h"
#include "kit/input/design.h"
#include "kit/view/scene.h"

namespace kit::view {

/// What to draw besides the design.
struct Extras {
    std::vector<const input::ColorRecord*> colours; ///< [components] nullptr if unknown; not owned; or empty
    const input::Design* before = nullptr; ///< the input placement, found by names; not owned; or none
};

/// A design as it is drawn. Coordinates beyond +-500 million DBU are drawn there.
Scene buildScene(const input::Design& design, const Extras& extras);

} // namespace kit::view
