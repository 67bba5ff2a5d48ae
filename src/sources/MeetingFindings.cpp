#include "sources/MeetingFindings.h"

#include "sources/FindingTexts.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace quorva {

const FindingKind participantFindings{
    .name = "participants",
    .source = DetectionSource::participant,
    .notificationCategory = "PARTICIPANT_BOT",
    .notificationPrefix = "participant-bot-",
    .alertRank = 1,
    .objectionRank = 1,
    .sharedPlace = "in my meeting",
    .columns = {"IN A MEETING", "CATEGORY", "CONFIDENCE", "PLATFORM", "PARTICIPANT", "WINDOW"},
};

const FindingKind bannerFindings{
    .name = "indicators",
    .source = DetectionSource::indicator,
    .notificationCategory = "RECORDING_INDICATOR",
    .notificationPrefix = "recording-indicator-",
    .alertRank = 4,
    .objectionRank = {},
    .sharedPlace = {},
    .columns = {"BANNER", "PLATFORM", "TEXT", "WINDOW"},
};

namespace {

constexpr int bannerConfidence = 90;

std::string meetingOn(const std::string& platform) {
    return "Meeting on " + platform;
}

std::string_view shortLabel(IndicatorType type) {
    switch (type) {
    case IndicatorType::cloudRecording:
        return "Cloud recording";
    case IndicatorType::aiCompanion:
        return "AI Companion";
    case IndicatorType::copilot:
        return "Copilot";
    case IndicatorType::transcription:
        return "Transcription";
    case IndicatorType::gemini:
        return "Gemini";
    case IndicatorType::recording:
        break;
    }
    return "Recording";
}

std::string_view label(IndicatorType type) {
    switch (type) {
    case IndicatorType::recording:
    case IndicatorType::cloudRecording:
        break;
    case IndicatorType::aiCompanion:
        return "AI Companion Active";
    case IndicatorType::copilot:
        return "Copilot Active";
    case IndicatorType::transcription:
        return "Transcription Active";
    case IndicatorType::gemini:
        return "Gemini Active";
    }
    return "Recording Active";
}

} // namespace

DetectionEvent ParticipantFinding::record() const {
    return {.botName = bot.botDisplayName,
            .category = std::string(rawValue(bot.category)),
            .confidence = bot.confidence,
            .method = std::string(rawValue(DetectionMethod::participantList)),
            .detectedAt = bot.detectedAt,
            .source = std::string(rawValue(DetectionSource::participant)),
            .eventTitle = meetingOn(bot.platformName)};
}

BotAlert ParticipantFinding::alert() const {
    return {bot.botDisplayName, bot.platformName, std::string(displayName(bot.category))};
}

NotificationRequest ParticipantFinding::announcement(Time) const {
    return notification(kind(), bot.id, participantText(bot), NotificationUrgency::critical);
}

FindingText ParticipantFinding::text(Time) const {
    return {.title = bot.botDisplayName,
            .category = std::string(displayName(bot.category)),
            .place = bot.platformName,
            .match = fmt::format("Matched participant: {} in {}", bot.matchedParticipantName,
                                 bot.windowTitle),
            .lastSeen = bot.detectedAt};
}

nlohmann::ordered_json ParticipantFinding::fields() const {
    return {{"id", bot.id},
            {"platformName", bot.platformName},
            {"matchedParticipantName", bot.matchedParticipantName},
            {"botPatternMatched", bot.botPatternMatched},
            {"botDisplayName", bot.botDisplayName},
            {"category", rawValue(bot.category)},
            {"confidence", bot.confidence},
            {"windowTitle", bot.windowTitle},
            {"detectedAt", iso8601(bot.detectedAt)}};
}

std::vector<std::string> ParticipantFinding::cells(Time) const {
    return {bot.botDisplayName,
            std::string(displayName(bot.category)),
            fmt::format("{} %", bot.confidence),
            bot.platformName,
            bot.matchedParticipantName,
            bot.windowTitle};
}

DetectionEvent BannerFinding::record() const {
    return {.botName = std::string(rawValue(banner.indicatorType)),
            .category = std::string(rawValue(BotCategory::platform)),
            .confidence = bannerConfidence,
            .method = std::string(rawValue(DetectionMethod::recordingIndicator)),
            .detectedAt = banner.detectedAt,
            .source = std::string(rawValue(DetectionSource::indicator)),
            .eventTitle = meetingOn(banner.platformName)};
}

BotAlert BannerFinding::alert() const {
    return {std::string(rawValue(banner.indicatorType)), banner.platformName, "Recording"};
}

NotificationRequest BannerFinding::announcement(Time) const {
    return notification(kind(), banner.id, indicatorText(banner), NotificationUrgency::critical);
}

FindingText BannerFinding::text(Time) const {
    return {.title = std::string(label(banner.indicatorType)),
            .place = banner.platformName,
            .match =
                fmt::format("Matched banner: {} in {}", banner.indicatorText, banner.windowTitle),
            .isLive = true,
            .lastSeen = banner.detectedAt};
}

nlohmann::ordered_json BannerFinding::fields() const {
    return {{"id", banner.id},
            {"platformName", banner.platformName},
            {"indicatorText", banner.indicatorText},
            {"indicatorType", rawValue(banner.indicatorType)},
            {"windowTitle", banner.windowTitle},
            {"detectedAt", iso8601(banner.detectedAt)}};
}

std::vector<std::string> BannerFinding::cells(Time) const {
    return {std::string(shortLabel(banner.indicatorType)), banner.platformName,
            banner.indicatorText, banner.windowTitle};
}

} // namespace quorva
