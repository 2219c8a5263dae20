// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/sweep/shard.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <numeric>
#include <queue>

#include "kit/base/fault.h"
#include "kit/base/text/text.h"

namespace kit::sweep {

namespace {

/// Work in whole microseconds: sums of these are the same in any order.
int64_t workOf(const Task& task)
{
    constexpr double MOST = 1e12; // 11 days, and a million of them still fit
    return static_cast<int64_t>(std::min(task.seconds * 1e6, MOST));
}

/// A shard while it is filled.
struct Load {
    int64_t work;
    int32_t shard;

    /// Whether the other is the one to fill.
    bool operator<(const Load& other) const
    {
        return work != other.work ? work > other.work : shard > other.shard;
    }
};

} // namespace

Shard parseShard(const std::string& text)
{
    const size_t slash = text.find('/');
    const auto numberIn = [](const std::string& part) {
        const bool digits = !part.empty() && part.find_first_not_of("0123456789") == std::string::npos;
        const Integer number = parseInteger(part);
        return digits && number.sound ? number.value : 0;
    };
    if (slash != std::string::npos) {
        const Shard shard{numberIn(text.substr(0, slash)), numberIn(text.substr(slash + 1))};
        if (shard.index >= 1 && shard.index <= shard.count && shard.count <= MOST_SHARDS) {
            return shard;
        }
    }
    throw Fault("--shard is " + inQuotes(text) + ", not I/N with I from 1 to N, and N up to " +
                std::to_string(MOST_SHARDS));
}

std::vector<int32_t> cut(const std::vector<Task>& tasks, int32_t count)
{
    assert(count >= 1);
    std::vector<size_t> order(tasks.size());
    std::iota(order.begin(), order.end(), size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&](size_t a, size_t b) { return workOf(tasks[a]) > workOf(tasks[b]); });
    std::priority_queue<Load> loads;
    for (int32_t shard = 1; shard <= count; ++shard) {
        loads.push({0, shard});
    }
    std::vector<int32_t> shards(tasks.size());
    for (const size_t task : order) {
        const Load least = loads.top();
        loads.pop();
        shards[task] = least.shard;
        loads.push({least.work + workOf(tasks[task]), least.shard});
    }
    return shards;
}

std::vector<Task> tasksIn(const std::vector<Task>& tasks, Shard shard)
{
    const std::vector<int32_t> shards = cut(tasks, shard.count);
    std::vector<Task> chosen;
    for (size_t i = 0; i < tasks.size(); ++i) {
        if (shards[i] == shard.index) {
            chosen.push_back(tasks[i]);
        }
    }
    return chosen;
}

int64_t shardsOf(const std::vector<Task>& tasks, double seconds)
{
    assert(seconds > 0);
    const double shards = std::ceil(secondsOf(tasks) / seconds);
    return static_cast<int64_t>(std::clamp(shards, 1.0, std::max(1.0, static_cast<double>(tasks.size()))));
}

} // namespace kit::sweep
