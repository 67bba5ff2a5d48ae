// The notifications of the desktop, shown by the program that owns the name
// org.freedesktop.Notifications on the session bus.
#pragma once

#include "platform/linux/notifications/NotificationQueue.h"
#include "platform/linux/notifications/NotificationServer.h"
#include "platform/linux/notifications/PostedNotifications.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quorva {

/// Follows the Desktop Notifications Specification 1.2. Main thread only.
///
/// The server (see NotificationServer) has one call at a time, and everything else waits here. So a
/// server that hangs gets nothing twice, and nothing piles up with it.
///
/// The key of a button says by itself what a press of it means (see PostedNotifications). Signals
/// from anyone but the name's present owner are ignored.
class DBusNotificationCenter final : public NotificationCenter {
public:
    struct Limits {
        Seconds answer{5};       ///< how long a server may take before it is called silent
        Seconds newsworthy{300}; ///< how long a request may wait for a server
    };

    /// `bus` is the session bus, or null where there is none: then nobody shows notifications, and
    /// requests are dropped as they grow old. `loop` and `log` must outlive this object.
    DBusNotificationCenter(MainLoop& loop, Log& log, GObjectPtr<GDBusConnection> bus,
                           Limits limits);
    DBusNotificationCenter(MainLoop& loop, Log& log, GObjectPtr<GDBusConnection> bus);

    void setCategories(std::vector<NotificationCategory> categories) override;
    void fetchAuthorization(std::function<void(NotificationAuthorization)> done) override;
    void requestAuthorization(std::function<void(std::optional<std::string>)> done) override;
    void post(NotificationRequest request) override;
    void removeDelivered(const std::string& identifier) override;
    [[nodiscard]] Subscription
    onResponse(std::function<void(const NotificationResponse&)> callback) override;
    [[nodiscard]] NotificationService service() const override { return server.service(); }
    [[nodiscard]] Subscription onServiceChange(Task callback) override;

private:
    using State = NotificationService::State;

    void sendNext();
    void send(NotificationQueue::Entry entry);
    void show(const NotificationQueue::Entry& entry);
    void close(std::uint32_t number);
    void handleShown(GVariant* reply, const GError* failure);
    void handleServerGone();
    [[nodiscard]] std::vector<notifications::Button> buttonsOf(const NotificationRequest& request);

    void handleSignal(const BusSignal& signal);
    void handlePress(const std::string& key);

    MainLoop& loop;
    Log& log;
    std::vector<NotificationCategory> categories;
    PostedNotifications posted;
    NotificationQueue queue;
    std::optional<NotificationQueue::Entry> inFlight; ///< what the server's present call is about
    bool hasLoggedStranger = false;
    CallbackList<const NotificationResponse&> responses;
    CallbackList<> serviceChanges;
    NotificationServer server; // last: it calls back while it lives
};

} // namespace quorva
