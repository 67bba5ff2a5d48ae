// Every key that the program keeps in the preferences, with its type and its default.
#pragma once

#include "platform/Preferences.h"

#include <array>

namespace quorva {

template <typename T>
struct PreferenceKey {
    std::string_view name;
    T byDefault{};
};

namespace preferenceKeys {

// What the user sets.
inline constexpr PreferenceKey<bool> hasCompletedOnboarding{"hasCompletedOnboarding", false};
inline constexpr PreferenceKey<bool> showNotifications{"showNotifications", true};
inline constexpr PreferenceKey<bool> autoStartMonitoring{"autoStartMonitoring", true};
inline constexpr PreferenceKey<bool> calendarMonitorEnabled{"calendarMonitorEnabled", true};
inline constexpr PreferenceKey<bool> participantMonitorEnabled{"participantMonitorEnabled", true};
inline constexpr PreferenceKey<bool> checksForUpdates{"checksForUpdatesAutomatically", false};
/// Paths of folders with .ics files, besides the usual one. Edited by hand.
inline constexpr PreferenceKey<std::vector<std::string>> calendarFolders{"calendarFolders"};
/// The user's own mail addresses, besides those that the calendar service knows.
inline constexpr PreferenceKey<std::vector<std::string>> myAddresses{"myAddresses"};
/// Signature identifiers and display names of the allowed products.
inline constexpr PreferenceKey<std::vector<std::string>> allowedBotIds{"allowedBotIds"};

// What the program keeps.
/// The raw value of a CalendarAuthorization: the user's consent.
inline constexpr PreferenceKey<std::int64_t> calendarAuthorization{"calendarAuthorization", 0};
/// Hashes of the invitations that were announced, or dismissed.
inline constexpr PreferenceKey<std::vector<std::string>> calendarAlerted{
    "calendarAlertedDetections"};
inline constexpr PreferenceKey<std::vector<std::string>> calendarDismissed{
    "calendarDismissedDetections"};
/// JSON arrays of records. What could not be read of one is kept under KEY.unreadable-DATE, and
/// KEY.unreadable names the newest such copy.
inline constexpr PreferenceKey<PreferenceData> detectionLog{"detectionLog"};
inline constexpr PreferenceKey<PreferenceData> objectionLog{"objectionLog"};

// Of earlier versions: kept, read, or removed.
inline constexpr PreferenceKey<std::int64_t> stampIntervalSeconds{"stampIntervalSeconds", 120};
inline constexpr PreferenceKey<double> stampVolume{"stampVolume", 0.5};
inline constexpr PreferenceKey<bool> launchAtLogin{"launchAtLogin", false};
inline constexpr std::array<std::string_view, 3> removed{"collectedEmails", "userEmail",
                                                         "onboardingStep"};

} // namespace preferenceKeys

/// The value under the key, or its default where it is missing or of another type.
template <typename T>
[[nodiscard]] T read(const Preferences& preferences, const PreferenceKey<T>& key) {
    return preferences.read<T>(key.name).value.value_or(key.byDefault);
}

} // namespace quorva
