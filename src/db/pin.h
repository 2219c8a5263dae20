// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string>

/// A fixed terminal, taken as a point.
struct Pin {
    std::string name;
    int32_t x = 0; ///< DBU
    int32_t y = 0; ///< DBU
};
