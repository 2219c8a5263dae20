// SPDX-License-Identifier: BSD-3-Clause
#include <algorithm>
#include <future>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

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

constexpr std::pair<std::string_view, Status> STATUSES[] = {{"PLACED", Status::PLACED},
                                                            {"FIXED", Status::FIXED},
                                                            {"COVER", Status::COVER},
                                                            {"UNPLACED", Status::UNPLACED}};

/// What the routing of a net begins with.
constexpr std::string_view ROUTING[] = {"ROUTED", "FIXED", "COVER", "NOSHIELD"};

/// In a file of so many bytes, nets are read beside the rest.
constexpr size_t LARGE = size_t{1} << 20U;

/// A polygon with more corners is refused: cutting it takes their square.
constexpr size_t MOST_CORNERS = 1000;

using geometry::Point; ///< DBU

/// What is skipped up to its `;`.
constexpr std::string_view DEF_STATEMENTS[] = {
    "ARRAY",       "BUSBITCHARS", "CANNOTOCCUPY", "CANPLACE",   "COMPONENTMASKSHIFT",
    "DIVIDERCHAR", "FLOORPLAN",   "GCELLGRID",    "TECHNOLOGY", "TRACKS"};

/// What is skipped up to its END.
constexpr std::string_view DEF_SECTIONS[] = {"ASSERTIONS", "CONSTRAINTS",    "DEFAULTCAP",
                                             "FILLS",      "IOTIMINGS",      "NONDEFAULTRULES",
                                             "PARTITIONS", "PINPROPERTIES",  "PROPERTYDEFINITIONS",
                                             "SCANCHAINS", "SLOTS",          "SPECIALNETS",
                                             "STYLES",     "TIMINGDISABLES", "VIAS"};

/// Reads the text of a DEF file into a design.
class DefReader : public FileReader<DefReader> {
public:
    DefReader(const Source& source, Def& def, Findings& findings)
        : FileReader(source, findings, {"DESIGN", DEF_STATEMENTS, DEF_SECTIONS}), m_def(def)
    {
    }

    /// Reads to the end of the text.
    void run()
    {
        if (m_in.source().text().size() >= LARGE) {
            m_ahead = std::async([&source = m_in.source()] { return readNetsAhead(source); });
        }
        if (!readStatements()) {
            m_in.missingEnd("file", "DESIGN", m_in.offset());
        }
        m_in.finishFile();
    }

private:
    /// A section of nets that was read before it was reached.
    struct NetsAhead {
        size_t begin = std::string_view::npos; ///< byte where it starts; npos: nothing was read
        size_t end = 0;                        ///< byte behind it
        Def def;                               ///< its nets, and nothing else
    };

    friend class FileReader<DefReader>;
    using Read = void (DefReader::*)();

    static std::span<const Rule<DefReader>> rules()
    {
        static constexpr Rule<DefReader> RULES[] = {
            {"ROW", &DefReader::readRow},
            {"COMPONENTS", &DefReader::readComponents},
            {"PINS", &DefReader::readPins},
            {"NETS", &DefReader::readNets},
            {"BLOCKAGES", &DefReader::readBlockages},
            {"REGIONS", &DefReader::readRegions},
            {"GROUPS", &DefReader::readGroups},
            {"DESIGN", &DefReader::readDesignName},
            {"UNITS", &DefReader::readUnits},
            {"DIEAREA", &DefReader::readDieArea},
            {"VERSION", &DefReader::readVersion},
            {"NAMESCASESENSITIVE", &DefReader::readNamesCase},
            {"BEGINEXT", &DefReader::skipExtension},
            {"HISTORY", &DefReader::skipHistory},
            {"&ALIAS", &DefReader::skipAlias},
        };
        return RULES;
    }

    void skipHistory() { m_in.skipText(); }

    /// What follows an unknown word may be the records of a section.
    void skipUnknown()
    {
        m_in.skipStatement();
        if (m_in.is("-")) {
            skipSection();
        }
    }

    void readDesignName()
    {
        const std::string_view name = m_in.name("design's name");
        if (m_in.finish()) {
            m_def.design = name;
        }
    }

    void readUnits()
    {
        m_in.expect("DISTANCE");
        m_in.expect("MICRONS");
        const int32_t units = m_in.count("number of database units");
        if (m_in.finish()) {
            m_def.databaseMicrons = units;
        }
    }

    void readDieArea()
    {
        Point point = readPoint();
        DefRect box{point.x, point.y, point.x, point.y};
        do {
            point = readPoint(point);
            box = geometry::around(box, {point.x, point.y, point.x, point.y});
        } while (m_in.more());
        if (m_in.finish()) {
            m_def.dieArea = box;
            m_def.hasDieArea = true;
        }
    }

    void readRow()
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

