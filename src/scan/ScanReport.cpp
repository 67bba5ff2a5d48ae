#include "scan/ScanReport.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace quorva {
namespace {

using Json = nlohmann::ordered_json;

/// Source states as printed. What is not looked at wholly counts as unavailable.
std::string_view nameOf(SourceState::Kind state) {
    switch (state) {
    case SourceState::Kind::ok:
        return "ok";
    case SourceState::Kind::notAllowed:
        return "no-access";
    default:
        return "unavailable";
    }
}

using Row = std::vector<Printable>;

/// Rows as aligned columns, and an empty line.
Printable aligned(const std::vector<Row>& rows) {
    std::vector<std::size_t> widths(rows.front().size());
    for (const auto& row : rows)
        for (std::size_t column = 0; column < row.size(); ++column)
            widths[column] = std::max(widths[column], row[column].str().size());
    Printable text;
    for (const auto& row : rows) {
        for (std::size_t column = 0; column + 1 < row.size(); ++column)
            text += Printable::format("{:<{}}  ", row[column], widths[column]);
        text += row.back() + "\n";
    }
    return text + "\n";
}

/// The list as a table; empty when nothing is in it.
Printable table(const ScanReport::List& list, Time now) {
    if (list.findings.empty())
        return {};
    std::vector<Row> rows(1);
    for (const auto column : list.kind->columns)
        rows.front().push_back(printable(column));
    for (const auto& finding : list.findings) {
        auto& row = rows.emplace_back();
        for (const auto& cell : finding->cells(now))
            row.push_back(printable(cell));
    }
    return aligned(rows);
}

} // namespace

std::size_t ScanReport::found() const {
    std::size_t count = 0;
    for (const auto& list : lists)
        count += list.findings.size();
    return count;
}

int ScanReport::exitStatus() const {
    if (found() > 0)
        return 1;
    const bool isComplete = std::all_of(sources.begin(), sources.end(),
                                        [](const auto& report) { return report.isOk(); });
    return isComplete ? 0 : 3;
}

Json ScanReport::toJson() const {
    const int status = exitStatus();
    Json looked = Json::object();
    for (const auto& report : sources)
        looked[std::string(report.source)] = {{"status", nameOf(report.state)},
                                              {"detail", report.detail}};
    Json detections = Json::object();
    for (const auto& list : lists) {
        auto& described = detections[std::string(list.kind->name)] = Json::array();
        for (const auto& finding : list.findings)
            described.push_back(finding->fields());
    }
    return {{"version", 1},
            {"verdict", status == 1   ? "found"
                        : status == 3 ? "incomplete"
                                      : "clear"},
            {"sources", std::move(looked)},
            {"detections", std::move(detections)}};
}

Printable ScanReport::toText() const {
    Printable text;
    for (const auto& list : lists)
        text += table(list, lookedAt);
    switch (exitStatus()) {
    case 0:
        text += "Nothing found.\n";
        break;
    case 1:
        text += Printable::format("Found: {}.\n", found());
        break;
    default:
        text += "Nothing found, but not everything could be looked at.\n";
    }
    for (const auto& report : sources)
        text += Printable::format("  {:<8}  {:<11}  {}\n", report.source, nameOf(report.state),
                                  report.detail);
    return text;
}

Printable watchLine(std::string_view event, std::string_view source, const Finding& finding,
                    Time at) {
    return dump({{"event", event},
                 {"source", source},
                 {"detection", finding.fields()},
                 {"at", iso8601(at)}});
}

Printable sightLostLine(std::string_view source, std::string_view text, Time at) {
    return dump({{"event", "sight-lost"}, {"source", source}, {"text", text}, {"at", iso8601(at)}});
}

Printable dump(const Json& json) {
    return printableJson(json.dump(-1, ' ', false, Json::error_handler_t::replace));
}

} // namespace quorva
