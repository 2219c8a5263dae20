// SPDX-License-Identifier: BSD-3-Clause
// Legal places where there are any, and few changes.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "kit/engines/place/arrange.h"
#include "kit/engines/place/rescueCase.h"

namespace {

using kit::place::Rescue;
using kit::placer::Rect;
using test::RescueCase;

namespace placer = kit::placer;

/// Metal at the left edge of a cell, and at the right edge of one of two sites.
const Rect LEFT{10, 400, 60, 600};
const Rect RIGHT{320, 400, 370, 600};

TEST(KitRescuePairs, AnotherSolutionComesBeforeAMove)
{
    RescueCase row;
    row.addRow(10);
    const int32_t one = row.addCell(2, {LEFT, RIGHT}, {{1, 1}});
    const int32_t two = row.addCell(2, {LEFT, RIGHT}, {{1, 2}, {2, 1}});
    row.addComponent(one, 0);
    row.addComponent(two, 380);
    const Rescue done = row.rescue();
    EXPECT_EQ(done.pairs, 1);
    EXPECT_EQ(done.mendedPairs, 1);
    EXPECT_EQ(done.recolored, 1);
    EXPECT_EQ(done.movedNeighbours, 0);
    EXPECT_EQ(row.component(1).solution, 1);
    EXPECT_EQ(row.errors(), 0);
}

TEST(KitRescuePairs, OneCellIsMovedAsFarAsItTakes)
{
    RescueCase row;
    row.addRow(10);
    const int32_t one = row.addCell(2, {LEFT, RIGHT}, {{1, 1}});
    for (const int32_t x : {0, 380, 1140}) {
        row.addComponent(one, x);
    }
    const Rescue done = row.rescue();
    EXPECT_EQ(row.sites(), (std::vector<int32_t>{0, 3, 6})) << "the last one stood well";
    EXPECT_EQ(done.movedNeighbours, 1);
    EXPECT_EQ(row.errors(), 0);
}

/// Two cells in a row that is full, with metal where they meet; mirrored, the first one has none there.
RescueCase& fullPair(RescueCase& row, bool mirrorable)
{
    row.addRow(4);
    row.addComponent(row.addCell(2, {RIGHT}, {{1}}, mirrorable), 0);
    row.addComponent(row.addCell(2, {LEFT, RIGHT}, {{1, 1}}), 380);
    return row;
}

TEST(KitRescuePairs, ACellThatMayBeMirroredIs)
{
    RescueCase row;
    const Rescue done = fullPair(row, true).rescue();
    EXPECT_EQ(done.mirrored, std::vector<int32_t>{0});
    EXPECT_EQ(done.movedNeighbours, 0);
    EXPECT_EQ(row.errors(), 0);
}

TEST(KitRescuePairs, ACellThatIsNotKnownToBeMirrorableIsNot)
{
    RescueCase row;
    row.addRow(4);
    row.addComponent(row.addCell(2, {LEFT, RIGHT}, {{1, 1}}), 0);
    row.addComponent(row.addCell(2, {LEFT, RIGHT}, {{1, 1}}), 380);
    const Rescue done = row.rescue();
    EXPECT_EQ(done.mirrored, std::vector<int32_t>{});
    EXPECT_EQ(done.mendedPairs, 0);
    EXPECT_EQ(done.searchesGivenUp, 0);
    EXPECT_GT(row.errors(), 0);
    EXPECT_EQ(row.sites(), (std::vector<int32_t>{0, 2})) << "what cannot be helped stays";
}

TEST(KitRescuePairs, CellsChangePlacesWhereTheirOrderHasNoRoom)
{
    RescueCase row;
    row.addRow(6);
    const int32_t metal = row.addCell(2, {LEFT, RIGHT}, {{1, 1}});
    const int32_t bare = row.addCell(2, {{150, 400, 230, 600}}, {{2}});
    row.addComponent(metal, 0);
    row.addComponent(metal, 380);
    row.addComponent(bare, 760);
    const Rescue done = row.rescue();
    EXPECT_EQ(done.mendedPairs, 1);
    EXPECT_EQ(row.component(2).x, 380) << "between the others";
    EXPECT_EQ(row.errors(), 0);
}

TEST(KitRescuePairs, CellsAcrossANarrowBlockAreTooCloseAsWell)
{
    RescueCase row(300);
    row.addRow(6);
    row.addBlock(380, 190);
    const int32_t one = row.addCell(2, {LEFT, RIGHT}, {{1, 1}});
    row.addComponent(one, 0);
    row.addComponent(one, 570);
    const Rescue done = row.rescue();
    EXPECT_EQ(done.pairs, 1);
    EXPECT_EQ(row.sites(), (std::vector<int32_t>{0, 4}));
    EXPECT_EQ(row.errors(), 0);
}

TEST(KitRescuePairs, OneOfTwoThatFindNoPlaceGoesToAnotherRow)
{
    RescueCase row;
    row.addRow(4);
    row.addRow(4);
    const int32_t one = row.addCell(2, {LEFT, RIGHT}, {{1, 1}});
    row.addComponent(one, 0);
    row.addComponent(one, 380);
    const Rescue done = row.rescue();
    EXPECT_EQ(done.mendedPairs, 1);
    EXPECT_EQ(done.movedNeighbours, 1);
    EXPECT_EQ(row.errors(), 0);
}

TEST(KitRescueStrays, CellsChangeOverABlockToMakeRoom)
{
    RescueCase row;
    row.addRow(10);
    row.addBlock(570, 190); // three sites, a block, six sites
    const int32_t two = row.addCell(2, {{150, 400, 230, 600}}, {{1}});
    const int32_t three = row.addCell(3, {{150, 400, 230, 600}}, {{1}});
    row.addComponent(two, 0);
    row.addComponent(two, 760);
    row.addComponent(three, 1330);
    row.addComponent(two, 380); // beyond the end of the first three sites
    const Rescue done = row.rescue();
    ASSERT_EQ(done.cells.size(), 1U);
    EXPECT_TRUE(done.cells[0].helped);
    EXPECT_EQ(row.component(2).x, 0) << "there is no other way";
    EXPECT_EQ(row.errors(), 0);
    EXPECT_TRUE(row.strays().empty());
}

TEST(KitRescueStrays, GoToAnotherRowIfThatMovesFewerCells)
{
    RescueCase row;
    row.addRow(10);
    row.addRow(10);
    const int32_t two = row.addCell(2, {{150, 400, 230, 600}}, {{1}});
    for (const int32_t site : {1, 4, 7}) { // one site is free between two
        row.addComponent(two, site * 190);
    }
    row.addComponent(two, 4 * 190);
    const Rescue done = row.rescue();
    EXPECT_EQ(done.movedNeighbours, 0);
    EXPECT_EQ(row.component(2).x, 7 * 190);
    EXPECT_EQ(row.errors(), 0);
}

// The narrow one would take the only room that the wide one has.
TEST(KitRescueStrays, StayInTheirRowIfAnotherWouldFindNoPlace)
{
    RescueCase row;
    row.addRow(8);
    row.addRow(8);
    const int32_t two = row.addCell(2, {{150, 400, 230, 600}}, {{1}});
    const int32_t three = row.addCell(3, {{150, 400, 230, 600}}, {{1}});
    const int32_t five = row.addCell(5, {{150, 400, 230, 600}}, {{1}});
    row.addComponent(two, 190); // leaves two sites if all of the row moves together
    row.addComponent(two, 4 * 190);
    row.addComponent(two, 6 * 190);
    row.addComponent(two, 2 * 190);     // without a place
    row.addComponent(five, 0, 0, 1000); // leaves three sites
    row.addComponent(three, 4 * 190, 0, 1000);
    const Rescue done = row.rescue();
    EXPECT_EQ(std::ranges::count(done.cells, true, &kit::place::Rescued::helped), 2);
    EXPECT_EQ(row.component(3).y, 0);
    EXPECT_EQ(row.component(5).y, 1000);
    EXPECT_EQ(row.errors(), 0);
}

TEST(KitRescueStrays, CellsBesideTheSitesAreTakenForStrays)
{
    RescueCase row;
    row.addRow(5);
    row.addBlock(0, 100); // the placer counts sites from its end
    row.addComponent(row.addCell(2, {{150, 400, 230, 600}}, {{1}}), 100);
    const Rescue done = row.rescue();
    EXPECT_EQ(done.cells.size(), 1U);
    EXPECT_EQ(row.component(0).x, 190);
    EXPECT_EQ(row.errors(), 0);
}

TEST(KitRescueStrays, ALongRowOfWhichNotAllWasTriedIsTold)
{
    RescueCase row;
    row.addRow(40); // full, and no two of these cells may touch
    for (int32_t i = 0; i < 20; ++i) {
        row.addComponent(row.addCell(2, {LEFT, RIGHT}, {{1, 1}}), i * 380);
    }
    const Rescue done = row.rescue();
    EXPECT_GT(done.searchesGivenUp, 0);
    EXPECT_LT(done.mendedPairs, done.pairs);
}

/// Metal in the middle of a cell of one site.
const Rect MIDDLE{40, 400, 150, 600};

TEST(KitRescueObstacles, ACellTooCloseToAFixedOneGetsAnotherSolutionOrIsMoved)
{
    for (const bool hasOther : {false, true}) {
        RescueCase row;
        row.addRow(6);
        row.addFixed(row.addCell(1, {MIDDLE}, {{0}, {1}}), 380, 1);
        const std::vector<std::vector<int32_t>> one{{1, 1}};
        row.addComponent(row.addCell(2, {LEFT, RIGHT}, hasOther ? std::vector{one[0], {2, 2}} : one), 570);
        const Rescue done = row.rescue();
        EXPECT_EQ(done.pairs, 1);
        EXPECT_EQ(done.mendedPairs, 1);
        EXPECT_EQ(row.component(0).solution, hasOther ? 1 : 0);
        EXPECT_EQ(row.sites(), std::vector<int32_t>{hasOther ? 3 : 4});
        EXPECT_EQ(row.errors(), 0);
    }
}

TEST(KitRescueObstacles, ACellThatFindsNoPlaceBesideThemGoesToAnotherRow)
{
    RescueCase row;
    row.addRow(3);
    row.addRow(3);
    row.addFixed(row.addCell(1, {MIDDLE}, {{1}}), 380, 0);
    row.addComponent(row.addCell(2, {LEFT, RIGHT}, {{1, 1}}), 0);
    const Rescue done = row.rescue();
    EXPECT_EQ(done.mendedPairs, 1);
    EXPECT_EQ(row.component(0).y, RescueCase::HEIGHT);
    EXPECT_EQ(row.errors(), 0);
}

TEST(KitRescueObstacles, MetalOfBlocksIsOnAllMasks)
{
    for (const int32_t mask : {0, 1, 2}) {
        RescueCase row;
        row.addRow(8);
        row.addBlock(380, 380);
        row.addMetal({390, 0, 750, 1000});
        row.addComponent(row.addCell(2, {LEFT, RIGHT}, {{mask, mask}}), 760);
        const Rescue done = row.rescue();
        EXPECT_EQ(done.pairs, 1);
        EXPECT_EQ(row.sites(), std::vector<int32_t>{5});
        EXPECT_EQ(row.errors(), 0);
    }
}

// The fixed cell's metal is low; that of the other is high as drawn, and low in a row that is upside down.
TEST(KitRescueObstacles, InATurnedRowOthersLieUpsideDown)
{
    for (const bool turned : {false, true}) {
        RescueCase row;
        row.addRow(6);
        row.addFixed(row.addCell(1, {{40, 200, 150, 300}}, {{1}}), 380, 0);
        row.addComponent(row.addCell(2, {{10, 700, 60, 800}}, {{1}}), 570);
        if (turned) {
            row.truth.turnedRows.insert(0);
        }
        EXPECT_EQ(row.rescue().pairs, turned ? 1 : 0);
    }
}

/// A full row drawn by lot: three to five cells of up to three solutions, some of which may be mirrored, and
/// blocks and fixed cells, with metal or without; the cells stand anywhere.
class RandomRow {
public:
    explicit RandomRow(uint32_t seed) : m_random(seed), m_case(pick(0, 3) == 0 ? 280 : 185)
    {
        const int32_t kinds = pick(2, 3);
        for (int32_t i = 0; i < kinds; ++i) {
            addKind();
        }
        const int32_t count = pick(3, 5);
        std::vector<int32_t> cells;
        int32_t width = 0;
        for (int32_t i = 0; i < count; ++i) {
            cells.push_back(pick(0, kinds - 1));
            width += widthOf(cells.back());
        }
        addSites(width);
        for (const int32_t cell : cells) {
            const auto& solutions = m_case.truth.design.cells[static_cast<size_t>(cell)].solutions;
            const auto last = static_cast<int32_t>(solutions.size()) - 1;
            const int32_t x = pick(0, m_sites) * RescueCase::SITE;
            const int32_t solution = pick(0, last);
            const bool mirrored = pick(0, 1) == 1;
            m_case.addComponent(cell, x, solution, 0, mirrored, pick(0, 3) == 0);
        }
    }

