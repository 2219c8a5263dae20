// SPDX-License-Identifier: BSD-3-Clause
// Rows, macros and components of generated designs, as the placer reads them.
#include <map>

#include "app/parameters.h"
#include "kit/kitRun.h"
#include "support/pattern.h"

namespace {

using test::contentOf;
using test::GeneratedDesign;
using test::ReadDesign;
using test::Words;

struct LegalCase {
    const char* name;
    Words options;
    double utilisation; ///< of the segments, per cent
    size_t macros;
};

void PrintTo(const LegalCase& row, std::ostream* out)
{
    *out << row.name;
}

class Legal : public testing::TestWithParam<LegalCase> {
protected:
    GeneratedDesign m_files{GetParam().options};
    ReadDesign m_read{m_files};
    const Design& m_design{m_read.design};
};

TEST_P(Legal, EveryComponentIsInASegmentOnASiteAndOverlapsNone)
{
    size_t placed = 0;
    for (const Segment* segment : m_design.segments) {
        int32_t free = 0; // first site that the components to the left leave
        for (const Component* comp : segment->components) {
            EXPECT_EQ(comp->x, segment->x + comp->siteX * SITE_WIDTH) << comp->name;
            EXPECT_EQ(comp->y, segment->y) << comp->name;
            EXPECT_GE(comp->siteX, free) << comp->name;
            free = comp->siteX + m_design.cellOf(*comp).siteWidth;
            ++placed;
        }
        EXPECT_LE(free, segment->numSites);
    }
    EXPECT_EQ(placed, m_design.components.size());
}

TEST_P(Legal, TheSegmentsAreUtilisedAsAsked)
{
    int64_t used = 0;
    for (const Component* comp : m_design.components) {
        used += m_design.cellOf(*comp).siteWidth;
    }
    int64_t capacity = 0;
    for (const Segment* segment : m_design.segments) {
        capacity += segment->numSites;
    }
    EXPECT_NEAR(100.0 * static_cast<double>(used) / static_cast<double>(capacity), GetParam().utilisation,
                1.0);
}

TEST_P(Legal, MacrosCutTheRowsAndOverlapNone)
{
    ASSERT_EQ(m_design.macros.size(), GetParam().macros);
    EXPECT_EQ(m_design.segments.size() > m_design.rows.size(), GetParam().macros > 0);
    for (const Macro* a : m_design.macros) {
        for (const Macro* b : m_design.macros) {
            EXPECT_TRUE(a == b || a->x + a->width <= b->x || b->x + b->width <= a->x ||
                        a->y + a->height <= b->y || b->y + b->height <= a->y)
                << a->name << ' ' << b->name;
        }
        EXPECT_EQ(a->width % SITE_WIDTH, 0);
        EXPECT_EQ(a->height % SITE_HEIGHT, 0);
    }
}

TEST_P(Legal, FreeSitesAreSpreadOverTheSegments)
{
    int64_t leftHalf = 0;
    int64_t rightHalf = 0;
    for (const Segment* segment : m_design.segments) {
        for (const Component* comp : segment->components) {
            const int32_t centre = 2 * comp->siteX + m_design.cellOf(*comp).siteWidth;
            (centre < segment->numSites ? leftHalf : rightHalf) += m_design.cellOf(*comp).siteWidth;
        }
    }
    EXPECT_NEAR(static_cast<double>(leftHalf) / static_cast<double>(leftHalf + rightHalf), 0.5, 0.05);
}

TEST_P(Legal, NoRecordOrLineIsDamaged)
{
    EXPECT_EQ(m_read.report.find("WARNING"), std::string::npos);
    EXPECT_EQ(m_read.report.find("ERROR"), std::string::npos);
    std::istringstream lines(contentOf(m_files.base() + ".place"));
    for (std::string line; std::getline(lines, line);) {
        ASSERT_LT(line.size(), 255U);
    }
}

const LegalCase LEGAL_CASES[] = {
    {"Defaults", {}, 80, 0},
    {"Sparse", {"--utilization", "10"}, 10, 0},
    {"Dense", {"--utilization", "95"}, 95, 0},
    {"DenseShortRows", {"--utilization", "95", "--sites-per-row", "50"}, 95, 0},
    {"OneMacro", {"--macros", "1"}, 80, 1},
    {"ManyMacros", {"--macros", "23", "--utilization", "90", "--components", "3000"}, 90, 23},
    {"RowsTooLongForTheCells", {"--sites-per-row", "8000"}, 80, 0},
    {"FineStep", {"--site-step", "190", "--macros", "3"}, 80, 3},
    {"OddStep", {"--site-step", "123", "--macros", "3"}, 80, 3},
};

INSTANTIATE_TEST_SUITE_P(KitDesign, Legal, testing::ValuesIn(LEGAL_CASES),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(KitDesign, HasTheComponentsAskedFor)
{
    const GeneratedDesign files({"--components", "1234"});
    EXPECT_EQ(ReadDesign(files).design.components.size(), 1234U);
}

TEST(KitDesign, NoRowIsLongerThanAskedOrMuchShorter)
{
    const GeneratedDesign files({"--components", "5000", "--sites-per-row", "300"});
    const ReadDesign read(files);
    for (const Row* row : read.design.rows) {
        EXPECT_LE(row->numSites, 300);
        EXPECT_GE(row->numSites, 290);
    }
}

TEST(KitDesign, StepAndRowHeightFollowTheSiteStep)
{
    const GeneratedDesign files({"--site-step", "190"});
    const ReadDesign read(files);
    EXPECT_EQ(SITE_WIDTH, 190);
    EXPECT_EQ(SITE_HEIGHT, 1400);
    for (const Row* row : read.design.rows) {
        EXPECT_EQ(row->step, 190);
    }
}

TEST(KitDesign, CoreBoxIsThatOfTheRows)
{
    const GeneratedDesign files({"--site-step", "123"}); // no whole micrometres
    ReadDesign read(files);
    Design& design = read.design;
    design.initDesignBound();
    const int32_t bounds[] = {design.boundXl, design.boundXh, design.boundYl, design.boundYh};
    const std::string place = contentOf(files.base() + ".place");
    size_t i = 0;
    for (const test::Match& edge : test::matchesOf(place, "CORE_BOX_\\w+ REAL ([0-9]+)\\.([0-9]{4}) ;")) {
        ASSERT_LT(i, 4U);
        EXPECT_EQ((std::stoi(edge[1]) * 10'000 + std::stoi(edge[2])) / 5, bounds[i++]);
    }
    EXPECT_EQ(i, 4U);
}

class Mirrored : public testing::TestWithParam<int> {};

TEST_P(Mirrored, ShareOfTheComponents)
{
    const GeneratedDesign files({"--mirrored", std::to_string(GetParam()), "--components", "4000"});
    const ReadDesign read(files);
    const auto count = std::count_if(read.design.components.begin(), read.design.components.end(),
                                     [](const Component* comp) { return comp->orient == Component::FN; });
    EXPECT_NEAR(static_cast<double>(count) / 40.0, GetParam(), GetParam() % 100 == 0 ? 0.0 : 3.0);
}

INSTANTIATE_TEST_SUITE_P(KitDesign, Mirrored, testing::Values(0, 30, 100), testing::PrintToStringParamName());

/// FNV-1a.
uint64_t checksum(const std::string& text)
{
    uint64_t sum = 0xcbf29ce484222325U;
    for (const char c : text) {
        sum = (sum ^ static_cast<unsigned char>(c)) * 0x100000001b3U;
    }
    return sum;
}

TEST(KitDesign, SameSeedGivesTheSameBytesOnEveryMachine)
{
    const Words options{"--macros", "2", "--seed", "42", "--cell-types", "104"};
    const std::string text = GeneratedDesign(options).allText();
    EXPECT_EQ(GeneratedDesign(options).allText(), text);
    EXPECT_EQ(checksum(text), 2314328301960076692U);
}

TEST(KitDesign, OtherSeedGivesOtherFiles)
{
    const GeneratedDesign one({"--seed", "1"});
    const GeneratedDesign two({"--seed", "2"});
    for (const char* extension : {".place", ".pins", ".netlist"}) {
        EXPECT_NE(contentOf(one.base() + extension), contentOf(two.base() + extension)) << extension;
    }
    EXPECT_NE(contentOf(one.lib() + "/C5.color"), contentOf(two.lib() + "/C5.color"));
}

TEST(KitDesign, NetOptionsLeaveThePlacementAsItIs)
{
    const GeneratedDesign one({"--wide-nets", "0"});
    const GeneratedDesign two({"--wide-nets", "50", "--window-rows", "5"});
    EXPECT_EQ(contentOf(one.base() + ".place"), contentOf(two.base() + ".place"));
    EXPECT_NE(contentOf(one.base() + ".netlist"), contentOf(two.base() + ".netlist"));
}

} // namespace
