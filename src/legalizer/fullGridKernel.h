// SPDX-License-Identifier: BSD-3-Clause
// The placement programs, ordered and joint, over flat arrays, for any numbers.
//
// They find the same path through the placement grid as SegLegalizer::solveGrid(), without making it, over
// its full width and with sums modulo 2^32. Values are enough (see gridKernel.h): a node's value is the least
// of the start value, of the site before, and of what its edges from the left neighbour's solutions give; of
// equals the last one leads there. An unreached node is one whose value is the start value and to which no
// edge of that value leads: there the path begins.
//
// Solutions of equal gaps to the left and equal stitches share a profile.
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
class FullGridKernel {
public:
    /// @param ops          operations, not owned
    /// @param mostEntries  entries of all profiles at a time; no value of it changes a result
    explicit FullGridKernel(const ProfileOps& ops = bestProfileOps(), int64_t mostEntries = int64_t{5} << 25)
        : m_ops(ops), m_store(mostEntries), m_siteCosts(ops)
    {
    }

    /// Finds the best path.
    ///
    /// @pre  at least one component, sites, widths and gaps of 0 or more, a start value of at most
    ///       UNREACHABLE (assert)
    /// @return whether two neighbours' profiles fit into the memory
    bool solve(const GridProblem& problem);

    /// [component] the result of the last solve() that returned true.
    std::span<const GridPlace> places() const { return m_places; }

private:
    /// A component of the grid.
    struct Layer {
        size_t firstProfile = 0; ///< index of the first solution's profile in m_profileOf
        size_t firstEnd = 0;     ///< index of the first profile's end in m_ends
        int32_t numProfiles = 0;
    };

    /// A node of the grid.
    struct Node {
        int32_t solution;
        int32_t site; ///< end site
    };

    /// A profile of the left neighbour, as far away as a gap.
    struct Way {
        int32_t profile;
        int32_t gap; ///< sites

        bool operator==(const Way&) const = default;
    };

    /// Does the work of solve().
    bool findPath(const GridProblem& problem);

    /// Finds which solutions share a profile.
    void layOut(const GridProblem& problem);

    /// Makes a component's profiles from those of its left neighbour. False if there is no memory for them.
    bool makeLayer(const GridProblem& problem, size_t comp);

    /// Takes the edges into a profile: `values` and `costs` are those of the component's left ends.
    void relaxFrom(const GridProblem& problem, size_t comp, int32_t gapClass, int32_t* values,
                   const int32_t* costs);

    /// Makes a component's profiles again if they went. False if there is no memory for them.
    bool makeAgain(const GridProblem& problem, size_t comp);

    /// Follows the path back from the last node of a component's solution. False if there is no memory for
    /// it.
    bool traceBack(const GridProblem& problem, size_t comp, int32_t solution);

    /// The left neighbour's node on the way to a component's first node of a value. Its site is negative if
    /// no edge leads there.
    Node solutionBefore(const GridProblem& problem, size_t comp, Node node, int32_t value);

    /// Writes where the path puts a component, which it runs through from node `first` to end site `last`.
    ///
    /// Where waiting nodes are places, too, the leftmost node of the path counts for which there is room left
    /// of its end site. The node at which a path begins is none.
    void place(const GridProblem& problem, size_t comp, int32_t last, Node first, bool isBegin);

    /// Index of a solution's profile among those of its component.
    int32_t profileOf(size_t comp, int32_t solution) const
    {
        return m_profileOf[m_layers[comp].firstProfile + static_cast<size_t>(solution)];
    }

    /// Entries of a profile that is there.
    int32_t* profile(size_t comp, int32_t index);

    const ProfileOps& m_ops;
    LayerStore m_store;
    SiteCosts m_siteCosts;
    size_t m_stride = 0;              ///< entries from one profile to the next
    std::vector<Layer> m_layers;      ///< [component]
    std::vector<int32_t> m_profileOf; ///< [solution of every component]
    std::vector<int32_t> m_ends;      ///< [profile of every component] value at the last site
    std::vector<int32_t> m_zeros;     ///< values of the start node's neighbours
    std::vector<Way> m_ways;          ///< those tried already
    std::vector<GridPlace> m_places;
};

} // namespace vireloce
