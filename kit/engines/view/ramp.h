// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string>

namespace kit::view {

/// Colour of a density as "#rrggbb": from white for none to dark blue for 100 per cent and more. Its
/// lightness falls all the way, so that it needs no sense of hue.
///
/// @param share  per cent, as in Density
std::string rampColour(uint8_t share);

} // namespace kit::view
