// SPDX-License-Identifier: BSD-3-Clause
#include "kit/formats/lefdef/macroReader.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "kit/base/text/decimal.h"
#include "kit/base/text/text.h"
#include "kit/formats/lefdef/statements.h"

namespace kit::lefdef {

namespace {

/// ITERATE makes no more corners of a file: a few words of it could else fill the memory.
constexpr int64_t MOST_COPIED = 1'000'000;

/// The copies of a shape stand no further apart, picometres.
constexpr Length LONGEST_REACH = 1'000'000'000 * MICRON;

constexpr int32_t MASKS = 3;
constexpr int32_t MICRON_DIGITS = 6; // of micrometres, so that the unit is a picometre

/// What stands between the numbers of a shape.
constexpr std::array<std::string_view, 5> BETWEEN_NUMBERS = {"(", ")", "DO", "BY", "STEP"};

/// Where one of these stands, the END before it is missing.
constexpr std::array<std::string_view, 4> OUTER_WORDS = {"PIN", "OBS", "MACRO", "PORT"};

/// Reads the shapes of ports and obstructions.
class ShapeReader {
public:
    /// @param in     at the file
    /// @param layer  whose shapes are kept; must outlive the reader, as must the others
    /// @param vias   known so far, by name: whether they have metal of that layer
    ShapeReader(Parser& in, const std::string& layer, const Vias& vias)
        : m_in(in), m_layer(layer), m_vias(vias)
    {
    }

    /// Reads statements up to END, which is taken, and appends the shapes of the wanted layer.
    ///
    /// @param layers  out: names of the layers of its shapes, the wanted one too, are appended to it
    /// @param kind    what it is, for the texts: "port"
    /// @param bounds  grows around the shapes of all layers; nullptr if nobody asks
    void read(std::vector<LefShape>& shapes, std::vector<std::string>& layers, const char* kind,
              std::optional<geometry::Rect>* bounds = nullptr)
    {
        m_bounds = bounds;
        const size_t begin = m_in.offset();
        m_layers = &layers;
        m_anyLayer = false;
        m_onLayer = false;
        while (!m_in.take("END")) {
            const bool outer =
                std::ranges::any_of(OUTER_WORDS, [&](std::string_view word) { return m_in.is(word); });
            if (outer || m_in.atFileEnd()) {
                m_in.missingEnd(kind, "", begin);
                return;
            }
            readStatement(shapes);
        }
    }

private:
    /// How a shape is repeated.
    struct Grid {
        int32_t columns = 1;
        int32_t rows = 1;
        Length stepX = 0;
        Length stepY = 0;
    };

    void readStatement(std::vector<LefShape>& shapes)
    {
        const size_t begin = m_in.offset();
        const Word word = m_in.start();
        if (word == "LAYER") {
            readLayer();
        } else if (word == "RECT" || word == "POLYGON") {
            readShape(shapes, word == "POLYGON", begin);
        } else if (word == "PATH") {
            readPath(begin);
        } else if (word == "VIA") {
            readVia(begin);
        } else if (word == "WIDTH" || word == "CLASS" || word == "PROPERTY" ||
                   (m_in.allowsUnknown() && word != ";")) {
            m_in.skipStatement();
        } else if (word != ";") {
            m_in.failAt(begin, "syntax", inQuotes(word.text) + " stands where a shape or END belongs",
                        "correct the statement");
            m_in.finish();
        }
    }

    void readLayer()
    {
        m_anyLayer = true;
        m_layerNow = m_in.name("name of the layer");
        m_onLayer = m_layerNow == m_layer;
        m_layerIsTold = false;
        m_in.take("EXCEPTPGNET");
        if (m_in.take("SPACING") || m_in.take("DESIGNRULEWIDTH")) {
            m_in.length("distance");
        }
        m_in.finish();
    }

    void readShape(std::vector<LefShape>& shapes, bool polygon, size_t begin)
    {
        if (m_anyLayer && !m_layerIsTold) {
            m_layerIsTold = true;
            if (std::ranges::find(*m_layers, m_layerNow) == m_layers->end()) {
                m_layers->emplace_back(m_layerNow);
            }
        }
        if (m_anyLayer && !m_onLayer) {
            passOther(polygon);
            return;
        }
        if (!m_anyLayer) {
            m_in.failAt(begin, "no-layer", "a shape stands before the first LAYER", "name its layer first");
        }
        LefShape shape;
        shape.polygon = polygon;
        shape.mask = readMask();
        shape.offset = begin;
        const bool iterate = m_in.take("ITERATE");
        shape.points = polygon ? readPolygon() : readRect();
        const Grid grid = iterate ? readGrid(shape.points.size()) : Grid();
        if (m_in.finish()) {
            keepCopies(shape, grid, shapes);
            growBounds(shape.points, grid);
        }
    }

