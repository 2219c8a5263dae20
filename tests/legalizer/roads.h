// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>

#include "legalizer/segLegalizer.h"
#include "support/restorer.h"

namespace test {

/// Chooses the road of the segment solver while it lives.
class RoadGuard : Restorer<bool> {
public:
    explicit RoadGuard(bool graphs) : Restorer(SegLegalizer::s_useGraphs, graphs) {}
};

/// Sets the size from which a graph ends the run, while it lives.
class LimitGuard : Restorer<int64_t> {
public:
    explicit LimitGuard(int64_t limit) : Restorer(SegLegalizer::s_maxGraphSize, limit) {}
};

} // namespace test
