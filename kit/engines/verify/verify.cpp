// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/verify/verify.h"

#include <algorithm>
#include <iterator>
#include <unordered_map>

#include "kit/base/fault.h"
#include "kit/base/text/text.h"
#include "kit/design/nameMap.h"
#include "kit/design/rowKinds.h"
#include "kit/design/standing.h"
#include "kit/engines/verify/checks.h"
#include "kit/formats/placer/design.h"
#include "kit/formats/placer/reader.h"
#include "kit/geometry/sweep.h"

namespace kit::verify {

namespace {

using design::placeText;

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
            add(design::Kind::UNKNOWN_CELL, placeText(comp) + ": its cell is not in the library");
            return;
        }
        const placer::Cell& cell = *m_design.cellOf(comp);
        m_width = m_scale.ofLibrary(cell.width);
        m_height = m_scale.ofLibrary(cell.height);
        if (!design::turnOf(comp.orient).known) {
            add(design::Kind::ORIENTATION, placeText(comp) + " has the orientation " + comp.orient +
                                               ": cells in rows have N, FN, S or FS");
        }
        checkRow(comp);
    }

    void checkRow(const placer::Component& comp)
    {
        const auto rows = m_rows.find(comp.y);
        if (rows == m_rows.end()) {
            add(design::Kind::OFF_ROW, placeText(comp) + " is on no row");
            return;
        }
        const auto holder =
            std::ranges::find_if(rows->second, [&](const placer::Row* row) { return holds(*row, comp); });
        if (holder == rows->second.end()) {
            add(design::Kind::OUTSIDE_ROW, placeText(comp) + " is not inside a row, " + roomOf(rows->second));
        } else if ((*holder)->step > 0 && offsetIn(**holder, comp) % (*holder)->step != 0) {
            add(design::Kind::OFF_GRID, placeText(comp) + " is " +
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
        const placer::Component& comp = m_design.component(m_component);
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
                              .what = placeText(comp) + " comes behind FILLER_1: the placer leaves it out"});
        }
    }
    if (fillers > 0) {
        issues.push_back({.kind = design::Kind::FILLERS,
                          .line = design.fillers.front().line,
                          .what = "the fillers from here on, " + std::to_string(fillers) +
                                  ", are not judged: fill the rows again"});
    }
}

/// What stays where it is and is not judged, as nobody has chosen its masks.
void checkFixed(const design::ColoredPlacement& input, design::Issues& issues)
{
    const auto isBare = [](const placer::ColorRecord& record) { return record.solution < 0; };
    const auto count = std::ranges::count_if(input.fixedColors, isBare);
    if (count > 0) {
        const auto first = std::ranges::find_if(input.fixedColors, isBare);
        issues.push_back({.kind = design::Kind::NO_MASKS,
                          .what = counted(count, "fixed cell") + (count == 1 ? " has" : " have") +
                                  " no solution, and the metal is not judged; the first: " + first->name +
                                  " (" + first->cell + ")"});
    }
}

design::FineBox boxOf(const placer::Macro& macro)
{
    return {design::Scale::ofDbu(macro.x), design::Scale::ofDbu(macro.y),
            design::Scale::ofDbu(int64_t{macro.x} + macro.width),
            design::Scale::ofDbu(int64_t{macro.y} + macro.height)};
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
        const int32_t component = band.cells[cell].component;
        if (!design.isFixed(component) && geometry::common(outline, boxOf(*macros[macro])).hasArea()) {
            const placer::Component& comp = design.component(component);
            issues.push_back({.kind = design::Kind::MACRO_OVERLAP,
                              .line = comp.line,
                              .component = component,
                              .what = placeText(comp) + " overlaps the macro " + macros[macro]->name,
                              .box = design::Scale::toDbu(outline)});
        }
        return true;
    });
}

class PairCheck {
public:
    PairCheck(const placer::Design& design, const design::Layout& layout, const design::Scale& scale,
              const Rules& rules, design::Issues& issues)
        : m_design(design), m_layout(layout), m_scale(scale), m_reach(scale.ofLibrary(rules.minDist)),
          m_gauge(m_reach), m_rules(rules), m_issues(issues), m_mostIssues(issues.size() + rules.mostPairs)
    {
    }

