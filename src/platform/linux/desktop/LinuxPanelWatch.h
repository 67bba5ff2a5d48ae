// Panels that take icons: those that own org.kde.StatusNotifierWatcher on the session bus, and on
// X11 those that own the selection _NET_SYSTEM_TRAY_Sn (the System Tray Protocol).
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"
#include "platform/PanelWatch.h"
#include "platform/linux/glib/Handles.h"

namespace quorva {

class LinuxPanelWatch final : public PanelWatch {
public:
    /// `bus` is the session bus, or null. The loop must outlive the watch. The X server is asked
    /// over a connection of its own, now and every 15 seconds while there is no panel.
    LinuxPanelWatch(MainLoop& loop, GObjectPtr<GDBusConnection> bus);
    ~LinuxPanelWatch() override;

    LinuxPanelWatch(const LinuxPanelWatch&) = delete;
    LinuxPanelWatch& operator=(const LinuxPanelWatch&) = delete;

    /// Whether there is a display to show anything on: an X server that takes the connection, or a
    /// Wayland session.
    [[nodiscard]] static bool hasDisplay();

    [[nodiscard]] bool hasPanel() const override { return hasWatcher || hasManager; }
    [[nodiscard]] Subscription onChange(Task callback) override {
        return changes.add(std::move(callback));
    }

private:
    void takeWatcher(bool isThere);
    void lookForManager();

    MainLoop& loop;
    const GObjectPtr<GDBusConnection> bus;
    guint watch = 0;
    bool hasWatcher = false;
    bool hasManager = false;
    Timer managerTimer;
    CallbackList<> changes;
    Lifetime lifetime; // last: goes first
};

} // namespace quorva
