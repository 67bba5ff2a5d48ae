#include "platform/linux/icalendar/ICalendarObjectZones.h"

#include "base/Text.h"
#include "platform/linux/icalendar/ICalendarReader.h"

#include <algorithm>
#include <array>

namespace quorva {
namespace {

constexpr std::array<std::string_view, 7> zoneProperties{
    "TZID", "X-LIC-LOCATION", "DTSTART", "TZOFFSETFROM", "TZOFFSETTO", "RRULE", "RDATE",
};

} // namespace

ICalendarObjectZones::ICalendarObjectZones(CalendarZonePtr floating_)
    : floating(std::move(floating_)) {}

bool ICalendarObjectZones::uses(std::string_view property) {
    return isOneOf(property, zoneProperties);
}

void ICalendarObjectZones::beginZone() {
    draft.emplace();
}

void ICalendarObjectZones::beginObservance() {
    if (!draft)
        return;
    dropIncompleteObservance();
    if (draft->observances.size() < ICalendarLimits::observances)
        draft->observances.emplace_back();
    draft->parts = 0;
}

void ICalendarObjectZones::dropIncompleteObservance() {
    constexpr int startAndOffsets = 3;
    if (!draft->observances.empty() && draft->parts < startAndOffsets)
        draft->observances.pop_back();
}

void ICalendarObjectZones::add(const ContentLine& line) {
    if (!draft)
        return;
    const auto value = trimmed(line.value);
    if (line.name == "TZID")
        draft->name = value;
    else if (line.name == "X-LIC-LOCATION")
        draft->location = value;
    if (draft->observances.empty())
        return;

    auto& observance = draft->observances.back();
    if (line.name == "DTSTART") {
        if (const auto start = parseWallTime(value)) {
            observance.start = start->seconds;
            ++draft->parts;
        }
    } else if (line.name == "TZOFFSETFROM" || line.name == "TZOFFSETTO") {
        if (const auto offset = parseUtcOffset(value)) {
            auto& side = line.name == "TZOFFSETTO" ? observance.offsetTo : observance.offsetFrom;
            side = *offset;
            ++draft->parts;
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

/// Where a definition is unusable, the system's zone of that name is used.
void ICalendarObjectZones::endZone() {
    if (!draft)
        return;
    dropIncompleteObservance();
    if (zones.size() < ICalendarLimits::zones && !draft->name.empty()) {
        auto defined = zoneOfObservances(std::move(draft->observances));
        if (!defined)
            defined = zoneOfName(draft->name);
        if (!defined)
            defined = zoneOfName(draft->location);
        zones.try_emplace(draft->name, std::move(defined));
    }
    draft.reset();
}

CalendarZonePtr ICalendarObjectZones::find(const std::string& name, ICalendarProblems& problems) {
    auto found = zones.find(name);
    if (found == zones.end()) {
        auto named = zoneOfName(name);
        if (zones.size() >= 2 * ICalendarLimits::zones)
            return named ? named : floating;
        found = zones.emplace(name, std::move(named)).first;
    }
    if (found->second)
        return found->second;
    problems.addDoubt("unknown time zone, read as the user's own");
    return floating;
}

} // namespace quorva
