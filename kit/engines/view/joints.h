// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <vector>

#include "kit/engines/view/scene.h"

namespace kit::view {

/// Where the shapes of a cell touch, one joint for each pair of shapes that do so in more than a point: the
/// largest of their common boxes.
std::vector<Joint> findJoints(const std::vector<Metal>& metal);

/// Whether a joint is a stitch in a colouring.
bool isStitch(const Joint& joint, const Colouring& colouring);

} // namespace kit::view
