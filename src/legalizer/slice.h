// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace vireloce {

/// One owner's entries of a list that holds those of all owners, one after the other.
///
/// @param all     [entry]
/// @param begins  [owner + 1] first of its entries
inline std::span<const int32_t> sliceOf(const std::vector<int32_t>& all, const std::vector<int32_t>& begins,
                                        size_t owner)
{
    assert(owner + 1 < begins.size());
    const auto begin = static_cast<size_t>(begins[owner]);
    return std::span(all).subspan(begin, static_cast<size_t>(begins[owner + 1]) - begin);
}

} // namespace vireloce
