// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>

#include "legalizer/segLegalizer.h"

namespace test {

/// Chooses the road of the segment solver while it lives.
class RoadGuard {
public:
    explicit RoadGuard(bool graphs) { SegLegalizer::s_useGraphs = graphs; }
    ~RoadGuard() { SegLegalizer::s_useGraphs = m_before; }
    RoadGuard(const RoadGuard&) = delete;
    RoadGuard& operator=(const RoadGuard&) = delete;

private:
    bool m_before = SegLegalizer::s_useGraphs;
};

/// Sets the size from which a graph ends the run, while it lives.
class LimitGuard {
public:
    explicit LimitGuard(int64_t limit) { SegLegalizer::s_maxGraphSize = limit; }
    ~LimitGuard() { SegLegalizer::s_maxGraphSize = m_before; }
    LimitGuard(const LimitGuard&) = delete;
    LimitGuard& operator=(const LimitGuard&) = delete;

private:
    int64_t m_before = SegLegalizer::s_maxGraphSize;
};

} // namespace test
