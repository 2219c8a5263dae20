// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/gen/sides.h"

namespace kit::gen {

namespace {

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
uint64_t stretchesOf(const Box& box)
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

} // namespace

Sides findSides(const std::vector<Shape>& shapes, const Solution& solution, int32_t sites)
{
    Sides sides;
    for (size_t i = 0; i < shapes.size(); ++i) {
        const Box& box = shapes[i].box;
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

} // namespace kit::gen
