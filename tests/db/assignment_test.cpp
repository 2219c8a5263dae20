// SPDX-License-Identifier: BSD-3-Clause
// Components put into segments and onto rows, and the search for segments.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <vector>

#include "app/parameters.h"
#include "support/property.h"
#include "support/tinyDesign.h"

namespace {

using test::TinyDesign;
using Comps = std::list<Component*>;

/// A design with cells of 1, 2 and 3 sites, at index 0, 1, 2.
class Sites : public TinyDesign {
public:
    Sites()
    {
        for (const int sites : {1, 2, 3}) {
            addCell(sites, {0});
        }
    }

    /// Adds a component that is in no segment yet.
    Component* addAt(int x, int y, int cell = 1)
    {
        Component* comp = addComponent(nullptr, cell, /*siteX=*/-77);
        comp->x = x;
        comp->y = y;
        return comp;
    }

    Row* addRow(int x, int y)
    {
        auto* row = new Row;
        row->x = x;
        row->y = y;
        design.rowIndexByY[y] = static_cast<int32_t>(design.rows.size());
        design.rows.push_back(row);
        return row;
    }

    std::string assign()
    {
        return test::reportOf([this] { design.initCompInSegments(); });
    }

    std::string assignToRows()
    {
        return test::reportOf([this] { design.initCompOnRows(); });
    }
};

// initCompInSegments()

TEST(InitCompInSegments, ComponentJoinsTheSegmentThatHoldsIt)
{
    Sites t;
    Segment* lower = t.addSegment(0, 0, 10);
    Segment* upper = t.addSegment(0, 1900, 10);
    Component* a = t.addAt(380, 1900);
    Component* b = t.addAt(0, 0);
    EXPECT_EQ(t.assign(), "");
    EXPECT_EQ(lower->components, (Comps{b}));
    EXPECT_EQ(upper->components, (Comps{a}));
    EXPECT_EQ(a->siteX, 2);
    EXPECT_EQ(b->siteX, 0);
}

TEST(InitCompInSegments, NeighbouringRowsThatItOnlyTouchesAreNoHits)
{
    Sites t;
    t.addSegment(0, 0, 10);
    Segment* middle = t.addSegment(0, 1900, 10);
    t.addSegment(0, 3800, 10);
    Component* comp = t.addAt(380, 1900);
    t.assign();
    EXPECT_EQ(middle->components, (Comps{comp}));
}

TEST(InitCompInSegments, OfSeveralSegmentsTheFirstFoundWins)
{
    Sites t;
    Segment* right = t.addSegment(950, 0, 5);
    Segment* left = t.addSegment(0, 0, 5);
    Component* comp = t.addAt(760, 0, 2); // on the last site of one and the first two of the other
    t.assign();
    EXPECT_EQ(right->components, (Comps{comp}));
    EXPECT_TRUE(left->components.empty());
    EXPECT_EQ(comp->siteX, -1);
}

TEST(InitCompInSegments, SegmentThatTheComponentOnlyTouchesCounts)
{
    Sites t;
    Segment* first = t.addSegment(0, 0, 5);
    Segment* second = t.addSegment(950, 0, 5);
    Component* comp = t.addAt(950, 0);
    t.assign();
    EXPECT_EQ(first->components, (Comps{comp}));
    EXPECT_TRUE(second->components.empty());
    EXPECT_EQ(comp->siteX, 5);
}

TEST(InitCompInSegments, ReachesAsFarAsItsWidthInSites)
{
    Sites t;
    Segment* far = t.addSegment(0, 3800, 1);
    Segment* segment = t.addSegment(950, 0, 5);
    t.addAt(0, 3800);
    Component* touching = t.addAt(570, 0);
    Component* tooFar = t.addAt(570 - 1, 0);
    t.design.lut.cells[1]->width = 5000; // of no concern
    t.assign();
    EXPECT_EQ(segment->components.size(), 2U) << "the second joins it by the segment found last";
    EXPECT_EQ(touching->siteX, -2);
    EXPECT_EQ(tooFar->siteX, -2);
    EXPECT_EQ(far->components.size(), 1U);
}

TEST(InitCompInSegments, WidthInSitesIsMeasuredInTheSiteWidthOfNow)
{
    Sites t;
    t.addSegment(0, 3800, 1);
    Segment* segment = t.addSegment(950, 0, 5);
    t.addAt(0, 3800);
    t.addAt(600, 0); // 2 sites of 190 reach 980, of 170 reach 940
    t.assign();
    EXPECT_EQ(segment->components.size(), 1U);
    SITE_WIDTH = 170;
    t.assign();
    EXPECT_EQ(segment->components.size(), 0U);
}

TEST(InitCompInSegments, XThatIsNoSiteBoundaryGoesToTheNextSite)
{
    Sites t;
    t.addSegment(950, 0, 5);
    Component* comp = t.addAt(1000, 0);
    t.assign();
    EXPECT_EQ(comp->siteX, 1);
    EXPECT_EQ(comp->x, 1000) << "x stays as read";
}

struct SiteCase {
    const char* name;
    int x;
    int want;
};

void PrintTo(const SiteCase& row, std::ostream* out)
{
    *out << row.x;
}

class SiteOf : public testing::TestWithParam<SiteCase> {};

TEST_P(SiteOf, IsTheDistanceInSitesRoundedUpInSinglePrecision)
{
    Sites t;
    t.addSegment(0, 0, 100'000);
    t.addRow(0, 0);
    Component* comp = t.addAt(GetParam().x, 0);
    t.assign();
    EXPECT_EQ(comp->siteX, GetParam().want);
    comp->siteX = -77;
    t.assignToRows();
    EXPECT_EQ(comp->siteX, GetParam().want);
}

const SiteCase SITE_CASES[] = {
    {"AtTheStart", 0, 0},
    {"OneUnit", 1, 1},
    {"OneSite", 190, 1},
    {"OneSiteAndOneUnit", 191, 2},
    {"LeftOfTheStart", -1, 0},
    {"OneSiteLeft", -190, -1},
    {"OneSiteAndOneUnitLeft", -191, -1},
    {"LargestThatIsExact", 16'777'191, 88'302},
    {"RoundedDownToAWholeSite", 16'777'381, 88'302}, // exactly it would be 88303
};

INSTANTIATE_TEST_SUITE_P(InitComp, SiteOf, testing::ValuesIn(SITE_CASES),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(InitCompInSegments, ListsAreSortedBySiteX)
{
    Sites t;
    Segment* segment = t.addSegment(0, 0, 10);
    Component* a = t.addAt(950, 0);
    Component* b = t.addAt(0, 0);
    Component* c = t.addAt(380, 0);
    t.assign();
    EXPECT_EQ(segment->components, (Comps{b, c, a}));
}

TEST(InitCompInSegments, ComponentsOfEqualSiteXKeepFileOrder)
{
    Sites t;
    Segment* segment = t.addSegment(0, 0, 10);
    Component* a = t.addAt(380, 0);
    Component* first = t.addAt(0, 0);
    Component* b = t.addAt(191, 0); // site 2 as well
    Component* c = t.addAt(380, 0);
    t.assign();
    EXPECT_EQ(segment->components, (Comps{first, a, b, c}));
}

TEST(InitCompInSegments, RunAgainRebuildsTheListsFromXAndY)
{
    Sites t;
    Segment* lower = t.addSegment(0, 0, 10);
    Segment* upper = t.addSegment(0, 1900, 10);
    Component* a = t.addAt(0, 0);
    Component* b = t.addAt(380, 0);
    t.assign();
    a->y = 1900;
    a->x = 570;
    t.assign();
    EXPECT_EQ(lower->components, (Comps{b}));
    EXPECT_EQ(upper->components, (Comps{a}));
    EXPECT_EQ(a->siteX, 3);
}

TEST(InitCompInSegments, FirstComponentThatOverlapsNoneIsReportedAndLeftOut)
{
    Sites t;
    Segment* segment = t.addSegment(0, 0, 10);
    Component* lost = t.addAt(-50, 9500, 2);
    Component* good = t.addAt(0, 0);
    EXPECT_EQ(t.assign(), "WARNING| cannot assign component: u0(C2)| (-50, 9500) \n");
    EXPECT_EQ(segment->components, (Comps{good}));
    EXPECT_EQ(lost->siteX, -77) << "not touched";
}

TEST(InitCompInSegments, LaterComponentThatOverlapsNoneJoinsTheSegmentFoundLast)
{
    Sites t;
    Segment* lower = t.addSegment(0, 0, 10);
    Segment* upper = t.addSegment(190, 1900, 10);
    Component* a = t.addAt(570, 0);
    Component* b = t.addAt(570, 1900);
    Component* lost = t.addAt(191, 9500);
    Component* lostToo = t.addAt(-9500, 0);
    EXPECT_EQ(t.assign(), "");
    EXPECT_EQ(lower->components, (Comps{a}));
    EXPECT_EQ(upper->components, (Comps{lostToo, lost, b}));
    EXPECT_EQ(lost->siteX, 1);
    EXPECT_EQ(lostToo->siteX, -51);
}

TEST(InitCompInSegments, SegmentFoundLastMayBeThatOfASearchAroundAPoint)
{
    Sites t;
    Segment* segment = t.addSegment(0, 0, 10);
    Component* lost = t.addAt(190, 9500);
    t.design.searchSegments(0, 0, 1);
    t.design.searchSegments(0, 9500, 1); // finds none
    EXPECT_EQ(t.assign(), "");
    EXPECT_EQ(segment->components, (Comps{lost}));
}

TEST(InitCompInSegments, SegmentFoundLastIsNotThatOfAnotherDesign)
{
    Sites other;
    other.addSegment(0, 0, 10);
    other.design.searchSegments(0, 0, 1);
    Sites t;
    t.addSegment(0, 0, 10);
    t.addAt(0, 9500);
    EXPECT_EQ(t.assign(), "WARNING| cannot assign component: u0(C1)| (0, 9500) \n");
}

TEST(InitCompInSegments, WithoutSegmentsEveryComponentIsReported)
{
    Sites t;
    t.addAt(0, 0, 0);
    t.addAt(1, 2, 1);
    EXPECT_EQ(t.assign(), "WARNING| cannot assign component: u0(C0)| (0, 0) \n"
                          "WARNING| cannot assign component: u1(C1)| (1, 2) \n");
}

/// Segments that a component overlaps, by a linear scan.
std::vector<Segment*> overlapping(const Design& design, const Component& comp)
{
    const int right = comp.x + design.cellOf(comp).siteWidth * SITE_WIDTH;
    std::vector<Segment*> hits;
    for (Segment* segment : design.segments) {
        if (comp.x <= segment->x + segment->numSites * SITE_WIDTH && segment->x <= right &&
            comp.y + 1 <= segment->y + SITE_HEIGHT && segment->y <= comp.y + SITE_HEIGHT - 1) {
            hits.push_back(segment);
        }
    }
    return hits;
}

/// The list that every component is in; a failure of the property if it is in two.
std::map<const Component*, Segment*> homesOf(const Design& design)
{
    std::map<const Component*, Segment*> homes;
    for (Segment* segment : design.segments) {
        for (const Component* comp : segment->components) {
            RC_ASSERT(homes.emplace(comp, segment).second);
        }
    }
    return homes;
}

/// @param most  number of segments, at most
void checkAssignment(int most)
{
    Sites t;
    const int segmentCount = test::draw(0, most + 1);
    for (int i = 0; i < segmentCount; ++i) {
        t.addSegment(test::draw(-20, 20) * 100, test::draw(-3, 4) * 1900, test::draw(0, 8));
    }
    const int compCount = test::draw(0, 30);
    for (int i = 0; i < compCount; ++i) {
        t.addAt(test::draw(-25, 35) * 100, test::draw(-8, 9) * 950, test::draw(0, 3));
    }
    const std::string report = t.assign();

    const auto homes = homesOf(t.design);
    Segment* foundLast = nullptr;
    std::string warnings;
    for (const Component* comp : t.design.components) {
        const std::vector<Segment*> hits = overlapping(t.design, *comp);
        const auto home = homes.find(comp);
        if (hits.empty() && foundLast == nullptr) {
            RC_ASSERT(home == homes.end());
            warnings += "WARNING| cannot assign component: " + comp->name + "(" + comp->cellName + ")| (" +
                        std::to_string(comp->x) + ", " + std::to_string(comp->y) + ") \n";
            continue;
        }
        RC_ASSERT(home != homes.end());
        if (hits.empty()) {
            RC_ASSERT(home->second == foundLast);
        } else if (segmentCount <= 8) { // one leaf, which is searched in the order of the entries
            RC_ASSERT(home->second == hits.front());
        } else {
            RC_ASSERT(std::count(hits.begin(), hits.end(), home->second) == 1);
        }
        foundLast = home->second;
        RC_ASSERT(comp->siteX == static_cast<int>(std::ceil((comp->x - foundLast->x) / 190.0)));
    }
    RC_ASSERT(report == warnings);

    for (const Segment* segment : t.design.segments) {
        std::vector<Component*> want;
        std::copy_if(t.design.components.begin(), t.design.components.end(), std::back_inserter(want),
                     [&](const Component* comp) {
                         const auto home = homes.find(comp);
                         return home != homes.end() && home->second == segment;
                     });
        std::stable_sort(want.begin(), want.end(), [](auto* a, auto* b) { return a->siteX < b->siteX; });
        RC_ASSERT(
            std::equal(want.begin(), want.end(), segment->components.begin(), segment->components.end()));
    }
}

PROPERTY(InitCompInSegments, AssignsLikeALinearScanWhereOneLeafHoldsAllSegments)
{
    checkAssignment(8);
}

PROPERTY(InitCompInSegments, AssignsToASegmentUnderTheComponentInATreeOfManyLeaves)
{
    checkAssignment(60);
}

// initCompOnRows()

TEST(InitCompOnRows, ComponentJoinsTheRowWithExactlyItsY)
{
    Sites t;
    Row* upper = t.addRow(380, 1900);
    Row* lower = t.addRow(0, 0);
    Component* a = t.addAt(1000, 1900);
    Component* b = t.addAt(-190, 0);
    EXPECT_EQ(t.assignToRows(), "");
    EXPECT_EQ(upper->components, (std::vector<Component*>{a}));
    EXPECT_EQ(lower->components, (std::vector<Component*>{b}));
    EXPECT_EQ(a->siteX, 4) << "620 / 190, rounded up";
    EXPECT_EQ(b->siteX, -1);
}

TEST(InitCompOnRows, ComponentWithoutARowIsReportedAndLeftOut)
{
    Sites t;
    Row* row = t.addRow(0, 0);
    Component* lost = t.addAt(570, 1, 2);
    Component* good = t.addAt(0, 0);
    Component* lostToo = t.addAt(-1, -1900, 0);
    EXPECT_EQ(t.assignToRows(), "WARNING| cannot assign component: u0(C2)| (570, 1) \n"
                                "WARNING| cannot assign component: u2(C0)| (-1, -1900) \n");
    EXPECT_EQ(row->components, (std::vector<Component*>{good}));
    EXPECT_EQ(lost->siteX, -77);
    EXPECT_EQ(lostToo->siteX, -77);
}

TEST(InitCompOnRows, OfTwoRowsAtOneYTheSecondTakesAll)
{
    Sites t;
    Row* first = t.addRow(0, 0);
    Row* second = t.addRow(190, 0);
    t.addAt(380, 0);
    t.assignToRows();
    EXPECT_TRUE(first->components.empty());
    EXPECT_EQ(second->components.size(), 1U);
    EXPECT_EQ(second->components[0]->siteX, 1);
}

TEST(InitCompOnRows, RowsAreSortedBySiteX)
{
    Sites t;
    Row* row = t.addRow(0, 0);
    Component* a = t.addAt(950, 0);
    Component* b = t.addAt(0, 0);
    Component* c = t.addAt(380, 0);
    t.assignToRows();
    EXPECT_EQ(row->components, (std::vector<Component*>{b, c, a}));
}

TEST(InitCompOnRows, RunAgainRebuildsTheRows)
{
    Sites t;
    Row* lower = t.addRow(0, 0);
    Row* upper = t.addRow(0, 1900);
    Component* comp = t.addAt(0, 0);
    t.assignToRows();
    comp->y = 1900;
    t.assignToRows();
    EXPECT_TRUE(lower->components.empty());
    EXPECT_EQ(upper->components.size(), 1U);
}

TEST(InitCompOnRows, LeavesTheSegments)
{
    Sites t;
    Segment* segment = t.addSegment(0, 0, 10);
    t.addRow(0, 0);
    Component* comp = t.addAt(0, 0);
    t.assign();
    t.assignToRows();
    EXPECT_EQ(segment->components, (Comps{comp}));
}

// searchSegments()

TEST(SearchSegments, FindsWhatOverlapsTheSquareSidesIncluded)
{
    Sites t;
    Segment* segment = t.addSegment(1000, 5700, 5); // to (1950, 7600)
    const std::vector<Segment*> found{segment};
    EXPECT_EQ(t.design.searchSegments(900, 5600, 100), found);
    EXPECT_EQ(t.design.searchSegments(899, 5600, 100).size(), 0U);
    EXPECT_EQ(t.design.searchSegments(900, 5599, 100).size(), 0U);
    EXPECT_EQ(t.design.searchSegments(2050, 7700, 100), found);
    EXPECT_EQ(t.design.searchSegments(2051, 7700, 100).size(), 0U);
    EXPECT_EQ(t.design.searchSegments(2050, 7701, 100).size(), 0U);
    EXPECT_EQ(t.design.searchSegments(1500, 6000, 0), found);
}

TEST(SearchSegments, ResultIsTheCallersOwn)
{
    Sites t;
    Segment* segment = t.addSegment(0, 0, 5);
    const std::vector<Segment*> first = t.design.searchSegments(0, 0, 1);
    t.design.searchSegments(90000, 90000, 1);
    EXPECT_EQ(first, (std::vector<Segment*>{segment}));
}

TEST(SearchSegments, ResultIsInSearchOrder)
{
    Sites t;
    Segment* a = t.addSegment(1900, 0, 5);
    Segment* b = t.addSegment(0, 0, 5);
    Segment* c = t.addSegment(950, 0, 5);
    EXPECT_EQ(t.design.searchSegments(0, 0, 9999), (std::vector<Segment*>{a, b, c}));
}

PROPERTY(SearchSegments, FindsWhatALinearScanFinds)
{
    Sites t;
    const int count = test::draw(0, 60);
    for (int i = 0; i < count; ++i) {
        t.addSegment(test::draw(-3000, 3000), test::draw(-6000, 6000), test::draw(0, 20));
    }
    const int x = test::draw(-4000, 4000);
    const int y = test::draw(-8000, 8000);
    const int range = test::draw(-200, 3000);
    std::vector<Segment*> found = t.design.searchSegments(x, y, range);
    std::sort(found.begin(), found.end(), [](auto* a, auto* b) { return a->id < b->id; });
    std::vector<Segment*> want;
    for (Segment* segment : t.design.segments) {
        if (segment->x <= x + range && x - range <= segment->x + segment->numSites * 190 &&
            segment->y <= y + range && y - range <= segment->y + 1900) {
            want.push_back(segment);
        }
    }
    RC_ASSERT(found == want);
}

} // namespace
