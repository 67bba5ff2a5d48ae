// Checks for newer versions of this program. Asks the computer's package service at the user's
// wish, or once a day if that is switched on.
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"
#include "base/Published.h"
#include "platform/Preferences.h"
#include "platform/UpdateService.h"

#include <optional>

namespace quorva {

/// Main thread only.
class Updates {
public:
    /// Starts the daily check if it is switched on. The services must outlive this.
    Updates(MainLoop& loop, Preferences& preferences, UpdateService& service);

    /// Whether the daily check is on. Stored in the preferences.
    Published<bool, Updates> checksAutomatically{false};
    /// The result of the last check; nothing before the first check and while one is running.
    Published<std::optional<UpdateAnswer>, Updates> answer;
    /// Whether a check is running.
    Published<bool, Updates> isChecking{false};

    void setChecksAutomatically(bool isOn);

    /// Checks now. Does nothing while a check is running.
    void checkNow();

private:
    void follow();

    MainLoop& loop;
    Preferences& preferences;
    UpdateService& service;
    Subscription check;
    Timer daily;
    Lifetime lifetime; // last: goes first
};

} // namespace quorva
