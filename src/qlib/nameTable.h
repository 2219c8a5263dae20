// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "qlib/largeBlock.h"

namespace vireloce {

/// Names and their numbers, for many look-ups: an open-addressing hash table with linear probing.
///
/// It takes 24 bytes per name and does not own the names.
class NameTable {
public:
    /// @param names  most names that will be entered
    explicit NameTable(size_t names) : m_slots(names + names / 2 + 1) {}

    /// Enters a name, unless it is there already or the number is negative.
    ///
    /// @param name  must outlive the table
    void insert(const std::string& name, int32_t number);

    /// As insert(), for all entries of a map.
    template <class Map>
    void insertAll(const Map& numbers)
    {
        // The slots are asked for some names ahead: see below.
        auto ahead = numbers.begin();
        for (size_t i = 0; i < LEAD && ahead != numbers.end(); ++i, ++ahead) {
            askForSlot(hashOf(ahead->first));
        }
        for (const auto& [name, number] : numbers) {
            insert(name, number);
            if (ahead != numbers.end()) {
                askForSlot(hashOf(ahead->first));
                ++ahead;
            }
        }
    }

    /// Hash of a name, for the operations below.
    static uint64_t hashOf(std::string_view name) { return std::hash<std::string_view>()(name); }

    /// The number of a name, -1 if it has none.
    int32_t find(std::string_view name) const { return find(name, hashOf(name)); }

    /// As find(), for a name whose hash is known.
    int32_t find(std::string_view name, uint64_t hash) const;

    // In a large table a look-up is two waits for the memory, one for the slot and one for the name. Who has
    // many names to look up asks for all the slots, then for all the names, then for the numbers, and waits
    // for many at a time.

    /// Asks for what askForName() needs.
    void askForSlot(uint64_t hash) const { __builtin_prefetch(&m_slots[firstSlot(hash)]); }

    /// Asks for what find() needs beyond that.
    void askForName(uint64_t hash) const { __builtin_prefetch(m_slots[firstSlot(hash)].name); }

private:
    static constexpr size_t LEAD = 16; ///< names

    struct Slot {
        const std::string* name = nullptr; ///< nullptr: free
        uint32_t check = 0;                ///< bits of the hash, to compare few names
        int32_t number = -1;
    };

    /// Where the search for a name begins.
    ///
    /// The upper half of the hash is taken as a fraction of the table: no division, and any size will do.
    size_t firstSlot(uint64_t hash) const
    {
        return static_cast<size_t>(((hash >> 32) * m_slots.size()) >> 32);
    }

    /// The slot of a name, or the free one where it belongs.
    size_t slotOf(std::string_view name, uint64_t hash) const;

    std::vector<Slot, BlockAllocator<Slot>> m_slots; ///< one at least is free
};

} // namespace vireloce
