// Matches processes on the accessibility bus with applications. The one on the bus is the main
// process, one that this has started, or the proxy between a Flatpak application and the bus.
#pragma once

#include "platform/ProcessTable.h"

#include <filesystem>
#include <string>
#include <vector>

namespace quorva {

/// Callable from any thread; reads /proc.
class AtspiProcesses {
public:
    explicit AtspiProcesses(std::filesystem::path proc = "/proc");

    /// Whether a process on the bus speaks for the application with this main process.
    [[nodiscard]] bool speaksFor(ProcessIdentifier onBus, ProcessIdentifier main) const;

    /// Whether two processes run the same program, as two instances of a browser do. Never for
    /// interpreters, which run many programs.
    [[nodiscard]] bool runTheSame(ProcessIdentifier one, ProcessIdentifier other) const;

    /// The main processes of all instances of the program that `main` runs, itself included; only
    /// `main` for interpreters. Instances without windows are left out: those that the program's
    /// options start as a part of another one, or headless.
    [[nodiscard]] std::vector<ProcessIdentifier> instancesOf(ProcessIdentifier main) const;

    /// Whether a process has run for so long (15 seconds) that it would have joined the bus by now.
    /// True also when it has gone.
    [[nodiscard]] bool isSettled(ProcessIdentifier process) const;

private:
    [[nodiscard]] std::string programOf(ProcessIdentifier process) const;
    [[nodiscard]] ProcessIdentifier parentOf(ProcessIdentifier process) const;
    [[nodiscard]] bool mayHaveWindows(ProcessIdentifier process) const;

    const std::filesystem::path proc;
};

} // namespace quorva
