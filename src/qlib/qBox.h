// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <utility>

/// A rectangle with its sides parallel to the axes, DBU, bounds inclusive.
struct qBox {
    int32_t xl = 0;  ///< left, at most xh
    int32_t xh = 0;  ///< right
    int32_t yl = 0;  ///< bottom, at most yh
    int32_t yh = 0;  ///< top
    int32_t id = -1; ///< free for the user

    /// The point at the origin.
    qBox() = default;

    /// The rectangle between two opposite corners, given in any order.
    qBox(int32_t x1, int32_t y1, int32_t x2, int32_t y2) : xl(x1), xh(x2), yl(y1), yh(y2) { order(); }

    /// Moves the rectangle by (-dx, -dy), DBU, with 32-bit wrap-around; sides that change order are swapped.
    void moveBack(int32_t dx, int32_t dy)
    {
        xl -= dx;
        xh -= dx;
        yl -= dy;
        yh -= dy;
        order();
    }

private:
    /// Swaps sides that are in the wrong order.
    void order()
    {
        if (xl > xh) {
            std::swap(xl, xh);
        }
        if (yl > yh) {
            std::swap(yl, yh);
        }
    }
};
