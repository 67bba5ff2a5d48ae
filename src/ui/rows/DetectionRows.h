// Detections and what is kept of them as rows for the lists. Pure functions but for the locale and
// the time zone, which times of day ask the process for.
#pragma once

#include "catalogue/Records.h"
#include "platform/CalendarStore.h"
#include "sources/Sources.h"
#include "ui/rows/RowModel.h"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace quorva {

/// The findings of one kind, in their order, worded for the time `now`.
[[nodiscard]] std::vector<Row> rowsOf(const Findings& findings, const FindingKind& kind, Time now);

/// A list for each kind of finding. Main thread only.
class FindingRows {
public:
    /// The list of this kind; lives as long as this.
    [[nodiscard]] RowModel* of(const FindingKind& kind) { return &models[&kind]; }

    /// Shows these findings, worded for the time `now`.
    void show(const Findings& findings, Time now);

private:
    std::map<const FindingKind*, RowModel> models;
};

/// The detection history, which is kept oldest first, newest first.
[[nodiscard]] std::vector<Row> rowsOf(const std::vector<DetectionEvent>& history);

/// The objection log, in its order.
[[nodiscard]] std::vector<Row> rowsOf(const std::vector<ObjectionRecord>& objections);

/// The allow list, by what people call its entries.
[[nodiscard]] std::vector<Row> rowsOfAllowed(const std::set<std::string>& keys,
                                             const Sources& sources);

/// Calendar accounts, with their providers' symbols.
[[nodiscard]] std::vector<Row> rowsOfAccounts(const std::vector<CalendarSource>& accounts);

} // namespace quorva
