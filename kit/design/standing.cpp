// SPDX-License-Identifier: BSD-3-Clause
#include "kit/design/standing.h"

#include <algorithm>
#include <tuple>

namespace kit::design {

namespace {

constexpr size_t TURNS = 4;

bool reachesEdge(const placer::Cell& cell, const placer::Shape& shape)
{
    return std::any_of(shape.rects.begin(), shape.rects.end(),
                       [&](const placer::Rect& rect) { return rect.yl <= 0 || rect.yh >= cell.height; });
}

FineBox turned(const placer::Rect& rect, const placer::Cell& cell, const Turn& turn, const Scale& scale)
{
    const int64_t width = cell.width;
    const int64_t height = cell.height;
    return {scale.ofLibrary(turn.mirrorX ? width - rect.xh : rect.xl),
            scale.ofLibrary(turn.mirrorY ? height - rect.yh : rect.yl),
            scale.ofLibrary(turn.mirrorX ? width - rect.xl : rect.xh),
            scale.ofLibrary(turn.mirrorY ? height - rect.yl : rect.yh)};
}

FineBox around(const FineBox& a, const FineBox& b)
{
    return {std::min(a.xl, b.xl), std::min(a.yl, b.yl), std::max(a.xh, b.xh), std::max(a.yh, b.yh)};
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

Stencil stencilOf(const placer::Cell& cell, const Turn& turn, const Scale& scale)
{
    Stencil stencil;
    stencil.outline = {0, 0, scale.ofLibrary(cell.width), scale.ofLibrary(cell.height)};
    stencil.extent = stencil.outline;
    for (size_t k = 0; k < cell.shapes.size(); ++k) {
        const bool atEdge = reachesEdge(cell, cell.shapes[k]);
        for (const placer::Rect& rect : cell.shapes[k].rects) {
            const FineBox box = turned(rect, cell, turn, scale);
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
    return mask < 0 || mask >= MASKS || (mask == 0 && piece.atEdge) ? -1 : mask;
}

Layout::Layout(const placer::Design& design, const std::vector<const placer::ColorRecord*>& records,
               Scale scale)
    : m_scale(scale), m_stencils(TURNS * design.cells.size())
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
    }
    return slot.data();
}

std::vector<Standing> Layout::standings(const placer::Design& design,
                                        const std::vector<const placer::ColorRecord*>& records)
{
    std::vector<Standing> all;
    all.reserve(design.components.size());
    for (size_t i = 0; i < design.components.size(); ++i) {
        const placer::Component& comp = design.components[i];
        if (comp.cell < 0) {
            continue;
        }
        const auto index = static_cast<size_t>(comp.cell);
        all.push_back({.component = static_cast<int32_t>(i),
                       .stencil = findStencil(design.cells[index], index, turnOf(comp.orient)),
                       .masks = records[i] == nullptr ? std::span<const int32_t>() : records[i]->masks,
                       .x = Scale::ofDbu(comp.x),
                       .y = Scale::ofDbu(comp.y)});
    }
    const auto key = [](const Standing& cell) {
        return std::tuple(cell.y, cell.x + cell.stencil->extent.xl, cell.component);
    };
    std::sort(all.begin(), all.end(), [&](const Standing& a, const Standing& b) { return key(a) < key(b); });
    return all;
}

} // namespace kit::design
