// SPDX-License-Identifier: BSD-3-Clause
#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "kit/base/fault.h"
#include "kit/base/text/text.h"
#include "kit/formats/lefdef/lef.h"
#include "kit/formats/lefdef/macroReader.h"
#include "kit/formats/lefdef/parser.h"
#include "kit/formats/lefdef/shapeReader.h"
#include "kit/formats/lefdef/statements.h"

namespace kit::lefdef {

namespace {

/// Reads the text of a LEF file into a library.
class LefReader {
public:
    LefReader(const Source& source, const std::string& layer, int32_t number, Lef& lef, Findings& findings)
        : m_layer(layer), m_number(number), m_lef(lef), m_in(source, findings),
          m_shapes(m_in, layer, lef.vias), m_macroReader(m_in, m_shapes), m_sites(indexOf(lef.sites)),
          m_macros(indexOf(lef.macros))
    {
    }

    /// Reads to the end of the text.
    void run();

private:
    using Index = std::unordered_map<std::string, size_t>; ///< of records by name

    /// The word that a statement or a section starts with, and what reads the rest.
    struct Rule {
        std::string_view keyword;
        void (LefReader::*read)();
    };
    static const std::array<Rule, 36> RULES;

    template <typename Record>
    static Index indexOf(const std::vector<Record>& records);

    void readStatement();
    void skipStatement() { m_in.skipStatement(); }
    void skipExtension() { m_in.skipExtension(); }
    void skipSection() { m_in.skipToEnd("section", m_keyword, "LIBRARY"); }
    void skipNamed() { skipBlock(/*nested=*/false); }
    void skipNested() { skipBlock(/*nested=*/true); }
    void skipBlock(bool nested);
    void skipUnknown();

    void readVersion() { lefdef::readVersion(m_in); }
    void readNamesCase() { lefdef::readNamesCase(m_in); }
    void readUnits();
    void readVia();
    void readSite();
    void readSiteStatement(LefSite& site);
    void readMacro();

    bool blockGoesOn(const char* kind, std::string_view name, size_t begin);
    template <typename Record>
    void keepIfNew(Record record, std::vector<Record>& records, Index& index, const char* kind);

