// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/color/cuts.h"

#include <cmath>
#include <cstdlib>
#include <map>
#include <tuple>

#include "kit/engines/color/grid.h"
#include "kit/geometry/sets.h"

namespace kit::color {

namespace {

using Range = geometry::RangeOf<int32_t>; ///< of x

/// Where a shade begins or ends, along an arm.
struct Event {
    int32_t at;
    bool begins; ///< of two at one place the end comes first: a stitch may lie between them
};

/// An arm that lies flat.
struct Arm {
    Rect slab;        ///< where upright lines part it
    bool leftGoesOn;  ///< a stitch at the slab's left end would part it from what lies there
    bool rightGoesOn; ///< likewise
    Range allowed;    ///< where a line may lie
};

/// What lies at an end of a slab.
struct End {
    bool goesOn = false; ///< something does
    bool square = false; ///< and covers the whole end, so that the line may lie there
};

int32_t rootUp(int64_t square)
{
    auto root = static_cast<int64_t>(std::sqrt(static_cast<double>(square)));
    while (root * root < square) {
        ++root;
    }
    while (root > 0 && (root - 1) * (root - 1) >= square) {
        --root;
    }
    return static_cast<int32_t>(root);
}

/// Places for upright lines in a polygon.
class Finder {
public:
    Finder(const Polygon& polygon, const std::vector<const Polygon*>& others, const Rules& rules)
        : m_grid(polygon.rects), m_slabs(m_grid.slabs()), m_others(others), m_rules(rules)
    {
        for (const Rect& slab : m_slabs) {
            const Arm arm = armOf(slab);
            if (arm.allowed.begin <= arm.allowed.end) {
                m_arms.push_back(arm);
            }
        }
    }

    /// Cuts all arms; those that fulfil a condition and get no cut are cut in their middle.
    template <class Condition>
    void cutArms(Condition condition)
    {
        for (const Arm& arm : m_arms) {
            const size_t before = m_cuts.size();
            cutArm(arm);
            if (m_cuts.size() == before && condition(arm.slab)) {
                cutWithin(arm, {arm.slab.xl, arm.slab.xh});
            }
        }
    }

    /// Cuts the arm that is nearest to a line in its middle.
    void cutNearest(int32_t x)
    {
        const auto farness = [x](const Arm& arm) { return std::abs((arm.slab.xl + arm.slab.xh) / 2 - x); };
        const auto nearest = std::ranges::min_element(
            m_arms, [&](const Arm& a, const Arm& b) { return farness(a) < farness(b); });
        if (nearest != m_arms.end()) {
            m_last = nearest->slab.xl - (nearest->slab.yh - nearest->slab.yl);
            cutWithin(*nearest, {nearest->slab.xl, nearest->slab.xh});
        }
    }

    const std::vector<Cut>& cuts() const { return m_cuts; }

private:
    End endOf(const Rect& slab, bool right) const
    {
        End end;
        for (const Rect& other : m_slabs) {
            const bool meets = right ? other.xl == slab.xh : other.xh == slab.xl;
            if (meets && other.yl < slab.yh && slab.yl < other.yh) {
                end.goesOn = true;
                end.square = end.square || (other.yl <= slab.yl && slab.yh <= other.yh);
            }
        }
        return end;
    }

    /// A slab as an arm; nothing is allowed if it is none.
    Arm armOf(const Rect& slab) const
    {
        const int32_t width = slab.yh - slab.yl;
        const Rect whole = m_grid.widened(slab);
        const End left = endOf(slab, false);
        const End right = endOf(slab, true);
        Range allowed{left.square ? slab.xl : slab.xl + width, right.square ? slab.xh : slab.xh - width};
        if (whole.xh - whole.xl < 2 * width) {
            allowed = {1, 0};
        }
        return {slab, left.goesOn, right.goesOn, allowed};
    }

    /// Where a polygon shades an arm, from the left, without common parts.
    std::vector<Range> shadeOf(const Polygon& polygon, const Rect& slab) const
    {
        std::vector<Range> shades;
        const int64_t distance = m_rules.hardDistance();
        for (const Rect& rect : polygon.rects) {
            const int64_t dy = std::max({rect.yl - slab.yh, slab.yl - rect.yh, 0});
            if (dy >= distance) {
                continue;
            }
            const int32_t reach = rootUp(distance * distance - dy * dy);
            const Range shade{rect.xl - reach, rect.xh + reach};
            if (shade.begin < slab.xh && shade.end > slab.xl) {
                shades.push_back(shade);
            }
        }
        std::ranges::sort(shades, {}, [](const Range& range) { return std::tie(range.begin, range.end); });
        std::vector<Range> merged;
        for (const Range& shade : shades) {
            if (merged.empty() || merged.back().end <= shade.begin) {
                merged.push_back(shade);
            } else {
                merged.back().end = std::max(merged.back().end, shade.end);
            }
        }
        return merged;
    }

