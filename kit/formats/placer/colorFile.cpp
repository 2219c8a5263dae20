// SPDX-License-Identifier: BSD-3-Clause
#include "kit/formats/placer/colorFile.h"

namespace kit::placer {

namespace {

void writeRects(OutputFile& file, const std::vector<Rect>& rects)
{
    file << rects.size() << "\n";
    for (const Rect& rect : rects) {
        file << rect.xl << " " << rect.yl << " " << rect.xh << " " << rect.yh << "\n";
    }
}

} // namespace

void writeColorFile(OutputFile& file, const Cell& cell)
{
    file << cell.width << " " << cell.height << "\n";
    writeRects(file, cell.headerBoxes);
    file << cell.shapes.size() << "\n";
    for (const Shape& shape : cell.shapes) {
        writeRects(file, shape.rects);
    }
    file << cell.solutions.size() << "\n";
    for (const Solution& solution : cell.solutions) {
        file << solution.stitches;
        for (const int32_t mask : solution.masks) {
            file << " " << mask;
        }
        file << "\n";
    }
}

} // namespace kit::placer
