// SPDX-License-Identifier: BSD-3-Clause
// The signal nets of a DEF, their members found by name.
#pragma once

#include <cassert>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "kit/formats/lefdef/def.h"
#include "kit/formats/lefdef/nameTable.h"

namespace kit::importing {

/// A pin of a component, or a terminal of the design.
struct Member {
    int32_t component = -1; ///< index in Def::components, -1 for a terminal
    int32_t pin = -1;       ///< index in Def::pins, -1 for a component's
    std::string_view name;  ///< of the component's pin
};

/// Signal nets in the order of the file.
struct Nets {
    std::vector<Member> members;  ///< of all nets
    std::vector<size_t> begin{0}; ///< [net] its first member; one more at the end

    /// Number of nets.
    size_t size() const { return begin.size() - 1; }

    /// The members of a net.
    std::span<const Member> of(size_t net) const
    {
        assert(net < size());
        return std::span(members).subspan(begin[net], begin[net + 1] - begin[net]);
    }
};

/// The names of a DEF.
struct Names {
    /// @param def  must outlive the names
    explicit Names(const lefdef::Def& def) : components(def.components), pins(def.pins)
    {
        components.addAll();
        pins.addAll();
    }

    lefdef::NameTable<lefdef::DefComponent> components;
    lefdef::NameTable<lefdef::DefPin> pins;
};

/// Finds the members of the nets. Those of unknown names are left out, with a warning.
Nets readNets(const lefdef::Def& def, const Names& names, lefdef::SourceReporter& reporter);

} // namespace kit::importing
