#include "sources/FindingTexts.h"

#include "base/Text.h"

#include <fmt/format.h>

#include <array>
#include <chrono>
#include <ctime>

namespace quorva {
namespace {

constexpr std::size_t mostCharacters = 100;

std::string quoted(const std::string& text) {
    return fmt::format("\"{}\"", truncatedForNotification(text));
}

} // namespace

NotificationText processText(const DetectedBot& bot) {
    return {"AI Recorder Found",
            fmt::format("{} ({}) is running on your Mac", bot.name, displayName(bot.category))};
}

NotificationText processGoneText(const DetectedBot& bot) {
    return {bot.name + " Stopped", bot.name + " is no longer running"};
}

NotificationText calendarText(const CalendarBotDetection& detection, Time now) {
    const auto found = detection.botName + " detected in a calendar event";
    if (now >= detection.eventStartDate && now <= detection.eventEndDate)
        return {"Bot in Active Meeting", found + " (happening now)"};
    return {"Bot Invited to Upcoming Meeting",
            fmt::format("{} at {} ({})", found, clockTime(detection.eventStartDate),
                        detection.timeUntilStartLabel(now))};
}

NotificationText participantText(const ParticipantBotDetection& detection) {
    return {"AI Recorder Found in " + detection.platformName,
            fmt::format("{} ({}) detected in participant list",
                        quoted(detection.matchedParticipantName), detection.botDisplayName)};
}

NotificationText indicatorText(const RecordingIndicatorDetection& detection) {
    const auto shown = detection.platformName + ": " + quoted(detection.indicatorText);
    switch (detection.indicatorType) {
    case IndicatorType::recording:
    case IndicatorType::cloudRecording:
        break;
    case IndicatorType::aiCompanion:
        return {"Zoom AI Companion Active", "AI Companion is active in your Zoom meeting"};
    case IndicatorType::copilot:
        return {"Teams Copilot Active", "Copilot is active in your Teams meeting"};
    case IndicatorType::transcription:
        return {"Meeting Being Transcribed", shown};
    case IndicatorType::gemini:
        return {"Google Gemini Active", "Gemini is taking notes in your Google Meet"};
    }
    return {"Meeting Being Recorded", shown};
}

std::string truncatedForNotification(std::string_view text) {
    const auto beginning = firstCharacters(text, mostCharacters);
    return beginning.size() == text.size() ? std::string(text) : std::string(beginning) + "...";
}

std::string clockTime(Time time) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
    std::tm local{};
    localtime_r(&seconds, &local);
    constexpr int hoursOfHalf = 12;
    std::array<char, 32> half{};
    // Locales that count to 24 have no names for the halves.
    if (std::strftime(half.data(), half.size(), "%p", &local) == 0)
        return fmt::format("{}:{:02} {}", (local.tm_hour + hoursOfHalf - 1) % hoursOfHalf + 1,
                           local.tm_min, local.tm_hour < hoursOfHalf ? "AM" : "PM");
    return fmt::format("{}:{:02} {}", (local.tm_hour + hoursOfHalf - 1) % hoursOfHalf + 1,
                       local.tm_min, half.data());
}

NotificationRequest notification(const FindingKind& kind, const std::string& subject,
                                 NotificationText text, NotificationUrgency urgency) {
    return {.identifier = std::string(kind.notificationPrefix) + subject,
            .title = std::move(text.title),
            .body = std::move(text.body),
            .hasSound = urgency != NotificationUrgency::low,
            .urgency = urgency,
            .categoryIdentifier = std::string(kind.notificationCategory)};
}

} // namespace quorva
