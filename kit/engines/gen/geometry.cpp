// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/gen/geometry.h"

#include <algorithm>

namespace kit::gen {

namespace {

constexpr int32_t RAIL_WIDTH = 85;
constexpr int32_t BAR_WIDTH = 60;
constexpr int32_t INNER_BAR_START = -30; // of a bar on a site boundary, from that boundary
constexpr int32_t LEAST_EDGE_DIST = 35;
constexpr int32_t EDGE_DIST_STEP = 5;
constexpr int32_t EDGE_DISTS = 5;
constexpr int32_t INNER_COLUMNS = 450; // per mille of the site boundaries inside a cell that carry bars
constexpr int32_t CUT_BARS = 600;      // per mille of the bars over two tracks or more that a stitch may part

int32_t bottomOf(int32_t track)
{
    return FIRST_TRACK + track * TRACK_PITCH;
}

int32_t topOf(int32_t track)
{
    return bottomOf(track) + TRACK_WIDTH;
}

/// Adds a bar from one track to another, in two joined pieces if it is to be cut.
void addBar(std::vector<Shape>& shapes, int32_t x, int32_t first, int32_t last, Random& random)
{
    Box bar{x, bottomOf(first), x + BAR_WIDTH, topOf(last)};
    if (first == last || !random.perMille(CUT_BARS)) {
        shapes.push_back({bar});
        return;
    }
    const int32_t below = first + random.below(last - first); // the track under the cut
    const int32_t cut = (topOf(below) + bottomOf(below + 1)) / 2;
    shapes.push_back({{bar.xl, bar.yl, bar.xh, cut}});
    shapes.push_back({{bar.xl, cut, bar.xh, bar.yh}, /*rail=*/false, /*joined=*/true});
}

/// How much of a column stays empty: tracks below the first bar, and between two bars, each less than this.
struct Emptiness {
    int32_t below;
    int32_t between;
};

constexpr Emptiness CROWDED{1, 2};
constexpr Emptiness SPARSE{TRACKS, TRACKS};
constexpr int32_t CROWDED_EDGES = 400; // per mille

/// Adds the bars above each other at one x.
void addColumn(std::vector<Shape>& shapes, int32_t x, Emptiness emptiness, Random& random)
{
    int32_t first = random.below(emptiness.below);
    while (first < TRACKS) {
        const int32_t last = std::min(first + random.lowBelow(TRACKS), TRACKS - 1);
        addBar(shapes, x, first, last, random);
        first = last + 1 + random.below(emptiness.between);
    }
}

int32_t drawEdgeDist(Random& random)
{
    return LEAST_EDGE_DIST + EDGE_DIST_STEP * random.below(EDGE_DISTS);
}

/// The emptiness of a column on an edge.
Emptiness drawEmptiness(Random& random)
{
    return random.perMille(CROWDED_EDGES) ? CROWDED : SPARSE;
}

} // namespace

std::vector<Shape> drawShapes(int32_t sites, Random& random)
{
    const int32_t width = sites * placer::LIBRARY_SITE;
    std::vector<Shape> shapes{{{0, 0, width, RAIL_WIDTH}, /*rail=*/true},
                              {{0, LIBRARY_HEIGHT - RAIL_WIDTH, width, LIBRARY_HEIGHT}, /*rail=*/true}};
    const int32_t leftDist = drawEdgeDist(random);
    addColumn(shapes, leftDist, drawEmptiness(random), random);
    for (int32_t column = 1; column < sites; ++column) {
        if (random.perMille(INNER_COLUMNS)) {
            addColumn(shapes, column * placer::LIBRARY_SITE + INNER_BAR_START, SPARSE, random);
        }
    }
    const int32_t rightDist = drawEdgeDist(random);
    addColumn(shapes, width - rightDist - BAR_WIDTH, drawEmptiness(random), random);
    return shapes;
}

bool tooClose(const Box& a, const Box& b)
{
    const int32_t dx = std::max({0, a.xl - b.xh, b.xl - a.xh});
    const int32_t dy = std::max({0, a.yl - b.yh, b.yl - a.yh});
    return dx * dx + dy * dy < MASK_SPACING * MASK_SPACING;
}

} // namespace kit::gen
