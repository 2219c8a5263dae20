// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string_view>
#include <unordered_map>

namespace kit::placer {

/// Index of the last record of each name; the records must outlive it, and keep their place.
using NameIndex = std::unordered_map<std::string_view, int32_t>;

/// The index of some named records.
template <typename Records>
NameIndex indexNames(const Records& records)
{
    NameIndex index;
    index.reserve(records.size());
    int32_t next = 0;
    for (const auto& record : records) {
        index[record.name] = next++;
    }
    return index;
}

/// Index of a record by its name, -1 if there is none.
inline int32_t findName(const NameIndex& index, std::string_view name)
{
    const auto at = index.find(name);
    return at != index.end() ? at->second : -1;
}

} // namespace kit::placer
