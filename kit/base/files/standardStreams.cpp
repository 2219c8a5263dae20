// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/files/standardStreams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <iostream>
#include <system_error>

namespace kit {

namespace {

constexpr int LOST_OUTPUT = 2;

} // namespace

void prepareStreams()
{
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) < 0) { // the lowest number that is free is this
            [[maybe_unused]] const int file =
                ::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        }
    }
}

int finishStreams(int status)
{
    std::cout.flush();
    const bool flushed = std::fflush(stdout) == 0;
    if (std::cout && flushed && std::ferror(stdout) == 0) {
        return status;
    }
    // The reason may be long gone: the same again fails for the same reason.
    const int error = write(STDOUT_FILENO, "\n", 1) < 0 ? errno : 0;
    if (error == EPIPE) {
        return status;
    }
    std::cerr << "vireloce-kit: cannot write standard output"
              << (error == 0 ? "" : ": " + std::generic_category().message(error)) << '\n';
    return LOST_OUTPUT;
}

} // namespace kit
