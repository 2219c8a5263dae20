// SPDX-License-Identifier: BSD-3-Clause
#include <algorithm>
#include <string>
#include <vector>

#include "kit/base/finding.h"
#include "kit/base/text/text.h"
#include "kit/design/spacing.h"
#include "kit/engines/lint/checks.h"

namespace kit::lint {

namespace {

using design::Stretch;
using placer::Component;
using placer::Row;

/// Where the components stand, and how they lie.
class ComponentCheck {
public:
    explicit ComponentCheck(const Subject& subject)
        : m_design(subject.design), m_occupancy(subject.occupancy),
          m_reporter(subject.findings, subject.options.paths.place()), m_site(design::siteWidth(m_design))
    {
    }

    void run()
    {
        for (size_t i = 0; i < m_design.components.size(); ++i) {
            const Component& comp = m_design.components[i];
            checkOrientation(comp);
            if (m_occupancy.stretchOf[i] < 0) {
                reportNowhere(comp);
            } else {
                checkPlace(comp, stretch(m_occupancy.stretchOf[i]));
            }
        }
        for (const std::vector<int32_t>& comps : m_occupancy.components) {
            checkOverlaps(comps);
        }
    }

private:
    const Stretch& stretch(int32_t index) const { return m_occupancy.stretches[static_cast<size_t>(index)]; }

    int64_t rightOf(const Component& comp) const
    {
        return comp.x + design::widthInSites(m_design, comp) * m_site;
    }

    static std::string placeOf(const Component& comp)
    {
        return comp.name + " at (" + std::to_string(comp.x) + " " + std::to_string(comp.y) + ")";
    }

    void checkOrientation(const Component& comp)
    {
        if (comp.orient != "N" && comp.orient != "FS" && comp.orient != "FN") {
            m_reporter.warning("orientation", {comp.line, 0},
                               "the orientation of " + comp.name + " is " + comp.orient +
                                   ", and the placer takes it as N",
                               comp.orient == "S" ? "write FN: a cell in S is mirrored left to right"
                                                  : "write N, FS or, if it is mirrored left to right, FN");
        }
    }

    void reportNowhere(const Component& comp)
    {
        if (m_design.rows.empty() || (comp.cell < 0 && !m_design.cells.empty())) {
            return; // told already
        }
        m_reporter.error("off-row", {comp.line, 0},
                         placeOf(comp) + " is in no free part of a row, and the placer puts it into any",
                         "place it on a row, clear of macros");
    }

    void checkPlace(const Component& comp, const Stretch& in)
    {
        const Row& row = m_design.rows[static_cast<size_t>(in.row)];
        if (comp.y != row.y) {
            m_reporter.warning("off-row", {comp.line, 0},
                               placeOf(comp) + " is between rows, and the placer moves it to one of them",
                               "give it the y of a row: that of " + row.name + " is " +
                                   std::to_string(row.y));
        }
        if ((int64_t{comp.x} - in.x) % m_site != 0) {
            m_reporter.warning("off-site", {comp.line, 0},
                               placeOf(comp) + " is off the site grid, and the placer moves it to the right",
                               "give it an x of " + std::to_string(in.x) + " and a multiple of " +
                                   std::to_string(m_site));
        }
        checkEnds(comp, in, row);
    }

    /// A component that is wholly in its stretch overlaps no macro.
    void checkEnds(const Component& comp, const Stretch& in, const Row& row)
    {
        const int64_t right = in.x + in.numSites * m_site;
        if (comp.x >= in.x && rightOf(comp) <= right) {
            return;
        }
        const int64_t rowRight = row.x + row.numSites * m_site;
        const bool outside = comp.x < row.x || rightOf(comp) > rowRight;
        m_reporter.warning(
            outside ? "outside-row" : "over-macro", {comp.line, 0},
            placeOf(comp) + (outside ? " sticks out of row " + row.name : std::string(" overlaps a macro")) +
                ", and the placer moves it into the part of the row from " + std::to_string(in.x) + " to " +
                std::to_string(right),
            "move it there");
    }

    void checkOverlaps(const std::vector<int32_t>& comps)
    {
        const Component* farthest = nullptr;
        for (const int32_t index : comps) {
            const Component& comp = m_design.component(index);
            if (farthest != nullptr && comp.x < rightOf(*farthest) && rightOf(comp) > comp.x) {
                reportOverlap(comp, *farthest);
            }
            if (farthest == nullptr || rightOf(comp) > rightOf(*farthest)) {
                farthest = &comp;
            }
        }
    }

    void reportOverlap(const Component& comp, const Component& left)
    {
        m_reporter.warning("overlap", {comp.line, 0},
                           placeOf(comp) + " overlaps " + left.name + " (line " + std::to_string(left.line) +
                               "), which ends at " + std::to_string(rightOf(left)) +
                               ", and the placer moves them apart",
                           "legalize the placement first");
    }

