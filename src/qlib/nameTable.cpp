// SPDX-License-Identifier: BSD-3-Clause
#include "qlib/nameTable.h"

namespace vireloce {

namespace {

uint32_t checkOf(uint64_t hash)
{
    return static_cast<uint32_t>(hash);
}

} // namespace

size_t NameTable::slotOf(std::string_view name, uint64_t hash) const
{
    size_t slot = firstSlot(hash);
    while (m_slots[slot].name != nullptr &&
           (m_slots[slot].check != checkOf(hash) || *m_slots[slot].name != name)) {
        slot = slot + 1 < m_slots.size() ? slot + 1 : 0;
    }
    return slot;
}

void NameTable::insert(const std::string& name, int32_t number)
{
    const uint64_t hash = hashOf(name);
    Slot& slot = m_slots[slotOf(name, hash)];
    if (slot.name == nullptr && number >= 0) {
        slot = {&name, checkOf(hash), number};
    }
}

int32_t NameTable::find(std::string_view name, uint64_t hash) const
{
    return m_slots[slotOf(name, hash)].number;
}

} // namespace vireloce
