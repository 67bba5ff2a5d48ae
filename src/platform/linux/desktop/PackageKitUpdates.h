// Asks the computer's own package service whether it knows of a newer version (PackageKit 1.x,
// interfaces org.freedesktop.PackageKit and org.freedesktop.PackageKit.Transaction).
#pragma once

#include "base/MainLoop.h"
#include "platform/UpdateService.h"
#include "platform/linux/glib/Handles.h"

#include <functional>

namespace quorva {

/// Asks what the service knows already, and never has it ask the network. Main thread only.
class PackageKitUpdates final : public UpdateService {
public:
    /// Hands over a connection, or null, once and on the main loop.
    using TakeBus = std::function<void(GObjectPtr<GDBusConnection>&)>;
    using OpenBus = std::function<void(TakeBus)>;

    /// The system bus is opened with `openBus` each time somebody asks. The service gets `limit` in
    /// all. `loop` must outlive this object and its subscriptions.
    PackageKitUpdates(MainLoop& loop, OpenBus openBus, Seconds limit = Seconds(60));

    /// Over the system bus of this computer.
    explicit PackageKitUpdates(MainLoop& loop);

    [[nodiscard]] Subscription
    checkForUpdates(std::function<void(const UpdateAnswer&)> done) override;

private:
    class Check;

    MainLoop& loop;
    const OpenBus openBus;
    const Seconds limit;
};

} // namespace quorva