    RescueCase& scene() { return m_case; }

    /// Whether there is an arrangement, by trying them all from the left to the right.
    bool hasArrangement()
    {
        findWays();
        m_taken.clear();
        m_used.assign(m_case.truth.design.components.size(), 0);
        m_isBlocked.assign(static_cast<size_t>(m_sites), 0);
        for (const placer::Macro& macro : m_case.truth.design.macros) {
            m_isBlocked[static_cast<size_t>(macro.x / RescueCase::SITE)] = 1;
        }
        m_width = 0;
        for (const placer::Component& comp : m_case.truth.design.components) {
            m_width += widthOf(comp.cell);
        }
        return canFillFrom(0);
    }

private:
    static constexpr int32_t FAR = 6; ///< sites: three of the widest cell, and less than three of distance

    /// A component in a solution and an orientation.
    struct Way {
        size_t component;
        int32_t sites;
        std::vector<std::pair<Rect, int32_t>> metal; ///< that is no rail, and its mask
    };

    /// What stays where it is.
    struct Obstacle {
        std::vector<std::pair<Rect, int32_t>> metal; ///< as of a way, from the left edge
        int32_t x = 0;                               ///< left edge
    };

    struct Taken {
        size_t way; ///< index in m_ways
        int32_t site;
    };

    int32_t pick(int32_t lo, int32_t hi)
    {
        return lo + static_cast<int32_t>(m_random() % static_cast<uint32_t>(hi - lo + 1));
    }