    void readComponents() { readSection(m_def.components, &DefReader::readComponent, &m_components); }
    void readPins() { readSection(m_def.pins, &DefReader::readPin, &m_pins); }

    void readNets()
    {
        if (m_ahead.valid() && m_def.nets.empty() && m_def.members.empty() && m_def.routes.empty() &&
            !m_in.allowsUnknown() && !m_in.hasOpenQuote()) {
            NetsAhead ahead = m_ahead.get();
            if (ahead.begin == m_begin) {
                m_def.nets = std::move(ahead.def.nets);
                m_def.members = std::move(ahead.def.members);
                m_def.routes = std::move(ahead.def.routes);
                m_in.moveTo(ahead.end);
                return;
            }
        }
        m_nets.addAll(); // those of a section that was read ahead
        // Pages that stay empty cost nothing, and growing would copy and clear most of them twice.
        m_def.members.reserve(m_def.members.size() + (m_in.source().text().size() - m_begin) / USUAL_MEMBER);
        readSection(m_def.nets, &DefReader::readNet, &m_nets);
    }

    /// Reads what looks like the section of nets, beside the reading of what comes before it. It is only used
    /// if it is found to be one when it is reached, and if nothing is wrong with it.
    static NetsAhead readNetsAhead(const Source& source)
    {
        NetsAhead ahead;
        const size_t line = source.text().find("\nNETS ");
        if (line == std::string_view::npos) {
            return ahead;
        }
        Findings findings;
        DefReader reader(source, ahead.def, findings);
        reader.m_in.moveTo(line + 1);
        reader.readStatement();
        ahead.end = reader.m_in.offset();
        const bool isGood = findings.empty() && !reader.m_in.hasOpenQuote();
        ahead.begin = isGood ? line + 1 : std::string_view::npos;
        return ahead;
    }

    void readBlockages() { readSection(m_def.blockages, &DefReader::readBlockage); }
    void readRegions() { readSection(m_def.regions, &DefReader::readRegion); }
    void readGroups() { readSection(m_def.groups, &DefReader::readGroup); }

    template <typename Record>
    void readSection(std::vector<Record>& records, Read read, NameTable<Record>* names = nullptr)
    {
        const std::string keyword = m_keyword.inCapitals();
        const size_t begin = m_begin;
        const int32_t count = m_in.integer("number of records");
        const bool counts = m_in.finish();
        const size_t most = m_in.source().text().size() / USUAL_RECORD;
        const size_t room = records.size() + std::min(most, static_cast<size_t>(std::max(count, 0)));
        records.reserve(room);
        if (names != nullptr) {
            names->reserve(room);
        }
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
    int64_t readRecords(Read read)
    {
        int64_t seen = 0;
        while (m_in.is("-") || (!m_in.atFileEnd() && !m_in.is("END") && !startsStatement())) {
            const size_t at = m_in.offset();
            const Word word = m_in.start();
            if (word == "-") {
                ++seen;
                (this->*read)();
            } else if (word != ";") {
                m_in.failAt(at, "syntax", inQuotes(word.text) + " stands where a record or END belongs",
                            "start each record with a \"-\" that has a blank behind it");
                m_in.finish();
            }
        }
        return seen;
    }

    void readComponent()
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
                readComponentOption(component);
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
        // Without one of them, the placement would be another.
        keepIfNew(component, m_def.components, m_components, "component", Severity::ERROR);
    }

    void readComponentOption(DefComponent& component)
    {
        if (m_in.take("REGION")) {
            component.region = readRegionOf(component.name, component.offset);
        } else if (m_in.take("HALO")) {
            DefHalo halo{.component = component.name, .widths = {}, .offset = component.offset};
            halo.soft = m_in.take("SOFT");
            halo.widths.xl = m_in.integer("halo at the left");
            halo.widths.yl = m_in.integer("halo at the bottom");
            halo.widths.xh = m_in.integer("halo at the right");
            halo.widths.yh = m_in.integer("halo at the top");
            m_def.halos.push_back(halo);
        } else {
            m_in.skipOption();
        }
    }

    /// The region of a record. One that is given by its corners gets the record's name.
    std::string_view readRegionOf(std::string_view name, size_t offset)
    {
        if (!m_in.is("(")) {
            return m_in.name("name of the region");
        }
        const Point a = readPoint();
        const Point b = readPoint(a);
        m_def.regions.push_back(
            {.name = name, .rects = {geometry::rectBetween(a.x, a.y, b.x, b.y)}, .offset = offset});
        return name;
    }

    void readPlace(DefComponent& component, Status status)
    {
        component.status = status;
        // Some files give a place to what is not placed.
        if (status == Status::UNPLACED && !m_in.is("(")) {
            return;
        }
        const Point point = readPoint();
        component.x = static_cast<int32_t>(point.x);
        component.y = static_cast<int32_t>(point.y);
        component.orient = readOrient();
    }

