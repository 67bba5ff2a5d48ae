// The desktop's notifications: short messages with buttons, shown by another program.
#pragma once

#include "base/Subscription.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quorva {

/// A button of a notification.
struct NotificationAction {
    std::string identifier;
    std::string title;

    bool operator==(const NotificationAction&) const = default;
};

/// A kind of notification, with its buttons in their order.
struct NotificationCategory {
    std::string identifier;
    std::vector<NotificationAction> actions;

    bool operator==(const NotificationCategory&) const = default;
};

/// How prominently to show a notification (the urgency levels of the Desktop Notifications
/// Specification).
enum class NotificationUrgency { low, normal, critical };

/// A notification to be shown. Texts are plain UTF-8 of any length, without markup.
struct NotificationRequest {
    std::string identifier; ///< a later request with the same one replaces this notification
    std::string title;
    std::string body;
    bool hasSound = false;
    NotificationUrgency urgency = NotificationUrgency::normal;
    std::string categoryIdentifier; ///< empty: no buttons

    bool operator==(const NotificationRequest&) const = default;
};

/// Reports that the user has pressed a button.
struct NotificationResponse {
    std::string actionIdentifier;
    std::string requestIdentifier;

    bool operator==(const NotificationResponse&) const = default;
};

enum class NotificationAuthorization { notDetermined, denied, authorized };

/// The program that shows the notifications.
struct NotificationService {
    enum class State {
        unknown, ///< not known yet
        absent,  ///< there is none
        silent,  ///< there should be one, but it does not answer
        present,
    };
    State state = State::unknown;
    bool hasActions = false; ///< whether it shows buttons; false unless present

    bool operator==(const NotificationService&) const = default;
};

/// Main thread only. No operation waits for another program. Callbacks run on the main loop, and
/// none is called once its subscription has been dropped.
class NotificationCenter {
public:
    virtual ~NotificationCenter() = default;

    /// Sets the categories, in place of any set before. They apply to requests shown from then on.
    virtual void setCategories(std::vector<NotificationCategory> categories) = 0;

    /// Calls `done` once, on the main loop or within this call, when it is known whether
    /// notifications may be posted: authorized while the service is present, notDetermined
    /// otherwise.
    virtual void fetchAuthorization(std::function<void(NotificationAuthorization)> done) = 0;

    /// Asks for permission to post; calls `done` once, as above, with nothing on success, or else
    /// with the reason for the log.
    virtual void requestAuthorization(std::function<void(std::optional<std::string>)> done) = 0;

    /// Shows a notification, in place of any with the same identifier. While there is no service it
    /// waits, for as long as it is news; a newer one with its identifier replaces it, and
    /// `removeDelivered` drops it.
    virtual void post(NotificationRequest request) = 0;

    /// Takes away the notification with this identifier, if there is one.
    virtual void removeDelivered(const std::string& identifier) = 0;

    /// Calls `callback` after the user has pressed a button of a notification that this object has
    /// posted, even if the service has restarted since.
    [[nodiscard]] virtual Subscription
    onResponse(std::function<void(const NotificationResponse&)> callback) = 0;

    /// The state of the service, as far as it is known.
    [[nodiscard]] virtual NotificationService service() const = 0;

    /// Calls `callback` after each change of `service()`.
    [[nodiscard]] virtual Subscription onServiceChange(Task callback) = 0;
};

} // namespace quorva
