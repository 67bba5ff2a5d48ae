// The zones that an iCalendar object defines, and the names of zones in its times.
#include "base/Text.h"
#include "platform/linux/icalendar/ICalendarScope.h"

namespace quorva {

void ICalendarScope::beginZone() {
    zone.emplace();
}

void ICalendarScope::beginObservance() {
    if (!zone)
        return;
    dropIncompleteObservance();
    if (zone->observances.size() < ICalendarLimits::observances)
        zone->observances.emplace_back();
    zone->parts = 0;
}

void ICalendarScope::dropIncompleteObservance() {
    constexpr int startAndOffsets = 3;
    if (!zone->observances.empty() && zone->parts < startAndOffsets)
        zone->observances.pop_back();
}

void ICalendarScope::addToZone(const ContentLine& line) {
    if (!zone)
        return;
    const auto value = trimmed(line.value);
    if (line.name == "TZID")
        zone->name = value;
    else if (line.name == "X-LIC-LOCATION")
        zone->location = value;
    if (zone->observances.empty())
        return;

    auto& observance = zone->observances.back();
    if (line.name == "DTSTART") {
        if (const auto start = parseWallTime(value)) {
            observance.start = start->seconds;
            ++zone->parts;
        }
    } else if (line.name == "TZOFFSETFROM" || line.name == "TZOFFSETTO") {
        if (const auto offset = parseUtcOffset(value)) {
            (line.name == "TZOFFSETTO" ? observance.offsetTo : observance.offsetFrom) = *offset;
            ++zone->parts;
        }
    } else if (line.name == "RRULE") {
        observance.rule = RecurrenceRule::parse(value);
    } else if (line.name == "RDATE") {
        for (const auto date : splitList(value))
            if (const auto onset = parseWallTime(date);
                onset && observance.dates.size() < ICalendarLimits::observances)
                observance.dates.push_back(onset->seconds);
    }
}

/// A definition that is of no use leaves the zone to its name.
void ICalendarScope::endZone() {
    if (!zone)
        return;
    dropIncompleteObservance();
    if (zones.size() < ICalendarLimits::zones && !zone->name.empty()) {
        auto defined = zoneOfObservances(std::move(zone->observances));
        if (!defined)
            defined = zoneOfName(zone->name);
        if (!defined)
            defined = zoneOfName(zone->location);
        zones.try_emplace(zone->name, std::move(defined));
    }
    zone.reset();
}

CalendarZonePtr ICalendarScope::zoneOf(const std::string& name, ICalendarProblems& problems) {
    auto found = zones.find(name);
    if (found == zones.end()) {
        auto named = zoneOfName(name);
        if (zones.size() >= 2 * ICalendarLimits::zones)
            return named ? named : reading.floating;
        found = zones.emplace(name, std::move(named)).first;
    }
    if (found->second)
        return found->second;
    problems.addDoubt("unknown time zone, read as the user's own");
    return reading.floating;
}

} // namespace quorva
