// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/text/base64.h"

#include <gtest/gtest.h>

#include "kit/base/files/outputFile.h"
#include "kit/base/text/decoded.h"
#include "kit/kitRun.h"
#include "support/property.h"

namespace {

using namespace kit;

TEST(Base64, PadsToGroupsOfFour)
{
    const auto of = [](const std::string& text) { return base64(bytesOf(text)); };
    EXPECT_EQ(of(""), "");
    EXPECT_EQ(of("f"), "Zg==");
    EXPECT_EQ(of("fo"), "Zm8=");
    EXPECT_EQ(of("foo"), "Zm9v");
    EXPECT_EQ(of("foobar"), "Zm9vYmFy");
    EXPECT_EQ(of("\xFF\xFE\xFD"), "//79");
}

TEST(Base64, NumbersHaveTheirLowestByteFirst)
{
    EXPECT_EQ(base64(bytesOf(std::vector<int32_t>{1, -1})), "AQAAAP////8=");
}

PROPERTY(Base64, DecodesToTheSameBytes)
{
    const std::string text = test::drawText();
    RC_ASSERT(test::decoded(base64(bytesOf(text))) == text);
}

TEST(Base64, IsWrittenInPiecesWithoutPaddingInBetween)
{
    std::string text(100'000, 'x');
    text += "yz";
    const test::TempDir dir;
    OutputFile file(dir.path("f"));
    writeBase64(file, bytesOf(text));
    file.commit();
    EXPECT_EQ(test::contentOf(dir.path("f")), base64(bytesOf(text)));
}

} // namespace