    void run()
    {
        const std::vector<design::Band>& bands = m_layout.bands();
        bool whole = true;
        for (size_t i = 0; i < bands.size() && whole; ++i) {
            whole = checkBand(bands[i]);
            for (size_t j = i + 1; j < bands.size() && whole && near(bands[i], bands[j]); ++j) {
                whole = checkBands(bands[i], bands[j]);
            }
        }
        if (m_railPairs > 0) {
            tellRails();
        }
        if (!whole) {
            m_issues.push_back({.kind = design::Kind::TOO_MANY,
                                .what = "the search for close pairs ended after " +
                                        std::to_string(m_issues.size()) +
                                        " issues: are the cells spread over the rows at all?"});
        }
    }

private:
    bool near(const design::Band& lower, const design::Band& upper) const
    {
        return upper.y - lower.y < 2 * m_layout.tallest() + m_reach;
    }

    bool checkBand(const design::Band& band)
    {
        return geometry::sweepRow(band.spans, m_reach, [&](size_t left, size_t right) {
            return checkPair(band.cells[left], band.cells[right], design::Kind::CONFLICT);
        });
    }

    bool checkBands(const design::Band& lower, const design::Band& upper)
    {
        return geometry::sweepRows(lower.spans, upper.spans, m_reach, [&](size_t first, size_t second) {
            return checkPair(lower.cells[first], upper.cells[second], design::Kind::ROW_CONFLICT);
        });
    }

    bool checkPair(const design::Standing& a, const design::Standing& b, design::Kind kindOfConflict)
    {
        if (!design::areCompared(m_design, a.component, b.component)) {
            return true;
        }
        checkOutlines(a, b);
        const design::ClosePair close = m_gauge.measure(a, b);
        if (close.metal.shapePairs > 0) {
            m_issues.push_back(conflictOf(kindOfConflict, a, b, close.metal));
            m_issues.back().isError = m_rules.acrossRows;
        }
        if (close.rails.shapePairs > 0) {
            takeRails(conflictOf(design::Kind::RAIL_CONFLICT, a, b, close.rails));
        }
        return m_issues.size() < m_mostIssues;
    }

    design::Issue conflictOf(design::Kind kind, const design::Standing& a, const design::Standing& b,
                             const design::Closeness& close) const
    {
        design::Issue issue = issueOf(kind, a, b);
        issue.distance = m_scale.toLibrary(close.distance);
        issue.shapePairs = close.shapePairs;
        issue.mask = close.mask;
        issue.box = design::Scale::toDbu(close.first);
        issue.otherBox = design::Scale::toDbu(close.second);
        return issue;
    }

    /// Rails are near most cells: as notes, their conflicts are counted.
    void takeRails(design::Issue issue)
    {
        if (m_rules.rails) {
            issue.isError = true;
            m_issues.push_back(std::move(issue));
        } else if (m_railPairs++ == 0 || issue.distance < m_closestToRail.distance) {
            m_closestToRail = std::move(issue);
        }
    }

    void tellRails()
    {
        const auto textOf = [this](int32_t component) { return placeText(m_design.component(component)); };
        m_closestToRail.what =
            counted(m_railPairs, "pair") + " of cells " + (m_railPairs == 1 ? "has" : "have") +
            " metal of mask 0 too close to a rail, which the placer leaves out; the closest: " +
            textOf(m_closestToRail.component) + " and " + textOf(m_closestToRail.other);
        m_issues.push_back(m_closestToRail);
    }

    void checkOutlines(const design::Standing& a, const design::Standing& b)
    {
        if (m_design.isFixed(a.component) || m_design.isFixed(b.component)) {
            return; // what overlaps one of these overlaps a macro
        }
        const design::FineBox common = geometry::common(a.outline(), b.outline());
        if (common.hasArea()) {
            design::Issue issue = issueOf(design::Kind::CELL_OVERLAP, a, b);
            issue.box = design::Scale::toDbu(common);
            m_issues.push_back(issue);
        }
    }

    design::Issue issueOf(design::Kind kind, const design::Standing& a, const design::Standing& b) const
    {
        // What stays where it is has no line in the placement.
        const int32_t told = m_design.isFixed(a.component) ? b.component : a.component;
        return {.kind = kind,
                .line = m_design.component(told).line,
                .component = a.component,
                .other = b.component};
    }

