// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>

class Design;

namespace vireloce {

/// Enters components into Design::compIndex; of one name the last wins.
///
/// All at once, in the order of the names: entered one by one, most of the time of reading a large design
/// would go into finding their places in the map.
///
/// @param first  index of the first component to enter; all behind it are entered too
void enterNames(Design& design, size_t first);

} // namespace vireloce
