// SPDX-License-Identifier: BSD-3-Clause
// Cells of one order on the sites of a run: the cheapest places and states, by a dynamic program from left to
// right. It knows numbers only.
//
// Each cell has a window of sites that it may stand on. For a given cell on its right the states of a cell
// fall into few classes of equal gaps, and one profile for each class, the least cost up to each site, is all
// that the next cell needs to know.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace refine {

struct ProgramStep;

/// States of a cell that are alike for both neighbours; the cheapest of them.
struct ProgramOption {
    int32_t leftClass = 0;
    int32_t rightClass = 0;
    int32_t state = 0;
    int32_t price = 0; ///< of its stitches
    bool mirrored = false;
};

/// A cell. Sites are counted from the left end of the run.
struct ProgramItem {
    int32_t low = 0;                              ///< first site of its window
    int32_t width = 0;                            ///< sites
    const int32_t* costs[2] = {nullptr, nullptr}; ///< [mirrored][site of the window]
    int32_t optionBegin = 0;
    int32_t optionEnd = 0;
    int32_t leftClasses = 0;
    int32_t rightClasses = 0;
    const int32_t* gaps = nullptr; ///< [right class of the cell before * leftClasses + left class] sites
};

/// Where a cell is to stand.
struct ProgramSpot {
    int32_t site = 0;
    int32_t state = 0;
};

/// The program with its memory, to be used again and again.
class OrderedProgram {
public:
    static constexpr int32_t MOST_SITES = 64; ///< of a window
    static constexpr int32_t NEVER = 1 << 29; ///< a cost that no arrangement has

    std::vector<ProgramItem> items;     ///< from the left
    std::vector<ProgramOption> options; ///< of all items
    std::vector<int32_t> earliest;      ///< [left class of the first cell] first site that it may have
    std::vector<int32_t> latest;        ///< [right class of the last cell] last site that it may have

    OrderedProgram();

    /// Uses another way to do its steps, one of programStepsHere().
    void setStep(void (*step)(const ProgramStep&)) { m_step = step; }

    /// Makes room for an item's costs, MOST_SITES each; the pointers hold until clear().
    int32_t* costRoom(size_t item, bool mirrored)
    {
        return m_costs.data() + (2 * item + (mirrored ? 1 : 0)) * MOST_SITES;
    }

    /// Makes it ready for so many items.
    void clear(size_t count);

    /// Finds the least cost. Costs of one arrangement add up to less than NEVER, whatever the arrangement.
    ///
    /// @param sites  width of all windows, at most MOST_SITES
    /// @return none possible if it is NEVER or more
    int32_t solve(int32_t sites);

    /// The arrangement of the cost that solve() gave, by item.
    void trace(std::vector<ProgramSpot>& spots) const;

private:
    const int32_t* profile(size_t item, int32_t rightClass) const
    {
        return m_profiles.data() + m_begin[item] + static_cast<size_t>(rightClass * 3 * m_width + m_width);
    }
    int32_t shift(size_t item, int32_t gap) const
    {
        return std::clamp(items[item].low - items[item - 1].low - items[item - 1].width - gap, -m_width,
                          m_width);
    }

    void (*m_step)(const ProgramStep&);
    std::vector<int32_t> m_shifts;
    int32_t m_width = 0; ///< of the profiles: sites, rounded up
    int32_t m_sites = 0;
    std::vector<int32_t> m_costs;
    std::vector<size_t> m_begin;     ///< [item] in m_profiles
    std::vector<int32_t> m_profiles; ///< [item][right class] least cost up to each site; NEVER on the left of
                                     ///< it, the last on the right of it, as many as it has
    std::vector<int32_t> m_arrivals; ///< [left class] profile of the cell at hand
};

} // namespace refine
