// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/import/nets.h"

#include <algorithm>
#include <limits>
#include <map>
#include <string>
#include <unordered_set>
#include <utility>

#include "kit/engines/import/designFiles.h"
#include "kit/formats/lefdef/orient.h"
#include "kit/formats/lefdef/scanner.h"
#include "kit/formats/lefdef/units.h"

namespace kit::importing {

namespace {

using lefdef::DefComponent;
using lefdef::DefPin;
using lefdef::LefMacro;
using lefdef::LefPin;
using lefdef::LefPoint;
using lefdef::LefShape;
using lefdef::Length;

constexpr std::string_view TERMINAL = "PIN"; ///< stands for the component of a terminal

void unknown(const lefdef::DefNet& net, const std::string& what, lefdef::SourceReporter& reporter)
{
    reporter.warning("unknown-member", net.offset,
                     "net " + std::string(net.name) + " has the unknown " + what +
                         ", which is left out of it",
                     "correct the name, or the section it is missing in");
}

// A component's line holds two names and less than 50 other characters, and may have 255.
constexpr size_t LONGEST = 100;

/// The middle of a pin's metal, of the whole master if none is known.
LefPoint middleOf(const LefMacro& macro, std::string_view pinName)
{
    constexpr Length NONE = std::numeric_limits<Length>::max();
    LefPoint low{.x = NONE, .y = NONE};
    LefPoint high{.x = -NONE, .y = -NONE};
    for (const LefPin& pin : macro.pins) {
        for (const LefShape& shape : pin.shapes) {
            for (const LefPoint& point : shape.points) {
                if (pin.name == pinName) {
                    low = {.x = std::min(low.x, point.x), .y = std::min(low.y, point.y)};
                    high = {.x = std::max(high.x, point.x), .y = std::max(high.y, point.y)};
                }
            }
        }
    }
    return low.x == NONE ? LefPoint{.x = macro.width / 2, .y = macro.height / 2}
                         : LefPoint{.x = (low.x + high.x) / 2, .y = (low.y + high.y) / 2};
}

/// A coordinate that the pin file can hold.
int64_t inRange(int64_t dbu)
{
    return std::clamp<int64_t>(dbu, INT32_MIN, INT32_MAX);
}

/// Names for the placer's files, each given once.
class SafeNames {
public:
    /// @param names  those of the DEF; must outlive this
    explicit SafeNames(const Names& names) : m_names(names) {}

    /// A component's name: its own if it can be carried, else a new one.
    std::string forComponent(std::string_view name)
    {
        return isCarried(name) ? std::string(name) : newName();
    }

    /// A terminal's: its own if it can be carried and neither a component nor
    /// a terminal has it, else a new one.
    std::string forTerminal(std::string_view name)
    {
        const bool isFree = isCarried(name) && m_names.components.indexOf(name) < 0;
        return isFree && m_terminals.emplace(name).second ? std::string(name) : newName();
    }

private:
    std::string newName()
    {
        std::string made;
        do {
            made = "_name" + std::to_string(m_next++) + "_";
        } while (m_names.components.indexOf(made) >= 0 || m_names.pins.indexOf(made) >= 0 ||
                 m_terminals.count(made) > 0);
        return made;
    }

    const Names& m_names;
    std::unordered_set<std::string> m_terminals; ///< names given to terminals
    int64_t m_next = 0;
};

class Namer {
public:
    Namer(const Nets& nets, const Names& names, lefdef::SourceReporter& reporter, DesignFiles& files,
          std::vector<design::Renamed>& renamed)
        : m_nets(nets), m_reporter(reporter), m_files(files), m_renamed(renamed), m_names(names),
          m_cellOf(files.def.components.size(), -1), m_terminalOf(files.def.pins.size(), -1),
          m_masterOf(files.lef.macros.size(), -1)
    {
    }

