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

std::vector<int32_t> Views::condensed(std::vector<int32_t> square, size_t size, const Classes& classes)
{
    if (classes.first.size() == size) {
        return square;
    }
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

/// The numbers of a group's members by their classes, each once.
std::vector<int32_t> renumbered(const std::vector<int32_t>& group, const std::vector<int32_t>& classOf)
{
    std::vector<int32_t> numbers;
    numbers.reserve(group.size());
    for (const int32_t member : group) {
        numbers.push_back(classOf[static_cast<size_t>(member)]);
    }
    std::ranges::sort(numbers);
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    return numbers;
}

/// Numbers by the classes of what they number.
std::vector<int32_t> renumberedAll(std::vector<int32_t> numbers, const std::vector<int32_t>& classOf)
{
    for (int32_t& number : numbers) {
        number = classOf[static_cast<size_t>(number)];
    }
    return numbers;
}

} // namespace

Views::Square Views::edgeSquare() const
{
    const size_t size = m_edges.size();
    std::vector<int32_t> needs(size * size);
    for (size_t i = 0; i < size; ++i) {
        for (size_t j = 0; j <= i; ++j) {
            needs[i * size + j] = needs[j * size + i] = needOf(m_edges[i], m_edges[j]);
        }
    }
    Classes classes = classesOf(needs, size);
    needs = condensed(std::move(needs), size, classes);
    return {std::move(classes), std::move(needs)};
}

Views::Square Views::groupSquare(const Square& edges) const
{
    std::map<std::vector<int32_t>, int32_t> known;
    std::vector<const std::vector<int32_t>*> groups;
    std::vector<int32_t> groupOf;
    for (const std::vector<int32_t>& group : m_groups) {
        const auto [at, isNew] =
            known.try_emplace(renumbered(group, edges.classes.classOf), static_cast<int32_t>(groups.size()));
        groupOf.push_back(at->second);
        if (isNew) {
            groups.push_back(&at->first);
        }
    }
    const size_t size = groups.size();
    const size_t edgeCount = edges.classes.first.size();
    std::vector<int32_t> needs;
    needs.reserve(size * size);
    std::vector<int32_t> ofEdges; // [edge] what it asks for beside the group at hand
    for (const std::vector<int32_t>* group : groups) {
        ofEdges.assign(edgeCount, NONE);
        for (const int32_t edge : *group) {
            const int32_t* const row = edges.needs.data() + static_cast<size_t>(edge) * edgeCount;
            std::transform(ofEdges.begin(), ofEdges.end(), row, ofEdges.begin(),
                           [](int32_t a, int32_t b) { return std::max(a, b); });
        }
        for (const std::vector<int32_t>* other : groups) {
            int32_t need = NONE;
            for (const int32_t edge : *other) {
                need = std::max(need, ofEdges[static_cast<size_t>(edge)]);
            }
            needs.push_back(need);
        }
    }
    Classes classes = classesOf(needs, size);
    needs = condensed(std::move(needs), size, classes);
    classes.classOf = renumberedAll(groupOf, classes.classOf);
    return {std::move(classes), std::move(needs)};
}

Views::Square Views::sideSquare(const Square& groups) const
{
    std::map<std::pair<Groups, bool>, int32_t> known;
    std::vector<std::pair<Groups, bool>> sides;
    std::vector<int32_t> sideOf;
    for (std::pair<Groups, bool> side : m_sides) {
        for (int32_t& group : side.first) {
            group = groups.classes.classOf[static_cast<size_t>(group)];
        }
        const auto [at, isNew] = known.try_emplace(side, static_cast<int32_t>(sides.size()));
        sideOf.push_back(at->second);
        if (isNew) {
            sides.push_back(side);
        }
    }
    const size_t groupCount = groups.classes.first.size();
    std::vector<int32_t> needs;
    needs.reserve(sides.size() * sides.size());
    for (const auto& [a, aStays] : sides) {
        for (const auto& [b, bStays] : sides) {
            const bool anyStays = aStays || bStays;
            int32_t need = anyStays ? m_floor : 0;
            for (size_t k = 0; k < (anyStays ? Side::GROUPS : Side::GROUPS / 2); ++k) {
                need = std::max(
                    need, groups.needs[static_cast<size_t>(a[k]) * groupCount + static_cast<size_t>(b[k])]);
            }
            needs.push_back(need);
        }
    }
    Classes classes = classesOf(needs, sides.size());
    needs = condensed(std::move(needs), sides.size(), classes);
    classes.classOf = renumberedAll(sideOf, classes.classOf);
    return {std::move(classes), std::move(needs)};
}

Views::Table Views::table() const
{
    // From rectangles to groups of one mask to sides: each step has fewer that differ.
    Square sides = sideSquare(groupSquare(edgeSquare()));
    return {.views = static_cast<int32_t>(sides.classes.first.size()),
            .viewOf = std::move(sides.classes.classOf),
            .gaps = std::move(sides.needs)};
}

} // namespace kit::refine
