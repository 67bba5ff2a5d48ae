#include "core/Updates.h"

#include "platform/PreferenceKeys.h"

#include <chrono>

namespace quorva {

Updates::Updates(MainLoop& loop_, Preferences& preferences_, UpdateService& service_)
    : loop(loop_), preferences(preferences_), service(service_) {
    checksAutomatically = read(preferences, preferenceKeys::checksForUpdates);
    follow();
}

void Updates::setChecksAutomatically(bool isOn) {
    preferences.set(preferenceKeys::checksForUpdates.name, isOn);
    checksAutomatically = isOn;
    follow();
}

void Updates::checkNow() {
    if (isChecking)
        return;
    isChecking = true;
    answer = std::nullopt;
    check = service.checkForUpdates(lifetime.guard([this](const UpdateAnswer& found) {
        isChecking = false;
        answer = found;
    }));
}

void Updates::follow() {
    constexpr std::chrono::hours day{24};
    daily.reset();
    if (!checksAutomatically)
        return;
    daily = loop.every(day, lifetime.guard([this] { checkNow(); }));
    loop.post(lifetime.guard([this] {
        if (checksAutomatically)
            checkNow();
    }));
}

} // namespace quorva