    std::vector<Event> eventsOf(const Rect& slab) const
    {
        std::vector<Event> events;
        for (const Polygon* other : m_others) {
            for (const Range& shade : shadeOf(*other, slab)) {
                if (shade.begin >= slab.xl) {
                    events.push_back({shade.begin, true});
                }
                if (shade.end <= slab.xh) {
                    events.push_back({shade.end, false});
                }
            }
        }
        std::ranges::sort(events, {}, [](const Event& event) { return std::tie(event.at, event.begins); });
        return events;
    }

    void cutArm(const Arm& arm)
    {
        bool after = arm.leftGoesOn; // a shade, or what goes on, has ended, and none has begun since
        Range place{arm.slab.xl, 0};
        m_last = arm.slab.xl - (arm.slab.yh - arm.slab.yl);
        for (const Event& event : eventsOf(arm.slab)) {
            if (!event.begins) {
                place.begin = event.at;
            } else if (after) {
                place.end = event.at;
                cutWithin(arm, place);
            }
            after = !event.begins;
        }
        if (after && arm.rightGoesOn) {
            place.end = arm.slab.xh;
            cutWithin(arm, place);
        }
    }

    /// Puts a cut into the middle of a place, or as near to it as may be.
    void cutWithin(const Arm& arm, Range place)
    {
        const int32_t before = m_rules.stitchOverlap / 2;
        const int32_t behind = m_rules.stitchOverlap - before;
        const int32_t width = arm.slab.yh - arm.slab.yl;
        const int32_t least =
            std::max({place.begin + before, arm.slab.xl + before, arm.allowed.begin, m_last + width});
        const int32_t most = std::min({place.end - behind, arm.slab.xh - behind, arm.allowed.end});
        if (least > most) {
            return;
        }
        const int32_t middle = place.begin + (place.end - place.begin) / 2;
        m_last = std::clamp(middle, least, most);
        m_cuts.push_back({true, m_last, {m_last - before, arm.slab.yl, m_last + behind, arm.slab.yh}});
    }

    Grid m_grid;
    std::vector<Rect> m_slabs;
    const std::vector<const Polygon*>& m_others;
    const Rules& m_rules;
    std::vector<Arm> m_arms;
    std::vector<Cut> m_cuts;
    int32_t m_last = 0; ///< the cut before in the same arm
};

Polygon turned(const Polygon& polygon)
{
    return {polygon.net, transposed(polygon.rects)};
}

/// Cuts one polygon.
class Cutter {
public:
    Cutter(const std::vector<Rect>& polygon, const std::vector<Cut>& cuts)
        : m_cuts(cuts), m_grid(polygon, linesOf(cuts, true), linesOf(cuts, false)),
          m_fields(m_grid.columns() * m_grid.lines())
    {
        for (const Cut& cut : cuts) {
            m_cutsAt.insert({{cut.upright, cut.at}, &cut});
        }
    }

    Pieces run()
    {
        joinFields();
        nameFields();
        Pieces pieces;
        pieces.rects.resize(m_count);
        for (size_t i = 0; i < m_grid.columns(); ++i) {
            for (size_t k = 0; k < m_grid.lines(); ++k) {
                if (m_grid.at(i, k)) {
                    pieces.rects[m_names[fieldOf(i, k)]].push_back(m_grid.field(i, k));
                }
            }
        }
        for (const Cut& cut : m_cuts) {
            const auto [a, b] = sidesOf(cut);
            pieces.joined.emplace_back(a, b);
            if (cut.box.hasArea()) {
                pieces.rects[a].push_back(cut.box);
                pieces.rects[b].push_back(cut.box);
            }
        }
        for (std::vector<Rect>& rects : pieces.rects) {
            rects = tidied(rects);
        }
        return pieces;
    }

private:
    static std::vector<int32_t> linesOf(const std::vector<Cut>& cuts, bool upright)
    {
        std::vector<int32_t> lines;
        for (const Cut& cut : cuts) {
            if (cut.upright == upright) {
                lines.push_back(cut.at);
            }
        }
        return lines;
    }

    size_t fieldOf(size_t column, size_t line) const { return column * m_grid.lines() + line; }

    /// Whether a cut lies between a field and the one on its right, or above it.
    bool isCut(size_t column, size_t line, bool upright) const
    {
        const Rect field = m_grid.field(column, line);
        const auto [begin, end] = m_cutsAt.equal_range({upright, upright ? field.xh : field.yh});
        return std::any_of(begin, end, [&](const auto& entry) {
            const Rect& box = entry.second->box;
            return upright ? box.yl <= field.yl && field.yh <= box.yh
                           : box.xl <= field.xl && field.xh <= box.xh;
        });
    }

