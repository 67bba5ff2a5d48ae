// The applications that run in the user's session. Each has a name and an identifier, and is listed
// once, however many helper processes it has.
#pragma once

#include "platform/ProcessTable.h"

#include <optional>
#include <string>
#include <vector>

namespace quorva {

struct RunningApplication {
    std::optional<std::string> bundleIdentifier; ///< reverse-domain form where the vendor uses one
    std::optional<std::string> localizedName;    ///< in the user's language
    std::optional<std::string> executablePath;
    ProcessIdentifier processIdentifier = 0; ///< of its main process

    bool operator==(const RunningApplication&) const = default;
};

/// Main thread only; no operation waits for another process.
class Applications {
public:
    virtual ~Applications() = default;

    /// The applications that run now, in the order of their process identifiers. They do not change
    /// within one turn of the main loop, and are those of the process table in that turn. Empty
    /// where the processes could not be listed, which the process table tells, and until `isReady`.
    [[nodiscard]] virtual std::vector<RunningApplication> runningApplications() = 0;

    /// Whether applications can be listed yet. Where the descriptions of what is installed have to
    /// be read first, they cannot be until that is done or has taken too long; an empty list then
    /// means "not looked yet". Once ready, always ready.
    [[nodiscard]] virtual bool isReady() const { return true; }

    /// Calls `callback` once on the main loop when that becomes true. An empty subscription, and no
    /// call, when it is true already.
    [[nodiscard]] virtual Subscription onReady(Task callback) {
        (void)callback;
        return {};
    }

    /// The identifier of this program itself.
    [[nodiscard]] virtual std::optional<std::string> ownBundleIdentifier() const = 0;

    /// Calls `callback` on the main loop after an application has started, or ended, where the
    /// system reports that; several close together may come as one call. `onLaunch` calls also when
    /// `isReady` has become true and when something has been installed, which may turn processes
    /// that run already into an application.
    [[nodiscard]] virtual Subscription onLaunch(Task callback) = 0;
    [[nodiscard]] virtual Subscription onQuit(Task callback) = 0;
};

} // namespace quorva
