// Newer versions of this program: asks the computer's package service when the user wants it, or
// once a day by itself.
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
    /// Begins to check by itself where that is switched on. The services must outlive this.
    Updates(MainLoop& loop, Preferences& preferences, UpdateService& service);

    /// Whether it asks by itself, once a day. Kept in the preferences.
    Published<bool, Updates> checksAutomatically{false};
    /// What the last check has come to; nothing before the first one and while one is under way.
    Published<std::optional<UpdateAnswer>, Updates> answer;
    /// A check is under way.
    Published<bool, Updates> isChecking{false};

    void setChecksAutomatically(bool isOn);

    /// Asks now. Nothing while a check is under way.
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
