// SPDX-License-Identifier: BSD-3-Clause
// Small random designs, the same for the same seed.
#pragma once

#include <cstdint>
#include <random>
#include <vector>

#include "support/tinyDesign.h"

namespace test {

/// Random numbers that repeat on every machine.
class Random {
public:
    explicit Random(uint32_t seed) : m_next(seed) {}

    /// A number from lo to hi, both included.
    int pick(int lo, int hi) { return lo + static_cast<int>(m_next() % static_cast<uint32_t>(hi - lo + 1)); }

    /// One of some values.
    template <class T>
    T oneOf(const std::vector<T>& values)
    {
        return values[m_next() % values.size()];
    }

    /// A weight of one to seven digits, from 0.01 to below 100.
    float weight()
    {
        int digits = 0;
        for (int i = pick(1, 7); i > 0; --i) {
            digits = 10 * digits + pick(i == 1 ? 1 : 0, 9);
        }
        double value = digits;
        while (value >= 100.0) {
            value /= 10.0;
        }
        return static_cast<float>(value / oneOf<double>({1.0, 10.0, 100.0}));
    }

private:
    std::mt19937 m_next;
};

/// A design of a few cells, two rows of segments, components in and beside them, pins and nets. Few distinct
/// values, so that ties and equal positions abound. It sets SITE_WIDTH and WEIGHT_WRLENG.
class RandomDesign : public TinyDesign {
public:
    /// @param seed       designs of one seed are equal
    /// @param minColours fewest solutions of a cell
    explicit RandomDesign(uint32_t seed, int minColours = 1) : random(seed)
    {
        SITE_WIDTH = random.oneOf<int>({7, 100, 190, 200});
        WEIGHT_WRLENG = random.oneOf<float>({0.0F, 0.3F, 1.4F, 10.0F, random.weight(), random.weight()});
        LDP_M = random.oneOf<int>({0, 1, 2, 3, 8});
        addCells(minColours);
        addSegments();
        for (int i = random.pick(0, 3); i > 0; --i) {
            addPin(anyX(), anyY());
        }
        for (int i = random.pick(0, 6); i > 0; --i) {
            addRandomNet();
        }
        design.initDesignBound();
    }

    /// A segment of the design.
    Segment* anySegment() { return random.oneOf(design.segments); }

    Random random;

private:
    int anyX() { return random.pick(-30, 40) * SITE_WIDTH + random.oneOf<int>({0, 0, 1, SITE_WIDTH - 1}); }
    int anyY() { return random.oneOf<int>({-SITE_HEIGHT, 0, 0, SITE_HEIGHT, 3 * SITE_HEIGHT}); }
    int anyCell() { return random.pick(0, static_cast<int>(design.lut.cells.size()) - 1); }

    void addCells(int minColours)
    {
        for (int i = random.pick(1, 4); i > 0; --i) {
            std::vector<int> stitches(static_cast<size_t>(random.pick(minColours, 3)));
            for (int& stitch : stitches) {
                stitch = random.pick(0, 3);
            }
            const int cell = addCell(random.pick(1, 4), stitches);
            design.lut.cells[static_cast<size_t>(cell)]->width -= random.pick(0, 3);
        }
        const size_t numCells = design.lut.cells.size();
        for (size_t left = 0; left < numCells; ++left) {
            for (size_t right = 0; right < numCells; ++right) {
                for (std::vector<int32_t>& row : design.lut.distTable[left][right]) {
                    for (int32_t& dist : row) {
                        dist = random.oneOf<int>({0, 0, 1, SITE_WIDTH, SITE_WIDTH + 1, 3 * SITE_WIDTH});
                    }
                }
            }
        }
    }

    void addSegments()
    {
        int x = random.pick(-300, 300);
        for (int i = random.pick(1, 4); i > 0; --i) {
            Segment* segment = addSegment(x, random.pick(0, 1) * SITE_HEIGHT, random.pick(4, 16));
            int site = random.pick(0, 2);
            for (int j = random.pick(0, 5); j > 0; --j) {
                addRandomComponent(segment, site);
                site += random.pick(0, 4);
            }
            x += segment->numSites * SITE_WIDTH + random.oneOf<int>({0, 0, 1, 2 * SITE_WIDTH});
        }
        for (int i = random.pick(0, 2); i > 0; --i) { // in no segment, as after some moves
            Component* comp = addRandomComponent(nullptr, 0);
            comp->x = anyX();
            comp->y = anyY();
        }
    }

    Component* addRandomComponent(Segment* segment, int site)
    {
        const int cell = anyCell();
        const auto colours = static_cast<int>(design.lut.cells[static_cast<size_t>(cell)]->colors.size());
        return addComponent(segment, cell, site, random.pick(-1, colours - 1));
    }

    void addRandomNet()
    {
        std::vector<Component*> comps;
        for (int i = design.components.empty() ? 0 : random.pick(0, 4); i > 0; --i) {
            comps.push_back(random.oneOf(design.components));
        }
        std::vector<Pin*> pins;
        for (int i = design.pins.empty() ? 0 : random.pick(0, 2); i > 0; --i) {
            pins.push_back(random.oneOf(design.pins));
        }
        addNet(comps, pins);
    }
};

} // namespace test
