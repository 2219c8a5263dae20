// SPDX-License-Identifier: BSD-3-Clause
#include <string>
#include <vector>

#include "kit/base/finding.h"
#include "kit/base/text/text.h"
#include "kit/design/occupancy.h"
#include "kit/engines/lint/checks.h"

namespace kit::lint {

namespace {

using design::Stretch;
using placer::Component;
using placer::Row;

class ComponentCheck {
public:
    explicit ComponentCheck(const Subject& subject)
        : m_design(subject.design), m_occupancy(design::occupancyOf(subject.design)),
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

    const Component& component(int32_t index) const
    {
        return m_design.components[static_cast<size_t>(index)];
    }

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
            const Component& comp = component(index);
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
    design::Occupancy m_occupancy;
    Reporter m_reporter;
    int64_t m_site;
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

} // namespace kit::lint
