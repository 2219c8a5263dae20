// SPDX-License-Identifier: BSD-3-Clause
#include "kit/import/nets.h"

#include <string>

#include "kit/input/names.h"

namespace kit::importing {

namespace {

constexpr std::string_view TERMINAL = "PIN"; ///< stands for the component of a terminal

void unknown(const lefdef::DefNet& net, const std::string& what, lefdef::SourceReporter& reporter)
{
    reporter.error("unknown-member", net.offset, "net " + std::string(net.name) + " has the unknown " + what,
                   "correct the name, or the section it is missing in");
}

} // namespace

Nets readNets(const lefdef::Def& def, lefdef::SourceReporter& reporter, bool& sound)
{
    const input::NameIndex components = input::indexNames(def.components);
    const input::NameIndex pins = input::indexNames(def.pins);
    Nets nets;
    for (const lefdef::DefNet& from : def.nets) {
        if (from.supply) {
            continue;
        }
        Net& net = nets.emplace_back();
        for (size_t i = from.firstMember; i < from.firstMember + from.numMembers; ++i) {
            const lefdef::DefMember& member = def.members[i];
            const bool terminal = member.component == TERMINAL;
            const Member found{.component = terminal ? -1 : input::findName(components, member.component),
                               .pin = terminal ? input::findName(pins, member.pin) : -1,
                               .name = member.pin};
            if (found.component < 0 && found.pin < 0) {
                unknown(from,
                        terminal ? "pin " + std::string(member.pin)
                                 : "component " + std::string(member.component),
                        reporter);
                sound = false;
            } else {
                net.members.push_back(found);
            }
        }
    }
    return nets;
}

} // namespace kit::importing
