// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/process/childProcess.h"

#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <filesystem>

#include "kit/base/process/start.h"
#include "kit/base/process/watch.h"
#include "kit/base/systemFault.h"

namespace kit::process {

namespace {

double secondsOf(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

double secondsSince(std::chrono::steady_clock::time_point begin)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

/// Takes the ending of a child, once it has one.
Ending reap(pid_t child)
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
            .cpuSeconds = secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime),
            .peakKib = usage.ru_maxrss};
}

int64_t ownPeakKib()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

bool isPlain(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           std::strchr("_-./,:=+@%", c) != nullptr;
}

std::string quotedForShell(const std::string& word)
{
    if (!word.empty() && std::all_of(word.begin(), word.end(), isPlain)) {
        return word;
    }
    std::string text = "'";
    for (const char c : word) {
        text += c == '\'' ? "'\\''" : std::string(1, c);
    }
    return text + "'";
}

} // namespace

Ending run(const std::vector<std::string>& words, const std::string& outputPath, const std::string& errorPath)
{
    const auto begin = std::chrono::steady_clock::now();
    const pid_t child = start({words, outputPath, errorPath, /*ownGroup=*/false});
    Ending ending = reap(child);
    ending.seconds = secondsSince(begin);
    return ending;
}

Ending run(const std::vector<std::string>& words, const std::string& outputPath, const std::string& errorPath,
           const Limits& limits)
{
    const auto begin = std::chrono::steady_clock::now();
    const pid_t child = start({words, outputPath, errorPath, /*ownGroup=*/true});
    Watch watch(child, limits);
    // The child stays a zombie, its id in use, until nobody can kill it any more.
    siginfo_t info{};
    while (waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT) < 0 && errno == EINTR) {
    }
    const Watch::Reason reason = watch.end();
    kill(-child, SIGKILL); // what it may have left behind
    Ending ending = reap(child);
    ending.seconds = secondsSince(begin);
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
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : " ") + quotedForShell(word);
    }
    return text;
}

} // namespace kit::process
