// What the user can set, kept in the preferences from one run to the next.
#pragma once

#include "base/Published.h"
#include "platform/Log.h"
#include "platform/LoginItem.h"
#include "platform/Preferences.h"

#include <cstdint>

namespace quorva {

/// Main thread only. A value that is missing, or of another type, reads as its default.
class Settings {
public:
    /// The services must outlive the settings. Nothing is read yet.
    Settings(Preferences& preferences, LoginItem& loginItem, Log& log);

    Published<bool> hasCompletedOnboarding{false};
    Published<std::int64_t> stampIntervalSeconds{120}; ///< kept for earlier versions; unused
    Published<double> stampVolume{0.5};                ///< kept for earlier versions; unused
    Published<bool> launchAtLogin{false};              ///< kept by the login item itself
    Published<bool> showNotifications{true};
    Published<bool> autoStartMonitoring{true};
    Published<bool> calendarMonitorEnabled{true};
    Published<bool> participantMonitorEnabled{true};

    /// Reads all settings, and removes the keys of earlier versions that have no use any more. The
    /// login item, when it is there, has the last word on whether the program starts at login.
    void load();

    /// Stores all settings, and registers or unregisters the login item.
    void save();

    /// Registers or unregisters the login item, as `launchAtLogin` says. A failure is logged.
    void applyLaunchAtLogin();

private:
    Preferences& preferences;
    LoginItem& loginItem;
    Log& log;
};

} // namespace quorva
