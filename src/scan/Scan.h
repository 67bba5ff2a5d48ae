// What quorva-scan does with its options: one look, or a watch. Main thread only.
#pragma once

#include "platform/NoPreferences.h"
#include "platform/Platform.h"
#include "scan/ScanOptions.h"
#include "scan/ScanReport.h"
#include "sources/Sources.h"

#include <functional>
#include <string>
#include <vector>

namespace quorva {

/// One look or one watch at the sources asked for. Nothing is stored. What cannot be looked at is
/// reported as such.
class Scan {
public:
    /// Prints one line, which comes without a line feed.
    using Print = std::function<void(const Printable& line)>;

    /// The platform's services must outlive the scan. Nothing is looked at yet.
    Scan(const ScanOptions& options, Platform& platform);

    /// Looks at each source, and calls `done` once, as a task of the main loop.
    void look(std::function<void(ScanReport)> done);

    /// Keeps looking, and prints a line of JSON for each product that appears or disappears, and
    /// when a source loses sight of something. Calls `done` once, as a task of the main loop, with
    /// what came of the first look at each source.
    void watch(Print print, std::function<void(std::vector<SourceReport>)> done);

private:
    [[nodiscard]] std::vector<Source*> asked() const;
    /// Calls `done` as a task of the main loop when it was called as often as there are sources
    /// asked for.
    [[nodiscard]] Task afterAll(Task done);
    [[nodiscard]] std::vector<SourceReport> reports() const;

    const ScanOptions options;
    MainLoop& loop;
    NoPreferences preferences;
    Sources sources;
    Lifetime lifetime; // last: goes first
};

} // namespace quorva