    int32_t widthOf(int32_t cell) const
    {
        return m_case.truth.design.cells[static_cast<size_t>(cell)].width / RescueCase::SITE;
    }

    void addKind()
    {
        const int32_t sites = pick(1, 3);
        const int32_t width = sites * RescueCase::SITE;
        std::vector<Rect> rects;
        for (int32_t i = pick(1, 3); i > 0; --i) {
            const int32_t xl = pick(0, 1) == 0 ? pick(0, 80) : width - pick(60, 140);
            const int32_t yl = pick(0, 4) == 0 ? 0 : pick(1, 4) * 180;
            rects.push_back({xl, yl, xl + 60, yl + 100});
        }
        std::vector<std::vector<int32_t>> solutions(static_cast<size_t>(std::max(1, pick(-1, 3))));
        for (std::vector<int32_t>& masks : solutions) {
            for (size_t i = 0; i < rects.size(); ++i) {
                masks.push_back(pick(0, 3) == 0 ? 2 : pick(0, 1));
            }
        }
        m_case.addCell(sites, rects, solutions, pick(0, 2) == 0);
    }

    /// A row that is 85 to 100 % full, and blocks in it.
    void addSites(int32_t width)
    {
        const int32_t spare = pick(0, width * 15 / 85);
        const int32_t blocks = pick(0, 2);
        m_sites = width + spare + blocks;
        m_case.addRow(m_sites);
        const int32_t tap = m_case.addCell(1, {{20, pick(0, 8) * 100, 170, 1000}}, {{1}, {pick(0, 1) * 2}});
        int32_t site = 0;
        for (int32_t i = 0; i < blocks && site < m_sites; ++i) {
            site += pick(0, m_sites - site - 1);
            addBlock(site, tap);
            site += 2;
        }
    }

