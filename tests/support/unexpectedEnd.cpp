// SPDX-License-Identifier: BSD-3-Clause
// Part of every test program: a run that ends where no test expects it would end the program with status 0,
// and pass for a test that went well.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

#include "qlib/report.h"

namespace {

class UnexpectedEnd : public testing::Environment {
    void SetUp() override
    {
        vireloce::setEndHandler([] {
            std::fputs("a run ended outside of a test that expects it\n", stderr);
            std::abort();
        });
    }
    void TearDown() override { vireloce::setEndHandler(nullptr); }
};

[[maybe_unused]] const testing::Environment* const UNEXPECTED_END =
    testing::AddGlobalTestEnvironment(new UnexpectedEnd);

} // namespace
