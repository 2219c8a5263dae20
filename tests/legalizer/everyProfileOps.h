// SPDX-License-Identifier: BSD-3-Clause
// Tests that run with every instruction set of this machine.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <string>

#include "legalizer/profileOps.h"

namespace test {

using OpsTest = testing::TestWithParam<const vireloce::ProfileOps*>;

inline auto everyOps()
{
    return testing::ValuesIn(vireloce::profileOpsHere().begin(), vireloce::profileOpsHere().end());
}

/// Name of an instruction set as a test may be called.
inline std::string nameOfOps(const testing::TestParamInfo<const vireloce::ProfileOps*>& row)
{
    std::string name(row.param->name);
    std::erase_if(name, [](unsigned char c) { return std::isalnum(c) == 0; });
    return name;
}

} // namespace test
