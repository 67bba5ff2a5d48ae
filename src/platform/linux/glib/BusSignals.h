// Signals of a D-Bus connection, and owners of its names, as subscriptions.
#pragma once

#include "base/Subscription.h"
#include "platform/linux/glib/Handles.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace quorva {

/// Which signals to follow. A null field matches any value.
struct BusSignalFilter {
    const char* sender = nullptr;
    const char* interface = nullptr;
    const char* member = nullptr;
    const char* path = nullptr;
    const char* firstArgument = nullptr; ///< a string
    GDBusSignalFlags flags = G_DBUS_SIGNAL_FLAGS_NONE;
};

/// One signal, valid during the call that delivers it.
struct BusSignal {
    const char* sender; ///< the unique name; null on a connection without a message bus
    const char* path;
    const char* interface;
    const char* member;
    GVariant* parameters;
};

/// Calls `callback` for each matching signal, in the main context that is the thread's default now,
/// and never after the subscription has ended. The subscription keeps the connection open. Drop it
/// on the thread that made it.
[[nodiscard]] inline Subscription
subscribeToSignals(GDBusConnection* bus, const BusSignalFilter& filter,
                   std::function<void(const BusSignal&)> callback) {
    using Callback = std::function<void(const BusSignal&)>;
    // GDBus may deliver a signal that was already queued when the subscription ended.
    struct Delivery {
        Callback callback;
        bool hasEnded = false;
    };
    auto delivery = std::make_shared<Delivery>(Delivery{std::move(callback)});
    const guint id = g_dbus_connection_signal_subscribe(
        bus, filter.sender, filter.interface, filter.member, filter.path, filter.firstArgument,
        filter.flags,
        [](GDBusConnection*, const gchar* sender, const gchar* path, const gchar* interface,
           const gchar* member, GVariant* parameters, gpointer shared) {
            const auto held = *static_cast<std::shared_ptr<Delivery>*>(shared);
            if (!held->hasEnded)
                held->callback({sender, path, interface, member, parameters});
        },
        new std::shared_ptr<Delivery>(delivery),
        [](gpointer shared) { delete static_cast<std::shared_ptr<Delivery>*>(shared); });
    std::shared_ptr<GDBusConnection> held(G_DBUS_CONNECTION(g_object_ref(bus)), g_object_unref);
    return Subscription([held, id, delivery] {
        delivery->hasEnded = true;
        g_dbus_connection_signal_unsubscribe(held.get(), id);
    });
}

/// Follows the owner of a bus name: calls `onOwner` with the unique name of each owner and
/// `onVanished` when there is none, first with the present state. Either may be empty. Main
/// context, thread and end as above.
[[nodiscard]] inline Subscription
watchBusName(GDBusConnection* bus, const char* name,
             std::function<void(const std::string& owner)> onOwner, Task onVanished) {
    struct Watch {
        std::function<void(const std::string&)> onOwner;
        Task onVanished;
    };
    const guint id = g_bus_watch_name_on_connection(
        bus, name, G_BUS_NAME_WATCHER_FLAGS_NONE,
        [](GDBusConnection*, const gchar*, const gchar* owner, gpointer data) {
            if (const auto& callback = static_cast<Watch*>(data)->onOwner)
                callback(owner);
        },
        [](GDBusConnection*, const gchar*, gpointer data) {
            if (const auto& callback = static_cast<Watch*>(data)->onVanished)
                callback();
        },
        new Watch{std::move(onOwner), std::move(onVanished)},
        [](gpointer data) { delete static_cast<Watch*>(data); });
    return Subscription([id] { g_bus_unwatch_name(id); });
}

} // namespace quorva
