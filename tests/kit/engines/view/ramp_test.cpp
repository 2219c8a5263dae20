// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/view/density.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace {

using namespace kit::view;

/// Sum of red, green and blue.
int lightness(const std::string& colour)
{
    const auto part = [&](size_t at) { return std::stoi(colour.substr(at, 2), nullptr, 16); };
    return part(1) + part(3) + part(5);
}

TEST(ViewRamp, DarkensAllTheWayToFull)
{
    EXPECT_EQ(rampColour(0), "#ffffff");
    for (uint8_t share = 1; share <= 100; ++share) {
        EXPECT_LT(lightness(rampColour(share)), lightness(rampColour(static_cast<uint8_t>(share - 1))))
            << int{share};
    }
    EXPECT_EQ(rampColour(254), rampColour(100));
}

} // namespace
