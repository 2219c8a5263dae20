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
    ~ParameterScope() { setParameters(m_before); }
    /// Not copied: one puts them back.
    ParameterScope(const ParameterScope&) = delete;
    ParameterScope& operator=(const ParameterScope&) = delete;

private:
    Parameters m_before = parametersNow();
};

} // namespace vireloce
