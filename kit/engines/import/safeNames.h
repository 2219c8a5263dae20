// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>

#include "kit/engines/import/nets.h"

namespace kit::importing {

/// Whether the placer's files can carry a name: it has no blanks or control characters, fits its line, and
/// does not mean the end of the components.
bool isCarried(std::string_view name);

/// Names for the placer's files, each given once.
class SafeNames {
public:
    /// @param names  those of the DEF; must outlive this
    explicit SafeNames(const Names& names) : m_names(names) {}

    /// A component's name: its own if it can be carried, else a new one.
    std::string forComponent(std::string_view name);

    /// A terminal's: its own if it can be carried and neither a component nor
    /// a terminal has it, else a new one.
    std::string forTerminal(std::string_view name);

private:
    std::string newName();

    const Names& m_names;
    std::unordered_set<std::string> m_terminals; ///< names given to terminals
    int64_t m_next = 0;
};

} // namespace kit::importing
