// The occurrences of a series: its start, RRULE and RDATE, without EXDATE and the original places
// of moved instances, plus these at their new places.
#include "platform/linux/icalendar/ICalendarReader.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <numeric>
#include <utility>

namespace quorva {
namespace {

using std::chrono::duration_cast;
using std::chrono::seconds;

/// Clocks are never set forward or back by more than this at once.
constexpr std::int64_t clockSlack = std::int64_t{3} * 3600;

/// Years out of the clock's range, such as 1 and 9999, become its first or last moment.
Time timeOf(UtcSeconds moment) {
    constexpr auto first = duration_cast<seconds>(Time::min().time_since_epoch()).count();
    constexpr auto last = duration_cast<seconds>(Time::max().time_since_epoch()).count();
    return Time(seconds(std::clamp<UtcSeconds>(moment, first, last)));
}

UtcSeconds utcOfTime(Time time) {
    return std::chrono::floor<seconds>(time.time_since_epoch()).count();
}

/// The rule's UNTIL on the clock of the event's start. A date without a time includes all of that
/// day.
std::optional<WallSeconds> untilOf(const RecurrenceRule& rule, const ICalendarEvent& event) {
    const auto& until = rule.until();
    if (!until)
        return std::nullopt;
    if (until->isDate)
        return until->seconds + secondsOfDay - 1;
    return until->isUtc ? until->seconds + event.zone->offsetAt(until->seconds) : until->seconds;
}

std::int64_t lengthOf(const NominalDuration& duration) {
    return duration.days * secondsOfDay + duration.seconds;
}

class SeriesExpansion {
public:
    SeriesExpansion(const ICalendarSeries& series_, Time start_, Time end_,
                    ExpansionBudget& budget_, std::size_t& room_)
        : series(series_), start(start_), end(end_), budget(budget_), room(room_) {}

    Occurrences run() {
        if (series.master && !series.master->isCancelled)
            addMaster(*series.master);
        for (const auto& event : series.moved)
            if (!event.isCancelled)
                (void)add(event, event.start, event.duration);
        return std::move(found);
    }

private:
    struct Candidate {
        WallSeconds wall;
        NominalDuration duration;
    };

    void addMaster(const ICalendarEvent& event) {
        std::vector<Candidate> candidates;
        collect(event, {event.start, event.duration}, candidates);
        for (const auto& [wall, duration] : event.dates)
            collect(event, {wall, duration.value_or(event.duration)}, candidates);
        for (const auto& rule : event.rules)
            collectRule(event, rule, candidates);

        std::stable_sort(candidates.begin(), candidates.end(),
                         [](const auto& a, const auto& b) { return a.wall < b.wall; });
        candidates.erase(std::unique(candidates.begin(), candidates.end(),
                                     [](const auto& a, const auto& b) { return a.wall == b.wall; }),
                         candidates.end());
        for (const auto& candidate : candidates)
            if (!add(event, candidate.wall, candidate.duration))
                return;
    }

    void collectRule(const ICalendarEvent& event, const RecurrenceRule& rule,
                     std::vector<Candidate>& candidates) {
        const auto from = utcOfTime(start);
        const auto to = utcOfTime(end);
        const RecurrenceRule::Request request{
            .start = event.start,
            .from = from + event.zone->offsetAt(from) - lengthOf(event.duration) - clockSlack,
            .to = to + event.zone->offsetAt(to) + clockSlack,
            .until = untilOf(rule, event),
        };
        const auto enough = candidates.size() + ICalendarLimits::occurrences + 1;
        const bool isComplete = rule.expand(
            request,
            [&](WallSeconds wall) {
                collect(event, {wall, event.duration}, candidates);
                return candidates.size() < enough;
            },
            budget);
        if (isComplete)
            return;
        found.isComplete = false;
        found.problems.addLoss("recurrence rule too laborious");
    }

    /// Keeps a candidate that lies in the period and is neither an exception nor moved away.
    void collect(const ICalendarEvent& event, const Candidate& candidate,
                 std::vector<Candidate>& candidates) const {
        const auto moment = event.utcOf(candidate.wall);
        if (isInPeriod(moment, event.endOf(candidate.wall, candidate.duration)) &&
            !event.exceptions.contains(moment, candidate.wall) &&
            !series.replaced.contains(moment, candidate.wall))
            candidates.push_back(candidate);
    }

    [[nodiscard]] bool isInPeriod(UtcSeconds begins, UtcSeconds ends) const {
        return overlaps(timeOf(begins), timeOf(ends), start, end);
    }

