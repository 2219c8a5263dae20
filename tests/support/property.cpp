// SPDX-License-Identifier: BSD-3-Clause
#include "support/property.h"

#include <rapidcheck.h>
#include <rapidcheck/detail/Configuration.h>

#include <sstream>

namespace test {

void tryCases(const std::function<void()>& property, int times)
{
    const ::testing::TestInfo& test = *::testing::UnitTest::GetInstance()->current_test_info();
    rc::detail::TestMetadata metadata;
    metadata.id = std::string(test.test_suite_name()) + "/" + test.name();
    metadata.description = test.name();
    rc::detail::TestParams params = rc::detail::configuration().testParams;
    params.maxSuccess *= times;
    const rc::detail::TestResult result = rc::detail::checkTestable(property, metadata, params);
    if (!result.is<rc::detail::SuccessResult>()) {
        std::ostringstream text;
        rc::detail::printResultMessage(result, text);
        FAIL() << text.str();
    }
}

int64_t drawNumber(int64_t least, int64_t beyond)
{
    return *rc::gen::inRange(least, beyond);
}

size_t drawIndex(size_t count)
{
    return *rc::gen::resize(rc::kNominalSize, rc::gen::inRange<size_t>(0, count));
}

int32_t drawInt()
{
    return *rc::gen::arbitrary<int32_t>();
}

size_t drawCount()
{
    return draw<size_t>(0, rc::kNominalSize + 1);
}

std::string drawText(std::string_view characters)
{
    return *rc::gen::container<std::string>(rc::gen::elementOf(std::string(characters)));
}

std::string drawText()
{
    return *rc::gen::arbitrary<std::string>();
}

} // namespace test
