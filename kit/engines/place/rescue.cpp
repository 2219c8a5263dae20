// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/place/rescue.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

#include "app/parameters.h"
#include "db/design.h"
#include "kit/engines/place/bands.h"
#include "kit/engines/place/gaps.h"
#include "kit/engines/place/planner.h"

namespace kit::place {

namespace {

/// Cells and pairs, helped or not, for which all is tried anew if any is left.
constexpr int64_t MOST_ANEW = 100;

class Rescuer {
public:
    /// @param ownRowFirst  whether nothing leaves its row that can stay there
    Rescuer(Design& design, const TrueDesign& truth, const std::vector<int32_t>& stray,
            const std::vector<Point>& start, bool ownRowFirst)
        : m_design(design), m_truth(truth), m_ownRowFirst(ownRowFirst), m_gaps(truth.design, MINDPLDIST),
          m_planner(design, truth, start, m_gaps), m_bands(bandsOf(design, truth, m_gaps))
    {
        for (const Component* comp : design.components) {
            m_lies.push_back(lieOf(*comp));
            m_before.push_back({comp->id, comp->x, m_lies.back()});
            m_yBefore.push_back(comp->y);
        }
        settle(stray);
    }

    /// Looks for places. @return what was done
    Rescue run()
    {
        for (Band& band : m_bands) {
            if (notePairs(band)) {
                mendPairs(band);
            }
        }
        for (Rescued& cell : m_result.cells) {
            cell.helped = help(cell.component);
        }
        for (Band* const band : m_close) {
            removeFromPairs(*band);
        }
        for (Rescued& cell : m_result.cells) { // a cell that left its row may have made room
            cell.helped = cell.helped || (m_removed && help(cell.component));
        }
        count();
        return m_result;
    }

    /// Gives the placer's segments what stands in them now.
    void enter()
    {
        for (const Band& band : m_bands) {
            if (band.changed) {
                enterTenants(band, m_gaps, m_design);
            }
        }
    }

    /// Puts all where run() has put it.
    void redo()
    {
        for (const Band& band : m_bands) {
            for (const Tenant& tenant : band.tenants) {
                put(tenant, band.y);
            }
        }
    }

    /// Puts all back where it was.
    void undo()
    {
        for (size_t id = 0; id < m_before.size(); ++id) {
            put(m_before[id], m_yBefore[id]);
        }
    }

private:
    Lie lieOf(const Component& comp) const
    {
        const auto id = static_cast<size_t>(comp.id);
        const placer::Component& inFile = m_truth.design.components[id];
        return {.cell = inFile.cell,
                .solution = comp.solution,
                .mirrored = design::turnOf(inFile.orient).mirrorX,
                .upsideDown = m_truth.upsideDown[id]};
    }

    Component& componentOf(const Tenant& tenant)
    {
        return *m_design.components[static_cast<size_t>(tenant.component)];
    }

    Band* bandAt(int64_t y)
    {
        const auto band = std::ranges::lower_bound(m_bands, y, {}, &Band::y);
        return band != m_bands.end() && band->y == y ? &*band : nullptr;
    }

    /// Makes tenants of the components that have a place; the others are without.
    void settle(const std::vector<int32_t>& stray)
    {
        std::vector<bool> isStray(m_design.components.size(), false);
        for (const int32_t id : stray) {
            isStray[static_cast<size_t>(id)] = true;
        }
        for (const Component* comp : m_design.components) {
            const auto id = static_cast<size_t>(comp->id);
            Band* const band = bandAt(comp->y);
            const bool hasColors = comp->solution >= 0 &&
                                   static_cast<size_t>(comp->solution) < m_design.cellOf(*comp).colors.size();
            if (!isStray[id] && hasColors && band != nullptr &&
                band->runOf(comp->x, m_gaps.widthOf(m_lies[id].cell))) {
                band->tenants.push_back({comp->id, comp->x, m_lies[id]});
                continue;
            }
            if (band != nullptr) {
                band->changed = true;
            }
            m_result.cells.push_back({.component = comp->id, .fromX = comp->x, .fromY = comp->y});
        }
        for (Band& band : m_bands) {
            std::ranges::stable_sort(band.tenants, {}, &Tenant::x);
        }
    }

