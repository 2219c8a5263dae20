// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "qlib/nameTable.h"

class Design;
struct Component;
struct Pin;

namespace vireloce {

/// Makes nets of the names of their members.
///
/// Names are gathered and looked up many at a time, because a single look-up mostly waits for the memory.
class MemberFinder {
public:
    /// @param design  gets the nets; its components, its pins and their indices must be complete
    explicit MemberFinder(Design& design);

    /// Adds a member to the net in work.
    ///
    /// Errors: ends the run if this name or an earlier one is neither a component nor a pin; an earlier one
    /// may be found out now only.
    ///
    /// @param isLast  whether the net is complete with it
    void add(std::string_view name, bool isLast);

    /// Looks up the members that are still waiting. Errors: as add().
    void flush();

    /// [component] how often it is a member of a net that is complete.
    const std::vector<uint32_t>& uses() const { return m_uses; }

private:
    /// A member that is not yet looked up.
    struct Name {
        size_t begin;  ///< in m_text
        size_t length; ///< bytes
        uint64_t hash;
        bool isLast;
    };

    /// Appends the component or the pin of a name to the net in work.
    void enter(std::string_view name, uint64_t hash);

    /// Appends the net in work to the design.
    void completeNet();

    Design& m_design;
    NameTable m_compTable;
    NameTable m_pinTable;
    std::vector<uint32_t> m_uses;

    std::vector<Name> m_names; ///< in the order of the file
    std::string m_text;        ///< of all m_names

    std::vector<Component*> m_components; ///< of the net in work
    std::vector<Pin*> m_pins;             ///< of the net in work
};

} // namespace vireloce
