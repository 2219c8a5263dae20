// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <vector>

#include "kit/input/design.h"
#include "kit/view/scene.h"

namespace kit::view {

/// What to draw besides the design.
struct Extras {
    std::vector<int32_t> solutions; ///< [components] index of the colour solution, -1 if unknown; or empty
    const input::Design* before = nullptr; ///< the input placement, found by names; not owned; or none
};

/// A design as it is drawn. Coordinates beyond +-500 million DBU are drawn there.
Scene buildScene(const input::Design& design, const Extras& extras);

} // namespace kit::view