    /// Notes what is too close in a band. @return whether anything is
    bool notePairs(Band& band)
    {
        const std::vector<ClosePair> pairs = closePairs(band, m_gaps);
        for (const ClosePair& pair : pairs) {
            m_pairs.emplace_back(pair.first, pair.second);
        }
        if (!pairs.empty()) {
            m_close.push_back(&band);
        }
        return !pairs.empty();
    }

    void mendPairs(Band& band)
    {
        forEachPair(band, [&](size_t left, size_t right) {
            const std::optional<Plan> plan = m_planner.planPair(band, left, right);
            if (plan) {
                apply(*plan);
            }
            return plan.has_value();
        });
    }

    /// Shows each pair of a band that is too close once, though the band changes meanwhile.
    ///
    /// @param change  gets the ranks of both. @return whether it has changed the band
    template <typename Change>
    void forEachPair(const Band& band, Change change)
    {
        std::set<std::pair<int32_t, int32_t>> seen; // components
        bool again = true;
        while (again) {
            again = false;
            for (const ClosePair& pair : closePairs(band, m_gaps)) {
                if (seen.emplace(pair.first, pair.second).second && change(pair.left, pair.right)) {
                    again = true;
                    break;
                }
            }
        }
    }

    void apply(const Plan& plan)
    {
        std::vector<Tenant>& tenants = plan.band->tenants;
        const auto begin = tenants.begin();
        const auto at = tenants.erase(begin + static_cast<std::ptrdiff_t>(plan.first),
                                      begin + static_cast<std::ptrdiff_t>(plan.last));
        tenants.insert(at, plan.after.begin(), plan.after.end());
        plan.band->changed = true;
        for (const Tenant& tenant : plan.after) {
            put(tenant, plan.band->y);
            m_lies[static_cast<size_t>(tenant.component)] = tenant.lie;
        }
    }

    void put(const Tenant& tenant, int64_t y)
    {
        Component& comp = componentOf(tenant);
        comp.x = static_cast<int32_t>(tenant.x);
        comp.y = static_cast<int32_t>(y);
        comp.solution = tenant.lie.solution;
    }

    /// Finds a place for a component without one. @return whether there is one
    bool help(int32_t component)
    {
        const Component& comp = *m_design.components[static_cast<size_t>(component)];
        const Tenant tenant{component, comp.x, m_lies[static_cast<size_t>(component)]};
        Band* const own = bandAt(comp.y);
        std::optional<Plan> plan;
        if (own != nullptr) {
            plan = m_planner.planFor(*own, tenant, /*anyOrder=*/true);
        }
        if (!plan || (plan->moves && !m_ownRowFirst)) {
            plan = m_planner.planElsewhere(m_bands, tenant, own, std::move(plan));
        }
        if (plan) {
            apply(*plan);
        }
        return plan.has_value();
    }

    /// Moves one cell of each pair that is still too close to another row.
    void removeFromPairs(Band& band)
    {
        forEachPair(band, [&](size_t left, size_t right) {
            const bool leftFirst =
                m_gaps.widthOf(band.tenants[left].lie.cell) <= m_gaps.widthOf(band.tenants[right].lie.cell);
            if (!removeOne(band, leftFirst ? left : right) &&
                (left == right || !removeOne(band, leftFirst ? right : left))) {
                return false;
            }
            band.refused.clear();
            m_removed = true;
            mendPairs(band);
            return true;
        });
    }

    bool removeOne(Band& band, size_t rank)
    {
        const Tenant tenant = band.tenants[rank];
        const auto at = band.tenants.begin() + static_cast<std::ptrdiff_t>(rank);
        band.tenants.erase(at);
        if (const std::optional<Plan> plan = m_planner.planElsewhere(m_bands, tenant, &band, {})) {
            apply(*plan);
            band.changed = true;
            return true;
        }
        band.tenants.insert(band.tenants.begin() + static_cast<std::ptrdiff_t>(rank), tenant);
        return false;
    }

