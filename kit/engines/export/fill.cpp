// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/export/fill.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "kit/engines/export/pieces.h"
#include "kit/formats/lefdef/units.h"
#include "kit/geometry/sets.h"

namespace kit::exporter {

namespace {

using lefdef::DefComponent;
using lefdef::DefRect;
using lefdef::LefMacro;
using lefdef::LefShape;
using lefdef::Length;
using lefdef::Orient;
using lefdef::Status;

using Range = geometry::RangeOf<int64_t>;

/// Sites side by side.
struct FillRow {
    int64_t x = 0; ///< left edge, DBU
    int64_t y = 0;
    int64_t step = 0; ///< width of a site
    int64_t sites = 0;
    int64_t height = 0;
    Orient orient = Orient::N;
    std::vector<Range> taken{}; ///< parts of the x axis, in any order

    int64_t end() const { return x + sites * step; }
};

/// A master to fill with.
struct FillMaster {
    const LefMacro* macro = nullptr; ///< not owned
    int64_t width = 0;               ///< DBU
    int64_t height = 0;
    int64_t count = 0; ///< of the DEF file
};

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

/// A filler as a cell on mask 0; none if it has metal that is no rail, or whose edges slant. A rail is metal
/// that hangs together and reaches the bottom or top edge.
///
/// @param siteWidth  picometres
std::optional<placer::Cell> cellOf(const LefMacro& macro, Length siteWidth)
{
    std::vector<Box> boxes;
    for (const LefShape* shape : shapesOf(macro)) {
        const std::vector<Box> some = boxesOf(*shape);
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
    placer::Cell cell;
    cell.name = macro.name;
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
            shape.rects.push_back({library(box.xl), library(box.yl), library(box.xh), library(box.yh)});
        }
    }
    cell.solutions.emplace_back().masks.resize(cell.shapes.size(), 0);
    return cell;
}

/// Which masters fill a number of sites side by side so that the fewest are left, the widest first.
class Packing {
public:
    /// @param widths  of the masters in sites, from the widest
    explicit Packing(std::vector<int64_t> widths) : m_widths(std::move(widths)) {}

    /// Index of the first master for so many sites; none if they have to stay free.
    std::optional<size_t> first(int64_t sites)
    {
        grow(sites);
        for (size_t i = 0; i < m_widths.size(); ++i) {
            const int64_t rest = sites - m_widths[i];
            if (rest >= 0 && left(rest) == left(sites)) {
                return i;
            }
        }
        return {};
    }

private:
    int64_t left(int64_t sites) const { return m_left[static_cast<size_t>(sites)]; }

    void grow(int64_t sites)
    {
        for (auto next = static_cast<int64_t>(m_left.size()); next <= sites; ++next) {
            int64_t least = next;
            for (const int64_t width : m_widths) {
                least = width <= next ? std::min(least, left(next - width)) : least;
            }
            m_left.push_back(least);
        }
    }

    std::vector<int64_t> m_widths;
    std::vector<int64_t> m_left; ///< [sites] how many of them stay free
};

/// Sites that are looked at together: the widest come first in more, whatever follows.
constexpr int64_t FARTHEST_LOOK = 4096;

class Filler {
public:
    Filler(const FillParts& parts, Findings& findings)
        : m_parts(parts), m_findings(findings), m_micron(parts.micron)
    {
        for (const DefComponent& component : parts.def.components) {
            m_names.insert(component.name);
        }
    }

    Filling run()
    {
        findMasters();
        if (m_masters.empty()) {
            return {};
        }
        findRows();
        tellHeights();
        block();
        for (size_t i = 0; i < m_rows.size(); ++i) {
            fill(i);
        }
        return std::move(m_filling);
    }

private:
    int64_t dbu(Length length) const { return lefdef::dbuNearest(length, m_micron); }

