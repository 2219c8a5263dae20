// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>

namespace test {

/// Expects the members of a record to stand in memory in the order listed.
inline void expectInOrder(std::initializer_list<const void*> members)
{
    uintptr_t before = 0;
    int position = 0;
    for (const void* member : members) {
        const auto at = reinterpret_cast<uintptr_t>(member);
        EXPECT_LT(before, at) << "member " << position;
        before = at;
        ++position;
    }
}

} // namespace test