    /// Adds one occurrence if it is in the period. False when a limit is reached.
    bool add(const ICalendarEvent& event, WallSeconds wall, const NominalDuration& duration) {
        const auto begins = event.utcOf(wall);
        const auto ends = std::max(begins, event.endOf(wall, duration));
        if (!isInPeriod(begins, ends))
            return true;
        const auto& known = found.events;
        const auto size = 1 + event.attendees.size();
        if (known.size() == ICalendarLimits::occurrences || (!known.empty() && size > room)) {
            found.problems.addLoss("too many occurrences in one period");
            return false;
        }
        room -= std::min(room, size);
        found.events.push_back({
            .eventIdentifier = series.uid,
            .title = event.title,
            .start = timeOf(begins),
            .end = timeOf(ends),
            .isAllDay = event.isAllDay,
            .attendees = event.attendees,
        });
        return true;
    }

    const ICalendarSeries& series;
    const Time start;
    const Time end;
    ExpansionBudget& budget;
    std::size_t& room;
    Occurrences found;
};

void extend(TimeSpan& span, Time from, Time to) {
    span.start = std::min(span.start, from);
    span.end = std::max(span.end, std::max(from, to));
}

} // namespace

bool MomentSet::contains(UtcSeconds moment, WallSeconds wall) const {
    if (std::binary_search(moments.begin(), moments.end(), moment))
        return true;
    const auto sinceMidnight = (wall % secondsOfDay + secondsOfDay) % secondsOfDay;
    return std::binary_search(days.begin(), days.end(), wall - sinceMidnight);
}

void MomentSet::sort() {
    std::sort(moments.begin(), moments.end());
    std::sort(days.begin(), days.end());
}

Occurrences occurrencesOf(const ICalendarSeries& series, Time start, Time end,
                          ExpansionBudget& budget, std::size_t& room) {
    return SeriesExpansion(series, start, end, budget, room).run();
}

void shareSteps(std::size_t count, std::int64_t steps,
                const std::function<bool(std::size_t, ExpansionBudget&)>& expand) {
    constexpr std::int64_t firstPart = 10'000; // a daily meeting of 27 years
    constexpr std::int64_t largestPart =
        std::int64_t{RecurrenceRule::maxSteps} * ICalendarLimits::rules;
    std::vector<std::size_t> waiting(count);
    std::iota(waiting.begin(), waiting.end(), std::size_t{0});
    const auto partOf = [&](std::int64_t most) {
        const auto number = std::max<std::size_t>(1, waiting.size());
        return std::min(most, steps / static_cast<std::int64_t>(number));
    };
    // Only at least twice the part is worth beginning anew for.
    auto part = partOf(firstPart);
    for (std::int64_t least = 0; !waiting.empty() && part >= least; part = partOf(largestPart)) {
        least = std::max<std::int64_t>(1, 2 * part);
        std::erase_if(waiting, [&](std::size_t index) {
            ExpansionBudget budget{.steps = part};
            const bool isComplete = expand(index, budget);
            steps -= part - budget.steps;
            return isComplete;
        });
    }
}

std::vector<Occurrences> occurrencesOfEach(std::span<const ICalendarSeries* const> series,
                                           Time start, Time end) {
    std::vector<Occurrences> all(series.size());
    std::vector<std::size_t> sizes(series.size());
    std::size_t room = ICalendarLimits::attendeesOfPeriod;
    shareSteps(series.size(), ExpansionBudget{}.steps,
               [&](std::size_t index, ExpansionBudget& budget) {
                   room += std::exchange(sizes[index], 0);
                   const auto before = room;
                   all[index] = occurrencesOf(*series[index], start, end, budget, room);
                   sizes[index] = before - room;
                   return all[index].isComplete;
               });
    return all;
}

Occurrences occurrencesOf(const ICalendar& calendar, Time start, Time end) {
    std::vector<const ICalendarSeries*> series;
    for (const auto& each : calendar.series)
        series.push_back(&each);
    Occurrences occurrences;
    for (auto& found : occurrencesOfEach(series, start, end)) {
        std::move(found.events.begin(), found.events.end(), std::back_inserter(occurrences.events));
        occurrences.problems.add(found.problems);
        occurrences.isComplete &= found.isComplete;
    }
    std::stable_sort(occurrences.events.begin(), occurrences.events.end(),
                     [](const auto& a, const auto& b) { return a.start < b.start; });
    return occurrences;
}

TimeSpan spanOf(const ICalendarSeries& series) {
    TimeSpan span{.start = Time::max(), .end = Time::min()};
    const auto extendBy = [&](const ICalendarEvent& event, WallSeconds wall,
                              const NominalDuration& duration) {
        extend(span, timeOf(event.utcOf(wall)), timeOf(event.endOf(wall, duration)));
    };
    for (const auto& event : series.moved)
        if (!event.isCancelled)
            extendBy(event, event.start, event.duration);
    if (!series.master || series.master->isCancelled)
        return span;
    const auto& master = *series.master;
    extendBy(master, master.start, master.duration);
    for (const auto& [wall, duration] : master.dates)
        extendBy(master, wall, duration.value_or(master.duration));
    for (const auto& rule : master.rules) {
        const auto until = untilOf(rule, master);
        if (!until)
            span.end = Time::max();
        else if (*until >= master.start)
            extendBy(master, *until, master.duration);
    }
    return span;
}

} // namespace quorva
