// The connection over which elements are read: thousands of calls a second at times. It uses
// systemd's client library because that needs a third of the time of GLib's. Signals come over
// another connection.
// Belongs to the thread, and to the thread-default main context, that made it.
#pragma once

#include "base/Subscription.h"
#include "platform/linux/glib/Handles.h"

#include <systemd/sd-bus.h>

#include <memory>
#include <string>

namespace quorva {

class AtspiConnection {
public:
    /// A message bus, or one program that answers by itself.
    enum class Kind { bus, peer };

    /// Starts to connect to this address, without waiting for it. `onLost` is called when the
    /// connection has failed or ended, never within a call to this object; it may destroy the
    /// object. A peer's address comes from the peer, and addresses can also name programs to be
    /// started and other computers: only the path of a local socket is accepted.
    AtspiConnection(const std::string& address, Kind kind, Task onLost);
    ~AtspiConnection();

    AtspiConnection(const AtspiConnection&) = delete;
    AtspiConnection& operator=(const AtspiConnection&) = delete;

    [[nodiscard]] Kind kind() const { return ofKind; }

    /// Null when the address is not acceptable or connecting could not even be started.
    [[nodiscard]] sd_bus* bus() const { return connection.get(); }

private:
    struct Source;
    static gboolean prepare(GSource* source, gint* timeout);
    static gboolean check(GSource* source);
    static gboolean dispatch(GSource* source, GSourceFunc, gpointer);

    const Kind ofKind;
    std::unique_ptr<sd_bus, Release<sd_bus_close_unref>> connection;
    const Task onLost;
    GSourcePtr source;
};

/// The body of a message as one tuple. Null when it can't be read, or holds what replies on the
/// accessibility bus never do: file descriptors, or containers nested more than 16 deep. A list of
/// more than 100,000 values is cut off.
[[nodiscard]] GVariantPtr bodyOf(sd_bus_message* message);

} // namespace quorva
