// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/place/fixedSolutions.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <map>
#include <optional>
#include <tuple>

#include "kit/design/spacing.h"
#include "kit/design/standing.h"
#include "kit/design/stretches.h"

namespace kit::place {

namespace {

using design::Standing;

/// What a choice costs: a pair that is too close weighs more than all sites that pairs lack, these more than
/// all stitches and moves, and these more than all cells that get another solution.
constexpr int64_t PER_PAIR = 10'000'000'000'000;
constexpr int64_t PER_SITE = 10'000'000'000;
constexpr int64_t PER_STITCH = 10'000;
constexpr int64_t PER_STEP = 2 * PER_STITCH;
constexpr int64_t PER_CHANGE = 1;
constexpr int64_t OVERLAP = 100'000 * PER_PAIR; // more than a row has pairs

/// Cells on each side of a conflict that are asked to help.
constexpr size_t MOST_HELPERS = 8;

/// Sites that a cell may be moved by.
constexpr int32_t FARTHEST_STEP = 3;

} // namespace

/// Goes through the rows.
class SolutionChooser::Rows {
public:
    Rows(const placer::Design& placed, int32_t minDist)
        : m_placed(placed), m_step(design::siteWidth(placed)), m_scale{m_step},
          m_site(design::Scale::ofDbu(m_step)), m_reach(m_scale.ofLibrary(minDist)), m_gauge(m_reach)
    {
        addVariants();
        m_spacing.emplace(m_variants, minDist);
    }

    ChosenSolutions run(const std::vector<placer::ColorRecord>& colors)
    {
        m_records.clear();
        for (const placer::ColorRecord& record : colors) {
            m_records.push_back(&record);
        }
        m_occupancy = design::occupancyOf(m_placed);
        m_chosen = {};
        m_chosen.fixed.assign(m_placed.fixed.size(), -1);
        const design::Layout layout(m_placed, m_records, m_scale);
        for (const design::Band& band : layout.bands()) {
            const bool anyFixed = std::ranges::any_of(
                band.cells, [this](const Standing& cell) { return m_placed.isFixed(cell.component); });
            if (anyFixed) {
                takeRow(band);
                choose();
            }
        }
        return std::move(m_chosen);
    }

private:
    /// What a cell gets.
    struct Choice {
        int32_t solution = -1; ///< -1 for none
        int32_t steps = 0;     ///< sites to the right

        bool operator==(const Choice&) const = default;
    };

    /// A cell of a row, with what it may get.
    struct RowCell {
        Standing standing;
        int32_t variant = 0; ///< index among the cells as they lie
        bool isFixed = false;
        int32_t roomLeft = 0;           ///< sites that its stretch has on its left
        int32_t roomRight = 0;          ///< the same on its right
        int64_t gap = 0;                ///< to the cell before, sites, rounded down
        std::vector<Standing> blocks{}; ///< blocks near it
        Choice current{};
        std::vector<Choice> offer{};
        std::vector<int64_t> costs{}; ///< [of the offer] without those of pairs of cells
    };

    /// A way to give all cells of a row something.
    struct Way {
        int64_t cost = 0;
        std::vector<Choice> choices; ///< [cell]
    };

    /// Turns every cell as components may have it: a component keeps its left and right, and may come into a
    /// row that is upside down.
    void addVariants()
    {
        const size_t count = m_placed.components.size() + m_placed.fixed.size();
        for (size_t i = 0; i < count; ++i) {
            const placer::Component& comp = m_placed.component(static_cast<int32_t>(i));
            const bool mirrored = design::turnOf(comp.orient).mirrorX;
            const auto next = static_cast<int32_t>(m_variants.size());
            if (comp.cell < 0 || !m_variantOf.try_emplace({comp.cell, mirrored, false}, next).second) {
                continue;
            }
            m_variantOf[{comp.cell, mirrored, true}] = next + 1;
            for (const bool upsideDown : {false, true}) {
                m_variants.push_back(design::turned(
                    *m_placed.cellOf(comp), {.known = true, .mirrorX = mirrored, .mirrorY = upsideDown}));
            }
        }
    }

    /// Gathers the cells of a row, and the blocks near them.
    void takeRow(const design::Band& band)
    {
        m_row.clear();
        for (const Standing& standing : band.cells) {
            const placer::Component& comp = m_placed.component(standing.component);
            if (comp.cell < 0) {
                continue;
            }
            const design::Turn turn = design::turnOf(comp.orient);
            RowCell cell{.standing = standing,
                         .variant = m_variantOf.at({comp.cell, turn.mirrorX, turn.mirrorY}),
                         .isFixed = m_placed.isFixed(standing.component)};
            if (!cell.isFixed) {
                const int32_t solution = m_records[static_cast<size_t>(standing.component)]->solution;
                const bool known = solution >= 0 && static_cast<size_t>(solution) < solutionsOf(cell).size();
                cell.current.solution = known ? solution : -1;
                findRoom(cell);
            }
            if (!m_row.empty()) {
                const int64_t gap = standing.outline().xl - m_row.back().standing.outline().xh;
                cell.gap = gap / m_site - (gap % m_site < 0 ? 1 : 0);
            }
            m_row.push_back(std::move(cell));
        }
        for (const Standing& block : band.cells) {
            if (m_placed.component(block.component).cell < 0) {
                addBlock(block);
            }
        }
    }