    /// A fixed cell, a block with metal, or one without.
    void addBlock(int32_t site, int32_t tap)
    {
        const int32_t x = site * RescueCase::SITE;
        const int32_t kind = pick(0, 3);
        if (kind == 0 && m_case.truth.design.blockMetal.empty()) {
            m_case.addFixed(tap, x, pick(0, 1));
            const placer::Cell& cell = m_case.truth.design.cells[static_cast<size_t>(tap)];
            m_obstacles.push_back(
                {metalOf(cell, {.masks = m_case.truth.fixedColors.back().masks}, false, false), x});
            return;
        }
        const int32_t inset = kind == 3 ? 40 : 0; // the placer counts sites from the block's end
        m_case.addBlock(x + inset, RescueCase::SITE - 2 * inset);
        if (kind == 1) {
            const int32_t yl = pick(0, 9) * 100;
            m_case.addMetal({x + 50, yl, x + 140, yl + 100});
            Obstacle& obstacle = m_obstacles.emplace_back();
            obstacle.x = x;
            for (const int32_t mask : {0, 1, 2}) {
                obstacle.metal.push_back({{50, yl, 140, yl + 100}, mask});
            }
        }
    }

    void findWays()
    {
        for (size_t i = 0; i < m_case.truth.design.components.size(); ++i) {
            const placer::Component& comp = m_case.truth.design.components[i];
            const bool isMirrored = comp.orient == "FN" || comp.orient == "S";
            for (const placer::Solution& solution : m_case.truth.design.cellOf(comp)->solutions) {
                m_ways.push_back({i, widthOf(comp.cell), metalOf(comp, solution, isMirrored)});
                if (m_case.truth.mirrorable[static_cast<size_t>(comp.cell)]) {
                    m_ways.push_back({i, widthOf(comp.cell), metalOf(comp, solution, !isMirrored)});
                }
            }
        }
        for (const Way& way : m_ways) {
            for (int32_t site = 0; site < m_sites; ++site) {
                const bool any = std::ranges::any_of(m_obstacles, [&](const Obstacle& obstacle) {
                    return tooClose(obstacle.metal, way.metal, site * RescueCase::SITE - obstacle.x);
                });
                m_isBarred.push_back(any ? 1 : 0);
            }
        }
        for (const Way& left : m_ways) {
            for (const Way& right : m_ways) {
                for (int32_t dx = 0; dx < FAR; ++dx) {
                    m_close.push_back(tooClose(left.metal, right.metal, dx * RescueCase::SITE) ? 1 : 0);
                }
            }
        }
    }

