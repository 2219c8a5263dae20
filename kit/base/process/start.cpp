// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/process/start.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>

#include "kit/base/fault.h"

namespace kit::process {

namespace {

[[noreturn]] void fail(const Start& program, int error)
{
    throw Fault("cannot run " + program.words.front() + ": " + std::strerror(error));
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

} // namespace

pid_t start(const Start& program)
{
    keepEndings();
    std::vector<std::string> words = program.words;
    std::vector<char*> argv(words.size() + 1); // the last is null
    std::transform(words.begin(), words.end(), argv.begin(), [](std::string& word) { return word.data(); });
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) { // exec closes it: then all is well
        fail(program, errno);
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
        fail(program, error);
    }
    return child;
}

} // namespace kit::process
