// Whether this program is started when the user logs in.
#pragma once

#include "base/Subscription.h"

#include <functional>
#include <optional>
#include <string>

namespace quorva {

enum class LoginItemStatus { notRegistered = 0, enabled = 1, requiresApproval = 2, notFound = 3 };

/// Main thread only. Nothing here waits for a disk; answers come on the main loop, never within the
/// call, and none after the login item is gone. Operations take effect in the order of the calls.
class LoginItem {
public:
    virtual ~LoginItem() = default;

    /// Finds out the present status and calls `done` with it once, unless the subscription is
    /// dropped before.
    [[nodiscard]] virtual Subscription fetchStatus(std::function<void(LoginItemStatus)> done) = 0;

    /// Gets nothing on success, else what went wrong, for people.
    using Done = std::function<void(const std::optional<std::string>& failure)>;

    /// Has the program started at login from now on, or no longer, and calls `done` once. Doing it
    /// again is a success.
    virtual void setEnabled(bool isEnabled, Done done) = 0;
};

} // namespace quorva
