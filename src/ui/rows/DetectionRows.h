// Detections and what is kept of them as rows for the lists. Pure functions but for the locale and
// the time zone, which times of day ask the process for.
#pragma once

#include "catalogue/Records.h"
#include "ui/rows/RowModel.h"

#include <set>
#include <string>
#include <vector>

namespace quorva {

[[nodiscard]] std::vector<Row> rowsOf(const std::vector<RecordingIndicatorDetection>& indicators);
[[nodiscard]] std::vector<Row> rowsOf(const std::vector<ParticipantBotDetection>& participants);
[[nodiscard]] std::vector<Row> rowsOf(const std::vector<CalendarBotDetection>& detections,
                                      Time now);
[[nodiscard]] std::vector<Row> rowsOf(const std::vector<DetectedBot>& bots);

/// The detection history, which is kept oldest first, newest first.
[[nodiscard]] std::vector<Row> rowsOf(const std::vector<DetectionEvent>& history);

/// The objection log, in its order.
[[nodiscard]] std::vector<Row> rowsOf(const std::vector<ObjectionRecord>& objections);

/// The allow list, by what people call its entries.
[[nodiscard]] std::vector<Row> rowsOfAllowed(const std::set<std::string>& keys);

/// Calendar accounts, with their providers' symbols.
[[nodiscard]] std::vector<Row> rowsOfAccounts(const std::vector<std::string>& names);

} // namespace quorva
