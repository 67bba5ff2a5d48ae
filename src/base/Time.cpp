#include "base/Time.h"

#include <fmt/compile.h>

#include <string_view>

namespace quorva {

std::string iso8601(Time time) {
    using namespace std::chrono;
    const auto millis = floor<milliseconds>(time);
    const auto day = floor<days>(millis);
    const year_month_day date{day};
    const hh_mm_ss clock{millis - day};
    return fmt::format(FMT_COMPILE("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:03}Z"),
                       static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                       static_cast<unsigned>(date.day()), clock.hours().count(),
                       clock.minutes().count(), clock.seconds().count(),
                       clock.subseconds().count());
}

std::string iso8601Seconds(Time time) {
    return iso8601(time).erase(std::string_view("2026-02-11T09:41:07").size(), 4);
}

} // namespace quorva
