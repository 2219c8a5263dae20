// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/color/metal.h"

#include <algorithm>
#include <map>
#include <utility>

#include "kit/geometry/polygon.h"
#include "kit/geometry/sets.h"

namespace kit::color {

namespace {

using lefdef::LefMacro;
using lefdef::LefPin;
using lefdef::LefPoint;
using lefdef::LefShape;
using lefdef::Length;

/// Rectangles of a cell: the time to sort them grows with the square.
constexpr size_t MOST_RECTS = 1000;

/// No coordinate is larger, library coordinates: squares of distances stay in 64 bits, and so does a length
/// in picometres times 190.
constexpr Length FARTHEST = 1'000'000'000;

constexpr size_t NO_PIN = static_cast<size_t>(-1);

/// A rectangle as the file has it.
struct Piece {
    geometry::Rect rect; ///< picometres
    size_t pin;          ///< index in the macro, NO_PIN for an obstruction
};

bool touch(const Piece& a, const Piece& b)
{
    const geometry::Rect shared = geometry::common(a.rect, b.rect);
    return shared.xl <= shared.xh && shared.yl <= shared.yh;
}

bool isSupply(const LefPin& pin)
{
    return pin.use == lefdef::PinUse::POWER || pin.use == lefdef::PinUse::GROUND;
}

/// Builds the metal of a cell.
class Sorter {
public:
    Sorter(const LefMacro& macro, const Scale& scale) : m_macro(macro), m_scale(scale)
    {
        m_metal.name = macro.name;
        m_metal.metal = {scale.siteWidth(), macro.width, macro.height, {}};
        m_metal.width = toUnits(macro.width);
        m_metal.height = toUnits(macro.height);
    }

    CellMetal run()
    {
        for (size_t i = 0; i < m_macro.pins.size(); ++i) {
            take(m_macro.pins[i].shapes, i);
            m_metal.nets.push_back(m_macro.pins[i].name);
        }
        take(m_macro.obstructions, NO_PIN);
        for (const std::vector<size_t>& group : groupsOf()) {
            add(group, netOf(group));
        }
        std::ranges::stable_sort(m_metal.polygons, {}, &Polygon::net);
        collectRails();
        return std::move(m_metal);
    }

private:
    int32_t toUnits(Length length, Rounding rounding = Rounding::NEAREST)
    {
        const int32_t units = m_scale.of(length, rounding); // first, as it tells lengths that are too large
        m_metal.exact = m_metal.exact && m_scale.isExact(length);
        return units;
    }

    void take(const std::vector<LefShape>& shapes, size_t pin)
    {
        for (const LefShape& shape : shapes) {
            if (!shape.polygon) {
                takeRect(shape.points[0], shape.points[1], pin);
                continue;
            }
            const std::vector<geometry::Rect> rects = geometry::cutIntoRects(shape.points);
            if (rects.empty()) {
                throw CellFault("a polygon of " +
                                (pin == NO_PIN ? "the obstructions" : m_macro.pins[pin].name) +
                                " has edges that are not along an axis, or no area");
            }
            for (const geometry::Rect& rect : rects) {
                takeRect({rect.xl, rect.yl}, {rect.xh, rect.yh}, pin);
            }
        }
    }

    /// Takes a rectangle; a line or a point is no metal.
    void takeRect(const LefPoint& a, const LefPoint& b, size_t pin)
    {
        const geometry::Rect rect = geometry::rectBetween(a.x, a.y, b.x, b.y);
        if (rect.hasArea()) {
            m_pieces.push_back({rect, pin});
            m_metal.metal.rects.push_back(rect);
        }
        if (m_pieces.size() > MOST_RECTS) {
            throw CellFault("the cell has more than " + std::to_string(MOST_RECTS) + " rectangles of metal");
        }
    }

    /// Pieces that hang together, in the order of the file.
    std::vector<std::vector<size_t>> groupsOf() const
    {
        geometry::Sets sets(m_pieces.size());
        for (size_t i = 0; i < m_pieces.size(); ++i) {
            for (size_t j = 0; j < i; ++j) {
                if (touch(m_pieces[i], m_pieces[j])) {
                    sets.join(i, j);
                }
            }
        }
        return sets.all();
    }

    /// The net of pieces that hang together: the pin's, a supply pin's before others.
    size_t netOf(const std::vector<size_t>& group)
    {
        size_t net = NO_PIN;
        for (const size_t i : group) {
            const size_t pin = m_pieces[i].pin;
            if (pin == NO_PIN || pin == net) {
                continue;
            }
            if (net != NO_PIN) {
                remark(m_macro.pins[net].name, m_macro.pins[pin].name);
            }
            const bool better =
                net == NO_PIN || (!isSupply(m_macro.pins[net]) && isSupply(m_macro.pins[pin]));
            net = better ? pin : net;
        }
        if (net == NO_PIN) {
            net = m_metal.nets.size();
            m_metal.nets.push_back("obstruction " + std::to_string(net - m_macro.pins.size() + 1));
        }
        return net;
    }

