#include "platform/linux/icalendar/ICalendarObjectEvents.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace quorva {
namespace {

constexpr std::array<std::string_view, 14> eventProperties{
    "UID",   "SUMMARY",       "STATUS", "SEQUENCE", "ATTENDEE", "ORGANIZER", "DTSTART",
    "DTEND", "RECURRENCE-ID", "RRULE",  "RDATE",    "EXDATE",   "DURATION",  "EXRULE",
};

/// The status for a PARTSTAT. A missing or unknown one counts as not answered yet.
ParticipantStatus statusOf(const std::string* answer) {
    if (!answer)
        return ParticipantStatus::pending;
    const auto is = [&](std::string_view known) { return equalsIgnoringCase(*answer, known); };
    return is("ACCEPTED")    ? ParticipantStatus::accepted
           : is("DECLINED")  ? ParticipantStatus::declined
           : is("TENTATIVE") ? ParticipantStatus::tentative
           : is("DELEGATED") ? ParticipantStatus::delegated
                             : ParticipantStatus::pending;
}

/// The reading of a zone's clock at a moment.
WallSeconds wallOf(UtcSeconds moment, CalendarZone& zone) {
    const auto near = moment + zone.offsetAt(moment);
    return moment + zone.offsetAt(near);
}

} // namespace

ICalendarObjectEvents::ICalendarObjectEvents(const ICalendarReading& reading_, FileState& file_,
                                             ICalendarObjectZones& zones_)
    : reading(reading_), file(file_), zones(zones_), utc(utcZone()) {}

bool ICalendarObjectEvents::uses(std::string_view property) {
    return isOneOf(property, eventProperties);
}

void ICalendarObjectEvents::setMethod(std::string_view method) {
    isCancelled = equalsIgnoringCase(method, "CANCEL");
}

void ICalendarObjectEvents::beginEvent() {
    isEventOpen = file.eventsLeft > 0;
    if (!isEventOpen)
        return;
    --file.eventsLeft;
    datesOfEvent = 0;
    drafts.emplace_back();
}

void ICalendarObjectEvents::add(const ContentLine& line, ICalendarProblems& problems) {
    if (!isEventOpen)
        return;
    auto& draft = drafts.back();
    const auto& name = line.name;
    const auto keepFirst = [&](std::optional<ContentLine>& kept) {
        if (!kept)
            kept = line;
    };
    if (name == "ATTENDEE")
        addAttendee(draft, line, problems);
    else if (name == "UID" && !trimmed(line.value).empty())
        draft.uid = trimmed(line.value);
    else if (name == "SUMMARY")
        draft.event.title = unescapedText(line.value);
    else if (name == "STATUS")
        draft.event.isCancelled = equalsIgnoringCase(trimmed(line.value), "CANCELLED");
    else if (name == "SEQUENCE")
        draft.event.sequence = std::strtoll(line.value.c_str(), nullptr, 10);
    else if (name == "ORGANIZER")
        keepFirst(draft.organizer);
    else if (name == "DTSTART")
        keepFirst(draft.start);
    else if (name == "DTEND")
        keepFirst(draft.end);
    else if (name == "RECURRENCE-ID")
        keepFirst(draft.recurrenceId);
    else if (name == "DURATION")
        draft.duration = parseDuration(trimmed(line.value));
    else if (name == "RRULE")
        addRule(draft, line, problems);
    else if (name == "EXRULE")
        problems.addDoubt("exception rules are not read");
    else if (name == "RDATE")
        draft.dates.push_back(line);
    else if (name == "EXDATE")
        draft.exceptions.push_back(line);
}

void ICalendarObjectEvents::addRule(Draft& draft, const ContentLine& line,
                                    ICalendarProblems& problems) {
    auto& rules = draft.event.rules;
    auto rule = RecurrenceRule::parse(trimmed(line.value));
    if (!rule)
        problems.addLoss("recurrence rule not understood");
    else if (rules.size() == ICalendarLimits::rules)
        problems.addLoss("too many recurrence rules");
    else
        rules.push_back(std::move(*rule));
}

