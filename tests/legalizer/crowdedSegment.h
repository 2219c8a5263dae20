// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <algorithm>
#include <vector>

#include "legalizer/randomDesign.h"
#include "support/tinyDesign.h"

namespace test {

/// A design with one segment of up to 14 components in up to 12 solutions, between nearly empty and
/// over-full, pulled by nets of which some have many members. Few distinct costs, so that ties abound; now
/// and then numbers that a kernel must not take.
class CrowdedSegment : public TinyDesign {
public:
    explicit CrowdedSegment(uint32_t seed) : m_random(seed)
    {
        SITE_WIDTH = m_random.oneOf<int>({100, 190, 380});
        WEIGHT_WRLENG =
            m_random.oneOf<float>({0.0F, 0.05F, 0.3F, 0.7F, 0.999999F, 1.0F, 1.4F, 1.4F, 2.5F, 10.0F, 1e5F,
                                   -1.4F, m_random.weight(), m_random.weight(), m_random.weight()});
        LDP_M = m_random.oneOf<int>({0, 1, 2, 3, 8});
        m_mostSolutions = m_random.oneOf<int>({1, 2, 3, 6, 12});
        m_minSolutions = m_random.oneOf<int>({0, 1, 1, 1, 1, 1, 1, 1});
        addCells();
        m_numComps = m_random.pick(1, m_random.oneOf<int>({3, 6, 14}));
        addComponents();
        for (int i = m_random.pick(0, 2 * m_numComps); i > 0; --i) {
            addRandomNet();
        }
    }

    Segment* segment = nullptr;

private:
    void addCells()
    {
        for (int i = m_random.pick(1, 4); i > 0; --i) {
            std::vector<int> stitches(static_cast<size_t>(m_random.pick(m_minSolutions, m_mostSolutions)));
            for (int& stitch : stitches) {
                stitch = m_random.oneOf<int>({0, 0, 1, 1, 2, 3});
            }
            addCell(m_random.oneOf<int>({0, 1, 2, 2, 3, 3, 4, 5, 7}), stitches);
        }
        const std::vector<int> spacings = m_random.oneOf<std::vector<int>>(
            {{0, 1}, {0, 0, 0, 1}, {0, 1, 2}, {1, 2, 3}, {1}, {0, 0, 5}, {0, 17}, {0, 16}});
        for (auto& rows : design.lut.distTable) {
            for (auto& block : rows) {
                for (auto& row : block) {
                    for (int32_t& dist : row) {
                        dist = m_random.oneOf(spacings) * SITE_WIDTH;
                    }
                }
            }
        }
    }

    void addComponents()
    {
        std::vector<int> cells;
        int width = 0;
        for (int i = 0; i < m_numComps; ++i) {
            cells.push_back(m_random.pick(0, static_cast<int>(design.lut.cells.size()) - 1));
            width += design.lut.cells[static_cast<size_t>(cells.back())]->siteWidth;
        }
        const int numSites = std::max(0, width + m_random.oneOf<int>({-5, -1, 0, 1, 2, 3, 5, 10, 15, 30}));
        segment = addSegment(m_random.oneOf<int>({0, -570, 1001}), SITE_HEIGHT, numSites);
        int site = 0;
        for (const int cell : cells) {
            const auto colours = static_cast<int>(design.lut.cells[static_cast<size_t>(cell)]->colors.size());
            site += m_random.pick(0, 2);
            Component* comp = addComponent(segment, cell, site, m_random.pick(-1, colours - 1));
            comp->x += m_random.oneOf<int>({0, 0, 1, SITE_WIDTH - 1});
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
        for (int i = m_random.oneOf<int>({1, 2, 2, 3, 3, 5, 80}); i > 0; --i) {
            members.push_back(m_random.oneOf(design.components));
        }
        std::vector<Pin*> pins;
        for (int i = m_random.oneOf<int>({0, 0, 1, 2}); i > 0; --i) {
            pins.push_back(addPin(anyX(), segment->y));
        }
        addNet(members, pins);
    }

    Random m_random;
    int m_mostSolutions = 0;
    int m_minSolutions = 0;
    int m_numComps = 0;
};

} // namespace test
