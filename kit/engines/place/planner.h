// SPDX-License-Identifier: BSD-3-Clause
// Where cells of a row can go.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <vector>

#include "kit/engines/place/arrange.h"
#include "kit/engines/place/bands.h"
#include "kit/engines/place/gaps.h"
#include "kit/engines/place/state.h"
#include "kit/engines/place/trueDesign.h"

class Design;
struct Component;

namespace kit::place {

/// Tenants of a band in new places.
struct Plan {
    Band* band = nullptr;
    size_t first = 0;            ///< rank of the first tenant that is replaced
    size_t last = 0;             ///< behind the last
    std::vector<Tenant> after{}; ///< those in their place, from the left
    bool moves = false;          ///< a tenant to another place
    int64_t cost = 0;            ///< what changes, and what that adds to the wirelength
};

/// Finds arrangements of cells. It looks at bands, and changes none but for what it notes of them: whether a
/// search was in vain.
class Planner {
public:
    /// All must outlive it.
    ///
    /// @param start  [component] positions before the placement
    Planner(Design& design, const TrueDesign& truth, const std::vector<Point>& start, Gaps& gaps)
        : m_design(design), m_truth(truth), m_start(start), m_gaps(gaps)
    {
    }

    /// An arrangement in which two tenants are not too close, by their ranks, or one that is too close to an
    /// obstacle: with as few of the others around as it takes. Where a pair of a band was not helped, no
    /// other orders are tried for the next ones, till a cell leaves the band.
    std::optional<Plan> planPair(Band& band, size_t left, size_t right);

    /// An arrangement with one tenant more. A band that has refused a cell refuses others of its kind, till
    /// one leaves it.
    ///
    /// @param anyOrder  whether the order of those that stand there may change
    std::optional<Plan> planFor(Band& band, const Tenant& more, bool anyOrder);

    /// Looks for the row where a component costs least, among the nearest to where it began.
    ///
    /// @param own   its own row, which is left out; or nullptr
    /// @param best  in its own row, if it can stay there
    std::optional<Plan> planElsewhere(std::vector<Band>& bands, Tenant tenant, const Band* own,
                                      std::optional<Plan> best);

    /// Searches that were ended by a bound, and found nothing.
    int32_t searchesGivenUp() const { return m_searchesGivenUp; }

private:
    std::optional<Plan> planAround(Band& band, size_t first, size_t last, const Tenant* more, bool anyOrder);
    std::optional<Plan> planInAnyOrder(Band& band, size_t first, size_t last, const Tenant* more);
    std::optional<Plan> arrangeIn(Band& band, size_t from, size_t to, const Tenant* more, int64_t mostLabels);
    bool addChanges(Plan& plan) const;
    bool hasRunFor(const Band& band, const Tenant& tenant) const;
    int64_t growthBy(const Plan& plan);
    int64_t lengthOf(const std::set<int32_t>& nets);
    int64_t stepOf() const { return m_truth.design.rows.front().step; }
    Component& componentOf(const Tenant& tenant);

    /// Whether so much was tried that from now on few cells at a time may move.
    bool isExhausted() const;

    Design& m_design;
    const TrueDesign& m_truth;
    const std::vector<Point>& m_start;
    Gaps& m_gaps;
    int64_t m_cells = 0;   ///< of all arrangements that were asked for
    int64_t m_labels = 0;  ///< partial arrangements so far
    bool m_gaveUp = false; ///< whether the last search was
    int32_t m_searchesGivenUp = 0;
};

} // namespace kit::place
