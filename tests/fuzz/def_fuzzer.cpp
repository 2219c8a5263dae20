// SPDX-License-Identifier: BSD-3-Clause
// Whatever the bytes, the DEF reader comes to an end, and what it gives is sound in itself.
#include <cstdint>
#include <string>
#include <unordered_set>

#include "check.h"
#include "kit/formats/lefdef/def.h"

namespace {

using fuzz::check;
using namespace kit::lefdef;

/// Names are there, part of the text, and no two are the same.
template <typename Record>
void checkNames(const std::vector<Record>& records, std::string_view text)
{
    std::unordered_set<std::string_view> names;
    for (const Record& record : records) {
        check(!record.name.empty(), "a record has a name");
        check(record.name.data() >= text.data() &&
                  record.name.data() + record.name.size() <= text.data() + text.size(),
              "a name is part of the text");
        check(record.offset < text.size(), "a record stands in the text");
        check(names.insert(record.name).second || record.name == "MUSTJOIN", "a name is new");
    }
}

void checkPlaces(const Def& def, std::string_view text)
{
    for (const DefComponent& component : def.components) {
        const std::string_view place =
            text.substr(component.placeBegin, component.placeEnd - component.placeBegin);
        check(place.empty() == (component.status == Status::NONE), "a place is there if there is a status");
        check(component.status != Status::UNPLACED || place.starts_with("UNPLACED"),
              "the place starts with its word");
        check(component.status != Status::PLACED || place.starts_with("PLACED"),
              "the place starts with its word");
        check(text[component.endOffset] == ';', "a component ends at its semicolon");
        const std::string_view orient = nameOf(component.orient);
        check(component.status <= Status::UNPLACED || place.ends_with(orient),
              "the place ends with its orientation");
    }
}

void checkMembers(const Def& def)
{
    size_t members = 0;
    for (const DefNet& net : def.nets) {
        check(net.firstMember == members, "members are those of the nets, in their order");
        members += net.numMembers;
    }
    check(members == def.members.size(), "each member is of a net");
}

void checkBlockages(const Def& def)
{
    for (const DefBlockage& blockage : def.blockages) {
        for (const DefRect& rect : blockage.rects) {
            check(rect.xl <= rect.xh && rect.yl <= rect.yh, "a rectangle starts at its lower left corner");
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const Source source("fuzz.def", std::string(data, data + size));
    kit::Findings findings;
    const Def def = readDef(source, findings);
    fuzz::checkFindings(findings);
    checkNames(def.components, source.text());
    checkNames(def.pins, source.text());
    checkNames(def.nets, source.text());
    checkPlaces(def, source.text());
    checkMembers(def);
    checkBlockages(def);
    for (const DefRow& row : def.rows) {
        check(row.columns >= 1 && row.rows >= 1, "a row has sites");
    }
    return 0;
}
