// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/sweep/labels.h"

#include <algorithm>

namespace kit::sweep {

std::optional<Rect> Labels::place(double x, double y, double width, double height, double gap)
{
    const double left = x - gap - width;
    const double right = x + gap;
    const double above = y - gap - height;
    const double below = y + gap;
    const double middleX = x - width / 2;
    const double middleY = y - height / 2;
    const Rect places[] = {{right, above, width, height},   {right, middleY, width, height},
                           {right, below, width, height},   {middleX, above, width, height},
                           {middleX, below, width, height}, {left, below, width, height},
                           {left, middleY, width, height},  {left, above, width, height}};
    for (const Rect& place : places) {
        const bool free = std::none_of(m_taken.begin(), m_taken.end(),
                                       [&](const Rect& taken) { return taken.overlaps(place); });
        if (free && m_frame.contains(place)) {
            m_taken.push_back(place);
            return place;
        }
    }
    return std::nullopt;
}

} // namespace kit::sweep
