#include "scan/Scan.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace quorva {
namespace {

SourceReport reportOf(const ProcessCoverage& coverage) {
    if (!coverage.listed)
        return {ScanSource::process, SourceStatus::unavailable,
                "the processes can't be listed: /proc is not mounted or can't be read"};
    auto detail = fmt::format("looked at {} processes", coverage.processes);
    if (coverage.denied > 0)
        detail += fmt::format("; {} of them, of other users or protected, can't be looked at",
                              coverage.denied);
    return {ScanSource::process, SourceStatus::ok, std::move(detail)};
}

std::vector<SourceReport> reportsOf(const ScanOptions& options, const ProcessMonitor& processes) {
    std::vector<SourceReport> reports;
    for (const auto source : options.sources)
        switch (source) {
        case ScanSource::process:
            reports.push_back(reportOf(processes.coverage));
            break;
        case ScanSource::calendar:
            reports.push_back(
                {source, SourceStatus::unavailable, "this version does not read calendars"});
            break;
        case ScanSource::meeting:
            reports.push_back(
                {source, SourceStatus::unavailable, "this version does not read meeting windows"});
            break;
        }
    return reports;
}

} // namespace

ScanReport look(const ScanOptions& options, Platform& platform) {
    ProcessMonitor processes(platform.loop, platform.applications, platform.processTable);
    if (options.asksFor(ScanSource::process))
        processes.scan();
    return {reportsOf(options, processes), processes.detectedBots};
}

ScanWatch::ScanWatch(const ScanOptions& options_, Platform& platform, Print print_)
    : options(options_),
      loop(platform.loop),
      processes(platform.loop, platform.applications, platform.processTable),
      print(std::move(print_)) {
    const auto printEvent = [this](std::string_view event) {
        return [this, event](const DetectedBot& bot) {
            print(watchLine(event, ScanSource::process, describe(bot), loop.now()));
        };
    };
    processes.onBotDetected = printEvent("appeared");
    processes.onBotDisappeared = printEvent("disappeared");
}

std::vector<SourceReport> ScanWatch::start() {
    if (options.asksFor(ScanSource::process))
        processes.startMonitoring();
    return reportsOf(options, processes);
}

} // namespace quorva
