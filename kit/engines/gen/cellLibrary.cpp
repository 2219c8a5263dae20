// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/gen/cellLibrary.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <optional>

#include "kit/engines/gen/random.h"

namespace kit::gen {

namespace {

constexpr int32_t MASKS = 3;
constexpr int32_t MASK_SPACING = 185; // metal of one mask keeps this distance, library units

// The tracks lie so far apart that metal on two of them never conflicts; a bar may be cut for a stitch in the
// middle between two tracks. In library units:
constexpr int32_t TRACKS = 4;
constexpr int32_t FIRST_TRACK = 150; // bottom of the first track
constexpr int32_t TRACK_WIDTH = 120;
constexpr int32_t TRACK_PITCH = 326;

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
    const placer::Rect bar{x, bottomOf(first), x + BAR_WIDTH, topOf(last)};
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

/// Metal of a cell, at random, rails first.
///
/// The outermost bars are near enough to the edges to conflict with those of any neighbour, all others too
/// far.
///
/// @param sites  width of the cell, sites, at least 2
std::vector<Shape> drawShapes(int32_t sites, Random& random)
{
    assert(sites >= 2);
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

/// Whether two rectangles are too close for one mask.
bool tooClose(const placer::Rect& a, const placer::Rect& b)
{
    const int32_t dx = std::max({0, a.xl - b.xh, b.xl - a.xh});
    const int32_t dy = std::max({0, a.yl - b.yh, b.yl - a.yh});
    return dx * dx + dy * dy < MASK_SPACING * MASK_SPACING;
}

constexpr int32_t MOST_STITCHES = 3;
constexpr int32_t TRIES_PER_SOLUTION = 30;
constexpr int32_t STITCHED_SHARE = 400; // per mille of the solutions that have stitches
constexpr int32_t STITCHES = 400;       // per mille of the joints that part in a solution with stitches
constexpr int32_t PINNED = 250;         // per mille of the shapes that have one mask in all solutions

using Conflicts = std::vector<std::vector<size_t>>; ///< [shape] earlier shapes that need another mask

Conflicts findConflicts(const std::vector<Shape>& shapes)
{
    Conflicts conflicts(shapes.size());
    for (size_t i = 0; i < shapes.size(); ++i) {
        for (size_t j = 0; j < i; ++j) {
            const bool sameBar = shapes[i].joined && j + 1 == i;
            if (!sameBar && !shapes[i].rail && tooClose(shapes[i].box, shapes[j].box)) {
                conflicts[i].push_back(j);
            }
        }
    }
    return conflicts;
}

/// Colours the shapes of a cell one by one at random.
class Painter {
public:
    Painter(const std::vector<Shape>& shapes, Random& random)
        : m_shapes(shapes), m_conflicts(findConflicts(shapes)), m_pins(shapes.size(), -1), m_random(random)
    {
    }

    /// Keeps some shapes on their masks in a solution from now on.
    void pin(const Solution& solution)
    {
        for (size_t i = 0; i < m_pins.size(); ++i) {
            m_pins[i] = m_random.perMille(PINNED) ? solution.masks[i] : -1;
        }
    }

    /// A solution, or nothing where this attempt got stuck.
    std::optional<Solution> paint(bool withStitches)
    {
        Solution solution;
        for (size_t i = 0; i < m_shapes.size(); ++i) {
            const int32_t mask = m_shapes[i].rail ? 0 : chooseMask(i, solution.masks, withStitches);
            if (mask < 0) {
                return std::nullopt;
            }
            solution.stitches += m_shapes[i].joined && mask != solution.masks.back() ? 1 : 0;
            solution.masks.push_back(mask);
        }
        return solution.stitches <= MOST_STITCHES ? std::optional(solution) : std::nullopt;
    }

private:
    /// A mask that no conflict forbids, -1 if there is none.
    int32_t chooseMask(size_t shape, const std::vector<int32_t>& masks, bool withStitches)
    {
        std::vector<int32_t> free;
        for (int32_t mask = 0; mask < MASKS; ++mask) {
            if ((m_pins[shape] < 0 || m_pins[shape] == mask) &&
                std::none_of(m_conflicts[shape].begin(), m_conflicts[shape].end(),
                             [&](size_t other) { return masks[other] == mask; })) {
                free.push_back(mask);
            }
        }
        if (m_shapes[shape].joined && !(withStitches && m_random.perMille(STITCHES))) {
            return std::find(free.begin(), free.end(), masks.back()) != free.end() ? masks.back() : -1;
        }
        return free.empty() ? -1 : m_random.pick(free);
    }

    const std::vector<Shape>& m_shapes;
    Conflicts m_conflicts;
    std::vector<int32_t> m_pins; ///< [shape] its only mask, -1: any
    Random& m_random;
};

/// Appends new solutions, either all with or all without stitches, until there are enough or the tries are
/// used up.
void collect(std::vector<Solution>& solutions, Painter& painter, int32_t most, bool withStitches)
{
    const auto enough = static_cast<size_t>(most);
    for (int32_t i = 0; i < most * TRIES_PER_SOLUTION && solutions.size() < enough; ++i) {
        const std::optional<Solution> solution = painter.paint(withStitches);
        if (solution && (solution->stitches > 0) == withStitches &&
            std::find(solutions.begin(), solutions.end(), *solution) == solutions.end()) {
            solutions.push_back(*solution);
        }
    }
}

/// Different colour solutions of a cell, at random, those of fewer stitches first.
///
/// @param most  solutions wanted, at least 1
/// @return at most so many; the first without a stitch; none if no such solution was found
std::vector<Solution> findSolutions(const std::vector<Shape>& shapes, int32_t most, Random& random)
{
    Painter painter(shapes, random);
    std::vector<Solution> solutions;
    collect(solutions, painter, 1, /*withStitches=*/false);
    if (solutions.empty()) {
        return solutions;
    }
    painter.pin(solutions.front());
    collect(solutions, painter, most - most * STITCHED_SHARE / 1000, /*withStitches=*/false);
    collect(solutions, painter, most, /*withStitches=*/true);
    collect(solutions, painter, most, /*withStitches=*/false); // where stitches are no help
    std::stable_sort(solutions.begin(), solutions.end(),
                     [](const Solution& a, const Solution& b) { return a.stitches < b.stitches; });
    return solutions;
}

/// Metal that ends farther from the edge conflicts with no neighbour, DBU.
constexpr int32_t EDGE_REACH = 130;

/// The height as stretches: a track, the two halves of the gap above it, the next track, and so on.
constexpr int32_t STRETCHES_PER_TRACK = 3;
constexpr int32_t STRETCHES = STRETCHES_PER_TRACK * (TRACKS - 1) + 1;
constexpr uint32_t MASK_BITS = STRETCHES + 4; // with room for the two that a shift adds at either end

/// Stretches that may be within MASK_SPACING of each other: half a gap is over half that spacing, half a gap
/// with a track is over the whole.
constexpr uint32_t NEAR = 2;

/// A bit per stretch that a box covers, beginning with bit NEAR.
uint64_t stretchesOf(const placer::Rect& box)
{
    constexpr int32_t HALF_GAP = (TRACK_PITCH - TRACK_WIDTH) / 2;
    uint64_t bits = 0;
    int32_t bottom = FIRST_TRACK;
    for (int32_t i = 0; i < STRETCHES; ++i) {
        const int32_t top = bottom + (i % STRETCHES_PER_TRACK == 0 ? TRACK_WIDTH : HALF_GAP);
        if (box.yl < top && box.yh > bottom) {
            bits |= uint64_t{1} << (static_cast<uint32_t>(i) + NEAR);
        }
        bottom = top;
    }
    return bits;
}

uint64_t widened(uint64_t bits)
{
    uint64_t wide = bits;
    for (uint32_t shift = 1; shift <= NEAR; ++shift) {
        wide |= bits << shift | bits >> shift;
    }
    return wide;
}

/// The edges of a cell of a width in sites.
Sides findSides(const std::vector<Shape>& shapes, const Solution& solution, int32_t sites)
{
    Sides sides;
    for (size_t i = 0; i < shapes.size(); ++i) {
        const placer::Rect& box = shapes[i].box;
        const uint32_t shift = MASK_BITS * static_cast<uint32_t>(solution.masks[i]);
        if (shapes[i].rail) {
            continue;
        }
        if (box.xh <= EDGE_REACH) {
            sides.left |= widened(stretchesOf(box)) << shift;
        }
        if (sites * placer::LIBRARY_SITE - box.xl <= EDGE_REACH) {
            sides.right |= stretchesOf(box) << shift;
        }
    }
    return sides;
}

constexpr int32_t LEAST_SITES = 2;

/// Of 1000 placed cells, how many have LEAST_SITES sites, one site more, and so on: 5.3 sites on average.
constexpr std::array<int32_t, 19> WIDTHS{140, 180, 190, 140, 100, 65, 50, 38, 25, 17,
                                         13,  10,  8,   7,   5,   4,  3,  3,  2};

constexpr int32_t FEW_SOLUTIONS = 100; // per mille of the cells that have fewer solutions than they might
constexpr int32_t FAMILY = 4;          // cells of similar width, of which the first are the most used

/// Width of a cell such that all cells together have the distribution WIDTHS, sites.
int32_t sitesOfType(int32_t type, int32_t types)
{
    int64_t left = 1000 * (2 * int64_t{type} + 1);
    size_t i = 0;
    while (i + 1 < WIDTHS.size() && left >= 2 * int64_t{types} * WIDTHS[i]) {
        left -= 2 * int64_t{types} * WIDTHS[i];
        ++i;
    }
    return LEAST_SITES + static_cast<int32_t>(i);
}

LibraryCell makeCell(int32_t type, const Options& options, Random& random)
{
    LibraryCell cell;
    cell.name = nameOfType(type);
    cell.sites = sitesOfType(type, options.cellTypes);
    const int32_t most =
        random.perMille(FEW_SOLUTIONS) ? 1 + random.below(options.solutions) : options.solutions;
    while (cell.solutions.empty()) { // metal that cannot be coloured is drawn anew
        cell.shapes = drawShapes(cell.sites, random);
        cell.solutions = findSolutions(cell.shapes, most, random);
    }
    for (const Solution& solution : cell.solutions) {
        if (solution.stitches == 0) {
            cell.plainSides.push_back(findSides(cell.shapes, solution, cell.sites));
        }
    }
    return cell;
}

} // namespace

std::string nameOfType(int32_t type)
{
    return std::string("C").append(std::to_string(type));
}

std::vector<LibraryCell> makeLibrary(const Options& options)
{
    Random random(options.seed, CELL_STREAM);
    std::vector<LibraryCell> library;
    library.reserve(static_cast<size_t>(options.cellTypes));
    for (int32_t type = 0; type < options.cellTypes; ++type) {
        library.push_back(makeCell(type, options, random));
    }
    return library;
}

std::vector<uint16_t> chooseTypes(const Options& options)
{
    Random random(options.seed, TYPE_STREAM);
    std::vector<uint16_t> types(static_cast<size_t>(options.components));
    std::generate(types.begin(), types.end(), [&] {
        const int32_t any = random.below(options.cellTypes);
        const int32_t first = any - any % FAMILY;
        const int32_t size = std::min(FAMILY, options.cellTypes - first);
        return static_cast<uint16_t>(first + random.lowBelow(size));
    });
    return types;
}

} // namespace kit::gen
