// SPDX-License-Identifier: BSD-3-Clause
// What the tests of the segment solver's programs share: random segments, and a look at the graphs.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "legalizer/exhaustive.h"
#include "legalizer/literal.h"
#include "legalizer/randomDesign.h"
#include "support/tinyDesign.h"

namespace test {

/// One segment, filled by hand, and its solver.
class ProgramTest : public testing::Test {
protected:
    void TearDown() override { solver.cleanGraph(); }

    /// Adds a component of a cell of its own, with a solution for every stitch number.
    Component* add(int sites, const std::vector<int>& stitches, int siteX = 0, int solution = 0)
    {
        return tiny.addComponent(segment, tiny.addCell(sites, stitches), siteX, solution);
    }

    /// Sets the sites that must be between two components in some solutions.
    void keepApart(const Component* left, int leftSolution, const Component* right, int rightSolution,
                   int sites)
    {
        tiny.setDist(left->cellIdx, right->cellIdx, leftSolution, rightSolution, sites * SITE_WIDTH);
    }

    /// Makes every site cost WEIGHT_WRLENG by which a component's centre is left of `from` or right of `to`.
    void pull(Component* comp, int from, int to) { tiny.addNet({comp}, {pinAt(from), pinAt(to)}); }

    std::vector<int> solutions() const
    {
        std::vector<int> all;
        for (const Component* comp : segment->components) {
            all.push_back(comp->solution);
        }
        return all;
    }

    /// Left ends, in sites; a failure where x is not on that site.
    std::vector<int> sites() const
    {
        std::vector<int> all;
        for (const Component* comp : segment->components) {
            all.push_back(comp->siteX);
            EXPECT_EQ(comp->x, segment->x + comp->siteX * SITE_WIDTH) << comp->name;
        }
        return all;
    }

    TinyDesign tiny;
    Segment* segment = tiny.addSegment(/*x=*/570, /*y=*/1900, /*numSites=*/10);
    SegLegalizer solver{&tiny.legalizer, segment};

private:
    Pin* pinAt(int site) { return tiny.addPin(segment->x + site * SITE_WIDTH, segment->y); }
};

/// A design with one segment of at most five components and few distinct costs, so that ties abound. Segments
/// may be too short, cells without width or solutions; every third is wild, its costs up to the 32-bit
/// limits.
class RandomSegment : public TinyDesign {
public:
    explicit RandomSegment(uint32_t seed) : wild(seed % 3 == 0), m_random(seed)
    {
        SITE_WIDTH = m_random.oneOf<int>({100, 190});
        WEIGHT_WRLENG = m_random.oneOf<float>({0.0F, 0.3F, 1.4F, 1.4F, 10.0F, m_random.weight()});
        LDP_M = m_random.oneOf<int>({-1, 0, 0, 1, 1, 1, 2, 2, 2, 3});
        if (wild) {
            WEIGHT_WRLENG =
                m_random.oneOf<float>({0.0F, 1.4F, -0.7F, -1.4F, -25.0F, 6e6F, 1e9F, -1e9F, 1e30F});
        }
        addCells();
        const int x = m_random.oneOf<int>({0, -570, 1001});
        const int y = m_random.pick(-1, 1) * SITE_HEIGHT;
        segment = addSegment(x, y, m_random.pick(0, 9));
        addComponents();
        for (int i = m_random.pick(0, 3); i > 0; --i) {
            addRandomNet();
        }
        LDP_K = m_random.oneOf<int>({LDP_K, LDP_K, LDP_K, LDP_K, LDP_K, LDP_K + 1, m_random.pick(-1, 0)});
    }

    bool wild;
    Segment* segment = nullptr;

private:
    int anyStitches()
    {
        static const std::vector<int> s_far{1 << 30,   0x3ffffffd, 0x3ffffffe,      0x3fffffff,
                                            -12345678, 12345600,   12345678,        2147483647,
                                            -2000,     -100,       -2147483647 - 1, -20};
        return wild && m_random.pick(0, 2) == 0 ? m_random.oneOf(s_far) : m_random.oneOf<int>({0, 0, 1, 2});
    }

    void addCells()
    {
        for (int i = m_random.pick(1, 3); i > 0; --i) {
            std::vector<int> stitches(static_cast<size_t>(m_random.oneOf<int>({0, 1, 2, 2, 3, 3, 3})));
            for (int& stitch : stitches) {
                stitch = anyStitches();
            }
            addCell(m_random.oneOf<int>({0, 1, 1, 1, 2, 2, 3}), stitches);
        }
        for (size_t left = 0; left < design.lut.cells.size(); ++left) {
            for (size_t right = 0; right < design.lut.cells.size(); ++right) {
                for (std::vector<int32_t>& row : design.lut.distTable[left][right]) {
                    for (int32_t& dist : row) {
                        dist = m_random.oneOf<int>({0, 0, 0, 1, SITE_WIDTH, SITE_WIDTH + 1});
                    }
                }
            }
        }
    }

