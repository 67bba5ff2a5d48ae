// Reads iCalendar files (RFC 5545) from bytes, whoever wrote them. One broken event does not lose
// the others; what is lost is counted by reason. No I/O but the system's time zone database.
#pragma once

#include "platform/linux/icalendar/ICalendar.h"

#include <string>
#include <string_view>
#include <vector>

namespace quorva {

struct ICalendarLimits {
    static constexpr std::size_t events = 200'000;   ///< of a file
    static constexpr std::size_t attendees = 10'000; ///< of an event
    static constexpr std::size_t attendeesOfFile = 500'000;
    static constexpr std::size_t dates = 20'000;              ///< RDATE and EXDATE of an event
    static constexpr std::size_t rules = 8;                   ///< of an event
    static constexpr std::size_t depth = 32;                  ///< of components within components
    static constexpr std::size_t zones = 200;                 ///< defined in a file
    static constexpr std::size_t observances = 200;           ///< of a zone
    static constexpr std::size_t occurrences = 1'000;         ///< of a series in one period
    static constexpr std::size_t attendeesOfPeriod = 250'000; ///< counted once per occurrence
};

struct ICalendarReading {
    CalendarZonePtr floating;               ///< what times without a zone mean: the user's zone
    std::vector<std::string> userAddresses; ///< without "mailto:"
};

/// Understands the bytes of a file. Of each attendee the address is kept as written; where it is no
/// mail address but an EMAIL parameter (RFC 7986) is given, that is taken. An organizer who is not
/// among the attendees is added to them. Times in a zone that is neither defined nor known are read
/// as the user's own. Events of a METHOD:CANCEL object (RFC 5546) are cancelled. Any thread; the
/// result belongs to one thread at a time.
[[nodiscard]] ICalendar readICalendar(std::string_view bytes, const ICalendarReading& reading);

/// Occurrences that overlap a period, and what was given up on while finding them.
struct Occurrences {
    std::vector<CalendarEvent> events;
    ICalendarProblems problems;
    ExpansionBudget budget;
    std::size_t attendees = 0;
};

/// Adds the occurrences of `series` that overlap the period to `occurrences`, by start.
void addOccurrences(const ICalendarSeries& series, Time start, Time end,
                    const std::string& calendarName, Occurrences& occurrences);

/// The occurrences of all series of a file that overlap the period, by start.
[[nodiscard]] Occurrences occurrencesOf(const ICalendar& calendar, Time start, Time end,
                                        const std::string& calendarName);

/// The period that occurrences of a series can lie in. An end of `Time::max` is open.
struct TimeSpan {
    Time start = Time::min();
    Time end = Time::max();
};
[[nodiscard]] TimeSpan spanOf(const ICalendarSeries& series);

} // namespace quorva