    void remark(const std::string& a, const std::string& b)
    {
        const std::string text =
            "metal of the pins " + a + " and " + b + " touches, and is taken for one net";
        if (std::ranges::find(m_metal.remarks, text) == m_metal.remarks.end()) {
            m_metal.remarks.push_back(text);
        }
    }

    /// Where a rail lies: 1 for the bottom edge, 2 for the top, 0 across the cell, 3 for no rail.
    int32_t railPlace(const std::vector<size_t>& group, size_t net) const
    {
        constexpr int32_t NOT_A_RAIL = 3;
        const auto isAtBottom = [](const geometry::Rect& piece) { return piece.yl <= 0; };
        const auto isAtTop = [this](const geometry::Rect& piece) { return piece.yh >= m_macro.height; };
        if (net >= m_macro.pins.size() || !isSupply(m_macro.pins[net])) {
            return coverWidth(group, isAtBottom) ? 1 : coverWidth(group, isAtTop) ? 2 : NOT_A_RAIL;
        }
        const auto any = [&](auto test) {
            return std::ranges::any_of(group, [&](size_t i) { return test(m_pieces[i].rect); });
        };
        if (any(isAtBottom)) {
            return 1;
        }
        if (any(isAtTop)) {
            return 2;
        }
        const bool across = any([](const geometry::Rect& piece) { return piece.xl <= 0; }) &&
                            any([this](const geometry::Rect& piece) { return piece.xh >= m_macro.width; });
        return across ? 0 : NOT_A_RAIL;
    }

    /// Whether some pieces of a group together reach from the cell's left edge to its right.
    bool coverWidth(const std::vector<size_t>& group, auto isWanted) const
    {
        std::vector<std::pair<Length, Length>> ranges;
        for (const size_t i : group) {
            if (isWanted(m_pieces[i].rect)) {
                ranges.emplace_back(m_pieces[i].rect.xl, m_pieces[i].rect.xh);
            }
        }
        std::ranges::sort(ranges);
        Length end = 0;
        for (const auto& [begin, next] : ranges) {
            end = begin <= end ? std::max(end, next) : end;
        }
        return !ranges.empty() && end >= m_macro.width;
    }

    void add(const std::vector<size_t>& group, size_t net)
    {
        const int32_t place = railPlace(group, net);
        Polygon polygon{net, {}};
        for (const size_t i : group) {
            const geometry::Rect& piece = m_pieces[i].rect;
            // What is far enough apart in rounded lengths must be so in true ones.
            Rect rect{toUnits(piece.xl, Rounding::DOWN), toUnits(piece.yl, Rounding::DOWN),
                      toUnits(piece.xh, Rounding::UP), toUnits(piece.yh, Rounding::UP)};
            if (place == 3 && (piece.xl < 0 || piece.xh > m_macro.width)) {
                throw CellFault("metal of " + m_metal.nets[net] + " at " + textOf(rect) +
                                " reaches beyond the cell's left or right edge (0 to " +
                                std::to_string(m_metal.width) + ")");
            }
            rect.xl = std::max(rect.xl, 0); // a rail goes on in the neighbours
            rect.xh = std::min(rect.xh, m_metal.width);
            if (rect.hasArea()) {
                polygon.rects.push_back(rect);
            }
        }
        if (polygon.rects.empty()) {
            return; // beyond the outline
        }
        if (place == 3) {
            m_metal.polygons.push_back(std::move(polygon));
            return;
        }
        std::vector<Rect>& rail = m_rails[{net, place}];
        rail.insert(rail.end(), polygon.rects.begin(), polygon.rects.end());
    }

    void collectRails()
    {
        for (auto& [key, rects] : m_rails) {
            m_metal.rails.push_back({key.first, std::move(rects)});
        }
        const auto bottom = [](const Polygon& rail) {
            return std::ranges::min_element(rail.rects, {}, &Rect::yl)->yl;
        };
        std::ranges::stable_sort(m_metal.rails, {}, bottom);
    }

    const LefMacro& m_macro;
    const Scale& m_scale;
    CellMetal m_metal;
    std::vector<Piece> m_pieces;
    std::map<std::pair<size_t, int32_t>, std::vector<Rect>> m_rails; ///< by net and place
};

} // namespace

int32_t Scale::of(Length length, Rounding rounding) const
{
    const Length limit = FARTHEST / placer::LIBRARY_SITE * std::min(m_site, lefdef::MICRON * 1000);
    if (length > limit || length < -limit) {
        throw CellFault("a coordinate of the cell is too large");
    }
    const Length added = rounding == Rounding::DOWN ? 0 : rounding == Rounding::UP ? 2 * m_site - 2 : m_site;
    const Length doubled = 2 * length * placer::LIBRARY_SITE + added;
    const Length divisor = 2 * m_site;
    const Length quotient = doubled / divisor;
    return static_cast<int32_t>(quotient - (doubled % divisor < 0 ? 1 : 0));
}

std::string textOf(const Rect& rect)
{
    return std::to_string(rect.xl) + " " + std::to_string(rect.yl) + " " + std::to_string(rect.xh) + " " +
           std::to_string(rect.yh);
}

CellMetal metalOf(const LefMacro& macro, const Scale& scale)
{
    return Sorter(macro, scale).run();
}

} // namespace kit::color