void ICalendarObjectEvents::endEvent(ICalendarProblems& problems) {
    if (!isEventOpen)
        problems.addLoss("too many events");
    else if (drafts.back().organizer)
        addOrganizer(drafts.back(), problems);
    isEventOpen = false;
}

void ICalendarObjectEvents::addAttendee(Draft& draft, const ContentLine& line,
                                        ICalendarProblems& problems) {
    auto attendee = participant(line);
    if (attendee.url.empty() && !attendee.name) {
        problems.addLoss("attendee without an address");
        return;
    }
    auto& attendees = draft.event.attendees;
    if (attendees.size() >= ICalendarLimits::attendees || file.attendeesLeft == 0) {
        problems.addLoss("too many attendees");
        return;
    }
    --file.attendeesLeft;
    attendees.push_back(std::move(attendee));
}

CalendarParticipant ICalendarObjectEvents::participant(const ContentLine& line) const {
    CalendarParticipant attendee{.url = line.value, .status = statusOf(line.parameter("PARTSTAT"))};
    if (const auto* const name = line.parameter("CN"); name && !trimmed(*name).empty())
        attendee.name = *name;
    const auto* const mail = line.parameter("EMAIL");
    if (mail && line.value.find('@') == std::string::npos)
        attendee.url = *mail;
    const auto address = comparableAddress(attendee.url);
    attendee.isCurrentUser =
        std::any_of(reading.userAddresses.begin(), reading.userAddresses.end(),
                    [&](const std::string& own) { return comparableAddress(own) == address; });
    return attendee;
}

/// Marks the organizer, who attends as well, and adds the one whom the server did not list.
void ICalendarObjectEvents::addOrganizer(Draft& draft, ICalendarProblems& problems) {
    const auto address = comparableAddress(participant(*draft.organizer).url);
    auto& attendees = draft.event.attendees;
    bool isListed = false;
    for (auto& listed : attendees)
        if (comparableAddress(listed.url) == address)
            isListed = listed.isOrganizer = true;
    const auto count = attendees.size();
    if (!isListed)
        addAttendee(draft, *draft.organizer, problems);
    if (attendees.size() > count)
        attendees.back().isOrganizer = true;
}

std::optional<ICalendarObjectEvents::Moment>
ICalendarObjectEvents::momentOf(const ContentLine& line, std::string_view value,
                                ICalendarProblems& problems) {
    std::string zoneName;
    if (const auto* const name = line.parameter("TZID"))
        zoneName = *name;
    // "TZID=GMT+05:30:2026…": some servers do not quote it
    if (const auto colon = value.rfind(':'); colon != std::string_view::npos) {
        zoneName.append(":").append(value.substr(0, colon));
        value.remove_prefix(colon + 1);
    }
    const auto wall = parseWallTime(trimmed(value));
    if (!wall)
        return std::nullopt;
    if (wall->isUtc)
        return Moment{*wall, utc};
    if (wall->isDate || zoneName.empty())
        return Moment{*wall, reading.floating};
    return Moment{*wall, zones.find(zoneName, problems)};
}

ICalendarObjectEvents::Moments
ICalendarObjectEvents::momentsOf(const std::vector<ContentLine>& lines,
                                 ICalendarProblems& problems) {
    Moments moments;
    for (const auto& line : lines)
        for (const auto value : splitList(line.value)) {
            if (datesOfEvent == ICalendarLimits::dates) {
                problems.addLoss("too many dates of one event");
                return moments;
            }
            const auto slash = std::min(value.find('/'), value.size());
            const auto moment = momentOf(line, value.substr(0, slash), problems);
            if (!moment) {
                problems.addLoss("date not understood");
                continue;
            }
            ++datesOfEvent;
            std::optional<NominalDuration> duration;
            if (slash < value.size()) {
                duration = parseDuration(value.substr(slash + 1));
                if (const auto end = momentOf(line, value.substr(slash + 1), problems))
                    duration = {.seconds = std::max<std::int64_t>(0, end->utc() - moment->utc())};
            }
            moments.emplace_back(*moment, duration);
        }
    return moments;
}