    void run()
    {
        nameCells();
        addPins();
        m_files.members.reserve(m_nets.members.size());
        m_files.offsets.members.reserve(m_nets.members.size());
        m_files.netBegin.reserve(m_nets.begin.size());
        for (size_t net = 0; net < m_nets.size(); ++net) {
            for (const Member& member : m_nets.of(net)) {
                addMember(member);
            }
            m_files.netBegin.push_back(m_files.members.size());
            m_files.offsets.netBegin.push_back(m_files.members.size());
        }
    }

private:
    void nameCells()
    {
        const std::vector<Cell>& cells = m_files.cells.movable;
        design::ComponentHash hash;
        for (size_t i = 0; i < cells.size(); ++i) {
            const DefComponent& comp = m_files.def.components[cells[i].component];
            const std::string_view name = comp.name;
            if (name.find_first_of("\r\n") != std::string_view::npos) {
                m_reporter.error("line-end", comp.offset, "a component's name has a line end in it",
                                 "rename it");
            }
            m_cellOf[cells[i].component] = static_cast<int32_t>(i);
            m_files.cellNames.push_back(m_names.forComponent(name));
            if (m_files.cellNames.back() != name) {
                m_renamed.push_back({.name = m_files.cellNames.back(), .original = std::string(name)});
            }
            hash.add(m_files.cellNames.back(), comp.macro);
            addMaster(m_files.cells.masterOf[cells[i].component]);
        }
        m_files.offsets.placement = hash.text();
    }

    void addMaster(size_t index)
    {
        if (m_masterOf[index] < 0) {
            m_masterOf[index] = static_cast<int32_t>(m_files.offsets.masters.size());
            const LefMacro& macro = m_files.lef.macros[index];
            m_files.offsets.masters.push_back(
                {.name = macro.name, .width = halfDbu(macro.width), .height = halfDbu(macro.height)});
        }
    }

    void addPins()
    {
        for (size_t i = 0; i < m_files.def.pins.size(); ++i) {
            const DefPin& pin = m_files.def.pins[i];
            if (pin.supply) {
                continue;
            }
            if (!pin.placed) {
                m_reporter.warning("unplaced-pin", pin.offset,
                                   "pin " + std::string(pin.name) +
                                       " has no place, and is left out of its nets",
                                   "place it");
                continue;
            }
            m_terminalOf[i] = makeTerminal(pin.name, pin.x, pin.y);
            addPoints(std::span(m_files.def.ports).subspan(pin.firstPort, pin.numPorts));
        }
    }

    /// Adds the points of the terminal made last.
    void addPoints(std::span<const geometry::Point> points)
    {
        design::PinOffsets& offsets = m_files.offsets;
        offsets.points.insert(offsets.points.end(), points.begin(), points.end());
        offsets.pointBegin.push_back(offsets.points.size());
    }

    int32_t makeTerminal(std::string_view name, int64_t x, int64_t y)
    {
        m_files.terminals.push_back({.name = m_names.forTerminal(name), .x = inRange(x), .y = inRange(y)});
        return static_cast<int32_t>(m_files.terminals.size() - 1);
    }

    void addMember(const Member& member)
    {
        if (member.component < 0) {
            addTerminal(m_terminalOf[static_cast<size_t>(member.pin)]);
        } else if (const int32_t cell = m_cellOf[static_cast<size_t>(member.component)]; cell >= 0) {
            m_files.members.push_back(cell);
            m_files.offsets.members.push_back({.component = cell, .pin = pinOf(member)});
        } else if (m_files.cells.isFixed[static_cast<size_t>(member.component)]) {
            addTerminal(fixedPin(member));
        }
    }

    /// Adds a terminal to the members, if there is one.
    void addTerminal(int32_t terminal)
    {
        if (terminal >= 0) {
            m_files.members.push_back(-1 - terminal);
            m_files.offsets.members.push_back({.pin = terminal});
        }
    }

    /// A cell's pin by its index among those of its master that nets use.
    int32_t pinOf(const Member& member)
    {
        const size_t index = m_files.cells.masterOf[static_cast<size_t>(member.component)];
        auto& pins = m_files.offsets.masters[static_cast<size_t>(m_masterOf[index])].pins;
        const auto known = std::ranges::find(pins, member.name, &design::PinOffsets::Pin::name);
        if (known == pins.end()) {
            pins.push_back({std::string(member.name), middleOfAll(m_files.lef.macros[index], member.name)});
            return static_cast<int32_t>(pins.size() - 1);
        }
        return static_cast<int32_t>(known - pins.begin());
    }

