// SPDX-License-Identifier: BSD-3-Clause
// Wirelength from pin to pin, and the file that tells where pins are.
#include "kit/design/pinOffsets.h"

#include <gtest/gtest.h>

#include "kit/base/files/writeOutput.h"
#include "kit/kitRun.h"

namespace {
using kit::Findings;
using kit::design::PinOffsets;
using test::TempDir;

/// Two components of a cell of 10 by 20 DBU with pins at (1, 2) and (9, 18), and a terminal with two ports.
const std::string GOOD_OFFSETS =
    "VIRELOCE OFFSETS 1\nPLACEMENT 0123456789abcdef\nMASTERS 2\nMASTER A 20 40 2\n"
    "2 4 Z\n18 36 a b\nMASTER B 0 0 0\nTERMINALS 3\n5 6\n\n7 8 9 10\n"
    "NETS 3\n0:1 1:0 0\n\n2\nEND\n";

PinOffsets readOffsets(const std::string& text, Findings& findings)
{
    const TempDir dir;
    return kit::design::readPinOffsets(dir.write("d.offsets", text), findings);
}

TEST(KitPinOffsets, HaveAllThatTheFileSays)
{
    Findings findings;
    const PinOffsets offsets = readOffsets(GOOD_OFFSETS, findings);
    EXPECT_TRUE(findings.empty());
    EXPECT_EQ(offsets.placement, "0123456789abcdef");
    ASSERT_EQ(offsets.masters.size(), 2U);
    EXPECT_EQ(offsets.masters[0].name, "A");
    EXPECT_EQ(offsets.masters[0].width, 20);
    EXPECT_EQ(offsets.masters[0].height, 40);
    ASSERT_EQ(offsets.masters[0].pins.size(), 2U);
    EXPECT_EQ(offsets.masters[0].pins[1].name, "a b");
    EXPECT_EQ(offsets.masters[0].pins[1].at.y, 36);
    EXPECT_EQ(offsets.pointBegin, (std::vector<size_t>{0, 1, 1, 3}));
    EXPECT_EQ(offsets.points[2].x, 9);
    EXPECT_EQ(offsets.netBegin, (std::vector<size_t>{0, 3, 3, 4}));
    EXPECT_EQ(offsets.members[1].component, 1);
    EXPECT_EQ(offsets.members[1].pin, 0);
    EXPECT_EQ(offsets.members[2].component, -1);
    EXPECT_EQ(offsets.members[3].pin, 2);
}

TEST(KitPinOffsets, AreWrittenAsTheyAreRead)
{
    Findings findings;
    const PinOffsets offsets = readOffsets(GOOD_OFFSETS, findings);
    const TempDir dir;
    test::writeOutput(dir.path("o"), [&](kit::OutputFile& out) { writePinOffsets(offsets, out); });
    EXPECT_EQ(test::contentOf(dir.path("o")), GOOD_OFFSETS);
}

struct OffsetsDamage {
    const char* name;
    const char* part; ///< of the good file
    const char* with; ///< what stands there instead
    int64_t line;
    const char* what;
};

class KitPinOffsetsDamage : public testing::TestWithParam<OffsetsDamage> {};

TEST_P(KitPinOffsetsDamage, IsToldWithItsLine)
{
    std::string text = GOOD_OFFSETS;
    text.replace(text.find(GetParam().part), std::string(GetParam().part).size(), GetParam().with);
    Findings findings;
    readOffsets(text, findings);
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].line, GetParam().line);
    EXPECT_EQ(findings[0].what, "the line is not " + std::string(GetParam().what));
    EXPECT_EQ(findings[0].severity, kit::Severity::ERROR);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, KitPinOffsetsDamage,
    testing::Values(
        OffsetsDamage{"OtherVersion", "OFFSETS 1", "OFFSETS 2", 1, "\"VIRELOCE OFFSETS 1\""},
        OffsetsDamage{"NoHash", " 0123456789abcdef", "", 2, "\"PLACEMENT\" and a hash"},
        OffsetsDamage{"NoCount", "MASTERS 2", "MASTERS", 3, "\"MASTERS\" and a count"},
        OffsetsDamage{"NegativeCount", "MASTERS 2", "MASTERS -2", 3, "\"MASTERS\" and a count"},
        OffsetsDamage{"TooFewMasters", "MASTERS 2", "MASTERS 3", 8, "a master with its pins"},
        OffsetsDamage{"TooFewPins", "20 40 2", "20 40 3", 7, "a master with its pins"},
        OffsetsDamage{"TextForAPlace", "18 36", "18 x", 6, "a master with its pins"},
        OffsetsDamage{"FractionForAPlace", "18 36", "18.5 36", 6, "a master with its pins"},
        OffsetsDamage{"HalfAPoint", "5 6", "5", 9, "the points of a terminal"},
        OffsetsDamage{"TerminalThatIsNotThere", "0:1 1:0 0", "0:1 1:0 3", 13, "the pins of a net"},
        OffsetsDamage{"PinWithoutANumber", "0:1 1:0 0", "0: 1:0 0", 13, "the pins of a net"},
        OffsetsDamage{"MoreNets", "NETS 3", "NETS 2", 15, "\"END\""},
        OffsetsDamage{"LineWithoutEnd", "END\n", "END", 16, "\"END\""},
        OffsetsDamage{"TextBehindTheEnd", "END\n", "END\n\n", 17, "the end of the file, which \"END\" is"}),
    [](const auto& row) { return row.param.name; });

