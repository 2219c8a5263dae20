// SPDX-License-Identifier: BSD-3-Clause
#include "kit/geometry/pieces.h"

#include <algorithm>
#include <optional>
#include <set>

namespace kit::geometry {

namespace {

/// A stretch of the x axis.
struct Run {
    int64_t xl;
    int64_t xh;

    bool operator==(const Run&) const = default;
};

using Runs = std::vector<Run>;

void sortUnique(std::vector<int64_t>& values)
{
    std::sort(values.begin(), values.end());
    values.erase(std::unique(values.begin(), values.end()), values.end());
}

std::vector<int64_t> heightsOf(const std::vector<Rect>& boxes)
{
    std::vector<int64_t> heights;
    for (const Rect& box : boxes) {
        heights.insert(heights.end(), {box.yl, box.yh});
    }
    sortUnique(heights);
    return heights;
}

/// What the boxes take of the band between two heights, from the left, joined where they touch.
Runs runsOf(const std::vector<Rect>& boxes, int64_t yl, int64_t yh)
{
    Runs runs;
    for (const Rect& box : boxes) {
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
Runs gapsOf(const Runs& runs, int64_t xl, int64_t xh)
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
    void add(int64_t yl, int64_t yh, const Runs& runs)
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

    std::vector<Rect> take() { return std::move(m_boxes); }

private:
    std::optional<size_t> boxBelow(const Run& run, int64_t yl) const
    {
        const auto below = std::find_if(m_open.begin(), m_open.end(), [&](size_t index) {
            const Rect& box = m_boxes[index];
            return box.xl == run.xl && box.xh == run.xh && box.yh == yl;
        });
        return below == m_open.end() ? std::nullopt : std::optional(*below);
    }

    std::vector<Rect> m_boxes;
    std::vector<size_t> m_open; ///< those of the band below
};

/// The common part of two boxes, if it has an area.
std::optional<Rect> sharedBy(const Rect& a, const Rect& b)
{
    const Rect shared = common(a, b);
    return shared.hasArea() ? std::optional(shared) : std::nullopt;
}

} // namespace

std::vector<Rect> unite(const std::vector<Rect>& boxes)
{
    const std::vector<int64_t> heights = heightsOf(boxes);
    Stack stack;
    for (size_t i = 0; i + 1 < heights.size(); ++i) {
        stack.add(heights[i], heights[i + 1], runsOf(boxes, heights[i], heights[i + 1]));
    }
    return stack.take();
}

std::vector<Rect> subtract(const Rect& from, const std::vector<Rect>& boxes)
{
    std::vector<Rect> inside;
    for (const Rect& box : boxes) {
        if (const std::optional<Rect> part = sharedBy(from, box)) {
            inside.push_back(*part);
        }
    }
    std::vector<int64_t> heights = heightsOf(inside);
    heights.insert(heights.end(), {from.yl, from.yh});
    sortUnique(heights);
    Stack stack;
    for (size_t i = 0; i + 1 < heights.size(); ++i) {
        const Runs runs = runsOf(inside, heights[i], heights[i + 1]);
        stack.add(heights[i], heights[i + 1], gapsOf(runs, from.xl, from.xh));
    }
    return stack.take();
}

std::vector<Labelled> cutByLabel(const std::vector<Rect>& boxes, const std::vector<Labelled>& covers)
{
    std::vector<Rect> covered;
    std::set<int32_t> labels;
    for (const Labelled& piece : covers) {
        covered.push_back(piece.box);
        labels.insert(piece.label);
    }
    std::vector<Labelled> result;
    const auto add = [&result](const std::vector<Rect>& parts, int32_t label) {
        for (const Rect& part : unite(parts)) {
            result.push_back({part, label});
        }
    };
    std::vector<Rect> parts;
    for (const Rect& box : boxes) {
        const std::vector<Rect> bare = subtract(box, covered);
        parts.insert(parts.end(), bare.begin(), bare.end());
    }
    add(parts, NO_LABEL);
    for (const int32_t label : labels) {
        parts.clear();
        for (const Rect& box : boxes) {
            for (const Labelled& piece : covers) {
                const std::optional<Rect> part =
                    piece.label == label ? sharedBy(box, piece.box) : std::nullopt;
                if (part) {
                    parts.push_back(*part);
                }
            }
        }
        add(parts, label);
    }
    return result;
}

} // namespace kit::geometry
