// Which process of an application speaks on the accessibility bus: its main process, one that this
// has started, or the proxy that stands between a Flatpak application and the bus.
#pragma once

#include "platform/ProcessTable.h"

#include <filesystem>

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

    /// Whether a process has run for long enough to have joined the bus, had it wanted to.
    [[nodiscard]] bool isSettled(ProcessIdentifier process) const;

private:
    const std::filesystem::path proc;
};

} // namespace quorva
