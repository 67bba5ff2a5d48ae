// The enumerations that detectors report in. Each case has a raw value, its text in stored and
// printed JSON; it equals the case's name and never changes. Plain values; callable from any
// thread.
#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace quorva {

/// The kind of product.
enum class BotCategory {
    transcription,
    sales,
    platform,
    recruiting,
    productivity,
    localRecorder,
    unknown
};

/// How a detection was made.
enum class DetectionMethod {
    processName,
    bundleIdentifier,
    processPath,
    calendarAttendee,
    participantList,
    recordingIndicator
};

/// The kind of detector that made a detection.
enum class DetectionSource { process, calendar, participant, indicator };

/// The kind of a recording or assistant banner in a meeting window.
enum class IndicatorType { recording, cloudRecording, aiCompanion, copilot, transcription, gemini };

/// The objection statements that the user can choose from.
enum class ObjectionTemplate { california, gdpr, general, brief };

template <typename Enumeration>
struct NamedCase {
    Enumeration value;
    std::string_view rawValue;
};
template <typename Enumeration> // clang 14 does not deduce the arguments of aggregates by itself
NamedCase(Enumeration, const char*)->NamedCase<Enumeration>;

/// All cases of an enumeration with their raw values, in the order of declaration.
template <typename Enumeration>
inline constexpr std::array<NamedCase<Enumeration>, 0> namedCases{};

template <>
inline constexpr std::array namedCases<BotCategory>{
    NamedCase{BotCategory::transcription, "transcription"},
    NamedCase{BotCategory::sales, "sales"},
    NamedCase{BotCategory::platform, "platform"},
    NamedCase{BotCategory::recruiting, "recruiting"},
    NamedCase{BotCategory::productivity, "productivity"},
    NamedCase{BotCategory::localRecorder, "localRecorder"},
    NamedCase{BotCategory::unknown, "unknown"},
};

template <>
inline constexpr std::array namedCases<DetectionMethod>{
    NamedCase{DetectionMethod::processName, "processName"},
    NamedCase{DetectionMethod::bundleIdentifier, "bundleIdentifier"},
    NamedCase{DetectionMethod::processPath, "processPath"},
    NamedCase{DetectionMethod::calendarAttendee, "calendarAttendee"},
    NamedCase{DetectionMethod::participantList, "participantList"},
    NamedCase{DetectionMethod::recordingIndicator, "recordingIndicator"},
};

template <>
inline constexpr std::array namedCases<DetectionSource>{
    NamedCase{DetectionSource::process, "process"},
    NamedCase{DetectionSource::calendar, "calendar"},
    NamedCase{DetectionSource::participant, "participant"},
    NamedCase{DetectionSource::indicator, "indicator"},
};

template <>
inline constexpr std::array namedCases<IndicatorType>{
    NamedCase{IndicatorType::recording, "recording"},
    NamedCase{IndicatorType::cloudRecording, "cloudRecording"},
    NamedCase{IndicatorType::aiCompanion, "aiCompanion"},
    NamedCase{IndicatorType::copilot, "copilot"},
    NamedCase{IndicatorType::transcription, "transcription"},
    NamedCase{IndicatorType::gemini, "gemini"},
};

template <>
inline constexpr std::array namedCases<ObjectionTemplate>{
    NamedCase{ObjectionTemplate::california, "california"},
    NamedCase{ObjectionTemplate::gdpr, "gdpr"},
    NamedCase{ObjectionTemplate::general, "general"},
    NamedCase{ObjectionTemplate::brief, "brief"},
};

/// The text of `value` in JSON.
template <typename Enumeration>
[[nodiscard]] constexpr std::string_view rawValue(Enumeration value) {
    for (const auto& named : namedCases<Enumeration>)
        if (named.value == value)
            return named.rawValue;
    return {};
}

/// The case with this raw value, case-sensitive; nothing when there is none.
template <typename Enumeration>
[[nodiscard]] constexpr std::optional<Enumeration> fromRawValue(std::string_view text) {
    for (const auto& named : namedCases<Enumeration>)
        if (named.rawValue == text)
            return named.value;
    return std::nullopt;
}

/// The text that people see for a category.
[[nodiscard]] constexpr std::string_view displayName(BotCategory category) {
    switch (category) {
    case BotCategory::transcription:
        return "Transcription";
    case BotCategory::sales:
        return "Sales Intelligence";
    case BotCategory::platform:
        return "Platform Native";
    case BotCategory::recruiting:
        return "Recruiting";
    case BotCategory::productivity:
        return "Productivity";
    case BotCategory::localRecorder:
        return "Local Recorder";
    case BotCategory::unknown:
        break;
    }
    return "Unknown";
}

} // namespace quorva
