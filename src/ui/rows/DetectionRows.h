// Converts detections and stored records to rows. Pure functions, except that times of day use the
// process's locale and time zone.
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

/// The findings of one kind, in their order, with texts for the time `now`.
[[nodiscard]] std::vector<Row> rowsOf(const Findings& findings, const FindingKind& kind, Time now);

/// A list for each kind of finding. Main thread only.
class FindingRows {
public:
    /// The list of this kind; valid as long as this object.
    [[nodiscard]] RowModel* of(const FindingKind& kind) { return &models[&kind]; }

    /// Shows these findings, with texts for the time `now`.
    void show(const Findings& findings, Time now);

private:
    std::map<const FindingKind*, RowModel> models;
};

/// The detection history, stored oldest first, as rows with the newest first.
[[nodiscard]] std::vector<Row> rowsOf(const std::vector<DetectionEvent>& history);

/// The objection log, in its own order.
[[nodiscard]] std::vector<Row> rowsOf(const std::vector<ObjectionRecord>& objections);

/// The allow list, each entry under its display name.
[[nodiscard]] std::vector<Row> rowsOfAllowed(const std::set<std::string>& keys,
                                             const Sources& sources);

/// Calendar accounts, with the symbols of their providers.
[[nodiscard]] std::vector<Row> rowsOfAccounts(const std::vector<CalendarSource>& accounts);

} // namespace quorva