    static std::vector<std::pair<Rect, int32_t>>
    metalOf(const placer::Cell& cell, const placer::Solution& solution, bool mirrored, bool upsideDown)
    {
        std::vector<std::pair<Rect, int32_t>> metal;
        for (size_t i = 0; i < cell.shapes.size(); ++i) {
            const Rect rect = cell.shapes[i].rects[0];
            if (solution.masks[i] == 0 && (rect.yl <= 0 || rect.yh >= RescueCase::HEIGHT)) {
                continue;
            }
            metal.push_back({{mirrored ? cell.width - rect.xh : rect.xl,
                              upsideDown ? RescueCase::HEIGHT - rect.yh : rect.yl,
                              mirrored ? cell.width - rect.xl : rect.xh,
                              upsideDown ? RescueCase::HEIGHT - rect.yl : rect.yh},
                             solution.masks[i]});
        }
        return metal;
    }

    std::vector<std::pair<Rect, int32_t>> metalOf(const placer::Component& comp,
                                                  const placer::Solution& solution, bool mirrored) const
    {
        return metalOf(*m_case.truth.design.cellOf(comp), solution, mirrored,
                       comp.orient == "FS" || comp.orient == "S");
    }

    static bool tooClose(const std::vector<std::pair<Rect, int32_t>>& left,
                         const std::vector<std::pair<Rect, int32_t>>& right, int32_t x)
    {
        for (const auto& [a, mask] : left) {
            for (const auto& [b, otherMask] : right) {
                const int64_t dx = std::max({b.xl + x - a.xh, a.xl - b.xh - x, 0});
                const int64_t dy = std::max({b.yl - a.yh, a.yl - b.yh, 0});
                if (mask == otherMask && dx * dx + dy * dy < int64_t{MINDPLDIST} * MINDPLDIST) {
                    return true;
                }
            }
        }
        return false;
    }

    bool canFillFrom(int32_t site)
    {
        if (m_taken.size() == m_used.size()) {
            return true;
        }
        for (; m_sites - site >= m_width; ++site) {
            for (size_t way = 0; way < m_ways.size(); ++way) {
                if (m_used[m_ways[way].component] == 0 && canTake(way, site)) {
                    return true;
                }
            }
        }
        return false;
    }

