// What the notifications of detections say.
#pragma once

#include "catalogue/Records.h"

#include <string>
#include <string_view>

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

} // namespace quorva
