// The time zones of one iCalendar object (VCALENDAR): those it defines (VTIMEZONE), and those its
// times name.
#pragma once

#include "platform/linux/icalendar/ICalendar.h"
#include "platform/linux/icalendar/ICalendarText.h"
#include "platform/linux/icalendar/ICalendarZones.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorva {

/// One thread at a time.
class ICalendarObjectZones {
public:
    /// `floating`, the user's zone, stands in for zones that are not known.
    explicit ICalendarObjectZones(CalendarZonePtr floating);

    /// Whether a property of this name matters, so that others need not be parsed.
    [[nodiscard]] static bool uses(std::string_view property);

    // The lines of a VTIMEZONE, in their order.
    void beginZone();
    void beginObservance(); ///< STANDARD or DAYLIGHT
    void add(const ContentLine& line);
    void endZone();

    /// The zone of a TZID, to be asked for when the whole object has been read: zones may be
    /// defined after the events that use them. Never null.
    [[nodiscard]] CalendarZonePtr find(const std::string& name, ICalendarProblems& problems);

private:
    /// A definition while it is being read.
    struct Draft {
        std::string name;
        std::string location; ///< X-LIC-LOCATION
        std::vector<ZoneObservance> observances;
        int parts = 0; ///< how many of its start and its offsets the last observance has
    };

    void dropIncompleteObservance();

    const CalendarZonePtr floating;
    std::optional<Draft> draft;
    std::map<std::string, CalendarZonePtr, std::less<>> zones; ///< null: known to be unknown
};

} // namespace quorva
