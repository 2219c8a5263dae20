// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/import/nets.h"

#include <string>

namespace kit::importing {

namespace {

constexpr std::string_view TERMINAL = "PIN"; ///< stands for the component of a terminal

void unknown(const lefdef::DefNet& net, const std::string& what, lefdef::SourceReporter& reporter)
{
    reporter.error("unknown-member", net.offset, "net " + std::string(net.name) + " has the unknown " + what,
                   "correct the name, or the section it is missing in");
}

} // namespace

Nets readNets(const lefdef::Def& def, const Names& names, lefdef::SourceReporter& reporter, bool& sound)
{
    Nets nets;
    nets.members.reserve(def.members.size());
    nets.begin.reserve(def.nets.size() + 1);
    for (const lefdef::DefNet& from : def.nets) {
        if (from.supply) {
            continue;
        }
        for (size_t i = from.firstMember; i < from.firstMember + from.numMembers; ++i) {
            const lefdef::DefMember& member = def.members[i];
            const bool terminal = member.component == TERMINAL;
            const Member found{.component = terminal ? -1 : names.components.indexOf(member.component),
                               .pin = terminal ? names.pins.indexOf(member.pin) : -1,
                               .name = member.pin};
            if (found.component < 0 && found.pin < 0) {
                unknown(from,
                        terminal ? "pin " + std::string(member.pin)
                                 : "component " + std::string(member.component),
                        reporter);
                sound = false;
            } else {
                nets.members.push_back(found);
            }
        }
        nets.begin.push_back(nets.members.size());
    }
    return nets;
}

} // namespace kit::importing
