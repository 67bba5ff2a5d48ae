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

/// A kind of notification: which buttons it has, in their order.
struct NotificationCategory {
    std::string identifier;
    std::vector<NotificationAction> actions;

    bool operator==(const NotificationCategory&) const = default;
};

/// How much a notification may be in the way (the urgency levels of the Desktop Notifications
/// standard).
enum class NotificationUrgency { low, normal, critical };

/// What is to be shown. Texts are plain UTF-8 of any length and hold no markup.
struct NotificationRequest {
    std::string identifier; ///< a later request with the same one replaces this notification
    std::string title;
    std::string body;
    bool hasSound = false;
    NotificationUrgency urgency = NotificationUrgency::normal;
    std::string categoryIdentifier; ///< empty: no buttons

    bool operator==(const NotificationRequest&) const = default;
};

/// A button that the user has pressed.
struct NotificationResponse {
    std::string actionIdentifier;
    std::string requestIdentifier;

    bool operator==(const NotificationResponse&) const = default;
};

enum class NotificationAuthorization { notDetermined, denied, authorized };

/// What shows the notifications.
struct NotificationService {
    enum class State {
        unknown, ///< being found out
        absent,  ///< nobody shows notifications
        silent,  ///< somebody should, but does not answer
        present,
    };
    State state = State::unknown;
    bool hasActions = false; ///< it shows buttons; false unless present

    bool operator==(const NotificationService&) const = default;
};

/// Main thread only. No operation waits for another program.
class NotificationCenter {
public:
    virtual ~NotificationCenter() = default;

    /// Says which categories there are, in place of all said before.
    virtual void setCategories(std::vector<NotificationCategory> categories) = 0;

    /// Calls `done` once, on the main loop or within this call, with whether notifications may be
    /// posted: authorized when somebody shows them, notDetermined while nobody does.
    virtual void fetchAuthorization(std::function<void(NotificationAuthorization)> done) = 0;

    /// Asks to be allowed to post; calls `done` once, as above, with what went wrong, if anything.
    virtual void requestAuthorization(std::function<void(std::optional<std::string>)> done) = 0;

    /// Shows a notification, in place of the one shown with the same identifier. One that cannot
    /// be shown now is shown when somebody can, unless that takes longer than it would be news.
    virtual void post(NotificationRequest request) = 0;

    /// Takes the notification with this identifier away, if it is shown.
    virtual void removeDelivered(const std::string& identifier) = 0;

    /// Calls `callback` on the main loop after the user has pressed a button of a notification that
    /// this object has posted. A press brings the identifier back also after the service restarted.
    [[nodiscard]] virtual Subscription
    onResponse(std::function<void(const NotificationResponse&)> callback) = 0;

    /// What shows the notifications now, as far as that is known.
    [[nodiscard]] virtual NotificationService service() const = 0;

    /// Calls `callback` on the main loop after that has changed.
    [[nodiscard]] virtual Subscription onServiceChange(Task callback) = 0;
};

} // namespace quorva
