// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

namespace kit::lefdef {

/// Names with the index of their first record. All in one block of memory, as there may be millions of them.
class NameTable {
public:
    /// Makes room for a number of names.
    void reserve(size_t count)
    {
        size_t size = MIN_SIZE;
        while (size < 2 * count) {
            size *= 2;
        }
        if (size > m_slots.size()) {
            rehash(size);
        }
    }

    /// Index of the first record of a name, which is the given one if the name is new.
    ///
    /// @param name  must outlive the table
    uint32_t add(std::string_view name, uint32_t index)
    {
        reserve(m_count + 1);
        Slot& slot = m_slots[find(m_slots, name, hashOf(name))];
        if (slot.name.data() == nullptr) {
            slot = {name, hashOf(name), index};
            ++m_count;
        }
        return slot.index;
    }

    /// Index of the first record of a name, -1 if there is none.
    int32_t indexOf(std::string_view name) const
    {
        if (m_slots.empty()) {
            return -1;
        }
        const Slot& slot = m_slots[find(m_slots, name, hashOf(name))];
        return slot.name.data() != nullptr ? static_cast<int32_t>(slot.index) : -1;
    }

private:
    static constexpr size_t MIN_SIZE = 64;

    struct Slot {
        std::string_view name; ///< without data if the slot is free
        uint32_t hash = 0;
        uint32_t index = 0;
    };

    static uint32_t hashOf(std::string_view name)
    {
        return static_cast<uint32_t>(std::hash<std::string_view>()(name));
    }

    /// Where a name is, or the free slot for it; there is one, as at most half of them are taken.
    static size_t find(const std::vector<Slot>& slots, std::string_view name, uint32_t hash)
    {
        size_t at = hash & (slots.size() - 1);
        while (slots[at].name.data() != nullptr && (slots[at].hash != hash || slots[at].name != name)) {
            at = (at + 1) & (slots.size() - 1);
        }
        return at;
    }

    void rehash(size_t size)
    {
        std::vector<Slot> slots(size);
        for (const Slot& slot : m_slots) {
            if (slot.name.data() != nullptr) {
                slots[find(slots, slot.name, slot.hash)] = slot;
            }
        }
        m_slots = std::move(slots);
    }

    std::vector<Slot> m_slots; ///< a power of two of them
    size_t m_count = 0;
};

/// The names of some records.
template <typename Records>
NameTable namesOf(const Records& records)
{
    NameTable names;
    names.reserve(records.size());
    uint32_t next = 0;
    for (const auto& record : records) {
        names.add(record.name, next++);
    }
    return names;
}

} // namespace kit::lefdef
