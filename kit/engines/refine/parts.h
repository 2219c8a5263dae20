// SPDX-License-Identifier: BSD-3-Clause
// What the parts of a model are made by, one after the other.
#pragma once

#include <algorithm>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

#include "kit/engines/refine/model.h"

namespace kit::refine {

/// Units of the model in a DBU.
inline constexpr int32_t UNITS = 2;

/// The model's number for a length in its units. Errors: throws Fault if it has none.
int32_t units(int64_t length);

/// The same for DBU.
inline int32_t unitsOfDbu(int64_t dbu)
{
    return units(dbu * UNITS);
}

/// What makes cells of one kind.
struct KindKey {
    int32_t cell = 0;
    bool upsideDown = false; ///< against its row
    bool turns = false;      ///< may be mirrored
    bool mirrored = false;   ///< is, if it may not be otherwise
    bool bare = false;       ///< has no colors

    // NOLINTNEXTLINE(modernize-use-nullptr): the check takes the 0 behind <=> for a pointer
    auto operator<=>(const KindKey&) const = default;
};

/// The same, as near as the model has it.
inline int32_t nearestUnits(int64_t dbu)
{
    return static_cast<int32_t>(std::clamp<int64_t>(dbu * UNITS, -::refine::FARTHEST, ::refine::FARTHEST));
}

/// The rows of a model: those of all bottom edges, with their free sites.
class Rows {
public:
    /// @param stays  [component] stays where it is, in a row or not
    /// @param model  out: gets rows and runs; its step is that of the first row
    Rows(const Inputs& inputs, const std::vector<bool>& stays, ::refine::Model& model);

    /// The row at a bottom edge, DBU; -1 if there is none.
    int32_t at(int64_t y) const;

    /// The row of the design whose bottom edge is nearest, DBU.
    int32_t nearest(int64_t y) const;

    /// Whether a component stands on sites that are none of the model: of a row with another step, or that
    /// is turned otherwise than one beside it. @param width  DBU
    bool isOnOtherSites(const placer::Component& comp, int64_t width) const;

private:
    bool isLikeOthers(const placer::Row& row) const;
    void addRuns();
    void addRow(std::vector<::refine::Run>& runs);

    const Inputs& m_inputs;
    const placer::Design& m_design;
    ::refine::Model& m_model;
    std::map<int64_t, int32_t> m_rowAt;       ///< by the bottom edge, DBU
    std::map<int64_t, int32_t> m_designRowAt; ///< the same, rows of the design alone
    std::vector<const placer::Row*> m_others; ///< without runs
};

/// Adds pins of kinds and nets to a model that has all else: where the pins are if that is known, or else in
/// the middle of the cells.
///
/// @param weights  [net] empty for 1 each
/// @param kinds    [kind] those of components
///
/// Errors: throws Fault for offsets of another placement.
void addNets(const Inputs& inputs, const std::vector<int32_t>& weights, const std::vector<KindKey>& kinds,
             Built& built);

} // namespace kit::refine
