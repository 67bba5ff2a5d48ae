// The content of a calendar file as the reader understood it: series of events with all their times
// resolved. Plain values.
#pragma once

#include "platform/CalendarStore.h"
#include "platform/linux/icalendar/ICalendarZones.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quorva {

/// Seconds since 1970-01-01T00:00:00Z.
using UtcSeconds = std::int64_t;

/// A kind of problem in a file, and how often it occurred.
struct ICalendarProblem {
    std::string reason; ///< a fixed text, never from the file
    std::size_t count = 0;
    bool isLoss = true; ///< an event, an attendee or an occurrence may be missing

    bool operator==(const ICalendarProblem&) const = default;
};

/// The problems of a file, one entry per reason.
class ICalendarProblems {
public:
    void addLoss(std::string_view reason, std::size_t count = 1) { add(reason, count, true); }
    void addDoubt(std::string_view reason) { add(reason, 1, false); }
    void add(const ICalendarProblems& others) {
        for (const auto& other : others.list)
            add(other.reason, other.count, other.isLoss);
    }

    [[nodiscard]] const std::vector<ICalendarProblem>& all() const { return list; }

private:
    void add(std::string_view reason, std::size_t count, bool isLoss) {
        for (auto& problem : list)
            if (problem.reason == reason) {
                problem.count += count;
                return;
            }
        list.push_back({std::string(reason), count, isLoss});
    }

    std::vector<ICalendarProblem> list;
};

/// A set of moments and whole days: exceptions, or the original places of moved instances.
struct MomentSet {
    std::vector<UtcSeconds> moments; ///< ascending
    std::vector<WallSeconds> days;   ///< midnights on the series' own clock, ascending

    [[nodiscard]] bool contains(UtcSeconds moment, WallSeconds wall) const;
    void sort();
};

/// A VEVENT.
struct ICalendarEvent {
    std::optional<std::string> title;
    std::vector<CalendarParticipant> attendees; ///< the organizer is among them
    CalendarZonePtr zone;                       ///< of `start`; never null
    WallSeconds start = 0;                      ///< on the zone's clock
    bool isAllDay = false;
    bool isCancelled = false;
    NominalDuration duration;
    std::vector<RecurrenceRule> rules;
    std::vector<std::pair<WallSeconds, std::optional<NominalDuration>>> dates; ///< on its clock
    MomentSet exceptions;
    std::int64_t sequence = 0;

    [[nodiscard]] UtcSeconds utcOf(WallSeconds wall) const { return wall - zone->offsetAt(wall); }
    [[nodiscard]] UtcSeconds endOf(WallSeconds wall, const NominalDuration& length) const {
        return utcOf(wall + length.days * secondsOfDay) + length.seconds;
    }
};

/// Everything that a file says about one event: the VEVENTs that share a UID.
struct ICalendarSeries {
    std::optional<std::string> uid;
    std::optional<ICalendarEvent> master;
    std::vector<ICalendarEvent> moved; ///< instances with a VEVENT of their own
    MomentSet replaced;                ///< their original places
};

struct ICalendar {
    std::vector<ICalendarSeries> series;
    ICalendarProblems problems;
    bool isCutShort = false; ///< ends within a component: the file may be half written
};

} // namespace quorva