    const placer::Design& m_design;
    const design::Layout& m_layout;
    const design::Scale& m_scale;
    int64_t m_reach; ///< distance that metal needs, fine units
    design::MetalGauge m_gauge;
    const Rules& m_rules;
    design::Issues& m_issues;
    size_t m_mostIssues;
    int64_t m_railPairs = 0;       ///< pairs of cells
    design::Issue m_closestToRail; ///< of those pairs
};

/// Tells of conflicts across rows why they are left, in a design that is coloured for rows that meet.
class RowReasons {
public:
    explicit RowReasons(const placer::Design& design) : m_design(design), m_kinds(design.rows) {}

    void tell(design::Issues& issues) const
    {
        const bool coloured = std::ranges::all_of(m_design.cells, [](const placer::Cell& cell) {
            return cell.solutions.empty() || design::isPaired(cell);
        });
        for (design::Issue& issue : issues) {
            if (coloured && issue.kind == design::Kind::ROW_CONFLICT) {
                issue.reason = reasonOf(issue);
            }
        }
    }

private:
    std::string reasonOf(const design::Issue& issue) const
    {
        const std::string first = faultOf(issue.component, issue.mask);
        const std::string second = faultOf(issue.other, issue.mask);
        if (first.empty() && second.empty()) {
            return "both rows have metal near the next rows on mask " + std::to_string(issue.mask);
        }
        return first + (first.empty() || second.empty() ? "" : "; ") + second;
    }

    /// What is wrong with a component that has metal of a mask near another row; nothing if it should have.
    std::string faultOf(int32_t component, int32_t mask) const
    {
        const placer::Component& comp = m_design.component(component);
        if (comp.cell < 0) {
            return comp.name + " is a macro, whose metal counts as all masks";
        }
        const int32_t wanted = m_kinds.isOther(comp.y) ? 2 : 1;
        return mask == wanted ? ""
                              : comp.cellName + " has metal near the next rows on other masks than " +
                                    std::to_string(wanted) + ", that of its row";
    }

    const placer::Design& m_design;
    design::RowKinds m_kinds;
};

/// The scale of a design; without rows that of the library.
design::Scale scaleOf(const placer::Design& design)
{
    const int64_t step = design.rows.empty() ? placer::LIBRARY_SITE : design.rows.front().step;
    if (step <= 0) {
        throw Fault("the first row's step is " + std::to_string(step) + ": it must be positive");
    }
    return {step};
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
    std::ranges::stable_sort(macros,
                             [](const placer::Macro* a, const placer::Macro* b) { return a->x < b->x; });
    for (const design::Band& band : layout.bands()) {
        checkBand(design, band, macrosNear(band, layout.tallest(), macros), issues);
    }
}

void checkPairs(const placer::Design& design, const design::Layout& layout, const design::Scale& scale,
                const Rules& rules, design::Issues& issues)
{
    PairCheck(design, layout, scale, rules, issues).run();
}

design::Issues judge(const design::ColoredPlacement& input, const Rules& rules)
{
    const design::Scale scale = scaleOf(input.design);
    design::Issues issues;
    design::Matching matching = design::matchColors(input.design, input.colors, issues);
    design::checkColors(input.design, matching, issues);
    design::addFixedColors(input.fixedColors, matching);
    checkPlaces(input.design, scale, issues);
    const design::Layout layout(input.design, matching, scale);
    checkMacros(input.design, layout, issues);
    checkPairs(input.design, layout, scale, rules, issues);
    RowReasons(input.design).tell(issues);
    checkFixed(input, issues);
    return issues;
}

std::vector<int64_t> countKinds(const design::Issues& issues)
{
    std::vector<int64_t> counts(std::size(design::KINDS));
    for (const design::Issue& issue : issues) {
        ++counts[static_cast<size_t>(issue.kind)];
    }
    return counts;
}

int exitStatusOf(const design::ColoredPlacement& input, const design::Issues& issues)
{
    if (!input.faults.empty()) {
        return 2;
    }
    return std::ranges::any_of(
        issues, [](const design::Issue& issue) { return severityOf(issue) != Severity::NOTE; });
}

} // namespace kit::verify
