// SPDX-License-Identifier: BSD-3-Clause
// Real designs that are kept beside the project, as their licences differ from its own.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace test {

/// Path of one of their files.
inline std::string sharedDesign(const std::string& name)
{
    return std::string(VIRELOCE_DESIGNS) + "/" + name;
}

/// A test that is skipped where they are not.
class WithSharedDesigns : public testing::Test {
protected:
    void SetUp() override
    {
        if (!std::filesystem::exists(VIRELOCE_DESIGNS)) {
            GTEST_SKIP() << "skipped: " << VIRELOCE_DESIGNS << " is not there";
        }
    }
};

} // namespace test