    void count()
    {
        std::vector<bool> isStray(m_design.components.size(), false);
        for (const Rescued& cell : m_result.cells) {
            isStray[static_cast<size_t>(cell.component)] = true;
        }
        for (const Component* comp : m_design.components) {
            const auto id = static_cast<size_t>(comp->id);
            const Lie& before = m_before[id].lie;
            if (m_lies[id].mirrored != before.mirrored) {
                m_result.mirrored.push_back(comp->id);
            }
            if (!isStray[id]) {
                m_result.movedNeighbours += comp->x != m_before[id].x || comp->y != m_yBefore[id] ? 1 : 0;
                m_result.recolored += m_lies[id].solution != before.solution ? 1 : 0;
            }
        }
        countMended();
        m_result.searchesGivenUp = m_planner.searchesGivenUp();
    }

    void countMended()
    {
        std::set<std::pair<int32_t, int32_t>> left;
        for (const Band* const band : m_close) {
            for (const ClosePair& pair : closePairs(*band, m_gaps)) {
                left.emplace(std::minmax(pair.first, pair.second));
            }
        }
        m_result.pairs = static_cast<int32_t>(m_pairs.size());
        for (const auto& [a, b] : m_pairs) {
            m_result.mendedPairs += left.contains(std::minmax(a, b)) ? 0 : 1;
        }
    }

    Design& m_design;
    const TrueDesign& m_truth;
    bool m_ownRowFirst;
    Gaps m_gaps;
    Planner m_planner;
    std::vector<Band> m_bands;
    std::vector<Lie> m_lies;                          ///< [component]
    std::vector<Tenant> m_before;                     ///< [component] as the placer left it
    std::vector<int32_t> m_yBefore;                   ///< [component]
    std::vector<std::pair<int32_t, int32_t>> m_pairs; ///< components that the placer left too close
    std::vector<Band*> m_close;                       ///< bands with such pairs
    Rescue m_result;
    bool m_removed = false; ///< whether a cell of a pair went to another row
};

/// Cells and pairs that were not helped.
int64_t helplessIn(const Rescue& done)
{
    return done.pairs - done.mendedPairs + std::ranges::count(done.cells, false, &Rescued::helped);
}

/// A cell that goes to another row because it is cheaper there may be in the way of one that has to. So if
/// any is left over, all is done anew with cells in their rows, and the better result is taken.
Rescue rescueTwice(Design& design, const TrueDesign& truth, const std::vector<int32_t>& stray,
                   const std::vector<Point>& start)
{
    Rescuer first(design, truth, stray, start, false);
    Rescue done = first.run();
    const int64_t all = done.pairs + static_cast<int64_t>(done.cells.size());
    if (helplessIn(done) > 0 && all <= MOST_ANEW) {
        first.undo();
        Rescuer second(design, truth, stray, start, true);
        if (Rescue again = second.run(); helplessIn(again) < helplessIn(done)) {
            second.enter();
            return again;
        }
        second.undo();
        first.redo();
    }
    first.enter();
    return done;
}

/// Whether there are sites, and a cell of each component.
bool isKnown(const TrueDesign& truth, const Design& design)
{
    const placer::Design& files = truth.design;
    return !files.rows.empty() && files.rows.front().step > 0 &&
           files.components.size() == design.components.size() &&
           std::ranges::all_of(files.components, [](const auto& comp) { return comp.cell >= 0; });
}

} // namespace

Rescue rescue(Design& design, const TrueDesign& truth, const std::vector<int32_t>& stray,
              const std::vector<Point>& start)
{
    if (isKnown(truth, design)) {
        return rescueTwice(design, truth, stray, start);
    }
    Rescue nothing;
    for (const int32_t id : stray) {
        const Component& comp = *design.components[static_cast<size_t>(id)];
        nothing.cells.push_back({.component = id, .fromX = comp.x, .fromY = comp.y});
    }
    return nothing;
}

} // namespace kit::place
