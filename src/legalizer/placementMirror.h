// SPDX-License-Identifier: BSD-3-Clause
// Positions and nets of a design in flat arrays, for the loops that read them most.
#pragma once

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "legalizer/slice.h"
#include "legalizer/stretch.h"

class Design;
struct Component;
struct Net;

namespace vireloce {

/// What the solver reads of a design's nets: who belongs to whom, and where everybody is.
///
/// It is made for one placement. Whoever moves a component tells it by moved().
class PlacementMirror {
public:
    /// Copies positions and nets, and numbers the components (Component::id).
    explicit PlacementMirror(Design& design);

    /// Takes over the position of a component.
    void moved(const Component& comp);

    /// Whether a component is where the design has it: whether all moves were told.
    bool agreesOn(const Component& comp) const;

    /// Nets of a component, one entry per membership, in the order of Component::nets.
    std::span<const int32_t> netsOf(int32_t comp) const
    {
        return sliceOf(m_compNets, m_compBegin, static_cast<size_t>(comp));
    }

    /// What a net has outside of a stretch, pins and components' centres.
    Extent outside(int32_t net, const Stretch& stretch) const;

    /// Number of nets.
    size_t numNets() const { return m_nets.size() - 1; }

private:
    struct Place {
        int32_t x;    ///< left edge, DBU
        int32_t y;    ///< bottom edge, DBU
        int32_t half; ///< half the width of the cell, DBU
    };

    struct NetRecord {
        int32_t begin; ///< first of its members in m_members
        int32_t few;   ///< index in m_few, -1 if it has neither pins nor many members
    };

    /// What only few nets have.
    struct FewHave {
        Extent pins; ///< x of its pins

        /// The members of a net of many, (centre x, component), ascending; empty for others. They are kept
        /// sorted so that the outermost ones need not be searched for anew for every segment that the net
        /// touches.
        std::vector<std::pair<int32_t, int32_t>> sorted;
    };

    /// x of the centre, DBU.
    static int32_t centre(const Place& place) { return place.x + place.half; }

    /// Copies the members of all nets.
    void addNets(const Design& design);

    /// Notes the pins of a net, and its members sorted if they are many.
    void addFew(const Net& net);

    /// Widens an extent by the members of a net that are outside of a stretch.
    void includeMembers(size_t net, const Stretch& stretch, Extent& extent) const;

    /// As includeMembers(), from the outermost members inwards.
    void includeSorted(const FewHave& few, const Stretch& stretch, Extent& extent) const;

    /// Moves a component in the sorted members of its large nets, from a centre to another, DBU.
    void moveInLarge(int32_t comp, int32_t from, int32_t to);

    std::vector<Place> m_places;      ///< [component]
    std::vector<int32_t> m_compBegin; ///< [component + 1] first of its nets in m_compNets
    std::vector<int32_t> m_compNets;
    std::vector<NetRecord> m_nets; ///< [net + 1]
    std::vector<int32_t> m_members;
    std::vector<FewHave> m_few;
    std::vector<bool> m_inLarge; ///< [component] whether it belongs to a large net
};

} // namespace vireloce
