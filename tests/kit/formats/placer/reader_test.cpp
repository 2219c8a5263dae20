// SPDX-License-Identifier: BSD-3-Clause
// What the kit's reader and geometry say of sound designs is what the placer says.
#include "kit/formats/placer/reader.h"

#include "db/component.h"
#include "db/macro.h"
#include "db/net.h"
#include "db/pin.h"
#include "db/row.h"
#include "db/segment.h"
#include "kit/base/fault.h"
#include "kit/design/spacing.h"
#include "kit/design/stretches.h"
#include "kit/kitRun.h"

namespace {
using kit::Findings;
using kit::design::freeStretches;
using kit::design::occupancyOf;
using kit::design::rowHeight;
using kit::design::siteWidth;
using kit::design::widthInSites;
using test::GeneratedDesign;
using test::ReadDesign;

/// A generated design to both.
class BothReaders : public testing::Test {
protected:
    BothReaders()
        : files({"--macros", "5", "--mirrored", "40"}), placer(files),
          kit(kit::placer::readDesign({files.base(), files.lib()}, findings))
    {
    }

    GeneratedDesign files;
    ReadDesign placer;
    Findings findings;
    kit::placer::Design kit;
};

TEST_F(BothReaders, FindNoFault)
{
    EXPECT_TRUE(findings.empty());
}

TEST_F(BothReaders, ReadTheSameComponents)
{
    ASSERT_EQ(kit.components.size(), placer.design.components.size());
    for (size_t i = 0; i < kit.components.size(); ++i) {
        const auto& ours = kit.components[i];
        const Component& theirs = *placer.design.components[i];
        EXPECT_EQ(
            std::tie(ours.name, ours.cellName, ours.cell, ours.x, ours.y, ours.orient),
            std::tie(theirs.name, theirs.cellName, theirs.cellIdx, theirs.x, theirs.y, theirs.orientName));
        EXPECT_EQ(widthInSites(kit, ours),
                  placer.design.lut.cells[static_cast<size_t>(ours.cell)]->siteWidth);
    }
}

TEST_F(BothReaders, ReadTheSameNets)
{
    std::vector<const kit::placer::Net*> wired;
    for (const auto& net : kit.nets) {
        if (net.members.size() > 1) {
            wired.push_back(&net);
        }
    }
    ASSERT_EQ(wired.size(), placer.design.nets.size());
    for (size_t i = 0; i < wired.size(); ++i) {
        std::vector<std::string> ours;
        std::vector<std::string> theirs;
        for (const auto& member : wired[i]->members) {
            if (member.component >= 0) {
                ours.push_back(kit.components[static_cast<size_t>(member.component)].name);
            }
        }
        for (const Component* comp : placer.design.nets[i]->components) {
            theirs.push_back(comp->name);
        }
        EXPECT_EQ(ours, theirs);
        EXPECT_EQ(wired[i]->members.size(), theirs.size() + placer.design.nets[i]->pins.size());
    }
}

TEST_F(BothReaders, ReadTheSamePinsAndMacros)
{
    ASSERT_EQ(kit.pins.size(), placer.design.pins.size());
    for (size_t i = 0; i < kit.pins.size(); ++i) {
        const Pin& theirs = *placer.design.pins[i];
        EXPECT_EQ(std::tie(kit.pins[i].name, kit.pins[i].x, kit.pins[i].y),
                  std::tie(theirs.name, theirs.x, theirs.y));
    }
    ASSERT_EQ(kit.macros.size(), placer.design.macros.size());
    ASSERT_GT(kit.macros.size(), 0U);
    for (size_t i = 0; i < kit.macros.size(); ++i) {
        const auto& ours = kit.macros[i];
        const Macro& theirs = *placer.design.macros[i];
        EXPECT_EQ(std::tie(ours.name, ours.x, ours.y, ours.width, ours.height),
                  std::tie(theirs.name, theirs.x, theirs.y, theirs.width, theirs.height));
    }
}

TEST_F(BothReaders, CutTheSameSegments)
{
    std::vector<std::array<int32_t, 3>> ours;
    std::vector<std::array<int32_t, 3>> theirs;
    for (const auto& stretch : freeStretches(kit)) {
        ours.push_back({kit.rows[static_cast<size_t>(stretch.row)].y, stretch.x, stretch.numSites});
    }
    for (const Segment* segment : placer.design.segments) {
        if (segment->numSites > 0) {
            theirs.push_back({segment->y, segment->x, segment->numSites});
        }
    }
    EXPECT_EQ(ours, theirs);
    EXPECT_GT(ours.size(), kit.rows.size());
}

TEST_F(BothReaders, PutComponentsIntoTheSameSegments)
{
    const kit::design::Occupancy occupancy = occupancyOf(kit);
    ASSERT_EQ(occupancy.components.size(), placer.design.segments.size());
    for (size_t i = 0; i < occupancy.components.size(); ++i) {
        std::vector<std::string> ours;
        std::vector<std::string> theirs;
        for (const int32_t comp : occupancy.components[i]) {
            ours.push_back(kit.components[static_cast<size_t>(comp)].name);
        }
        for (const Component* comp : placer.design.segments[i]->components) {
            theirs.push_back(comp->name);
        }
        EXPECT_EQ(ours, theirs);
    }
}

TEST_F(BothReaders, AskForTheSameSpacings)
{
    kit::design::Spacing spacing(kit.cells, 185);
    const auto cells = static_cast<int32_t>(kit.cells.size());
    int64_t spaced = 0;
    for (int32_t a = 0; a < cells; ++a) {
        for (int32_t b = 0; b < cells; ++b) {
            std::vector<int32_t> theirs;
            for (const auto& row :
                 placer.design.lut.distTable[static_cast<size_t>(a)][static_cast<size_t>(b)]) {
                theirs.insert(theirs.end(), row.begin(), row.end());
            }
            EXPECT_EQ(spacing.between(a, b), theirs);
            spaced += std::count(theirs.begin(), theirs.end(), 1);
        }
    }
    EXPECT_GT(spaced, 0);
}

TEST(Reader, EndsOnlyIfAFileCannotBeOpened)
{
    Findings findings;
    EXPECT_THROW(kit::placer::readDesign({"/nowhere/d", "/nowhere"}, findings), kit::Fault);
}

struct StretchCase {
    const char* name;
    std::vector<std::pair<int32_t, int32_t>> macros; ///< x and width, DBU; the row has 10 sites of 190
    std::vector<std::pair<int32_t, int32_t>> want;   ///< x, DBU, and sites
};

void PrintTo(const StretchCase& row, std::ostream* out)
{
    *out << row.name;
}

class Stretches : public testing::TestWithParam<StretchCase> {};

TEST_P(Stretches, AreWhatNoMacroCovers)
{
    kit::placer::Design design;
    design.cells.emplace_back().height = 1900;
    design.rows.push_back({"row_0", "core", 0, 0, "N", 10, 190, 1});
    for (const auto& [x, width] : GetParam().macros) {
        design.macros.push_back({"m", x, 0, width, 1900, 1});
    }
    std::vector<std::pair<int32_t, int32_t>> stretches;
    for (const auto& stretch : freeStretches(design)) {
        stretches.emplace_back(stretch.x, stretch.numSites);
    }
    EXPECT_EQ(stretches, GetParam().want);
}

const StretchCase STRETCHES[] = {
    {"NoMacro", {}, {{0, 10}}},
    {"OneInside", {{570, 380}}, {{0, 3}, {950, 5}}},
    {"OverTheLeftEnd", {{-380, 570}}, {{190, 9}}},
    {"OverTheRightEnd", {{1520, 760}}, {{0, 8}}},
    {"OverBothEnds", {{-190, 2280}}, {}},
    {"TwoThatOverlap", {{380, 570}, {570, 190}}, {{0, 2}, {950, 5}}},
    {"TwoThatTouch", {{380, 190}, {570, 190}}, {{0, 2}, {760, 6}}},
    {"GapUnderASite", {{0, 190}, {300, 270}}, {{570, 7}}},
    {"OffGrid", {{100, 100}}, {{200, 8}}},
    {"BehindTheRow", {{1900, 190}}, {{0, 10}}},
};

INSTANTIATE_TEST_SUITE_P(OfARow, Stretches, testing::ValuesIn(STRETCHES), testing::PrintToStringParamName());

TEST(RowHeight, IsTheLeastDistanceOfTwoRows)
{
    kit::placer::Design design;
    EXPECT_EQ(rowHeight(design), 1);
    design.cells.emplace_back().height = 1400;
    design.rows.push_back({"a", "core", 0, 5000, "N", 10, 380, 1});
    EXPECT_EQ(rowHeight(design), 1400);
    EXPECT_EQ(siteWidth(design), 190);
    design.rows.push_back({"b", "core", 0, 0, "N", 10, 380, 2});
    design.rows.push_back({"c", "core", 0, 2000, "N", 10, 380, 3});
    design.rows.push_back({"d", "core", 5000, 2000, "N", 10, 380, 4});
    EXPECT_EQ(rowHeight(design), 2000);
    EXPECT_EQ(siteWidth(design), 380);
}

} // namespace
