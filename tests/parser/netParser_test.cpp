// SPDX-License-Identifier: BSD-3-Clause
#include "parser/netParser.h"

#include <gtest/gtest.h>

#include <string>

#include "parser/reading.h"

namespace {

using test::nameOfRow;
using test::Reading;

/// A design with the components u, v, w and the pins a, b, and v again as a pin.
class Netlist : public Reading {
public:
    Netlist()
    {
        place("COMPONENTS 4\n- u C0 + P ( 0 0 ) N\n;\n- v C0 + P ( 0 0 ) N\n;\n- w C0 + P ( 0 0 ) N\n;\n"
              "- FILLER_1 C0 + P ( 0 0 ) N\n;\n");
        pins("3 a 1 2 b 3 4 v 5 6");
    }

    /// Reads a netlist; a failure if that ends the run or prints something.
    ///
    /// @return the nets as "u v; w a", components before pins
    std::string nets(const std::string& text)
    {
        EXPECT_EQ(netlist(text), "");
        std::string names;
        for (const Net* net : design.nets) {
            names += names.empty() ? "" : "; ";
            std::string members;
            for (const Component* comp : net->components) {
                members += (members.empty() ? "" : " ") + comp->name;
            }
            for (const Pin* pin : net->pins) {
                members += (members.empty() ? "" : " ") + pin->name;
            }
            names += members;
        }
        return names;
    }
};

TEST(NetParser, IsBoundToItsDesign)
{
    const Design design;
    EXPECT_EQ(design.netParser.design, &design);
}

TEST(NetParser, MissingFileEndsTheRun)
{
    Reading r;
    EXPECT_EQ(test::reportOfEndedRun([&] { r.design.netParser.run(r.base); }),
              "ERROR| cannot open file: " + r.base + ".netlist\n");
}

TEST(NetParser, MembersKeepFileOrderAmongComponentsAndAmongPins)
{
    Netlist n;
    EXPECT_EQ(n.nets("2\n4 w b u a\n2 a b\n"), "w u b a; a b");
}

TEST(NetParser, IdIsTheIndexAndTheBoxIsZero)
{
    Netlist n;
    n.nets("2\n2 u v\n2 v w\n");
    ASSERT_EQ(n.design.nets.size(), 2U);
    for (size_t i = 0; i < 2; ++i) {
        const Net& net = *n.design.nets[i];
        EXPECT_EQ(net.id, static_cast<int32_t>(i));
        EXPECT_EQ(net.boxXl, 0);
        EXPECT_EQ(net.boxXh, 0);
        EXPECT_EQ(net.boxYl, 0);
        EXPECT_EQ(net.boxYh, 0);
    }
}

TEST(NetParser, LinkIsOneWay)
{
    Netlist n;
    n.nets("1 2 u v");
    EXPECT_TRUE(n.design.components[0]->nets.empty());
}

TEST(NetParser, NetOfDegreeOneIsSkippedAndUsesNoId)
{
    Netlist n;
    EXPECT_EQ(n.nets("3\n2 u v\n1 w\n2 v w\n"), "u v; v w");
    EXPECT_EQ(n.design.nets[1]->id, 1);
}

TEST(NetParser, NetOfDegreeZeroOrLessIsSkipped)
{
    Netlist n;
    EXPECT_EQ(n.nets("4\n0\n2 u v\n-3\n2 v w\n"), "u v; v w");
}

TEST(NetParser, MemberOfASkippedNetMayBeUnknown)
{
    Netlist n;
    EXPECT_EQ(n.nets("2\n1 nobody\n2 u v\n"), "u v");
}

TEST(NetParser, NameTwiceInANetIsTwiceItsMember)
{
    Netlist n;
    EXPECT_EQ(n.nets("1 5 u a u a u"), "u u u a a");
}

TEST(NetParser, NameOfAComponentAndAPinIsTheComponent)
{
    Netlist n;
    n.nets("1 2 v u");
    EXPECT_TRUE(n.design.nets[0]->pins.empty());
    EXPECT_EQ(n.design.nets[0]->components[0], n.design.components[1]);
}

TEST(NetParser, NameOfTwoComponentsIsTheLater)
{
    Netlist n;
    n.place("COMPONENTS 1\n- u C1 + P ( 0 0 ) N\n;\n");
    n.nets("1 2 u v");
    EXPECT_EQ(n.design.nets[0]->components[0], n.design.components[3]);
}

TEST(NetParser, IndicesMayBeFilledByHand)
{
    Reading r;
    r.place("COMPONENTS 2\n- u C0 + P ( 0 0 ) N\n;\n- v C0 + P ( 0 0 ) N\n;\n");
    r.pins("1 a 1 2");
    r.design.compIndex = {{"other", 1}, {"a", -1}};
    r.netlist("1 3 other a other");
    ASSERT_EQ(r.design.nets.size(), 1U);
    EXPECT_EQ(r.design.nets[0]->components, (std::vector<Component*>(2, r.design.components[1])));
    EXPECT_EQ(r.design.nets[0]->pins, r.design.pins);
}

TEST(NetParser, LongNetlistIsReadToItsEnd)
{
    Netlist n;
    std::string text = "1000\n";
    std::string want;
    for (int i = 0; i < 1000; ++i) {
        const std::string members = i % 2 == 0 ? "u v w a" : "w b";
        text += (i % 2 == 0 ? "4 " : "2 ") + members + "\n";
        want += (i == 0 ? "" : "; ") + members;
    }
    EXPECT_EQ(n.nets(text), want);
    EXPECT_EQ(n.design.nets[999]->id, 999);
}

TEST(NetParser, UnknownMemberOfALateNetLeavesTheNetsBeforeIt)
{
    Netlist n;
    std::string text = "501\n";
    for (int i = 0; i < 500; ++i) {
        text += "2 u v\n";
    }
    EXPECT_EQ(n.netFault(text + "2 w nobody\n"), "WARNING| invalid compID and pinID, pname = nobody\n");
    EXPECT_EQ(n.design.nets.size(), 500U);
}

TEST(NetParser, ComponentHasRoomForItsNetsAndNoMore)
{
    Netlist n;
    n.nets("3 3 u v u 2 u a 2 v a");
    EXPECT_EQ(n.design.components[0]->nets.capacity(), 3U);
    EXPECT_EQ(n.design.components[1]->nets.capacity(), 2U);
    EXPECT_EQ(n.design.components[2]->nets.capacity(), 0U);
}

TEST(NetParser, UnknownMemberEndsTheRun)
{
    Netlist n;
    EXPECT_EQ(n.netFault("2\n2 u v\n3 w nobody a\n"), "WARNING| invalid compID and pinID, pname = nobody\n");
    EXPECT_EQ(n.design.nets.size(), 1U) << "the net before it";
}

TEST(NetParser, LookingAnUnknownMemberUpDoesNotEnterIt)
{
    Netlist n;
    n.netFault("1 2 nobody u");
    EXPECT_EQ(n.design.compIndex.count("nobody"), 0U);
    EXPECT_EQ(n.design.pinIndex.count("nobody"), 0U);
}

TEST(NetParser, MemberCutOffByTheFirstFillerEndsTheRun)
{
    Netlist n;
    EXPECT_EQ(n.netFault("1 2 u FILLER_1"), "WARNING| invalid compID and pinID, pname = FILLER_1\n");
}

TEST(NetParser, MemberThatTheFileLacksIsAnEmptyName)
{
    EXPECT_EQ(Netlist().netFault("1 2 u"), "WARNING| invalid compID and pinID, pname = \n");
    EXPECT_EQ(Netlist().netFault("1 2147483647 u v"), "WARNING| invalid compID and pinID, pname = \n");
}

TEST(NetParser, DegreeTooLargeTakesTheNextDegreeForAName)
{
    EXPECT_EQ(Netlist().netFault("2 3 u v 2 v w"), "WARNING| invalid compID and pinID, pname = 2\n");
}

TEST(NetParser, DegreeOutOfRangeIsTheLargestIntegerWithoutMembers)
{
    EXPECT_EQ(Netlist().netFault("1 99999999999 u v"), "WARNING| invalid compID and pinID, pname = \n");
}

struct NetsCase {
    const char* name;
    std::string text;
    const char* want;
};

void PrintTo(const NetsCase& row, std::ostream* out)
{
    *out << row.name;
}

class Layout : public testing::TestWithParam<NetsCase> {};

TEST_P(Layout, DoesNotMatter)
{
    EXPECT_EQ(Netlist().nets(GetParam().text), GetParam().want);
}

const NetsCase LAYOUT_CASES[] = {
    {"OneLine", "2 2 u v 3 w a b", "u v; w a b"},
    {"OneWordALine", "2\n2\nu\nv\n3\nw\na\nb\n", "u v; w a b"},
    {"MembersOnTheirOwnLine", "2\n2\n u v\n3\n w a b\n", "u v; w a b"},
    {"TabsAndCarriageReturns", "2\r\n2\tu\tv\r\n3\tw\ta\tb\r\n", "u v; w a b"},
    {"EmptyLines", "\n\n2\n\n\n2 u\n\nv\n3 w a b", "u v; w a b"},
};

INSTANTIATE_TEST_SUITE_P(NetParser, Layout, testing::ValuesIn(LAYOUT_CASES), nameOfRow);

class OddNetlist : public testing::TestWithParam<NetsCase> {};

TEST_P(OddNetlist, IsReadAsFarAsItGoesWithoutAWord)
{
    EXPECT_EQ(Netlist().nets(GetParam().text), GetParam().want);
}

const NetsCase ODD_CASES[] = {
    {"EmptyFile", "", ""},
    {"CountZero", "0 2 u v", ""},
    {"CountNegative", "-1 2 u v", ""},
    {"CountIsText", "two 2 u v", ""},
    {"CountOutOfRange", "99999999999 2 u v", ""},
    {"CountTooLarge", "5 2 u v", "u v"},
    {"HugeCount", "2147483647 2 u v", "u v"},
    {"CountTooSmall", "1 2 u v 2 v w", "u v"},
    {"DegreeIsTextDropsTheRest", "3 2 u v x 2 v w", "u v"},
    {"DegreeTooSmallLeavesANameForTheDegree", "2 2 u v w 2 v w", "u v"},
    {"SkippedNetAtTheEndLacksItsMember", "2 2 u v 1", "u v"},
    {"NameRightBehindTheDegree", "1 2u v", "u v"},
    {"NullCharacterForTheCount", std::string(1, '\0'), ""},
};

INSTANTIATE_TEST_SUITE_P(NetParser, OddNetlist, testing::ValuesIn(ODD_CASES), nameOfRow);

} // namespace