    /// The masters of the dropped fillers that can be coloured, from the widest.
    void findMasters()
    {
        std::map<std::string_view, int64_t> counts;
        for (size_t i = 0; i < m_parts.dropped.size(); ++i) {
            if (m_parts.dropped[i]) {
                ++counts[m_parts.def.components[i].macro];
            }
        }
        const Length site = m_parts.siteWidth * lefdef::MICRON / m_micron;
        std::vector<std::pair<FillMaster, placer::Cell>> found;
        for (const auto& [name, count] : counts) {
            const auto macro = m_parts.macros.find(name);
            if (macro == m_parts.macros.end()) {
                continue; // told of the component
            }
            std::optional<placer::Cell> cell = cellOf(*macro->second, site);
            if (!cell) {
                note("filler-metal",
                     "the filler " + std::string(name) +
                         " has other metal than rails, which would need masks: it is left out");
            } else if (macro->second->width > 0) {
                const FillMaster master{macro->second, dbu(macro->second->width), dbu(macro->second->height),
                                        count};
                found.emplace_back(master, std::move(*cell));
            }
        }
        std::ranges::stable_sort(found, [](const auto& a, const auto& b) {
            return std::pair(a.first.width, a.first.count) > std::pair(b.first.width, b.first.count);
        });
        for (auto& [master, cell] : found) {
            m_masters.push_back(master);
            m_filling.masters.push_back(std::move(cell));
        }
    }

    void findRows()
    {
        const std::map<std::string_view, const lefdef::LefSite*> sites = sitesByName();
        for (const lefdef::DefRow& row : m_parts.def.rows) {
            const auto site = sites.find(row.site);
            const bool known = site != sites.end();
            FillRow wanted{.x = row.x,
                           .step = row.stepX,
                           .sites = row.columns,
                           .height = known ? dbu(site->second->height) : m_parts.rowHeight,
                           .orient = row.orient};
            if (row.columns == 1 && wanted.step <= 0) {
                wanted.step = known ? dbu(site->second->width) : m_parts.siteWidth;
            }
            if (isOnItsSide(row.orient) || wanted.step <= 0) {
                continue;
            }
            for (int32_t i = 0; i < row.rows; ++i) {
                m_rows.push_back(wanted);
                m_rows.back().y = row.y + int64_t{i} * row.stepY;
            }
            m_tallest = std::max(m_tallest, wanted.height);
        }
        std::ranges::stable_sort(m_rows, {}, &FillRow::y);
    }

    std::map<std::string_view, const lefdef::LefSite*> sitesByName() const
    {
        std::map<std::string_view, const lefdef::LefSite*> sites;
        for (const lefdef::LefSite& site : m_parts.lef.sites) {
            sites.try_emplace(site.name, &site);
        }
        return sites;
    }

    void tellHeights()
    {
        for (const FillMaster& master : m_masters) {
            if (std::ranges::none_of(m_rows,
                                     [&](const FillRow& row) { return row.height == master.height; })) {
                note("filler-height",
                     "the filler " + master.macro->name + " is not as high as a row: it is left out");
            }
        }
    }

    /// Takes from the rows what stands on them, and what no filler stood on.
    void block()
    {
        std::vector<bool> isPlaced(m_parts.def.components.size());
        for (const Placed& placed : m_parts.matching.placed) {
            isPlaced[placed.inDef] = true;
            take(outlineOf(m_parts.def.components[placed.inDef], placed.x, placed.y, placed.orient));
        }
        std::vector<DefRect> before;
        for (size_t i = 0; i < isPlaced.size(); ++i) {
            const DefComponent& component = m_parts.def.components[i];
            if (component.status == Status::NONE || component.status == Status::UNPLACED || isPlaced[i]) {
                continue;
            }
            const DefRect outline = outlineOf(component, component.x, component.y, component.orient);
            if (m_parts.fillers[i]) {
                before.push_back(outline);
            }
            if (!m_parts.dropped[i]) {
                take(outline);
            }
        }
        blockBlockages(std::move(before));
    }

    /// @param before  where fillers were
    void blockBlockages(std::vector<DefRect> before)
    {
        int64_t tallest = 0;
        for (const DefRect& filler : before) {
            tallest = std::max(tallest, filler.yh - filler.yl);
        }
        std::ranges::sort(before, {}, &DefRect::yl);
        for (const lefdef::DefBlockage& blockage : m_parts.def.blockages) {
            for (const DefRect& rect : blockage.rects) {
                auto at = std::ranges::lower_bound(before, rect.yl - tallest, {}, &DefRect::yl);
                while (at != before.end() && at->yl < rect.yh && !geometry::common(*at, rect).hasArea()) {
                    ++at;
                }
                if (at == before.end() || at->yl >= rect.yh) {
                    take(rect);
                }
            }
        }
    }

