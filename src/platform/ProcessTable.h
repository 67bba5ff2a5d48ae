// The processes of this computer that the user may see.
#pragma once

#include "base/Subscription.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quorva {

using ProcessIdentifier = std::int32_t;

/// A process's executable, or why there is none.
struct Executable {
    enum class Status {
        read,   ///< `path` holds it
        none,   ///< a kernel thread, or a process that has ended
        denied, ///< it may not be read: another user's process, or a protected one
    };
    Status status = Status::none;
    std::string path; ///< valid UTF-8, with replacement characters for invalid bytes
};

/// A snapshot that is taken once a turn of the main loop: all callers in that turn see the same
/// processes. Main thread only; no operation waits for another process.
class ProcessTable {
public:
    virtual ~ProcessTable() = default;

    /// The identifiers of all processes, in ascending order. Nothing when they could not be listed.
    [[nodiscard]] virtual std::optional<std::vector<ProcessIdentifier>> processIdentifiers() = 0;

    /// The program that a listed process runs: the path of its executable or, where that is a
    /// general interpreter, of the script it was given. Status `none` for an unlisted identifier.
    [[nodiscard]] virtual Executable executable(ProcessIdentifier process) = 0;

    /// Calls `callback` once on the main loop when the process has ended. An empty subscription,
    /// and no call, when the system cannot report that or the process has ended already.
    [[nodiscard]] virtual Subscription onExit(ProcessIdentifier process, Task callback) = 0;
};

} // namespace quorva
