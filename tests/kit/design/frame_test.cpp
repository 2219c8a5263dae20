// SPDX-License-Identifier: BSD-3-Clause
#include "kit/design/coloredPlacement.h"

#include <gtest/gtest.h>

#include "kit/formats/gds/gdsNames.h"
#include "kit/formats/placer/reader.h"
#include "support/guards.h"

namespace {

using kit::design::Frame;

/// The frame of the placement "some.place" that begins with this text.
Frame frameOf(const std::string& text)
{
    const test::TempDir dir;
    kit::placer::Design design;
    kit::Findings findings;
    const std::string path = dir.write("some.place", text + "ROW r core 0 0 N DO 10 BY 1 STEP 190 0 ;\n");
    kit::placer::readPlacement(path, design, findings);
    EXPECT_EQ(design.rows.size(), 1U);
    return kit::design::frameOf(design, path);
}

TEST(KitFrame, IsThatOfThePlacement)
{
    const Frame frame = frameOf("VERSION 5.6 ;\nDESIGN gcd ;\nUNITS DISTANCE MICRONS 1000 ;\n");
    EXPECT_EQ(frame.topCell, "gcd");
    EXPECT_EQ(frame.dbuPerMicron, 1000);
}

TEST(KitFrame, WithoutStatementsIsTheFileAnd2000)
{
    const Frame frame = frameOf("VERSION 5.6 ;\n");
    EXPECT_EQ(frame.topCell, "some");
    EXPECT_EQ(frame.dbuPerMicron, 2000);
}

TEST(KitFrame, PropertyOfTheDesignIsNotItsName)
{
    EXPECT_EQ(
        frameOf("PROPERTYDEFINITIONS\n  COMPONENTPIN w REAL ;\n  DESIGN A REAL 0 ;\n  DESIGN B REAL 1 ;\n"
                "  DESIGN C REAL 0 ;\n  DESIGN D REAL 1 ;\n  DESIGN E STRING ;\nEND PROPERTYDEFINITIONS\n")
            .topCell,
        "some");
}

TEST(KitFrame, FirstNameStays)
{
    EXPECT_EQ(frameOf("DESIGN a ;\nDESIGN b ;\n").topCell, "a");
}

TEST(KitFrame, UnitsThatAreNoPositiveIntegerAre2000)
{
    for (const char* const units : {"0", "-1", "1.5", "many", ""}) {
        EXPECT_EQ(frameOf(std::string("UNITS DISTANCE MICRONS ") + units + " ;\n").dbuPerMicron, 2000)
            << units;
    }
}

TEST(KitFrame, NameIsOneOfAGdsFile)
{
    EXPECT_EQ(frameOf("DESIGN top/a-b ;\n").topCell, "top_a_b");
    EXPECT_EQ(frameOf("DESIGN " + std::string(40, 'x') + " ;\n").topCell, std::string(32, 'x'));
    EXPECT_EQ(kit::gds::gdsName(""), "_");
}

} // namespace
