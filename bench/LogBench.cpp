// The cost of one log call for its caller, relative to an asynchronous spdlog logger that writes
// the same lines. A burst of calls is timed; the benchmark waits for the writes without timing
// them, so that neither a full queue nor dropped messages are measured.
#include "Measuring.h"
#include "log/QuorvaLog.h"
#include "platform/linux/glib/GLibMainLoop.h"
#include "platform/linux/storage/JournalLog.h"
#include "platform/linux/storage/LinuxFileSystem.h"
#include "support/TemporaryFolder.h"

#include <fmt/format.h>
#include <spdlog/async.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/rotating_file_sink.h>

#include <cstdio>
#include <memory>
#include <thread>

namespace quorva::bench {
namespace {

constexpr int rounds = 200;
constexpr int burst = 1'000;
constexpr std::size_t queueLength = 65'536;
constexpr double callBound = 2.0; // µs
constexpr char message[] = "Scanned 312 processes and 14 applications: 2 products found";

/// Writes to the system's log and to the log file, as the programs do.
class QuorvaBurst {
public:
    explicit QuorvaBurst(const std::filesystem::path& folder) {
        log.bootstrap(std::make_shared<FileLogMirror>(
            std::make_shared<LinuxFileSystem>(), loop.now(), folder, BuildInfo{},
            [](std::string_view failure) { fmt::print(stderr, "{}\n", failure); }));
        log.flush();
    }

    double run() {
        const auto seconds = secondsOf([&] {
            for (int i = 0; i < burst; ++i)
                log.info(message, logCategory::appState);
        });
        log.flush();
        return seconds;
    }

private:
    GLibMainLoop loop;
    QuorvaLog log{loop, std::make_shared<JournalLog>()};
};

/// Writes to a rotating file of the same size and form, without flushing every line.
class SpdlogBurst {
public:
    explicit SpdlogBurst(const std::filesystem::path& folder)
        : pool(std::make_shared<spdlog::details::thread_pool>(queueLength, 1)) {
        logger = std::make_shared<spdlog::async_logger>(
            std::string(logCategory::appState.category),
            std::make_shared<spdlog::sinks::rotating_file_sink_mt>(
                (folder / "spdlog.log").string(), FileLogMirror::maxBytes, FileLogMirror::maxFiles),
            pool, spdlog::async_overflow_policy::block);
        logger->set_formatter(std::make_unique<spdlog::pattern_formatter>(
            "%Y-%m-%dT%H:%M:%S.%eZ [%l] [%n] %v (%s:%#)", spdlog::pattern_time_type::utc));
    }

    double run() {
        const auto seconds = secondsOf([&] {
            for (int i = 0; i < burst; ++i)
                logger->log(spdlog::source_loc{__FILE__, __LINE__, __func__}, spdlog::level::info,
                            spdlog::string_view_t(message));
        });
        logger->flush();
        while (pool->queue_size() > 0)
            std::this_thread::yield();
        return seconds;
    }

private:
    std::shared_ptr<spdlog::details::thread_pool> pool;
    std::shared_ptr<spdlog::async_logger> logger;
};

void logCall(benchmark::State& state, Summary& summary) {
    const TemporaryFolder folder;
    QuorvaBurst quorva(folder.path);
    SpdlogBurst spdlog(folder.path);
    const auto compared = compare(
        state, [&] { return spdlog.run(); }, [&] { return quorva.run(); });
    const auto microseconds = [](double seconds) { return seconds * 1e6 / burst; };
    state.counters["ratio"] = compared.ratio;
    summary.add("log call, QuorvaLog", microseconds(compared.candidate), "us", callBound);
    summary.add("log call, spdlog asynchronous", microseconds(compared.reference), "us");
    summary.add("log call, QuorvaLog / spdlog", compared.ratio, "x");
}

} // namespace

void registerLogBenchmarks(Summary& summary) {
    benchmark::RegisterBenchmark("logBurst",
                                 [&summary](benchmark::State& state) { logCall(state, summary); })
        ->Iterations(rounds)
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond);
}

} // namespace quorva::bench
