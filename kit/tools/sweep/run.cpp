// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/sweep/run.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <csignal>
#include <exception>
#include <filesystem>
#include <iostream>
#include <map>
#include <mutex>
#include <set>
#include <stop_token>
#include <thread>

#include "kit/base/fault.h"
#include "kit/base/files/readFile.h"
#include "kit/base/text/text.h"
#include "kit/tools/sweep/progress.h"

namespace kit::sweep {

namespace fs = std::filesystem;

namespace {

constexpr int SOME_FAILED = 1;
constexpr int SIGNALLED = 128;

std::atomic<int> s_received = 0; // the handler runs in any thread
static_assert(std::atomic<int>::is_always_lock_free);

void receive(int signal)
{
    s_received = signal;
}

/// Takes SIGINT and SIGTERM while it lives, instead of ending the program. One at a time.
class StopSignals {
public:
    StopSignals()
    {
        s_received = 0;
        struct sigaction action {};
        action.sa_handler = receive;
        sigemptyset(&action.sa_mask);
        action.sa_flags = SA_RESTART;
        sigaction(SIGINT, &action, &m_interrupt);
        sigaction(SIGTERM, &action, &m_terminate);
    }
    ~StopSignals()
    {
        sigaction(SIGINT, &m_interrupt, nullptr);
        sigaction(SIGTERM, &m_terminate, nullptr);
    }
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

    /// The signal that came last, 0 if none did.
    int received() const { return s_received; }

private:
    struct sigaction m_interrupt {};
    struct sigaction m_terminate {};
};

/// A task on its way.
struct Item {
    const Task* task;
    std::string failure; ///< text of the result that is to be replaced, if there is one
};

class Sweep {
public:
    explicit Sweep(const SweepOptions& options)
        : m_options(options), m_folder(options.dir), m_tasks(tasksIn(readTasks(options.dir), options.shard)),
          m_claims(m_folder),
          m_progress(static_cast<int64_t>(m_tasks.size()), secondsOf(m_tasks), options.quiet)
    {
    }

    int run()
    {
        requireNothing();
        m_claims.cleanUp();
        chooseItems();
        checkDesigns();
        int signal = work();
        if (signal == 0 && !m_busy.empty()) { // whoever had them may have ended since
            signal = workOnBusy();
        }
        while (m_options.wait && signal == 0 && !m_busy.empty()) {
            signal = pause();
            if (signal == 0) {
                signal = workOnBusy();
            }
        }
        m_progress.end();
        return signal != 0 ? tellStop(signal) : m_failed || tellBusy() ? SOME_FAILED : 0;
    }

private:
    /// Without `resume`, there must be nothing to go on with.
    void requireNothing()
    {
        if (m_options.resume) {
            return;
        }
        for (const Task& task : m_tasks) {
            if (fs::exists(m_folder.result(task.id))) {
                throw Fault(m_folder.result(task.id) +
                            " exists: --resume leaves out runs that have a result");
            }
        }
        const std::string id = m_claims.abandoned();
        if (!id.empty()) {
            throw Fault("run " + id + " was begun by a process that is no more: --resume makes it again");
        }
    }

    /// What there is to do, the longest first so that no core waits for it in the end.
    void chooseItems()
    {
        for (const Task& task : m_tasks) {
            const std::optional<Result> result = readResult(m_folder, task.id);
            if (result.has_value() && (isDone(result->status) || !m_options.retry)) {
                m_failed = m_failed || !isDone(result->status);
                m_progress.known(result->status, task.seconds);
            } else {
                m_items.push_back({&task, textOfResult(task)});
            }
        }
        std::stable_sort(m_items.begin(), m_items.end(),
                         [](const Item& a, const Item& b) { return a.task->seconds > b.task->seconds; });
    }

    std::string textOfResult(const Task& task) const
    {
        const std::string path = m_folder.result(task.id);
        return fs::exists(path) ? readFile(path) : "";
    }

    /// Results must be those of the designs that were planned with.
    void checkDesigns() const
    {
        std::map<std::pair<std::string, std::string>, std::string> hashes;
        for (const Item& item : m_items) {
            const Task& task = *item.task;
            std::string& hash = hashes[{task.base, task.cellPath}];
            if (hash.empty()) {
                hash = contentOf(task.base, task.cellPath).hash;
            }
            if (hash != task.content) {
                throw Fault("the design " + task.design + " (" + task.base +
                            ") is not what it was when the runs were planned: plan again");
            }
        }
    }

