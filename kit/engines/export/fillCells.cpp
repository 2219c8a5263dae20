// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/export/fillCells.h"

#include <algorithm>
#include <cmath>

#include "kit/geometry/sets.h"

namespace kit::exporter {

namespace {

using Box = geometry::Rect;
using lefdef::LefMacro;
using lefdef::LefShape;
using lefdef::Length;

/// All shapes of a master on the layer.
std::vector<const LefShape*> shapesOf(const LefMacro& macro)
{
    std::vector<const LefShape*> shapes;
    for (const lefdef::LefPin& pin : macro.pins) {
        for (const LefShape& shape : pin.shapes) {
            shapes.push_back(&shape);
        }
    }
    for (const LefShape& shape : macro.obstructions) {
        shapes.push_back(&shape);
    }
    return shapes;
}

bool touch(const Box& a, const Box& b)
{
    const Box shared = geometry::common(a, b);
    return shared.xl <= shared.xh && shared.yl <= shared.yh;
}

} // namespace

std::optional<placer::Cell> railCell(const LefMacro& macro, Length siteWidth)
{
    std::vector<Box> boxes;
    for (const LefShape* shape : shapesOf(macro)) {
        const std::vector<Box> some = lefdef::boxesOf(*shape);
        if (some.empty()) {
            return {};
        }
        boxes.insert(boxes.end(), some.begin(), some.end());
    }
    geometry::Sets sets(boxes.size());
    for (size_t i = 0; i < boxes.size(); ++i) {
        for (size_t k = 0; k < i; ++k) {
            if (touch(boxes[i], boxes[k])) {
                sets.join(i, k);
            }
        }
    }
    const auto library = [siteWidth](Length length) {
        return static_cast<int32_t>(
            std::lround(static_cast<double>(length) * placer::LIBRARY_SITE / static_cast<double>(siteWidth)));
    };
    const auto down = [siteWidth](Length length) {
        return static_cast<int32_t>(geometry::floorDiv(length * placer::LIBRARY_SITE, siteWidth));
    };
    placer::Cell cell;
    cell.name = macro.name;
    cell.trueMetal = {siteWidth, macro.width, macro.height, boxes};
    cell.width = library(macro.width);
    cell.height = library(macro.height);
    for (const std::vector<size_t>& set : sets.all()) {
        const bool isRail = std::ranges::any_of(
            set, [&](size_t i) { return boxes[i].yl <= 0 || boxes[i].yh >= macro.height; });
        if (!isRail) {
            return {};
        }
        placer::Shape& shape = cell.shapes.emplace_back();
        for (const size_t i : set) {
            const Box& box = boxes[i];
            shape.rects.push_back({down(box.xl), down(box.yl), -down(-box.xh), -down(-box.yh)});
        }
    }
    cell.solutions.emplace_back().masks.resize(cell.shapes.size(), 0);
    return cell;
}

Surroundings::Surroundings(const placer::Design& design,
                           const std::vector<const placer::ColorRecord*>& colours, design::Scale scale,
                           int32_t minDist)
    : m_layout(design, colours, scale), m_least(scale.ofLibrary(minDist)), m_gauge(m_least),
      m_tallest(m_layout.tallest())
{
    for (const design::Band& band : m_layout.bands()) {
        for (const geometry::Span& span : band.spans) {
            m_widest = std::max(m_widest, span.to - span.from);
        }
    }
}

bool Surroundings::allow(const design::Standing& cell)
{
    const design::FineBox extent = cell.extent();
    m_tallest = std::max({m_tallest, extent.yh - cell.y, cell.y - extent.yl});
    const int64_t low = extent.yl - m_least - m_tallest;
    const int64_t high = extent.yh + m_least + m_tallest;
    const std::vector<design::Band>& bands = m_layout.bands();
    for (auto band = std::ranges::lower_bound(bands, low, {}, &design::Band::y);
         band != bands.end() && band->y <= high; ++band) {
        if (!allow(cell, *band)) {
            return false;
        }
    }
    for (auto row = m_added.lower_bound(low); row != m_added.end() && row->first <= high; ++row) {
        for (const design::Standing& other : row->second) {
            const design::FineBox near = other.extent();
            if (geometry::gapOf(near.xl, near.xh, extent.xl, extent.xh) < m_least &&
                m_gauge.measure(cell, other).metal.shapePairs > 0) {
                return false;
            }
        }
    }
    return true;
}

bool Surroundings::allow(const design::Standing& cell, const design::Band& band)
{
    const design::FineBox extent = cell.extent();
    const auto begin =
        std::ranges::lower_bound(band.spans, extent.xl - m_least - m_widest, {}, &geometry::Span::from);
    for (auto i = static_cast<size_t>(begin - band.spans.begin());
         i < band.spans.size() && band.spans[i].from < extent.xh + m_least; ++i) {
        if (m_gauge.measure(cell, band.cells[i]).metal.shapePairs > 0) {
            return false;
        }
    }
    return true;
}

} // namespace kit::exporter
