// The user's settings, stored in the preferences.
#pragma once

#include "base/Published.h"
#include "platform/Log.h"
#include "platform/LoginItem.h"
#include "platform/Preferences.h"

#include <cstdint>
#include <string_view>

namespace quorva {

/// Main thread only. A stored value that is missing or of another type reads as its default.
class Settings {
public:
    /// The services must outlive the settings. Nothing is read yet.
    Settings(Preferences& preferences, LoginItem& loginItem, Log& log);

    Published<bool, Settings> hasCompletedOnboarding{false};
    Published<std::int64_t, Settings> stampIntervalSeconds{
        120};                                       ///< kept for earlier versions; unused
    Published<double, Settings> stampVolume{0.5};   ///< kept for earlier versions; unused
    Published<bool, Settings> launchAtLogin{false}; ///< kept by the login item itself
    Published<bool, Settings> showNotifications{true};
    Published<bool, Settings> autoStartMonitoring{true};
    Published<bool, Settings> calendarMonitorEnabled{true};
    Published<bool, Settings> participantMonitorEnabled{true};

    /// Changes a setting and stores all of them. Nothing when it is so already.
    void set(Published<bool, Settings> Settings::*setting, bool isOn);

    /// Whether the setting kept under this preference key is on; false: there is no such setting.
    [[nodiscard]] bool isOn(std::string_view key) const;

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