    bool canTake(size_t way, int32_t site)
    {
        const size_t component = m_ways[way].component;
        const int32_t sites = m_ways[way].sites;
        if (m_isBarred[way * static_cast<size_t>(m_sites) + static_cast<size_t>(site)] != 0) {
            return false;
        }
        for (int32_t i = 0; i < sites; ++i) {
            if (site + i >= m_sites || m_isBlocked[static_cast<size_t>(site + i)] != 0) {
                return false;
            }
        }
        for (const Taken& other : m_taken) {
            const auto dx = static_cast<size_t>(std::min(site - other.site, FAR - 1));
            if (m_close[(other.way * m_ways.size() + way) * FAR + dx] != 0) {
                return false;
            }
        }
        m_used[component] = 1;
        m_width -= sites;
        m_taken.push_back({way, site});
        const bool can = canFillFrom(site + sites);
        m_taken.pop_back();
        m_width += sites;
        m_used[component] = 0;
        return can;
    }

    std::mt19937 m_random;
    RescueCase m_case;
    int32_t m_sites = 0;
    std::vector<Way> m_ways;
    std::vector<char> m_close; ///< [(left way * ways + right way) * FAR + sites between their left edges]
    std::vector<Obstacle> m_obstacles;
    std::vector<char> m_isBarred;  ///< [way * sites + site] an obstacle is too close
    std::vector<char> m_used;      ///< [component]
    std::vector<char> m_isBlocked; ///< [site]
    int32_t m_width = 0;           ///< of the components that are left, sites
    std::vector<Taken> m_taken;
};

TEST(KitRescueRows, EndLegalExactlyWhereALegalArrangementExists)
{
    const char* const wanted = std::getenv("VIRELOCE_TEST_ROWS");
    const int count = wanted == nullptr ? 1000 : std::atoi(wanted);
    int legal = 0;
    for (int seed = 1; seed <= count && !HasFailure(); ++seed) {
        RandomRow row(static_cast<uint32_t>(seed));
        const bool possible = row.hasArrangement();
        const Rescue done = row.scene().rescue();
        const bool helped = done.mendedPairs == done.pairs &&
                            std::ranges::all_of(done.cells, [](const auto& cell) { return cell.helped; });
        EXPECT_EQ(helped, possible) << "seed " << seed;
        EXPECT_EQ(row.scene().errors() == 0, possible) << "seed " << seed;
        EXPECT_TRUE(row.scene().strays().empty() || !possible) << "seed " << seed;
        EXPECT_EQ(done.searchesGivenUp, 0) << "seed " << seed;
        legal += possible ? 1 : 0;
    }
    EXPECT_GT(legal, count / 5);
    EXPECT_LT(legal, count * 9 / 10);
}

/// A few cells in a given order, and what any arrangement of them costs.
class RandomOrder {
public:
    explicit RandomOrder(uint32_t seed) : m_random(seed)
    {
        const int32_t ways = pick(2, 5);
        problem.sides = 8; // two left sides, and two right sides for each width
        for (int32_t i = 0; i < ways; ++i) {
            const int32_t width = pick(1, 3);
            problem.ways.push_back({width, pick(0, 1), 2 * width + pick(0, 1)});
        }
        for (int32_t i = 0; i < 4; ++i) {
            m_gaps.push_back(pick(0, 1));
        }
        problem.apart = [this](int32_t right, int32_t left) {
            return right / 2 + m_gaps[static_cast<size_t>(2 * (right % 2) + left)];
        };
        problem.runs = {{0, pick(3, 6), 1}, {8, 8 + pick(2, 5), 1}};
        for (int32_t i = pick(2, 4); i > 0; --i) {
            const int32_t first = pick(0, ways - 1);
            kit::place::RowCell cell{.ways = {first}, .costs = {pick(0, 3)}};
            if (const int32_t second = pick(0, ways - 1); second > first) {
                cell.ways.push_back(second);
                cell.costs.push_back(pick(0, 3));
            }
            problem.cells.push_back(cell);
            m_wanted.push_back(pick(0, 12));
        }
        if (pick(0, 1) == 1) {
            problem.fixed.push_back({pick(0, 12), pick(0, ways - 1)});
        }
        problem.cost = [this](size_t cell, int64_t x) { return std::abs(x - m_wanted[cell]); };
    }
    RandomOrder(const RandomOrder&) = delete;
    RandomOrder& operator=(const RandomOrder&) = delete;

