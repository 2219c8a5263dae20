// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/text/escape.h"

#include <gtest/gtest.h>

namespace {

using namespace kit;

TEST(Escape, WhatMeansSomethingInXmlBecomesAnEntity)
{
    EXPECT_EQ(escapeXml("a<b>&\"c\"'"), "a&lt;b&gt;&amp;&quot;c&quot;&#39;");
}

TEST(Escape, CharactersBeyondAsciiStay)
{
    EXPECT_EQ(escapeXml("\xC3\xA9 \xE2\x82\xAC \xF0\x9D\x84\x9E"), "\xC3\xA9 \xE2\x82\xAC \xF0\x9D\x84\x9E");
}

TEST(Escape, ControlCharactersBecomeQuestionMarks)
{
    EXPECT_EQ(withoutControls("a\rb\x7F\x01\n"), "a?b???");
}

TEST(Escape, BytesThatAreNoUtf8BecomeQuestionMarks)
{
    EXPECT_EQ(withoutControls("\x80"), "?");
    EXPECT_EQ(withoutControls("\xC3"), "?");
    EXPECT_EQ(withoutControls("\xC3z"), "?z");
    EXPECT_EQ(withoutControls("\xC0\xAF"), "??");           // over-long
    EXPECT_EQ(withoutControls("\xE0\x80\x80"), "???");      // over-long
    EXPECT_EQ(withoutControls("\xED\xA0\x80"), "???");      // a surrogate
    EXPECT_EQ(withoutControls("\xF4\x90\x80\x80"), "????"); // beyond Unicode
    EXPECT_EQ(withoutControls("\xEF\xBF\xBF"), "???");      // no character
}

TEST(Escape, NoTagIsLeftInAScript)
{
    EXPECT_EQ(escapeScript("{\"a\":\"</script><!--\"}"), "{\"a\":\"\\u003c/script>\\u003c!--\"}");
}

} // namespace
