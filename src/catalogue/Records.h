// The records of detections and objections. Plain values: they own their texts, are copied freely,
// compare memberwise, and are identified by `id` where they have one.
#pragma once

#include "base/Time.h"
#include "catalogue/Enumerations.h"

#include <cstdint>
#include <optional>
#include <string>

namespace quorva {

/// A note-taker or recorder found running on this computer.
struct DetectedBot {
    std::string id; ///< signatureId, "-", the process identifier in decimal
    std::string signatureId;
    std::string name;
    BotCategory category = BotCategory::unknown;
    int confidence = 0; ///< 0 to 100
    DetectionMethod method = DetectionMethod::processName;
    std::int32_t processIdentifier = 0;
    std::string matchedValue; ///< the text that matched, in its own letter case
    Time detectedAt;

    bool operator==(const DetectedBot&) const = default;
};

/// A bot invited to a calendar event.
struct CalendarBotDetection {
    std::string id;
    std::string signatureId;
    std::string botName;
    BotCategory category = BotCategory::unknown;
    int confidence = 0; ///< 0 to 100
    std::string matchedEmail;
    std::optional<std::string> matchedName;
    std::string eventTitle;
    Time eventStartDate;
    Time eventEndDate;
    std::string eventIdentifier;
    std::string calendarName;
    Time detectedAt;

    bool operator==(const CalendarBotDetection&) const = default;

    /// The time from `now` until the event starts, for people: "now" once it has started, otherwise
    /// whole minutes as "45m", "1h" or "1h 5m".
    [[nodiscard]] std::string timeUntilStartLabel(Time now) const;
};

/// A bot seen among the participants of a meeting window.
struct ParticipantBotDetection {
    std::string id;
    std::string platformName;
    std::string matchedParticipantName;
    std::string botPatternMatched;
    std::string botDisplayName;
    BotCategory category = BotCategory::unknown;
    int confidence = 0; ///< 0 to 100
    std::string windowTitle;
    Time detectedAt;

    bool operator==(const ParticipantBotDetection&) const = default;
};

/// A recording or assistant banner seen in a meeting window.
struct RecordingIndicatorDetection {
    std::string id;
    std::string platformName;
    std::string indicatorText;
    IndicatorType indicatorType = IndicatorType::recording;
    std::string windowTitle;
    Time detectedAt;

    bool operator==(const RecordingIndicatorDetection&) const = default;
};

/// One entry of the detection history, as it is stored. Category, method and source are raw values
/// rather than enumerations, so that an entry written by a newer version still decodes.
struct DetectionEvent {
    std::string botName;
    std::string category;
    int confidence = 0;
    std::string method;
    Time detectedAt;
    bool dismissed = false;
    std::optional<std::string> source;
    std::optional<Time> eventStartDate;
    std::optional<std::string> eventTitle; ///< never stored: absent after a reload
};

/// One entry of the objection log, as it is stored.
struct ObjectionRecord {
    std::string id;
    Time timestamp;
    std::string templateUsed; ///< the template's title for people
    std::optional<std::string> botName;
    std::optional<std::string> meetingContext;
    std::optional<DetectionSource> source;
    bool copiedToClipboard = false;

    bool operator==(const ObjectionRecord&) const = default;
};

} // namespace quorva
