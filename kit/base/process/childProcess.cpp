// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/process/childProcess.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <thread>

#include "kit/base/fault.h"
#include "kit/base/text/escape.h"

namespace kit::process {

namespace {

using Clock = std::chrono::steady_clock;

/// A program that is to be started, as run() has it.
struct Start {
    const std::vector<std::string>& words;
    const std::string& outputPath;
    const std::string& errorPath;
    bool ownGroup; ///< whether it leads a process group of its own
};

double secondsOf(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

/// Takes the ending of a child, once it has one. @param begin  when it was started
Ending reap(pid_t child, Clock::time_point begin)
{
    int status = 0;
    rusage usage{};
    while (wait4(child, &status, 0, &usage) < 0) {
        if (errno != EINTR) {
            throw systemFault("cannot tell how process " + std::to_string(child) + " ended", errno);
        }
    }
    return {.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1,
            .signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0,
            .seconds = std::chrono::duration<double>(Clock::now() - begin).count(),
            .cpuSeconds = secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime),
            .peakKib = usage.ru_maxrss};
}

int64_t ownPeakKib()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

/// What the new process does between fork and exec: calls that are safe there, and no memory is taken.
class NewProcess {
public:
    NewProcess(const Start& program, char* const* argv, pid_t parent, int pipe)
        : m_program(program), m_argv(argv), m_parent(parent), m_pipe(pipe)
    {
    }

    [[noreturn]] void become() const
    {
        if (prepare()) {
            execv(m_argv[0], m_argv);
        }
        const int error = errno;
        [[maybe_unused]] const ssize_t told = write(m_pipe, &error, sizeof error);
        _exit(127);
    }

private:
    bool prepare() const
    {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        std::signal(SIGXFSZ, SIG_DFL); // as another program expects them
        std::signal(SIGPIPE, SIG_DFL);
        if (getppid() != m_parent) { // it ended before that call
            _exit(127);
        }
        return (!m_program.ownGroup || setpgid(0, 0) == 0) && open(STDIN_FILENO, "/dev/null", O_RDONLY) &&
               open(STDOUT_FILENO, m_program.outputPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC) &&
               openErrors();
    }

    bool openErrors() const
    {
        return m_program.errorPath == m_program.outputPath
                   ? dup2(STDOUT_FILENO, STDERR_FILENO) >= 0
                   : open(STDERR_FILENO, m_program.errorPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC);
    }

    /// Opens a file as one of the standard streams.
    static bool open(int stream, const char* path, int flags)
    {
        const int file = ::open(path, flags, 0666);
        if (file < 0 || file == stream) {
            return file == stream;
        }
        return dup2(file, stream) >= 0 && close(file) == 0;
    }

    const Start& m_program;
    char* const* m_argv;
    pid_t m_parent;
    int m_pipe; ///< takes the error if the program cannot be started
};

/// The error with which a new process could not become the program, 0 if it could.
int errorFrom(int pipe)
{
    int error = 0;
    ssize_t size = 0;
    do {
        size = read(pipe, &error, sizeof error);
    } while (size < 0 && errno == EINTR);
    return size == sizeof error ? error : 0;
}

/// Where the program's own parent had it ignore the ends of its children, the system would throw away how
/// they ended.
void keepEndings()
{
    struct sigaction action {};
    sigaction(SIGCHLD, nullptr, &action);
    if (action.sa_handler == SIG_IGN || (action.sa_flags & SA_NOCLDWAIT) != 0) {
        std::signal(SIGCHLD, SIG_DFL);
    }
}

/// Starts a program with nothing to read. The system kills it when the calling thread ends.
///
/// @return its process id
///
/// Errors: throws Fault if it cannot be started.
pid_t start(const Start& program)
{
    keepEndings();
    const std::string what = "cannot run " + program.words.front();
    std::vector<std::string> words = program.words;
    std::vector<char*> argv(words.size() + 1); // the last is null
    std::transform(words.begin(), words.end(), argv.begin(), [](std::string& word) { return word.data(); });
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) { // exec closes it: then all is well
        throw systemFault(what, errno);
    }
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child == 0) {
        NewProcess(program, argv.data(), parent, ends[1]).become();
    }
    int error = child < 0 ? errno : 0;
    close(ends[1]);
    error = child < 0 ? error : errorFrom(ends[0]);
    close(ends[0]);
    if (error != 0) {
        if (child > 0) {
            waitpid(child, nullptr, 0);
        }
        throw systemFault(what, error);
    }
    return child;
}

constexpr std::chrono::milliseconds MEMORY_INTERVAL{10};
constexpr double LONGEST = 1e9; // seconds, 30 years; no overflow in the clock's units

