// SPDX-License-Identifier: BSD-3-Clause
#include "mutation/childRun.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "qlib/report.h"

#if defined(__SANITIZE_ADDRESS__)
#define MUTATION_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define MUTATION_ADDRESS_SANITIZER 1
#endif
#endif

namespace mutation {

namespace {

#ifdef MUTATION_ADDRESS_SANITIZER
constexpr bool ADDRESS_SANITIZER = true;
#else
constexpr bool ADDRESS_SANITIZER = false;
#endif

/// Sends a file descriptor of this process into a new file.
void redirect(int descriptor, const std::filesystem::path& path)
{
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (file < 0 || dup2(file, descriptor) < 0) {
        std::perror(path.c_str());
        std::_Exit(EXIT_FAILURE);
    }
    close(file);
}

void limit(int resource, int64_t most)
{
    const rlimit both{static_cast<rlim_t>(most), static_cast<rlim_t>(most)};
    setrlimit(resource, &both);
}

double secondsOf(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

/// What the child does. An exception that leaves it ends the process by a signal.
[[noreturn]] void runBody(const ChildPlace& place, unsigned seconds,
                          const std::function<void()>& body) noexcept
{
    redirect(STDOUT_FILENO, place.report);
    redirect(STDERR_FILENO, place.errors);
    limit(RLIMIT_CORE, 0);
    if (!ADDRESS_SANITIZER) { // which reserves terabytes that it never touches
        limit(RLIMIT_AS, MOST_MEMORY);
    }
    const itimerval cpuLimit{{}, {static_cast<time_t>(seconds), 0}};
    setitimer(ITIMER_PROF, &cpuLimit, nullptr);
    alarm(10 * seconds);
    std::filesystem::current_path(place.folder);
    const vireloce::ReportScope program(nullptr); // whatever a test around it wants
    body();
    std::exit(0); // not _exit(): the leak checker runs on the way out
}

} // namespace

bool hasAddressSanitizer()
{
    return ADDRESS_SANITIZER;
}

bool findsLeaks()
{
    const char* const options = std::getenv("ASAN_OPTIONS");
    return ADDRESS_SANITIZER &&
           (options == nullptr || std::string_view(options).find("detect_leaks=0") == std::string_view::npos);
}

ChildEnd runChild(const ChildPlace& place, unsigned seconds, const std::function<void()>& body)
{
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        runBody(place, seconds, body);
    }
    ChildEnd end;
    rusage usage{};
    if (child < 0 || wait4(child, &end.status, 0, &usage) != child) {
        std::perror("fork");
        std::exit(EXIT_FAILURE);
    }
    end.peakKiB = usage.ru_maxrss;
    end.seconds = secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime);
    return end;
}

} // namespace mutation
