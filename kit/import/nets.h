// SPDX-License-Identifier: BSD-3-Clause
// The signal nets of a DEF, their members found by name.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "kit/lefdef/def.h"

namespace kit::importing {

/// A pin of a component, or a terminal of the design.
struct Member {
    int32_t component = -1; ///< index in Def::components, -1 for a terminal
    int32_t pin = -1;       ///< index in Def::pins, -1 for a component's
    std::string_view name;  ///< of the component's pin
};

struct Net {
    std::vector<Member> members;
};

/// Nets in the order of the file, power and ground left out.
using Nets = std::vector<Net>;

/// Finds the members of the nets. Errors: unknown names; such members are left out.
///
/// @param sound  out: set to false after an error
Nets readNets(const lefdef::Def& def, lefdef::SourceReporter& reporter, bool& sound);

} // namespace kit::importing
