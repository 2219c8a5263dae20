// SPDX-License-Identifier: BSD-3-Clause
// The records of a design: what they start with, and how components are ordered and oriented.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <type_traits>

#include "db/design.h"
#include "db/memberOrder.h"
#include "db/orientMapGuard.h"

namespace {

using test::expectInOrder;

size_t s_orientationsAtStart = 1;

/// Looks at the process before any test has made a design.
class ProcessStart : public testing::Environment {
public:
    void SetUp() override { s_orientationsAtStart = Component::s_orientMap.size(); }
};

const testing::Environment* const START = testing::AddGlobalTestEnvironment(new ProcessStart);

TEST(Row, StartsEmpty)
{
    const Row row;
    EXPECT_TRUE(row.components.empty());
    EXPECT_TRUE(row.segments.empty());
    EXPECT_EQ(row.name + row.siteName + row.orient, "");
    EXPECT_EQ(row.x, 0);
    EXPECT_EQ(row.y, 0);
    EXPECT_EQ(row.numSites, 0);
    EXPECT_EQ(row.step, 0);
}

TEST(Row, HasItsMembersInOrder)
{
    const Row row;
    expectInOrder({&row.components, &row.segments, &row.name, &row.siteName, &row.x, &row.y, &row.numSites,
                   &row.step, &row.orient});
}

TEST(Segment, StartsEmpty)
{
    const Segment segment;
    EXPECT_TRUE(segment.components.empty());
    EXPECT_EQ(segment.id, 0);
    EXPECT_EQ(segment.x, 0);
    EXPECT_EQ(segment.y, 0);
    EXPECT_EQ(segment.numSites, 0);
}

TEST(Segment, HasItsMembersInOrder)
{
    const Segment segment;
    expectInOrder({&segment.components, &segment.id, &segment.x, &segment.y, &segment.numSites});
}

TEST(Segment, KeepsItsComponentsInAList)
{
    EXPECT_TRUE((std::is_same_v<decltype(Segment::components), std::list<Component*>>));
}

TEST(Component, StartsAtSiteZeroWithSolutionZero)
{
    const Component comp;
    EXPECT_EQ(comp.solution, 0);
    EXPECT_EQ(comp.siteX, 0);
    EXPECT_EQ(comp.cellIdx, 0);
    EXPECT_EQ(comp.orient, Component::N);
    EXPECT_EQ(comp.x, 0);
    EXPECT_EQ(comp.y, 0);
    EXPECT_EQ(comp.name + comp.cellName + comp.orientName, "");
    EXPECT_TRUE(comp.nets.empty());
    EXPECT_TRUE(comp.leftIDs.empty());
    EXPECT_TRUE(comp.rightIDs.empty());
}

TEST(Component, HasItsMembersInOrder)
{
    const Component comp;
    expectInOrder({&comp.leftIDs, &comp.rightIDs, &comp.nets, &comp.name, &comp.cellName, &comp.cellIdx,
                   &comp.solution, &comp.orientName, &comp.orient, &comp.siteX, &comp.x, &comp.y});
}

TEST(Component, OrientationsHaveTheirNumbers)
{
    EXPECT_EQ(Component::N, 0);
    EXPECT_EQ(Component::FN, 1);
    EXPECT_EQ(sizeof(Component::Orient_e), 4U);
}

TEST(Component, IsOrderedBySiteX)
{
    Component left;
    Component right;
    left.siteX = -1;
    right.siteX = 3;
    left.x = 999; // of no concern
    EXPECT_TRUE(Component::bySiteX(&left, &right));
    EXPECT_FALSE(Component::bySiteX(&right, &left));
}

TEST(Component, OfEqualSiteXIsNotLessBothWays)
{
    Component a;
    Component b;
    a.siteX = b.siteX = 7;
    a.x = 1;
    b.x = 2;
    a.name = "a";
    b.name = "b";
    EXPECT_FALSE(Component::bySiteX(&a, &b));
    EXPECT_FALSE(Component::bySiteX(&b, &a));
    EXPECT_FALSE(Component::bySiteX(&a, &a));
}

TEST(OrientMap, IsEmptyBeforeTheFirstDesign)
{
    EXPECT_EQ(s_orientationsAtStart, 0U);
}

TEST(OrientMap, DesignEntersUnflippedAndFlipped)
{
    const test::OrientMapGuard guard;
    Component::s_orientMap.clear();
    const Design design;
    const std::map<std::string, Component::Orient_e> want{{"N", Component::N}, {"FN", Component::FN}};
    EXPECT_EQ(Component::s_orientMap, want);
}

TEST(OrientMap, SecondDesignDoesNotChangeWhatIsThere)
{
    const test::OrientMapGuard guard;
    const Design first;
    Component::s_orientMap["N"] = Component::FN;
    Component::s_orientMap["FN"] = Component::N;
    Component::s_orientMap["S"] = Component::FN;
    const auto before = Component::s_orientMap;
    const Design second;
    EXPECT_EQ(Component::s_orientMap, before);
}

TEST(OrientMap, OutlivesTheDesign)
{
    const test::OrientMapGuard guard;
    Component::s_orientMap.clear();
    {
        const Design design;
    }
    EXPECT_EQ(Component::s_orientMap.size(), 2U);
}

TEST(OrientMap, UnknownTextIsUnflippedAndStaysInTheMap)
{
    const test::OrientMapGuard guard;
    const Design design;
    ASSERT_EQ(Component::s_orientMap.count("FS"), 0U);
    EXPECT_EQ(Component::s_orientMap["FS"], Component::N);
    EXPECT_EQ(Component::s_orientMap.count("FS"), 1U);
}

TEST(Net, StartsWithABoxOfZeros)
{
    const Net net;
    EXPECT_EQ(net.id, 0);
    EXPECT_TRUE(net.pins.empty());
    EXPECT_TRUE(net.components.empty());
    EXPECT_EQ(net.boxXl, 0);
    EXPECT_EQ(net.boxYl, 0);
    EXPECT_EQ(net.boxXh, 0);
    EXPECT_EQ(net.boxYh, 0);
}

TEST(Net, HasItsMembersInOrder)
{
    const Net net;
    expectInOrder({&net.id, &net.pins, &net.components, &net.boxXl, &net.boxYl, &net.boxXh, &net.boxYh});
}

TEST(Pin, StartsAtTheOriginAndHasItsMembersInOrder)
{
    const Pin pin;
    EXPECT_EQ(pin.name, "");
    EXPECT_EQ(pin.x, 0);
    EXPECT_EQ(pin.y, 0);
    expectInOrder({&pin.name, &pin.x, &pin.y});
}

TEST(Macro, StartsWithoutExtentAndHasItsMembersInOrder)
{
    const Macro macro;
    EXPECT_EQ(macro.x, 0);
    EXPECT_EQ(macro.y, 0);
    EXPECT_EQ(macro.width, 0);
    EXPECT_EQ(macro.height, 0);
    EXPECT_EQ(macro.name, "");
    expectInOrder({&macro.x, &macro.y, &macro.width, &macro.height, &macro.name});
}

} // namespace
