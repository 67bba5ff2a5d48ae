// Reports when the systemd user manager starts or ends an application's scope or service
// (org.freedesktop.systemd1.Manager: UnitNew, JobRemoved, UnitRemoved).
#pragma once

#include "base/Subscription.h"
#include "platform/linux/glib/Handles.h"

#include <string>

namespace quorva {

/// Main thread only; callbacks come on the main loop. Reports nothing while no user manager is on
/// the bus, and follows one that starts or restarts later. Never waits for it.
class SystemdUnitSignals {
public:
    /// `bus` is the session bus. The callbacks may be called several times for one unit.
    SystemdUnitSignals(GObjectPtr<GDBusConnection> bus, Task onStarted, Task onEnded);

    SystemdUnitSignals(const SystemdUnitSignals&) = delete;
    SystemdUnitSignals& operator=(const SystemdUnitSignals&) = delete;

private:
    void receive(const std::string& signal, GVariant* parameters) const;

    GObjectPtr<GDBusConnection> bus;
    const Task onStarted;
    const Task onEnded;
    Subscription signals;
    Subscription nameWatch;
};

} // namespace quorva
