// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <chrono>
#include <thread>

namespace test {

/// Waits for a condition, at most half a minute. @return whether it came
template <typename Condition>
bool comes(const Condition& condition)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

} // namespace test
