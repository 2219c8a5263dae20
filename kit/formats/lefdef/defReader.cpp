// SPDX-License-Identifier: BSD-3-Clause
#include <algorithm>
#include <array>
#include <limits>
#include <string>
#include <string_view>

#include "kit/base/text/text.h"
#include "kit/formats/lefdef/def.h"
#include "kit/formats/lefdef/nameTable.h"
#include "kit/formats/lefdef/parser.h"
#include "kit/formats/lefdef/statements.h"
#include "kit/geometry/polygon.h"

namespace kit::lefdef {

namespace {

/// Room is made for the records that a header promises, but for no more than one in so many bytes of the
/// file.
constexpr size_t USUAL_RECORD = 32;
constexpr size_t USUAL_MEMBER = 16; ///< bytes of a member of a net, with its share of the rest

/// A polygon with more corners is refused: cutting it takes their square.
constexpr size_t MOST_CORNERS = 1000;

/// A point, DBU.
struct DefPoint {
    int32_t x = 0;
    int32_t y = 0;
};

/// Reads the text of a DEF file into a design.
class DefReader {
public:
    DefReader(const Source& source, Def& def, Findings& findings) : m_def(def), m_in(source, findings) {}

    /// Reads to the end of the text.
    void run();

private:
    using Read = void (DefReader::*)();

    /// The word that a statement or a section starts with, and what reads the rest.
    struct Rule {
        std::string_view keyword;
        Read read;
    };
    static const std::array<Rule, 39> RULES;

    void readStatement();
    bool startsStatement() const;
    void skipStatement() { m_in.skipStatement(); }
    void skipSection() { m_in.skipToEnd("section", m_keyword, "DESIGN"); }
    void skipHistory() { m_in.skipText(); }
    void skipExtension() { m_in.skipExtension(); }
    void skipUnknown();

    void readVersion() { lefdef::readVersion(m_in); }
    void readNamesCase() { lefdef::readNamesCase(m_in); }
    void readDesignName();
    void readUnits();
    void readDieArea();
    void readRow();

    void readComponents() { readSection(m_def.components, &DefReader::readComponent); }
    void readPins() { readSection(m_def.pins, &DefReader::readPin); }
    void readNets()
    {
        // Pages that stay empty cost nothing, and growing would copy and clear most of them twice.
        m_def.members.reserve(m_def.members.size() + (m_in.source().text().size() - m_begin) / USUAL_MEMBER);
        readSection(m_def.nets, &DefReader::readNet);
    }
    void readBlockages() { readSection(m_def.blockages, &DefReader::readBlockage); }

    template <typename Record>
    void readSection(std::vector<Record>& records, Read read);
    int64_t readRecords(Read read);

    void readComponent();
    void readPlace(DefComponent& component, Status status);
    void readPin();
    void readPinOption(DefPin& pin);
    void readNet();
    void readMember();
    void readBlockage();
    void readBlockageOptions(DefBlockage& blockage);
    void readRect(DefBlockage& blockage);
    void readPolygon(DefBlockage& blockage);

    template <typename Record>
    void keepIfNew(const Record& record, std::vector<Record>& records, NameTable<Record>& names,
                   const char* kind);
    Status takeStatus();
    DefPoint readPoint();
    DefPoint readPoint(const DefPoint& before);
    Orient readOrient();
    bool readIsSupply();

