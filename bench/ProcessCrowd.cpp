#include "ProcessCrowd.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace quorva::bench {
namespace {

constexpr std::array names{"indexer",    "session-helper",  "sync-daemon", "Web Content",
                           "media-keys", "update-notifier", "portal",      "worker"};

[[noreturn]] void throwLastError(const char* what) {
    throw std::system_error(errno, std::system_category(), what);
}

/// Runs in the child: executes `program`, or stays a fork of the parent if there is none.
[[noreturn]] void live(pid_t parent, const char* program, int started) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent)
        ::_exit(1);
    if (program)
        ::execl(program, program, "infinity", nullptr); // closes `started`
    else
        ::close(started);
    while (!program)
        ::pause();
    ::_exit(1);
}

} // namespace

ProcessCrowd::ProcessCrowd(std::size_t count) {
    for (const auto* const name : names)
        std::filesystem::copy_file("/bin/sleep", programs.path / name);
    try {
        start(count);
    } catch (...) {
        end();
        throw;
    }
}

ProcessCrowd::~ProcessCrowd() {
    end();
}

/// Every child holds the write end of the pipe until it has executed its program; when the read end
/// reaches its end, all of them have.
void ProcessCrowd::start(std::size_t count) {
    std::array<int, 2> pipe{};
    if (::pipe2(pipe.data(), O_CLOEXEC) != 0)
        throwLastError("pipe2");
    const pid_t parent = ::getpid();
    int error = 0;
    while (processes.size() < count && error == 0) {
        const auto number = processes.size();
        const auto program = (programs.path / names[number / 2 % names.size()]).string();
        const pid_t child = ::fork();
        if (child == 0)
            live(parent, number % 2 == 0 ? program.c_str() : nullptr, pipe[1]);
        if (child > 0)
            processes.push_back(child);
        else
            error = errno;
    }
    ::close(pipe[1]);
    char none = 0;
    while (::read(pipe[0], &none, 1) < 0 && errno == EINTR) {
    }
    ::close(pipe[0]);
    if (error != 0)
        throw std::system_error(error, std::system_category(), "fork");
    if (::waitpid(-1, nullptr, WNOHANG) != 0)
        throw std::system_error(ECHILD, std::system_category(), "a process of the crowd ended");
}

void ProcessCrowd::end() {
    for (const pid_t process : processes)
        ::kill(process, SIGKILL);
    for (const pid_t process : processes)
        ::waitpid(process, nullptr, 0);
    processes.clear();
}

} // namespace quorva::bench
