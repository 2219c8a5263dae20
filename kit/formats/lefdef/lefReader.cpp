// SPDX-License-Identifier: BSD-3-Clause
#include <algorithm>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "kit/base/text/text.h"
#include "kit/formats/lefdef/lef.h"
#include "kit/formats/lefdef/macroReader.h"
#include "kit/formats/lefdef/statements.h"
#include "kit/geometry/polygon.h"

namespace kit::lefdef {

namespace {

/// What is skipped up to its `;`.
constexpr std::string_view LEF_STATEMENTS[] = {
    // antennas
    "ANTENNAINOUTDIFFAREA", "ANTENNAINPUTGATEAREA", "ANTENNAOUTPUTDIFFAREA", "INOUTPINANTENNASIZE",
    "INPUTPINANTENNASIZE", "OUTPUTPINANTENNASIZE",
    // others
    "&DEFINE", "&DEFINEB", "&DEFINES", "BUSBITCHARS", "CLEARANCEMEASURE", "DIELECTRIC", "DIVIDERCHAR",
    "EDGERATESCALEFACTOR", "EDGERATETHRESHOLD1", "EDGERATETHRESHOLD2", "FIXEDMASK", "MANUFACTURINGGRID",
    "MAXVIASTACK", "MINFEATURE", "NOWIREEXTENSIONATPIN", "UNIVERSALNOISEMARGIN", "USEMINSPACING"};

/// What is skipped up to its END.
constexpr std::string_view LEF_SECTIONS[] = {"CORRECTIONTABLE", "IRDROP", "NOISETABLE", "PROPERTYDEFINITIONS",
                                             "SPACING"};

/// Reads the text of a LEF file into a library.
class LefReader : public FileReader<LefReader> {
public:
    LefReader(const Source& source, const std::string& layer, int32_t number, Lef& lef, Findings& findings)
        : FileReader(source, findings, {"LIBRARY", LEF_STATEMENTS, LEF_SECTIONS}), m_layer(layer),
          m_number(number), m_lef(lef), m_readMacro(macroReader(m_in, layer, lef.vias)),
          m_sites(indexOf(lef.sites)), m_macros(indexOf(lef.macros))
    {
    }

    /// Reads to the end of the text.
    void run()
    {
        readStatements(); // END LIBRARY may be missing
        m_in.finishFile();
    }

private:
    friend class FileReader<LefReader>;
    using Index = std::unordered_map<std::string, size_t>; ///< of records by name

    static std::span<const Rule<LefReader>> rules()
    {
        static constexpr Rule<LefReader> RULES[] = {
            {"MACRO", &LefReader::readMacro},
            {"SITE", &LefReader::readSite},
            {"UNITS", &LefReader::readUnits},
            {"VERSION", &LefReader::readVersion},
            {"NAMESCASESENSITIVE", &LefReader::readNamesCase},
            {"VIA", &LefReader::readVia},
            {"BEGINEXT", &LefReader::skipExtension},
            {"&ALIAS", &LefReader::skipAlias},
            {"LAYER", &LefReader::readLayer},
            {"VIARULE", &LefReader::skipNamed},
            {"ARRAY", &LefReader::skipNested},
            {"NONDEFAULTRULE", &LefReader::skipNested},
        };
        return RULES;
    }

    void skipUnknown() { m_in.skipStatement(); }
    void skipNamed() { skipBlock(m_in.name("name"), nullptr); }
    void skipNested()
    {
        skipBlock(m_in.name("name"), [this] { return startsStatement(); });
    }

    void readLayer()
    {
        const std::string_view name = m_in.name("name");
        std::vector<std::string>& layers = m_lef.routingLayers;
        if (m_in.take("TYPE") && m_in.is("ROUTING") && std::ranges::find(layers, name) == layers.end()) {
            layers.emplace_back(name);
        }
        skipBlock(name, nullptr);
    }

    template <typename Record>
    static Index indexOf(const std::vector<Record>& records)
    {
        Index index;
        for (size_t i = 0; i < records.size(); ++i) {
            index.emplace(records[i].name, i);
        }
        return index;
    }