    /// The middle of all metal of a pin, of the whole master if none is known; half DBU. The corners are
    /// rounded to DBU before they are moved by the origin, as tools do that work in DBU from the start.
    geometry::Point middleOfAll(const LefMacro& macro, std::string_view pinName) const
    {
        const auto pin = std::ranges::find(macro.pins, pinName, &LefPin::name);
        if (pin == macro.pins.end() || !pin->bounds) {
            return {halfDbu(macro.width) / 2, halfDbu(macro.height) / 2};
        }
        const auto& [x, y] = macro.origin;
        const geometry::Rect drawn = pin->bounds->shifted(-x, -y);
        return {dbu(drawn.xl) + dbu(drawn.xh) + halfDbu(x), dbu(drawn.yl) + dbu(drawn.yh) + halfDbu(y)};
    }

    int64_t dbu(Length length) const { return lefdef::dbuNearest(length, m_files.def.databaseMicrons); }

    /// A whole number of DBU, in half DBU.
    int64_t halfDbu(Length length) const { return 2 * dbu(length); }

    int32_t fixedPin(const Member& member)
    {
        const auto [at, isNew] = m_fixedPins.try_emplace({member.component, member.name}, -1);
        if (isNew) {
            const auto index = static_cast<size_t>(member.component);
            const DefComponent& comp = m_files.def.components[index];
            const LefMacro& macro = m_files.lef.macros[m_files.cells.masterOf[index]];
            const LefPoint middle =
                transformed(middleOf(macro, member.name), macro.width, macro.height, comp.orient);
            at->second = makeTerminal(std::string(comp.name) + "/" + std::string(member.name),
                                      comp.x + inDbu(middle.x), comp.y + inDbu(middle.y));
            geometry::Point pin = transformed(middleOfAll(macro, member.name), halfDbu(macro.width),
                                              halfDbu(macro.height), comp.orient);
            pin = {2 * int64_t{comp.x} + pin.x, 2 * int64_t{comp.y} + pin.y};
            addPoints({&pin, 1});
        }
        return at->second;
    }

    int64_t inDbu(Length length) const { return lefdef::dbuDown(length, m_files.def.databaseMicrons); }

    const Nets& m_nets;
    lefdef::SourceReporter& m_reporter;
    DesignFiles& m_files;
    std::vector<design::Renamed>& m_renamed;
    SafeNames m_names;
    std::vector<int32_t> m_cellOf;     ///< [component] index in Cells::movable, -1 if it is not
    std::vector<int32_t> m_terminalOf; ///< [pin] index in DesignFiles::terminals, -1 without one
    std::vector<int32_t> m_masterOf;   ///< [macro] index in PinOffsets::masters, -1 if no cell has it
    std::map<std::pair<int32_t, std::string_view>, int32_t>
        m_fixedPins; ///< terminals of fixed components' pins
};

} // namespace

Nets readNets(const lefdef::Def& def, const Names& names, lefdef::SourceReporter& reporter)
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
            const int32_t component =
                member.component == TERMINAL ? -1 : names.components.indexOf(member.component);
            const bool terminal = component < 0 && lefdef::isKeyword(member.component, TERMINAL);
            const Member found{.component = component,
                               .pin = terminal ? names.pins.indexOf(member.pin) : -1,
                               .name = member.pin};
            if (found.component < 0 && found.pin < 0) {
                unknown(from,
                        terminal ? "pin " + std::string(member.pin)
                                 : "component " + std::string(member.component),
                        reporter);
            } else {
                nets.members.push_back(found);
            }
        }
        nets.begin.push_back(nets.members.size());
    }
    return nets;
}

void nameAll(const Nets& nets, const Names& names, lefdef::SourceReporter& reporter, DesignFiles& files,
             std::vector<design::Renamed>& renamed)
{
    Namer(nets, names, reporter, files, renamed).run();
}

bool isCarried(std::string_view name)
{
    const bool plain = std::ranges::none_of(name, [](char c) {
        const auto code = static_cast<unsigned char>(c);
        return code <= ' ' || code == 0x7f;
    });
    return plain && !name.empty() && name.size() <= LONGEST && name != "FILLER_1";
}

} // namespace kit::importing
