// SPDX-License-Identifier: BSD-3-Clause
// Positions and nets of a design in flat arrays, for the loops that read them most.
#pragma once

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

class Design;
struct Component;
struct Net;

namespace vireloce {

/// The stretch of a row that counts as inside: components with this y and an x from xl on, below xh. DBU.
struct Stretch {
    int32_t y;
    int32_t xl;
    int32_t xh;
};

/// What the solver reads of a design's nets: who belongs to whom, and where everybody is.
///
/// It is made for one placement. Whoever moves a component tells it by moved().
class PlacementMirror {
public:
    /// Copies positions and nets, and numbers the components (Component::id).
    explicit PlacementMirror(Design& design);

    /// Takes over the position of a component.
    void moved(const Component& comp);

    /// Nets of a component, one entry per membership, in the order of Component::nets.
    std::span<const int32_t> netsOf(int32_t comp) const
    {
        return entries(m_compNets, m_compBegin, static_cast<size_t>(comp));
    }

    /// Least and largest x of what a net has outside of a stretch, pins and components' centres, DBU; the
    /// largest and the smallest integer if there is nothing.
    std::pair<int32_t, int32_t> outside(int32_t net, const Stretch& stretch) const;

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
        int32_t rest;  ///< index in m_rests, -1 if it has neither pins nor many members
    };

    /// What only few nets have.
    struct Rest {
        int32_t pinLo; ///< least x of its pins, DBU; the largest integer without pins
        int32_t pinHi; ///< largest x of its pins, DBU; the smallest integer without pins

        /// The members of a net of many, (centre x, component), ascending; empty for others. They are kept
        /// sorted so that the outermost ones need not be searched for anew for every segment that the net
        /// touches.
        std::vector<std::pair<int32_t, int32_t>> sorted;
    };

    static std::span<const int32_t> entries(const std::vector<int32_t>& all,
                                            const std::vector<int32_t>& begins, size_t of)
    {
        return std::span(all).subspan(static_cast<size_t>(begins[of]),
                                      static_cast<size_t>(begins[of + 1] - begins[of]));
    }

    static bool isInside(const Place& place, const Stretch& stretch)
    {
        return place.y == stretch.y && stretch.xl <= place.x && place.x < stretch.xh;
    }

    static int32_t centre(const Place& place) { return place.x + place.half; }

    void addNets(const Design& design);
    void addRest(const Net& net);
    void includeMembers(size_t net, const Stretch& stretch, std::pair<int32_t, int32_t>& range) const;
    void includeSorted(const Rest& rest, const Stretch& stretch, std::pair<int32_t, int32_t>& range) const;
    void moveInLarge(int32_t comp, int32_t from, int32_t to);

    std::vector<Place> m_places;      ///< [component]
    std::vector<int32_t> m_compBegin; ///< [component + 1] first of its nets in m_compNets
    std::vector<int32_t> m_compNets;
    std::vector<NetRecord> m_nets; ///< [net + 1]
    std::vector<int32_t> m_members;
    std::vector<Rest> m_rests;
    std::vector<bool> m_inLarge; ///< [component] whether it belongs to a large net
};

} // namespace vireloce