    /// Tries the runs that others had. @return the signal that ended it, 0 if none did
    int workOnBusy()
    {
        m_items = std::move(m_busy);
        m_busy.clear();
        m_next = 0;
        return work();
    }

    /// Gives those who have runs some time. @return the signal that came meanwhile, 0 if none did
    int pause()
    {
        constexpr int STEPS = 10;
        const StopSignals signals;
        for (int i = 0; i < STEPS && signals.received() == 0; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            m_progress.show();
        }
        return signals.received();
    }

    /// Makes the runs. @return the signal that ended it, 0 if none did
    int work()
    {
        const StopSignals signals;
        const auto workers = std::min(m_items.size(), static_cast<size_t>(m_options.jobs));
        m_working = workers;
        std::vector<std::jthread> threads;
        for (size_t i = 0; i < workers; ++i) {
            threads.emplace_back([this] { workSafely(); });
        }
        const int signal = lookAfter(signals);
        threads.clear();
        if (m_fault) {
            std::rethrow_exception(m_fault);
        }
        return signal;
    }

    /// Until the workers have ended: passes signals on, gives signs, shows progress.
    int lookAfter(const StopSignals& signals)
    {
        using Clock = std::chrono::steady_clock;
        constexpr std::chrono::milliseconds INTERVAL{100};
        const auto signInterval = std::chrono::duration<double>(SIGN_SECONDS);
        Clock::time_point lastSign = Clock::now();
        std::unique_lock lock(m_mutex);
        while (m_working > 0) {
            m_ended.wait_for(lock, INTERVAL);
            if (signals.received() != 0) {
                m_stop.request_stop();
            }
            if (Clock::now() - lastSign > signInterval) {
                m_claims.giveSign();
                lastSign = Clock::now();
            }
            m_progress.show();
        }
        return signals.received();
    }

    void workSafely()
    {
        try {
            workOn();
        } catch (...) {
            const std::lock_guard lock(m_mutex);
            m_fault = std::current_exception();
            m_stop.request_stop();
        }
        const std::lock_guard lock(m_mutex);
        --m_working;
        m_ended.notify_all();
    }

    void workOn()
    {
        for (const Item* item = next(); item != nullptr; item = next()) {
            const std::optional<Claim> claim = m_claims.take(item->task->id);
            if (!claim.has_value()) {
                const std::lock_guard lock(m_mutex);
                m_busy.push_back(*item);
                continue;
            }
            try {
                make(*item, *claim);
            } catch (...) {
                m_claims.release(*claim);
                throw;
            }
            m_claims.release(*claim);
        }
    }

    const Item* next()
    {
        const std::lock_guard lock(m_mutex);
        const bool any = m_next < m_items.size() && !m_stop.stop_requested();
        return any ? &m_items[m_next++] : nullptr;
    }

    void make(const Item& item, const Claim& claim)
    {
        // Somebody may have made it between the look at the results and the claim.
        std::optional<Result> result = readResult(m_folder, item.task->id);
        if (!result.has_value() || textOfResult(*item.task) == item.failure) {
            result = runTask(*item.task, m_folder, m_options.setting, m_claims, claim, m_stop.get_token());
        }
        const std::lock_guard lock(m_mutex);
        if (result.has_value()) {
            m_failed = m_failed || !isDone(result->status);
            m_progress.made(result->status, item.task->seconds);
        } else {
            m_busy.push_back(item);
        }
    }

    static int tellStop(int signal)
    {
        std::cerr << "vireloce-kit: stopped by signal " << signal << "; --resume goes on\n";
        return SIGNALLED + signal;
    }

    /// @return whether there are runs that others are making
    bool tellBusy() const
    {
        if (!m_busy.empty() && !m_options.quiet) {
            std::cerr << "vireloce-kit: " << counted(static_cast<int64_t>(m_busy.size()), "run")
                      << " in the hands of other processes\n";
        }
        return !m_busy.empty();
    }

    const SweepOptions& m_options;
    Folder m_folder;
    std::vector<Task> m_tasks; ///< of the shard
    Claims m_claims;
    std::vector<Item> m_items; ///< to be made

    std::mutex m_mutex; ///< guards what follows
    std::condition_variable m_ended;
    Progress m_progress;
    std::vector<Item> m_busy; ///< that others have
    size_t m_next = 0;        ///< index in m_items
    size_t m_working = 0;     ///< workers that have not ended
    bool m_failed = false;
    std::exception_ptr m_fault;
    std::stop_source m_stop;
};

} // namespace

int run(const SweepOptions& options)
{
    return Sweep(options).run();
}

} // namespace kit::sweep
