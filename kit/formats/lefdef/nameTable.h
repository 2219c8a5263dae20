// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <utility>
#include <vector>

namespace kit::lefdef {

/// Records by their names. The names stay in the records, so that millions of them take little room here.
template <typename Record>
class NameTable {
public:
    /// @param records  those that add() tells of; must outlive the table
    explicit NameTable(const std::vector<Record>& records) : m_records(records) {}

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

    /// Index of the first record of a name. If it is the next index, the name is new, and its record must be
    /// appended.
    uint32_t add(std::string_view name) { return enter(name, static_cast<uint32_t>(m_records.size())); }

    /// Enters all records; of equal names the first.
    void addAll()
    {
        reserve(m_records.size());
        for (size_t i = 0; i < m_records.size(); ++i) {
            enter(m_records[i].name, static_cast<uint32_t>(i));
        }
    }

    /// Index of the first record of a name, -1 if there is none.
    int32_t indexOf(std::string_view name) const
    {
        return m_slots.empty() ? -1 : static_cast<int32_t>(m_slots[find(name, hashOf(name))].next) - 1;
    }

private:
    static constexpr size_t MIN_SIZE = 64;

    struct Slot {
        uint32_t hash = 0;
        uint32_t next = 0; ///< index of the record plus 1, 0 if the slot is free
    };

    static uint32_t hashOf(std::string_view name)
    {
        return static_cast<uint32_t>(std::hash<std::string_view>()(name));
    }

    uint32_t enter(std::string_view name, uint32_t index)
    {
        reserve(m_count + 1);
        const uint32_t hash = hashOf(name);
        Slot& slot = m_slots[find(name, hash)];
        if (slot.next == 0) {
            slot = {.hash = hash, .next = index + 1};
            ++m_count;
        }
        return slot.next - 1;
    }

    /// Where a name is, or the free slot for it; there is one, as at most half of them are taken.
    size_t find(std::string_view name, uint32_t hash) const
    {
        size_t at = hash & (m_slots.size() - 1);
        while (m_slots[at].next != 0 &&
               (m_slots[at].hash != hash || m_records[m_slots[at].next - 1].name != name)) {
            at = (at + 1) & (m_slots.size() - 1);
        }
        return at;
    }

    void rehash(size_t size)
    {
        const std::vector<Slot> before = std::exchange(m_slots, std::vector<Slot>(size));
        for (const Slot& slot : before) {
            if (slot.next != 0) { // all names differ
                size_t at = slot.hash & (size - 1);
                while (m_slots[at].next != 0) {
                    at = (at + 1) & (size - 1);
                }
                m_slots[at] = slot;
            }
        }
    }

    const std::vector<Record>& m_records;
    std::vector<Slot> m_slots; ///< a power of two of them
    size_t m_count = 0;
};

} // namespace kit::lefdef
