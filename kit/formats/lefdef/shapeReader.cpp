// SPDX-License-Identifier: BSD-3-Clause
#include "kit/formats/lefdef/shapeReader.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include "kit/base/text/text.h"

namespace kit::lefdef {

namespace {

/// ITERATE makes no more corners of a file: a few words of it could else fill the memory.
constexpr int64_t MOST_COPIED = 1'000'000;

/// The copies of a shape stand no further apart, picometres.
constexpr Length LONGEST_REACH = 1'000'000'000 * MICRON;

constexpr int32_t MASKS = 3;

/// Where one of these stands, the END before it is missing.
constexpr std::array<std::string_view, 4> OUTER_WORDS = {"PIN", "OBS", "MACRO", "PORT"};

} // namespace

void ShapeReader::read(std::vector<LefShape>& shapes, const char* kind)
{
    const size_t begin = m_in.offset();
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

void ShapeReader::readStatement(std::vector<LefShape>& shapes)
{
    const size_t begin = m_in.offset();
    const std::string_view word = m_in.start();
    if (word == "LAYER") {
        readLayer();
    } else if (word == "RECT" || word == "POLYGON") {
        readShape(shapes, word == "POLYGON", begin);
    } else if (word == "PATH") {
        readPath(begin);
    } else if (word == "VIA") {
        readVia(begin);
    } else if (word == "WIDTH" || word == "CLASS" || word == "PROPERTY") {
        m_in.skipStatement();
    } else if (word != ";") {
        m_in.failAt(begin, "syntax", inQuotes(word) + " stands where a shape or END belongs",
                    "correct the statement");
        m_in.finish();
    }
}

void ShapeReader::readLayer()
{
    m_anyLayer = true;
    m_onLayer = m_in.name("name of the layer") == m_layer;
    m_in.take("EXCEPTPGNET");
    if (m_in.take("SPACING") || m_in.take("DESIGNRULEWIDTH")) {
        m_in.length("distance");
    }
    m_in.finish();
}

void ShapeReader::readShape(std::vector<LefShape>& shapes, bool polygon, size_t begin)
{
    if (m_anyLayer && !m_onLayer) {
        m_in.skipStatement();
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
    }
}

void ShapeReader::readPath(size_t begin)
{
    if (m_onLayer) {
        m_in.reporter().warning("not-read", begin, "this path on layer " + inQuotes(m_layer) + " is not read",
                                "write it as a RECT or POLYGON");
    }
    m_in.skipStatement();
}

void ShapeReader::readVia(size_t begin)
{
    readMask();
    m_in.take("ITERATE");
    readMask();
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
ShapeReader::Grid ShapeReader::readGrid(size_t corners)
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

void ShapeReader::keepCopies(const LefShape& shape, const Grid& grid, std::vector<LefShape>& shapes)
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

std::vector<LefPoint> ShapeReader::readRect()
{
    const LefPoint a = readPoint();
    const LefPoint b = readPoint();
    return {{std::min(a.x, b.x), std::min(a.y, b.y)}, {std::max(a.x, b.x), std::max(a.y, b.y)}};
}

std::vector<LefPoint> ShapeReader::readPolygon()
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

int32_t ShapeReader::readMask()
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

LefPoint ShapeReader::readPoint()
{
    const bool inParentheses = m_in.take("(");
    const Length x = m_in.length("x coordinate");
    const Length y = m_in.length("y coordinate");
    if (inParentheses) {
        m_in.expect(")");
    }
    return {x, y};
}

} // namespace kit::lefdef
