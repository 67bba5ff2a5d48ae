// The connection to the accessibility bus over which elements are asked for: thousands of calls a
// second at times, which is why it is systemd's client library, that needs a third of the time of
// GLib's. Signals come over another connection.
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
    /// To a message bus, or to one program that answers by itself.
    enum class Kind { bus, peer };

    /// Connects to this address, without waiting for it. `onLost` is called when the connection
    /// could not be made or has ended, never within a call. A peer's address comes from the peer:
    /// nothing but the path of a local socket is taken for one, as addresses can also name programs
    /// to be started and other computers.
    AtspiConnection(const std::string& address, Kind kind, Task onLost);
    ~AtspiConnection();

    AtspiConnection(const AtspiConnection&) = delete;
    AtspiConnection& operator=(const AtspiConnection&) = delete;

    [[nodiscard]] Kind kind() const { return ofKind; }

    /// Null where the connection could not even be begun.
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

/// The body of a message as one tuple; null when it can't be read, or holds what no reply of the
/// accessibility bus does: file descriptors, or containers in containers without end. Of a list of
/// more values than anybody wants there is only the beginning.
[[nodiscard]] GVariantPtr bodyOf(sd_bus_message* message);

} // namespace quorva