bool ICalendarObjectEvents::setTimes(Draft& draft, ICalendarProblems& problems) {
    const auto start =
        draft.start ? momentOf(*draft.start, draft.start->value, problems) : std::nullopt;
    if (!start) {
        problems.addLoss("event without a readable start");
        return false;
    }
    auto& event = draft.event;
    event.zone = start->zone;
    event.start = start->wall.seconds;
    event.isAllDay = start->wall.isDate;
    event.isCancelled = event.isCancelled || isCancelled;
    event.duration = durationOf(draft, *start, problems);
    addDates(draft, problems);
    return true;
}

NominalDuration ICalendarObjectEvents::durationOf(const Draft& draft, const Moment& start,
                                                  ICalendarProblems& problems) {
    const NominalDuration none{.days = start.wall.isDate ? 1 : 0};
    if (!draft.end)
        return draft.duration.value_or(none);
    const auto end = momentOf(*draft.end, draft.end->value, problems);
    if (!end)
        problems.addDoubt("end of an event not understood");
    if (!end || end->utc() <= start.utc())
        return none;
    if (start.wall.isDate && end->wall.isDate)
        return {.days = (end->wall.seconds - start.wall.seconds) / secondsOfDay};
    return {.seconds = end->utc() - start.utc()};
}

void ICalendarObjectEvents::addDates(Draft& draft, ICalendarProblems& problems) {
    auto& event = draft.event;
    datesOfEvent = 0;
    for (const auto& [moment, duration] : momentsOf(draft.dates, problems)) {
        const bool isSameClock = moment.zone == event.zone || moment.wall.isDate;
        event.dates.emplace_back(
            isSameClock ? moment.wall.seconds : wallOf(moment.utc(), *event.zone), duration);
    }
    for (const auto& [moment, duration] : momentsOf(draft.exceptions, problems)) {
        if (moment.wall.isDate)
            event.exceptions.days.push_back(moment.wall.seconds);
        else
            event.exceptions.moments.push_back(moment.utc());
    }
    event.exceptions.sort();
}

void ICalendarObjectEvents::finish(ICalendar& calendar) {
    for (auto& draft : drafts) {
        if (!setTimes(draft, calendar.problems))
            continue;
        const auto index = seriesOf(draft, calendar);
        if (index == calendar.series.size())
            calendar.series.push_back({.uid = draft.uid});
        auto& master = calendar.series[index].master;
        if (draft.recurrenceId)
            addMoved(draft, index, calendar);
        else if (!master || master->sequence <= draft.event.sequence)
            master = std::move(draft.event);
    }
}

/// The position of an event's series in the calendar; the end for a new series.
std::size_t ICalendarObjectEvents::seriesOf(const Draft& draft, const ICalendar& calendar) {
    const auto end = calendar.series.size();
    return draft.uid ? file.seriesOfUid.try_emplace(*draft.uid, end).first->second : end;
}

/// Of several versions of an instance, the one with the highest SEQUENCE counts.
void ICalendarObjectEvents::addMoved(Draft& draft, std::size_t index, ICalendar& calendar) {
    auto& series = calendar.series[index];
    const auto original =
        momentOf(*draft.recurrenceId, draft.recurrenceId->value, calendar.problems);
    if (!original) {
        calendar.problems.addLoss("instance of a series without a readable date");
        series.moved.push_back(std::move(draft.event));
        return;
    }
    if (draft.recurrenceId->parameter("RANGE"))
        calendar.problems.addDoubt("change of all later instances read as a change of one");
    const auto moment = original->utc();
    const auto [known, isNew] =
        file.movedOfSeries.try_emplace({index, moment}, series.moved.size());
    if (isNew) {
        if (original->wall.isDate)
            series.replaced.days.push_back(original->wall.seconds);
        else
            series.replaced.moments.push_back(moment);
        series.moved.push_back(std::move(draft.event));
    } else if (series.moved[known->second].sequence <= draft.event.sequence) {
        series.moved[known->second] = std::move(draft.event);
    }
}

} // namespace quorva