    /// Passes over a shape of another layer, which need not be sound, and takes it into the bounds if it is.
    void passOther(bool polygon)
    {
        constexpr size_t GRID = 4; // numbers of DO ... BY ... STEP ... ...
        std::vector<Length> numbers;
        bool iterate = false;
        bool sound = m_bounds != nullptr;
        while (m_in.more() && sound) {
            const Word word = m_in.start();
            if (word == "MASK") {
                m_in.start();
            } else if (word == "ITERATE") {
                iterate = true;
            } else if (std::ranges::none_of(BETWEEN_NUMBERS,
                                            [&](std::string_view other) { return word == other; })) {
                const Decimal number = parseDecimal(word.text, MICRON_DIGITS, LONGEST_REACH);
                numbers.push_back(number.value);
                sound = number.kind == Decimal::Kind::GOOD;
            }
        }
        m_in.skipStatement();
        const size_t least = (polygon ? 6 : 4) + (iterate ? GRID : 0);
        if (!sound || numbers.size() < least || numbers.size() % 2 != 0) {
            return;
        }
        Grid grid;
        if (iterate) {
            const std::span<const Length> last = std::span(numbers).last(GRID);
            grid = {.columns = static_cast<int32_t>(last[0] / MICRON),
                    .rows = static_cast<int32_t>(last[1] / MICRON),
                    .stepX = last[2],
                    .stepY = last[3]};
            numbers.resize(numbers.size() - GRID);
        }
        std::vector<LefPoint> points;
        for (size_t i = 0; i < numbers.size(); i += 2) {
            points.push_back({numbers[i], numbers[i + 1]});
        }
        growBounds(points, grid);
    }

    /// Takes the corners of a shape and of the last of its copies into the bounds, if there are any.
    void growBounds(const std::vector<LefPoint>& points, const Grid& grid)
    {
        const bool reaches = grid.columns > 0 && grid.rows > 0 &&
                             std::abs(grid.stepX) <= LONGEST_REACH / grid.columns &&
                             std::abs(grid.stepY) <= LONGEST_REACH / grid.rows;
        if (m_bounds == nullptr || !reaches) {
            return;
        }
        const LefPoint last{(grid.columns - 1) * grid.stepX, (grid.rows - 1) * grid.stepY};
        for (const auto& [x, y] : points) {
            const geometry::Rect corner = geometry::rectBetween(x, y, x + last.x, y + last.y);
            *m_bounds = geometry::around(m_bounds->value_or(corner), corner);
        }
    }

    void readPath(size_t begin)
    {
        if (m_onLayer) {
            m_in.reporter().warning("not-read", begin,
                                    "this path on layer " + inQuotes(m_layer) + " is not read",
                                    "write it as a RECT or POLYGON");
        }
        m_in.skipStatement();
    }

    void readVia(size_t begin)
    {
        skipViaMask();
        m_in.take("ITERATE");
        skipViaMask();
        readPoint();
        const std::string_view name = m_in.name("name of the via");
        m_in.skipWords(); // DO and STEP
        if (!m_in.finish()) {
            return;
        }
        const auto via = m_vias.find(name);
        if (via == m_vias.end() || via->second) {
            m_in.reporter().warning(
                "not-read", begin,
                "this via, " + inQuotes(name) + ", " +
                    (via == m_vias.end() ? "which is defined in no file before, may have" : "has") +
                    " metal of layer " + inQuotes(m_layer) + ", which is not read",
                "write its metal of that layer as a RECT");
        }
    }

    /// `DO columns BY rows STEP x y`
    Grid readGrid(size_t corners)
    {
        Grid grid;
        m_in.expect("DO");
        const size_t at = m_in.offset();
        grid.columns = m_in.count("number of columns");
        m_in.expect("BY");
        grid.rows = m_in.count("number of rows");
        m_in.expect("STEP");
        grid.stepX = m_in.length("step in x");
        grid.stepY = m_in.length("step in y");
        const int64_t copies = int64_t{grid.columns} * grid.rows;
        const int64_t most = (MOST_COPIED - m_copied) / static_cast<int64_t>(std::max<size_t>(corners, 1));
        if (copies > most) {
            m_in.failAt(at, "iterate",
                        "all copies of shapes in the file have more than " + std::to_string(MOST_COPIED) +
                            " corners",
                        "copy less");
        } else if (std::abs(grid.stepX) > LONGEST_REACH / grid.columns ||
                   std::abs(grid.stepY) > LONGEST_REACH / grid.rows) {
            m_in.failAt(at, "range", "the copies reach beyond 1000000000 micrometres", "correct the steps");
        }
        return grid;
    }

