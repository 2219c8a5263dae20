// SPDX-License-Identifier: BSD-3-Clause
#include "kit/design/nameMap.h"

#include <gtest/gtest.h>

#include "kit/base/fault.h"
#include "kit/base/files/writeOutput.h"
#include "kit/kitRun.h"
#include "support/property.h"

namespace {
using kit::Findings;
using kit::design::NameMap;
using test::TempDir;

const std::string GOOD = "VIRELOCE MAP 1\nDEF a b.def\nHASH 0123456789abcdef\nSITE 190000 1400000\n"
                         "NAMES 2\nFILLER_1_ FILLER_1\nu$1 u 1\nFLIPPED 1\nu$1\nMIRRORABLE 1\nINV_X1\nEND\n";

NameMap readMap(const std::string& text, Findings& findings)
{
    const TempDir dir;
    return kit::design::readNameMap(dir.write("d.map", text), findings);
}

TEST(KitNameMap, HasAllThatTheFileSays)
{
    Findings findings;
    const NameMap map = readMap(GOOD, findings);
    EXPECT_TRUE(findings.empty());
    EXPECT_EQ(map.def, "a b.def");
    EXPECT_EQ(map.hash, "0123456789abcdef");
    EXPECT_EQ(map.siteWidth, 190000);
    EXPECT_EQ(map.siteHeight, 1400000);
    ASSERT_EQ(map.names.size(), 2U);
    EXPECT_EQ(map.names[0].name, "FILLER_1_");
    EXPECT_EQ(map.names[1].original, "u 1");
    EXPECT_EQ(map.flipped, std::vector<std::string>{"u$1"});
    EXPECT_EQ(map.mirrorable, std::vector<std::string>{"INV_X1"});
}

TEST(KitNameMap, WithoutMirrorableCellsNoneIsKnownToBe)
{
    std::string text = GOOD;
    text.erase(text.find("MIRRORABLE"), std::string("MIRRORABLE 1\nINV_X1\n").size());
    Findings findings;
    const NameMap map = readMap(text, findings);
    EXPECT_TRUE(findings.empty());
    EXPECT_EQ(map.flipped, std::vector<std::string>{"u$1"});
    EXPECT_TRUE(map.mirrorable.empty());
}

struct Damage {
    const char* name;
    const char* part; ///< of the good file
    const char* with; ///< what stands there instead
    int64_t line;
    const char* what;
};

class KitNameMapDamage : public testing::TestWithParam<Damage> {};

TEST_P(KitNameMapDamage, IsToldWithItsLine)
{
    std::string text = GOOD;
    text.replace(text.find(GetParam().part), std::string(GetParam().part).size(), GetParam().with);
    Findings findings;
    readMap(text, findings);
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].line, GetParam().line);
    EXPECT_EQ(findings[0].what, GetParam().what);
    EXPECT_EQ(findings[0].severity, kit::Severity::ERROR);
}

constexpr const char* NO_NAMES =
    "the line is not a name in the placement and one in the DEF file, of which there should be 2";
constexpr const char* NO_FLIPPED =
    "the line is not the name of a flipped component, of which there should be 1";

INSTANTIATE_TEST_SUITE_P(
    Each, KitNameMapDamage,
    testing::Values(
        Damage{"AnotherHeader", "MAP 1", "MAP 2", 1, "the line is not \"VIRELOCE MAP 1\""},
        Damage{"NoDef", "DEF a", "DEFa", 2, "the line is not \"DEF\" and a path"},
        Damage{"ShortHash", "0123456789abcdef", "123456789abcdef", 3,
               "the line is not \"HASH\" and 16 hexadecimal digits"},
        Damage{"NoHash", "0123456789abcdef", "0123456789abcdeg", 3,
               "the line is not \"HASH\" and 16 hexadecimal digits"},
        Damage{"OneSize", "190000 1400000", "190000", 4, "the line is not \"SITE\" and a width and a height"},
        Damage{"NoSize", "1400000", "0", 4, "the line is not \"SITE\" and a width and a height"},
        Damage{"NegativeSize", "190000", "-1", 4, "the line is not \"SITE\" and a width and a height"},
        Damage{"TextForACount", "NAMES 2", "NAMES x", 5, "the line is not \"NAMES\" and a count"},
        Damage{"NegativeCount", "NAMES 2", "NAMES -1", 5, "the line is not \"NAMES\" and a count"},
        Damage{"CountTooSmall", "NAMES 2", "NAMES 1", 7, "the line is not \"FLIPPED\" and a count"},
        Damage{"OneName", "u$1 u 1", "u$1", 7, NO_NAMES},
        Damage{"NoOriginal", "u$1 u 1", "u$1 ", 7, NO_NAMES},
        Damage{"NoNewName", "u$1 u 1", " u", 7, NO_NAMES},
        Damage{"NameTwice", "u$1 u 1", "FILLER_1_ u", 7, "the name FILLER_1_ comes twice"},
        Damage{"BlankInAFlippedName", "\nu$1\n", "\nu 1\n", 9, NO_FLIPPED},
        Damage{"FlippedTwice", "1\nu$1\nMIRR", "2\nu$1\nu$1\nMIRR", 10, "the name u$1 comes twice"},
        Damage{"NoCountOfMirrorable", "MIRRORABLE 1", "MIRRORABLE", 10,
               "the line is not \"MIRRORABLE\" and a count"},
        Damage{"BlankInAMirrorableName", "INV_X1", "INV X1", 11,
               "the line is not the name of a mirrorable cell, of which there should be 1"},
        Damage{"NoEnd", "END", "FIN", 12, "the line is not \"END\""},
        Damage{"TextBehindTheEnd", "END\n", "END\n\n", 13,
               "the line is not the end of the file, which \"END\" is"},
        Damage{"LineCutOff", "END\n", "END", 12, "the line is not \"END\""}),
    [](const auto& param) { return param.param.name; });

