// SPDX-License-Identifier: BSD-3-Clause
// The placement programs, ordered and joint, over flat arrays.
//
// They find the same path through the placement grid as SegLegalizer::solveGrid(), without making it. What
// that rests on:
//
// 1. Values are enough. A node of the grid can be reached from rows of the left neighbour, in the order of
//    its solutions, and from the site before, in this order; of equals the last one wins. So the predecessor
//    can be found again from the values: the site before, if it has the same value; else the solution with
//    the highest index whose value and cost add up to the node's.
// 2. Values of a row never rise along it, as waiting is free. The path leaves a row's waiting edges at the
//    leftmost site of equal value.
// 3. Where costs of a site are sums that do not depend on the order (TermTable), the stitches of a solution
//    add the same at all sites, so that rows of one component with the same spacings to the left differ by
//    their stitches only: one row per column of PairSpacing is enough, and one minimum per row and spacing.
// 4. All costs are 0 or more and far below UNREACHABLE. A path of a cost below the start value of the grid
//    comes from the start node, and no node on it was unreached. So unreached nodes, which the grid relaxes
//    like any other, do not show in the result if the best path costs less than that start value.
// 5. A path that places component `last` can have component q only on sites that leave room for what comes
//    before it and, up to `last`, behind it, by the smallest spacings. Only these sites are looked at. A path
//    that ends with an earlier component costs at least the fewest stitches on it and the price of what it
//    leaves out; if no such sum is below the best path found, that path is the best of all: of equals the
//    later component wins. Otherwise `last` is taken back to the first component where it may be, and all is
//    done again. Where no path places `last`, as the spacings are larger than the smallest, it is taken back
//    by one component, then by two, four and so on.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "legalizer/rowOps.h"
#include "legalizer/segmentData.h"
#include "legalizer/spacing.h"
#include "legalizer/termTable.h"

namespace vireloce {

/// What a grid is made of, beside the segment. Not owned.
struct GridProblem {
    const SegmentData& segment;
    std::span<const PairSpacing* const> behind; ///< [component] spacings to the left one, the first unused
    std::span<const std::span<const int32_t>> stitches; ///< [component][solution]
    const TermTable& terms;                             ///< up to the segment's number of sites at least
    int32_t unreached; ///< start value of a node that has not been reached, UNREACHABLE at most
};

/// Where the best path puts a component.
struct GridPlace {
    int32_t site = -1;     ///< its left end; -1 if the path leaves it out
    int32_t solution = -1; ///< its solution; -1 if the path leaves it out
};

/// The program, with the memory that it keeps from one segment to the next.
class GridKernel {
public:
    /// @param ops  row operations, not owned
    explicit GridKernel(const RowOps& ops = bestRowOps()) : m_ops(ops) {}

    /// Finds the best path.
    ///
    /// @return whether it could; if not, numbers are such that what is said above does not hold, or the
    ///         rows would take more than mostEntries()
    bool solve(const GridProblem& problem);

    /// [component] the result of the last solve() that returned true.
    std::span<const GridPlace> places() const { return m_places; }

    /// How much there is to do, summed over all tries of a solve().
    struct Work {
        int64_t rows = 0;    ///< rows filled
        int64_t terms = 0;   ///< rows that they were filled from
        int64_t entries = 0; ///< entries filled
    };

    /// What the last solve() did.
    const Work& work() const { return m_work; }

    /// Most entries of all rows at a time.
    static int64_t mostEntries();

private:
    /// A component of the grid.
    struct Layer {
        int32_t least;   ///< leftmost end site on any path
        int32_t count;   ///< end sites that are looked at
        int32_t columns; ///< rows
        int32_t floor;   ///< fewest stitches
        size_t row;      ///< index in m_rows of the first row's first entry
    };

    struct End {
        int64_t cost; ///< of the whole path
        int32_t comp; ///< last component on it, -1 without a path
        int32_t solution;
    };

    bool isSane(const GridProblem& problem) const;
    static bool isSane(const PairSpacing& spacing);
    int32_t layOut(const GridProblem& problem);
    bool window(const GridProblem& problem, int32_t fitting, int32_t last);
    bool fillRows(const GridProblem& problem, int32_t fitting);
    bool fillCosts(const GridProblem& problem, int32_t comp);
    void fillCheapest(const GridProblem& problem, int32_t comp);
    void chooseTerms(const GridProblem& problem, int32_t comp, int32_t column);
    End bestEnd(const GridProblem& problem, int32_t fitting, int32_t last) const;
    int32_t firstCheaperEnd(const GridProblem& problem, int32_t last, int64_t best) const;
    void traceBack(const GridProblem& problem, End end);
    int32_t stepBefore(const GridProblem& problem, int32_t comp, int32_t solution, int32_t& k) const;
    int64_t price(const GridProblem& problem, int32_t comp) const;

    /// Index in m_rows of a row's first entry.
    size_t rowBegin(int32_t comp, int32_t column) const
    {
        return m_layers[static_cast<size_t>(comp)].row + static_cast<size_t>(column) * m_stride;
    }

    const int32_t* row(int32_t comp, int32_t column) const { return m_rows.get() + rowBegin(comp, column); }

    const RowOps& m_ops;
    std::vector<Layer> m_layers;       ///< [component that may fit]
    size_t m_stride = 0;               ///< from one row to the next
    std::unique_ptr<int32_t[]> m_rows; ///< of all components; a block of UNREACHABLE before each
    size_t m_room = 0;                 ///< entries that m_rows has room for
    std::vector<int32_t> m_costs;
    std::vector<int32_t> m_zeros;
    std::vector<RowTerm> m_terms;
    std::vector<int32_t> m_cheapest; ///< [column][left one's column][spacing over the least] stitches
    std::vector<GridPlace> m_places;
    Work m_work;
};

} // namespace vireloce
