// One iCalendar object (VCALENDAR) while it is being read: gathers the properties of its events and
// zones, and makes series of them once all zones are known. One thread at a time.
#pragma once

#include "platform/linux/icalendar/ICalendarReader.h"

#include <map>
#include <unordered_map>

namespace quorva {

/// A zone's definition while it is being read.
struct ICalendarZoneDraft {
    std::string name;
    std::string location; ///< X-LIC-LOCATION
    std::vector<ZoneObservance> observances;
    int parts = 0; ///< how many of its start and its offsets the last observance has
};

class ICalendarScope {
public:
    /// What the objects of one file share: the limits that are left, and where in the file's
    /// series the events of a UID and its instances are.
    struct FileState {
        std::size_t eventsLeft = ICalendarLimits::events;
        std::size_t attendeesLeft = ICalendarLimits::attendeesOfFile;
        std::unordered_map<std::string, std::size_t> seriesOfUid;
        std::map<std::pair<std::size_t, UtcSeconds>, std::size_t> movedOfSeries;
    };

    /// Both must outlive this.
    ICalendarScope(const ICalendarReading& reading, FileState& file);

    /// Whether a property of this name matters, so that others need not be taken apart.
    [[nodiscard]] static bool isOfEvents(std::string_view name);
    [[nodiscard]] static bool isOfZones(std::string_view name);

    void setMethod(std::string_view method);

    void beginEvent();
    void addToEvent(const ContentLine& line, ICalendarProblems& problems);
    void endEvent(ICalendarProblems& problems);

    void beginZone();
    void beginObservance();
    void addToZone(const ContentLine& line);
    void endZone();

    /// Adds what was read to `calendar`. Called last.
    void finish(ICalendar& calendar);

private:
    /// An event whose times still wait for the zones.
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
    /// A moment in the file, on the clock of its own zone.
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

    [[nodiscard]] CalendarZonePtr zoneOf(const std::string& name, ICalendarProblems& problems);
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
    void dropIncompleteObservance();

    const ICalendarReading& reading;
    FileState& file;
    bool isCancelled = false;
    std::vector<Draft> drafts;
    std::size_t datesOfEvent = 0;
    bool isEventOpen = false;
    std::optional<ICalendarZoneDraft> zone;
    std::map<std::string, CalendarZonePtr, std::less<>> zones; ///< null: known to be unknown
    const CalendarZonePtr utc;
};

} // namespace quorva
