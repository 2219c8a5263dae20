// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/place/gaps.h"

#include <algorithm>
#include <map>

#include "kit/design/stretches.h"

namespace kit::place {

namespace {

constexpr size_t TURNS = 4;

/// DBU that have at least so many fine units.
int64_t toDbu(int64_t fine)
{
    const int64_t unit = design::Scale::ofDbu(1);
    return fine > 0 ? (fine + unit - 1) / unit : 0;
}

} // namespace

Gaps::Gaps(const placer::Design& design, int32_t minDist)
    : m_design(design), m_scale{design.rows.front().step}, m_least(m_scale.ofLibrary(minDist)),
      m_stencils(TURNS * design.cells.size())
{
    for (size_t i = 0; i < design.cells.size(); ++i) {
        placer::Component comp;
        comp.cell = static_cast<int32_t>(i);
        m_widths.push_back(int64_t{design::widthInSites(design, comp)} * m_scale.step);
        const design::Stencil& stencil = stencilOf({.cell = comp.cell});
        m_overhang = std::max({m_overhang, -stencil.extent.xl, stencil.extent.xh - stencil.outline.xh});
        m_widest = std::max(m_widest, m_widths.back());
    }
    m_reach = toDbu(m_least + 2 * m_overhang);
}

std::pair<int64_t, Lie> Gaps::addObstacle(const design::Standing& standing, bool turned)
{
    const int64_t unit = design::Scale::ofDbu(1);
    const design::FineBox extent = standing.extent();
    const int64_t left = extent.xl / unit - (extent.xl % unit < 0 ? 1 : 0);
    design::Stencil stencil = *standing.stencil;
    for (design::Piece& piece : stencil.pieces) {
        piece.box = piece.box.shifted(standing.x - left * unit, 0);
    }
    stencil.outline = extent.shifted(-left * unit, -standing.y);
    stencil.extent = stencil.outline;
    const auto index = static_cast<int32_t>(m_widths.size());
    m_widths.push_back(toDbu(stencil.outline.xh));
    m_stencils.resize(m_stencils.size() + TURNS);
    m_stencils[turnIndex({.cell = index})].push_back(std::move(stencil));
    std::vector<int32_t> masks(standing.masks.begin(), standing.masks.end());
    m_masks.push_back({{.masks = std::move(masks)}});
    return {left, {.cell = index, .upsideDown = turned}};
}

const std::vector<placer::Solution>& Gaps::solutionsOf(int32_t cell) const
{
    return isObstacle(cell) ? m_masks[static_cast<size_t>(cell) - m_design.cells.size()]
                            : m_design.cells[static_cast<size_t>(cell)].solutions;
}

size_t Gaps::turnIndex(const Lie& lie)
{
    return TURNS * static_cast<size_t>(lie.cell) + (lie.mirrored ? 1U : 0U) + (lie.upsideDown ? 2U : 0U);
}

const design::Stencil& Gaps::stencilOf(Lie lie, bool turned)
{
    lie.upsideDown = lie.upsideDown != turned;
    std::vector<design::Stencil>& slot = m_stencils[turnIndex(lie)];
    if (slot.empty()) {
        slot.push_back(design::stencilOf(m_design.cells[static_cast<size_t>(lie.cell)],
                                         {.mirrorX = lie.mirrored, .mirrorY = lie.upsideDown}, m_scale));
    }
    return slot.front();
}

bool Gaps::isNear(const design::Piece& piece, const design::Stencil& stencil, bool onRight) const
{
    const int64_t reach = m_least + m_overhang;
    return onRight ? piece.box.xh > stencil.outline.xh - reach : piece.box.xl < reach;
}

/// Without regard to metal.
int64_t Gaps::leastBetween(const Lie& left, const Lie& right) const
{
    return isObstacle(left.cell) || isObstacle(right.cell) ? 0 : widthOf(left.cell);
}

std::vector<Gaps::Need> Gaps::needsOf(const Lie& left, const Lie& right)
{
    const bool turned =
        (isObstacle(left.cell) && left.upsideDown) || (isObstacle(right.cell) && right.upsideDown);
    const design::Stencil& first = stencilOf(left, turned);
    const design::Stencil& second = stencilOf(right, turned);
    std::vector<Need> needs;
    for (const design::Piece& a : first.pieces) {
        if (!isNear(a, first, true)) {
            continue;
        }
        for (const design::Piece& b : second.pieces) {
            if (!isNear(b, second, false) ||
                geometry::gapOf(a.box.yl, a.box.yh, b.box.yl, b.box.yh) >= m_least) {
                continue;
            }
            const int64_t apart = toDbu(
                design::horizontalDistance(geometry::gapOf(a.box.yl, a.box.yh, b.box.yl, b.box.yh), m_least) +
                a.box.xh - b.box.xl);
            if (apart > leastBetween(left, right)) {
                needs.push_back(
                    {apart, static_cast<size_t>(a.shape), static_cast<size_t>(b.shape), a.atEdge, b.atEdge});
            }
        }
    }
    std::ranges::stable_sort(needs, std::ranges::greater(), &Need::apart);
    return needs;
}

int64_t Gaps::between(const Lie& left, const Lie& right)
{
    const std::vector<placer::Solution>& rights = solutionsOf(right.cell);
    const uint64_t key = uint64_t{turnIndex(left)} << 32 | uint64_t{turnIndex(right)};
    if (m_last == nullptr || key != m_lastKey) {
        const auto [at, isNew] = m_known.try_emplace(key);
        if (isNew) {
            at->second.needs = needsOf(left, right);
            at->second.apart.assign(solutionsOf(left.cell).size() * rights.size(), -1);
        }
        m_lastKey = key;
        m_last = &at->second;
    }
    int64_t& apart =
        m_last
            ->apart[static_cast<size_t>(left.solution) * rights.size() + static_cast<size_t>(right.solution)];
    if (apart < 0) {
        const placer::Solution& first = solutionsOf(left.cell)[static_cast<size_t>(left.solution)];
        const placer::Solution& second = rights[static_cast<size_t>(right.solution)];
        const auto need = std::ranges::find_if(m_last->needs, [&](const Need& one) {
            const int32_t mask = first.masks[one.left];
            const bool isRail = mask == 0 && (one.leftRail || one.rightRail);
            return mask == second.masks[one.right] && mask >= 0 && mask < design::MASKS && !isRail;
        });
        apart = need != m_last->needs.end() ? need->apart : leastBetween(left, right);
    }
    return apart;
}

Sides Gaps::sidesOf(const Lie& lie)
{
    m_sides.resize(m_stencils.size());
    std::vector<Sides>& sides = m_sides[turnIndex(lie)];
    if (sides.empty()) {
        const std::vector<int32_t> lefts = sideNumbers(lie, /*onRight=*/false);
        const std::vector<int32_t> rights = sideNumbers(lie, /*onRight=*/true);
        for (size_t s = 0; s < lefts.size(); ++s) {
            sides.push_back({lefts[s], rights[s]});
        }
    }
    return sides[static_cast<size_t>(lie.solution)];
}

/// [solution] the number of a side.
std::vector<int32_t> Gaps::sideNumbers(const Lie& lie, bool onRight)
{
    const design::Stencil& stencil = stencilOf(lie, isObstacle(lie.cell) && lie.upsideDown);
    std::map<std::vector<int32_t>, int32_t> known; // numbers by the masks of what is near the side
    std::vector<int32_t> numbers;
    for (const placer::Solution& solution : solutionsOf(lie.cell)) {
        std::vector<int32_t> masks;
        for (const design::Piece& piece : stencil.pieces) {
            if (isNear(piece, stencil, onRight)) {
                const int32_t mask = solution.masks[static_cast<size_t>(piece.shape)];
                masks.push_back(piece.atEdge && mask == 0 ? -1 : mask);
            }
        }
        const auto [at, isNew] = known.try_emplace(std::move(masks), m_sideCount);
        m_sideCount += isNew ? 1 : 0;
        numbers.push_back(at->second);
    }
    return numbers;
}

} // namespace kit::place