    DefRect outlineOf(const DefComponent& component, int64_t x, int64_t y, Orient orient)
    {
        const auto macro = m_parts.macros.find(component.macro);
        if (macro == m_parts.macros.end()) {
            Reporter(m_findings, m_parts.defPath)
                .error("no-macro", {},
                       "the macro " + std::string(component.macro) + " of the component " +
                           std::string(component.name) + " is in none of the LEF files",
                       "give the file that has it with --lef: fillers may not lie on it");
            return {x, y, x, y};
        }
        int64_t width = dbu(macro->second->width);
        int64_t height = dbu(macro->second->height);
        if (isOnItsSide(orient)) {
            std::swap(width, height);
        }
        return {x, y, x + width, y + height};
    }

    /// Takes a rectangle from all rows that it overlaps.
    void take(const DefRect& rect)
    {
        if (!rect.hasArea()) {
            return;
        }
        auto row = std::ranges::lower_bound(m_rows, rect.yl - m_tallest, {}, &FillRow::y);
        for (; row != m_rows.end() && row->y < rect.yh; ++row) {
            if (row->y + row->height > rect.yl && row->x < rect.xh && rect.xl < row->end()) {
                row->taken.push_back({rect.xl, rect.xh});
            }
        }
    }

    /// Fills a row. What is put into it is taken from the rows that it overlaps.
    void fill(size_t index)
    {
        FillRow& row = m_rows[index];
        std::vector<size_t> masters;
        std::vector<int64_t> widths;
        for (size_t i = 0; i < m_masters.size(); ++i) {
            if (m_masters[i].height == row.height) {
                masters.push_back(i);
                widths.push_back((m_masters[i].width + row.step - 1) / row.step);
            }
        }
        Packing packing(widths);
        for (auto [site, end] : freeSites(row)) {
            for (std::optional<size_t> next; (next = packing.first(std::min(end - site, FARTHEST_LOOK)));
                 site += widths[*next]) {
                put(row, row.x + site * row.step, masters[*next]);
            }
        }
    }

    /// The free sites of a row, from the left.
    static std::vector<Range> freeSites(FillRow& row)
    {
        std::ranges::sort(row.taken, {}, &Range::begin);
        std::vector<Range> free;
        int64_t site = 0;
        for (const Range& taken : row.taken) {
            const int64_t begin = std::max<int64_t>((taken.begin - row.x) / row.step, 0);
            if (begin > site) {
                free.push_back({site, begin});
            }
            site = std::max(site, (taken.end - row.x + row.step - 1) / row.step);
        }
        if (site < row.sites) {
            free.push_back({site, row.sites});
        }
        return free;
    }

    void put(const FillRow& row, int64_t x, size_t master)
    {
        std::string name;
        do {
            name = "FILLER_" + std::to_string(m_next++);
        } while (m_names.contains(name));
        m_filling.fillers.push_back({.name = std::move(name),
                                     .master = master,
                                     .x = static_cast<int32_t>(x),
                                     .y = static_cast<int32_t>(row.y),
                                     .orient = row.orient});
        take({x, row.y, x + m_masters[master].width, row.y + m_masters[master].height});
    }

    void note(const char* code, std::string what)
    {
        Reporter(m_findings, m_parts.defPath).note(code, {}, std::move(what), "");
    }

    const FillParts& m_parts;
    Findings& m_findings;
    int32_t m_micron;                  ///< DBU per micrometre
    std::vector<FillMaster> m_masters; ///< as in Filling::masters
    std::vector<FillRow> m_rows;       ///< from the bottom
    int64_t m_tallest = 0;             ///< of the rows
    std::unordered_set<std::string_view> m_names;
    Filling m_filling;
    int64_t m_next = 1; ///< number of the next filler
};

} // namespace

Filling fillGaps(const FillParts& parts, Findings& findings)
{
    return Filler(parts, findings).run();
}

} // namespace kit::exporter
