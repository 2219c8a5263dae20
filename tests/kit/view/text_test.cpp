// SPDX-License-Identifier: BSD-3-Clause
// Texts in pictures: base64, colours.
#include <rapidcheck/gtest.h>

#include "kit/view/base64.h"
#include "kit/view/ramp.h"
#include "kit/view/scenes.h"

namespace {

using namespace kit::view;

TEST(ViewBase64, PadsToGroupsOfFour)
{
    const auto of = [](const std::string& text) { return base64(bytesOf(text)); };
    EXPECT_EQ(of(""), "");
    EXPECT_EQ(of("f"), "Zg==");
    EXPECT_EQ(of("fo"), "Zm8=");
    EXPECT_EQ(of("foo"), "Zm9v");
    EXPECT_EQ(of("foobar"), "Zm9vYmFy");
    EXPECT_EQ(of("\xFF\xFE\xFD"), "//79");
}

TEST(ViewBase64, NumbersHaveTheirLowestByteFirst)
{
    EXPECT_EQ(base64(bytesOf(std::vector<int32_t>{1, -1})), "AQAAAP////8=");
}

RC_GTEST_PROP(ViewBase64, DecodesToTheSameBytes, (const std::string& text))
{
    RC_ASSERT(test::decoded(base64(bytesOf(text))) == text);
}

TEST(ViewBase64, IsWrittenInPiecesWithoutPaddingInBetween)
{
    std::string text(100'000, 'x');
    text += "yz";
    const test::TempDir dir;
    kit::OutputFile file(dir.path("f"));
    writeBase64(file, bytesOf(text));
    file.commit();
    EXPECT_EQ(test::contentOf(dir.path("f")), base64(bytesOf(text)));
}

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
