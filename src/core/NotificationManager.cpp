#include "core/NotificationManager.h"

#include <fmt/format.h>

namespace quorva {
namespace {

namespace category {
constexpr std::string_view process = "BOT_DETECTED";
constexpr std::string_view calendar = "CALENDAR_BOT";
constexpr std::string_view participant = "PARTICIPANT_BOT";
constexpr std::string_view indicator = "RECORDING_INDICATOR";
} // namespace category

std::string joined(std::string_view prefix, std::string_view rest) {
    return fmt::format("{}{}", prefix, rest);
}

/// What happens in a meeting right now may be in the way; what is over must not be.
NotificationRequest request(NotificationText text, std::string identifier,
                            std::string_view category, NotificationUrgency urgency) {
    return {.identifier = std::move(identifier),
            .title = std::move(text.title),
            .body = std::move(text.body),
            .hasSound = urgency != NotificationUrgency::low,
            .urgency = urgency,
            .categoryIdentifier = std::string(category)};
}

} // namespace

NotificationManager::NotificationManager(MainLoop& loop_, NotificationCenter& center_, Log& log_)
    : loop(loop_), center(center_), log(log_) {
    registerCategories();
    responses = center.onResponse(
        lifetime.guard([this](const NotificationResponse& response) { takeResponse(response); }));
}

void NotificationManager::registerCategories() {
    const NotificationAction object{std::string(notificationAction::object), "Object Now"};
    const NotificationAction dismiss{std::string(notificationAction::dismiss), "Dismiss"};
    center.setCategories({
        {std::string(category::process), {object, dismiss}},
        {std::string(category::calendar), {object, dismiss}},
        {std::string(category::participant), {object, dismiss}},
        {std::string(category::indicator), {dismiss}},
    });
}

void NotificationManager::requestAuthorizationIfNeeded() {
    center.fetchAuthorization(lifetime.guard([this](NotificationAuthorization authorization) {
        if (authorization != NotificationAuthorization::notDetermined)
            return;
        center.requestAuthorization(lifetime.guard([this](const std::optional<std::string>& error) {
            if (error)
                log.error("Notification permission error: " + *error, logCategory::notification);
        }));
    }));
}

void NotificationManager::notifyProcessBot(const DetectedBot& bot) {
    center.post(request(processText(bot), joined(notificationPrefix::process, bot.signatureId),
                        category::process, NotificationUrgency::normal));
}

void NotificationManager::notifyProcessBotGone(const DetectedBot& bot) {
    center.post(request(processGoneText(bot),
                        joined(notificationPrefix::processGone, bot.signatureId), {},
                        NotificationUrgency::low));
}

void NotificationManager::notifyCalendarBot(const CalendarBotDetection& detection) {
    center.post(request(calendarText(detection, loop.now()),
                        joined(notificationPrefix::calendar,
                               detection.signatureId + "-" + detection.eventIdentifier),
                        category::calendar, NotificationUrgency::normal));
}

void NotificationManager::notifyParticipantBot(const ParticipantBotDetection& detection) {
    center.post(request(participantText(detection),
                        joined(notificationPrefix::participant, detection.id),
                        category::participant, NotificationUrgency::critical));
}

void NotificationManager::notifyRecordingIndicator(const RecordingIndicatorDetection& detection) {
    center.post(request(indicatorText(detection),
                        joined(notificationPrefix::indicator, detection.id), category::indicator,
                        NotificationUrgency::critical));
}

void NotificationManager::takeResponse(const NotificationResponse& response) {
    if (response.actionIdentifier == notificationAction::object)
        loop.post(lifetime.guard([this, identifier = response.requestIdentifier] {
            if (onObjectAction)
                onObjectAction(identifier);
        }));
    else if (response.actionIdentifier == notificationAction::dismiss)
        center.removeDelivered(response.requestIdentifier);
}

} // namespace quorva
