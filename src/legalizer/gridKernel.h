// SPDX-License-Identifier: BSD-3-Clause
// The placement programs, ordered and joint, over flat arrays, for ordinary numbers.
//
// They find the same path through the placement grid as SegLegalizer::solveGrid(), without making it. What
// that rests on:
//
// 1. Values are enough. A node of the grid can be reached from the left neighbour's solutions, in their
// order,
//    and from the site before, in this order; of equals the last one wins. So the predecessor can be found
//    again from the values: the site before, if it has the same value; else the solution with the highest
//    index whose value and cost add up to the node's.
// 2. Values never rise along the sites, as waiting is free. The path leaves the waiting edges at the leftmost
//    site of equal value.
// 3. Solutions share a profile of values, kept without their stitches, if they need the same gaps to the left
//    (PairGaps) and if their costs differ by exactly their stitches (SiteCosts).
// 4. All costs are 0 or more and so small that no sum wraps around. A path of a cost below the start value of
//    the grid comes from the start node, and no node on it was unreached. Unreached nodes, which the grid
//    relaxes like any other, do not show in the result if no end edge from one is as cheap as the best path.
// 5. Slack is the free space left of a component: its end site less the leftmost one that is possible. It
//    never shrinks from a component to the next. A path that places component `last` has at most the slack
//    that is left for that one. So only these sites are looked at. A path that ends with an earlier component
//    costs at least the least of what is on it and its end edge. If no such sum is below the best path found,
//    that path is the best of all: of equals the later component wins. Otherwise `last` is taken back to the
//    first component where it may be, and all is done again. Where no path places `last`, as the gaps are
//    larger than the least, it is taken back by one component, then by two, four and so on.
//    Example: 10 sites, widths of 3, 4 and 2, no gaps. If all are placed, the slack is 10 - 9 = 1, and they
//    end on site 3 or 4, 7 or 8, 9 or 10.
// 6. Where there is much slack, most of it is of no use.
//    To the right: where the values fall no more, and right of the left ends of all of its nets, a
//    component's own costs never fall either, so neither do its values. They are cut off and stand for the
//    last one kept.
//    To the left: let the excess of a node be its value less the least that all components up to it cost if
//    nothing is in their way. The excess never falls along a path. Nodes of more excess than some bound are
//    cut off. If a path to an end is found whose own excess is within the bound, then every path through what
//    was cut off is dearer than that one. If not, its excess is the bound for another try.
//    Example: three components that cost at least 4, 0 and 7, a path of 4 + 1 + 8. Its excess is 2. A node of
//    the second component of value 7 has an excess of 3: no path through it costs less than 7 + 7 = 14.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "legalizer/gridProblem.h"
#include "legalizer/layerStore.h"
#include "legalizer/profileOps.h"
#include "legalizer/siteCosts.h"

namespace vireloce {

/// The program, with the memory that it keeps from one segment to the next.
class GridKernel {
public:
    /// What bounds the work. No value of them changes a result.
    struct Limits {
        int64_t mostEntries = int64_t{5} << 25; ///< entries of all profiles at a time: 640 MiB
        int32_t narrow = 384;                   ///< slack from which on useless space is cut off, sites
    };

    /// @param ops  operations, not owned
    explicit GridKernel(const ProfileOps& ops = bestProfileOps()) : GridKernel(ops, Limits{}) {}
    GridKernel(const ProfileOps& ops, const Limits& limits);

    /// Finds the best path.
    ///
    /// @return whether it could; if not, numbers are such that what is said above does not hold, or a
    ///         component's profiles alone take more than the memory
    bool solve(const GridProblem& problem);

    /// [component] the result of the last solve() that returned true.
    std::span<const GridPlace> places() const { return m_places; }

    /// How much there is to do, summed over all tries of a solve().
    struct Work {
        int64_t profiles = 0; ///< profiles made
        int64_t terms = 0;    ///< profiles that they were made from
        int64_t entries = 0;  ///< entries made
        int64_t kept = 0;     ///< entries kept for the way back
        int64_t tries = 0;    ///< times that all components were gone through
    };

