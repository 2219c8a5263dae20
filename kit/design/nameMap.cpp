// SPDX-License-Identifier: BSD-3-Clause
#include "kit/design/nameMap.h"

#include <algorithm>
#include <charconv>
#include <filesystem>

#include "kit/base/files/readFile.h"
#include "kit/base/finding.h"
#include "kit/base/hash.h"

namespace kit::design {

namespace {

constexpr std::string_view HEADER = "VIRELOCE MAP 1";
constexpr std::string_view END = "END";
constexpr const char* MIRRORABLE = "MIRRORABLE";

/// A whole text as a decimal integer that is not negative.
std::optional<int64_t> numberOf(std::string_view text)
{
    int64_t value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && stop == end && value >= 0 ? std::optional(value) : std::nullopt;
}

bool isHash(std::string_view text)
{
    return text.size() == 16 && text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

/// Reads the text of a map from line to line. Each step says whether its lines were as they should be; the
/// first that were not are told, and end the reading.
class MapReader {
public:
    MapReader(std::string_view text, Reporter reporter) : m_text(text), m_reporter(std::move(reporter)) {}

    NameMap read()
    {
        if (readHeader() && readDef() && readHash() && readSite() && readNames() && readFlipped() &&
            readMirrorable()) {
            readEnd();
        }
        return std::move(m_map);
    }

private:
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
        m_reporter.error("map-line", {m_number, 0}, "the line is not " + expected,
                         "import the design anew: this file belongs to its placement");
        return false;
    }

    /// What follows a keyword and a blank on the next line.
    std::optional<std::string_view> nextAfter(std::string_view keyword)
    {
        if (!nextLine() || !m_line.starts_with(keyword) || m_line.size() <= keyword.size() ||
            m_line[keyword.size()] != ' ') {
            return {};
        }
        return m_line.substr(keyword.size() + 1);
    }

    bool readHeader() { return (nextLine() && m_line == HEADER) || fail("\"" + std::string(HEADER) + "\""); }

    bool readDef()
    {
        const std::optional<std::string_view> path = nextAfter("DEF");
        m_map.def = path.value_or("");
        return path || fail("\"DEF\" and a path");
    }

    bool readHash()
    {
        const std::optional<std::string_view> hash = nextAfter("HASH");
        m_map.hash = hash.value_or("");
        return (hash && isHash(*hash)) || fail("\"HASH\" and 16 hexadecimal digits");
    }

    bool readSite()
    {
        const std::string_view sizes = nextAfter("SITE").value_or("");
        const size_t blank = std::min(sizes.find(' '), sizes.size());
        const std::optional<int64_t> width = numberOf(sizes.substr(0, blank));
        const std::optional<int64_t> height = numberOf(sizes.substr(std::min(blank + 1, sizes.size())));
        m_map.siteWidth = width.value_or(0);
        m_map.siteHeight = height.value_or(0);
        return (m_map.siteWidth > 0 && m_map.siteHeight > 0) || fail("\"SITE\" and a width and a height");
    }

    /// Reads a count, and as many lines, each with another name.
    ///
    /// @param take  takes a line and gives the name in it, empty if the line is not as it should be
    template <typename Take>
    bool readLines(const std::string& keyword, const std::string& expected, Take take)
    {
        const std::optional<int64_t> count = numberOf(nextAfter(keyword).value_or(""));
        if (!count) {
            return fail("\"" + keyword + "\" and a count");
        }
        std::unordered_set<std::string_view> seen;
        for (int64_t i = 0; i < *count; ++i) {
            const std::string_view name = nextLine() ? take(m_line) : std::string_view();
            if (name.empty()) {
                return fail(expected + ", of which there should be " + std::to_string(*count));
            }
            if (!seen.insert(name).second) {
                m_reporter.error("map-name", {m_number, 0}, "the name " + std::string(name) + " comes twice",
                                 "import the design anew: this file belongs to its placement");
                return false;
            }
        }
        return true;
    }

    bool readNames()
    {
        return readLines("NAMES", "a name in the placement and one in the DEF file",
                         [this](std::string_view line) {
                             const size_t blank = std::min(line.find(' '), line.size());
                             if (blank == 0 || blank + 1 >= line.size()) {
                                 return std::string_view();
                             }
                             m_map.names.push_back(
                                 {std::string(line.substr(0, blank)), std::string(line.substr(blank + 1))});
                             return line.substr(0, blank);
                         });
    }

    /// Reads names, one in a line.
    bool readWords(const std::string& keyword, const std::string& expected, std::vector<std::string>& names)
    {
        return readLines(keyword, expected, [&names](std::string_view line) {
            if (line.empty() || line.find(' ') != std::string_view::npos) {
                return std::string_view();
            }
            names.emplace_back(line);
            return line;
        });
    }

    bool readFlipped() { return readWords("FLIPPED", "the name of a flipped component", m_map.flipped); }

    bool readMirrorable()
    {
        return !m_text.starts_with(MIRRORABLE) ||
               readWords(MIRRORABLE, "the name of a mirrorable cell", m_map.mirrorable);
    }

    bool readEnd()
    {
        if (!nextLine() || m_line != END) {
            return fail("\"END\"");
        }
        ++m_number;
        return m_text.empty() || fail("the end of the file, which \"END\" is");
    }

    std::string_view m_text; ///< after m_line
    Reporter m_reporter;
    NameMap m_map;
    std::string_view m_line;
    int64_t m_number = 0; ///< of m_line, from 1
};

lefdef::Orient orientNamed(const std::string& name)
{
    return lefdef::orientOf(name).value_or(lefdef::Orient::N);
}

} // namespace

std::string hashOf(std::string_view bytes)
{
    Hash hash;
    hash.add(bytes);
    return hash.text();
}

NameMap readNameMap(const std::string& path, Findings& findings)
{
    const std::string text = readFile(path);
    return MapReader(text, Reporter(findings, path)).read();
}

void writeNameMap(const NameMap& map, OutputFile& out)
{
    std::string def = map.def;
    std::ranges::replace(def, '\n', '?');
    out << HEADER << "\nDEF " << def << "\nHASH " << map.hash << "\n";
    out << "SITE " << map.siteWidth << " " << map.siteHeight << "\n";
    out << "NAMES " << map.names.size() << "\n";
    for (const Renamed& renamed : map.names) {
        out << renamed.name << " " << renamed.original << "\n";
    }
    out << "FLIPPED " << map.flipped.size() << "\n";
    for (const std::string& name : map.flipped) {
        out << name << "\n";
    }
    out << MIRRORABLE << " " << map.mirrorable.size() << "\n";
    for (const std::string& name : map.mirrorable) {
        out << name << "\n";
    }
    out << END << "\n";
}

TrueOrients::TrueOrients(const std::vector<placer::Row>& rows, const NameMap& map)
    : m_flipped(map.flipped.begin(), map.flipped.end())
{
    for (const placer::Row& row : rows) {
        m_rows[row.y].push_back(&row);
    }
}

std::optional<lefdef::Orient> TrueOrients::of(const placer::Component& comp) const
{
    const auto at = m_rows.find(comp.y);
    if (at == m_rows.end()) {
        return {};
    }
    const auto row = std::ranges::find_if(at->second, [&comp](const placer::Row* candidate) {
        const int64_t right = candidate->x + int64_t{candidate->numSites} * candidate->step;
        return candidate->x <= comp.x && comp.x < right;
    });
    if (row == at->second.end()) {
        return {};
    }
    const bool upsideDown =
        lefdef::isUpsideDown(orientNamed((*row)->orient)) != m_flipped.contains(comp.name);
    return lefdef::upright(isMirrored(comp), upsideDown);
}

bool isMirrored(const placer::Component& comp)
{
    return lefdef::isMirrored(orientNamed(comp.orient));
}

std::string mapOf(const std::string& placement)
{
    return placement.empty() ? "" : std::filesystem::path(placement).replace_extension(".map").string();
}

void restoreOrientations(const std::string& placement, placer::Design& design, Findings& findings)
{
    const std::string path = mapOf(placement);
    if (!std::filesystem::exists(path)) {
        return;
    }
    const NameMap map = readNameMap(path, findings);
    const TrueOrients orients(design.rows, map);
    for (placer::Component& comp : design.components) {
        if (comp.orient == "N" || comp.orient == "FN") {
            if (const std::optional<lefdef::Orient> orient = orients.of(comp)) {
                comp.orient = std::string(nameOf(*orient));
            }
        }
    }
}

} // namespace kit::design
