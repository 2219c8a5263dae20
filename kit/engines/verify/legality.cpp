// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/verify/legality.h"

#include <algorithm>
#include <string>
#include <unordered_map>

namespace kit::verify {

namespace {

std::string describe(const placer::Component& comp)
{
    return comp.name + " (" + comp.cellName + ") at (" + std::to_string(comp.x) + ", " +
           std::to_string(comp.y) + ")";
}

/// Checks components one by one.
class PlaceCheck {
public:
    PlaceCheck(const placer::Design& design, const design::Scale& scale, design::Issues& issues)
        : m_design(design), m_scale(scale), m_issues(issues)
    {
        for (const placer::Row& row : design.rows) {
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
    void check(const placer::Component& comp)
    {
        if (comp.cell < 0) {
            add(design::Kind::UNKNOWN_CELL, describe(comp) + ": its cell is not in the library");
            return;
        }
        const placer::Cell& cell = m_design.cells[static_cast<size_t>(comp.cell)];
        m_width = m_scale.ofLibrary(cell.width);
        m_height = m_scale.ofLibrary(cell.height);
        if (!design::turnOf(comp.orient).known) {
            add(design::Kind::ORIENTATION, describe(comp) + " has the orientation " + comp.orient +
                                               ": cells in rows have N, FN, S or FS");
        }
        checkRow(comp);
    }

    void checkRow(const placer::Component& comp)
    {
        const auto rows = m_rows.find(comp.y);
        if (rows == m_rows.end()) {
            add(design::Kind::OFF_ROW, describe(comp) + " is on no row");
            return;
        }
        const auto holder = std::find_if(rows->second.begin(), rows->second.end(),
                                         [&](const placer::Row* row) { return holds(*row, comp); });
        if (holder == rows->second.end()) {
            add(design::Kind::OUTSIDE_ROW, describe(comp) + " is not inside a row, " + roomOf(rows->second));
        } else if ((*holder)->step > 0 && offsetIn(**holder, comp) % (*holder)->step != 0) {
            add(design::Kind::OFF_GRID, describe(comp) + " is " +
                                            std::to_string(offsetIn(**holder, comp) % (*holder)->step) +
                                            " DBU right of a site of " + (*holder)->name);
        }
    }

    static int64_t offsetIn(const placer::Row& row, const placer::Component& comp)
    {
        return int64_t{comp.x} - row.x;
    }

    static int64_t endOf(const placer::Row& row) { return row.x + int64_t{row.numSites} * row.step; }

    bool holds(const placer::Row& row, const placer::Component& comp) const
    {
        return comp.x >= row.x && design::Scale::ofDbu(comp.x) + m_width <= design::Scale::ofDbu(endOf(row));
    }

    /// Where the cell could be: the rows at its height.
    static std::string roomOf(const std::vector<const placer::Row*>& rows)
    {
        const placer::Row& row = *rows.front();
        const std::string more = rows.size() > 1 ? " or another at its height" : "";
        return row.name + " from " + std::to_string(row.x) + " to " + std::to_string(endOf(row)) + more;
    }

    void add(design::Kind kind, std::string what)
    {
        const placer::Component& comp = m_design.components[static_cast<size_t>(m_component)];
        const int64_t x = design::Scale::ofDbu(comp.x);
        const int64_t y = design::Scale::ofDbu(comp.y);
        const bool known = comp.cell >= 0;
        const design::FineBox box{x, y, x + (known ? m_width : 0), y + (known ? m_height : 0)};
        m_issues.push_back({.kind = kind,
                            .line = comp.line,
                            .component = m_component,
                            .what = std::move(what),
                            .box = design::Scale::toDbu(box)});
    }

    const placer::Design& m_design;
    const design::Scale& m_scale;
    design::Issues& m_issues;
    std::unordered_map<int32_t, std::vector<const placer::Row*>> m_rows; ///< by bottom edge
    int32_t m_component = -1;
    int64_t m_width = 0;  ///< of the component, fine units
    int64_t m_height = 0; ///< of the component, fine units
};

/// What the placer left out from FILLER_1 on: fillers must be placed anew, other cells are missing.
void checkLeftOut(const placer::Design& design, design::Issues& issues)
{
    const auto isFiller = [](const placer::Component& comp) { return comp.name.starts_with("FILLER"); };
    int64_t fillers = 0;
    for (const placer::Component& comp : design.fillers) {
        if (isFiller(comp)) {
            ++fillers;
        } else {
            issues.push_back({.kind = design::Kind::NOT_PLACED,
                              .line = comp.line,
                              .what = describe(comp) + " comes behind FILLER_1: the placer leaves it out"});
        }
    }
    if (fillers > 0) {
        issues.push_back({.kind = design::Kind::FILLERS,
                          .line = design.fillers.front().line,
                          .what = "the fillers from here on, " + std::to_string(fillers) +
                                  ", are not judged: fill the rows again"});
    }
}

design::FineBox boxOf(const placer::Macro& macro)
{
    return {design::Scale::ofDbu(macro.x), design::Scale::ofDbu(macro.y),
            design::Scale::ofDbu(int64_t{macro.x} + macro.width),
            design::Scale::ofDbu(int64_t{macro.y} + macro.height)};
}

/// Whether two rectangles share more than an edge.
bool overlap(const design::FineBox& a, const design::FineBox& b)
{
    return a.xl < b.xh && b.xl < a.xh && a.yl < b.yh && b.yl < a.yh;
}

/// Macros that a band's cells may overlap, from the left.
std::vector<const placer::Macro*> macrosNear(const design::Band& band, int64_t tallest,
                                             const std::vector<const placer::Macro*>& macros)
{
    std::vector<const placer::Macro*> near;
    std::copy_if(macros.begin(), macros.end(), std::back_inserter(near), [&](const placer::Macro* macro) {
        const design::FineBox box = boxOf(*macro);
        return box.yl < band.y + tallest && box.yh > band.y;
    });
    return near;
}

void checkBand(const placer::Design& design, const design::Band& band,
               const std::vector<const placer::Macro*>& macros, design::Issues& issues)
{
    std::vector<geometry::Span> spans;
    for (const placer::Macro* macro : macros) {
        const design::FineBox box = boxOf(*macro);
        spans.push_back({box.xl, std::max(box.xl, box.xh)});
    }
    geometry::sweepRows(band.spans, spans, /*reach=*/0, [&](size_t cell, size_t macro) {
        const design::FineBox outline = band.cells[cell].outline();
        if (overlap(outline, boxOf(*macros[macro]))) {
            const int32_t component = band.cells[cell].component;
            const placer::Component& comp = design.components[static_cast<size_t>(component)];
            issues.push_back({.kind = design::Kind::MACRO_OVERLAP,
                              .line = comp.line,
                              .component = component,
                              .what = describe(comp) + " overlaps the macro " + macros[macro]->name,
                              .box = design::Scale::toDbu(outline)});
        }
        return true;
    });
}

} // namespace

void checkPlaces(const placer::Design& design, const design::Scale& scale, design::Issues& issues)
{
    PlaceCheck(design, scale, issues).run();
    checkLeftOut(design, issues);
}

void checkMacros(const placer::Design& design, const design::Layout& layout, design::Issues& issues)
{
    std::vector<const placer::Macro*> macros;
    for (const placer::Macro& macro : design.macros) {
        macros.push_back(&macro);
    }
    std::stable_sort(macros.begin(), macros.end(),
                     [](const placer::Macro* a, const placer::Macro* b) { return a->x < b->x; });
    for (const design::Band& band : layout.bands()) {
        checkBand(design, band, macrosNear(band, layout.tallest(), macros), issues);
    }
}

} // namespace kit::verify