    Def& m_def;
    Parser m_in;
    std::string_view m_keyword; ///< of the present statement or section
    size_t m_begin = 0;         ///< byte of that
    bool m_ended = false;       ///< END DESIGN was there
    NameTable<DefComponent> m_components{m_def.components};
    NameTable<DefPin> m_pins{m_def.pins};
    NameTable<DefNet> m_nets{m_def.nets};
};

const std::array<DefReader::Rule, 39> DefReader::RULES = {{
    {"ROW", &DefReader::readRow},
    {"COMPONENTS", &DefReader::readComponents},
    {"PINS", &DefReader::readPins},
    {"NETS", &DefReader::readNets},
    {"BLOCKAGES", &DefReader::readBlockages},
    {"DESIGN", &DefReader::readDesignName},
    {"UNITS", &DefReader::readUnits},
    {"DIEAREA", &DefReader::readDieArea},
    {"VERSION", &DefReader::readVersion},
    {"NAMESCASESENSITIVE", &DefReader::readNamesCase},
    {"BEGINEXT", &DefReader::skipExtension},
    {"ARRAY", &DefReader::skipStatement},
    {"BUSBITCHARS", &DefReader::skipStatement},
    {"CANNOTOCCUPY", &DefReader::skipStatement},
    {"CANPLACE", &DefReader::skipStatement},
    {"COMPONENTMASKSHIFT", &DefReader::skipStatement},
    {"DIVIDERCHAR", &DefReader::skipStatement},
    {"FLOORPLAN", &DefReader::skipStatement},
    {"GCELLGRID", &DefReader::skipStatement},
    {"HISTORY", &DefReader::skipHistory},
    {"TECHNOLOGY", &DefReader::skipStatement},
    {"TRACKS", &DefReader::skipStatement},
    {"ASSERTIONS", &DefReader::skipSection},
    {"CONSTRAINTS", &DefReader::skipSection},
    {"DEFAULTCAP", &DefReader::skipSection},
    {"FILLS", &DefReader::skipSection},
    {"GROUPS", &DefReader::skipSection},
    {"IOTIMINGS", &DefReader::skipSection},
    {"NONDEFAULTRULES", &DefReader::skipSection},
    {"PARTITIONS", &DefReader::skipSection},
    {"PINPROPERTIES", &DefReader::skipSection},
    {"PROPERTYDEFINITIONS", &DefReader::skipSection},
    {"REGIONS", &DefReader::skipSection},
    {"SCANCHAINS", &DefReader::skipSection},
    {"SLOTS", &DefReader::skipSection},
    {"SPECIALNETS", &DefReader::skipSection},
    {"STYLES", &DefReader::skipSection},
    {"TIMINGDISABLES", &DefReader::skipSection},
    {"VIAS", &DefReader::skipSection},
}};

void DefReader::run()
{
    while (!m_ended && !m_in.atFileEnd()) {
        readStatement();
    }
    if (!m_ended) {
        m_in.missingEnd("file", "DESIGN", m_in.offset());
    }
    m_in.finishFile();
}

void DefReader::readStatement()
{
    if (m_in.is("END")) {
        m_ended = m_in.takeEnd("file", "DESIGN", "");
        return;
    }
    m_begin = m_in.offset();
    m_keyword = m_in.start();
    const auto* const rule =
        std::find_if(RULES.begin(), RULES.end(), [&](const Rule& each) { return each.keyword == m_keyword; });
    if (rule != RULES.end()) {
        (this->*rule->read)();
    } else if (m_keyword != ";") {
        skipUnknown();
    }
}

bool DefReader::startsStatement() const
{
    return std::any_of(RULES.begin(), RULES.end(), [&](const Rule& rule) { return m_in.is(rule.keyword); });
}

void DefReader::skipUnknown()
{
    m_in.reporter().warning("unknown-statement", m_begin,
                            inQuotes(m_keyword) + " starts no known statement, and is ignored",
                            "see whether it is misspelt, or what stands before it is incomplete");
    skipStatement();
    if (m_in.is("-")) {
        skipSection();
    }
}

void DefReader::readDesignName()
{
    const std::string_view name = m_in.name("design's name");
    if (m_in.finish()) {
        m_def.design = name;
    }
}

void DefReader::readUnits()
{
    m_in.expect("DISTANCE");
    m_in.expect("MICRONS");
    const int32_t units = m_in.count("number of database units");
    if (m_in.finish()) {
        m_def.databaseMicrons = units;
    }
}

void DefReader::readDieArea()
{
    DefPoint point = readPoint();
    DefRect box{point.x, point.y, point.x, point.y};
    do {
        point = readPoint(point);
        box = {std::min(box.xl, point.x), std::min(box.yl, point.y), std::max(box.xh, point.x),
               std::max(box.yh, point.y)};
    } while (m_in.more());
    if (m_in.finish()) {
        m_def.dieArea = box;
        m_def.hasDieArea = true;
    }
}

void DefReader::readRow()
{
    DefRow row;
    row.offset = m_begin;
    row.name = m_in.name("row's name");
    row.site = m_in.name("name of the row's site");
    row.x = m_in.integer("row's x coordinate");
    row.y = m_in.integer("row's y coordinate");
    row.orient = readOrient();
    if (m_in.take("DO")) {
        row.columns = m_in.count("number of columns");
        m_in.expect("BY");
        row.rows = m_in.count("number of rows");
        if (m_in.take("STEP")) {
            row.stepX = m_in.integer("step in x");
            row.stepY = m_in.integer("step in y");
        }
    }
    while (m_in.take("+")) {
        m_in.expect("PROPERTY");
        m_in.skipOption();
    }
    if (m_in.finish()) {
        m_def.rows.push_back(row);
    }
}

template <typename Record>
void DefReader::readSection(std::vector<Record>& records, Read read)
{
    const std::string keyword(m_keyword);
    const size_t begin = m_begin;
    const int32_t count = m_in.integer("number of records");
    const bool counts = m_in.finish();
    const size_t most = m_in.source().text().size() / USUAL_RECORD;
    records.reserve(records.size() + std::min(most, static_cast<size_t>(std::max(count, 0))));
    const int64_t seen = readRecords(read);
    if (m_in.is("END")) {
        m_in.takeEnd("section", keyword, "DESIGN");
    } else {
        m_in.missingEnd("section", keyword, begin);
    }
    if (counts && count != seen) {
        m_in.reporter().warning("wrong-count", begin,
                                keyword + " says " + counted(count, "record") + ", and " +
                                    std::to_string(seen) + " follow",
                                "write " + std::to_string(seen));
    }
}

/// Reads to the end of the section. Returns how many records there are, whether sound or not.
int64_t DefReader::readRecords(Read read)
{
    int64_t seen = 0;
    while (!m_in.atFileEnd() && !m_in.is("END") && !startsStatement()) {
        const size_t at = m_in.offset();
        const std::string_view word = m_in.start();
        if (word == "-") {
            ++seen;
            (this->*read)();
        } else if (word != ";") {
            m_in.failAt(at, "syntax", inQuotes(word) + " stands where a record or END belongs",
                        "start each record with a \"-\" that has a blank behind it");
            m_in.finish();
        }
    }
    return seen;
}

void DefReader::readComponent()
{
    DefComponent component;
    component.offset = m_in.offset();
    component.name = m_in.name("component's name");
    component.macro = m_in.name("name of the component's macro");
    while (m_in.more()) {
        m_in.expect("+");
        const size_t at = m_in.offset();
        const Status status = takeStatus();
        if (status == Status::NONE) {
            m_in.skipOption();
        } else if (component.status != Status::NONE) {
            m_in.failAt(at, "place-twice",
                        "the component " + inQuotes(component.name) + " has a second place", "leave one");
        } else {
            component.placeBegin = at;
            readPlace(component, status);
            component.placeEnd = m_in.takenEnd();
        }
    }
    component.endOffset = m_in.offset();
    keepIfNew(component, m_def.components, m_components, "component");
}

void DefReader::readPlace(DefComponent& component, Status status)
{
    component.status = status;
    // Some files give a place to what is not placed.
    if (status == Status::UNPLACED && !m_in.is("(")) {
        return;
    }
    const DefPoint point = readPoint();
    component.x = point.x;
    component.y = point.y;
    component.orient = readOrient();
}

void DefReader::readPin()
{
    DefPin pin;
    pin.offset = m_in.offset();
    pin.name = m_in.name("pin's name");
    while (m_in.more()) {
        m_in.expect("+");
        readPinOption(pin);
    }
    keepIfNew(pin, m_def.pins, m_pins, "pin");
}

void DefReader::readPinOption(DefPin& pin)
{
    if (m_in.take("NET")) {
        pin.net = m_in.name("name of the pin's net");
    } else if (m_in.take("USE")) {
        pin.supply = readIsSupply();
    } else if (const Status status = takeStatus(); status != Status::NONE && status != Status::UNPLACED) {
        const DefPoint point = readPoint();
        readOrient();
        if (!pin.placed) {
            pin.x = point.x;
            pin.y = point.y;
            pin.placed = true;
        }
    } else {
        m_in.skipOption();
    }
}

void DefReader::readNet()
{
    DefNet net;
    net.offset = m_in.offset();
    net.name = m_in.name("net's name");
    net.firstMember = m_def.members.size();
    while (m_in.take("(")) {
        readMember();
    }
    net.numMembers = m_def.members.size() - net.firstMember;
    while (m_in.more()) {
        m_in.expect("+");
        if (m_in.take("USE")) {
            net.supply = readIsSupply();
        } else {
            m_in.skipOption();
        }
    }
    const size_t before = m_def.nets.size();
    if (net.name != "MUSTJOIN") {
        keepIfNew(net, m_def.nets, m_nets, "net");
    } else if (m_in.finish()) {
        m_def.nets.push_back(net); // not a name: any number of nets have it
    }
    if (m_def.nets.size() == before) {
        m_def.members.resize(net.firstMember);
    }
}

void DefReader::readMember()
{
    DefMember member;
    member.component = m_in.name("name of the net's component");
    member.pin = m_in.name("name of the component's pin");
    if (m_in.take("+")) {
        m_in.expect("SYNTHESIZED");
    }
    m_in.expect(")");
    m_def.members.push_back(member);
}

void DefReader::readBlockage()
{
    DefBlockage blockage;
    blockage.offset = m_in.offset();
    if (m_in.take("LAYER")) {
        skipStatement();
        return;
    }
    m_in.expect("PLACEMENT");
    readBlockageOptions(blockage);
    do {
        if (m_in.take("POLYGON")) {
            readPolygon(blockage);
        } else {
            m_in.expect("RECT");
            readRect(blockage);
        }
    } while (m_in.more());
    if (m_in.finish()) {
        m_def.blockages.push_back(std::move(blockage));
    }
}

void DefReader::readBlockageOptions(DefBlockage& blockage)
{
    while (m_in.take("+")) {
        if (m_in.take("SOFT")) {
            blockage.soft = true;
        } else if (m_in.take("PARTIAL")) {
            blockage.soft = true;
            m_in.length("density");
        } else if (m_in.take("COMPONENT")) {
            m_in.name("name of the blockage's component");
        } else {
            m_in.keyword("option");
        }
    }
}

void DefReader::readRect(DefBlockage& blockage)
{
    const DefPoint a = readPoint();
    const DefPoint b = readPoint(a);
    blockage.rects.push_back(
        {std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)});
}

void DefReader::readPolygon(DefBlockage& blockage)
{
    const size_t at = m_in.offset();
    std::vector<geometry::Point> corners;
    DefPoint last = readPoint();
    corners.push_back({last.x, last.y});
    while (m_in.is("(")) {
        last = readPoint(last);
        corners.push_back({last.x, last.y});
    }
    if (corners.size() > MOST_CORNERS) {
        m_in.failAt(at, "polygon", "the polygon has more than " + std::to_string(MOST_CORNERS) + " corners",
                    "cut it into several");
    } else if (corners.size() < 4 || !geometry::isRectilinear(corners)) {
        m_in.failAt(at, "polygon", "the polygon has fewer than four corners, or a slanted edge",
                    "give one with horizontal and vertical edges");
    } else {
        const auto dbu = [](int64_t value) { return static_cast<int32_t>(value); };
        for (const geometry::Rect& rect : geometry::cutIntoRects(corners)) {
            blockage.rects.push_back({dbu(rect.xl), dbu(rect.yl), dbu(rect.xh), dbu(rect.yh)});
        }
    }
}

/// Ends a record, which is kept if it is sound and no other has its name.
template <typename Record>
void DefReader::keepIfNew(const Record& record, std::vector<Record>& records, NameTable<Record>& names,
                          const char* kind)
{
    if (!m_in.finish()) {
        return;
    }
    const uint32_t first = names.add(record.name);
    if (first == records.size()) {
        records.push_back(record);
        return;
    }
    m_in.reporter().error("name-twice", record.offset,
                          std::string(kind) + " " + inQuotes(record.name) + " stands in line " +
                              m_in.lineOf(records[first].offset) + " already, and that one stays",
                          "give each its own name");
}

/// A word that says how something is placed; NONE without taking anything if there is none.
Status DefReader::takeStatus()
{
    if (m_in.take("PLACED")) {
        return Status::PLACED;
    }
    if (m_in.take("FIXED")) {
        return Status::FIXED;
    }
    if (m_in.take("COVER")) {
        return Status::COVER;
    }
    return m_in.take("UNPLACED") ? Status::UNPLACED : Status::NONE;
}

DefPoint DefReader::readPoint()
{
    m_in.expect("(");
    const int32_t x = m_in.integer("x coordinate");
    const int32_t y = m_in.integer("y coordinate");
    m_in.expect(")");
    return {x, y};
}

/// A point in which `*` repeats a coordinate of the one before.
DefPoint DefReader::readPoint(const DefPoint& before)
{
    m_in.expect("(");
    const int32_t x = m_in.take("*") ? before.x : m_in.integer("x coordinate");
    const int32_t y = m_in.take("*") ? before.y : m_in.integer("y coordinate");
    m_in.expect(")");
    return {x, y};
}

Orient DefReader::readOrient()
{
    const size_t at = m_in.offset();
    const std::string_view word = m_in.keyword("orientation");
    const std::optional<Orient> orient = orientOf(word);
    if (!orient) {
        m_in.failAt(at, "orient", inQuotes(word) + " is no orientation",
                    "write N, S, W, E, FN, FS, FW or FE");
    }
    return orient.value_or(Orient::N);
}

bool DefReader::readIsSupply()
{
    const PinUse use = readUse(m_in);
    return use == PinUse::POWER || use == PinUse::GROUND;
}

} // namespace

Def readDef(const Source& source, Findings& findings)
{
    Def def;
    DefReader(source, def, findings).run();
    return def;
}

} // namespace kit::lefdef
