// The cost of a scan for products among real processes, relative to the least that any such scan
// must do: list /proc and read the executable link of every process.
#include "Measuring.h"
#include "ProcessCrowd.h"
#include "detectors/ProcessMonitor.h"
#include "platform/linux/glib/GLibMainLoop.h"
#include "platform/linux/processes/DesktopEntries.h"
#include "platform/linux/processes/LinuxApplications.h"
#include "platform/linux/processes/LinuxProcessTable.h"

#include <fmt/format.h>

#include <array>
#include <climits>
#include <cstring>
#include <optional>
#include <unistd.h>

namespace quorva::bench {
namespace {

constexpr int rounds = 200;
constexpr double firstScanBound = 3.0;
constexpr double nextScanBound = 1.5;
constexpr std::size_t boundedCrowd = 500; ///< the size that the bounds are stated for

class NoLog final : public Log {
public:
    void write(LogLevel, std::string_view, QuorvaLogCategory, CallSite) override {}
};

/// The reference. The folder stays open between passes; nothing that is read is kept.
class BarePass {
public:
    /// The number of processes listed.
    std::size_t run() {
        std::size_t listed = 0;
        ::rewinddir(proc.get());
        while (const auto* const entry = ::readdir(proc.get())) {
            if (entry->d_name[0] < '0' || entry->d_name[0] > '9')
                continue;
            ++listed;
            std::array<char, sizeof entry->d_name + 4> path; // NOLINT(*-member-init)
            const auto length = std::strlen(entry->d_name);
            std::memcpy(path.data(), entry->d_name, length);
            std::memcpy(path.data() + length, "/exe", 5);
            benchmark::DoNotOptimize(
                ::readlinkat(::dirfd(proc.get()), path.data(), link.data(), link.size()));
        }
        return listed;
    }

private:
    DirectoryPtr proc{::opendir("/proc")};
    std::array<char, PATH_MAX> link{};
};

/// Everything a scan uses, constructed as in the programs.
struct Scanner {
    Scanner(GLibMainLoop& loop, Log& log)
        : processTable(loop, log),
          entries(loop, log, DesktopEntries::standardPlaces()),
          applications(loop, processTable, entries, ApplicationScopes()),
          monitor(loop, applications, processTable) {}

    LinuxProcessTable processTable;
    DesktopEntries entries;
    LinuxApplications applications;
    ProcessMonitor monitor;
};

/// Ends the turn of the main loop, so that the next scan reads again, by running the posted tasks.
void turnLoop() {
    while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
    }
}

/// Turns the main loop until what is installed has been read.
void waitUntilReady(const Applications& applications) {
    while (!applications.isReady())
        g_main_context_iteration(nullptr, TRUE);
}

/// Reports a scan that has seen too few processes.
void checkCoverage(benchmark::State& state, const ProcessCoverage& seen, std::size_t crowd) {
    if (!seen.listed || seen.processes < crowd)
        state.SkipWithError("the scan did not see all processes");
}

/// Constructs all objects, runs their first scan, and ends the turn.
void firstScan(benchmark::State& state, Summary& summary) {
    const auto count = static_cast<std::size_t>(state.range(0));
    const ProcessCrowd crowd(count);
    GLibMainLoop loop;
    NoLog log;
    BarePass bare;
    std::optional<Scanner> scanner;
    const auto compared = compare(
        state, [&] { return secondsOf([&] { bare.run(); }); },
        [&] {
            scanner.reset();
            return secondsOf([&] {
                scanner.emplace(loop, log);
                waitUntilReady(scanner->applications);
                scanner->monitor.scan();
                turnLoop();
            });
        });
    checkCoverage(state, *scanner->monitor.coverage, count);
    state.counters["ratio"] = compared.ratio;
    summary.add(fmt::format("first scan, {} processes / bare pass", count), compared.ratio, "x",
                firstScanBound);
}

/// A second scan, and the end of the turn.
void nextScan(benchmark::State& state, Summary& summary) {
    const auto count = static_cast<std::size_t>(state.range(0));
    const ProcessCrowd crowd(count);
    GLibMainLoop loop;
    NoLog log;
    BarePass bare;
    Scanner scanner(loop, log);
    waitUntilReady(scanner.applications);
    const auto scan = [&] {
        scanner.monitor.scan();
        turnLoop();
    };
    scan();
    const auto compared = compare(
        state, [&] { return secondsOf([&] { bare.run(); }); }, [&] { return secondsOf(scan); });
    checkCoverage(state, *scanner.monitor.coverage, count);
    const auto perProcess = compared.candidate * 1e6 / static_cast<double>(bare.run());
    state.counters["ratio"] = compared.ratio;
    state.counters["us/process"] = perProcess;
    summary.add(fmt::format("next scan, {} processes / bare pass", count), compared.ratio, "x",
                count == boundedCrowd ? nextScanBound : 0);
    summary.add(fmt::format("next scan, {} processes, each", count), perProcess, "us");
}

} // namespace

void registerScanBenchmarks(Summary& summary) {
    benchmark::RegisterBenchmark("firstScan",
                                 [&summary](benchmark::State& state) { firstScan(state, summary); })
        ->Arg(500)
        ->Iterations(rounds)
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark("nextScan",
                                 [&summary](benchmark::State& state) { nextScan(state, summary); })
        ->Arg(100)
        ->Arg(500)
        ->Arg(1000)
        ->Arg(2000)
        ->Arg(5000)
        ->Iterations(rounds)
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond);
}

} // namespace quorva::bench
