// SPDX-License-Identifier: BSD-3-Clause
// The layers of a layout, and how KLayout shows them.
#pragma once

#include <cstdint>
#include <string>

namespace kit::exporter {

/// Layers of the GDSII file; all shapes have the data type 0.
inline constexpr int16_t METAL_LAYER = 1;        ///< metal 1, whatever its mask
inline constexpr int16_t OUTLINE_LAYER = 99;     ///< outlines of the cells
inline constexpr int16_t FIRST_MASK_LAYER = 100; ///< mask 0; masks 1 and 2 follow
inline constexpr int32_t NUM_MASKS = 3;

/// A file of layer properties for KLayout: names, and colours of the masks that colour-blind people can tell
/// apart.
std::string layerPropertiesText();

} // namespace kit::exporter
