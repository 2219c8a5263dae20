// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/import/safeNames.h"

#include <algorithm>

namespace kit::importing {

namespace {

// A component's line holds two names and less than 50 other characters, and may have 255.
constexpr size_t LONGEST = 100;

} // namespace

bool isCarried(std::string_view name)
{
    const bool plain = std::none_of(name.begin(), name.end(), [](char c) {
        const auto code = static_cast<unsigned char>(c);
        return code <= ' ' || code == 0x7f;
    });
    return plain && !name.empty() && name.size() <= LONGEST && name != "FILLER_1";
}

std::string SafeNames::forComponent(std::string_view name)
{
    return isCarried(name) ? std::string(name) : newName();
}

std::string SafeNames::forTerminal(std::string_view name)
{
    const bool isFree = isCarried(name) && m_names.components.indexOf(name) < 0;
    return isFree && m_terminals.emplace(name).second ? std::string(name) : newName();
}

std::string SafeNames::newName()
{
    std::string made;
    do {
        made = "_name" + std::to_string(m_next++) + "_";
    } while (m_names.components.indexOf(made) >= 0 || m_names.pins.indexOf(made) >= 0 ||
             m_terminals.count(made) > 0);
    return made;
}

} // namespace kit::importing
