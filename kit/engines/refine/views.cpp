// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/refine/views.h"

#include <algorithm>
#include <limits>
#include <string_view>
#include <unordered_map>

namespace kit::refine {

namespace {

/// Less than any distance.
constexpr int32_t NONE = std::numeric_limits<int32_t>::min();

/// Whether b asks for all that a asks for.
bool isBehind(const Edge& a, const Edge& b)
{
    return b.inset <= a.inset && b.yl <= a.yl && b.yh >= a.yh;
}

} // namespace

std::array<std::vector<Edge>, design::MASKS> edgesOf(const design::Stencil& stencil, int64_t width,
                                                     std::span<const int32_t> masks, int64_t reach,
                                                     bool onRight)
{
    std::array<std::vector<Edge>, design::MASKS> edges;
    for (const design::Piece& piece : stencil.pieces) {
        const auto shape = static_cast<size_t>(piece.shape);
        const int32_t mask = shape < masks.size() ? masks[shape] : -1;
        const int64_t inset = onRight ? width - piece.box.xh : piece.box.xl;
        const bool isRail = mask == 0 && piece.atEdge;
        if (mask >= 0 && mask < design::MASKS && !isRail && inset < reach) {
            edges[static_cast<size_t>(mask)].push_back({inset, piece.box.yl, piece.box.yh});
        }
    }
    return edges;
}

int32_t Views::numberOf(std::vector<Edge> edges)
{
    std::ranges::sort(edges);
    std::vector<Edge> kept;
    for (const Edge& edge : edges) { // none is behind a later one that is farther in
        if (std::ranges::none_of(kept, [&](const Edge& other) { return isBehind(edge, other); })) {
            std::erase_if(kept, [&](const Edge& other) { return isBehind(other, edge); });
            kept.push_back(edge);
        }
    }
    std::vector<int32_t> numbers;
    for (const Edge& edge : kept) {
        const auto [at, isNew] = m_edgeNumbers.try_emplace(edge, static_cast<int32_t>(m_edges.size()));
        if (isNew) {
            m_edges.push_back(edge);
        }
        numbers.push_back(at->second);
    }
    std::ranges::sort(numbers);
    const auto [at, isNew] = m_groupNumbers.try_emplace(numbers, static_cast<int32_t>(m_groups.size()));
    if (isNew) {
        m_groups.push_back(std::move(numbers));
    }
    return at->second;
}

int32_t Views::add(const Side& side)
{
    std::pair<Groups, bool> numbers{{}, side.stays};
    for (size_t i = 0; i < Side::GROUPS; ++i) {
        numbers.first[i] = numberOf(side.groups[i]);
    }
    const auto [at, isNew] = m_sideNumbers.try_emplace(numbers, static_cast<int32_t>(m_sides.size()));
    if (isNew) {
        m_sides.push_back(numbers);
    }
    return at->second;
}

/// What two rectangles of one mask ask for between the sides, DBU; NONE if nothing.
int32_t Views::needOf(const Edge& a, const Edge& b) const
{
    if ((a.stays && b.stays) || geometry::gapOf(a.yl, a.yh, b.yl, b.yh) >= m_least) {
        return NONE;
    }
    const int64_t fine =
        design::horizontalDistance(geometry::gapOf(a.yl, a.yh, b.yl, b.yh), m_least) - a.inset - b.inset;
    const auto need = static_cast<int32_t>(-geometry::floorDiv(-fine, design::Scale::ofDbu(1)));
    return need > 0 || a.stays || b.stays ? need : NONE;
}

Views::Classes Views::classesOf(const std::vector<int32_t>& square, size_t size)
{
    Classes classes;
    std::unordered_map<std::string_view, int32_t> known;
    for (size_t i = 0; i < size; ++i) {
        const std::string_view row(reinterpret_cast<const char*>(square.data() + i * size), // NOLINT: hashed
                                   size * sizeof(int32_t));
        const auto [at, isNew] = known.try_emplace(row, static_cast<int32_t>(classes.first.size()));
        if (isNew) {
            classes.first.push_back(i);
        }
        classes.classOf.push_back(at->second);
    }
    return classes;
}

std::vector<int32_t> Views::condensed(const std::vector<int32_t>& square, size_t size, const Classes& classes)
{
    std::vector<int32_t> small;
    small.reserve(classes.first.size() * classes.first.size());
    for (const size_t i : classes.first) {
        for (const size_t j : classes.first) {
            small.push_back(square[i * size + j]);
        }
    }
    return small;
}

namespace {

/// A table that is the same both ways.
template <typename Of>
std::vector<int32_t> squareOf(size_t size, const Of& of)
{
    std::vector<int32_t> square(size * size);
    for (size_t i = 0; i < size; ++i) {
        for (size_t j = 0; j <= i; ++j) {
            square[i * size + j] = square[j * size + i] = of(i, j);
        }
    }
    return square;
}

/// The numbers of a group's members by their classes, each once.
std::vector<int32_t> renumbered(const std::vector<int32_t>& group, const std::vector<int32_t>& classOf)
{
    std::vector<int32_t> numbers;
    for (const int32_t member : group) {
        numbers.push_back(classOf[static_cast<size_t>(member)]);
    }
    std::ranges::sort(numbers);
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    return numbers;
}

} // namespace

Views::Table Views::table() const
{
    // From rectangles to groups of one mask to sides: each step has fewer that differ.
    const std::vector<int32_t> ofEdges =
        squareOf(m_edges.size(), [&](size_t i, size_t j) { return needOf(m_edges[i], m_edges[j]); });
    const Classes edges = classesOf(ofEdges, m_edges.size());
    const std::vector<int32_t> edgeNeeds = condensed(ofEdges, m_edges.size(), edges);

    std::map<std::vector<int32_t>, int32_t> known;
    std::vector<std::vector<int32_t>> groups;
    std::vector<size_t> groupOf;
    for (const std::vector<int32_t>& group : m_groups) {
        std::vector<int32_t> numbers = renumbered(group, edges.classOf);
        const auto [at, isNew] = known.try_emplace(numbers, static_cast<int32_t>(groups.size()));
        groupOf.push_back(static_cast<size_t>(at->second));
        if (isNew) {
            groups.push_back(std::move(numbers));
        }
    }
    const std::vector<int32_t> ofGroups = squareOf(groups.size(), [&](size_t i, size_t j) {
        int32_t need = NONE;
        for (const int32_t a : groups[i]) {
            for (const int32_t b : groups[j]) {
                need = std::max(
                    need, edgeNeeds[static_cast<size_t>(a) * edges.first.size() + static_cast<size_t>(b)]);
            }
        }
        return need;
    });
    const Classes groupClasses = classesOf(ofGroups, groups.size());
    const std::vector<int32_t> groupNeeds = condensed(ofGroups, groups.size(), groupClasses);

    std::map<std::pair<Groups, bool>, int32_t> knownSides;
    std::vector<std::pair<Groups, bool>> sides;
    std::vector<int32_t> sideOf;
    for (std::pair<Groups, bool> side : m_sides) {
        for (int32_t& group : side.first) {
            group = groupClasses.classOf[groupOf[static_cast<size_t>(group)]];
        }
        const auto [at, isNew] = knownSides.try_emplace(side, static_cast<int32_t>(sides.size()));
        sideOf.push_back(at->second);
        if (isNew) {
            sides.push_back(side);
        }
    }
    const size_t classes = groupClasses.first.size();
    const std::vector<int32_t> ofSides = squareOf(sides.size(), [&](size_t i, size_t j) {
        const auto& [a, aStays] = sides[i];
        const auto& [b, bStays] = sides[j];
        const bool anyStays = aStays || bStays;
        int32_t need = anyStays ? m_floor : 0;
        for (size_t k = 0; k < (anyStays ? Side::GROUPS : Side::GROUPS / 2); ++k) {
            need =
                std::max(need, groupNeeds[static_cast<size_t>(a[k]) * classes + static_cast<size_t>(b[k])]);
        }
        return need;
    });
    const Classes views = classesOf(ofSides, sides.size());
    Table table{.views = static_cast<int32_t>(views.first.size()),
                .gaps = condensed(ofSides, sides.size(), views)};
    for (const int32_t side : sideOf) {
        table.viewOf.push_back(views.classOf[static_cast<size_t>(side)]);
    }
    return table;
}

} // namespace kit::refine
