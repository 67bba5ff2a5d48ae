#include "core/Limitations.h"

#include "base/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace quorva {
namespace {

std::string notificationProblem(const NotificationService& service) {
    using State = NotificationService::State;
    switch (service.state) {
    case State::unknown:
        return {};
    case State::absent:
        return "No notification server is running: alerts show in Quorva's own panel only.";
    case State::silent:
        return "The notification server does not answer: alerts show in Quorva's own panel only.";
    case State::present:
        break;
    }
    return service.hasActions ? ""
                              : "The notification server shows no buttons: object from Quorva's "
                                "menu.";
}

bool isAmong(const std::vector<Limitation>& all, const std::string& part) {
    return std::any_of(all.begin(), all.end(),
                       [&](const Limitation& limitation) { return limitation.part == part; });
}

} // namespace

Limitations::Limitations(MainLoop& loop_, Log& log_, NotificationCenter& notifications_,
                         SpeechSynthesizer& speech_, const Settings& settings_,
                         const Sources& sources_)
    : loop(loop_),
      log(log_),
      notifications(notifications_),
      speech(speech_),
      settings(settings_),
      sources(sources_) {
    const auto changed = lifetime.guard([this] { schedule(); });
    for (const auto* const source : sources)
        subscriptions.push_back(source->state.observeChanges(changed));
    subscriptions.push_back(settings.showNotifications.observeChanges(changed));
    subscriptions.push_back(notifications.onServiceChange(changed));
    subscriptions.push_back(speech.onProblemChange(changed));
    schedule();
}

void Limitations::setTray(bool isShown) {
    hasTray = isShown;
    schedule();
}

/// Fields tell of a change before it is made, and several often change together.
void Limitations::schedule() {
    if (std::exchange(isUpdateDue, true))
        return;
    loop.post(lifetime.guard([this] {
        isUpdateDue = false;
        update();
    }));
}

std::vector<Limitation> Limitations::current() const {
    std::vector<Limitation> found;
    for (const auto* const source : sources)
        if (source->state->isLimited())
            found.push_back({std::string(source->profile.name), source->state->reason});
    if (auto problem = notificationProblem(notifications.service());
        settings.showNotifications && !problem.empty())
        found.push_back({"notifications", std::move(problem)});
    if (const auto problem = speech.problem())
        found.push_back(
            {"speech", fmt::format("Objections are not spoken: {}", printable(*problem).str())});
    if (!hasTray)
        found.push_back({"tray", "This desktop shows no tray icons: start Quorva again to open its "
                                 "window."});
    return found;
}

void Limitations::update() {
    auto next = current();
    if (next == *all)
        return;
    for (const auto& limitation : next)
        if (!isAmong(*all, limitation.part))
            log.notice(printable(limitation.text), logCategory::appState);
    for (const auto& ended : *all)
        if (!isAmong(next, ended.part))
            log.info(Printable::format("No longer so: {}", ended.text), logCategory::appState);
    all = std::move(next);
}

} // namespace quorva
