// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "kit/engines/place/arrange.h"
#include "kit/engines/place/bands.h"
#include "kit/engines/place/gaps.h"
#include "kit/engines/place/trueDesign.h"

class Design;
struct Component;
struct Net;

namespace kit::place {

/// Costs, in sites of wirelength: few cells are to change, and not much.
inline constexpr int64_t SITE_OFF = 2;   ///< a site that a cell is moved
inline constexpr int64_t MOVE = 4;       ///< any move
inline constexpr int64_t RECOLORING = 4; ///< another solution
inline constexpr int64_t STITCH = 4;     ///< a stitch more
inline constexpr int64_t MIRRORING = 4;

/// Wirelength that a component is responsible for, by its x. Large nets are left out: one member hardly
/// changes their length.
class NetPull {
public:
    /// @param design  that the component is one of
    NetPull(const Design& design, const Component& comp);

    /// With the component's left edge at x, DBU.
    int64_t lengthAt(int64_t x) const;

private:
    void add(const Design& design, const Net& net, const Component& comp);

    int64_t m_middle;
    std::vector<std::pair<int64_t, int64_t>> m_others; ///< [net] its range without the component
};

/// Cells that are to be arranged, as the arithmetic takes them.
class RowRequest {
public:
    /// All must outlive it.
    RowRequest(const Design& design, const TrueDesign& truth, Gaps& gaps);
    /// Not copied: its problem refers to it.
    RowRequest(const RowRequest&) = delete;
    RowRequest& operator=(const RowRequest&) = delete;
    ~RowRequest() = default;

    /// Adds the next cell that may move.
    ///
    /// @param isStray  whether it has no place so far
    void add(const Tenant& tenant, bool isStray);

    /// Adds a cell that stays, or an obstacle.
    void addFixed(const Tenant& tenant) { m_problem.fixed.push_back({tenant.x, wayOf(tenant.lie)}); }

    /// Adds the free sites of a band from begin to end, DBU.
    void addRuns(const Band& band, int64_t begin, int64_t end);

    /// The cells where they may stand, from the left; none if no arrangement was found.
    ///
    /// @param mostLabels  as of arrange()
    /// @param answer      out: how the search went
    std::optional<std::vector<Tenant>> solve(int64_t mostLabels, RowAnswer& answer);

private:
    struct Mover {
        Tenant tenant;
        bool isStray;
        NetPull pull;
    };

    int32_t wayOf(const Lie& lie);
    int32_t sideOf(int32_t number, const Lie& lie);
    int64_t costOf(size_t cell, int64_t x) const;

    const Design& m_design;
    const TrueDesign& m_truth;
    Gaps& m_gaps;
    RowProblem m_problem;
    std::vector<Mover> m_movers;                  ///< [cell of the problem]
    std::vector<Lie> m_lies;                      ///< [way]
    std::unordered_map<uint64_t, int32_t> m_ways; ///< by lie
    std::vector<Lie> m_sideLies;                  ///< [side] a cell that has it
    std::unordered_map<int32_t, int32_t> m_sides; ///< by their numbers
};

} // namespace kit::place
