// Watches for panels that show tray icons: the owner of org.kde.StatusNotifierWatcher on the
// session bus, and on X11 the owner of the selection _NET_SYSTEM_TRAY_Sn (System Tray Protocol).
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"
#include "platform/PanelWatch.h"
#include "platform/linux/glib/Handles.h"

namespace quorva {

/// Main thread only. The X server is the one thing that is waited for: it is on this computer, and
/// answers before anything of the desktop runs.
class LinuxPanelWatch final : public PanelWatch {
public:
    /// `bus` is the session bus, or null. The loop must outlive the watch. The X server is asked
    /// over a separate connection, at once and every 15 seconds while there is no panel.
    LinuxPanelWatch(MainLoop& loop, GObjectPtr<GDBusConnection> bus);

    LinuxPanelWatch(const LinuxPanelWatch&) = delete;
    LinuxPanelWatch& operator=(const LinuxPanelWatch&) = delete;

    /// Whether there is a display: an X server that accepts a connection, or a Wayland session.
    [[nodiscard]] static bool hasDisplay();

    [[nodiscard]] bool hasPanel() const override { return hasWatcher || hasManager; }
    [[nodiscard]] Subscription onChange(Task callback) override {
        return changes.add(std::move(callback));
    }

private:
    void setHasWatcher(bool isThere);
    void lookForManager();

    MainLoop& loop;
    const GObjectPtr<GDBusConnection> bus;
    Subscription watch;
    bool hasWatcher = false;
    bool hasManager = false;
    Timer managerTimer;
    CallbackList<> changes;
    Lifetime lifetime; // last: goes first
};

} // namespace quorva
