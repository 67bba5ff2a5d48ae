#include "core/Settings.h"

#include <array>
#include <string_view>

namespace quorva {
namespace {

/// A setting that is on or off: a value of another type gives the default.
struct Switch {
    std::string_view key;
    Published<bool> Settings::*field;
    bool byDefault;
};

constexpr std::string_view launchAtLoginKey = "launchAtLogin"; // read for earlier versions
constexpr std::string_view stampIntervalKey = "stampIntervalSeconds";
constexpr std::string_view stampVolumeKey = "stampVolume";
constexpr std::int64_t usualStampInterval = 120;
constexpr double usualStampVolume = 0.5;

constexpr std::array switches{
    Switch{"hasCompletedOnboarding", &Settings::hasCompletedOnboarding, false},
    Switch{"showNotifications", &Settings::showNotifications, true},
    Switch{"autoStartMonitoring", &Settings::autoStartMonitoring, true},
    Switch{"calendarMonitorEnabled", &Settings::calendarMonitorEnabled, true},
    Switch{"participantMonitorEnabled", &Settings::participantMonitorEnabled, true},
};

constexpr std::array<std::string_view, 3> keysWithoutUse{"collectedEmails", "userEmail",
                                                         "onboardingStep"};

} // namespace

Settings::Settings(Preferences& preferences_, LoginItem& loginItem_, Log& log_)
    : preferences(preferences_), loginItem(loginItem_), log(log_) {}

void Settings::load() {
    for (const auto& [key, field, byDefault] : switches)
        this->*field = preferences.read<bool>(key).value.value_or(byDefault);

    const auto interval = preferences.read<std::int64_t>(stampIntervalKey).value.value_or(0);
    stampIntervalSeconds = interval == 0 ? usualStampInterval : interval;
    const auto volume = preferences.read<double>(stampVolumeKey).value.value_or(0.0);
    stampVolume = volume == 0.0 ? usualStampVolume : volume;

    launchAtLogin = preferences.read<bool>(launchAtLoginKey).value.value_or(false);
    const auto status = loginItem.status();
    if (status == LoginItemStatus::enabled)
        launchAtLogin = true;
    else if (launchAtLogin && status == LoginItemStatus::notRegistered)
        applyLaunchAtLogin();

    for (const auto key : keysWithoutUse)
        preferences.remove(key);
}

void Settings::save() {
    for (const auto& [key, field, byDefault] : switches)
        preferences.set(key, (this->*field).get());
    preferences.set(stampIntervalKey, stampIntervalSeconds.get());
    preferences.set(stampVolumeKey, stampVolume.get());
    applyLaunchAtLogin();
}

void Settings::applyLaunchAtLogin() {
    const auto error = launchAtLogin ? loginItem.registerItem() : loginItem.unregisterItem();
    if (error)
        log.error("SMAppService error: " + *error, logCategory::appState);
}

} // namespace quorva
