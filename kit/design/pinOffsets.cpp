// SPDX-License-Identifier: BSD-3-Clause
#include "kit/design/pinOffsets.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <unordered_map>

#include "kit/base/files/readFile.h"
#include "kit/design/standing.h"

namespace kit::design {

namespace {

constexpr std::string_view FIRST_LINE = "VIRELOCE OFFSETS 1";
constexpr std::string_view LAST_LINE = "END";
constexpr const char* ADVICE = "import the design anew: this file belongs to its placement";

/// No length is longer, half DBU: sums stay within 64 bits.
constexpr int64_t FARTHEST_PIN = int64_t{1} << 40U;

/// Takes the words of a line, which single blanks part.
class LineWords {
public:
    explicit LineWords(std::string_view line) : m_rest(line) {}

    bool atEnd() const { return m_rest.empty(); }
    std::string_view rest() const { return m_rest; }

    /// The next word; empty if there is none.
    std::string_view word()
    {
        const std::string_view word = m_rest.substr(0, m_rest.find(' '));
        skip(word.size());
        return word;
    }

    /// A whole number from `least` to `most`, up to `end`, which is taken as well.
    template <typename Number>
    std::optional<Number> number(Number least, Number most, char end = ' ')
    {
        Number value{};
        const char* const from = m_rest.data();
        const auto [stop, error] = std::from_chars(from, from + m_rest.size(), value);
        const auto size = static_cast<size_t>(stop - from);
        if (error != std::errc() || value < least || value > most ||
            (size < m_rest.size() ? m_rest[size] != end : end != ' ')) {
            return {};
        }
        skip(size);
        return value;
    }

private:
    void skip(size_t size) { m_rest.remove_prefix(std::min(size + 1, m_rest.size())); }

    std::string_view m_rest;
};

/// Reads the text of offsets from line to line. Each step says whether its lines were as they should be; the
/// first that were not are told, and end the reading.
class OffsetsReader {
public:
    OffsetsReader(std::string_view text, Reporter reporter) : m_text(text), m_reporter(std::move(reporter)) {}

    PinOffsets read()
    {
        if (readHeader() && readPlacement() && readMasters() && readTerminals() && readNets()) {
            readEnd();
        }
        return std::move(m_offsets);
    }

private:
    static constexpr int32_t MOST = std::numeric_limits<int32_t>::max();

    bool nextLine()
    {
        m_line = {};
        ++m_number;
        const size_t size = m_text.find('\n');
        if (size == std::string_view::npos) {
            m_text = {}; // a line that is cut off is none
            return false;
        }
        m_line = m_text.substr(0, size);
        m_text.remove_prefix(size + 1);
        return true;
    }

    bool fail(const std::string& expected)
    {
        m_reporter.error("offsets-line", {m_number, 0}, "the line is not " + expected, ADVICE);
        return false;
    }

    bool readHeader()
    {
        return (nextLine() && m_line == FIRST_LINE) || fail("\"" + std::string(FIRST_LINE) + "\"");
    }

    bool readPlacement()
    {
        LineWords words(nextLine() ? m_line : std::string_view());
        const bool named = words.word() == "PLACEMENT";
        m_offsets.placement = words.word();
        return (named && !m_offsets.placement.empty() && words.atEnd()) || fail("\"PLACEMENT\" and a hash");
    }

    /// Reads a count, and as much as it says.
    ///
    /// @param readOne  reads one from a line; tells whether it was as it should be
    template <typename ReadOne>
    bool readCounted(const std::string& keyword, const std::string& expected, ReadOne readOne)
    {
        LineWords words(nextLine() ? m_line : std::string_view());
        const bool named = words.word() == keyword;
        const std::optional<int32_t> count = words.number(0, MOST);
        if (!named || !count || !words.atEnd()) {
            return fail("\"" + keyword + "\" and a count");
        }
        for (int32_t i = 0; i < *count; ++i) {
            if (!nextLine() || !readOne(LineWords(m_line))) {
                return fail(expected);
            }
        }
        return true;
    }

    bool readMasters()
    {
        return readCounted("MASTERS", "a master with its pins",
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
            LineWords pin(nextLine() ? m_line : std::string_view());
            const std::optional<geometry::Point> at = readPoint(pin);
            if (!at) {
                return false;
            }
            master.pins.push_back({std::string(pin.rest()), *at});
        }
        m_offsets.masters.push_back(std::move(master));
        return true;
    }

    static std::optional<geometry::Point> readPoint(LineWords& words)
    {
        const std::optional<int64_t> x = words.number(-FARTHEST_PIN, FARTHEST_PIN);
        const std::optional<int64_t> y = x ? words.number(-FARTHEST_PIN, FARTHEST_PIN) : x;
        return y ? std::optional(geometry::Point{*x, *y}) : std::nullopt;
    }

    bool readTerminals()
    {
        return readCounted("TERMINALS", "the points of a terminal", [this](LineWords words) {
            while (!words.atEnd()) {
                const std::optional<geometry::Point> point = readPoint(words);
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
        return readCounted("NETS", "the pins of a net", [this, terminals](LineWords words) {
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

    bool readEnd()
    {
        if (!nextLine() || m_line != LAST_LINE) {
            return fail("\"END\"");
        }
        ++m_number;
        return m_text.empty() || fail("the end of the file, which \"END\" is");
    }

    std::string_view m_text; ///< after m_line
    Reporter m_reporter;
    PinOffsets m_offsets;
    std::string_view m_line;
    int64_t m_number = 0; ///< of m_line, from 1
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
    out << LAST_LINE << "\n";
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
                .error("other-placement", {}, "the file is that of other components", ADVICE);
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