    void addComponents()
    {
        int site = m_random.pick(-1, 2);
        for (int i = m_random.pick(0, 5); i > 0; --i) {
            const int cell = m_random.pick(0, static_cast<int>(design.lut.cells.size()) - 1);
            const auto colours = static_cast<int>(design.lut.cells[static_cast<size_t>(cell)]->colors.size());
            Component* comp = addComponent(segment, cell, site, m_random.pick(-1, colours - 1));
            comp->x += m_random.oneOf<int>({0, 0, 1, SITE_WIDTH - 1});
            site += m_random.pick(0, 3);
        }
        Component* other = addComponent(nullptr, 0, 0);
        other->x = anyX();
        other->y = segment->y + SITE_HEIGHT;
    }

    int anyX()
    {
        const int site = m_random.pick(-2, segment->numSites + 2);
        return segment->x + site * SITE_WIDTH + m_random.pick(0, 1);
    }

    void addRandomNet()
    {
        std::vector<Component*> members;
        for (int i = m_random.pick(1, 3); i > 0; --i) {
            members.push_back(m_random.oneOf(design.components));
        }
        std::vector<Pin*> pins;
        for (int i = m_random.pick(0, 2); i > 0; --i) {
            pins.push_back(addPin(anyX(), segment->y));
        }
        addNet(members, pins);
    }

    Random m_random;
};

/// Tests something on random segments until it fails: on as many as VIRELOCE_TEST_SEGMENTS says, but at least
/// 100; on 2000 without it.
template <class Test>
void onRandomSegments(Test test)
{
    const char* wanted = std::getenv("VIRELOCE_TEST_SEGMENTS");
    const int count = wanted == nullptr ? 2000 : std::max(100, std::atoi(wanted));
    for (int seed = 1; seed <= count && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE("segment of seed " + std::to_string(seed));
        RandomSegment random(static_cast<uint32_t>(seed));
        test(random);
    }
}

/// Compares what a program does on random segments with what the literal model does.
///
/// @param model  called with a Literal
/// @param solve  called with a SegLegalizer
template <class Model, class Solve>
void expectAsTheModel(Model model, Solve solve)
{
    onRandomSegments([&](RandomSegment& random) {
        Literal literal(random.design, *random.segment);
        std::invoke(model, literal);
        SegLegalizer solver(&random.legalizer, random.segment);
        std::invoke(solve, solver);
        EXPECT_EQ(random.places(), literal.places());
    });
}

/// Compares what a program does on random segments with the cheapest of all ways, where these are few enough
/// to try.
///
/// @param search  called with an Exhaustive; gives the places, if it can tell
/// @param solve   called with a SegLegalizer
/// @param oneIn   of so many segments without far costs, at least one must have been tried
template <class Search, class Solve>
void expectTheCheapest(Search search, Solve solve, int oneIn = 2)
{
    int plain = 0;
    int tried = 0;
    onRandomSegments([&](RandomSegment& random) {
        if (random.wild) {
            return;
        }
        ++plain;
        Exhaustive exhaustive(LiteralModel(random.design, *random.segment));
        const std::optional<Places> want = std::invoke(search, exhaustive);
        if (want && !exhaustive.gaveUp()) {
            SegLegalizer solver(&random.legalizer, random.segment);
            std::invoke(solve, solver);
            EXPECT_EQ(random.places(), *want);
            ++tried;
        }
    });
    EXPECT_GT(oneIn * tried, plain);
}

/// Nodes in the order of their ids: id, compIdx, site, colorId and component.
using FlatNode = std::tuple<int, int, int, int, const Component*>;

inline FlatNode flat(const myNode& node)
{
    return {node.id, node.compIdx, node.site, node.colorId, node.comp};
}

/// The nodes of a solver's graph: those of the colouring graph, or the rows of the grid and its end.
inline std::vector<FlatNode> nodesOf(const SegLegalizer& solver)
{
    std::vector<FlatNode> all;
    for (const myNode* node : solver.nodes) {
        all.push_back(flat(*node));
    }
    for (const auto& row : solver.nodeGrid) {
        for (const myNode* node : row) {
            all.push_back(flat(*node));
        }
    }
    if (solver.endNode != nullptr) {
        all.push_back(flat(*solver.endNode));
    }
    return all;
}

/// The edges of a solver's graph, in their order.
inline std::vector<FlatEdge> edgesOf(const SegLegalizer& solver)
{
    std::vector<FlatEdge> edges;
    for (const myEdge* edge : solver.edges) {
        edges.push_back({edge->from->id, edge->to->id, edge->cost});
    }
    return edges;
}

} // namespace test
