// SPDX-License-Identifier: BSD-3-Clause
#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "kit/base/finding.h"
#include "kit/design/occupancy.h"
#include "kit/design/spacing.h"
#include "kit/engines/lint/checks.h"

namespace kit::lint {

namespace {

using design::Spacing;
using design::Stretch;
using placer::Component;

class CapacityCheck {
public:
    explicit CapacityCheck(const Subject& subject)
        : m_design(subject.design), m_occupancy(design::occupancyOf(subject.design)),
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
        const int64_t used = sitesOf(m_design.components);
        if (used > sites && sites > 0) {
            m_reporter.error("overfull-design", {},
                             "the components take " + std::to_string(used) + " sites of the " +
                                 std::to_string(sites) + " in all rows, and no placement is legal",
                             "add rows, or remove cells");
        }
    }

private:
    /// Sites that components take without spacings.
    int64_t sitesOf(const std::vector<Component>& comps) const
    {
        int64_t sites = 0;
        for (const Component& comp : comps) {
            sites += design::widthInSites(m_design, comp);
        }
        return sites;
    }

    void checkStretch(const Stretch& stretch, const std::vector<int32_t>& comps)
    {
        int64_t used = 0;
        for (const int32_t comp : comps) {
            used += design::widthInSites(m_design, component(comp));
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

    const Component& component(int32_t index) const
    {
        return m_design.components[static_cast<size_t>(index)];
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
        return comp.cell >= 0 && !m_design.cells[static_cast<size_t>(comp.cell)].solutions.empty();
    }

    /// Sites that the components need between them in their order, with the best choice of solutions.
    int64_t leastSpacing(const std::vector<int32_t>& comps)
    {
        const Component* left = nullptr;
        std::vector<int64_t> least; // [solution of left] sites needed up to it
        for (const int32_t index : comps) {
            const Component& comp = component(index);
            if (!isSpaced(comp)) {
                continue;
            }
            const size_t solutions = m_design.cells[static_cast<size_t>(comp.cell)].solutions.size();
            least = left == nullptr ? std::vector<int64_t>(solutions) : step(least, *left, comp, solutions);
            left = &comp;
        }
        return least.empty() ? 0 : *std::min_element(least.begin(), least.end());
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
    design::Occupancy m_occupancy;
    Spacing m_spacing;
    bool m_tableFits;
    Reporter m_reporter;
};

} // namespace

void checkCapacity(const Subject& subject)
{
    CapacityCheck(subject).run();
}

} // namespace kit::lint
