// SPDX-License-Identifier: BSD-3-Clause
#include "kit/design/pinOffsets.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <unordered_map>

#include "kit/base/files/readFile.h"
#include "kit/design/sideLines.h"
#include "kit/design/standing.h"

namespace kit::design {

namespace {

constexpr std::string_view FIRST_LINE = "VIRELOCE OFFSETS 1";

/// No length is longer, half DBU: sums stay within 64 bits.
constexpr int64_t FARTHEST_PIN = int64_t{1} << 40U;

/// Reads the text of offsets.
class OffsetsReader {
public:
    OffsetsReader(std::string_view text, Reporter reporter)
        : m_lines(text, std::move(reporter), "offsets-line")
    {
    }

    PinOffsets read()
    {
        if (m_lines.readExactly(FIRST_LINE) && readPlacement() && readMasters() && readTerminals() &&
            readNets()) {
            m_lines.readEnd();
        }
        return std::move(m_offsets);
    }

private:
    static constexpr int32_t MOST = SideLines::MOST;

    bool readPlacement()
    {
        LineWords words = m_lines.nextWords();
        const bool named = words.word() == "PLACEMENT";
        m_offsets.placement = words.word();
        return (named && !m_offsets.placement.empty() && words.atEnd()) ||
               m_lines.fail("\"PLACEMENT\" and a hash");
    }

    bool readMasters()
    {
        return m_lines.readCounted("MASTERS", "a master with its pins",
                                   [this](LineWords words) { return readMaster(words); });
    }

    bool readMaster(LineWords words)
    {
        if (words.word() != "MASTER") {
            return false;
        }
        PinOffsets::Master master{.name = std::string(words.word())};
        const std::optional<int64_t> width = words.number<int64_t>(0, FARTHEST_PIN);
        const std::optional<int64_t> height = words.number<int64_t>(0, FARTHEST_PIN);
        const std::optional<int32_t> pins = words.number(0, MOST);
        if (!width || !height || !pins || !words.atEnd()) {
            return false;
        }
        master.width = *width;
        master.height = *height;
        for (int32_t i = 0; i < *pins; ++i) {
            LineWords pin = m_lines.nextWords();
            const std::optional<geometry::Point> at = pin.point(FARTHEST_PIN);
            if (!at) {
                return false;
            }
            master.pins.push_back({std::string(pin.rest()), *at});
        }
        m_offsets.masters.push_back(std::move(master));
        return true;
    }

    bool readTerminals()
    {
        return m_lines.readCounted("TERMINALS", "the points of a terminal", [this](LineWords words) {
            while (!words.atEnd()) {
                const std::optional<geometry::Point> point = words.point(FARTHEST_PIN);
                if (!point) {
                    return false;
                }
                m_offsets.points.push_back(*point);
            }
            m_offsets.pointBegin.push_back(m_offsets.points.size());
            return true;
        });
    }

    bool readNets()
    {
        const auto terminals = static_cast<int32_t>(m_offsets.pointBegin.size() - 1);
        return m_lines.readCounted("NETS", "the pins of a net", [this, terminals](LineWords words) {
            while (!words.atEnd()) {
                const std::optional<int32_t> component = words.number(0, MOST, ':');
                const std::optional<int32_t> pin =
                    component ? words.number(0, MOST) : words.number(0, terminals - 1);
                if (!pin) {
                    return false;
                }
                m_offsets.members.push_back({component.value_or(-1), *pin});
            }
            m_offsets.netBegin.push_back(m_offsets.members.size());
            return true;
        });
    }

    SideLines m_lines;
    PinOffsets m_offsets;
};

/// What the points of a net reach over.
class Reach {
public:
    void add(const geometry::Point& point)
    {
        const geometry::Rect at{point.x, point.y, point.x, point.y};
        m_bounds = geometry::around(m_bounds.value_or(at), at);
    }

    int64_t halfPerimeter() const
    {
        return m_bounds ? m_bounds->xh - m_bounds->xl + m_bounds->yh - m_bounds->yl : 0;
    }

private:
    std::optional<geometry::Rect> m_bounds;
};

/// A component as its pins need it.
struct Lying {
    const PinOffsets::Master* master = nullptr; ///< not owned
    geometry::Point corner;                     ///< lower left, half DBU
    Turn turn;

