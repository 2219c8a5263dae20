// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "app/parameters.h"

namespace vireloce {

/// Puts all parameters back to what they are now when it goes out of scope. A run changes them, and the next
/// one in the process must not see that.
class ParameterScope {
public:
    /// Notes all parameters.
    ParameterScope() = default;
    /// Puts them back.
    ~ParameterScope()
    {
        SITE_WIDTH = m_siteWidth;
        SITE_HEIGHT = m_siteHeight;
        MINDPLDIST = m_minDist;
        WEIGHT_WRLENG = m_weight;
        LDP_M = m_range;
        LDP_K = m_solutions;
    }
    /// Not copied: one puts them back.
    ParameterScope(const ParameterScope&) = delete;
    ParameterScope& operator=(const ParameterScope&) = delete;

private:
    int32_t m_siteWidth = SITE_WIDTH;
    int32_t m_siteHeight = SITE_HEIGHT;
    int32_t m_minDist = MINDPLDIST;
    float m_weight = WEIGHT_WRLENG;
    int32_t m_range = LDP_M;
    int32_t m_solutions = LDP_K;
};

} // namespace vireloce
