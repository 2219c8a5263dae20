// SPDX-License-Identifier: BSD-3-Clause
// The metal of cells as LEF files have it.
#include "kit/formats/placer/metal.h"

#include "kit/base/files/writeOutput.h"
#include "kit/kitRun.h"

namespace {

using kit::Findings;
using kit::geometry::Labelled;
using kit::placer::Cell;
using kit::placer::readMetal;
using kit::placer::TrueMetal;
using kit::placer::truePiecesOf;

const char* const METAL_TEXT = "VIRELOCE METAL 1\nSITE 200000\nSIZE 400000 2000000\nRECTS 2\n"
                               "50500 300000 90500 900000\n-10 0 400000 80000\nEND\n";

TEST(KitMetal, IsReadAsItWasWritten)
{
    const test::TempDir dir;
    Findings findings;
    const std::optional<TrueMetal> metal = readMetal(dir.write("INV.metal", METAL_TEXT), findings);
    EXPECT_TRUE(findings.empty());
    ASSERT_TRUE(metal.has_value());
    EXPECT_EQ(metal->height, 2000000);
    EXPECT_EQ(metal->rects.at(1), (kit::geometry::Rect{-10, 0, 400000, 80000}));
    test::writeOutput(dir.path("again"), [&](kit::OutputFile& out) { writeMetal(out, *metal); });
    EXPECT_EQ(test::contentOf(dir.path("again")), METAL_TEXT);
}

TEST(KitMetal, DamagedFileIsAnErrorAndNothingIsRead)
{
    const std::string text = METAL_TEXT;
    const auto with = [&text](const std::string& from, const std::string& to) {
        return std::string(text).replace(text.find(from), from.size(), to);
    };
    const test::TempDir dir;
    for (const std::string& damaged :
         {std::string(), text.substr(0, text.size() - 5), text + "1", with("METAL 1", "METAL 2"),
          with("SITE 200000", "SITE 0"), with("RECTS 2", "RECTS 3"), with("RECTS 2", "RECTS -1"),
          with("RECTS 2", "RECTS 2000000000"), with("SITE 200000", "SITE 1000000001"), with("90500", "50500"),
          with("90500", "9x"), with("90500", "10000000001"), with("90500", "99999999999999999999")}) {
        Findings findings;
        EXPECT_FALSE(readMetal(dir.write("INV.metal", damaged), findings).has_value());
        ASSERT_EQ(findings.size(), 1U) << damaged;
        EXPECT_EQ(findings[0].code, "metal-file");
    }
}

/// A cell of two sites of 0.2 um with a rail, cut to its width, and a bar that is two shapes.
Cell cellOf(const std::vector<kit::geometry::Rect>& metal)
{
    Cell cell;
    cell.width = 380;
    cell.height = 1900;
    cell.shapes.resize(3);
    cell.shapes[0].rects = {{0, 0, 380, 76}, {0, -5, 0, 5}};
    cell.shapes[1].rects = {{47, 285, 86, 500}};
    cell.shapes[2].rects = {{47, 500, 86, 855}};
    cell.trueMetal = {200'000, 400'000, 2'000'000, metal};
    return cell;
}

TEST(KitMetal, IsCutByTheShapes)
{
    const Cell cell = cellOf({{-10, 0, 400'010, 80'000}, {50'000, 300'500, 90'000, 900'000}});
    EXPECT_EQ(truePiecesOf(cell), (std::vector<Labelled>{{{0, 0, 400'000, 80'000}, 0},
                                                         {{50'000, 300'500, 90'000, 526'316}, 1},
                                                         {{50'000, 526'315, 90'000, 900'000}, 2}}));
}

TEST(KitMetal, OfOtherShapesIsNotTaken)
{
    EXPECT_TRUE(truePiecesOf(cellOf({{0, 0, 400'000, 80'000}})).empty()) << "shapes without metal";
    EXPECT_TRUE(truePiecesOf(cellOf({{0, 0, 400'000, 80'000},
                                     {50'000, 300'000, 90'000, 900'000},
                                     {200'000, 300'000, 210'000, 400'000}}))
                    .empty())
        << "metal of no shape";
    Cell unknown = cellOf({});
    unknown.trueMetal.reset();
    EXPECT_TRUE(truePiecesOf(unknown).empty());
}

} // namespace