    geometry::Point pin(size_t index) const
    {
        const auto& [x, y] = master->pins[index].at;
        return {corner.x + (turn.mirrorX ? master->width - x : x),
                corner.y + (turn.mirrorY ? master->height - y : y)};
    }
};

/// The components with their masters; empty if one's master is unknown.
std::vector<Lying> lyingOf(const PinOffsets& offsets, const placer::Design& placed)
{
    const placer::NameIndex masters = placer::indexNames(offsets.masters);
    std::vector<Lying> all;
    all.reserve(placed.components.size());
    for (const placer::Component& comp : placed.components) {
        const int32_t master = placer::findName(masters, comp.cellName);
        if (master < 0) {
            return {};
        }
        all.push_back({.master = &offsets.masters[static_cast<size_t>(master)],
                       .corner = {2 * int64_t{comp.x}, 2 * int64_t{comp.y}},
                       .turn = turnOf(comp.orient)});
    }
    return all;
}

std::string hashOf(const placer::Design& placed)
{
    ComponentHash hash;
    for (const placer::Component& comp : placed.components) {
        hash.add(comp.name, comp.cellName);
    }
    return hash.text();
}

} // namespace

void ComponentHash::add(std::string_view name, std::string_view cell)
{
    m_hash.add(name);
    m_hash.add("\n");
    m_hash.add(cell);
    m_hash.add("\n");
}

PinOffsets readPinOffsets(const std::string& path, Findings& findings)
{
    const std::string text = readFile(path);
    return OffsetsReader(text, Reporter(findings, path)).read();
}

void writePinOffsets(const PinOffsets& offsets, OutputFile& out)
{
    out << FIRST_LINE << "\nPLACEMENT " << offsets.placement << "\nMASTERS " << offsets.masters.size()
        << "\n";
    for (const PinOffsets::Master& master : offsets.masters) {
        out << "MASTER " << master.name << " " << master.width << " " << master.height << " "
            << master.pins.size() << "\n";
        for (const PinOffsets::Pin& pin : master.pins) {
            std::string name = pin.name;
            std::ranges::replace(name, '\n', '?');
            out << pin.at.x << " " << pin.at.y << " " << name << "\n";
        }
    }
    out << "TERMINALS " << offsets.pointBegin.size() - 1 << "\n";
    for (size_t i = 0; i + 1 < offsets.pointBegin.size(); ++i) {
        const char* blank = "";
        for (size_t k = offsets.pointBegin[i]; k < offsets.pointBegin[i + 1]; ++k) {
            out << blank << offsets.points[k].x << " " << offsets.points[k].y;
            blank = " ";
        }
        out << "\n";
    }
    out << "NETS " << offsets.netBegin.size() - 1 << "\n";
    for (size_t net = 0; net + 1 < offsets.netBegin.size(); ++net) {
        const char* blank = "";
        for (size_t k = offsets.netBegin[net]; k < offsets.netBegin[net + 1]; ++k) {
            const PinOffsets::Member& member = offsets.members[k];
            out << blank;
            if (member.component >= 0) {
                out << member.component << ":";
            }
            out << member.pin;
            blank = " ";
        }
        out << "\n";
    }
    out << "END\n";
}

std::string offsetsOf(const std::string& placement)
{
    return placement.empty() ? "" : std::filesystem::path(placement).replace_extension(".offsets").string();
}

std::optional<int64_t> pinLength(const PinOffsets& offsets, const placer::Design& placed)
{
    if (hashOf(placed) != offsets.placement) {
        return {};
    }
    const std::vector<Lying> all = lyingOf(offsets, placed);
    int64_t length = 0;
    for (size_t net = 0; net + 1 < offsets.netBegin.size(); ++net) {
        Reach reach;
        for (size_t k = offsets.netBegin[net]; k < offsets.netBegin[net + 1]; ++k) {
            const auto pin = static_cast<size_t>(offsets.members[k].pin);
            if (offsets.members[k].component < 0) {
                for (size_t at = offsets.pointBegin[pin]; at < offsets.pointBegin[pin + 1]; ++at) {
                    reach.add(offsets.points[at]);
                }
                continue;
            }
            const auto component = static_cast<size_t>(offsets.members[k].component);
            if (component >= all.size() || pin >= all[component].master->pins.size()) {
                return {};
            }
            reach.add(all[component].pin(pin));
        }
        length += reach.halfPerimeter();
    }
    return length;
}

std::optional<int64_t> pinLengthBeside(const std::string& placement, const placer::Design& placed,
                                       Findings& findings)
{
    const std::string path = offsetsOf(placement);
    if (!std::filesystem::exists(path)) {
        return {};
    }
    Findings ofFile;
    const PinOffsets offsets = readPinOffsets(path, ofFile);
    std::optional<int64_t> length;
    if (ofFile.empty()) {
        length = pinLength(offsets, placed);
        if (!length) {
            Reporter(ofFile, path)
                .error("other-placement", {}, "the file is that of other components", IMPORT_ANEW);
        }
    }
    findings.insert(findings.end(), ofFile.begin(), ofFile.end());
    return length;
}

Json pinLengthJson(std::optional<int64_t> length, int32_t dbuPerMicron)
{
    if (!length) {
        return nullptr;
    }
    const double dbu = static_cast<double>(*length) / 2;
    return {{"dbu", *length % 2 == 0 ? Json(*length / 2) : Json(dbu)},
            {"um", dbuPerMicron > 0 ? Json(dbu / dbuPerMicron) : Json(nullptr)}};
}

std::string micrometresText(const Json& length)
{
    if (!length["um"].isNumber()) {
        return "? um";
    }
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.1f um", length["um"].asNumber());
    return text.data();
}

} // namespace kit::design
