// SPDX-License-Identifier: BSD-3-Clause
// The cell list and the colour files.
#include <algorithm>
#include <memory>

#include "app/parameters.h"
#include "lut/lutable.h"
#include "qlib/report.h"
#include "qlib/wordReader.h"

namespace {

/// A colour file: integers between white space, each of which must be there.
class ColorFile {
public:
    /// @param boxes  keeps the rectangles that are read
    ColorFile(vireloce::WordReader& in, std::deque<qBox>& boxes) : m_in(in), m_boxes(boxes) {}

    /// The next integer. Ends the run if there is none.
    ///
    /// @param what  what it stands for, for the message
    int32_t number(const char* what)
    {
        if (m_in.atEnd()) {
            fail(std::string("the file ends before the ") + what);
        }
        int32_t value = 0;
        if (!m_in.readInt(value)) {
            fail(std::string("the ") + what + " is not a 32-bit integer");
        }
        return value;
    }

    /// The next integer as a count of records. Ends the run if it is negative, or larger than the file can
    /// hold: a number and what follows it take two bytes.
    ///
    /// @param what     what it counts, for the message
    /// @param numbers  least number of integers in a record, at least 1
    size_t count(const char* what, size_t numbers)
    {
        const int32_t value = number(what);
        if (value < 0 || value > (m_in.bytesLeft() + 1) / 2 / static_cast<int64_t>(numbers)) {
            fail(std::string("the ") + what + " is " + std::to_string(value) +
                 ", which the file cannot hold");
        }
        return static_cast<size_t>(value);
    }

    /// The next four integers as a rectangle.
    qBox* box()
    {
        const int32_t x1 = number("rectangle");
        const int32_t y1 = number("rectangle");
        const int32_t x2 = number("rectangle");
        const int32_t y2 = number("rectangle");
        return &m_boxes.emplace_back(x1, y1, x2, y2);
    }

    [[noreturn]] void fail(const std::string& what) { vireloce::endRunAt(m_in.path(), m_in.line(), what); }

private:
    vireloce::WordReader& m_in;
    std::deque<qBox>& m_boxes;
};

/// Reads a list of rectangles behind its count.
std::vector<qBox*> readBoxes(ColorFile& file, const char* what)
{
    std::vector<qBox*> boxes(file.count(what, 4));
    std::generate(boxes.begin(), boxes.end(), [&file] { return file.box(); });
    return boxes;
}

/// Reads the size of a cell and makes the cell.
///
/// @param siteWidth  DBU
std::unique_ptr<Cell> readSize(ColorFile& file, int32_t siteWidth)
{
    const int32_t width = file.number("cell width");
    const int32_t height = file.number("cell height");
    if (siteWidth == 0) {
        vireloce::endRun("ERROR| the site width is 0: -siteW must be positive");
    }
    auto cell = std::make_unique<Cell>(width, height, siteWidth);
    if (width < 0 || cell->siteWidth < 0) {
        file.fail("the cell is " + std::to_string(width) + " wide, " + std::to_string(cell->siteWidth) +
                  " sites of " + std::to_string(siteWidth));
    }
    return cell;
}

void readShapes(ColorFile& file, Cell& cell)
{
    cell.shapes.resize(file.count("number of shapes", 1));
    for (std::vector<qBox*>& shape : cell.shapes) {
        shape = readBoxes(file, "number of rectangles");
        for (const qBox* box : shape) {
            cell.outlineXl = std::min(cell.outlineXl, box->xl);
            cell.outlineXh = std::max(cell.outlineXh, box->xh);
            cell.outlineYl = std::min(cell.outlineYl, box->yl);
            cell.outlineYh = std::max(cell.outlineYh, box->yh);
        }
    }
}

void readSolutions(ColorFile& file, Cell& cell)
{
    cell.colors.resize(file.count("number of solutions", 1 + cell.shapes.size()));
    for (std::vector<int32_t>& masks : cell.colors) {
        cell.stitchNums.push_back(file.number("stitch count"));
        masks.resize(cell.shapes.size());
        std::generate(masks.begin(), masks.end(), [&file] { return file.number("mask"); });
    }
}

} // namespace

void LUTable::readCells(std::string path)
{
    vireloce::WordReader in;
    if (!in.open(path)) {
        vireloce::report() << "ERROR| cannot open file " << path << '\n';
    }
    int32_t count = 0;
    in.readInt(count);
    for (int32_t i = 0; i < count; ++i) {
        const std::string name(in.readWord());
        if (in.failed()) {
            vireloce::endRunAt(path, in.line(),
                               "the list ends before cell " + std::to_string(i + 1) + " of " +
                                   std::to_string(count));
        }
        readCell(name);
    }
    vireloce::report() << "STAT | cell type #              = " << cells.size() << '\n';
}

void LUTable::readCell(std::string name)
{
    const std::string path = cellPath + "/" + name + ".color";
    vireloce::WordReader in;
    if (!in.open(path)) {
        vireloce::endRun("ERROR| cannot open file " + path);
    }
    ColorFile file(in, m_boxes);
    std::unique_ptr<Cell> cell = readSize(file, SITE_WIDTH);
    cell->id = static_cast<int32_t>(cells.size());
    cell->name = name;
    cell->headerBoxes = readBoxes(file, "number of header boxes");
    readShapes(file, *cell);
    readSolutions(file, *cell);
    cell->normalize();
    cellIndex[name] = cell->id;
    cells.push_back(cell.release());
}
