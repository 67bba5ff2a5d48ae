#include "scan/ScanReport.h"

#include "base/Text.h"
#include "catalogue/CalendarBotDatabase.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace quorva {
namespace {

using Json = nlohmann::ordered_json;

std::string_view nameOf(SourceStatus status) {
    switch (status) {
    case SourceStatus::ok:
        return "ok";
    case SourceStatus::noAccess:
        return "no-access";
    case SourceStatus::unavailable:
        break;
    }
    return "unavailable";
}

std::string_view howMatched(const DetectedBot& bot) {
    switch (bot.method) {
    case DetectionMethod::bundleIdentifier:
        return "application identifier";
    case DetectionMethod::processPath:
        return "executable path";
    default:
        return "name";
    }
}

/// What of an attendee gave the bot away.
std::string_view howMatched(const CalendarBotDetection& invitation) {
    if (invitation.category == BotCategory::unknown)
        return "mailbox name";
    return CalendarBotDatabase::shared().matchEmail(invitation.matchedEmail) ? "attendee's address"
                                                                             : "attendee's name";
}

std::string matchedValue(const CalendarBotDetection& invitation) {
    const bool isByName = howMatched(invitation) == "attendee's name";
    return isByName ? invitation.matchedName.value_or("") : invitation.matchedEmail;
}

using Row = std::vector<std::string>;

/// Rows as aligned columns, and an empty line; nothing when there is a heading only.
std::string table(const std::vector<Row>& rows) {
    if (rows.size() < 2)
        return {};
    std::vector<std::size_t> widths(rows.front().size());
    for (const auto& row : rows)
        for (std::size_t column = 0; column < row.size(); ++column)
            widths[column] = std::max(widths[column], row[column].size());
    std::string text;
    for (const auto& row : rows) {
        for (std::size_t column = 0; column + 1 < row.size(); ++column)
            text += fmt::format("{:<{}}  ", row[column], widths[column]);
        text += row.back() + "\n";
    }
    return text + "\n";
}

std::string processTable(const std::vector<DetectedBot>& bots) {
    std::vector<Row> rows{
        {"PRODUCT", "CATEGORY", "CONFIDENCE", "PROCESS", "MATCHED BY", "MATCHED VALUE"}};
    for (const auto& bot : bots)
        rows.push_back({bot.name, std::string(displayName(bot.category)),
                        fmt::format("{} %", bot.confidence),
                        fmt::format("{}", bot.processIdentifier), std::string(howMatched(bot)),
                        printable(bot.matchedValue)});
    return table(rows);
}

std::string invitationTable(const std::vector<CalendarBotDetection>& invitations, Time now) {
    std::vector<Row> rows{
        {"INVITED", "CATEGORY", "CONFIDENCE", "STARTS", "MATCHED BY", "MATCHED VALUE", "CALENDAR"}};
    for (const auto& invitation : invitations) {
        const auto start = invitation.timeUntilStartLabel(now);
        rows.push_back({invitation.botName, std::string(displayName(invitation.category)),
                        fmt::format("{} %", invitation.confidence),
                        start == "now" ? start : "in " + start, std::string(howMatched(invitation)),
                        printable(matchedValue(invitation)), printable(invitation.calendarName)});
    }
    return table(rows);
}

std::string participantTable(const std::vector<ParticipantBotDetection>& bots) {
    std::vector<Row> rows{
        {"IN A MEETING", "CATEGORY", "CONFIDENCE", "PLATFORM", "PARTICIPANT", "WINDOW"}};
    for (const auto& bot : bots)
        rows.push_back({printable(bot.botDisplayName), std::string(displayName(bot.category)),
                        fmt::format("{} %", bot.confidence), bot.platformName,
                        printable(bot.matchedParticipantName), printable(bot.windowTitle)});
    return table(rows);
}

std::string nameOf(IndicatorType type) {
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

std::string indicatorTable(const std::vector<RecordingIndicatorDetection>& indicators) {
    std::vector<Row> rows{{"BANNER", "PLATFORM", "TEXT", "WINDOW"}};
    for (const auto& indicator : indicators)
        rows.push_back({nameOf(indicator.indicatorType), indicator.platformName,
                        printable(indicator.indicatorText), printable(indicator.windowTitle)});
    return table(rows);
}

template <typename Detection>
Json describeEach(const std::vector<Detection>& detections) {
    Json list = Json::array();
    for (const auto& detection : detections)
        list.push_back(describe(detection));
    return list;
}

} // namespace

std::size_t ScanReport::found() const {
    return processes.size() + invitations.size() + participants.size() + indicators.size();
}

int ScanReport::exitStatus() const {
    if (found() > 0)
        return 1;
    const bool isComplete = std::all_of(sources.begin(), sources.end(), [](const auto& report) {
        return report.status == SourceStatus::ok;
    });
    return isComplete ? 0 : 3;
}

Json ScanReport::toJson() const {
    const int status = exitStatus();
    Json looked = Json::object();
    for (const auto& report : sources)
        looked[std::string(quorva::nameOf(report.source))] = {{"status", nameOf(report.status)},
                                                              {"detail", report.detail}};
    return {{"version", 1},
            {"verdict", status == 1   ? "found"
                        : status == 3 ? "incomplete"
                                      : "clear"},
            {"sources", std::move(looked)},
            {"detections",
             {{"process", describeEach(processes)},
              {"calendar", describeEach(invitations)},
              {"participants", describeEach(participants)},
              {"indicators", describeEach(indicators)}}}};
}

std::string ScanReport::toText() const {
    std::string text = processTable(processes) + invitationTable(invitations, lookedAt) +
                       participantTable(participants) + indicatorTable(indicators);
    switch (exitStatus()) {
    case 0:
        text += "Nothing found.\n";
        break;
    case 1:
        text += fmt::format("Found: {}.\n", found());
        break;
    default:
        text += "Nothing found, but not everything could be looked at.\n";
    }
    for (const auto& report : sources)
        text += fmt::format("  {:<8}  {:<11}  {}\n", quorva::nameOf(report.source),
                            nameOf(report.status), printable(report.detail));
    return text;
}

Json describe(const DetectedBot& bot) {
    return {{"id", bot.id},
            {"signatureId", bot.signatureId},
            {"name", bot.name},
            {"category", rawValue(bot.category)},
            {"confidence", bot.confidence},
            {"method", rawValue(bot.method)},
            {"processIdentifier", bot.processIdentifier},
            {"matchedValue", bot.matchedValue},
            {"detectedAt", iso8601(bot.detectedAt)}};
}

Json describe(const CalendarBotDetection& invitation) {
    return {{"id", invitation.id},
            {"signatureId", invitation.signatureId},
            {"botName", invitation.botName},
            {"category", rawValue(invitation.category)},
            {"confidence", invitation.confidence},
            {"matchedEmail", invitation.matchedEmail},
            {"matchedName", invitation.matchedName ? Json(*invitation.matchedName) : Json()},
            {"eventTitle", invitation.eventTitle},
            {"eventStartDate", iso8601(invitation.eventStartDate)},
            {"eventEndDate", iso8601(invitation.eventEndDate)},
            {"eventIdentifier", invitation.eventIdentifier},
            {"calendarName", invitation.calendarName},
            {"detectedAt", iso8601(invitation.detectedAt)}};
}

Json describe(const ParticipantBotDetection& bot) {
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

Json describe(const RecordingIndicatorDetection& indicator) {
    return {{"id", indicator.id},
            {"platformName", indicator.platformName},
            {"indicatorText", indicator.indicatorText},
            {"indicatorType", rawValue(indicator.indicatorType)},
            {"windowTitle", indicator.windowTitle},
            {"detectedAt", iso8601(indicator.detectedAt)}};
}

std::string watchLine(std::string_view event, ScanSource source, const Json& detection, Time at) {
    return dump({{"event", event},
                 {"source", nameOf(source)},
                 {"detection", detection},
                 {"at", iso8601(at)}});
}

std::string dump(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

} // namespace quorva
