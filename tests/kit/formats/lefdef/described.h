// SPDX-License-Identifier: BSD-3-Clause
// What the readers make of a text, a line for each thing, so that a test can name all of it.
#pragma once

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "kit/formats/lefdef/def.h"
#include "kit/formats/lefdef/lef.h"

namespace test {

using Lines = std::vector<std::string>;

/// A text, and what is made of it.
struct ReadCase {
    const char* name;
    std::string text;
    Lines want;
};

inline void PrintTo(const ReadCase& row, std::ostream* out)
{
    *out << row.name;
}

/// "error code 3:5: what; advice"
inline std::string describe(const kit::Finding& finding)
{
    const char* const severity = finding.severity == kit::Severity::ERROR     ? "error "
                                 : finding.severity == kit::Severity::WARNING ? "warning "
                                                                              : "note ";
    return severity + finding.code + " " + std::to_string(finding.line) + ":" +
           std::to_string(finding.column) + ": " + finding.what + "; " + finding.advice;
}

inline void append(Lines& lines, const kit::Findings& findings)
{
    for (const auto& finding : findings) {
        lines.push_back(describe(finding));
    }
}

inline std::string point(int64_t x, int64_t y)
{
    return std::string("(").append(std::to_string(x)).append(" ").append(std::to_string(y)).append(")");
}

inline std::string describe(const kit::lefdef::DefRow& row)
{
    return "row " + std::string(row.name) + " " + std::string(row.site) + " " + point(row.x, row.y) + " " +
           std::string(nameOf(row.orient)) + " " + std::to_string(row.columns) + "x" +
           std::to_string(row.rows) + " step " + point(row.stepX, row.stepY);
}

/// With its place word by word, as it stands in the text.
inline std::string describe(const kit::lefdef::DefComponent& comp, const std::string& text)
{
    const char* const statuses[] = {"NONE", "UNPLACED", "PLACED", "FIXED", "COVER"};
    return "component " + std::string(comp.name) + " " + std::string(comp.macro) + " " +
           statuses[static_cast<size_t>(comp.status)] + " " + point(comp.x, comp.y) + " " +
           std::string(nameOf(comp.orient)) + " [" +
           text.substr(comp.placeBegin, comp.placeEnd - comp.placeBegin) + "]";
}

inline std::string describe(const kit::lefdef::DefPin& pin)
{
    return "pin " + std::string(pin.name) + " on " + std::string(pin.net) +
           (pin.placed ? " at " + point(pin.x, pin.y) : " not placed") + (pin.supply ? " supply" : "");
}

inline std::string describe(const kit::lefdef::DefNet& net, const kit::lefdef::Def& def)
{
    std::string line = "net " + std::string(net.name);
    for (size_t i = 0; i < net.numMembers; ++i) {
        const auto& member = def.members.at(net.firstMember + i);
        line += " " + std::string(member.component) + "/" + std::string(member.pin);
    }
    return line + (net.supply ? " supply" : "");
}

inline std::string describe(const kit::lefdef::DefBlockage& blockage)
{
    std::string line = blockage.soft ? "soft blockage" : "blockage";
    for (const auto& rect : blockage.rects) {
        line += " " + point(rect.xl, rect.yl) + point(rect.xh, rect.yh);
    }
    return line;
}

inline std::string describe(const kit::lefdef::DefRegion& region)
{
    const char* const types[] = {"region ", "fence ", "guide "};
    std::string line = types[static_cast<size_t>(region.type)] + std::string(region.name);
    for (const auto& rect : region.rects) {
        line += " " + point(rect.xl, rect.yl) + point(rect.xh, rect.yh);
    }
    return line;
}

inline std::string describe(const kit::lefdef::DefGroup& group)
{
    std::string line = "group " + std::string(group.name) + " in [" + std::string(group.region) + "]";
    for (const std::string_view pattern : group.patterns) {
        line.append(" ").append(pattern);
    }
    return line;
}

inline std::string describe(const kit::lefdef::DefHalo& halo)
{
    return (halo.soft ? "soft halo of " : "halo of ") + std::string(halo.component) + " " +
           point(halo.widths.xl, halo.widths.yl) + point(halo.widths.xh, halo.widths.yh);
}

/// All of a DEF text, behind that the findings.
inline Lines describeDef(const std::string& text)
{
    const kit::lefdef::Source source("d.def", text);
    kit::Findings findings;
    const kit::lefdef::Def def = readDef(source, findings);
    Lines lines;
    if (!def.design.empty()) {
        lines.push_back("design " + std::string(def.design));
    }
    if (def.databaseMicrons != 0) {
        lines.push_back("units " + std::to_string(def.databaseMicrons));
    }
    if (def.hasDieArea) {
        lines.push_back("die " + point(def.dieArea.xl, def.dieArea.yl) +
                        point(def.dieArea.xh, def.dieArea.yh));
    }
    for (const auto& row : def.rows) {
        lines.push_back(describe(row));
    }
    for (const auto& comp : def.components) {
        lines.push_back(describe(comp, text));
    }
    for (const auto& pin : def.pins) {
        lines.push_back(describe(pin));
    }
    for (const auto& net : def.nets) {
        lines.push_back(describe(net, def));
    }
    for (const auto& blockage : def.blockages) {
        lines.push_back(describe(blockage));
    }
    for (const auto& region : def.regions) {
        lines.push_back(describe(region));
    }
    for (const auto& group : def.groups) {
        lines.push_back(describe(group));
    }
    for (const auto& halo : def.halos) {
        lines.push_back(describe(halo));
    }
    append(lines, findings);
    return lines;
}

/// "rect mask 1 (0 0)(10 10)", picometres.
inline std::string describe(const kit::lefdef::LefShape& shape)
{
    std::string line = shape.polygon ? "polygon" : "rect";
    line += shape.mask != 0 ? " mask " + std::to_string(shape.mask) + " " : " ";
    for (const auto& corner : shape.points) {
        line += point(corner.x, corner.y);
    }
    return line;
}

inline void append(Lines& lines, const kit::lefdef::LefMacro& macro)
{
    const char* const uses[] = {"SIGNAL", "ANALOG", "CLOCK", "POWER", "GROUND", "SCAN", "TIEOFF", "RESET"};
    lines.push_back("macro " + macro.name + " class [" + macro.macroClass + "] site [" + macro.site + "] " +
                    std::to_string(macro.width) + " by " + std::to_string(macro.height) +
                    (macro.symmetryX ? " X" : "") + (macro.symmetryY ? " Y" : ""));
    for (const auto& pin : macro.pins) {
        lines.push_back("pin " + pin.name + " " + uses[static_cast<size_t>(pin.use)]);
        for (const auto& shape : pin.shapes) {
            lines.push_back(describe(shape));
        }
    }
    for (const auto& shape : macro.obstructions) {
        lines.push_back("obstruction " + describe(shape));
    }
}

/// All of a library, behind that the findings.
inline Lines describeLef(const kit::lefdef::Lef& lef, const kit::Findings& findings)
{
    Lines lines;
    if (lef.databaseMicrons != 0) {
        lines.push_back("units " + std::to_string(lef.databaseMicrons));
    }
    for (const auto& site : lef.sites) {
        lines.push_back("site " + site.name + " class [" + site.siteClass + "] " +
                        std::to_string(site.width) + " by " + std::to_string(site.height));
    }
    for (const auto& macro : lef.macros) {
        append(lines, macro);
    }
    append(lines, findings);
    return lines;
}

/// As describeLef() of a library, of a text read with the layer M1.
inline Lines describeLef(const std::string& text)
{
    const kit::lefdef::Source source("d.lef", text);
    kit::Findings findings;
    kit::lefdef::Lef lef;
    readLef(source, "M1", 0, lef, findings);
    return describeLef(lef, findings);
}

} // namespace test