    void readPin()
    {
        DefPin pin;
        pin.offset = m_in.offset();
        pin.name = m_in.name("pin's name");
        pin.firstPort = m_def.ports.size();
        m_portBounds.reset();
        while (m_in.more()) {
            m_in.expect("+");
            readPinOption(pin);
        }
        keepIfNew(pin, m_def.pins, m_pins, "pin", Severity::WARNING);
    }

    void readPinOption(DefPin& pin)
    {
        if (m_in.take("NET")) {
            pin.net = m_in.name("name of the pin's net");
        } else if (m_in.take("USE")) {
            pin.supply = readIsSupply();
        } else if (const Status status = takeStatus(); status != Status::NONE && status != Status::UNPLACED) {
            const Point point = readPoint();
            addPort(pin, point, readOrient());
            if (!pin.placed) {
                pin.x = static_cast<int32_t>(point.x);
                pin.y = static_cast<int32_t>(point.y);
                pin.placed = true;
            }
        } else if (m_in.take("LAYER")) {
            readPortRect();
        } else {
            if (m_in.is("PORT")) {
                m_portBounds.reset();
            }
            m_in.skipOption();
        }
    }

    /// A rectangle of a port behind its word LAYER.
    void readPortRect()
    {
        m_in.name("name of the layer");
        for (const char* option : {"MASK", "SPACING", "DESIGNRULEWIDTH"}) {
            if (m_in.take(option)) {
                m_in.integer("value");
            }
        }
        const Point a = readPoint();
        const Point b = readPoint(a);
        const DefRect rect = geometry::rectBetween(a.x, a.y, b.x, b.y);
        m_portBounds = geometry::around(m_portBounds.value_or(rect), rect);
    }

    void addPort(DefPin& pin, const Point& place, Orient orient)
    {
        const DefRect bounds = m_portBounds.value_or(DefRect());
        const Point middle = transformed({bounds.xl + bounds.xh, bounds.yl + bounds.yh}, 0, 0, orient);
        m_def.ports.push_back({2 * place.x + middle.x, 2 * place.y + middle.y});
        ++pin.numPorts;
    }

    void readNet()
    {
        DefNet net;
        net.offset = m_in.offset();
        net.name = m_in.name("net's name");
        net.firstMember = m_def.members.size();
        for (DefMember member; true;) {
            if (m_in.takePair(member.component, member.pin)) { // by far the most
                m_def.members.push_back(member);
            } else if (m_in.take("(")) {
                readMember();
            } else {
                break;
            }
        }
        net.numMembers = m_def.members.size() - net.firstMember;
        net.firstRoute = m_def.routes.size();
        while (m_in.more()) {
            const size_t at = m_in.offset();
            m_in.expect("+");
            if (m_in.take("USE")) {
                net.supply = readIsSupply();
                continue;
            }
            const bool isRoute =
                std::ranges::any_of(ROUTING, [this](std::string_view word) { return m_in.is(word); });
            m_in.skipOption();
            if (isRoute) {
                m_def.routes.push_back({at, m_in.offset()});
            }
        }
        net.numRoutes = m_def.routes.size() - net.firstRoute;
        const size_t before = m_def.nets.size();
        if (net.name != "MUSTJOIN") {
            keepIfNew(net, m_def.nets, m_nets, "net", Severity::WARNING);
        } else if (m_in.finish()) {
            m_def.nets.push_back(net); // not a name: any number of nets have it
        }
        if (m_def.nets.size() == before) {
            m_def.members.resize(net.firstMember);
        }
    }

    void readMember()
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

    void readBlockage()
    {
        DefBlockage blockage;
        blockage.offset = m_in.offset();
        if (m_in.take("LAYER")) {
            m_in.skipStatement();
            return;
        }
        m_in.expect("PLACEMENT");
        readBlockageOptions(blockage);
        do {
            if (m_in.take("POLYGON")) {
                readPolygon(blockage);
            } else {
                m_in.expect("RECT");
                const Point a = readPoint();
                const Point b = readPoint(a);
                blockage.rects.push_back(geometry::rectBetween(a.x, a.y, b.x, b.y));
            }
        } while (m_in.more());
        if (m_in.finish()) {
            m_def.blockages.push_back(std::move(blockage));
        }
    }

