// SPDX-License-Identifier: BSD-3-Clause
// Part of every test program: a run that ends where no test expects it would end the program with status 0,
// and pass for a test that went well.
#include <gtest/gtest.h>

#include <iostream>
#include <optional>

#include "qlib/report.h"

namespace {

class UnexpectedEnd : public testing::Environment {
    void SetUp() override { m_scope.emplace(&std::cout); }
    void TearDown() override { m_scope.reset(); }

    std::optional<vireloce::ReportScope> m_scope; ///< throws what ends a run
};

[[maybe_unused]] const testing::Environment* const UNEXPECTED_END =
    testing::AddGlobalTestEnvironment(new UnexpectedEnd);

} // namespace