/// A design of components of the good file's masters, and offsets that are theirs.
struct Case {
    kit::placer::Design design;
    PinOffsets offsets;

    Case()
    {
        Findings findings;
        offsets = readOffsets(GOOD_OFFSETS, findings);
        design.components = {{.name = "u", .cellName = "A", .x = 100, .y = 200, .orient = "N"},
                             {.name = "v", .cellName = "A", .x = 110, .y = 200, .orient = "N"}};
        kit::design::ComponentHash hash;
        for (const auto& comp : design.components) {
            hash.add(comp.name, comp.cellName);
        }
        offsets.placement = hash.text();
    }
};

/// Half DBU of a net from v's first pin to a terminal at the lower left of v, by the orientation of v.
TEST(KitPinLength, TurnsTheCells)
{
    const std::pair<const char*, int64_t> rows[] = {
        {"N", 2 + 4}, {"FN", 18 + 4}, {"FS", 2 + 36}, {"S", 18 + 36}};
    for (const auto& [orient, want] : rows) {
        Case one;
        one.design.components[1].orient = orient;
        one.offsets.points = {{220, 400}};
        one.offsets.pointBegin = {0, 1};
        one.offsets.members = {{.component = 1, .pin = 0}, {.component = -1, .pin = 0}};
        one.offsets.netBegin = {0, 2};
        EXPECT_EQ(pinLength(one.offsets, one.design), want) << orient;
    }
}

TEST(KitPinLength, CountsEveryPortOfATerminal)
{
    const Case one;
    // u's second pin at (218, 436), v's first at (222, 404), a terminal at (5, 6); then one at (7, 8) and (9,
    // 10).
    EXPECT_EQ(pinLength(one.offsets, one.design), (222 - 5) + (436 - 6) + 2 + 2);
}

TEST(KitPinLength, IsNoneForOtherComponents)
{
    Case renamed;
    renamed.design.components[1].name = "w";
    EXPECT_FALSE(pinLength(renamed.offsets, renamed.design));
    Case other;
    other.design.components[1].cellName = "B";
    EXPECT_FALSE(pinLength(other.offsets, other.design));
    Case pin; // that the master does not have
    pin.offsets.members[0].pin = 2;
    EXPECT_FALSE(pinLength(pin.offsets, pin.design));
    Case component;
    component.offsets.members[0].component = 2;
    EXPECT_FALSE(pinLength(component.offsets, component.design));
    Case master;
    master.offsets.masters[0].name = "C";
    EXPECT_FALSE(pinLength(master.offsets, master.design));
}

TEST(KitPinLength, OfAFileOfAnotherPlacementIsAnError)
{
    const TempDir dir;
    Case one;
    dir.write("d.offsets", GOOD_OFFSETS);
    Findings findings;
    EXPECT_FALSE(kit::design::pinLengthBeside(dir.path("d.place"), one.design, findings));
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].code, "other-placement");
}

TEST(KitPinLength, WithoutTheFileIsNoneAndNothingIsSaid)
{
    const TempDir dir;
    Findings findings;
    EXPECT_FALSE(kit::design::pinLengthBeside(dir.path("d.place"), Case().design, findings));
    EXPECT_TRUE(findings.empty());
}

TEST(KitPinLength, IsToldInDbuAndMicrometres)
{
    EXPECT_EQ(kit::design::pinLengthJson(15, 2).dump(), R"({"dbu":7.5,"um":3.75})");
    EXPECT_EQ(kit::design::pinLengthJson(15, 0).dump(), R"({"dbu":7.5,"um":null})");
    EXPECT_TRUE(kit::design::pinLengthJson({}, 2).isNull());
    EXPECT_EQ(kit::design::micrometresText(kit::design::pinLengthJson(15, 2)), "3.8 um");
    EXPECT_EQ(kit::design::micrometresText(kit::design::pinLengthJson(15, 0)), "? um");
}

} // namespace
