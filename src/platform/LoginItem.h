// Whether this program is started when the user logs in.
#pragma once

#include <optional>
#include <string>

namespace quorva {

enum class LoginItemStatus { notRegistered = 0, enabled = 1, requiresApproval = 2, notFound = 3 };

/// Main thread only.
class LoginItem {
public:
    virtual ~LoginItem() = default;

    /// As it is now.
    [[nodiscard]] virtual LoginItemStatus status() const = 0;

    /// Has the program started at login from now on, or no longer. Nothing on success, else what
    /// went wrong. Doing it again is a success.
    [[nodiscard]] virtual std::optional<std::string> registerItem() = 0;
    [[nodiscard]] virtual std::optional<std::string> unregisterItem() = 0;
};

} // namespace quorva
