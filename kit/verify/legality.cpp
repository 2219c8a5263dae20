// SPDX-License-Identifier: BSD-3-Clause
#include "kit/verify/legality.h"

#include <algorithm>
#include <string>
#include <unordered_map>

namespace kit::verify {

namespace {

std::string describe(const input::Component& comp)
{
    return comp.name + " (" + comp.cellName + ") at (" + std::to_string(comp.x) + ", " +
           std::to_string(comp.y) + ")";
}

/// Checks components one by one.
class PlaceCheck {
public:
    PlaceCheck(const input::Design& design, const Scale& scale, Issues& issues)
        : m_design(design), m_scale(scale), m_issues(issues)
    {
        for (const input::Row& row : design.rows) {
            m_rows[row.y].push_back(&row);
        }
    }

    void run()
    {
        for (size_t i = 0; i < m_design.components.size(); ++i) {
            m_component = static_cast<int32_t>(i);
            check(m_design.components[i]);
        }
    }

private:
    void check(const input::Component& comp)
    {
        if (comp.cell < 0) {
            add(Kind::UNKNOWN_CELL, describe(comp) + ": its cell is not in the library");
            return;
        }
        const input::Cell& cell = m_design.cells[static_cast<size_t>(comp.cell)];
        m_width = m_scale.ofLibrary(cell.width);
        m_height = m_scale.ofLibrary(cell.height);
        if (!turnOf(comp.orient).known) {
            add(Kind::ORIENTATION, describe(comp) + " has the orientation " + comp.orient +
                                       ": cells in rows have N, FN, S or FS");
        }
        checkRow(comp);
    }

    void checkRow(const input::Component& comp)
    {
        const auto rows = m_rows.find(comp.y);
        if (rows == m_rows.end()) {
            add(Kind::OFF_ROW, describe(comp) + " is on no row");
            return;
        }
        const auto holder = std::find_if(rows->second.begin(), rows->second.end(),
                                         [&](const input::Row* row) { return holds(*row, comp); });
        if (holder == rows->second.end()) {
            add(Kind::OUTSIDE_ROW, describe(comp) + " is not inside a row, " + roomOf(rows->second));
        } else if ((*holder)->step > 0 && offsetIn(**holder, comp) % (*holder)->step != 0) {
            add(Kind::OFF_GRID, describe(comp) + " is " +
                                    std::to_string(offsetIn(**holder, comp) % (*holder)->step) +
                                    " DBU right of a site of " + (*holder)->name);
        }
    }

    static int64_t offsetIn(const input::Row& row, const input::Component& comp)
    {
        return int64_t{comp.x} - row.x;
    }

    static int64_t endOf(const input::Row& row) { return row.x + int64_t{row.numSites} * row.step; }

    bool holds(const input::Row& row, const input::Component& comp) const
    {
        return comp.x >= row.x && Scale::ofDbu(comp.x) + m_width <= Scale::ofDbu(endOf(row));
    }

    /// Where the cell could be: the rows at its height.
    static std::string roomOf(const std::vector<const input::Row*>& rows)
    {
        const input::Row& row = *rows.front();
        const std::string more = rows.size() > 1 ? " or another at its height" : "";
        return row.name + " from " + std::to_string(row.x) + " to " + std::to_string(endOf(row)) + more;
    }

    void add(Kind kind, std::string what)
    {
        const input::Component& comp = m_design.components[static_cast<size_t>(m_component)];
        const int64_t x = Scale::ofDbu(comp.x);
        const int64_t y = Scale::ofDbu(comp.y);
        const bool known = comp.cell >= 0;
        const FineBox box{x, y, x + (known ? m_width : 0), y + (known ? m_height : 0)};
        m_issues.push_back({.kind = kind,
                            .line = comp.line,
                            .component = m_component,
                            .what = std::move(what),
                            .box = Scale::toDbu(box)});
    }

    const input::Design& m_design;
    const Scale& m_scale;
    Issues& m_issues;
    std::unordered_map<int32_t, std::vector<const input::Row*>> m_rows; ///< by bottom edge
    int32_t m_component = -1;
    int64_t m_width = 0;  ///< of the component, fine units
    int64_t m_height = 0; ///< of the component, fine units
};

/// What the placer left out from FILLER_1 on: fillers must be placed anew, other cells are missing.
void checkLeftOut(const input::Design& design, Issues& issues)
{
    const auto isFiller = [](const input::Component& comp) { return comp.name.starts_with("FILLER"); };
    int64_t fillers = 0;
    for (const input::Component& comp : design.fillers) {
        if (isFiller(comp)) {
            ++fillers;
        } else {
            issues.push_back({.kind = Kind::NOT_PLACED,
                              .line = comp.line,
                              .what = describe(comp) + " comes behind FILLER_1: the placer leaves it out"});
        }
    }
    if (fillers > 0) {
        issues.push_back(
            {.kind = Kind::FILLERS,
             .line = design.fillers.front().line,
             .what = std::to_string(fillers) + " fillers from here on are not judged: fill the rows again"});
    }
}

FineBox boxOf(const input::Macro& macro)
{
    return {Scale::ofDbu(macro.x), Scale::ofDbu(macro.y), Scale::ofDbu(int64_t{macro.x} + macro.width),
            Scale::ofDbu(int64_t{macro.y} + macro.height)};
}

/// Whether two rectangles share more than an edge.
bool overlap(const FineBox& a, const FineBox& b)
{
    return a.xl < b.xh && b.xl < a.xh && a.yl < b.yh && b.yl < a.yh;
}

/// Macros that a band's cells may overlap, from the left.
std::vector<const input::Macro*> macrosNear(const Band& band, int64_t tallest,
                                            const std::vector<const input::Macro*>& macros)
{
    std::vector<const input::Macro*> near;
    std::copy_if(macros.begin(), macros.end(), std::back_inserter(near), [&](const input::Macro* macro) {
        const FineBox box = boxOf(*macro);
        return box.yl < band.y + tallest && box.yh > band.y;
    });
    return near;
}

void checkBand(const input::Design& design, const Band& band, const std::vector<const input::Macro*>& macros,
               Issues& issues)
{
    std::vector<Span> spans;
    for (const input::Macro* macro : macros) {
        const FineBox box = boxOf(*macro);
        spans.push_back({box.xl, std::max(box.xl, box.xh)});
    }
    sweepRows(band.spans, spans, /*reach=*/0, [&](size_t cell, size_t macro) {
        const FineBox outline = band.cells[cell].outline();
        if (overlap(outline, boxOf(*macros[macro]))) {
            const int32_t component = band.cells[cell].component;
            const input::Component& comp = design.components[static_cast<size_t>(component)];
            issues.push_back({.kind = Kind::MACRO_OVERLAP,
                              .line = comp.line,
                              .component = component,
                              .what = describe(comp) + " overlaps the macro " + macros[macro]->name,
                              .box = Scale::toDbu(outline)});
        }
        return true;
    });
}

} // namespace

void checkPlaces(const input::Design& design, const Scale& scale, Issues& issues)
{
    PlaceCheck(design, scale, issues).run();
    checkLeftOut(design, issues);
}

void checkMacros(const input::Design& design, const Layout& layout, Issues& issues)
{
    std::vector<const input::Macro*> macros;
    for (const input::Macro& macro : design.macros) {
        macros.push_back(&macro);
    }
    std::stable_sort(macros.begin(), macros.end(),
                     [](const input::Macro* a, const input::Macro* b) { return a->x < b->x; });
    for (const Band& band : layout.bands()) {
        checkBand(design, band, macrosNear(band, layout.tallest(), macros), issues);
    }
}

} // namespace kit::verify
