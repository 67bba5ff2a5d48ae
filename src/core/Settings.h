// The user's settings, stored in the preferences.
#pragma once

#include "base/Lifetime.h"
#include "base/Published.h"
#include "platform/Log.h"
#include "platform/LoginItem.h"
#include "platform/Preferences.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

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

    /// The user's own mail addresses, besides those that the calendar service knows.
    Published<std::vector<std::string>, Settings> myAddresses;

    /// Changes and stores them.
    void setMyAddresses(std::vector<std::string> addresses);

    /// Changes a setting and stores all of them. Nothing when it is so already.
    void set(Published<bool, Settings> Settings::*setting, bool isOn);

    /// Whether the setting kept under this preference key is on; false: there is no such setting.
    [[nodiscard]] bool isOn(std::string_view key) const;

    /// Reads all settings, and removes the keys of earlier versions that have no use any more. The
    /// login item has the last word on whether the program starts at login: `launchAtLogin` follows
    /// when it has answered, unless it was changed before.
    void load();

    /// Stores all settings, and sets the login item if `launchAtLogin` has changed. A failure of
    /// that is logged, and the next save tries again.
    void save();

private:
    void adopt(LoginItemStatus status);
    void applyLaunchAtLogin();

    Preferences& preferences;
    LoginItem& loginItem;
    Log& log;
    std::optional<bool> isLoginItemOn; ///< as found, or as set last; nothing after a failure
    Subscription firstStatus;
    Lifetime lifetime; // last: goes first
};

} // namespace quorva
