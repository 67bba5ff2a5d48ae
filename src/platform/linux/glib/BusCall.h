// Asynchronous method calls over D-Bus.
#pragma once

#include "platform/linux/glib/AsyncCall.h"
#include "platform/linux/glib/Handles.h"
#include "platform/linux/glib/MainContext.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace quorva {

/// One method call. `parameters` may be floating, or null for none.
struct BusCall {
    const char* destination;
    const char* path;
    const char* interface;
    const char* method;
    GVariant* parameters = nullptr;
    int timeout = -1; ///< milliseconds; -1 for the usual 25 seconds, G_MAXINT for none
    GDBusCallFlags flags = G_DBUS_CALL_FLAGS_NO_AUTO_START;
    GCancellable* cancellable = nullptr;
};

/// Gets the parameters of the reply, or the reason why there is none; one of the two is null, and
/// both live as long as the call.
using BusOutcome = std::function<void(GVariant* reply, const GError* failure)>;

/// Gets the parameters of the reply, null after any failure; they live as long as the call.
using BusReply = std::function<void(GVariant* reply)>;

/// Sends the call, and calls `done` once in the thread-default main context, never within this
/// call.
inline void callBusForOutcome(GDBusConnection* bus, const BusCall& call, BusOutcome done) {
    g_dbus_connection_call(
        bus, call.destination, call.path, call.interface, call.method, call.parameters, nullptr,
        call.flags, call.timeout, call.cancellable, asyncCallback,
        asyncData([done = std::move(done)](GObject* source, GAsyncResult* result) {
            GError* error = nullptr;
            const GVariantPtr value(
                g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, &error));
            const GErrorPtr failure(error);
            done(value.get(), failure.get());
        }));
}

/// The same, for callers that do not care why it failed.
inline void callBus(GDBusConnection* bus, const BusCall& call, BusReply done) {
    callBusForOutcome(bus, call,
                      [done = std::move(done)](GVariant* reply, const GError*) { done(reply); });
}

/// Opens a connection to the message bus at `address`. Calls `done` once with the connection, null
/// after any failure, in the thread-default main context, never within this call. Opening fails
/// after five seconds.
inline void openBus(const std::string& address,
                    std::function<void(GObjectPtr<GDBusConnection>&)> done) {
    constexpr guint openingTimeout = 5000; // milliseconds
    const std::shared_ptr<GCancellable> cancellable(g_cancellable_new(), g_object_unref);
    const std::shared_ptr<GSource> timeout(
        contextTimer(openingTimeout, [cancellable] { g_cancellable_cancel(cancellable.get()); }));
    g_dbus_connection_new_for_address(
        address.c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, cancellable.get(), asyncCallback,
        asyncData([timeout, done = std::move(done)](GObject*, GAsyncResult* result) {
            g_source_destroy(timeout.get());
            GError* error = nullptr;
            GObjectPtr<GDBusConnection> bus(
                g_dbus_connection_new_for_address_finish(result, &error));
            const GErrorPtr failure(error);
            done(bus);
        }));
}

} // namespace quorva
