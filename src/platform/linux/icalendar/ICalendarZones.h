// The time zones that calendar files use: those of the system's time zone database by name, and
// those that a file brings along (VTIMEZONE, RFC 5545, section 3.6.5). Nothing here throws.
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

    /// Seconds east of UTC when the zone's clocks show `local`. A reading that occurs twice is the
    /// first of the two; one that is skipped counts from before the jump (section 3.3.5).
    [[nodiscard]] virtual std::int64_t offsetAt(WallSeconds local) = 0;
};

using CalendarZonePtr = std::shared_ptr<CalendarZone>;

/// The zone of a name such as "Europe/Berlin", "/vendor.org/Europe/Berlin" or "GMT+05:30", in the
/// system's database; null for a name that is not in it.
[[nodiscard]] CalendarZonePtr zoneOfName(std::string_view name);

/// The zone that the user's clock shows, and its name.
struct UserZone {
    CalendarZonePtr zone;
    std::string name;
};
[[nodiscard]] UserZone userZone();

[[nodiscard]] CalendarZonePtr utcZone();

/// A period of standard or daylight time in a zone's definition, and the moments it begins at.
struct ZoneObservance {
    WallSeconds start = 0; ///< first onset, on the clock as it was before
    std::int64_t offsetFrom = 0;
    std::int64_t offsetTo = 0;
    std::optional<RecurrenceRule> rule;
    std::vector<WallSeconds> dates; ///< further onsets
};

/// The zone that a file defines; null without any observance.
[[nodiscard]] CalendarZonePtr zoneOfObservances(std::vector<ZoneObservance> observances);

} // namespace quorva
