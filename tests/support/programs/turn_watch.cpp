// Preloaded into a program that uses GLib's main loop: measures each turn of the main thread. A turn of
// 25 ms or more gets a line in the file $QUORVA_TURNS, with when it ended (CLOCK_MONOTONIC, seconds) and
// how long it took (milliseconds). The stack of one that takes longer than 50 ms is written before.
// Time in which other programs had the processor does not count; time spent waiting for a disk or for
// another program does.
#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <execinfo.h>
#include <fcntl.h>
#include <glib.h>
#include <thread>
#include <unistd.h>

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;
constexpr double worthALine = 25;
constexpr double limit = 50;
constexpr auto grain = std::chrono::milliseconds(5);

std::FILE* report = nullptr;
int schedule = -1; ///< of the main thread: its times on and before a processor
std::atomic<double> began = 0;
std::atomic<bool> wasSeen = false; ///< the present turn's stack was written
double waitedBefore = 0;

double now() {
    return Milliseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/// How long the main thread has waited for a processor so far.
double waited() {
    std::array<char, 128> text{};
    unsigned long long ran = 0;
    unsigned long long delayed = 0;
    if (::pread(schedule, text.data(), text.size() - 1, 0) > 0)
        (void)std::sscanf(text.data(), "%llu %llu", &ran, &delayed);
    return static_cast<double>(delayed) / 1e6;
}

void writeStack(int) {
    std::array<void*, 64> frames{};
    const int depth = ::backtrace(frames.data(), frames.size());
    ::backtrace_symbols_fd(frames.data(), depth, ::fileno(report));
}

/// Looks at the main thread from beside, and has it write its stack when a turn takes too long.
void watch(pthread_t thread) {
    for (;;) {
        std::this_thread::sleep_for(grain);
        const double since = began;
        if (since > 0 && now() - since > limit && !wasSeen.exchange(true))
            ::pthread_kill(thread, SIGUSR2);
    }
}

gint pollBetweenTurns(GPollFD* descriptors, guint count, gint timeout) {
    if (began > 0) {
        const double took = now() - began - (waited() - waitedBefore);
        if (took >= worthALine) {
            std::fprintf(report, "turn %.3f %.1f\n", now() / 1000, took);
            std::fflush(report);
        }
        began = 0;
    }
    const gint ready = g_poll(descriptors, count, timeout);
    waitedBefore = waited();
    wasSeen = false;
    began = now();
    return ready;
}

__attribute__((constructor)) void begin() {
    const char* const path = std::getenv("QUORVA_TURNS");
    if (path == nullptr)
        return;
    ::unsetenv("LD_PRELOAD"); // children are none of its business
    ::unsetenv("QUORVA_TURNS");
    report = std::fopen(path, "a");
    schedule = ::open("/proc/thread-self/schedstat", O_RDONLY | O_CLOEXEC);
    std::array<void*, 1> loaded{};
    ::backtrace(loaded.data(), 1); // what it needs is loaded now, and not within a signal
    std::signal(SIGUSR2, writeStack);
    g_main_context_set_poll_func(nullptr, pollBetweenTurns);
    std::thread(watch, ::pthread_self()).detach();
}

} // namespace