    /// What the last solve() did.
    const Work& work() const { return m_work; }

private:
    /// A component of the grid. Its profiles begin at slack `begin`.
    struct Layer {
        int32_t least = 0;     ///< leftmost end site on any path
        int32_t lastSlack = 0; ///< largest that leaves room for component `last`
        int32_t lastMade = 0;  ///< largest that is looked at
        int32_t begin = 0;     ///< least that is kept
        int32_t count = 0;     ///< entries of each profile that are kept
        int32_t numProfiles = 0;
        int32_t most = 0;    ///< most stitches
        int32_t fewest = 0;  ///< fewest stitches
        int64_t floor = 0;   ///< least that the components up to it cost, but for its own stitches
        size_t firstEnd = 0; ///< index of the first profile's end in m_ends
        size_t firstProfile =
            0;                  ///< index of the first solution's profile in m_profileOf, if not by gap class
        bool byGapClass = true; ///< whether a solution's profile is its gap class
    };

    /// An end of a path.
    struct End {
        int32_t cost;     ///< of the whole path
        size_t comp;      ///< last component on it, NONE without a path
        int32_t solution; ///< of that one
    };

    /// A profile that is to be made.
    struct Wanted {
        int32_t gapClass;
        int32_t costs; ///< index of its costs in m_siteCosts
    };

    enum class Made { YES, NOTHING_REACHED, NO_MEMORY };

    static constexpr size_t NONE = SIZE_MAX;

    /// Entries before a profile that say "not to be reached": the largest gap over the least of a pair.
    static constexpr int32_t PAD = PROFILE_BLOCK;

    /// Bound of the excess that cuts nothing off.
    static constexpr int64_t NO_BOUND = INT32_MAX;

    /// Entries that a profile takes up in memory, with the pad before it.
    static constexpr size_t paddedSpace(int32_t count)
    {
        return static_cast<size_t>(PAD) + static_cast<size_t>(profileSpace(count));
    }

    /// Does the work of solve().
    bool findPath(const GridProblem& problem);

    /// Whether costs at all sites are 0 or more and small.
    bool fits(const GridProblem& problem);

    /// Whether gaps fit into the pads before the profiles, and the ways between gap classes into memory.
    static bool fits(const PairGaps& gaps);

    /// Finds the components that may fit.
    void layOut(const GridProblem& problem);

    /// The component that a path seems to end with: that of the least end cost and stitches.
    size_t cheapestLast(const GridProblem& problem) const;

    /// Sets how much slack there is if component `last` is placed.
    void setWindow(const GridProblem& problem, size_t last);

    /// Adds what sites cost at least to what the layers' components cost at least.
    void setFloors(const GridProblem& problem);

    /// Makes all layers from the left. False if there is no memory for them.
    bool makeLayers(const GridProblem& problem);

    /// Makes a component's profiles from those of its left neighbour.
    Made makeLayer(const GridProblem& problem, size_t comp);

    /// Finds which pairs of gap class and costs occur, and which of them is a solution's.
    void chooseProfiles(const GridProblem& problem, size_t comp);

    /// Makes the profiles, each behind a pad: one of every gap class, or those that m_wanted names.
    void makeProfiles(const GridProblem& problem, size_t comp, int32_t* out, int32_t count);

    /// Keeps what may be of use of the profiles in m_scratch: from the least slack within the bound up to
    /// where their values, and those of the next component, fall no more.
    Made keepUseful(const GridProblem& problem, size_t comp, int32_t first, int32_t count);

    /// Slack of a component from which on its costs never fall: its centre is right of all left ends.
    static int32_t slackWithoutLeftPull(const SegmentData& segment, size_t comp, int32_t leastEnd);

    /// Notes the values at the last site.
    void takeEnds(size_t comp, const int32_t* profiles, size_t stride, int32_t count);

