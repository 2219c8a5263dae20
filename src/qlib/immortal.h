// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <deque>
#include <utility>

namespace vireloce {

/// Makes a record that lives until the process ends.
///
/// For small records that many others point to and that no one owner could release: cell rectangles, macros.
///
/// @return the record, never nullptr, never to be deleted
template <class T, class... Args>
T* makeImmortal(Args&&... args)
{
    static std::deque<T> s_pool; // a deque never moves its elements
    return &s_pool.emplace_back(std::forward<Args>(args)...);
}

} // namespace vireloce
