#include "core/Updates.h"

#include <chrono>

namespace quorva {
namespace {

constexpr std::string_view automaticKey = "checksForUpdatesAutomatically";

} // namespace

Updates::Updates(MainLoop& loop_, Preferences& preferences_, UpdateService& service_)
    : loop(loop_), preferences(preferences_), service(service_) {
    checksAutomatically = preferences.read<bool>(automaticKey).value.value_or(false);
    follow();
}

void Updates::setChecksAutomatically(bool isOn) {
    preferences.set(automaticKey, isOn);
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