    void findRoom(RowCell& cell) const
    {
        const int32_t index = m_occupancy.stretchOf[static_cast<size_t>(cell.standing.component)];
        if (index < 0) {
            return;
        }
        const design::Stretch& stretch = m_occupancy.stretches[static_cast<size_t>(index)];
        const placer::Component& comp = m_placed.component(cell.standing.component);
        const int32_t site = (comp.x - stretch.x) / m_step;
        const int32_t end = site + design::widthInSites(m_placed, comp);
        if (m_placed.rows[static_cast<size_t>(stretch.row)].y == comp.y && comp.x >= stretch.x) {
            cell.roomLeft = site;
            cell.roomRight = std::max(stretch.numSites - end, 0);
        }
    }

    /// Adds a block to the components near it: fixed cells are not judged against blocks.
    void addBlock(const Standing& block)
    {
        const geometry::Rect extent = block.extent();
        const int64_t reach = m_reach + FARTHEST_STEP * m_site;
        for (RowCell& cell : m_row) {
            const geometry::Rect near = cell.standing.extent();
            if (!cell.isFixed && geometry::gapOf(near.xl, near.xh, extent.xl, extent.xh) < reach) {
                cell.blocks.push_back(block);
            }
        }
    }

    /// Chooses for the fixed cells alone; where that leaves conflicts, their neighbours help with their
    /// solutions, and then with their places as well.
    void choose()
    {
        for (RowCell& cell : m_row) {
            setOffer(cell, cell.isFixed, /*maxSteps=*/0, cell.current);
        }
        Way way = bestWay();
        for (const int32_t maxSteps : {0, FARTHEST_STEP}) {
            const std::vector<bool> helps = helpers(way);
            if (std::ranges::find(helps, true) == helps.end()) {
                break;
            }
            for (size_t i = 0; i < m_row.size(); ++i) {
                setOffer(m_row[i], helps[i], helps[i] ? maxSteps : 0, way.choices[i]);
            }
            const Way other = bestWay();
            way = other.cost / PER_PAIR < way.cost / PER_PAIR ? other : way;
        }
        take(way);
    }

    void take(const Way& way)
    {
        for (size_t i = 0; i < m_row.size(); ++i) {
            const RowCell& cell = m_row[i];
            if (cell.isFixed) {
                const auto fixed = static_cast<size_t>(cell.standing.component) - m_placed.components.size();
                m_chosen.fixed[fixed] = way.choices[i].solution;
            } else if (way.choices[i] != cell.current) {
                m_chosen.changed.push_back(
                    {cell.standing.component, way.choices[i].solution, way.choices[i].steps});
            }
        }
    }

    /// Whether a cell of the row and the one before are too close, and one of them is fixed.
    bool isTooClose(const Way& way, size_t i)
    {
        return i > 0 && (m_row[i].isFixed || m_row[i - 1].isFixed) &&
               costBetween(m_row[i], spacingsAt(i), way.choices[i - 1], way.choices[i]) > 0;
    }

    /// Offers a cell what it may get.
    ///
    /// @param open      all its solutions, and places
    /// @param maxSteps  sites that it may be moved by, if it is not fixed
    /// @param kept      what it gets otherwise
    void setOffer(RowCell& cell, bool open, int32_t maxSteps, const Choice& kept)
    {
        cell.offer.assign(1, kept);
        if (open && (cell.isFixed || cell.current.solution >= 0)) {
            const int32_t left = cell.isFixed ? 0 : std::min(maxSteps, cell.roomLeft);
            const int32_t right = cell.isFixed ? 0 : std::min(maxSteps, cell.roomRight);
            const auto solutions = static_cast<int32_t>(solutionsOf(cell).size());
            for (int32_t steps = -left; steps <= right; ++steps) {
                for (int32_t solution = 0; solution < solutions; ++solution) {
                    if (const Choice choice{solution, steps}; choice != kept) {
                        cell.offer.push_back(choice);
                    }
                }
            }
            if (kept.solution < 0 && solutions > 0) {
                cell.offer.erase(cell.offer.begin());
            }
        }
        cell.costs.clear();
        for (const Choice& choice : cell.offer) {
            cell.costs.push_back(ownCost(cell, choice));
        }
    }

    const std::vector<placer::Solution>& solutionsOf(const RowCell& cell) const
    {
        return m_variants[static_cast<size_t>(cell.variant)].solutions;
    }

    int64_t ownCost(const RowCell& cell, const Choice& choice)
    {
        if (choice.solution < 0) {
            return 0;
        }
        int64_t cost = solutionsOf(cell)[static_cast<size_t>(choice.solution)].stitches * PER_STITCH +
                       std::abs(choice.steps) * PER_STEP;
        cost += !cell.isFixed && choice.solution != cell.current.solution ? PER_CHANGE : 0;
        return cost + blockConflicts(cell, choice) * PER_PAIR;
    }

