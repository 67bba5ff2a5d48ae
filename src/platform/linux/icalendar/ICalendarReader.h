// Reads iCalendar files (RFC 5545) of any origin, including hostile ones. A broken event does not
// affect the others; losses are counted by reason. Does no I/O except on the system's time zone
// database.
#pragma once

#include "platform/linux/icalendar/ICalendar.h"

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quorva {

struct ICalendarLimits {
    static constexpr std::size_t events = 200'000;   ///< of a file
    static constexpr std::size_t attendees = 10'000; ///< of an event
    static constexpr std::size_t attendeesOfFile = 500'000;
    static constexpr std::size_t dates = 20'000;      ///< RDATE and EXDATE of an event
    static constexpr std::size_t rules = 8;           ///< of an event
    static constexpr std::size_t depth = 32;          ///< of components within components
    static constexpr std::size_t zones = 200;         ///< defined in a file
    static constexpr std::size_t observances = 200;   ///< of a zone
    static constexpr std::size_t occurrences = 1'000; ///< of a series in one period
    /// Of all occurrences in one period, which count themselves too. A series always has its first.
    static constexpr std::size_t attendeesOfPeriod = 250'000;
};

struct ICalendarReading {
    CalendarZonePtr floating;               ///< the user's zone: that of times without one
    std::vector<std::string> userAddresses; ///< without "mailto:"
};

/// A mail address in a form that can be compared: in lower case, without "mailto:" and surrounding
/// white space.
[[nodiscard]] std::string comparableAddress(std::string_view address);

/// Parses the bytes of a file; never fails. An attendee's address is kept as written; if it is not
/// a mail address, the EMAIL parameter (RFC 7986) replaces it. An organizer who is not listed as an
/// attendee is added as one. Times in an unknown zone are read in the user's zone. Events of a
/// METHOD:CANCEL object (RFC 5546) are cancelled. Any thread; the result belongs to one thread at a
/// time, because its zones cache.
[[nodiscard]] ICalendar readICalendar(std::string_view bytes, const ICalendarReading& reading);

/// One line that names the losses and how often each occurred. Empty without any.
[[nodiscard]] std::string lossesOf(const ICalendarProblems& problems);

/// Occurrences that overlap a period, and what was given up on while finding them. The events name
/// no calendar.
struct Occurrences {
    std::vector<CalendarEvent> events;
    ICalendarProblems problems;
    bool isComplete = true; ///< false: the budget of steps did not suffice
};

/// The occurrences of `series` that overlap the period, by start. Subtracts the steps from
/// `budget`, and the occurrences and attendees from `room`.
[[nodiscard]] Occurrences occurrencesOf(const ICalendarSeries& series, Time start, Time end,
                                        ExpansionBudget& budget, std::size_t& room);

/// Has `expand` expand each of `count` series within a part of `steps`, and once more within a
/// larger part where it returns false. Each series gets the same small part at first; then those
/// that need more get equal parts of what is left. What one series costs is therefore never taken
/// from another that needs less.
void shareSteps(std::size_t count, std::int64_t steps,
                const std::function<bool(std::size_t, ExpansionBudget&)>& expand);

/// The occurrences of each of many series, in their order, with one limit on the work for all.
[[nodiscard]] std::vector<Occurrences>
occurrencesOfEach(std::span<const ICalendarSeries* const> series, Time start, Time end);

/// The occurrences of all series of a file that overlap the period, by start.
[[nodiscard]] Occurrences occurrencesOf(const ICalendar& calendar, Time start, Time end);

/// A period that contains all occurrences of a series. An end of `Time::max` is open.
struct TimeSpan {
    Time start = Time::min();
    Time end = Time::max();
};
[[nodiscard]] TimeSpan spanOf(const ICalendarSeries& series);

} // namespace quorva
