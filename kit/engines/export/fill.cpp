// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/export/fill.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <optional>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "kit/engines/export/fillCells.h"
#include "kit/formats/lefdef/units.h"
#include "kit/formats/placer/reader.h"

namespace kit::exporter {

namespace {

using lefdef::DefComponent;
using lefdef::DefRect;
using lefdef::LefMacro;
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
    bool isRails = false;            ///< it has no other metal
    int64_t width = 0;               ///< DBU
    int64_t height = 0;
    int64_t count = 0; ///< of the DEF file
};

/// Which masters fill a number of sites side by side so that the fewest are left, the widest first.
class Packing {
public:
    /// @param widths  of the masters in sites, from the widest
    explicit Packing(std::vector<int64_t> widths) : m_widths(std::move(widths)) {}

    /// Indices of the masters that may come first in so many sites, the best one first.
    std::vector<size_t> first(int64_t sites)
    {
        grow(sites);
        std::vector<size_t> masters;
        for (const bool best : {true, false}) {
            for (size_t i = 0; i < m_widths.size(); ++i) {
                const int64_t rest = sites - m_widths[i];
                if (rest >= 0 && (left(rest) == left(sites)) == best) {
                    masters.push_back(i);
                }
            }
        }
        return masters;
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
        : m_parts(parts), m_findings(findings), m_micron(parts.micron), m_scale{parts.siteWidth}
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
        if (!std::ranges::all_of(m_masters, &FillMaster::isRails)) {
            m_surroundings.emplace(m_parts.design, m_parts.colours, m_scale, m_parts.minDist);
        }
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
            std::optional<placer::Cell> cell = railCell(*macro->second, site);
            const bool isRails = cell.has_value();
            cell = isRails ? std::move(cell) : colouredCell(std::string(name));
            if (!cell) {
                note("filler-metal", "the filler " + std::string(name) +
                                         " has other metal than rails, and no colour file: it is left out");
            } else if (macro->second->width > 0) {
                const FillMaster master{macro->second, isRails, dbu(macro->second->width),
                                        dbu(macro->second->height), count};
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

    /// A filler by its colour file; none if there is no sound one with solutions.
    std::optional<placer::Cell> colouredCell(const std::string& name) const
    {
        placer::Design one;
        Findings faults;
        placer::readCells({name}, m_parts.cellDir, one, faults);
        placer::Cell& cell = one.cells.front();
        const bool isWhole = std::ranges::all_of(cell.solutions, [&cell](const placer::Solution& solution) {
            return solution.masks.size() == cell.shapes.size();
        });
        if (!faults.empty() || cell.solutions.empty() || !isWhole) {
            return {};
        }
        return std::move(cell);
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
            while (site < end) {
                const std::optional<size_t> put =
                    putFirst(row, row.x + site * row.step, masters,
                             packing.first(std::min(end - site, FARTHEST_LOOK)));
                site += put ? widths[*put] : 1;
            }
        }
    }

    /// Puts the first of some masters whose metal fits.
    ///
    /// @param masters  indices in m_masters
    /// @param choices  indices in masters
    /// @return that of the choices, none if no master fits
    std::optional<size_t> putFirst(const FillRow& row, int64_t x, const std::vector<size_t>& masters,
                                   const std::vector<size_t>& choices)
    {
        for (const size_t choice : choices) {
            if (const std::optional<int32_t> solution = solutionAt(row, x, masters[choice])) {
                put(row, x, masters[choice], *solution);
                return choice;
            }
        }
        return {};
    }

    /// The solution with the fewest stitches whose metal is far enough from all around, if there is one.
    std::optional<int32_t> solutionAt(const FillRow& row, int64_t x, size_t master)
    {
        const placer::Cell& cell = m_filling.masters[master];
        if (m_masters[master].isRails) {
            return 0;
        }
        design::Standing standing{.stencil = &stencilAs(master, row.orient),
                                  .masks = {},
                                  .x = design::Scale::ofDbu(x),
                                  .y = design::Scale::ofDbu(row.y)};
        std::vector<int32_t> order(cell.solutions.size());
        std::iota(order.begin(), order.end(), 0);
        std::ranges::stable_sort(
            order, {}, [&cell](int32_t i) { return cell.solutions[static_cast<size_t>(i)].stitches; });
        for (const int32_t i : order) {
            standing.masks = cell.solutions[static_cast<size_t>(i)].masks;
            if (m_surroundings->allow(standing)) {
                m_surroundings->add(standing);
                return i;
            }
        }
        return {};
    }

    const design::Stencil& stencilAs(size_t master, Orient orient)
    {
        const auto [at, isNew] = m_stencils.try_emplace({master, orient});
        if (isNew) {
            at->second = design::stencilOf(m_filling.masters[master],
                                           design::turnOf(std::string(nameOf(orient))), m_scale);
        }
        return at->second;
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

    void put(const FillRow& row, int64_t x, size_t master, int32_t solution)
    {
        std::string name;
        do {
            name = "FILLER_" + std::to_string(m_next++);
        } while (m_names.contains(name));
        m_filling.fillers.push_back({.name = std::move(name),
                                     .master = master,
                                     .solution = solution,
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
    design::Scale m_scale;
    std::optional<Surroundings> m_surroundings; ///< if one has
    std::map<std::pair<size_t, Orient>, design::Stencil> m_stencils;
    int64_t m_next = 1; ///< number of the next filler
};

} // namespace

Filling fillGaps(const FillParts& parts, Findings& findings)
{
    return Filler(parts, findings).run();
}

} // namespace kit::exporter
