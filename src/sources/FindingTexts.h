// The texts of notifications, and functions that the sources share to make their texts.
#pragma once

#include "base/Text.h"
#include "catalogue/Records.h"
#include "sources/Finding.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace quorva {

struct NotificationText {
    std::string title;
    std::string body;

    bool operator==(const NotificationText&) const = default;
};

/// Pure functions but for the locale and the time zone, which calendarText asks the process for.
[[nodiscard]] NotificationText processText(const DetectedBot& bot);
[[nodiscard]] NotificationText processGoneText(const DetectedBot& bot);
[[nodiscard]] NotificationText calendarText(const CalendarBotDetection& detection, Time now);
[[nodiscard]] NotificationText participantText(const ParticipantBotDetection& detection);
[[nodiscard]] NotificationText indicatorText(const RecordingIndicatorDetection& detection);

/// A text of at most 100 user-perceived characters as it is, a longer one cut to 100 and "...".
[[nodiscard]] std::string truncatedForNotification(std::string_view text);

/// The time of day as people write it on a clock with two halves, such as "2:30 PM", in the
/// process's time zone and with its locale's names of the halves.
[[nodiscard]] std::string clockTime(Time time);

/// The notification of a finding. It replaces an earlier one of the same kind and subject, and
/// makes a sound unless its urgency is low.
[[nodiscard]] NotificationRequest notification(const FindingKind& kind, const std::string& subject,
                                               NotificationText text, NotificationUrgency urgency);

/// A finding for each record, in their order.
template <typename Found, typename Record>
[[nodiscard]] Findings findingsOf(const std::vector<Record>& records) {
    Findings findings;
    findings.reserve(records.size());
    for (const auto& record : records)
        findings.push_back(std::make_shared<Found>(record));
    return findings;
}

/// The name of the catalogue's row with this identifier; empty where there is none.
template <typename Rows>
[[nodiscard]] std::string nameOf(const Rows& rows, std::string_view id) {
    const auto row = std::find_if(rows.begin(), rows.end(),
                                  [&](const auto& signature) { return signature.id == id; });
    return row != rows.end() ? row->name : std::string();
}

/// The first three of the names, printable, and how many more there are.
template <typename Items, typename Name>
[[nodiscard]] std::string someOf(const Items& items, Name name) {
    constexpr std::size_t mostNamed = 3;
    std::string text;
    for (std::size_t index = 0; index < items.size() && index < mostNamed; ++index)
        text += (index > 0 ? ", " : "") + printable(name(items[index])).str();
    if (items.size() > mostNamed)
        text += " and " + std::to_string(items.size() - mostNamed) + " more";
    return text;
}

} // namespace quorva