    int64_t blockConflicts(const RowCell& cell, const Choice& choice)
    {
        if (cell.blocks.empty() || choice.solution < 0) {
            return 0;
        }
        Standing standing = cell.standing;
        standing.masks = solutionsOf(cell)[static_cast<size_t>(choice.solution)].masks;
        standing.x += choice.steps * m_site;
        return std::ranges::count_if(cell.blocks, [&](const Standing& block) {
            return m_gauge.measure(standing, block).metal.shapePairs > 0;
        });
    }

    /// What a pair costs: the cell before and a cell.
    ///
    /// @param spacings  of the two, as Spacing::between() has them; nullptr if they are far apart
    int64_t costBetween(const RowCell& cell, const std::vector<int32_t>* spacings, const Choice& before,
                        const Choice& own) const
    {
        const int64_t gap = cell.gap + own.steps - before.steps;
        if (gap < 0 && gap < cell.gap) {
            return OVERLAP;
        }
        if (spacings == nullptr || before.solution < 0 || own.solution < 0) {
            return 0;
        }
        const auto at = static_cast<size_t>(before.solution) * solutionsOf(cell).size() +
                        static_cast<size_t>(own.solution);
        const int64_t lack = (*spacings)[at] - gap;
        return lack > 0 ? PER_PAIR + std::min<int64_t>(lack, 100) * PER_SITE : 0;
    }

    /// The spacings of a cell of the row and the one before, nullptr if they are so far apart that they do
    /// not matter.
    const std::vector<int32_t>* spacingsAt(size_t i)
    {
        const bool far = m_row[i].gap >= m_spacing->largest() + 2 * FARTHEST_STEP;
        return far ? nullptr : &m_spacing->between(m_row[i - 1].variant, m_row[i].variant);
    }

    /// The cheapest way along the row: for each choice of the cell at hand, the best of those before it.
    Way bestWay()
    {
        std::vector<std::vector<int64_t>> best; // [cell][of its offer]
        std::vector<std::vector<size_t>> from;  // [cell][of its offer] that of the cell before
        for (size_t i = 0; i < m_row.size(); ++i) {
            const RowCell& cell = m_row[i];
            best.push_back(cell.costs);
            from.emplace_back(cell.costs.size());
            const std::vector<int32_t>* const spacings = i > 0 ? spacingsAt(i) : nullptr;
            for (size_t s = 0; i > 0 && s < cell.offer.size(); ++s) {
                int64_t least = std::numeric_limits<int64_t>::max();
                for (size_t t = 0; t < best[i - 1].size(); ++t) {
                    const int64_t cost =
                        best[i - 1][t] + costBetween(cell, spacings, m_row[i - 1].offer[t], cell.offer[s]);
                    from[i][s] = cost < least ? t : from[i][s];
                    least = std::min(least, cost);
                }
                best[i][s] += least;
            }
        }
        auto at = static_cast<size_t>(std::ranges::min_element(best.back()) - best.back().begin());
        Way way{.cost = best.back()[at], .choices = std::vector<Choice>(m_row.size())};
        for (size_t i = m_row.size(); i-- > 0;) {
            way.choices[i] = m_row[i].offer[at];
            at = from[i][at];
        }
        return way;
    }

    /// [cell] whether it is near a conflict of a fixed cell or a block.
    std::vector<bool> helpers(const Way& way)
    {
        std::vector<bool> helps(m_row.size());
        for (size_t i = 0; i < m_row.size(); ++i) {
            if (isTooClose(way, i) || blockConflicts(m_row[i], way.choices[i]) > 0) {
                const size_t begin = i - std::min(i, MOST_HELPERS);
                const size_t end = std::min(i + MOST_HELPERS, m_row.size());
                std::fill(helps.begin() + static_cast<std::ptrdiff_t>(begin),
                          helps.begin() + static_cast<std::ptrdiff_t>(end), true);
            }
        }
        return helps;
    }

    const placer::Design& m_placed;
    std::vector<const placer::ColorRecord*> m_records; ///< [component]
    int32_t m_step;                                    ///< site width, DBU
    design::Scale m_scale;
    int64_t m_site;  ///< site width, fine units
    int64_t m_reach; ///< distance that metal needs, fine units
    design::MetalGauge m_gauge;
    design::Occupancy m_occupancy;
    std::vector<placer::Cell> m_variants;                           ///< cells as they lie
    std::map<std::tuple<int32_t, bool, bool>, int32_t> m_variantOf; ///< by cell, mirrorX and mirrorY
    std::optional<design::Spacing> m_spacing;                       ///< of the variants
    std::vector<RowCell> m_row;                                     ///< from the left
    ChosenSolutions m_chosen;
};

SolutionChooser::SolutionChooser(const placer::Design& design, int32_t minDist)
    : m_rows(std::make_unique<Rows>(design, minDist))
{
}

SolutionChooser::~SolutionChooser() = default;

ChosenSolutions SolutionChooser::choose(const std::vector<placer::ColorRecord>& colors)
{
    return m_rows->run(colors);
}

} // namespace kit::place