TEST(KitNameMap, EveryShorterFileHasAFinding)
{
    for (size_t size = 0; size < GOOD.size(); ++size) {
        Findings findings;
        readMap(GOOD.substr(0, size), findings);
        EXPECT_EQ(findings.size(), 1U) << size;
    }
}

TEST(KitNameMap, HugeCountNeedsNoMemory)
{
    std::string text = GOOD;
    text.replace(text.find("NAMES 2"), 7, "NAMES 9000000000000000000");
    Findings findings;
    EXPECT_EQ(readMap(text, findings).names.size(), 3U); // "FLIPPED 1" can be a pair of names
    EXPECT_EQ(findings.size(), 1U);
}

TEST(KitNameMap, FileThatIsNotThereIsAFault)
{
    Findings findings;
    EXPECT_THROW(kit::design::readNameMap("/nowhere/d.map", findings), kit::Fault);
}

TEST(KitNameMap, LineEndInThePathDoesNotBreakTheFile)
{
    const TempDir dir;
    NameMap map{.def = "a\nb", .hash = kit::design::hashOf("x"), .siteWidth = 1, .siteHeight = 2};
    test::writeOutput(dir.path("d.map"),
                      [&map](kit::OutputFile& out) { kit::design::writeNameMap(map, out); });
    Findings findings;
    EXPECT_EQ(kit::design::readNameMap(dir.path("d.map"), findings).def, "a?b");
    EXPECT_TRUE(findings.empty());
}

TEST(KitNameMap, HashIsThatOfTheBytes)
{
    // FNV-1a with 64 bits of no bytes and of "a", from its authors' tables.
    EXPECT_EQ(kit::design::hashOf(""), "cbf29ce484222325");
    EXPECT_EQ(kit::design::hashOf("a"), "af63dc4c8601ec8c");
}

PROPERTY(KitNameMap, ComesBackAsItWasWritten)
{
    NameMap map{.def = "x.def", .hash = kit::design::hashOf("x")};
    map.siteWidth = test::draw(1, 1'000'000'000);
    map.siteHeight = test::draw(1, 1'000'000'000);
    std::string characters;
    for (char byte = '!'; byte < '~'; ++byte) {
        characters += byte;
    }
    for (size_t i = test::drawCount(); i > 0; --i) {
        map.names.push_back({"n" + std::to_string(i), test::drawText(characters) + "x"});
    }
    for (int i = test::draw(0, 4); i > 0; --i) {
        map.flipped.push_back("n" + std::to_string(i));
        map.mirrorable.push_back("CELL" + std::to_string(i));
    }
    const TempDir dir;
    test::writeOutput(dir.path("d.map"),
                      [&map](kit::OutputFile& out) { kit::design::writeNameMap(map, out); });
    Findings findings;
    const NameMap back = kit::design::readNameMap(dir.path("d.map"), findings);
    RC_ASSERT(findings.empty());
    RC_ASSERT(back.def == map.def);
    RC_ASSERT(back.hash == map.hash);
    RC_ASSERT(back.siteWidth == map.siteWidth);
    RC_ASSERT(back.siteHeight == map.siteHeight);
    RC_ASSERT(back.flipped == map.flipped);
    RC_ASSERT(back.mirrorable == map.mirrorable);
    RC_ASSERT(back.names.size() == map.names.size());
    for (size_t i = 0; i < map.names.size(); ++i) {
        RC_ASSERT(back.names[i].name == map.names[i].name);
        RC_ASSERT(back.names[i].original == map.names[i].original);
    }
}

} // namespace
