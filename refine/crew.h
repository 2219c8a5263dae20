// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace refine {

/// Threads that share the items of a job. The caller is one of them.
class Crew {
public:
    explicit Crew(int32_t size)
    {
        for (int32_t i = 1; i < size; ++i) {
            m_threads.emplace_back([this, i] { work(static_cast<size_t>(i)); });
        }
    }
    ~Crew()
    {
        {
            const std::lock_guard lock(m_mutex);
            m_ending = true;
        }
        m_wake.notify_all();
        for (std::thread& thread : m_threads) {
            thread.join();
        }
    }
    Crew(const Crew&) = delete;
    Crew& operator=(const Crew&) = delete;

    int32_t size() const { return static_cast<int32_t>(m_threads.size()) + 1; }

    /// Calls work(worker, item) for all items, each once, in any order. No call may throw.
    void run(size_t items, const std::function<void(size_t worker, size_t item)>& one)
    {
        if (m_threads.empty() || items < 2) {
            for (size_t i = 0; i < items; ++i) {
                one(0, i);
            }
            return;
        }
        {
            const std::lock_guard lock(m_mutex);
            m_one = &one;
            m_items = items;
            m_next = 0;
            m_busy = m_threads.size();
            ++m_job;
        }
        m_wake.notify_all();
        share(0);
        std::unique_lock lock(m_mutex);
        m_done.wait(lock, [this] { return m_busy == 0; });
    }

private:
    void share(size_t worker)
    {
        for (size_t i = m_next++; i < m_items; i = m_next++) {
            (*m_one)(worker, i);
        }
    }

    void work(size_t worker)
    {
        for (uint64_t seen = 0;;) {
            {
                std::unique_lock lock(m_mutex);
                m_wake.wait(lock, [&] { return m_ending || m_job != seen; });
                if (m_ending) {
                    return;
                }
                seen = m_job;
            }
            share(worker);
            const std::lock_guard lock(m_mutex);
            if (--m_busy == 0) {
                m_done.notify_one();
            }
        }
    }

    std::vector<std::thread> m_threads;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::condition_variable m_done;
    const std::function<void(size_t, size_t)>* m_one = nullptr;
    std::atomic<size_t> m_next = 0;
    size_t m_items = 0;
    size_t m_busy = 0;
    uint64_t m_job = 0;
    bool m_ending = false;
};

} // namespace refine
