// SPDX-License-Identifier: BSD-3-Clause
#include "db/component.h"

std::map<std::string, Component::Orient_e> Component::s_orientMap;
