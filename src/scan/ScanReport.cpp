#include "scan/ScanReport.h"

#include "catalogue/CalendarBotDatabase.h"
#include "catalogue/Text.h"

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

template <typename Detection>
Json describeEach(const std::vector<Detection>& detections) {
    Json list = Json::array();
    for (const auto& detection : detections)
        list.push_back(describe(detection));
    return list;
}

} // namespace

int ScanReport::exitStatus() const {
    if (!processes.empty() || !invitations.empty())
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
              {"participants", Json::array()},
              {"indicators", Json::array()}}}};
}

std::string ScanReport::toText() const {
    std::string text = processTable(processes) + invitationTable(invitations, lookedAt);
    switch (exitStatus()) {
    case 0:
        text += "Nothing found.\n";
        break;
    case 1:
        text += fmt::format("Found: {}.\n", processes.size() + invitations.size());
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
