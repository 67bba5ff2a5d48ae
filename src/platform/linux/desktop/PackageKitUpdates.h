// Asks the computer's package service whether it knows of a newer version (PackageKit 1.x,
// interfaces org.freedesktop.PackageKit and org.freedesktop.PackageKit.Transaction).
#pragma once

#include "base/MainLoop.h"
#include "platform/UpdateService.h"
#include "platform/linux/glib/Handles.h"

#include <functional>

namespace quorva {

/// Asks for what the service knows already: it never makes the service use the network. Main thread
/// only.
class PackageKitUpdates final : public UpdateService {
public:
    /// Gets the connection, null after a failure; called once, on the main loop.
    using BusOpened = std::function<void(GObjectPtr<GDBusConnection>&)>;
    using OpenBus = std::function<void(BusOpened)>;

    /// Each check opens the system bus with `openBus`, and fails when it has taken longer than
    /// `timeout` in all. `loop` must outlive this object and its subscriptions.
    PackageKitUpdates(MainLoop& loop, OpenBus openBus, Seconds timeout = Seconds(60));

    /// Opens the system bus of this computer.
    explicit PackageKitUpdates(MainLoop& loop);

    [[nodiscard]] Subscription
    checkForUpdates(std::function<void(const UpdateAnswer&)> done) override;

private:
    class Check;

    MainLoop& loop;
    const OpenBus openBus;
    const Seconds timeout;
};

} // namespace quorva
