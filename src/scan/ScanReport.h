// What one look has found, and how it is told: as JSON for programs, as a table for people. Plain
// values and pure functions.
#pragma once

#include "catalogue/Records.h"
#include "scan/ScanOptions.h"

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

namespace quorva {

/// Whether a source could be looked at.
enum class SourceStatus {
    ok,
    noAccess,    ///< it is there, but may not be read
    unavailable, ///< it is not there
};

struct SourceReport {
    ScanSource source = ScanSource::process;
    SourceStatus status = SourceStatus::unavailable;
    std::string detail; ///< a sentence: what was looked at, or why it was not and what helps

    bool operator==(const SourceReport&) const = default;
};

struct ScanReport {
    std::vector<SourceReport> sources; ///< those asked for
    Time lookedAt;
    std::vector<DetectedBot> processes;
    std::vector<CalendarBotDetection> invitations;
    std::vector<ParticipantBotDetection> participants;
    std::vector<RecordingIndicatorDetection> indicators;

    /// 1 when something was found; else 3 when a source could not be looked at; else 0.
    [[nodiscard]] int exitStatus() const;

    /// The report as JSON, version 1: stable, new keys may be added.
    [[nodiscard]] nlohmann::ordered_json toJson() const;

    /// The report for people: an aligned table with the reason for each hit. Control characters in
    /// what was found are made visible.
    [[nodiscard]] std::string toText() const;

private:
    [[nodiscard]] std::size_t found() const;
};

/// A detection with the fields of its record, enumerations as raw values, dates as ISO 8601 UTC.
[[nodiscard]] nlohmann::ordered_json describe(const DetectedBot& bot);
[[nodiscard]] nlohmann::ordered_json describe(const CalendarBotDetection& invitation);
[[nodiscard]] nlohmann::ordered_json describe(const ParticipantBotDetection& bot);
[[nodiscard]] nlohmann::ordered_json describe(const RecordingIndicatorDetection& indicator);

/// One line of a watch, without a line feed.
[[nodiscard]] std::string watchLine(std::string_view event, ScanSource source,
                                    const nlohmann::ordered_json& detection, Time at);

/// JSON in one line; bytes that are no UTF-8 become replacement characters.
[[nodiscard]] std::string dump(const nlohmann::ordered_json& json);

} // namespace quorva