    void skipBlock(std::string_view name, const std::function<bool()>& startsStatement)
    {
        if (name.empty()) {
            m_in.finish();
        } else {
            m_in.skipToEnd("section", name, "LIBRARY", startsStatement);
        }
    }

    void readUnits()
    {
        while (blockGoesOn("section", "UNITS")) {
            if (m_in.start() != "DATABASE") {
                m_in.skipStatement();
                continue;
            }
            m_in.expect("MICRONS");
            const int32_t units = m_in.count("number of database units");
            if (m_in.finish() && m_lef.databaseMicrons == 0) {
                m_lef.databaseMicrons = units;
            }
        }
    }

    void readVia()
    {
        const std::string_view name = m_in.name("name of the via");
        if (name.empty()) {
            m_in.finish();
            return;
        }
        m_in.take("DEFAULT");
        m_in.take("TOPOFSTACKONLY");
        bool onLayer = false;
        while (blockGoesOn("via", name)) {
            const Word word = m_in.start();
            while ((word == "LAYER" || word == "LAYERS") && m_in.more()) {
                onLayer = m_in.name("name of the layer") == m_layer || onLayer;
            }
            m_in.skipStatement();
        }
        m_lef.vias.emplace(name, onLayer);
    }

    void readSite()
    {
        LefSite site;
        site.offset = m_begin;
        site.source = m_number;
        site.name = m_in.name("name of the site");
        if (site.name.empty()) {
            m_in.finish();
            return;
        }
        while (blockGoesOn("site", site.name)) {
            readSiteStatement(site);
        }
        const auto same = m_sites.find(site.name);
        if (same != m_sites.end()) {
            const LefSite& first = m_lef.sites[same->second];
            if (first.siteClass == site.siteClass && first.width == site.width &&
                first.height == site.height) {
                return; // technology and cells often come with the same sites
            }
        }
        keepIfNew(std::move(site), m_lef.sites, m_sites, "site");
    }

    void readSiteStatement(LefSite& site)
    {
        const Word word = m_in.start();
        if (word == "CLASS") {
            const Word siteClass = m_in.keyword("class");
            if (m_in.finish()) {
                site.siteClass = siteClass.inCapitals();
            }
        } else if (word == "SIZE") {
            m_in.size(site.name, site.width, site.height);
        } else {
            m_in.skipStatement();
        }
    }

    void readMacro()
    {
        LefMacro macro = m_readMacro(m_begin);
        macro.source = m_number;
        if (!macro.name.empty()) {
            keepIfNew(std::move(macro), m_lef.macros, m_macros, "macro");
        }
    }

    /// Whether a block of the library goes on.
    bool blockGoesOn(const char* kind, std::string_view name)
    {
        return m_in.goesOn({kind, name, "LIBRARY", m_begin}, {"MACRO"});
    }

    template <typename Record>
    void keepIfNew(Record record, std::vector<Record>& records, Index& index, const char* kind)
    {
        const auto [at, isNew] = index.emplace(record.name, records.size());
        if (isNew) {
            records.push_back(std::move(record));
            return;
        }
        const Record& first = records[at->second];
        m_in.nameTwice(Severity::WARNING, record.offset, std::string(kind) + " " + inQuotes(record.name),
                       first.source == m_number ? "line " + m_in.lineOf(first.offset) : "an earlier file");
    }

    const std::string& m_layer;
    int32_t m_number;
    Lef& m_lef;
    ReadMacro m_readMacro;
    Index m_sites;
    Index m_macros;
};

} // namespace

bool hasMetal(const LefMacro& macro)
{
    return !macro.obstructions.empty() ||
           std::ranges::any_of(macro.pins, [](const LefPin& pin) { return !pin.shapes.empty(); });
}

std::vector<geometry::Rect> boxesOf(const LefShape& shape)
{
    if (shape.polygon) {
        return geometry::cutIntoRects(shape.points);
    }
    const LefPoint& a = shape.points.front();
    const LefPoint& b = shape.points.back();
    return {geometry::rectBetween(a.x, a.y, b.x, b.y)};
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
