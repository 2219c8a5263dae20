// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <map>
#include <string>

#include "db/component.h"
#include "support/restorer.h"

namespace test {

/// Restores the orientations known to the process.
class OrientMapGuard : Restorer<std::map<std::string, Component::Orient_e>> {
public:
    OrientMapGuard() : Restorer(Component::s_orientMap) {}
};

} // namespace test
