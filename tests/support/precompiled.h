// SPDX-License-Identifier: BSD-3-Clause
// What most tests include, compiled once for all of them. Each includes what it uses all the same.
#pragma once

#include "support/property.h"
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <vector>
