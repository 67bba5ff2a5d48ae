// The notifications of the desktop, shown by whatever program has the name
// org.freedesktop.Notifications on the session bus.
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"
#include "platform/Log.h"
#include "platform/NotificationCenter.h"
#include "platform/linux/glib/Handles.h"
#include "platform/linux/notifications/NotificationProtocol.h"
#include "platform/linux/notifications/NotificationQueue.h"
#include "platform/linux/notifications/PostedNotifications.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quorva {

/// Follows the Desktop Notifications Specification 1.2. Main thread only.
///
/// One question at a time is left with the server. If its answer takes too long, the server is
/// silent; the question stays with it, everything else waits, and the answer, however late, ends
/// the silence. So a server that hangs gets nothing twice and nothing piles up with it. Where
/// nobody has the name, the bus is asked to start whom it knows of.
///
/// What a button press means is said by the button's own key (see PostedNotifications), and only
/// signals from the name's present owner count.
class DBusNotificationCenter final : public NotificationCenter {
public:
    struct Limits {
        Seconds answer{5};       ///< how long a server may take before it is called silent
        Seconds newsworthy{300}; ///< how long a request may wait for a server
    };

    /// `bus` is the session bus, or null where there is none: then nobody shows notifications, and
    /// what is posted is dropped as it grows old. `loop` and `log` must outlive this object.
    DBusNotificationCenter(MainLoop& loop, Log& log, GObjectPtr<GDBusConnection> bus,
                           Limits limits);
    DBusNotificationCenter(MainLoop& loop, Log& log, GObjectPtr<GDBusConnection> bus);
    ~DBusNotificationCenter() override;

    DBusNotificationCenter(const DBusNotificationCenter&) = delete;
    DBusNotificationCenter& operator=(const DBusNotificationCenter&) = delete;

    void setCategories(std::vector<NotificationCategory> categories) override;
    void fetchAuthorization(std::function<void(NotificationAuthorization)> done) override;
    void requestAuthorization(std::function<void(std::optional<std::string>)> done) override;
    void post(NotificationRequest request) override;
    void removeDelivered(const std::string& identifier) override;
    [[nodiscard]] Subscription
    onResponse(std::function<void(const NotificationResponse&)> callback) override;
    [[nodiscard]] NotificationService service() const override { return present; }
    [[nodiscard]] Subscription onServiceChange(Task callback) override;

private:
    using State = NotificationService::State;

    void startServer();
    void takeOwner(const std::string& newOwner);
    void loseOwner();
    void abandonQuestion();

    void askCapabilities();
    void sendNext();
    void send(NotificationQueue::Entry entry);
    void show(const NotificationQueue::Entry& entry);
    void close(std::uint32_t number);
    void ask(const char* method, GVariant* parameters,
             std::function<void(GVariant*, const GError*)> done);
    void holdBack(const GError& failure);
    [[nodiscard]] std::vector<notifications::Button> buttonsOf(const NotificationRequest& request);

    void receive(const std::string& sender, const std::string& signal, GVariant* parameters);
    void receivePress(const std::string& key);
    void become(State state);

    MainLoop& loop;
    Log& log;
    const GObjectPtr<GDBusConnection> bus;
    const Limits limits;
    guint signals = 0;
    guint nameWatch = 0;

    std::vector<NotificationCategory> categories;
    PostedNotifications posted;
    NotificationQueue queue;

    std::string owner; ///< the unique name of the server; empty: there is none
    notifications::Capabilities capabilities;
    std::uint64_t asked = 0; ///< number of the last question; answers to others do not count
    bool isAsking = false;   ///< a question is with the server
    bool isStarting = false; ///< the bus has been asked to start a server
    std::optional<NotificationQueue::Entry> inFlight; ///< what the question is about
    Timer patience;                                   ///< until the server is called silent
    Timer pause; ///< until a question that failed is asked again
    bool hasLoggedStranger = false;

    NotificationService present;
    CallbackList<const NotificationResponse&> responses;
    CallbackList<> serviceChanges;
    std::vector<Task> waitingForState;
    Lifetime lifetime; // last: tasks that outlive the center do nothing
};

} // namespace quorva
