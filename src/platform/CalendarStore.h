// The user's calendars, from accounts and folders. Read only: nothing is ever written to a
// calendar.
#pragma once

#include "base/Subscription.h"
#include "base/Time.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quorva {

/// Whether the user allows the program to read calendars. Only full access does.
enum class CalendarAuthorization {
    notDetermined = 0, ///< never asked
    restricted = 1,    ///< there is nothing to read now: no calendar service and no folder
    denied = 2,
    fullAccess = 3,
    writeOnly = 4,
};

/// An attendee's answer to the invitation (PARTSTAT of RFC 5545).
enum class ParticipantStatus { unknown, pending, accepted, declined, tentative, delegated };

struct CalendarParticipant {
    std::optional<std::string> name; ///< CN; absent when there is none
    std::string url; ///< the address as the inviter's server wrote it, including "mailto:"
    bool isCurrentUser = false;
    ParticipantStatus status = ParticipantStatus::unknown;
    bool isOrganizer = false; ///< whether invited as well or not

    bool operator==(const CalendarParticipant&) const = default;
};

/// One occurrence of an event that is not cancelled.
struct CalendarEvent {
    std::optional<std::string>
        eventIdentifier; ///< stable; the same for all occurrences of a series
    std::optional<std::string> title;
    Time start;
    Time end;
    bool isAllDay = false;
    std::vector<CalendarParticipant> attendees;
    std::string calendarName;
    std::string calendarIdentifier; ///< stable; tells calendars of one name apart; ends in "/"

    bool operator==(const CalendarEvent&) const = default;
};

/// Whether an event overlaps the period from `start` to `end`: it begins before the period ends and
/// ends after the period begins. An event without length overlaps the period that its start is in.
[[nodiscard]] inline bool overlaps(Time eventStart, Time eventEnd, Time start, Time end) {
    return eventStart < end && (eventEnd > start || eventStart >= start);
}

enum class CalendarSourceType { local, exchange, calDAV, mobileMe, subscribed, birthdays };

/// The service that an account belongs to, whatever protocol connects it.
enum class CalendarProvider { other, google, exchange, iCloud };

/// An account or folder that calendars come from.
struct CalendarSource {
    std::string title;
    CalendarSourceType type = CalendarSourceType::local;
    CalendarProvider provider = CalendarProvider::other;

    bool operator==(const CalendarSource&) const = default;
};

/// A calendar that could not be read, or not all of it. Without it, such a calendar would look
/// empty.
struct FailedCalendar {
    std::string calendarName;
    std::string reason; ///< for the log and for people
    /// Stands for every calendar whose identifier begins with it; empty: none that is known.
    std::string identifier;

    [[nodiscard]] bool covers(const std::string& calendarIdentifier) const {
        return !identifier.empty() && calendarIdentifier.starts_with(identifier);
    }
    bool operator==(const FailedCalendar&) const = default;
};

/// The result of reading a period.
struct CalendarWindow {
    std::vector<CalendarEvent> events; ///< those that overlap the period, by start
    std::vector<FailedCalendar> failed;
    std::size_t calendars = 0; ///< how many were asked, the failed ones included
};

/// Main thread only. No operation waits for a service, a disk or the network.
class CalendarStore {
public:
    virtual ~CalendarStore() = default;

    /// The access that the user currently gives.
    [[nodiscard]] virtual CalendarAuthorization authorizationStatus() const = 0;

    /// The user's answer. `error` says why the user could not be asked; it is absent on a refusal.
    struct AccessAnswer {
        bool granted = false;
        std::optional<std::string> error;
    };

    /// Asks the user for full access, and calls `done` once with the answer, on the main loop or
    /// within this call.
    virtual void requestFullAccess(std::function<void(AccessAnswer)> done) = 0;

    /// Looks again whether there are calendars at all, which `authorizationStatus` says. A
    /// difference is told as a change. Reads no calendar, and needs no access.
    virtual void lookForCalendars() = 0;

    /// Reads the occurrences that overlap the period from `start` to `end`, and calls `done` once,
    /// on the main loop or within this call. A calendar that does not answer within 10 seconds is
    /// reported as failed. Dropping the subscription ends the wait without a call.
    [[nodiscard]] virtual Subscription fetchEvents(Time start, Time end,
                                                   std::function<void(CalendarWindow)> done) = 0;

    /// The accounts and folders known so far, in the service's order.
    [[nodiscard]] virtual std::vector<CalendarSource> sources() const = 0;

    /// Calls `callback` on the main loop after an event, a calendar or an account has changed.
    [[nodiscard]] virtual Subscription onChange(Task callback) = 0;
};

} // namespace quorva
