// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <algorithm>
#include <limits>
#include <vector>

#include "legalizer/randomDesign.h"
#include "support/tinyDesign.h"

namespace test {

/// A design with one segment of which every number varies: crowded or over-full, of some 150 sites, or up to
/// 3000 sites long with few cells; nets that pull near or far. Half of the segments have some number that the
/// kernels for ordinary numbers must not take.
class VariedSegment : public TinyDesign {
public:
    explicit VariedSegment(uint32_t seed) : m_random(seed)
    {
        const int wild =
            m_random.oneOf<int>({0, 0, 0, WEIGHT, STITCHES, SOLUTIONS | GAPS, WEIGHT | STITCHES});
        const int length = m_random.pick(SHORT, LONG);
        SITE_WIDTH = m_random.oneOf<int>({1, 10, 57, 100, 190, 200, 380, 1000});
        WEIGHT_WRLENG = (wild & WEIGHT) != 0 ? anyWeight() : ordinaryWeight();
        LDP_M = m_random.oneOf<int>({0, 1, 2, 3, 4, 5, 8, 13});
        m_mostSolutions = m_random.oneOf(length == SHORT    ? std::vector<int>{1, 2, 3, 6, 12}
                                         : length == MIDDLE ? std::vector<int>{1, 2, 4}
                                                            : std::vector<int>{1, 2, 3});
        addCells(wild);
        addComponents(length);
        for (int i = m_random.pick(0, 2 * static_cast<int>(segment->components.size())); i > 0; --i) {
            addRandomNet();
        }
    }

    Segment* segment = nullptr;

private:
    enum Wild : int { WEIGHT = 1, STITCHES = 2, SOLUTIONS = 4, GAPS = 8 };
    enum Length : int { SHORT, MIDDLE, LONG };

    float ordinaryWeight()
    {
        // A multiple of 0.05 that is rounded down gives sums that are just below a whole number or on it, by
        // what is added first.
        const float twentieths = static_cast<float>(m_random.pick(1, 100)) / 20.0F;
        return m_random.oneOf<float>({0.0F, 1e-30F, 4321.0F, 1.4F, twentieths, twentieths, twentieths,
                                      m_random.weight(), m_random.weight(), m_random.weight()});
    }

    float anyWeight()
    {
        constexpr float INFINITE = std::numeric_limits<float>::infinity();
        return m_random.oneOf<float>({-m_random.weight(), -m_random.weight(), -m_random.weight(), -1.0F, 1e8F,
                                      -1e8F, 1e30F, INFINITE, -INFINITE,
                                      std::numeric_limits<float>::quiet_NaN()});
    }

    std::vector<int> ordinaryStitches()
    {
        return m_random.oneOf<std::vector<int>>({{0, 0, 1, 1, 2, 3},
                                                 {0, 0, 1, 1, 2, 3},
                                                 {0, 1},
                                                 {0, 7, 40},
                                                 {1000, 30000},
                                                 {0, (1 << 22) - 5, (1 << 23) - 1}});
    }

    std::vector<int> anyStitches()
    {
        return m_random.oneOf<std::vector<int>>(
            {{-1, -1, 0, 1},
             {-300, -20},
             {-12345678, 12345600, 12345678},
             {-(1 << 24), (1 << 24) - 1, 1 << 24},
             {1 << 28, (1 << 28) + 1},
             {1 << 30, 0x3ffffffd, 0x3ffffffe},
             {0x3fffffff, 0x3ffffffe},
             {std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}});
    }

    std::vector<int> gaps(int wild)
    {
        return (wild & GAPS) != 0 && m_random.pick(0, 1) == 0
                   ? m_random.oneOf<std::vector<int>>({{0, 17}, {0, 1, 40}, {1000, 0}})
                   : m_random.oneOf<std::vector<int>>(
                         {{0, 1}, {0, 0, 0, 1}, {0, 1}, {1}, {0, 1, 2}, {2, 3, 5}, {0, 16}});
    }

    void addCells(int wild)
    {
        const std::vector<int> stitchNums = (wild & STITCHES) != 0 ? anyStitches() : ordinaryStitches();
        const int fewest = (wild & SOLUTIONS) != 0 && m_random.pick(0, 1) == 0 ? 0 : 1;
        for (int i = m_random.pick(1, 5); i > 0; --i) {
            std::vector<int> stitches(static_cast<size_t>(m_random.pick(fewest, m_mostSolutions)));
            for (int& stitch : stitches) {
                stitch = m_random.oneOf(stitchNums);
            }
            const int cell = addCell(m_random.oneOf<int>({0, 1, 2, 2, 3, 3, 4, 5, 7, 11}), stitches);
            design.lut.cells[static_cast<size_t>(cell)]->width += m_random.pick(0, SITE_WIDTH - 1);
        }
        const std::vector<int> sites = gaps(wild);
        for (auto& rows : design.lut.distTable) {
            for (auto& block : rows) {
                for (auto& row : block) {
                    for (int32_t& dist : row) {
                        dist = m_random.oneOf(sites) * SITE_WIDTH;
                    }
                }
            }
        }
    }

    void addComponents(int length)
    {
        std::vector<int> cells;
        int width = 0;
        for (int i = m_random.pick(1, length == SHORT ? 14 : length == MIDDLE ? 40 : 12); i > 0; --i) {
            cells.push_back(m_random.pick(0, static_cast<int>(design.lut.cells.size()) - 1));
            width += design.lut.cells[static_cast<size_t>(cells.back())]->siteWidth;
        }
        const int slack = length == LONG
                              ? m_random.oneOf<int>({400, 420, 600, 1000, m_random.pick(400, 3000)})
                              : m_random.oneOf<int>({-20, -5, -1, 0, 1, 2, 3, 5, 10, 15, 30, 60});
        segment = addSegment(m_random.oneOf<int>({0, -570, 1001}), SITE_HEIGHT, std::max(0, width + slack));
        const int spread = slack > 0 ? slack / static_cast<int>(cells.size()) : 0;
        int site = m_random.pick(-1, 2);
        for (const int cell : cells) {
            const auto colours = static_cast<int>(design.lut.cells[static_cast<size_t>(cell)]->colors.size());
            site += m_random.pick(0, m_random.oneOf<int>({0, 2, spread}));
            Component* comp = addComponent(segment, cell, site, m_random.pick(-1, colours - 1));
            comp->x += m_random.oneOf<int>({0, 0, 0, SITE_WIDTH - 1});
            site += design.lut.cells[static_cast<size_t>(cell)]->siteWidth;
        }
        for (int i = 0; i < 4; ++i) { // around the segment
            Component* other = addComponent(nullptr, 0, 0);
            other->x = anyX();
            other->y = segment->y + m_random.oneOf<int>({0, SITE_HEIGHT});
        }
    }

    int anyX()
    {
        return segment->x + m_random.pick(-3, segment->numSites + 3) * SITE_WIDTH + m_random.pick(0, 1);
    }

    void addRandomNet()
    {
        std::vector<Component*> members;
        for (int i = m_random.oneOf<int>({1, 1, 2, 2, 3, 5, 80}); i > 0; --i) {
            members.push_back(m_random.oneOf(design.components));
        }
        std::vector<Pin*> pins;
        for (int i = m_random.oneOf<int>({0, 0, 1, 1, 2}); i > 0; --i) {
            pins.push_back(addPin(anyX(), segment->y));
        }
        addNet(members, pins);
    }

    Random m_random;
    int m_mostSolutions = 0;
};

} // namespace test
