// What quorva-scan does with its options: one look, or a watch. Main thread only.
#pragma once

#include "detectors/ProcessMonitor.h"
#include "platform/Platform.h"
#include "scan/ScanOptions.h"
#include "scan/ScanReport.h"

#include <functional>
#include <string>
#include <vector>

namespace quorva {

/// Looks once at each source asked for. What cannot be looked at is reported as such.
[[nodiscard]] ScanReport look(const ScanOptions& options, Platform& platform);

/// Keeps looking, and prints a line of JSON for each product that appears or disappears.
class ScanWatch {
public:
    /// Takes one line, without a line feed.
    using Print = std::function<void(const std::string& line)>;

    /// `platform` must outlive the watch. Nothing is looked at yet.
    ScanWatch(const ScanOptions& options, Platform& platform, Print print);

    /// Looks for the first time, and from now on by itself. Returns what came of each source.
    [[nodiscard]] std::vector<SourceReport> start();

private:
    const ScanOptions options;
    MainLoop& loop;
    ProcessMonitor processes;
    const Print print;
};

} // namespace quorva
