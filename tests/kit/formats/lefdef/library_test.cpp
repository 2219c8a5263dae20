// SPDX-License-Identifier: BSD-3-Clause
// Which layer of a library is metal 1 where nobody says it.
#include "kit/formats/lefdef/library.h"

#include "kit/base/fault.h"
#include "kit/formats/lefdef/described.h"
#include "support/guards.h"

namespace {

using test::Lines;

/// A cell with a pin on each of some layers.
std::string cell(const std::string& name, const Lines& layers)
{
    std::string text = "MACRO " + name + " CLASS CORE ;\n";
    for (const std::string& layer : layers) {
        text += "PIN " + layer + " PORT LAYER " + layer + " ; RECT 0 0 1 1 ; END END " + layer + "\n";
    }
    return text + "END " + name + "\n";
}

const std::string TECH =
    "LAYER NW TYPE MASTERSLICE ; END NW LAYER li TYPE ROUTING ; END li\nLAYER v Type Cut ; END v "
    "LAYER m1 TYPE ROUTING ; END m1 LAYER m2 TYPE ROUTING ; END m2\n";

struct FoundCase {
    const char* name;
    std::string text;
    std::string want; ///< the layer, or what the fault says
};

const FoundCase FOUND[] = {
    {"LowestRoutingLayerWithPinsOfHalf",
     TECH + cell("A", {"NW", "m2", "m1"}) + cell("B", {"m2"}) + cell("C", {"m2", "m1"}) +
         cell("D", {"li", "m2"}),
     "m1"},
    {"WithoutRoutingLayersTheOneThatComesFirst", cell("A", {"b", "a"}) + cell("B", {"a", "b"}), "b"},
    {"ObstructionsDoNotCount",
     TECH + cell("A", {"m1"}) + "MACRO B CLASS CORE ; OBS LAYER li ; RECT 0 0 1 1 ; END END B", "m1"},
    {"CellsWithoutPinsDoNotCount", TECH + cell("A", {"m1"}) + cell("B", {}) + cell("C", {}), "m1"},
    {"MacrosThatAreNotInUseDoNotCount",
     TECH + cell("A", {"m1"}) +
         "MACRO RAM CLASS BLOCK ; PIN p PORT LAYER li ; RECT 0 0 1 1 ; END END p END RAM",
     "m1"},
    {"WhereNoneInUseHasPinsAllCount",
     TECH + "MACRO RAM CLASS BLOCK ; PIN p PORT LAYER m2 ; RECT 0 0 1 1 ; END END p END RAM", "m2"},
    {"NoPinsAtAll", TECH + cell("A", {}), ""},
    {"NoLayerOfHalf", TECH + cell("A", {"NW", "li"}) + cell("B", {"m1"}) + cell("C", {"m2"}),
     "no routing layer has pins of half of the cells in use in l.lef: give --layer; they have pins on NW, "
     "li, m1, m2"},
};

class FoundLayer : public testing::TestWithParam<FoundCase> {};

TEST_P(FoundLayer, IsThat)
{
    const test::TempDir dir;
    dir.write("l.lef", GetParam().text);
    kit::Findings findings;
    std::string found;
    try {
        found = kit::lefdef::readLibrary({dir.path("l.lef")}, "", findings).lef.layer;
    } catch (const kit::Fault& fault) {
        found = fault.what();
        const size_t path = found.find(dir.path("l.lef"));
        ASSERT_NE(path, std::string::npos) << found;
        found.replace(path, dir.path("l.lef").size(), "l.lef");
    }
    EXPECT_EQ(found, GetParam().want);
}

INSTANTIATE_TEST_SUITE_P(Rules, FoundLayer, testing::ValuesIn(FOUND),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(FoundLayer, IsToldInOneLine)
{
    const test::TempDir dir;
    dir.write("tech.lef", TECH);
    dir.write("cells.lef", cell("A", {"m1"}) + cell("B", {"m1", "m2"}) + cell("C", {"m2"}));
    kit::Findings findings;
    const auto library =
        kit::lefdef::readLibrary({dir.path("tech.lef"), dir.path("cells.lef")}, "", findings);
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(test::describe(findings.front()),
              "note layer 0:0: metal 1 is layer m1: 2 of 3 cells with pins have some "
              "on it; give --layer if it is another");
    EXPECT_EQ(library.lef.macros.at(1).pins.at(0).shapes.size(), 1U);
    EXPECT_EQ(library.lef.macros.at(1).pins.at(1).shapes.size(), 0U);
}

TEST(FoundLayer, ProblemsAreToldOnce)
{
    const test::TempDir dir;
    dir.write("l.lef", TECH + cell("A", {"m1"}) + cell("A", {"m1"}));
    kit::Findings findings;
    kit::lefdef::readLibrary({dir.path("l.lef")}, "", findings);
    EXPECT_EQ(kit::countsOf(findings).errors + kit::countsOf(findings).warnings, 1);
}

} // namespace
