#include "core/NotificationManager.h"

#include "sources/Sources.h"

namespace quorva {
NotificationManager::NotificationManager(MainLoop& loop_, NotificationCenter& center_, Log& log_)
    : loop(loop_), center(center_), log(log_) {
    registerCategories();
    responses = center.onResponse(
        lifetime.guard([this](const NotificationResponse& response) { handle(response); }));
}

void NotificationManager::registerCategories() {
    const NotificationAction object{std::string(notificationAction::object), "Object Now"};
    const NotificationAction dismiss{std::string(notificationAction::dismiss), "Dismiss"};
    std::vector<NotificationCategory> categories;
    for (const auto* const profile : sourceProfiles)
        for (const auto* const kind : profile->kinds)
            categories.push_back(
                {std::string(kind->notificationCategory),
                 kind->objectionRank ? std::vector{object, dismiss} : std::vector{dismiss}});
    center.setCategories(std::move(categories));
}

void NotificationManager::requestAuthorizationIfNeeded() {
    center.fetchAuthorization(lifetime.guard([this](NotificationAuthorization authorization) {
        if (authorization != NotificationAuthorization::notDetermined)
            return;
        center.requestAuthorization(lifetime.guard([this](const std::optional<std::string>& error) {
            if (error)
                log.error(Printable::format("Notification permission error: {}", *error),
                          logCategory::notification);
        }));
    }));
}

void NotificationManager::post(NotificationRequest request) {
    center.post(std::move(request));
}

void NotificationManager::handle(const NotificationResponse& response) {
    if (response.actionIdentifier == notificationAction::object)
        loop.post(lifetime.guard([this, identifier = response.requestIdentifier] {
            if (onObjectAction)
                onObjectAction(identifier);
        }));
    else if (response.actionIdentifier == notificationAction::dismiss)
        center.removeDelivered(response.requestIdentifier);
}

} // namespace quorva
