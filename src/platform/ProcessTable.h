// All processes of this computer, as far as the user may see them.
#pragma once

#include "base/Subscription.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quorva {

using ProcessIdentifier = std::int32_t;

/// What looking at one process's executable came to.
struct Executable {
    enum class Status {
        read,   ///< `path` holds it
        none,   ///< there is none: a kernel thread, a process that has ended
        denied, ///< there is one, but it could not be read: another user's, a protected process
    };
    Status status = Status::none;
    std::string path; ///< valid UTF-8, replacement characters where it was not
};

/// The processes do not change within one turn of the main loop: all who ask in that turn are told
/// of the same moment. Main thread only; no operation waits for another process.
class ProcessTable {
public:
    virtual ~ProcessTable() = default;

    /// The identifiers of all processes, in ascending order. Nothing when they could not be listed.
    [[nodiscard]] virtual std::optional<std::vector<ProcessIdentifier>> processIdentifiers() = 0;

    /// The program that a listed process runs: the path of its executable or, where that is a
    /// general interpreter, of the script it was given. Status `none` for an unlisted identifier.
    [[nodiscard]] virtual Executable executable(ProcessIdentifier process) = 0;

    /// Calls `callback` once on the main loop when the process has ended. An empty subscription,
    /// and no call, when the system cannot tell or the process has ended already.
    [[nodiscard]] virtual Subscription onExit(ProcessIdentifier process, Task callback) = 0;
};

} // namespace quorva