    const placer::Design& m_design;
    const design::Occupancy& m_occupancy;
    Reporter m_reporter;
    int64_t m_site;
};

/// Whether the components have room in the rows.
class CapacityCheck {
public:
    explicit CapacityCheck(const Subject& subject)
        : m_design(subject.design), m_occupancy(subject.occupancy),
          m_spacing(subject.design.cells,
                    subject.options.minDist.unitsOn(design::siteLength(subject.design))),
          m_tableFits(tableFits(subject.design.cells)),
          m_reporter(subject.findings, subject.options.paths.place())
    {
    }

    void run()
    {
        int64_t sites = 0;
        for (size_t i = 0; i < m_occupancy.stretches.size(); ++i) {
            checkStretch(m_occupancy.stretches[i], m_occupancy.components[i]);
            sites += m_occupancy.stretches[i].numSites;
        }
        int64_t used = 0;
        for (const Component& comp : m_design.components) {
            used += design::widthInSites(m_design, comp);
        }
        if (used > sites && sites > 0) {
            m_reporter.error("overfull-design", {},
                             "the components take " + std::to_string(used) + " sites of the " +
                                 std::to_string(sites) + " in all rows, and no placement is legal",
                             "add rows, or remove cells");
        }
    }

private:
    void checkStretch(const Stretch& stretch, const std::vector<int32_t>& comps)
    {
        int64_t used = 0;
        for (const int32_t comp : comps) {
            used += design::widthInSites(m_design, m_design.component(comp));
        }
        const int64_t gaps = std::max<int64_t>(static_cast<int64_t>(comps.size()) - 1, 0);
        if (used > stretch.numSites) {
            report("overfull-row", stretch, used, "which fits only if others leave the row",
                   "move some of them to other rows");
        } else if (m_tableFits &&
                   used + gaps * m_spacing.largest() > stretch.numSites) { // or any spacings fit
            const int64_t coloured = used + leastSpacing(comps);
            if (coloured > stretch.numSites) {
                report("overfull-colors", stretch, coloured,
                       "spacings included, whatever the colour solutions, in the order in which they stand",
                       "leave more room in the row, or add solutions to its cells");
            }
        }
    }

    void report(const char* code, const Stretch& stretch, int64_t used, const char* how, const char* advice)
    {
        const placer::Row& row = m_design.rows[static_cast<size_t>(stretch.row)];
        const int64_t perCent = (100 * used + stretch.numSites - 1) / stretch.numSites;
        m_reporter.warning(code, {row.line, 0},
                           "the components in row " + row.name + " from x " + std::to_string(stretch.x) +
                               " on take " + std::to_string(used) + " sites of " +
                               std::to_string(stretch.numSites) + " (" + std::to_string(perCent) + " %), " +
                               how,
                           advice);
    }

    bool isSpaced(const Component& comp) const
    {
        return comp.cell >= 0 && !m_design.cellOf(comp)->solutions.empty();
    }

    /// Sites that the components need between them in their order, with the best choice of solutions.
    int64_t leastSpacing(const std::vector<int32_t>& comps)
    {
        const Component* left = nullptr;
        std::vector<int64_t> least; // [solution of left] sites needed up to it
        for (const int32_t index : comps) {
            const Component& comp = m_design.component(index);
            if (!isSpaced(comp)) {
                continue;
            }
            const size_t solutions = m_design.cellOf(comp)->solutions.size();
            least = left == nullptr ? std::vector<int64_t>(solutions) : step(least, *left, comp, solutions);
            left = &comp;
        }
        return least.empty() ? 0 : *std::ranges::min_element(least);
    }

    std::vector<int64_t> step(const std::vector<int64_t>& before, const Component& left,
                              const Component& right, size_t solutions)
    {
        const std::vector<int32_t>& sites = m_spacing.between(left.cell, right.cell);
        std::vector<int64_t> after(solutions);
        for (size_t t = 0; t < solutions; ++t) {
            after[t] = before[0] + sites[t];
            for (size_t s = 1; s < before.size(); ++s) {
                after[t] = std::min(after[t], before[s] + sites[s * solutions + t]);
            }
        }
        return after;
    }

    const placer::Design& m_design;
    const design::Occupancy& m_occupancy;
    design::Spacing m_spacing;
    bool m_tableFits;
    Reporter m_reporter;
};

void checkFillers(const Subject& subject)
{
    const std::vector<Component>& fillers = subject.design.fillers;
    if (fillers.empty()) {
        return;
    }
    Reporter reporter(subject.findings, subject.options.paths.place());
    reporter.note("fillers", {fillers[0].line, 0},
                  "the placer leaves out FILLER_1 and what follows it, " +
                      counted(static_cast<int64_t>(fillers.size()), "record") + " in all",
                  "that is no problem if they are fillers");
    for (const Component& comp : fillers) {
        if (!comp.name.starts_with("FILLER")) {
            reporter.warning("after-filler", {comp.line, 0},
                             comp.name + " stands after FILLER_1, and the placer leaves it out",
                             "move its record before FILLER_1");
        }
    }
}

} // namespace

void checkComponents(const Subject& subject)
{
    ComponentCheck(subject).run();
    checkFillers(subject);
}

void checkCapacity(const Subject& subject)
{
    CapacityCheck(subject).run();
}

} // namespace kit::lint
