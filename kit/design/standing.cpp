// SPDX-License-Identifier: BSD-3-Clause
#include "kit/design/standing.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <set>
#include <tuple>

#include "kit/design/stretches.h"
#include "kit/formats/placer/metal.h"

namespace kit::design {

namespace {

constexpr size_t TURNS = 4;

/// Sites, DBU, up to which true metal in fine units is within 64 bits.
constexpr int64_t WIDEST_STEP = 1'000'000;

/// Masks of the shapes of a block: each rectangle is three shapes.
constexpr int32_t ALL_MASKS[MASKS] = {0, 1, 2};

bool reachesEdge(const placer::Cell& cell, const placer::Shape& shape)
{
    return std::ranges::any_of(
        shape.rects, [&](const placer::Rect& rect) { return rect.yl <= 0 || rect.yh >= cell.height; });
}

/// A distance along the axes.
struct Gap {
    int64_t x; ///< 0 if the two share a vertical line
    int64_t y; ///< 0 if the two share a horizontal line
};

Gap gapOf(const FineBox& a, const FineBox& b)
{
    return {geometry::gapOf(a.xl, a.xh, b.xl, b.xh), geometry::gapOf(a.yl, a.yh, b.yl, b.yh)};
}

double squareOf(int64_t length)
{
    return static_cast<double>(length) * static_cast<double>(length);
}

/// Distance of two rectangles: 0 if they touch or overlap, else that of their closest points, fine units.
double distanceOf(const FineBox& a, const FineBox& b)
{
    const Gap gap = gapOf(a, b);
    return std::sqrt(squareOf(gap.x) + squareOf(gap.y));
}

/// A rectangle of true metal in fine units, rounded outward, as a component of that orientation has it.
FineBox fineOf(const FineBox& rect, const placer::TrueMetal& metal, const Turn& turn, const Scale& scale)
{
    const FineBox lying{
        turn.mirrorX ? metal.width - rect.xh : rect.xl, turn.mirrorY ? metal.height - rect.yh : rect.yl,
        turn.mirrorX ? metal.width - rect.xl : rect.xh, turn.mirrorY ? metal.height - rect.yl : rect.yh};
    const auto down = [&](int64_t length) {
        return geometry::floorDiv(length * Scale::ofDbu(scale.step), metal.siteWidth);
    };
    return {down(lying.xl), down(lying.yl), -down(-lying.xh), -down(-lying.yh)};
}

} // namespace

DbuBox Scale::toDbu(const FineBox& box)
{
    const auto dbu = [](int64_t fine) { return static_cast<double>(fine) / placer::LIBRARY_SITE; };
    return {dbu(box.xl), dbu(box.yl), dbu(box.xh), dbu(box.yh)};
}

Turn turnOf(const std::string& orient)
{
    if (orient == "N" || orient == "FN") {
        return {true, orient == "FN", false};
    }
    if (orient == "S" || orient == "FS") {
        return {true, orient == "S", true};
    }
    return {};
}

placer::Rect turned(const placer::Rect& rect, const placer::Cell& cell, const Turn& turn)
{
    return {turn.mirrorX ? cell.width - rect.xh : rect.xl, turn.mirrorY ? cell.height - rect.yh : rect.yl,
            turn.mirrorX ? cell.width - rect.xl : rect.xh, turn.mirrorY ? cell.height - rect.yl : rect.yh};
}

placer::Cell turned(const placer::Cell& cell, const Turn& turn)
{
    placer::Cell result = cell;
    result.trueMetal.reset(); // the rounded shapes have it in them
    for (placer::Rect& box : result.headerBoxes) {
        box = turned(box, cell, turn);
    }
    for (placer::Shape& shape : result.shapes) {
        for (placer::Rect& rect : shape.rects) {
            rect = turned(rect, cell, turn);
        }
    }
    return result;
}

Stencil stencilOf(const placer::Cell& cell, const Turn& turn, const Scale& scale)
{
    Stencil stencil;
    stencil.outline = {0, 0, scale.ofLibrary(cell.width), scale.ofLibrary(cell.height)};
    stencil.extent = stencil.outline;
    const std::vector<geometry::Labelled> pieces =
        scale.step <= WIDEST_STEP ? placer::truePiecesOf(cell) : std::vector<geometry::Labelled>();
    for (const geometry::Labelled& piece : pieces) {
        const FineBox box = fineOf(piece.box, *cell.trueMetal, turn, scale);
        stencil.pieces.push_back(
            {box, piece.label, reachesEdge(cell, cell.shapes[static_cast<size_t>(piece.label)])});
        stencil.extent = around(stencil.extent, box);
    }
    if (!stencil.pieces.empty()) {
        return stencil;
    }
    for (size_t k = 0; k < cell.shapes.size(); ++k) {
        const bool atEdge = reachesEdge(cell, cell.shapes[k]);
        for (const placer::Rect& rect : cell.shapes[k].rects) {
            const placer::Rect lying = turned(rect, cell, turn);
            const FineBox box{scale.ofLibrary(lying.xl), scale.ofLibrary(lying.yl), scale.ofLibrary(lying.xh),
                              scale.ofLibrary(lying.yh)};
            stencil.pieces.push_back({box, static_cast<int32_t>(k), atEdge});
            stencil.extent = around(stencil.extent, box);
        }
    }
    return stencil;
}

int32_t Standing::maskOf(const Piece& piece) const
{
    const auto shape = static_cast<size_t>(piece.shape);
    const int32_t mask = shape < masks.size() ? masks[shape] : -1;
    return mask < 0 || mask >= MASKS ? -1 : mask;
}

Layout::Layout(const placer::Design& design, const std::vector<const placer::ColorRecord*>& records,
               Scale scale)
    : m_scale(scale), m_rowHeight(Scale::ofDbu(rowHeight(design))), m_stencils(TURNS * design.cells.size())
{
    for (const Standing& cell : standings(design, records)) {
        if (m_bands.empty() || m_bands.back().y != cell.y) {
            m_bands.push_back({.y = cell.y});
        }
        const FineBox extent = cell.extent();
        m_bands.back().cells.push_back(cell);
        m_bands.back().spans.push_back({extent.xl, extent.xh});
        m_tallest = std::max({m_tallest, extent.yh - cell.y, cell.y - extent.yl});
    }
}

const Stencil* Layout::findStencil(const placer::Cell& cell, size_t index, const Turn& turn)
{
    std::vector<Stencil>& slot =
        m_stencils[TURNS * index + (turn.mirrorX ? 1U : 0U) + (turn.mirrorY ? 2U : 0U)];
    if (slot.empty()) {
        slot.push_back(stencilOf(cell, turn, m_scale));
        // A row that is no whole number of library units high has cells that are not rounded.
        int64_t& height = slot.back().outline.yh;
        height = std::abs(height - m_rowHeight) < m_scale.step ? m_rowHeight : height;
    }
    return slot.data();
}

std::vector<Standing> Layout::standings(const placer::Design& design,
                                        const std::vector<const placer::ColorRecord*>& records)
{
    std::vector<Standing> all;
    const size_t count = design.components.size() + design.fixed.size();
    all.reserve(count);
    for (size_t i = 0; i < count; ++i) {
        const placer::Component& comp = design.component(static_cast<int32_t>(i));
        if (comp.cell < 0) {
            continue;
        }
        const auto index = static_cast<size_t>(comp.cell);
        const placer::ColorRecord* const record = i < records.size() ? records[i] : nullptr;
        all.push_back({.component = static_cast<int32_t>(i),
                       .stencil = findStencil(design.cells[index], index, turnOf(comp.orient)),
                       .masks = record == nullptr ? std::span<const int32_t>() : record->masks,
                       .x = Scale::ofDbu(comp.x),
                       .y = Scale::ofDbu(comp.y)});
    }
    addBlocks(design, all);
    const auto key = [](const Standing& cell) {
        return std::tuple(cell.y, cell.x + cell.stencil->extent.xl, cell.component);
    };
    std::ranges::sort(all, {}, key);
    return all;
}

void Layout::addBlocks(const placer::Design& design, std::vector<Standing>& all)
{
    std::set<int64_t> bottoms;
    for (const placer::Row& row : design.rows) {
        bottoms.insert(Scale::ofDbu(row.y));
    }
    std::map<std::pair<int32_t, int64_t>, Stencil*> known; // by block and row
    for (const placer::BlockMetal& metal : design.blockMetal) {
        const FineBox box{Scale::ofDbu(metal.box.xl), Scale::ofDbu(metal.box.yl), Scale::ofDbu(metal.box.xh),
                          Scale::ofDbu(metal.box.yh)};
        for (auto y = bottoms.upper_bound(box.yl - m_rowHeight); y != bottoms.end() && *y < box.yh; ++y) {
            FineBox part = box.shifted(0, -*y);
            part.yl = std::max<int64_t>(part.yl, 0);
            part.yh = std::min(part.yh, m_rowHeight);
            const auto [at, isNew] = known.try_emplace({metal.fixed, *y});
            if (isNew) {
                at->second = &m_blocks.emplace_back();
                at->second->outline = {part.xl, 0, part.xl, 0}; // it overlaps nothing: the macros do
                at->second->extent = part;
                all.push_back({.component = static_cast<int32_t>(design.components.size()) + metal.fixed,
                               .stencil = at->second,
                               .masks = ALL_MASKS,
                               .y = *y});
            }
            at->second->extent = around(at->second->extent, part);
            for (const int32_t mask : ALL_MASKS) {
                at->second->pieces.push_back({part, mask});
            }
        }
    }
}

int64_t horizontalDistance(int64_t dy, int64_t least)
{
    auto dx = static_cast<int64_t>(std::sqrt(static_cast<double>(least * least - dy * dy)));
    while (dx * dx + dy * dy < least * least) {
        ++dx;
    }
    return dx;
}

bool areCompared(const placer::Design& design, int32_t first, int32_t second)
{
    const bool anyBlock = design.component(first).cell < 0 || design.component(second).cell < 0;
    return !(anyBlock && design.isFixed(first) && design.isFixed(second));
}

bool MetalGauge::tooClose(const FineBox& a, const FineBox& b) const
{
    const Gap gap = gapOf(a, b);
    // Squares of doubles are exact up to a distance of 94 million: site steps of half a million DBU.
    return gap.x < m_least && gap.y < m_least && squareOf(gap.x) + squareOf(gap.y) < squareOf(m_least);
}

void MetalGauge::collect(const Standing& cell, const FineBox& other, std::vector<Metal>& metal) const
{
    metal.clear();
    for (const Piece& piece : cell.stencil->pieces) {
        const FineBox box = piece.box.shifted(cell.x, cell.y);
        const int32_t mask = cell.maskOf(piece);
        if (mask >= 0 && tooClose(box, other)) {
            metal.push_back({box, piece.shape, mask, mask == 0 && piece.atEdge});
        }
    }
}

void MetalGauge::Finds::take(const Metal& a, const Metal& b)
{
    const double distance = distanceOf(a.box, b.box);
    if (shapes.empty() || distance < closest.distance) {
        closest = {.distance = distance, .mask = a.mask, .first = a.box, .second = b.box};
    }
    shapes.emplace_back(a.shape, b.shape);
}

Closeness MetalGauge::Finds::result()
{
    std::ranges::sort(shapes);
    const auto end = std::unique(shapes.begin(), shapes.end());
    closest.shapePairs = static_cast<int32_t>(end - shapes.begin());
    shapes.clear();
    return std::exchange(closest, {});
}

ClosePair MetalGauge::measure(const Standing& first, const Standing& second)
{
    collect(first, second.extent(), m_first);
    collect(second, first.extent(), m_second);
    for (const Metal& a : m_first) {
        for (const Metal& b : m_second) {
            if (a.mask != b.mask || (a.isRail && b.isRail) || !tooClose(a.box, b.box)) {
                continue;
            }
            if (!a.isRail && !b.isRail) {
                m_metal.take(a, b);
            } else if (distanceOf(a.box, b.box) > 0) { // what touches a rail is one with it
                m_rails.take(a, b);
            }
        }
    }
    return {m_metal.result(), m_rails.result()};
}

} // namespace kit::design
