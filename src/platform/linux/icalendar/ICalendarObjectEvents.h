// The events of one iCalendar object (VCALENDAR): gathers their properties line by line, and makes
// series of them when the object's time zones are known.
#pragma once

#include "platform/linux/icalendar/ICalendarObjectZones.h"
#include "platform/linux/icalendar/ICalendarReader.h"

#include <map>
#include <unordered_map>

namespace quorva {

/// One thread at a time.
class ICalendarObjectEvents {
public:
    /// What the objects of one file share: the limits that are left, and where the events of a UID
    /// and the moved instances of a series are.
    struct FileState {
        std::size_t eventsLeft = ICalendarLimits::events;
        std::size_t attendeesLeft = ICalendarLimits::attendeesOfFile;
        std::unordered_map<std::string, std::size_t>
            seriesOfUid; ///< positions in the file's series
        std::map<std::pair<std::size_t, UtcSeconds>, std::size_t> movedOfSeries;
    };

    /// All must outlive this.
    ICalendarObjectEvents(const ICalendarReading& reading, FileState& file,
                          ICalendarObjectZones& zones);

    /// Whether a property of this name matters, so that others need not be parsed.
    [[nodiscard]] static bool uses(std::string_view property);

    /// The object's METHOD (RFC 5546).
    void setMethod(std::string_view method);

    // The lines of a VEVENT, in their order.
    void beginEvent();
    void add(const ContentLine& line, ICalendarProblems& problems);
    void endEvent(ICalendarProblems& problems);

    /// Adds the series to `calendar`. Called last, when the zones are complete.
    void finish(ICalendar& calendar);

private:
    /// An event whose times are not resolved: the zones may still follow.
    struct Draft {
        std::optional<std::string> uid;
        ICalendarEvent event;
        std::optional<ContentLine> organizer;
        std::optional<ContentLine> start;
        std::optional<ContentLine> end;
        std::optional<ContentLine> recurrenceId;
        std::optional<NominalDuration> duration;
        std::vector<ContentLine> dates;      ///< RDATE
        std::vector<ContentLine> exceptions; ///< EXDATE
    };
    /// A moment, on the clock of its own zone.
    struct Moment {
        WallTime wall;
        CalendarZonePtr zone;

        [[nodiscard]] UtcSeconds utc() const { return wall.seconds - zone->offsetAt(wall.seconds); }
    };
    using Moments = std::vector<std::pair<Moment, std::optional<NominalDuration>>>;

    void addAttendee(Draft& draft, const ContentLine& line, ICalendarProblems& problems);
    static void addRule(Draft& draft, const ContentLine& line, ICalendarProblems& problems);
    [[nodiscard]] CalendarParticipant participant(const ContentLine& line) const;
    void addOrganizer(Draft& draft, ICalendarProblems& problems);

    [[nodiscard]] std::optional<Moment> momentOf(const ContentLine& line, std::string_view value,
                                                 ICalendarProblems& problems);
    [[nodiscard]] Moments momentsOf(const std::vector<ContentLine>& lines,
                                    ICalendarProblems& problems);
    [[nodiscard]] bool setTimes(Draft& draft, ICalendarProblems& problems);
    [[nodiscard]] NominalDuration durationOf(const Draft& draft, const Moment& start,
                                             ICalendarProblems& problems);
    void addDates(Draft& draft, ICalendarProblems& problems);
    [[nodiscard]] std::size_t seriesOf(const Draft& draft, const ICalendar& calendar);
    void addMoved(Draft& draft, std::size_t index, ICalendar& calendar);

    const ICalendarReading& reading;
    FileState& file;
    ICalendarObjectZones& zones;
    bool isCancelled = false; ///< the object cancels its events
    std::vector<Draft> drafts;
    std::size_t datesOfEvent = 0;
    bool isEventOpen = false;
    const CalendarZonePtr utc;
};

} // namespace quorva
