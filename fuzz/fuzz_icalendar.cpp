// Parses any bytes as a calendar file: the result must respect the limits and lie in the requested
// period.
#include "Expect.h"
#include "platform/linux/icalendar/ICalendarReader.h"

#include <cstddef>
#include <cstdint>

using namespace quorva;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const auto berlin = zoneOfName("Europe/Berlin");
    const Time start(std::chrono::seconds(1'774'656'000)); // 2026-03-28, clocks change on the 29th
    const Time end = start + std::chrono::hours(48);
    const auto calendar = readICalendar({reinterpret_cast<const char*>(data), size},
                                        {.floating = berlin, .userAddresses = {"me@example.org"}});
    const auto found = occurrencesOf(calendar, start, end);
    expect(found.events.size() <= calendar.series.size() * 2 * ICalendarLimits::occurrences);
    for (const auto& event : found.events) {
        expect(event.start <= event.end && event.start < end);
        expect(event.end > start || event.start >= start);
        expect(event.attendees.size() <= ICalendarLimits::attendees);
    }
    for (const auto& series : calendar.series) {
        const auto span = spanOf(series);
        ExpansionBudget budget;
        auto room = ICalendarLimits::attendeesOfPeriod;
        const auto own = occurrencesOf(series, start, end, budget, room);
        expect(own.events.empty() || (span.start < end && span.end >= start));
    }
    return 0;
}
