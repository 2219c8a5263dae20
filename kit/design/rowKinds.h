// SPDX-License-Identifier: BSD-3-Clause
// Solutions for rows that meet: masks 1 and 2 change places in every second row, counted upwards. Nothing
// changes inside a row by that. Metal near the next row that is on mask 1 before is on mask 2 there, and so
// no metal of the rows beside it is too close.
#pragma once

#include <cstdint>
#include <vector>

#include "kit/formats/placer/design.h"

namespace kit::design {

/// Exchanges masks 1 and 2.
void exchangeMasks(std::vector<int32_t>& masks);

/// Whether the second half of a cell's solutions are those of the first half for the other rows.
bool isPaired(const placer::Cell& cell);

/// Which rows are every second one.
class RowKinds {
public:
    explicit RowKinds(const std::vector<placer::Row>& rows);

    /// Whether what stands at a height, DBU, is in one of the other rows: the second from below, the fourth
    /// and so on, rows side by side counted once.
    bool isOther(int32_t y) const;

private:
    std::vector<int32_t> m_bottoms; ///< bottom edges, DBU, ascending
};

} // namespace kit::design
