// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string>

/// A fixed block that keeps cells off the rows it covers.
struct Macro {
    int32_t x = 0;      ///< left edge, DBU
    int32_t y = 0;      ///< bottom edge, DBU
    int32_t width = 0;  ///< DBU
    int32_t height = 0; ///< DBU
    std::string name;
};
