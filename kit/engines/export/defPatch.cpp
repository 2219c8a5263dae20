// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/export/defPatch.h"

#include <optional>
#include <span>
#include <unordered_map>
#include <unordered_set>

#include "kit/formats/lefdef/edits.h"
#include "kit/formats/lefdef/scanner.h"

namespace kit::exporter {

namespace {

using lefdef::DefComponent;
using lefdef::Scanner;
using lefdef::Token;

/// Bytes of the text that a part of it takes.
lefdef::Span spanOf(const lefdef::Source& source, std::string_view part)
{
    const size_t begin = source.offsetOf(part);
    return {begin, begin + part.size()};
}

/// As spanOf(), with the quotation marks that may stand around the part.
lefdef::Span quotedSpanOf(const lefdef::Source& source, std::string_view part)
{
    const std::string_view text = source.text();
    lefdef::Span span = spanOf(source, part);
    if (span.begin > 0 && span.end < text.size() && text[span.begin - 1] == '"' && text[span.end] == '"') {
        --span.begin;
        ++span.end;
    }
    return span;
}

std::string placeText(int32_t x, int32_t y, lefdef::Orient orient)
{
    return "PLACED ( " + std::to_string(x) + " " + std::to_string(y) + " ) " +
           std::string(lefdef::nameOf(orient));
}

/// A component's record from its "-" to behind its ";".
lefdef::Span recordOf(const lefdef::Source& source, const DefComponent& component)
{
    const std::string_view text = source.text();
    const size_t sign = text.rfind('-', quotedSpanOf(source, component.name).begin - 1);
    return {sign, std::min(lefdef::endOfStatement(text, component.offset) + 1, text.size())};
}

/// The number in the head of the section that a component is in.
std::optional<lefdef::Span> countBefore(std::string_view text, size_t component)
{
    std::optional<lefdef::Span> count;
    Scanner scanner(text.substr(0, component));
    while (scanner.token().kind != Token::Kind::END) {
        const bool head = lefdef::isKeyword(scanner.token().text, "COMPONENTS");
        scanner.advance();
        if (head) {
            count = lefdef::Span{scanner.offset(), scanner.offset() + scanner.token().text.size()};
        }
    }
    return count;
}

/// Sorts out the fillers that are named behind the last component.
void keepNamed(const lefdef::Source& source, const lefdef::Def& def, std::vector<bool>& fillers,
               Findings& findings)
{
    std::unordered_map<std::string_view, size_t> names;
    for (size_t i = 0; i < fillers.size(); ++i) {
        if (fillers[i]) {
            names.try_emplace(def.components[i].name, i);
        }
    }
    lefdef::SourceReporter reporter(findings, source);
    const size_t behind = recordOf(source, def.components.back()).end;
    for (Scanner scanner(source.text().substr(behind)); scanner.token().kind != Token::Kind::END;
         scanner.advance()) {
        const auto named = names.find(scanner.token().text);
        if (named != names.end() && fillers[named->second]) {
            fillers[named->second] = false;
            reporter.warning(
                "filler-in-use", behind + scanner.offset(),
                "the filler " + std::string(named->first) + " is named here, and stays in the file", "");
        }
    }
}

} // namespace

int64_t placeComponents(const lefdef::Source& source, const lefdef::Def& def,
                        const std::vector<Placed>& placed, lefdef::Edits& edits)
{
    int64_t changed = 0;
    for (const Placed& one : placed) {
        const DefComponent& component = def.components[one.inDef];
        if (!one.differs(component)) {
            continue;
        }
        ++changed;
        if (component.placeEnd > 0) {
            edits.replace(component.placeBegin, component.placeEnd, placeText(one.x, one.y, one.orient));
        } else {
            const size_t behind = quotedSpanOf(source, component.macro).end;
            edits.replace(behind, behind, " + " + placeText(one.x, one.y, one.orient));
        }
    }
    return changed;
}

std::vector<bool> movedComponents(const lefdef::Def& def, const std::vector<Placed>& placed)
{
    std::vector<bool> moved(def.components.size());
    for (const Placed& one : placed) {
        moved[one.inDef] = one.differs(def.components[one.inDef]);
    }
    return moved;
}

int64_t dropRouting(const lefdef::Def& def, const std::vector<bool>& moved, lefdef::Edits* edits)
{
    std::unordered_set<std::string_view> names;
    for (size_t i = 0; i < moved.size(); ++i) {
        if (moved[i]) {
            names.insert(def.components[i].name);
        }
    }
    int64_t nets = 0;
    for (const lefdef::DefNet& net : def.nets) {
        const auto members = std::span(def.members).subspan(net.firstMember, net.numMembers);
        const bool stays = net.numRoutes == 0 || std::ranges::none_of(members, [&](const auto& member) {
                               return names.contains(member.component);
                           });
        if (stays) {
            continue;
        }
        ++nets;
        for (size_t i = 0; edits != nullptr && i < net.numRoutes; ++i) {
            const lefdef::Span& route = def.routes[net.firstRoute + i];
            edits->replace(route.begin, route.end, "");
        }
    }
    return nets;
}

int64_t dropFillers(const lefdef::Source& source, const lefdef::Def& def, std::vector<bool>& fillers,
                    lefdef::Edits& edits, Findings& findings)
{
    if (def.components.empty()) {
        return 0;
    }
    keepNamed(source, def, fillers, findings);
    size_t dropped = 0;
    for (size_t i = 0; i < fillers.size(); ++i) {
        if (fillers[i]) {
            const lefdef::Span record = recordOf(source, def.components[i]);
            const lefdef::Span lines = lefdef::wholeLinesOf(source.text(), record.begin, record.end);
            edits.replace(lines.begin, lines.end, "");
            ++dropped;
        }
    }
    return static_cast<int64_t>(dropped);
}

void addFillers(const lefdef::Source& source, const lefdef::Def& def, const std::vector<Filled>& fillers,
                const std::vector<std::string_view>& macros, lefdef::Edits& edits)
{
    if (fillers.empty()) {
        return;
    }
    const std::string_view text = source.text();
    const lefdef::Span last = recordOf(source, def.components.back());
    const std::string indentation(lefdef::indentationOf(text, last.begin));
    Scanner scanner(text.substr(last.end));
    const size_t sectionEnd = last.end + scanner.offset();
    const size_t at = sectionEnd - lefdef::indentationOf(text, sectionEnd).size();
    std::string records = text[at - 1] == '\n' ? "" : "\n";
    for (size_t i = 0; i < fillers.size(); ++i) {
        records.append(indentation).append("- ").append(fillers[i].name).append(" ").append(macros[i]);
        records += " + SOURCE DIST + " + placeText(fillers[i].x, fillers[i].y, fillers[i].orient) + " ;\n";
    }
    edits.replace(at, at, std::move(records));
}

void countComponents(const lefdef::Source& source, const lefdef::Def& def, int64_t count,
                     lefdef::Edits& edits)
{
    if (def.components.empty() || count == static_cast<int64_t>(def.components.size())) {
        return;
    }
    if (const auto old = countBefore(source.text(), def.components.front().offset)) {
        edits.replace(old->begin, old->end, std::to_string(count));
    }
}

void renameMacro(const lefdef::Source& source, const DefComponent& component, std::string name,
                 lefdef::Edits& edits)
{
    const lefdef::Span span = spanOf(source, component.macro);
    edits.replace(span.begin, span.end, std::move(name));
}

} // namespace kit::exporter
