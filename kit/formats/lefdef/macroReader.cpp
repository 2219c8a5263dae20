// SPDX-License-Identifier: BSD-3-Clause
#include "kit/formats/lefdef/macroReader.h"

#include <algorithm>
#include <string>
#include <utility>

#include "kit/base/text/text.h"
#include "kit/formats/lefdef/statements.h"

namespace kit::lefdef {

const std::array<MacroReader::Rule, 10> MacroReader::RULES = {{
    {"PIN", &MacroReader::readPin},
    {"OBS", &MacroReader::readObstructions},
    {"CLASS", &MacroReader::readClass},
    {"ORIGIN", &MacroReader::readOrigin},
    {"SIZE", &MacroReader::readSize},
    {"SYMMETRY", &MacroReader::readSymmetry},
    {"SITE", &MacroReader::readSite},
    {"DENSITY", &MacroReader::skipDensity},
    {"TIMING", &MacroReader::skipTiming},
    {"BEGINEXT", &MacroReader::skipExtension},
}};

LefMacro MacroReader::read(size_t begin)
{
    m_macro = {};
    m_origin = {};
    m_pins.clear();
    m_macro.offset = begin;
    m_macro.name = m_in.name("name of the macro");
    if (m_macro.name.empty()) {
        m_in.finish();
    }
    while (readStatement()) {
    }
    m_macro.endOffset = m_in.takenEnd();
    m_macro.otherLayers = m_shapes.takeOtherLayers();
    moveShapes(m_macro.obstructions);
    for (LefPin& pin : m_macro.pins) {
        moveShapes(pin.shapes);
    }
    return std::move(m_macro);
}

/// Returns whether the master goes on.
bool MacroReader::readStatement()
{
    if (m_in.is("END")) {
        m_in.takeEnd("macro", m_macro.name, "LIBRARY");
        return false;
    }
    if (m_in.atFileEnd() || m_in.is("MACRO")) {
        m_in.missingEnd("macro", m_macro.name, m_macro.offset);
        return false;
    }
    m_begin = m_in.offset();
    const std::string_view word = m_in.start();
    const auto* const rule =
        std::find_if(RULES.begin(), RULES.end(), [&](const Rule& each) { return each.keyword == word; });
    if (rule != RULES.end()) {
        (this->*rule->read)();
    } else if (word == m_macro.name) {
        // The END before it was taken for that of a part, which has none.
        m_in.missingEnd("last part of the macro", m_macro.name, m_macro.offset);
        return false;
    } else if (word != ";") {
        m_in.skipStatement();
    }
    return true;
}

void MacroReader::readClass()
{
    std::string words;
    while (m_in.more()) {
        words += (words.empty() ? "" : " ") + std::string(m_in.keyword("class"));
    }
    if (m_in.finish()) {
        m_macro.macroClass = words;
    }
}

void MacroReader::readOrigin()
{
    const Length x = m_in.length("x of the origin");
    const Length y = m_in.length("y of the origin");
    if (m_in.finish()) {
        m_origin = {x, y};
    }
}

void MacroReader::readSize()
{
    m_in.size(m_macro.name, m_macro.width, m_macro.height);
}

void MacroReader::readSymmetry()
{
    bool x = false;
    bool y = false;
    while (m_in.more()) {
        const std::string_view word = m_in.keyword("symmetry");
        x = x || word == "X";
        y = y || word == "Y";
    }
    if (m_in.finish()) {
        m_macro.symmetryX = x;
        m_macro.symmetryY = y;
    }
}

void MacroReader::readSite()
{
    const std::string_view site = m_in.name("name of the site");
    m_in.skipWords(); // where sites are in a master of several
    if (m_in.finish()) {
        m_macro.site = site;
    }
}

void MacroReader::readPin()
{
    LefPin pin;
    pin.offset = m_begin;
    pin.name = m_in.name("name of the pin");
    if (pin.name.empty()) {
        m_in.finish();
    }
    while (readPinStatement(pin)) {
    }
    const auto [same, isNew] = m_pins.emplace(pin.name, pin.offset);
    if (isNew) {
        m_macro.pins.push_back(std::move(pin));
        return;
    }
    m_in.reporter().error("name-twice", pin.offset,
                          "pin " + inQuotes(pin.name) + " of " + inQuotes(m_macro.name) + " stands in line " +
                              m_in.lineOf(same->second) + " already, and that one stays",
                          "give each its own name");
}

/// Returns whether the pin goes on.
bool MacroReader::readPinStatement(LefPin& pin)
{
    if (m_in.is("END")) {
        m_in.takeEnd("pin", pin.name, m_macro.name);
        return false;
    }
    if (m_in.atFileEnd() || m_in.is("MACRO") || m_in.is("PIN") || m_in.is("OBS")) {
        m_in.missingEnd("pin", pin.name, pin.offset);
        return false;
    }
    const std::string_view word = m_in.start();
    if (word == "PORT") {
        m_shapes.read(pin.shapes, "port");
    } else if (word == "USE") {
        const PinUse use = readUse(m_in);
        if (m_in.finish()) {
            pin.use = use;
        }
    } else if (word == pin.name) {
        // The END before it was taken for that of the port, which has none.
        m_in.missingEnd("last port of the pin", pin.name, pin.offset);
        return false;
    } else if (word != ";") {
        m_in.skipStatement();
    }
    return true;
}

/// Rectangles with densities, up to an END without a name.
void MacroReader::skipDensity()
{
    while (!m_in.take("END")) {
        if (m_in.atFileEnd()) {
            m_in.missingEnd("density", "", m_begin);
            return;
        }
        if (m_in.start() != ";") {
            m_in.skipStatement();
        }
    }
}

void MacroReader::moveShapes(std::vector<LefShape>& shapes) const
{
    for (LefShape& shape : shapes) {
        for (LefPoint& point : shape.points) {
            point.x += m_origin.x;
            point.y += m_origin.y;
        }
    }
}

} // namespace kit::lefdef