/// Memory that a process has in use, 0 if it is gone.
int64_t residentKib(pid_t process)
{
    std::ifstream file("/proc/" + std::to_string(process) + "/statm");
    int64_t total = 0;
    int64_t resident = 0;
    file >> total >> resident;
    return file ? resident * (sysconf(_SC_PAGESIZE) / 1024) : 0;
}

Clock::time_point deadlineOf(const Limits& limits)
{
    const double seconds = limits.seconds > 0 ? std::min(limits.seconds, LONGEST) : LONGEST;
    return Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
}

/// Looks after a process group while its leader runs, and kills it when a limit is passed.
class Watch {
public:
    /// Why the group was killed.
    enum class Reason { NONE, TIME, MEMORY, STOP };

    /// @param child  leader of the group; must not be reaped before end()
    Watch(pid_t child, const Limits& limits)
        : m_child(child), m_limits(limits), m_deadline(deadlineOf(limits)), m_thread([this] { run(); })
    {
    }

    /// Nobody is killed any more after this. @return whether and why somebody was
    Reason end()
    {
        {
            const std::lock_guard lock(m_mutex);
            m_ended = true;
        }
        m_changed.notify_all();
        m_thread.join();
        return m_reason;
    }

private:
    void run()
    {
        std::unique_lock lock(m_mutex);
        while (!m_ended && m_reason == Reason::NONE) {
            m_changed.wait_until(lock, m_limits.stop, nextLook(), [this] { return m_ended; });
            m_reason = m_ended ? Reason::NONE : reasonToKill();
        }
        if (!m_ended) {
            kill(-m_child, SIGKILL);
            kill(m_child, SIGKILL); // should it not yet have made its group
        }
    }

    Reason reasonToKill() const
    {
        if (m_limits.stop.stop_requested()) {
            return Reason::STOP;
        }
        if (m_limits.memoryKib > 0 && residentKib(m_child) > m_limits.memoryKib) {
            return Reason::MEMORY;
        }
        return Clock::now() >= m_deadline ? Reason::TIME : Reason::NONE;
    }

    Clock::time_point nextLook() const
    {
        return m_limits.memoryKib > 0 ? std::min(m_deadline, Clock::now() + MEMORY_INTERVAL) : m_deadline;
    }

    pid_t m_child;
    const Limits& m_limits;
    Clock::time_point m_deadline;
    std::mutex m_mutex;
    std::condition_variable_any m_changed;
    bool m_ended = false;           ///< guarded by m_mutex
    Reason m_reason = Reason::NONE; ///< guarded by m_mutex
    std::jthread m_thread;          ///< last: it uses the others
};

} // namespace

Ending run(const std::vector<std::string>& words, const std::string& outputPath, const std::string& errorPath)
{
    const Clock::time_point begin = Clock::now();
    const pid_t child = start({words, outputPath, errorPath, /*ownGroup=*/false});
    Ending ending = reap(child, begin);
    return ending;
}

Ending run(const std::vector<std::string>& words, const std::string& outputPath, const std::string& errorPath,
           const Limits& limits)
{
    const Clock::time_point begin = Clock::now();
    const pid_t child = start({words, outputPath, errorPath, /*ownGroup=*/true});
    Watch watch(child, limits);
    // The child stays a zombie, its id in use, until nobody can kill it any more.
    siginfo_t info{};
    while (waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT) < 0 && errno == EINTR) {
    }
    const Watch::Reason reason = watch.end();
    kill(-child, SIGKILL); // what it may have left behind
    Ending ending = reap(child, begin);
    ending.timedOut = reason == Watch::Reason::TIME;
    ending.stopped = reason == Watch::Reason::STOP;
    // A peak begins with what this program has in use, of which the child was a copy until it became the
    // other one.
    const bool peakIsOver =
        limits.memoryKib > 0 && ending.peakKib > std::max<int64_t>(limits.memoryKib, ownPeakKib());
    ending.overMemory = reason == Watch::Reason::MEMORY || peakIsOver;
    return ending;
}

std::string ownPath()
{
    return std::filesystem::read_symlink("/proc/self/exe").string();
}

std::string shellText(const std::vector<std::string>& words)
{
    const auto isPlain = [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) != 0 || std::strchr("_-./,:=+@%", c) != nullptr;
    };
    std::string text;
    for (const std::string& word : words) {
        const bool plain = !word.empty() && std::all_of(word.begin(), word.end(), isPlain);
        text += text.empty() ? "" : " ";
        text += plain ? word : "'" + replaced(word, {{'\'', "'\\''"}}) + "'";
    }
    return text;
}

} // namespace kit::process
