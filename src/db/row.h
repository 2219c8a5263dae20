// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct Component;
struct Segment;

/// A placement row.
struct Row {
    std::vector<Component*> components; ///< by Design::initCompOnRows() only, sorted by siteX, not owned
    std::vector<Segment*> segments;     ///< left to right, not owned
    std::string name;
    std::string siteName;
    int32_t x = 0;        ///< left edge of the first site, DBU
    int32_t y = 0;        ///< bottom edge, DBU
    int32_t numSites = 0; ///< sites
    int32_t step = 0;     ///< distance of two sites, DBU
    std::string orient;   ///< orientation as in the placement file
};
