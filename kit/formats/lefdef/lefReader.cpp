// SPDX-License-Identifier: BSD-3-Clause
#include <algorithm>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "kit/base/text/text.h"
#include "kit/formats/lefdef/lef.h"
#include "kit/formats/lefdef/parser.h"
#include "kit/formats/lefdef/shapeReader.h"
#include "kit/formats/lefdef/statements.h"

namespace kit::lefdef {

namespace {

/// Reads cell masters.
class MacroReader {
public:
    /// @param in, layer, vias  as for ShapeReader
    MacroReader(Parser& in, const std::string& layer, const Vias& vias) : m_in(in), m_shapes(in, layer, vias)
    {
    }

    /// Reads a master behind its word MACRO, to the end of it. What is wrong in it is left out.
    ///
    /// @param begin  byte of that word
    LefMacro read(size_t begin)
    {
        m_macro = {};
        m_origin = {};
        m_pins.clear();
        m_macro.offset = begin;
        m_macro.name = m_in.name("name of the macro");
        if (m_macro.name.empty()) {
            m_in.finish();
        }
        while (m_in.goesOn({"macro", m_macro.name, "LIBRARY", begin}, {"MACRO"}) && readStatement()) {
        }
        m_macro.endOffset = m_in.takenEnd();
        moveShapes(m_macro.obstructions);
        for (LefPin& pin : m_macro.pins) {
            moveShapes(pin.shapes);
        }
        return std::move(m_macro);
    }

private:
    static std::span<const Rule<MacroReader>> rules()
    {
        static constexpr Rule<MacroReader> RULES[] = {
            {"PIN", &MacroReader::readPin},       {"OBS", &MacroReader::readObstructions},
            {"CLASS", &MacroReader::readClass},   {"ORIGIN", &MacroReader::readOrigin},
            {"SIZE", &MacroReader::readSize},     {"SYMMETRY", &MacroReader::readSymmetry},
            {"SITE", &MacroReader::readSite},     {"DENSITY", &MacroReader::skipDensity},
            {"TIMING", &MacroReader::skipTiming}, {"BEGINEXT", &MacroReader::skipExtension},
        };
        return RULES;
    }

    /// @return false if the master's end was taken for that of a part
    bool readStatement()
    {
        m_begin = m_in.offset();
        const std::string_view word = m_in.start();
        if (const auto* const rule = findRule(rules(), [&](std::string_view each) { return each == word; })) {
            (this->*rule->read)();
        } else if (word == m_macro.name) {
            m_in.missingEnd("last part of the macro", m_macro.name, m_macro.offset);
            return false;
        } else if (word != ";") {
            m_in.skipStatement();
        }
        return true;
    }

    void readObstructions() { m_shapes.read(m_macro.obstructions, "obstruction"); }
    void skipTiming() { m_in.skipToEnd("section", "TIMING", m_macro.name); }
    void skipExtension() { m_in.skipExtension(); }
    void readSize() { m_in.size(m_macro.name, m_macro.width, m_macro.height); }

    void readClass()
    {
        std::string words;
        while (m_in.more()) {
            words += (words.empty() ? "" : " ") + std::string(m_in.keyword("class"));
        }
        if (m_in.finish()) {
            m_macro.macroClass = words;
        }
    }

    void readOrigin()
    {
        const Length x = m_in.length("x of the origin");
        const Length y = m_in.length("y of the origin");
        if (m_in.finish()) {
            m_origin = {x, y};
        }
    }

    void readSymmetry()
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

    void readSite()
    {
        const std::string_view site = m_in.name("name of the site");
        m_in.skipWords(); // where sites are in a master of several
        if (m_in.finish()) {
            m_macro.site = site;
        }
    }

    void readPin()
    {
        LefPin pin;
        pin.offset = m_begin;
        pin.name = m_in.name("name of the pin");
        if (pin.name.empty()) {
            m_in.finish();
        }
        while (m_in.goesOn({"pin", pin.name, m_macro.name, pin.offset}, {"MACRO", "PIN", "OBS"}) &&
               readPinStatement(pin)) {
        }
        const auto [same, isNew] = m_pins.emplace(pin.name, pin.offset);
        if (isNew) {
            m_macro.pins.push_back(std::move(pin));
        } else {
            m_in.nameTwice(pin.offset, "pin " + inQuotes(pin.name) + " of " + inQuotes(m_macro.name),
                           "line " + m_in.lineOf(same->second));
        }
    }

    /// @return false if the pin's end was taken for that of its last port
    bool readPinStatement(LefPin& pin)
    {
        const std::string_view word = m_in.start();
        if (word == "PORT") {
            m_shapes.read(pin.shapes, "port");
        } else if (word == "USE") {
            const PinUse use = readUse(m_in);
            if (m_in.finish()) {
                pin.use = use;
            }
        } else if (word == pin.name) {
            m_in.missingEnd("last port of the pin", pin.name, pin.offset);
            return false;
        } else if (word != ";") {
            m_in.skipStatement();
        }
        return true;
    }

