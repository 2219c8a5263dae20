// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/color/grid.h"

#include <algorithm>
#include <tuple>

namespace kit::color {

namespace {

std::vector<int32_t> ascending(std::vector<int32_t> values)
{
    std::ranges::sort(values);
    values.erase(std::unique(values.begin(), values.end()), values.end());
    return values;
}

} // namespace

std::vector<Rect> transposed(const std::vector<Rect>& rects)
{
    std::vector<Rect> result;
    result.reserve(rects.size());
    for (const Rect& rect : rects) {
        result.push_back(transposed(rect));
    }
    return result;
}

Grid::Grid(const std::vector<Rect>& rects, const std::vector<int32_t>& moreXs,
           const std::vector<int32_t>& moreYs)
    : m_xs(moreXs), m_ys(moreYs)
{
    for (const Rect& rect : rects) {
        m_xs.insert(m_xs.end(), {rect.xl, rect.xh});
        m_ys.insert(m_ys.end(), {rect.yl, rect.yh});
    }
    m_xs = ascending(std::move(m_xs));
    m_ys = ascending(std::move(m_ys));
    m_filled.resize(columns() * lines());
    for (const Rect& rect : rects) {
        const size_t lineBegin = lineAt(rect.yl);
        const size_t lineEnd = lineAt(rect.yh);
        for (size_t i = columnAt(rect.xl); i < columnAt(rect.xh); ++i) {
            const auto column = m_filled.begin() + static_cast<std::ptrdiff_t>(i * lines());
            std::fill(column + static_cast<std::ptrdiff_t>(lineBegin),
                      column + static_cast<std::ptrdiff_t>(lineEnd), uint8_t{1});
        }
    }
}

std::vector<Rect> Grid::slabs() const
{
    std::vector<Rect> done;
    std::vector<Rect> open; // those that reach the current column, upwards
    for (size_t i = 0; i < columns(); ++i) {
        std::vector<Rect> runs;
        for (size_t k = 0; k < lines(); ++k) {
            if (!at(i, k)) {
                continue;
            }
            if (k > 0 && at(i, k - 1)) {
                runs.back().yh = m_ys[k + 1];
            } else {
                runs.push_back(field(i, k));
            }
        }
        for (Rect& run : runs) {
            const auto same = std::ranges::find_if(
                open, [&run](const Rect& slab) { return slab.yl == run.yl && slab.yh == run.yh; });
            if (same != open.end()) {
                run.xl = same->xl;
                open.erase(same);
            }
        }
        done.insert(done.end(), open.begin(), open.end());
        open = std::move(runs);
    }
    done.insert(done.end(), open.begin(), open.end());
    std::ranges::sort(done, {}, [](const Rect& rect) { return std::tie(rect.xl, rect.yl); });
    return done;
}

bool Grid::isFull(size_t column, size_t lineBegin, size_t lineEnd) const
{
    for (size_t k = lineBegin; k < lineEnd; ++k) {
        if (!at(column, k)) {
            return false;
        }
    }
    return true;
}

Rect Grid::widened(const Rect& slab) const
{
    const size_t lineBegin = lineAt(slab.yl);
    const size_t lineEnd = lineAt(slab.yh);
    size_t begin = columnAt(slab.xl);
    size_t end = columnAt(slab.xh);
    while (begin > 0 && isFull(begin - 1, lineBegin, lineEnd)) {
        --begin;
    }
    while (end < columns() && isFull(end, lineBegin, lineEnd)) {
        ++end;
    }
    return {m_xs[begin], slab.yl, m_xs[end], slab.yh};
}

std::vector<Rect> tidied(const std::vector<Rect>& rects)
{
    std::vector<Rect> upright = Grid(rects).slabs();
    const std::vector<Rect> flat = Grid(transposed(rects)).slabs();
    return upright.size() <= flat.size() ? upright : transposed(flat);
}

} // namespace kit::color
