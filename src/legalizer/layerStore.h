// SPDX-License-Identifier: BSD-3-Clause
// Bounded memory for the layers of a dynamic program whose way back needs all of them.
#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

namespace vireloce {

/// Keeps the layers of a dynamic program, or as many of them as there is room for.
///
/// Layers are added one after the other, each made from the one before. Where the room runs out, those stay
/// that are as far apart as need be: checkpoints. On the way back a layer that went is made again, from the
/// checkpoint before it on; whoever makes them must make the same again.
///
/// Example: room for 100 layers of 3000. The 101st makes every second one go, later three of four, until
/// every 64th is left. The way back makes at most 63 layers for every 64.
class LayerStore {
public:
    /// No layer.
    static constexpr size_t NONE = SIZE_MAX;

    /// @param most  entries of all layers at a time
    explicit LayerStore(int64_t most) : m_most(static_cast<size_t>(most)) {}

    /// Forgets all layers.
    void clear();

    /// Forgets all layers, and gives the memory back if it is too much to keep it for the next use: several
    /// stores share what a segment's solution may take.
    void release();

    /// Takes memory at once, so that it need not grow.
    ///
    /// @param entries  of all layers that are to be kept; no more than the bound is taken
    void reserve(size_t entries);

    /// Makes room for a layer. Pointers to others are not valid any more.
    ///
    /// @param layer    index, greater than those of all others
    /// @param entries  its size
    /// @return [entries] uninitialised; nullptr if it and the last one have no room together
    int32_t* add(size_t layer, size_t entries);

    /// The entries of a layer, nullptr if it went. Valid until a layer is added.
    int32_t* at(size_t layer)
    {
        return layer < m_begins.size() && m_begins[layer] != NONE ? m_room.get() + m_begins[layer] : nullptr;
    }

    /// The last layer up to one that is there, NONE if there is none.
    size_t lastUpTo(size_t layer) const;

    /// Forgets all layers after one that is there, or all for NONE. Those that are there stay for good: only
    /// layers that come will have to go.
    void restartBehind(size_t layer);

    /// Makes a layer again if it went, with those between it and the last one before it that is there.
    ///
    /// @param begin  called once with that last one, NONE if there is none, before layers are made
    /// @param make   makes a layer from the one before; false if there is no memory for it
    /// @return whether the layer is there
    template <class Begin, class Make>
    bool makeAgain(size_t layer, Begin begin, Make make)
    {
        if (at(layer) != nullptr) {
            return true;
        }
        const size_t from = lastUpTo(layer);
        restartBehind(from);
        begin(from);
        for (size_t next = from + 1; next <= layer; ++next) { // NONE + 1 is 0
            if (!make(next)) {
                return false;
            }
        }
        return true;
    }

    /// Entries of all layers that are there.
    size_t used() const { return m_used; }

private:
    /// A layer that is there.
    struct Kept {
        size_t layer;
        size_t entries;
    };

    /// Lets layers go until half of the room is free that is not taken for good. The last one stays: the next
    /// is made from it. False if that does not give enough room.
    bool thinOut(size_t room);

    /// Lets layers go that are no checkpoints, but neither the last one nor those that stay for good.
    void dropBetweenCheckpoints();

    /// Takes memory for so many entries, if there is less. Errors: std::bad_alloc.
    void growTo(size_t entries);

    size_t m_most;
    std::unique_ptr<int32_t[], void (*)(void*)> m_room{nullptr, std::free};
    size_t m_capacity = 0;
    size_t m_used = 0;
    size_t m_fixed = 0;           ///< number of layers in m_kept that stay for good
    size_t m_stride = 1;          ///< from one checkpoint to the next, layers
    std::vector<Kept> m_kept;     ///< in their order, one after the other in m_room
    std::vector<size_t> m_begins; ///< [layer] first entry in m_room, NONE if it went
};

} // namespace vireloce
