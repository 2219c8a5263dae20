// SPDX-License-Identifier: BSD-3-Clause
#include "support/property.h"

#include <rapidcheck/gtest.h>

namespace test {

void tryCases(const std::function<void()>& property)
{
    rc::detail::checkGTest(property);
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
