// SPDX-License-Identifier: BSD-3-Clause
#include "kit/color/colorFile.h"

namespace kit::color {

namespace {

void writeRects(OutputFile& file, const std::vector<input::Rect>& rects)
{
    file << rects.size() << "\n";
    for (const input::Rect& rect : rects) {
        file << rect.xl << " " << rect.yl << " " << rect.xh << " " << rect.yh << "\n";
    }
}

} // namespace

void writeColorFile(OutputFile& file, const input::Cell& cell)
{
    file << cell.width << " " << cell.height << "\n";
    writeRects(file, cell.headerBoxes);
    file << cell.shapes.size() << "\n";
    for (const input::Shape& shape : cell.shapes) {
        writeRects(file, shape.rects);
    }
    file << cell.solutions.size() << "\n";
    for (const input::Solution& solution : cell.solutions) {
        file << solution.stitches;
        for (const int32_t mask : solution.masks) {
            file << " " << mask;
        }
        file << "\n";
    }
}

} // namespace kit::color
