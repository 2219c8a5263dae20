// SPDX-License-Identifier: BSD-3-Clause
#include "kit/process/childProcess.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>

#include "kit/fault.h"

namespace kit::process {

namespace {

/// Which files stand for a program's standard streams.
class Streams {
public:
    Streams(const std::string& outputPath, const std::string& errorPath)
    {
        constexpr int FLAGS = O_WRONLY | O_CREAT | O_TRUNC;
        constexpr mode_t MODE = 0666;
        posix_spawn_file_actions_init(&m_actions);
        posix_spawn_file_actions_addopen(&m_actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&m_actions, STDOUT_FILENO, outputPath.c_str(), FLAGS, MODE);
        if (errorPath == outputPath) {
            posix_spawn_file_actions_adddup2(&m_actions, STDOUT_FILENO, STDERR_FILENO);
        } else {
            posix_spawn_file_actions_addopen(&m_actions, STDERR_FILENO, errorPath.c_str(), FLAGS, MODE);
        }
    }
    ~Streams() { posix_spawn_file_actions_destroy(&m_actions); }
    Streams(const Streams&) = delete;
    Streams& operator=(const Streams&) = delete;

    const posix_spawn_file_actions_t* actions() const { return &m_actions; }

private:
    posix_spawn_file_actions_t m_actions;
};

double secondsOf(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

/// Waits for a child to end.
Ending wait(pid_t child)
{
    int status = 0;
    rusage usage{};
    while (wait4(child, &status, 0, &usage) < 0 && errno == EINTR) {
    }
    return {.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1,
            .signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0,
            .cpuSeconds = secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime),
            .peakKib = usage.ru_maxrss};
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
    std::vector<std::string> copies = words;
    std::vector<char*> argv;
    for (std::string& word : copies) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    const Streams streams(outputPath, errorPath);
    const auto begin = std::chrono::steady_clock::now();
    pid_t child = 0;
    const int error =
        posix_spawn(&child, words.front().c_str(), streams.actions(), nullptr, argv.data(), environ);
    if (error != 0) {
        throw Fault("cannot run " + words.front() + ": " + std::strerror(error));
    }
    Ending ending = wait(child);
    ending.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
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
