// SPDX-License-Identifier: BSD-3-Clause
#pragma once

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

} // namespace test
