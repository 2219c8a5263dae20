// SPDX-License-Identifier: BSD-3-Clause
// The flat copy of a placement against the records that it was made from, before and after moves.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

#include "db/design.h"
#include "legalizer/placementMirror.h"
#include "legalizer/randomDesign.h"

namespace {

using test::Random;
using vireloce::Extent;
using vireloce::PlacementMirror;
using vireloce::Stretch;

using Range = std::pair<int32_t, int32_t>;

constexpr Range NOTHING{std::numeric_limits<int32_t>::max(), std::numeric_limits<int32_t>::min()};

/// A stretch of a row, DBU.
Stretch stretchOf(int32_t y, int32_t xl, int32_t xh)
{
    return {Segment{.components = {}, .id = 0, .x = xl, .y = y, .numSites = xh - xl}, /*siteWidth=*/1};
}

/// What a net has outside of a stretch.
Range outside(const PlacementMirror& mirror, const Net& net, const Stretch& stretch)
{
    const Extent extent = mirror.outside(net.id, stretch);
    return {extent.lo, extent.hi};
}

/// The same by its records.
Range scanned(const Design& design, const Net& net, const Stretch& stretch)
{
    Range range = NOTHING;
    const auto include = [&range](int32_t x) {
        range = {std::min(range.first, x), std::max(range.second, x)};
    };
    for (const Pin* pin : net.pins) {
        include(pin->x);
    }
    for (const Component* comp : net.components) {
        if (!stretch.contains(comp->x, comp->y)) {
            include(comp->x + design.cellOf(*comp).width / 2);
        }
    }
    return range;
}

/// Components on few distinct places, in nets of 0 to 200 members, with members that occur more than once.
class Netlist : public test::TinyDesign {
public:
    explicit Netlist(uint32_t seed) : random(seed)
    {
        for (const int sites : {1, 2, 5}) {
            addCell(sites, {0});
        }
        design.lut.cells[1]->width -= 1; // odd
        for (int i = random.pick(1, 150); i > 0; --i) {
            put(addComponent(nullptr, random.pick(0, 2), 0));
        }
        for (const int members : {0, 1, 2, 3, 62, 63, 64, 65, 66, 200}) {
            std::vector<Component*> comps;
            for (int i = 0; i < members; ++i) {
                comps.push_back(random.oneOf(design.components));
            }
            std::vector<Pin*> pins;
            for (int i = random.pick(0, 2); i > 0; --i) {
                pins.push_back(addPin(random.pick(-20, 20), 0));
            }
            addNet(comps, pins);
        }
    }

    /// Puts a component anywhere: few places, so that most centres are equal.
    void put(Component* comp)
    {
        comp->x = random.oneOf<int>({-400, -190, 0, 0, 1, 190, 380, 2000, random.pick(-500, 500)});
        comp->y = random.oneOf<int>({0, 0, 1900});
    }

    Stretch anyStretch()
    {
        const int xl = random.oneOf<int>({-400, 0, 1, 190});
        return {Segment{.components = {},
                        .id = 0,
                        .x = xl,
                        .y = random.oneOf<int>({0, 0, 1900, 7}),
                        .numSites = random.pick(0, 3)},
                190};
    }

    Random random;
};

/// Compares every net on a few stretches.
void compare(Netlist& netlist, const PlacementMirror& mirror)
{
    for (int i = 0; i < 4; ++i) {
        const Stretch stretch = netlist.anyStretch();
        for (const Net* net : netlist.design.nets) {
            ASSERT_EQ(outside(mirror, *net, stretch), scanned(netlist.design, *net, stretch))
                << "net of " << net->components.size() << " members, try " << i;
        }
    }
}

TEST(PlacementMirror, FindsWhatIsOutsideOfAStretchAsAScanDoes)
{
    for (uint32_t seed = 1; seed <= 100 && !HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Netlist netlist(seed);
        const PlacementMirror mirror(netlist.design);
        compare(netlist, mirror);
    }
}

TEST(PlacementMirror, FindsItAfterAnyMoves)
{
    for (uint32_t seed = 1; seed <= 40 && !HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Netlist netlist(seed);
        PlacementMirror mirror(netlist.design);
        for (int step = 0; step < 30 && !HasFailure(); ++step) {
            for (int i = netlist.random.oneOf<int>({1, 1, 5, 40}); i > 0; --i) {
                Component* comp = netlist.random.oneOf(netlist.design.components);
                netlist.put(comp);
                mirror.moved(*comp);
            }
            compare(netlist, mirror);
        }
    }
}

TEST(PlacementMirror, CountsAComponentFromTheLeftEndOnAndBelowTheRightEnd)
{
    test::TinyDesign tiny;
    Component* comp = tiny.addComponent(nullptr, tiny.addCell(1, {0}), 0);
    const Net* net = tiny.addNet({comp});
    comp->y = 1900;
    comp->x = 100;
    const PlacementMirror mirror(tiny.design);
    const Range there{195, 195};
    EXPECT_EQ(outside(mirror, *net, stretchOf(1900, 100, 101)), NOTHING);
    EXPECT_EQ(outside(mirror, *net, stretchOf(1900, 101, 300)), there);
    EXPECT_EQ(outside(mirror, *net, stretchOf(1900, 0, 100)), there);
    EXPECT_EQ(outside(mirror, *net, stretchOf(1901, 0, 300)), there);
}

TEST(PlacementMirror, HasNothingOutsideForANetWithoutMembersOrPins)
{
    test::TinyDesign tiny;
    const Net* net = tiny.addNet({});
    const PlacementMirror mirror(tiny.design);
    EXPECT_EQ(outside(mirror, *net, stretchOf(0, 0, 100)), NOTHING);
    EXPECT_EQ(mirror.numNets(), 1U);
}

TEST(PlacementMirror, TakesCentresModulo32BitsAsTheRecordsDo)
{
    test::TinyDesign tiny;
    Component* comp = tiny.addComponent(nullptr, tiny.addCell(4, {0}), 0);
    std::vector<Component*> many(70, comp);
    const Net* few = tiny.addNet({comp});
    const Net* large = tiny.addNet(many);
    PlacementMirror mirror(tiny.design);
    comp->x = std::numeric_limits<int32_t>::max() - 1;
    mirror.moved(*comp);
    const Stretch stretch = stretchOf(5, 0, 1);
    EXPECT_LT(outside(mirror, *few, stretch).first, 0);
    EXPECT_EQ(outside(mirror, *few, stretch), scanned(tiny.design, *few, stretch));
    EXPECT_EQ(outside(mirror, *large, stretch), scanned(tiny.design, *large, stretch));
}

TEST(PlacementMirror, ListsNetsOfAComponentOncePerMembershipInTheirOrder)
{
    for (uint32_t seed = 1; seed <= 20; ++seed) {
        Netlist netlist(seed);
        for (Component* comp : netlist.design.components) {
            std::reverse(comp->nets.begin(), comp->nets.end()); // another order than that of ids
        }
        const PlacementMirror mirror(netlist.design);
        EXPECT_EQ(mirror.numNets(), netlist.design.nets.size());
        for (size_t i = 0; i < netlist.design.components.size(); ++i) {
            const Component& comp = *netlist.design.components[i];
            ASSERT_EQ(comp.id, static_cast<int32_t>(i));
            std::vector<int32_t> ids;
            for (const Net* net : comp.nets) {
                ids.push_back(net->id);
            }
            const auto nets = mirror.netsOf(comp.id);
            EXPECT_EQ(std::vector<int32_t>(nets.begin(), nets.end()), ids);
        }
    }
}

} // namespace
