// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <map>
#include <string>

#include "db/component.h"

namespace test {

/// Restores the orientations known to the process.
class OrientMapGuard {
public:
    OrientMapGuard() = default;
    ~OrientMapGuard() { Component::s_orientMap = m_before; }
    OrientMapGuard(const OrientMapGuard&) = delete;
    OrientMapGuard& operator=(const OrientMapGuard&) = delete;

private:
    std::map<std::string, Component::Orient_e> m_before = Component::s_orientMap;
};

} // namespace test
