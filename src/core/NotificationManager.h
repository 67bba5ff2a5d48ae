// Posts the notifications of detections and handles their buttons.
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"
#include "platform/Log.h"
#include "platform/NotificationCenter.h"

#include <functional>
#include <string>
#include <string_view>

namespace quorva {

namespace notificationAction {
inline constexpr std::string_view object = "OBJECT_ACTION";
inline constexpr std::string_view dismiss = "DISMISS_ACTION";
} // namespace notificationAction

/// Main thread only.
class NotificationManager {
public:
    /// Registers the categories of all kinds of findings. The services must outlive the manager.
    NotificationManager(MainLoop& loop, NotificationCenter& center, Log& log);

    /// Called as a task of its own when the user chooses to object. Gets the notification's
    /// identifier. May be empty.
    std::function<void(const std::string& identifier)> onObjectAction;

    /// Asks for permission to post, unless that was asked before. A failure is logged.
    void requestAuthorizationIfNeeded();

    /// Shows a notification and replaces an earlier one with the same identifier.
    void post(NotificationRequest request);

private:
    void registerCategories();
    void handle(const NotificationResponse& response);

    MainLoop& loop;
    NotificationCenter& center;
    Log& log;
    Subscription responses;
    Lifetime lifetime; // last: goes first
};

} // namespace quorva