    int64_t costOf(const std::vector<kit::place::Spot>& spots) const
    {
        int64_t cost = 0;
        for (size_t i = 0; i < spots.size(); ++i) {
            const kit::place::RowCell& cell = problem.cells[i];
            const auto way = std::ranges::find(cell.ways, spots[i].way) - cell.ways.begin();
            cost += problem.cost(i, spots[i].x) + cell.costs[static_cast<size_t>(way)];
        }
        return cost;
    }

    bool isLegal(const std::vector<kit::place::Spot>& spots) const
    {
        for (size_t i = 0; i < spots.size(); ++i) {
            const kit::place::Spot& spot = spots[i];
            const int64_t end = spot.x + wayOf(spot).width;
            const bool inRun = std::ranges::any_of(
                problem.runs, [&](const auto& run) { return run.x <= spot.x && end <= run.end; });
            const bool nearFixed = std::ranges::any_of(problem.fixed, [&](const kit::place::Spot& fixed) {
                return spot.x < fixed.x + apart(fixed, spot) && fixed.x < spot.x + apart(spot, fixed);
            });
            for (size_t j = 0; j < i; ++j) {
                if (spot.x - spots[j].x < apart(spots[j], spot)) {
                    return false;
                }
            }
            if (!inRun || nearFixed) {
                return false;
            }
        }
        return true;
    }

    /// The least cost of all arrangements in the order, -1 if there is none.
    int64_t leastCost()
    {
        m_least = -1;
        std::vector<kit::place::Spot> spots;
        tryFrom(spots);
        return m_least;
    }

    kit::place::RowProblem problem;

private:
    const kit::place::RowWay& wayOf(const kit::place::Spot& spot) const
    {
        return problem.ways[static_cast<size_t>(spot.way)];
    }

    int64_t apart(const kit::place::Spot& left, const kit::place::Spot& right) const
    {
        return problem.apart(wayOf(left).right, wayOf(right).left);
    }

    int32_t pick(int32_t lo, int32_t hi)
    {
        return lo + static_cast<int32_t>(m_random() % static_cast<uint32_t>(hi - lo + 1));
    }

    void tryFrom(std::vector<kit::place::Spot>& spots)
    {
        if (!isLegal(spots)) {
            return;
        }
        if (spots.size() == problem.cells.size()) {
            const int64_t cost = costOf(spots);
            m_least = m_least < 0 ? cost : std::min(m_least, cost);
            return;
        }
        for (const int32_t way : problem.cells[spots.size()].ways) {
            for (int64_t x = 0; x < 13; ++x) {
                spots.push_back({x, way});
                tryFrom(spots);
                spots.pop_back();
            }
        }
    }

    std::mt19937 m_random;
    std::vector<int64_t> m_gaps;   ///< [2 * right side % 2 + left side]
    std::vector<int64_t> m_wanted; ///< [cell]
    int64_t m_least = -1;
};

TEST(KitArrange, CostsTheLeastInItsOrder)
{
    int found = 0;
    for (uint32_t seed = 1; seed <= 500 && !HasFailure(); ++seed) {
        RandomOrder order(seed);
        const kit::place::RowAnswer answer = arrange(order.problem, /*mostLabels=*/0);
        const int64_t least = order.leastCost();
        ASSERT_EQ(answer.spots.has_value(), least >= 0) << "seed " << seed;
        if (answer.spots) {
            EXPECT_TRUE(order.isLegal(*answer.spots)) << "seed " << seed;
            EXPECT_EQ(order.costOf(*answer.spots), least) << "seed " << seed;
            ++found;
        }
    }
    EXPECT_GT(found, 100);
}

TEST(KitArrange, WithoutCellsThereIsNothingToDo)
{
    const kit::place::RowAnswer answer = kit::place::arrange({}, 0);
    ASSERT_TRUE(answer.spots.has_value());
    EXPECT_TRUE(answer.spots->empty());
}

} // namespace
