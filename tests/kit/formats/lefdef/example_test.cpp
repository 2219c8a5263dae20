// SPDX-License-Identifier: BSD-3-Clause
// The real files of examples/raw. The numbers were counted in them by other means: lines with grep, sums with
// exact decimals.
#include <map>

#include "kit/formats/lefdef/described.h"

namespace {

using namespace kit::lefdef;

const std::string FOLDER = VIRELOCE_KIT_EXAMPLES "/raw/";

TEST(LefDefExample, Design)
{
    const Source source(FOLDER + "gcd_nangate45.def");
    kit::Findings findings;
    const Def def = readDef(source, findings);
    EXPECT_TRUE(findings.empty());
    EXPECT_EQ(def.design, "gcd");
    EXPECT_EQ(def.databaseMicrons, 2000);
    EXPECT_EQ(test::point(def.dieArea.xh, def.dieArea.yh), "(65480 65480)");
    EXPECT_EQ(def.rows.size(), 21U);
    EXPECT_EQ(test::describe(def.rows[1]),
              "row ROW_1 FreePDK45_38x28_10R_NP_162NW_34O (2280 5600) FS 161x1 step (380 0)");
    EXPECT_TRUE(def.blockages.empty());
}

TEST(LefDefExample, Components)
{
    const Source source(FOLDER + "gcd_nangate45.def");
    kit::Findings findings;
    const Def def = readDef(source, findings);
    EXPECT_EQ(def.components.size(), 734U);
    std::map<Status, int> statuses;
    std::map<std::string_view, int> orients;
    int64_t sumX = 0;
    int64_t sumY = 0;
    for (const DefComponent& component : def.components) {
        ++statuses[component.status];
        ++orients[nameOf(component.orient)];
        sumX += component.x;
        sumY += component.y;
    }
    EXPECT_EQ(statuses, (std::map<Status, int>{{Status::PLACED, 692}, {Status::FIXED, 42}}));
    EXPECT_EQ(orients, (std::map<std::string_view, int>{{"N", 402}, {"FS", 311}, {"S", 10}, {"FN", 11}}));
    EXPECT_EQ(sumX, 22'933'760);
    EXPECT_EQ(sumY, 22'352'400);
}

TEST(LefDefExample, PinsAndNets)
{
    const Source source(FOLDER + "gcd_nangate45.def");
    kit::Findings findings;
    const Def def = readDef(source, findings);
    EXPECT_EQ(def.pins.size(), 54U);
    int64_t sumX = 0;
    int64_t sumY = 0;
    for (const DefPin& pin : def.pins) {
        EXPECT_TRUE(pin.placed) << pin.name;
        EXPECT_FALSE(pin.supply) << pin.name;
        sumX += pin.x;
        sumY += pin.y;
    }
    EXPECT_EQ(sumX, 1'560'080);
    EXPECT_EQ(sumY, 1'720'040);
    EXPECT_EQ(def.nets.size(), 497U);
    EXPECT_EQ(def.members.size(), 1348U);
    EXPECT_EQ(std::count_if(def.members.begin(), def.members.end(),
                            [](const DefMember& member) { return member.component == "PIN"; }),
              54);
    size_t largest = 0;
    for (const DefNet& net : def.nets) {
        EXPECT_FALSE(net.supply) << net.name;
        largest = std::max(largest, net.numMembers);
    }
    EXPECT_EQ(largest, 42U);
}

TEST(LefDefExample, Library)
{
    const Source source(FOLDER + "Nangate45_stdcell.lef");
    kit::Findings findings;
    Lef lef;
    readLef(source, "metal1", 0, lef, findings);
    EXPECT_TRUE(findings.empty());
    EXPECT_EQ(lef.macros.size(), 135U);
    std::map<std::string, int> classes;
    std::map<PinUse, int> uses;
    Length width = 0;
    Length height = 0;
    Length corners = 0;
    size_t shapes = 0;
    size_t obstructions = 0;
    const auto addUp = [&](const std::vector<LefShape>& some) {
        for (const LefShape& shape : some) {
            for (const LefPoint& point : shape.points) {
                corners += point.x + point.y;
            }
        }
    };
    for (const LefMacro& macro : lef.macros) {
        ++classes[macro.macroClass];
        EXPECT_TRUE(macro.symmetryX && macro.symmetryY) << macro.name;
        width += macro.width;
        height += macro.height;
        obstructions += macro.obstructions.size();
        addUp(macro.obstructions);
        for (const LefPin& pin : macro.pins) {
            ++uses[pin.use];
            shapes += pin.shapes.size();
            addUp(pin.shapes);
        }
    }
    EXPECT_EQ(classes, (std::map<std::string, int>{
                           {"CORE", 127}, {"CORE ANTENNACELL", 1}, {"CORE SPACER", 6}, {"CORE WELLTAP", 1}}));
    EXPECT_EQ(uses,
              (std::map<PinUse, int>{{PinUse::SIGNAL, 533}, {PinUse::POWER, 135}, {PinUse::GROUND, 135}}));
    EXPECT_EQ(width, 297'920'000);
    EXPECT_EQ(height, 189'000'000);
    EXPECT_EQ(obstructions, 1554U);
    EXPECT_EQ(shapes, 4105U - 1554U);
    EXPECT_EQ(corners, 18'255'760'000);
}

} // namespace
