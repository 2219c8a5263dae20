// SPDX-License-Identifier: BSD-3-Clause
// Properties that hold for all cases, tried on random ones by RapidCheck. It is compiled here once: its
// templates would cost each source seconds. A property draws numbers one by one; what fails is told with the
// least numbers that do.
#pragma once

#include <gtest/gtest.h>
#include <rapidcheck/Assertions.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>

/// A test whose body is tried with random cases. It draws what it needs, and asserts with RC_ASSERT.
#define PROPERTY(suite, name) PROPERTY_TIMES(suite, name, 1)

/// The same with more cases, where they are tiny.
///
/// @param times  as many times as of others
#define PROPERTY_TIMES(suite, name, times)                                                                   \
    static void property_##suite##_##name();                                                                 \
    TEST(suite, name)                                                                                        \
    {                                                                                                        \
        test::tryCases(property_##suite##_##name, times);                                                    \
    }                                                                                                        \
    static void property_##suite##_##name()

namespace test {

/// Tries a property with random cases; the running test fails with the least case that fails. RC_PARAMS in
/// the environment has RapidCheck's parameters.
///
/// @param times  what the number of cases is multiplied by
void tryCases(const std::function<void()>& property, int times = 1);

/// A number from `least`, and below `beyond`; small at first, in the later cases from all of the range.
int64_t drawNumber(int64_t least, int64_t beyond);

/// The same as another type of number.
template <std::integral Number>
Number draw(Number least, std::type_identity_t<Number> beyond)
{
    return static_cast<Number>(drawNumber(static_cast<int64_t>(least), static_cast<int64_t>(beyond)));
}

/// A number below `count`, all of them equally likely in every case.
size_t drawIndex(size_t count);

/// One of some values. One that comes twice is twice as likely.
template <typename Value>
Value drawOne(std::initializer_list<Value> values)
{
    return values.begin()[drawIndex(values.size())];
}

/// Any 32-bit number; small at first.
int32_t drawInt();

/// A number of items: none or few at first, up to 100 in the later cases.
size_t drawCount();

/// As many bytes, each one of `characters`.
std::string drawText(std::string_view characters);

/// As many bytes of any value.
std::string drawText();

} // namespace test
