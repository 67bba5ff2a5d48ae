// The time zones of calendar files: those of the system's time zone database, by name, and those
// that a file defines (VTIMEZONE, RFC 5545, section 3.6.5). Nothing here throws.
//
// libical is not used for them: it expands the rules of a VTIMEZONE with the iterator that a
// stranger's file can crash or hang.
#pragma once

#include "platform/linux/icalendar/ICalendarRecurrence.h"
#include "platform/linux/icalendar/ICalendarText.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorva {

/// One thread at a time.
class CalendarZone {
public:
    virtual ~CalendarZone() = default;

    /// Seconds east of UTC when the zone's clocks show `local`. A time that occurs twice is the
    /// first of the two; a time that is skipped uses the offset before the jump (section 3.3.5).
    [[nodiscard]] virtual std::int64_t offsetAt(WallSeconds local) = 0;
};

using CalendarZonePtr = std::shared_ptr<CalendarZone>;

/// The zone with a name such as "Europe/Berlin", "/vendor.org/Europe/Berlin" or "GMT+05:30"; null
/// for a name that is not in the system's database.
[[nodiscard]] CalendarZonePtr zoneOfName(std::string_view name);

/// The zone of the user's clock, and its name.
struct UserZone {
    CalendarZonePtr zone;
    std::string name;
};
[[nodiscard]] UserZone userZone();

[[nodiscard]] CalendarZonePtr utcZone();

/// A STANDARD or DAYLIGHT part of a zone's definition.
struct ZoneObservance {
    WallSeconds start = 0; ///< the first onset, on the clock before it
    std::int64_t offsetFrom = 0;
    std::int64_t offsetTo = 0;
    std::optional<RecurrenceRule> rule;
    std::vector<WallSeconds> dates; ///< further onsets
};

/// The zone that a file defines; null if there are no observances.
[[nodiscard]] CalendarZonePtr zoneOfObservances(std::vector<ZoneObservance> observances);

} // namespace quorva