    /// Rectangles with densities, up to an END without a name.
    void skipDensity()
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

    void moveShapes(std::vector<LefShape>& shapes) const
    {
        for (LefShape& shape : shapes) {
            for (LefPoint& point : shape.points) {
                point.x += m_origin.x;
                point.y += m_origin.y;
            }
        }
    }

    Parser& m_in;
    ShapeReader m_shapes;
    LefMacro m_macro;
    LefPoint m_origin;
    std::unordered_map<std::string, size_t> m_pins; ///< byte of each by name
    size_t m_begin = 0;                             ///< byte of the present statement
};

/// What is skipped up to its `;`.
constexpr std::string_view LEF_STATEMENTS[] = {
    // antennas
    "ANTENNAINOUTDIFFAREA", "ANTENNAINPUTGATEAREA", "ANTENNAOUTPUTDIFFAREA", "INOUTPINANTENNASIZE",
    "INPUTPINANTENNASIZE", "OUTPUTPINANTENNASIZE",
    // others
    "BUSBITCHARS", "CLEARANCEMEASURE", "DIELECTRIC", "DIVIDERCHAR", "EDGERATESCALEFACTOR",
    "EDGERATETHRESHOLD1", "EDGERATETHRESHOLD2", "FIXEDMASK", "MANUFACTURINGGRID", "MAXVIASTACK", "MINFEATURE",
    "NOWIREEXTENSIONATPIN", "UNIVERSALNOISEMARGIN", "USEMINSPACING"};

/// What is skipped up to its END.
constexpr std::string_view LEF_SECTIONS[] = {"CORRECTIONTABLE", "IRDROP", "NOISETABLE", "PROPERTYDEFINITIONS",
                                             "SPACING"};

/// Reads the text of a LEF file into a library.
class LefReader : public FileReader<LefReader> {
public:
    LefReader(const Source& source, const std::string& layer, int32_t number, Lef& lef, Findings& findings)
        : FileReader(source, findings, {"LIBRARY", LEF_STATEMENTS, LEF_SECTIONS}), m_layer(layer),
          m_number(number), m_lef(lef), m_macroReader(m_in, layer, lef.vias), m_sites(indexOf(lef.sites)),
          m_macros(indexOf(lef.macros))
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
            {"LAYER", &LefReader::skipNamed},
            {"VIARULE", &LefReader::skipNamed},
            {"ARRAY", &LefReader::skipNested},
            {"NONDEFAULTRULE", &LefReader::skipNested},
        };
        return RULES;
    }

    void skipUnknown() { m_in.skipStatement(); }
    void skipNamed() { skipBlock(/*nested=*/false); }
    void skipNested() { skipBlock(/*nested=*/true); }

    template <typename Record>
    static Index indexOf(const std::vector<Record>& records)
    {
        Index index;
        for (size_t i = 0; i < records.size(); ++i) {
            index.emplace(records[i].name, i);
        }
        return index;
    }

    void skipBlock(bool nested)
    {
        const std::string_view name = m_in.name("name");
        if (name.empty()) {
            m_in.finish();
        } else {
            m_in.skipToEnd("section", name, "LIBRARY", nested);
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
            const std::string_view word = m_in.start();
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
        const std::string_view word = m_in.start();
        if (word == "CLASS") {
            const std::string_view siteClass = m_in.keyword("class");
            if (m_in.finish()) {
                site.siteClass = siteClass;
            }
        } else if (word == "SIZE") {
            m_in.size(site.name, site.width, site.height);
        } else {
            m_in.skipStatement();
        }
    }

    void readMacro()
    {
        LefMacro macro = m_macroReader.read(m_begin);
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
        m_in.nameTwice(record.offset, std::string(kind) + " " + inQuotes(record.name),
                       first.source == m_number ? "line " + m_in.lineOf(first.offset) : "an earlier file");
    }

    const std::string& m_layer;
    int32_t m_number;
    Lef& m_lef;
    MacroReader m_macroReader;
    Index m_sites;
    Index m_macros;
};

} // namespace

bool hasMetal(const LefMacro& macro)
{
    return !macro.obstructions.empty() ||
           std::ranges::any_of(macro.pins, [](const LefPin& pin) { return !pin.shapes.empty(); });
}

bool isFiller(const LefMacro& macro)
{
    return macro.macroClass.ends_with("SPACER");
}

void readLef(const Source& source, const std::string& layer, int32_t number, Lef& lef, Findings& findings)
{
    LefReader(source, layer, number, lef, findings).run();
}

} // namespace kit::lefdef
