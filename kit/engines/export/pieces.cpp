// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/export/pieces.h"

#include <algorithm>
#include <optional>
#include <set>

namespace kit::exporter {

namespace {

using lefdef::LefPoint;
using lefdef::Length;

/// A stretch of the x axis.
struct Run {
    Length xl;
    Length xh;

    bool operator==(const Run&) const = default;
};

using Runs = std::vector<Run>;

void sortUnique(std::vector<Length>& values)
{
    std::sort(values.begin(), values.end());
    values.erase(std::unique(values.begin(), values.end()), values.end());
}

std::vector<Length> heightsOf(const std::vector<Box>& boxes)
{
    std::vector<Length> heights;
    for (const Box& box : boxes) {
        heights.insert(heights.end(), {box.yl, box.yh});
    }
    sortUnique(heights);
    return heights;
}

/// What the boxes take of the band between two heights, from the left, joined where they touch.
Runs runsOf(const std::vector<Box>& boxes, Length yl, Length yh)
{
    Runs runs;
    for (const Box& box : boxes) {
        if (box.yl <= yl && box.yh >= yh && box.xl < box.xh) {
            runs.push_back({box.xl, box.xh});
        }
    }
    std::sort(runs.begin(), runs.end(), [](const Run& a, const Run& b) { return a.xl < b.xl; });
    Runs joined;
    for (const Run& run : runs) {
        if (!joined.empty() && run.xl <= joined.back().xh) {
            joined.back().xh = std::max(joined.back().xh, run.xh);
        } else {
            joined.push_back(run);
        }
    }
    return joined;
}

/// What runs leave free between two ends.
Runs gapsOf(const Runs& runs, Length xl, Length xh)
{
    Runs gaps;
    for (const Run& run : runs) {
        if (run.xl > xl) {
            gaps.push_back({xl, std::min(run.xl, xh)});
        }
        xl = std::max(xl, run.xh);
    }
    if (xl < xh) {
        gaps.push_back({xl, xh});
    }
    return gaps;
}

/// Makes boxes of the runs of bands, from the bottom to the top.
class Stack {
public:
    void add(Length yl, Length yh, const Runs& runs)
    {
        std::vector<size_t> open;
        for (const Run& run : runs) {
            open.push_back(boxBelow(run, yl).value_or(m_boxes.size()));
            if (open.back() == m_boxes.size()) {
                m_boxes.push_back({run.xl, yl, run.xh, yh});
            }
            m_boxes[open.back()].yh = yh;
        }
        m_open = std::move(open);
    }

    std::vector<Box> take() { return std::move(m_boxes); }

private:
    std::optional<size_t> boxBelow(const Run& run, Length yl) const
    {
        const auto below = std::find_if(m_open.begin(), m_open.end(), [&](size_t index) {
            const Box& box = m_boxes[index];
            return box.xl == run.xl && box.xh == run.xh && box.yh == yl;
        });
        return below == m_open.end() ? std::nullopt : std::optional(*below);
    }

    std::vector<Box> m_boxes;
    std::vector<size_t> m_open; ///< those of the band below
};

/// The common part of two boxes, if it has an area.
std::optional<Box> common(const Box& a, const Box& b)
{
    const Box box{std::max(a.xl, b.xl), std::max(a.yl, b.yl), std::min(a.xh, b.xh), std::min(a.yh, b.yh)};
    return box.xl < box.xh && box.yl < box.yh ? std::optional(box) : std::nullopt;
}

} // namespace

std::vector<Box> boxesOf(const lefdef::LefShape& shape)
{
    if (shape.polygon) {
        return geometry::cutIntoRects(shape.points);
    }
    const LefPoint& a = shape.points.front();
    const LefPoint& b = shape.points.back();
    return {{std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)}};
}

std::vector<Box> unite(const std::vector<Box>& boxes)
{
    const std::vector<Length> heights = heightsOf(boxes);
    Stack stack;
    for (size_t i = 0; i + 1 < heights.size(); ++i) {
        stack.add(heights[i], heights[i + 1], runsOf(boxes, heights[i], heights[i + 1]));
    }
    return stack.take();
}

std::vector<Box> subtract(const Box& from, const std::vector<Box>& boxes)
{
    std::vector<Box> inside;
    for (const Box& box : boxes) {
        if (const std::optional<Box> part = common(from, box)) {
            inside.push_back(*part);
        }
    }
    std::vector<Length> heights = heightsOf(inside);
    heights.insert(heights.end(), {from.yl, from.yh});
    sortUnique(heights);
    Stack stack;
    for (size_t i = 0; i + 1 < heights.size(); ++i) {
        const Runs runs = runsOf(inside, heights[i], heights[i + 1]);
        stack.add(heights[i], heights[i + 1], gapsOf(runs, from.xl, from.xh));
    }
    return stack.take();
}

std::vector<MaskBox> cutByMask(const std::vector<Box>& boxes, const std::vector<MaskBox>& metal)
{
    std::vector<Box> covered;
    std::set<int32_t> masks;
    for (const MaskBox& piece : metal) {
        covered.push_back(piece.box);
        masks.insert(piece.mask);
    }
    std::vector<MaskBox> result;
    const auto add = [&result](const std::vector<Box>& parts, int32_t mask) {
        for (const Box& part : unite(parts)) {
            result.push_back({part, mask});
        }
    };
    std::vector<Box> parts;
    for (const Box& box : boxes) {
        const std::vector<Box> bare = subtract(box, covered);
        parts.insert(parts.end(), bare.begin(), bare.end());
    }
    add(parts, NO_MASK);
    for (const int32_t mask : masks) {
        parts.clear();
        for (const Box& box : boxes) {
            for (const MaskBox& piece : metal) {
                const std::optional<Box> part = piece.mask == mask ? common(box, piece.box) : std::nullopt;
                if (part) {
                    parts.push_back(*part);
                }
            }
        }
        add(parts, mask);
    }
    return result;
}

} // namespace kit::exporter