    const std::string& m_layer;
    int32_t m_number;
    Lef& m_lef;
    Parser m_in;
    ShapeReader m_shapes;
    MacroReader m_macroReader;
    std::string_view m_keyword; ///< of the present statement or section
    size_t m_begin = 0;         ///< byte of that
    bool m_ended = false;       ///< END LIBRARY was there
    Index m_sites;
    Index m_macros;
};

const std::array<LefReader::Rule, 36> LefReader::RULES = {{
    {"MACRO", &LefReader::readMacro},
    {"SITE", &LefReader::readSite},
    {"UNITS", &LefReader::readUnits},
    {"VERSION", &LefReader::readVersion},
    {"NAMESCASESENSITIVE", &LefReader::readNamesCase},
    {"VIA", &LefReader::readVia},
    {"BEGINEXT", &LefReader::skipExtension},
    {"LAYER", &LefReader::skipNamed},
    {"VIARULE", &LefReader::skipNamed},
    {"ARRAY", &LefReader::skipNested},
    {"NONDEFAULTRULE", &LefReader::skipNested},
    {"CORRECTIONTABLE", &LefReader::skipSection},
    {"IRDROP", &LefReader::skipSection},
    {"NOISETABLE", &LefReader::skipSection},
    {"PROPERTYDEFINITIONS", &LefReader::skipSection},
    {"SPACING", &LefReader::skipSection},
    {"ANTENNAINOUTDIFFAREA", &LefReader::skipStatement},
    {"ANTENNAINPUTGATEAREA", &LefReader::skipStatement},
    {"ANTENNAOUTPUTDIFFAREA", &LefReader::skipStatement},
    {"BUSBITCHARS", &LefReader::skipStatement},
    {"CLEARANCEMEASURE", &LefReader::skipStatement},
    {"DIELECTRIC", &LefReader::skipStatement},
    {"DIVIDERCHAR", &LefReader::skipStatement},
    {"EDGERATESCALEFACTOR", &LefReader::skipStatement},
    {"EDGERATETHRESHOLD1", &LefReader::skipStatement},
    {"EDGERATETHRESHOLD2", &LefReader::skipStatement},
    {"FIXEDMASK", &LefReader::skipStatement},
    {"INOUTPINANTENNASIZE", &LefReader::skipStatement},
    {"INPUTPINANTENNASIZE", &LefReader::skipStatement},
    {"MANUFACTURINGGRID", &LefReader::skipStatement},
    {"MAXVIASTACK", &LefReader::skipStatement},
    {"MINFEATURE", &LefReader::skipStatement},
    {"NOWIREEXTENSIONATPIN", &LefReader::skipStatement},
    {"OUTPUTPINANTENNASIZE", &LefReader::skipStatement},
    {"UNIVERSALNOISEMARGIN", &LefReader::skipStatement},
    {"USEMINSPACING", &LefReader::skipStatement},
}};

template <typename Record>
LefReader::Index LefReader::indexOf(const std::vector<Record>& records)
{
    Index index;
    for (size_t i = 0; i < records.size(); ++i) {
        index.emplace(records[i].name, i);
    }
    return index;
}

void LefReader::run()
{
    while (!m_ended && !m_in.atFileEnd()) {
        readStatement();
    }
    m_in.finishFile(); // END LIBRARY may be missing
}

void LefReader::readStatement()
{
    if (m_in.is("END")) {
        m_ended = m_in.takeEnd("file", "LIBRARY", "");
        return;
    }
    m_begin = m_in.offset();
    m_keyword = m_in.start();
    const auto* const rule =
        std::find_if(RULES.begin(), RULES.end(), [&](const Rule& each) { return each.keyword == m_keyword; });
    if (rule != RULES.end()) {
        (this->*rule->read)();
    } else if (m_keyword != ";") {
        m_in.reporter().warning("unknown-statement", m_begin,
                                inQuotes(m_keyword) + " starts no known statement, and is ignored",
                                "see whether it is misspelt, or what stands before it is incomplete");
        skipStatement();
    }
}

void LefReader::skipBlock(bool nested)
{
    const std::string_view name = m_in.name("name");
    if (name.empty()) {
        m_in.finish();
    } else {
        m_in.skipToEnd("section", name, "LIBRARY", nested);
    }
}

/// Whether no END is next; that is taken.
bool LefReader::blockGoesOn(const char* kind, std::string_view name, size_t begin)
{
    while (m_in.take(";")) { // an empty statement
    }
    if (m_in.is("END")) {
        m_in.takeEnd(kind, name, "LIBRARY");
        return false;
    }
    if (m_in.atFileEnd() || m_in.is("MACRO")) {
        m_in.missingEnd(kind, name, begin);
        return false;
    }
    return true;
}

void LefReader::readUnits()
{
    while (blockGoesOn("section", "UNITS", m_begin)) {
        if (m_in.start() != "DATABASE") {
            skipStatement();
            continue;
        }
        m_in.expect("MICRONS");
        const int32_t units = m_in.count("number of database units");
        if (m_in.finish() && m_lef.databaseMicrons == 0) {
            m_lef.databaseMicrons = units;
        }
    }
}

void LefReader::readVia()
{
    const std::string_view name = m_in.name("name of the via");
    if (name.empty()) {
        m_in.finish();
        return;
    }
    m_in.take("DEFAULT");
    m_in.take("TOPOFSTACKONLY");
    bool onLayer = false;
    while (blockGoesOn("via", name, m_begin)) {
        const std::string_view word = m_in.start();
        while ((word == "LAYER" || word == "LAYERS") && m_in.more()) {
            onLayer = m_in.name("name of the layer") == m_layer || onLayer;
        }
        skipStatement();
    }
    m_lef.vias.emplace(name, onLayer);
}

void LefReader::readSite()
{
    LefSite site;
    site.offset = m_begin;
    site.source = m_number;
    site.name = m_in.name("name of the site");
    if (site.name.empty()) {
        m_in.finish();
        return;
    }
    while (blockGoesOn("site", site.name, m_begin)) {
        readSiteStatement(site);
    }
    const auto same = m_sites.find(site.name);
    if (same != m_sites.end()) {
        const LefSite& first = m_lef.sites[same->second];
        if (first.siteClass == site.siteClass && first.width == site.width && first.height == site.height) {
            return; // technology and cells often come with the same sites
        }
    }
    keepIfNew(std::move(site), m_lef.sites, m_sites, "site");
}

void LefReader::readSiteStatement(LefSite& site)
{
    const std::string_view word = m_in.start();
    if (word == "CLASS") {
        const std::string_view siteClass = m_in.keyword("class");
        if (m_in.finish()) {
            site.siteClass = siteClass;
        }
    } else if (word == "SIZE") {
        m_in.size(site.name, site.width, site.height);
    } else {
        skipStatement();
    }
}

void LefReader::readMacro()
{
    LefMacro macro = m_macroReader.read(m_begin);
    macro.source = m_number;
    if (!macro.name.empty()) {
        keepIfNew(std::move(macro), m_lef.macros, m_macros, "macro");
    }
}

template <typename Record>
void LefReader::keepIfNew(Record record, std::vector<Record>& records, Index& index, const char* kind)
{
    const auto [at, isNew] = index.emplace(record.name, records.size());
    if (isNew) {
        records.push_back(std::move(record));
        return;
    }
    const Record& first = records[at->second];
    m_in.reporter().error("name-twice", record.offset,
                          std::string(kind) + " " + inQuotes(record.name) + " stands in " +
                              (first.source == m_number ? "line " + m_in.lineOf(first.offset)
                                                        : std::string("an earlier file")) +
                              " already, and that one stays",
                          "give each its own name");
}

/// Names with commas in between.
template <typename Names>
std::string listOf(const Names& names)
{
    std::string text;
    for (const std::string& name : names) {
        text += (text.empty() ? "" : ", ") + name;
    }
    return text;
}

} // namespace

bool hasMetal(const LefMacro& macro)
{
    return !macro.obstructions.empty() || std::any_of(macro.pins.begin(), macro.pins.end(),
                                                      [](const LefPin& pin) { return !pin.shapes.empty(); });
}

void requireMetal(const Lef& lef, const std::vector<const LefMacro*>& macros)
{
    std::set<std::string> others;
    for (const LefMacro* macro : macros) {
        if (hasMetal(*macro)) {
            return;
        }
        others.insert(macro->otherLayers.begin(), macro->otherLayers.end());
    }
    if (!others.empty()) {
        throw Fault("no cell in use has metal on the layer " + lef.layer + " in " + listOf(lef.paths) +
                    ": give another with --layer; they have shapes on " + listOf(others));
    }
}

bool isFiller(const LefMacro& macro)
{
    return macro.macroClass.ends_with("SPACER");
}

void readLef(const Source& source, const std::string& layer, int32_t number, Lef& lef, Findings& findings)
{
    lef.layer = layer;
    lef.paths.push_back(source.path());
    LefReader(source, layer, number, lef, findings).run();
}

} // namespace kit::lefdef
