#include "scan/ScanReport.h"

#include "catalogue/Text.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>

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

constexpr std::size_t columns = 6;
using Row = std::array<std::string, columns>;

std::string table(const std::vector<Row>& rows) {
    std::array<std::size_t, columns> widths{};
    for (const auto& row : rows)
        for (std::size_t column = 0; column < columns; ++column)
            widths[column] = std::max(widths[column], row[column].size());
    std::string text;
    for (const auto& row : rows) {
        for (std::size_t column = 0; column + 1 < columns; ++column)
            text += fmt::format("{:<{}}  ", row[column], widths[column]);
        text += row.back() + "\n";
    }
    return text;
}

} // namespace

int ScanReport::exitStatus() const {
    if (!processes.empty())
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
    Json bots = Json::array();
    for (const auto& bot : processes)
        bots.push_back(describe(bot));
    return {{"version", 1},
            {"verdict", status == 1   ? "found"
                        : status == 3 ? "incomplete"
                                      : "clear"},
            {"sources", std::move(looked)},
            {"detections",
             {{"process", std::move(bots)},
              {"calendar", Json::array()},
              {"participants", Json::array()},
              {"indicators", Json::array()}}}};
}

std::string ScanReport::toText() const {
    std::string text;
    if (!processes.empty()) {
        std::vector<Row> rows{
            {"PRODUCT", "CATEGORY", "CONFIDENCE", "PROCESS", "MATCHED BY", "MATCHED VALUE"}};
        for (const auto& bot : processes)
            rows.push_back({bot.name, std::string(displayName(bot.category)),
                            fmt::format("{} %", bot.confidence),
                            fmt::format("{}", bot.processIdentifier), std::string(howMatched(bot)),
                            printable(bot.matchedValue)});
        text += table(rows) + "\n";
    }
    switch (exitStatus()) {
    case 0:
        text += "Nothing found.\n";
        break;
    case 1:
        text += fmt::format("Found: {}.\n", processes.size());
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
