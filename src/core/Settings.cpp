#include "core/Settings.h"

#include "platform/PreferenceKeys.h"

#include <array>

namespace quorva {
namespace {

/// A setting that is on or off.
struct Switch {
    const PreferenceKey<bool>& key;
    Published<bool, Settings> Settings::*field;
};

namespace keys = preferenceKeys;

constexpr std::array switches{
    Switch{keys::hasCompletedOnboarding, &Settings::hasCompletedOnboarding},
    Switch{keys::showNotifications, &Settings::showNotifications},
    Switch{keys::autoStartMonitoring, &Settings::autoStartMonitoring},
    Switch{keys::calendarMonitorEnabled, &Settings::calendarMonitorEnabled},
    Switch{keys::participantMonitorEnabled, &Settings::participantMonitorEnabled},
};

} // namespace

Settings::Settings(Preferences& preferences_, LoginItem& loginItem_, Log& log_)
    : preferences(preferences_), loginItem(loginItem_), log(log_) {}

void Settings::load() {
    for (const auto& [key, field] : switches)
        this->*field = read(preferences, key);

    myAddresses = read(preferences, keys::myAddresses);
    const auto interval = read(preferences, keys::stampIntervalSeconds);
    stampIntervalSeconds = interval == 0 ? keys::stampIntervalSeconds.byDefault : interval;
    const auto volume = read(preferences, keys::stampVolume);
    stampVolume = volume == 0.0 ? keys::stampVolume.byDefault : volume;

    launchAtLogin = read(preferences, keys::launchAtLogin);
    isLoginItemOn = launchAtLogin; // until it is known
    firstStatus =
        loginItem.fetchStatus(lifetime.guard([this](LoginItemStatus status) { adopt(status); }));

    for (const auto key : keys::removed)
        preferences.remove(key);
}

void Settings::setMyAddresses(std::vector<std::string> addresses) {
    preferences.set(keys::myAddresses.name, addresses);
    myAddresses = std::move(addresses);
}

void Settings::set(Published<bool, Settings> Settings::*setting, bool isOn) {
    if ((this->*setting).get() == isOn)
        return;
    this->*setting = isOn;
    save();
}

bool Settings::isOn(std::string_view key) const {
    for (const auto& row : switches)
        if (row.key.name == key)
            return this->*row.field;
    return false;
}

void Settings::save() {
    for (const auto& [key, field] : switches)
        preferences.set(key.name, (this->*field).get());
    preferences.set(keys::stampIntervalSeconds.name, stampIntervalSeconds.get());
    preferences.set(keys::stampVolume.name, stampVolume.get());
    if (isLoginItemOn != launchAtLogin)
        applyLaunchAtLogin();
}

void Settings::adopt(LoginItemStatus status) {
    isLoginItemOn = status == LoginItemStatus::enabled;
    if (isLoginItemOn == true)
        launchAtLogin = true;
    else if (launchAtLogin && status == LoginItemStatus::notRegistered)
        applyLaunchAtLogin();
}

void Settings::applyLaunchAtLogin() {
    firstStatus.reset(); // it is out of date
    isLoginItemOn = launchAtLogin;
    loginItem.setEnabled(
        launchAtLogin, lifetime.guard([this](const std::optional<std::string>& failure) {
            if (!failure)
                return;
            isLoginItemOn.reset();
            log.error(Printable::format("SMAppService error: {}", *failure), logCategory::appState);
        }));
}

} // namespace quorva