    void keepCopies(const LefShape& shape, const Grid& grid, std::vector<LefShape>& shapes)
    {
        for (int32_t row = 0; row < grid.rows; ++row) {
            for (int32_t column = 0; column < grid.columns; ++column) {
                shapes.push_back(shape);
                for (LefPoint& point : shapes.back().points) {
                    point.x += column * grid.stepX;
                    point.y += row * grid.stepY;
                }
            }
        }
        const int64_t copies = int64_t{grid.columns} * grid.rows - 1;
        m_copied += copies * static_cast<int64_t>(shape.points.size());
    }

    std::vector<LefPoint> readRect()
    {
        const LefPoint a = readPoint();
        const LefPoint b = readPoint();
        return {{std::min(a.x, b.x), std::min(a.y, b.y)}, {std::max(a.x, b.x), std::max(a.y, b.y)}};
    }

    std::vector<LefPoint> readPolygon()
    {
        const size_t at = m_in.offset();
        std::vector<LefPoint> corners;
        while (m_in.more() && !m_in.is("DO")) {
            corners.push_back(readPoint());
        }
        if (corners.size() < 3) {
            m_in.failAt(at, "polygon", "the polygon has fewer than three corners", "give three or more");
        }
        return corners;
    }

    int32_t readMask()
    {
        if (!m_in.take("MASK")) {
            return 0;
        }
        const size_t at = m_in.offset();
        const int32_t mask = m_in.count("mask");
        if (mask > MASKS) {
            m_in.failAt(at, "mask", "the mask is " + std::to_string(mask), "the masks are 1, 2 and 3");
        }
        return mask;
    }

    /// A digit for each layer of the via.
    void skipViaMask()
    {
        if (m_in.take("MASK")) {
            m_in.integer("masks");
        }
    }

    LefPoint readPoint()
    {
        const bool inParentheses = m_in.take("(");
        const Length x = m_in.length("x coordinate");
        const Length y = m_in.length("y coordinate");
        if (inParentheses) {
            m_in.expect(")");
        }
        return {x, y};
    }

    Parser& m_in;
    const std::string& m_layer;
    const Vias& m_vias;
    bool m_anyLayer = false;                           ///< a layer has been named
    std::string_view m_layerNow;                       ///< the last of them
    bool m_onLayer = false;                            ///< it is wanted
    bool m_layerIsTold = false;                        ///< it is among the layers that read() tells
    std::vector<std::string>* m_layers = nullptr;      ///< not owned
    std::optional<geometry::Rect>* m_bounds = nullptr; ///< of the pin, if it is one
    int64_t m_copied = 0;                              ///< corners that ITERATE has made in this file
};

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
        m_macro.origin = m_origin;
        moveShapes(m_macro.obstructions);
        for (LefPin& pin : m_macro.pins) {
            moveShapes(pin.shapes);
            if (pin.bounds) {
                pin.bounds = pin.bounds->shifted(m_origin.x, m_origin.y);
            }
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
        const Word word = m_in.start();
        if (const auto* const rule = findRule(rules(), [&](std::string_view each) { return word == each; })) {
            (this->*rule->read)();
        } else if (word.text == m_macro.name) {
            m_in.missingEnd("last part of the macro", m_macro.name, m_macro.offset);
            return false;
        } else if (word != ";") {
            m_in.skipStatement();
        }
        return true;
    }

    void readObstructions() { m_shapes.read(m_macro.obstructions, m_macro.otherLayers, "obstruction"); }
    void skipTiming() { m_in.skipToEnd("section", "TIMING", m_macro.name); }
    void skipExtension() { m_in.skipPast("extension", "ENDEXT"); }
    void readSize() { m_in.size(m_macro.name, m_macro.width, m_macro.height); }

    void readClass()
    {
        std::string words;
        while (m_in.more()) {
            words += (words.empty() ? "" : " ") + m_in.keyword("class").inCapitals();
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
            const Word word = m_in.keyword("symmetry");
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
            m_in.nameTwice(Severity::WARNING, pin.offset,
                           "pin " + inQuotes(pin.name) + " of " + inQuotes(m_macro.name),
                           "line " + m_in.lineOf(same->second));
        }
    }

    /// @return false if the pin's end was taken for that of its last port
    bool readPinStatement(LefPin& pin)
    {
        const Word word = m_in.start();
        if (word == "PORT") {
            m_shapes.read(pin.shapes, m_macro.pinLayers, "port", &pin.bounds);
        } else if (word == "USE") {
            const PinUse use = readUse(m_in);
            if (m_in.finish()) {
                pin.use = use;
            }
        } else if (word.text == pin.name) {
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

} // namespace

ReadMacro macroReader(Parser& in, const std::string& layer, const Vias& vias)
{
    return [reader = MacroReader(in, layer, vias)](size_t begin) mutable { return reader.read(begin); };
}

} // namespace kit::lefdef
