// SPDX-License-Identifier: BSD-3-Clause
// Cutting the tasks of a folder into parts that take about equal time.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kit/tools/sweep/task.h"

namespace kit::sweep {

/// A part of all tasks: the number `index` of `count`, from 1.
struct Shard {
    int32_t index = 1;
    int32_t count = 1;
};

/// The most shards there can be.
inline constexpr int32_t MOST_SHARDS = 1'000'000;

/// Reads a shard as "INDEX/COUNT". Errors: throws Fault if it is none.
Shard parseShard(const std::string& text);

/// The shard of each task: the longest task first, each into the shard with the least work so far.
///
/// It depends on the tasks and the count alone, so that all nodes cut alike. No shard has more than the mean
/// and one task.
///
/// @return [task] number of its shard, from 1
std::vector<int32_t> cut(const std::vector<Task>& tasks, int32_t count);

/// The tasks of a shard, in their order.
std::vector<Task> tasksIn(const std::vector<Task>& tasks, Shard shard);

/// How many shards there must be for each to take about so long; no more than there are tasks.
int64_t shardsOf(const std::vector<Task>& tasks, double seconds);

} // namespace kit::sweep
