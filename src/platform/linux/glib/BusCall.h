// Calls over D-Bus that come back as a call.
#pragma once

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

/// Gets the parameters of the reply, or why there is none; both live as long as the call.
using BusOutcome = std::function<void(GVariant* reply, const GError* failure)>;

/// Gets the parameters of the reply, null for any failure; these live as long as the call.
using BusReply = std::function<void(GVariant* reply)>;

/// Sends the call, and calls `done` once in the thread-default main context, never within this
/// call.
inline void callBusForOutcome(GDBusConnection* bus, const BusCall& call, BusOutcome done) {
    g_dbus_connection_call(
        bus, call.destination, call.path, call.interface, call.method, call.parameters, nullptr,
        call.flags, call.timeout, call.cancellable,
        [](GObject* source, GAsyncResult* result, gpointer owned) {
            const std::unique_ptr<BusOutcome> outcome(static_cast<BusOutcome*>(owned));
            GError* error = nullptr;
            const GVariantPtr value(
                g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, &error));
            const GErrorPtr failure(error);
            (*outcome)(value.get(), failure.get());
        },
        new BusOutcome(std::move(done)));
}

/// The same for those to whom all failures are one.
inline void callBus(GDBusConnection* bus, const BusCall& call, BusReply done) {
    callBusForOutcome(bus, call,
                      [done = std::move(done)](GVariant* reply, const GError*) { done(reply); });
}

/// Opens a connection to a message bus, and calls `done` once with it, null for any failure, in the
/// thread-default main context, never within this call. A bus that hangs is given five seconds.
inline void openBus(const std::string& address,
                    std::function<void(GObjectPtr<GDBusConnection>&)> done) {
    constexpr guint longestOpening = 5000; // milliseconds
    struct Opening {
        std::function<void(GObjectPtr<GDBusConnection>&)> done;
        GObjectPtr<GCancellable> cancellable{g_cancellable_new()};
        GSourcePtr limit;
    };
    auto opening = std::make_unique<Opening>();
    opening->done = std::move(done);
    auto* const cancellable = opening->cancellable.get();
    opening->limit =
        contextTimer(longestOpening, [cancellable] { g_cancellable_cancel(cancellable); });
    g_dbus_connection_new_for_address(
        address.c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, cancellable,
        [](GObject*, GAsyncResult* result, gpointer owned) {
            const std::unique_ptr<Opening> ended(static_cast<Opening*>(owned));
            GError* error = nullptr;
            GObjectPtr<GDBusConnection> bus(
                g_dbus_connection_new_for_address_finish(result, &error));
            const GErrorPtr failure(error);
            ended->limit.reset();
            ended->done(bus);
        },
        opening.release());
}

} // namespace quorva
