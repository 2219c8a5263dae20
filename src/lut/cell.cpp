// SPDX-License-Identifier: BSD-3-Clause
#include "lut/cell.h"

#include <algorithm>
#include <limits>

#include "qlib/exact.h"

Cell::Cell(int32_t cellWidth, int32_t cellHeight, int32_t widthOfSite)
    : width(cellWidth), height(cellHeight), siteWidth(vireloce::ceilSites(cellWidth, widthOfSite)),
      outlineYl(std::numeric_limits<int32_t>::max()), outlineYh(std::numeric_limits<int32_t>::min()),
      outlineXl(std::numeric_limits<int32_t>::max()), outlineXh(std::numeric_limits<int32_t>::min())
{
}

void Cell::normalize()
{
    const int32_t dx = outlineXl;
    const int32_t dy = outlineYl;
    for (qBox* box : headerBoxes) {
        box->moveBack(dx, dy);
    }
    for (const std::vector<qBox*>& shape : shapes) {
        for (qBox* box : shape) {
            box->moveBack(dx, dy);
        }
    }
    outlineYl = 0;
    outlineYh = height;
    outlineXl = 0;
    outlineXh = width;
}

int Cell::isVDDGND(int shape, int solution) const
{
    if (colors[static_cast<size_t>(solution)][static_cast<size_t>(shape)] != 0) {
        return 0;
    }
    const std::vector<qBox*>& boxes = shapes[static_cast<size_t>(shape)];
    return std::any_of(boxes.begin(), boxes.end(),
                       [this](const qBox* box) { return box->yl <= outlineYl || box->yh >= outlineYh; })
               ? 1
               : 0;
}

bool Cell::isCritical(size_t shape, size_t solution) const
{
    const int32_t mask = colors[solution][shape];
    return mask >= 0 && mask <= 2 && isVDDGND(static_cast<int>(shape), static_cast<int>(solution)) == 0;
}