    void joinFields()
    {
        for (size_t i = 0; i < m_grid.columns(); ++i) {
            for (size_t k = 0; k < m_grid.lines(); ++k) {
                const bool isRight = i + 1 < m_grid.columns();
                const bool isUp = k + 1 < m_grid.lines();
                if (m_grid.at(i, k) && isRight && m_grid.at(i + 1, k) && !isCut(i, k, true)) {
                    m_fields.join(fieldOf(i, k), fieldOf(i + 1, k));
                }
                if (m_grid.at(i, k) && isUp && m_grid.at(i, k + 1) && !isCut(i, k, false)) {
                    m_fields.join(fieldOf(i, k), fieldOf(i, k + 1));
                }
                if (isRight && isUp) {
                    joinCorner(i, k);
                }
            }
        }
    }

    /// Joins fields that touch at a corner alone.
    void joinCorner(size_t i, size_t k)
    {
        const bool rising = m_grid.at(i, k) && m_grid.at(i + 1, k + 1);
        const bool falling = m_grid.at(i + 1, k) && m_grid.at(i, k + 1);
        if (rising && !m_grid.at(i + 1, k) && !m_grid.at(i, k + 1)) {
            m_fields.join(fieldOf(i, k), fieldOf(i + 1, k + 1));
        }
        if (falling && !m_grid.at(i, k) && !m_grid.at(i + 1, k + 1)) {
            m_fields.join(fieldOf(i + 1, k), fieldOf(i, k + 1));
        }
    }

    void nameFields()
    {
        m_names.resize(m_grid.columns() * m_grid.lines());
        for (size_t i = 0; i < m_grid.columns(); ++i) {
            for (size_t k = 0; k < m_grid.lines(); ++k) {
                const size_t field = fieldOf(i, k);
                const size_t least = m_fields.leastOf(field);
                if (m_grid.at(i, k)) {
                    m_names[field] = least == field ? m_count++ : m_names[least];
                }
            }
        }
    }

    /// The pieces on the two sides of a cut.
    std::pair<size_t, size_t> sidesOf(const Cut& cut) const
    {
        const size_t column = m_grid.columnAt(cut.upright ? cut.at : cut.box.xl);
        const size_t line = m_grid.lineAt(cut.upright ? cut.box.yl : cut.at);
        const size_t before = cut.upright ? fieldOf(column - 1, line) : fieldOf(column, line - 1);
        return {m_names[before], m_names[fieldOf(column, line)]};
    }

    const std::vector<Cut>& m_cuts;
    std::multimap<std::pair<bool, int32_t>, const Cut*> m_cutsAt; ///< by direction and place
    Grid m_grid;
    geometry::Sets m_fields;
    std::vector<size_t> m_names; ///< [field] its piece
    size_t m_count = 0;          ///< pieces
};

} // namespace

std::vector<Cut> cutsOf(const Polygon& polygon, const std::vector<const Polygon*>& others, const Rules& rules,
                        int32_t width)
{
    const auto atLeft = [&](int32_t x) { return x < rules.distance; };
    const auto atRight = [&](int32_t x) { return width - x < rules.distance; };
    Finder flat(polygon, others, rules);
    flat.cutArms([](const Rect& /*slab*/) { return false; });
    const auto any = [&](auto test) { return std::ranges::any_of(polygon.rects, test); };
    if (flat.cuts().empty() && any([&](const Rect& rect) { return atLeft(rect.xl); }) &&
        any([&](const Rect& rect) { return atRight(rect.xh); })) {
        flat.cutNearest(width / 2);
    }
    std::vector<Polygon> turnedPolygons;
    turnedPolygons.reserve(others.size());
    for (const Polygon* other : others) {
        turnedPolygons.push_back(turned(*other));
    }
    std::vector<const Polygon*> turnedOthers;
    turnedOthers.reserve(others.size());
    for (const Polygon& other : turnedPolygons) {
        turnedOthers.push_back(&other);
    }
    Finder upright(turned(polygon), turnedOthers, rules);
    upright.cutArms([&](const Rect& slab) { return atLeft(slab.yl) || atRight(slab.yh); });
    std::vector<Cut> cuts = flat.cuts();
    for (const Cut& cut : upright.cuts()) {
        cuts.push_back({false, cut.at, transposed(cut.box)});
    }
    return cuts;
}

Pieces cutUp(const std::vector<Rect>& polygon, const std::vector<Cut>& cuts)
{
    return Cutter(polygon, cuts).run();
}

} // namespace kit::color
