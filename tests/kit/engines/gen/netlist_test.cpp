// SPDX-License-Identifier: BSD-3-Clause
// The nets and pins of generated designs.
#include <set>

#include "app/parameters.h"
#include "kit/kitRun.h"

namespace {

using test::GeneratedDesign;
using test::ReadDesign;
using test::Words;

size_t degreeOf(const Net& net)
{
    return net.components.size() + net.pins.size();
}

size_t countMembers(const Design& design)
{
    size_t members = 0;
    for (const Net* net : design.nets) {
        members += degreeOf(*net);
    }
    return members;
}

TEST(KitNetlist, HasAboutOneNetAndThreeMembersPerComponent)
{
    const GeneratedDesign files({"--components", "5000"});
    const ReadDesign read(files);
    EXPECT_NEAR(static_cast<double>(read.design.nets.size()) / 5000, 1.1, 0.1);
    EXPECT_NEAR(static_cast<double>(countMembers(read.design)) / 5000, 3.4, 0.4);
}

TEST(KitNetlist, NoMemberComesTwiceAndNoNetHasOne)
{
    const GeneratedDesign files({"--wide-nets", "50"});
    const ReadDesign read(files);
    for (const Net* net : read.design.nets) {
        EXPECT_GE(degreeOf(*net), 2U);
        EXPECT_EQ(std::set<Component*>(net->components.begin(), net->components.end()).size(),
                  net->components.size());
    }
}

TEST(KitNetlist, EveryComponentHasANet)
{
    const GeneratedDesign files;
    const ReadDesign read(files);
    for (const Component* comp : read.design.components) {
        EXPECT_FALSE(comp->nets.empty()) << comp->name;
    }
}

TEST(KitNetlist, LocalNetsStayInTheirWindow)
{
    // Dense rows without macros: a cell is found within its own width of every site.
    const GeneratedDesign files(
        {"--wide-nets", "0", "--window-sites", "40", "--window-rows", "3", "--utilization", "95"});
    const ReadDesign read(files);
    int widest = 0;
    int highest = 0;
    for (const Net* net : read.design.nets) {
        EXPECT_LE(degreeOf(*net), 5U);
        for (const Component* comp : net->components) {
            const Component* driver = net->components.front();
            widest = std::max(widest, std::abs(comp->x - driver->x) / SITE_WIDTH);
            highest = std::max(highest, std::abs(comp->y - driver->y) / SITE_HEIGHT);
        }
    }
    EXPECT_GE(widest, 30);
    EXPECT_LE(widest, 40 + 25);
    EXPECT_EQ(highest, 3);
}

TEST(KitNetlist, NearlyHalfOfTheMembersAreInTheDriversRow)
{
    const GeneratedDesign files({"--wide-nets", "0", "--components", "4000"});
    const ReadDesign read(files);
    int same = 0;
    int all = 0;
    for (const Net* net : read.design.nets) {
        const Component* driver = net->components.front();
        for (const Component* comp : net->components) {
            same += comp != driver && comp->y == driver->y ? 1 : 0;
            all += comp != driver ? 1 : 0;
        }
    }
    EXPECT_NEAR(static_cast<double>(same) / all, 0.46, 0.05);
}

TEST(KitNetlist, WideNetsHaveTenToAThousandMembers)
{
    const GeneratedDesign files({"--wide-nets", "50", "--components", "10000"});
    const ReadDesign read(files);
    size_t wide = 0;
    size_t largest = 0;
    for (const Net* net : read.design.nets) {
        wide += degreeOf(*net) >= 10 ? 1 : 0;
        largest = std::max(largest, degreeOf(*net));
    }
    EXPECT_NEAR(static_cast<double>(wide) / static_cast<double>(read.design.nets.size()), 0.05, 0.01);
    EXPECT_GT(largest, 300U);
    EXPECT_LE(largest, 1000U);
}

TEST(KitNetlist, PinsLieAroundTheRowsEachWithACellNextToIt)
{
    const GeneratedDesign files;
    const ReadDesign read(files);
    const Design& design = read.design;
    EXPECT_EQ(design.pins.size(), 62U);
    std::set<const Pin*> connected;
    for (const Net* net : design.nets) {
        for (const Pin* pin : net->pins) {
            connected.insert(pin);
            ASSERT_EQ(net->components.size(), 1U);
            const Component* comp = net->components[0];
            EXPECT_TRUE(pin->x == comp->x || std::abs(pin->x - comp->x) < 60 * SITE_WIDTH) << pin->name;
            EXPECT_LE(std::abs(pin->y - comp->y), SITE_HEIGHT) << pin->name;
        }
    }
    EXPECT_EQ(connected.size(), design.pins.size());
    for (const Pin* pin : design.pins) {
        EXPECT_TRUE(pin->x < design.boundXl || pin->x >= design.boundXh || pin->y < design.boundYl ||
                    pin->y >= design.boundYh)
            << pin->name;
    }
}

} // namespace