    void readRegion()
    {
        DefRegion region;
        region.offset = m_in.offset();
        region.name = m_in.name("region's name");
        while (m_in.is("(")) {
            const Point a = readPoint();
            const Point b = readPoint(a);
            region.rects.push_back(geometry::rectBetween(a.x, a.y, b.x, b.y));
        }
        while (m_in.take("+")) {
            if (m_in.take("TYPE")) {
                const size_t at = m_in.offset();
                const Word type = m_in.keyword("type of the region");
                region.type = type == "FENCE"   ? RegionType::FENCE
                              : type == "GUIDE" ? RegionType::GUIDE
                                                : region.type;
                if (type != "FENCE" && type != "GUIDE") {
                    m_in.failAt(at, "region", inQuotes(type.text) + " is no type of a region",
                                "write FENCE or GUIDE");
                }
            } else {
                m_in.skipOption();
            }
        }
        if (m_in.finish()) {
            m_def.regions.push_back(std::move(region));
        }
    }

    void readGroup()
    {
        DefGroup group;
        group.offset = m_in.offset();
        group.name = m_in.name("group's name");
        while (m_in.more() && !m_in.is("+")) {
            group.patterns.push_back(m_in.name("name of the group's component"));
        }
        while (m_in.take("+")) {
            if (m_in.take("REGION")) {
                group.region = readRegionOf(group.name, group.offset);
            } else {
                m_in.skipOption();
            }
        }
        if (m_in.finish()) {
            m_def.groups.push_back(std::move(group));
        }
    }

    void readBlockageOptions(DefBlockage& blockage)
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

    void readPolygon(DefBlockage& blockage)
    {
        const size_t at = m_in.offset();
        std::vector<Point> corners{readPoint()};
        while (m_in.is("(")) {
            corners.push_back(readPoint(corners.back()));
        }
        if (corners.size() > MOST_CORNERS) {
            m_in.failAt(at, "polygon",
                        "the polygon has more than " + std::to_string(MOST_CORNERS) + " corners",
                        "cut it into several");
        } else if (corners.size() < 4 || !geometry::isRectilinear(corners)) {
            m_in.failAt(at, "polygon", "the polygon has fewer than four corners, or a slanted edge",
                        "give one with horizontal and vertical edges");
        } else {
            const std::vector<DefRect> rects = geometry::cutIntoRects(corners);
            blockage.rects.insert(blockage.rects.end(), rects.begin(), rects.end());
        }
    }

    /// Ends a record, which is kept if it is sound and no other has its name.
    template <typename Record>
    void keepIfNew(const Record& record, std::vector<Record>& records, NameTable<Record>& names,
                   const char* kind, Severity ifTwice)
    {
        if (!m_in.finish()) {
            return;
        }
        const uint32_t first = names.add(record.name);
        if (first == records.size()) {
            records.push_back(record);
        } else {
            m_in.nameTwice(ifTwice, record.offset, std::string(kind) + " " + inQuotes(record.name),
                           "line " + m_in.lineOf(records[first].offset));
        }
    }

    /// A word that says how something is placed; NONE without taking anything if there is none.
    Status takeStatus()
    {
        for (const auto& [word, status] : STATUSES) {
            if (m_in.take(word)) {
                return status;
            }
        }
        return Status::NONE;
    }

    Point readPoint()
    {
        int32_t x = 0;
        int32_t y = 0;
        if (m_in.takePoint(x, y)) {
            return {x, y};
        }
        m_in.expect("(");
        x = m_in.integer("x coordinate");
        y = m_in.integer("y coordinate");
        m_in.expect(")");
        return {x, y};
    }

    /// A point in which `*` repeats a coordinate of the one before.
    Point readPoint(const Point& before)
    {
        m_in.expect("(");
        const int64_t x = m_in.take("*") ? before.x : m_in.integer("x coordinate");
        const int64_t y = m_in.take("*") ? before.y : m_in.integer("y coordinate");
        m_in.expect(")");
        return {x, y};
    }

    Orient readOrient()
    {
        const size_t at = m_in.offset();
        const Word word = m_in.keyword("orientation");
        std::optional<Orient> orient = orientOf(word.text);
        if (!orient) {
            orient = orientOf(word.inCapitals());
        }
        if (!orient) {
            m_in.failAt(at, "orient", inQuotes(word.text) + " is no orientation",
                        "write N, S, W, E, FN, FS, FW or FE");
        }
        return orient.value_or(Orient::N);
    }

    bool readIsSupply()
    {
        const PinUse use = readUse(m_in);
        return use == PinUse::POWER || use == PinUse::GROUND;
    }

    Def& m_def;
    NameTable<DefComponent> m_components{m_def.components};
    NameTable<DefPin> m_pins{m_def.pins};
    NameTable<DefNet> m_nets{m_def.nets};
    std::optional<DefRect> m_portBounds; ///< around the rectangles of the port that is read
    std::future<NetsAhead> m_ahead;      ///< last: it may be at work until it is destroyed
};

} // namespace

Def readDef(const Source& source, Findings& findings)
{
    Def def;
    DefReader(source, def, findings).run();
    return def;
}

} // namespace kit::lefdef