    /// Fills m_cheapest for a component and its left neighbour.
    void fillCheapest(const GridProblem& problem, size_t comp);

    /// Fills m_terms with the ways from the left neighbour's profiles to those of a gap class, as m_cheapest
    /// has them.
    void chooseTerms(const GridProblem& problem, size_t comp, int32_t gapClass);

    /// The best end of a path at component `last` or behind it.
    End bestEnd(const GridProblem& problem, size_t last) const;

    /// The least that a path which ends with a component may cost if its end cost does not wrap around.
    int64_t leastCost(const GridProblem& problem, size_t comp) const;

    /// The least value found at the last site of a component, the start value if it is not below that.
    int64_t reached(const GridProblem& problem, size_t comp) const;

    /// Whether a path that ends with a component may be so dear that its end cost wraps around.
    bool mayWrap(const GridProblem& problem, size_t comp) const;

    /// Whether ends from component `last` on may be cheaper than found, as nodes were cut off; if so, more
    /// are kept at the next try.
    bool widenedBound(const GridProblem& problem, size_t last, const End& end);

    /// The first component up to `last` that may end a path which is cheaper than the best one found.
    size_t firstCheaperEnd(const GridProblem& problem, size_t last, const End& end) const;

    /// Whether no end edge from a component that has not been reached is as cheap as the best path.
    bool hidesUnreached(const GridProblem& problem, const End& end) const;

    /// Makes a layer again if it went. False if there is no memory for it.
    bool makeAgain(const GridProblem& problem, size_t comp);

    /// Writes m_places. False if there is no memory for it.
    bool traceBack(const GridProblem& problem, const End& end);

    /// The solution of the left neighbour on the way to a component, -1 if none leads there.
    ///
    /// `wanted` is the value that the neighbour's node and stitches have together. `slack` is that of the
    /// component, and becomes the neighbour's.
    int32_t solutionBefore(const GridProblem& problem, size_t comp, int32_t solution, int32_t wanted,
                           int32_t& slack);

    /// [solution] index of its profile among those of its component.
    const int32_t* profileOf(const GridProblem& problem, size_t comp) const
    {
        const Layer& layer = m_layers[comp];
        if (!layer.byGapClass) {
            return m_profileOf.data() + layer.firstProfile;
        }
        return comp > 0 ? problem.gapsToLeft[comp]->classOf : m_zeros.data();
    }

    /// Entries from one kept profile of a component to the next.
    size_t strideOf(size_t comp) const;

    /// Kept entries of a component's first profile; strideOf() entries on begin those of the next.
    const int32_t* profiles(size_t comp);

    const ProfileOps& m_ops;
    Limits m_limits;
    LayerStore m_store;
    SiteCosts m_siteCosts;
    std::vector<Layer> m_layers;    ///< [component that may fit]
    size_t m_made = 0;              ///< components that some node was reached of
    bool m_wide = false;            ///< whether useless space is cut off
    bool m_endCostsWrap = false;    ///< whether costs of end edges may leave 32 bits
    bool m_hasCut = false;          ///< whether a node was cut off for its excess
    int64_t m_bound = 0;            ///< most excess that is kept
    double m_boundPerComp = 0.0;    ///< what was enough for the last segment, to begin with for the next one
    std::vector<int32_t> m_scratch; ///< profiles before useless space is cut off
    std::vector<int32_t> m_leastOfTerms;
    std::vector<int32_t> m_zeros;     ///< as many as a profile or a component's solutions
    std::vector<int32_t> m_ends;      ///< [profile of every component] value at the last site
    std::vector<int32_t> m_profileOf; ///< [solution of components that need it]
    std::vector<Wanted> m_wanted;     ///< of the component in hand, by gap class
    std::vector<ProfileTerm> m_terms;
    std::vector<int32_t> m_cheapest; ///< [gap class][left one's profile][gap over the least] stitches
    std::vector<GridPlace> m_places;
    Work m_work;
};

} // namespace vireloce
