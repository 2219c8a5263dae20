// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/view/conflicts.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <limits>
#include <map>

#include "kit/design/standing.h"
#include "kit/geometry/sweep.h"

namespace kit::view {

namespace {

int32_t toDbu(double value)
{
    constexpr double LEAST = std::numeric_limits<int32_t>::min();
    constexpr double GREATEST = std::numeric_limits<int32_t>::max();
    return static_cast<int32_t>(std::clamp(std::round(value), LEAST, GREATEST));
}

/// What lies between two ranges, or what they share.
std::pair<int64_t, int64_t> between(int64_t low1, int64_t high1, int64_t low2, int64_t high2)
{
    return std::minmax({std::max(low1, low2), std::min(high1, high2)});
}

Box gapOf(const design::FineBox& a, const design::FineBox& b)
{
    const auto [xl, xh] = between(a.xl, a.xh, b.xl, b.xh);
    const auto [yl, yh] = between(a.yl, a.yh, b.yl, b.yh);
    const design::DbuBox box = design::Scale::toDbu({xl, yl, xh, yh});
    return {toDbu(box.xl), toDbu(box.yl), toDbu(box.xh), toDbu(box.yh)};
}

} // namespace

std::vector<Conflict> findConflicts(const placer::Design& design,
                                    const std::vector<const placer::ColorRecord*>& colours, int32_t step,
                                    int32_t minDist)
{
    const design::Scale scale{step};
    const int64_t least = scale.ofLibrary(minDist);
    const design::Layout layout(design, colours, scale);
    design::MetalGauge gauge(least);
    std::vector<Conflict> conflicts;
    for (const design::Band& band : layout.bands()) {
        geometry::sweepRow(band.spans, least, [&](size_t left, size_t right) {
            const design::Standing& first = band.cells[left];
            const design::Standing& second = band.cells[right];
            const bool compared = design::areCompared(design, first.component, second.component);
            const design::Closeness found =
                compared ? gauge.measure(first, second).metal : design::Closeness{};
            if (found.shapePairs > 0) {
                conflicts.push_back({first.component, second.component, gapOf(found.first, found.second)});
            }
            return conflicts.size() < MOST_CONFLICTS;
        });
    }
    return conflicts;
}

std::vector<ConflictMark> gathered(const std::vector<Conflict>& conflicts, int32_t side)
{
    assert(side > 0);
    struct Sum {
        int64_t x = 0;
        int64_t y = 0;
        int32_t count = 0;
    };
    const auto squareAt = [side](int64_t place) { return (place < 0 ? place - side + 1 : place) / side; };
    std::map<std::pair<int64_t, int64_t>, Sum> squares; // line, column
    for (const Conflict& conflict : conflicts) {
        const int64_t x = (int64_t{conflict.box.xl} + conflict.box.xh) / 2;
        const int64_t y = (int64_t{conflict.box.yl} + conflict.box.yh) / 2;
        Sum& sum = squares[{squareAt(y), squareAt(x)}];
        sum.x += x;
        sum.y += y;
        ++sum.count;
    }
    std::vector<ConflictMark> marks;
    marks.reserve(squares.size());
    for (const auto& [square, sum] : squares) {
        marks.push_back(
            {static_cast<int32_t>(sum.x / sum.count), static_cast<int32_t>(sum.y / sum.count), sum.count});
    }
    return marks;
}

} // namespace kit::view
