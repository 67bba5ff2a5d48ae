#include "platform/linux/icalendar/ICalendarRecurrence.h"

#include "platform/linux/icalendar/CalendarDays.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <span>
#include <string>
#include <vector>

namespace quorva {
namespace {

constexpr std::size_t maxRuleLength = 2'000;
constexpr WallSeconds endOfTime = 253'402'300'800; // the year 10000

/// How many values libical has room for in a list. With one more, it writes past the array.
struct ListSize {
    std::string_view name;
    long size;
};
constexpr std::array<ListSize, 9> listSizes{{
    {"BYSECOND=", ICAL_BY_SECOND_SIZE - 1},
    {"BYMINUTE=", ICAL_BY_MINUTE_SIZE - 1},
    {"BYHOUR=", ICAL_BY_HOUR_SIZE - 1},
    {"BYDAY=", ICAL_BY_DAY_SIZE - 1},
    {"BYMONTHDAY=", ICAL_BY_MONTHDAY_SIZE - 1},
    {"BYYEARDAY=", ICAL_BY_YEARDAY_SIZE - 1},
    {"BYWEEKNO=", ICAL_BY_WEEKNO_SIZE - 1},
    {"BYMONTH=", ICAL_BY_MONTH_SIZE - 1},
    {"BYSETPOS=", ICAL_BY_SETPOS_SIZE - 1},
}};

/// The values of one BY... part.
std::span<const short> valuesOf(std::span<const short> part) {
    const auto end = std::find(part.begin(), part.end(), ICAL_RECURRENCE_ARRAY_MAX);
    return part.first(static_cast<std::size_t>(end - part.begin()));
}

bool contains(std::span<const short> values, int value) {
    return std::find(values.begin(), values.end(), value) != values.end();
}

/// Whether a part names this position, counted from the front or, negative, from the back.
bool containsPosition(std::span<const short> values, int position, int length) {
    return contains(values, position) || contains(values, position - length - 1);
}

/// One expansion. Steps through the rule's periods (its years, months, weeks, days, hours, …),
/// tests each of their days against the rule, and combines the days that pass with the times of
/// day.
class Expansion {
public:
    Expansion(const icalrecurrencetype& rule_, const RecurrenceRule::Request& request_,
              const std::function<bool(WallSeconds)>& sink_, int maxSteps_)
        : rule(rule_),
          request(request_),
          sink(sink_),
          maxSteps(maxSteps_),
          startDay(floorDivide(request_.start, secondsOfDay)),
          startTime(request_.start - startDay.number * secondsOfDay),
          last(std::min({request_.to, request_.until.value_or(request_.to), endOfTime})) {}

    /// Returns the number of steps.
    int run() {
        if (rule.freq <= ICAL_HOURLY_RECURRENCE)
            walkTicks();
        else
            walkPeriods();
        return steps;
    }

private:
    // --- the walk over years, months, weeks and days

    void walkPeriods() {
        auto period = periodOf(startDay);
        if (rule.count == 0 && request.from > request.start) {
            const auto behind = periodOf(Day(floorDivide(request.from, secondsOfDay))) - period;
            period += std::max<std::int64_t>(0, behind / rule.interval - 1) * rule.interval;
        }
        const auto lastPeriod = periodOf(Day(floorDivide(last, secondsOfDay)));
        for (; !isDone && period <= lastPeriod && steps < maxSteps; period += rule.interval) {
            moments.clear();
            const auto end = firstDayOf(period + 1);
            for (auto number = firstDayOf(period); number < end; ++steps) {
                const Day day(number);
                if (!passesMonths(day)) { // skip whole months that the rule does not name
                    number += day.daysInMonth() - day.day() + 1;
                    continue;
                }
                if (passes(day))
                    addTimes(number * secondsOfDay);
                ++number;
            }
            emitMoments();
        }
    }

    /// The number of the period that contains a day.
    [[nodiscard]] std::int64_t periodOf(const Day& day) const {
        switch (rule.freq) {
        case ICAL_YEARLY_RECURRENCE:
            return day.year();
        case ICAL_MONTHLY_RECURRENCE:
            return day.year() * 12LL + day.month() - 1;
        case ICAL_WEEKLY_RECURRENCE:
            return floorDivide(day.number - weekOrigin(), 7);
        default:
            return day.number;
        }
    }

    [[nodiscard]] std::int64_t firstDayOf(std::int64_t period) const {
        switch (rule.freq) {
        case ICAL_YEARLY_RECURRENCE:
            return firstOfYear(period);
        case ICAL_MONTHLY_RECURRENCE:
            return firstOfMonth(period);
        case ICAL_WEEKLY_RECURRENCE:
            return period * 7 + weekOrigin();
        default:
            return period;
        }
    }

    /// A day on which a week begins. 1970-01-01 was a Thursday, which libical counts as 5.
    [[nodiscard]] std::int64_t weekOrigin() const { return rule.week_start - 5; }

    void addTimes(WallSeconds midnight) {
        const auto hours = timesOr(rule.by_hour, startTime / 3600);
        const auto minutes = timesOr(rule.by_minute, startTime / 60 % 60);
        const auto seconds = timesOr(rule.by_second, startTime % 60);
        for (const auto hour : hours)
            for (const auto minute : minutes)
                for (const auto second : seconds) {
                    moments.push_back(midnight + hour * 3600 + minute * 60 + second);
                    ++steps;
                }
    }

    static std::vector<std::int64_t> timesOr(std::span<const short> part, std::int64_t fallback) {
        const auto values = valuesOf(part);
        if (values.empty())
            return {fallback};
        return {values.begin(), values.end()};
    }

    // --- the walk over hours, minutes and seconds

    void walkTicks() {
        const std::int64_t unit = rule.freq == ICAL_HOURLY_RECURRENCE     ? 3600
                                  : rule.freq == ICAL_MINUTELY_RECURRENCE ? 60
                                                                          : 1;
        const auto stride = unit * rule.interval;
        auto tick = request.start;
        if (rule.count == 0 && request.from > tick)
            tick += std::max<std::int64_t>(0, (request.from - tick) / stride - 1) * stride;
        for (; !isDone && tick - unit < last && steps < maxSteps; ++steps) {
            const auto next = endOfRefusal(tick);
            if (next > tick) { // the rule produces nothing before `next`
                tick += (next - tick + stride - 1) / stride * stride;
                continue;
            }
            moments.clear();
            addTimesWithin(tick, unit);
            emitMoments();
            tick += stride;
        }
    }

    /// `tick` itself if the rule allows it, or the end of the day, hour, minute or second that the
    /// rule excludes.
    [[nodiscard]] std::int64_t endOfRefusal(WallSeconds tick) const {
        const auto day = floorDivide(tick, secondsOfDay);
        const auto time = tick - day * secondsOfDay;
        if (!passes(Day(day)))
            return (day + 1) * secondsOfDay;
        if (refuses(rule.by_hour, time / 3600))
            return tick - time % 3600 + 3600;
        if (rule.freq <= ICAL_MINUTELY_RECURRENCE && refuses(rule.by_minute, time / 60 % 60))
            return tick - time % 60 + 60;
        if (rule.freq == ICAL_SECONDLY_RECURRENCE && refuses(rule.by_second, time % 60))
            return tick + 1;
        return tick;
    }

    static bool refuses(std::span<const short> part, std::int64_t value) {
        const auto values = valuesOf(part);
        return !values.empty() && !contains(values, static_cast<int>(value));
    }

    /// Adds the moments within one hour, minute or second.
    void addTimesWithin(WallSeconds tick, std::int64_t unit) {
        const auto begin = tick - floorModulo(tick, unit);
        const auto minutes = unit == 3600 ? timesOr(rule.by_minute, startTime / 60 % 60)
                                          : std::vector<std::int64_t>{0};
        const auto seconds =
            unit >= 60 ? timesOr(rule.by_second, startTime % 60) : std::vector<std::int64_t>{0};
        for (const auto minute : minutes)
            for (const auto second : seconds) {
                moments.push_back(begin + minute * 60 + second);
                ++steps;
            }
    }

    // --- the BY... parts of a rule as tests of a day

    [[nodiscard]] bool passes(const Day& day) const {
        if (!passesMonths(day))
            return false;
        const auto yearDays = valuesOf(rule.by_year_day);
        if (!yearDays.empty() && !containsPosition(yearDays, day.dayOfYear(), day.daysInYear()))
            return false;
        const auto monthDays = valuesOf(rule.by_month_day);
        if (!monthDays.empty() && !containsPosition(monthDays, day.day(), day.daysInMonth()))
            return false;
        const auto weeks = valuesOf(rule.by_week_no);
        if (!weeks.empty() && !passesWeeks(day, weeks))
            return false;
        const auto weekdays = valuesOf(rule.by_day);
        if (!weekdays.empty())
            return passesWeekdays(day, weekdays);
        const bool isNamed = !yearDays.empty() || !monthDays.empty();
        return isNamed || passesAsStart(day);
    }

    [[nodiscard]] bool passesMonths(const Day& day) const {
        const auto months = valuesOf(rule.by_month);
        return months.empty() || contains(months, day.month());
    }

    /// For a rule that names no days: whether the day corresponds to that of the start.
    [[nodiscard]] bool passesAsStart(const Day& day) const {
        switch (rule.freq) {
        case ICAL_YEARLY_RECURRENCE:
            if (!valuesOf(rule.by_week_no).empty())
                return day.weekday() == startDay.weekday();
            return day.day() == startDay.day() &&
                   (!valuesOf(rule.by_month).empty() || day.month() == startDay.month());
        case ICAL_MONTHLY_RECURRENCE:
            return day.day() == startDay.day();
        case ICAL_WEEKLY_RECURRENCE:
            return day.weekday() == startDay.weekday();
        default:
            return true;
        }
    }

    /// Week 1 is the first with at least four days in the year.
    [[nodiscard]] bool passesWeeks(const Day& day, std::span<const short> weeks) const {
        const auto weekStart = day.number - floorModulo(day.number - weekOrigin(), 7);
        const auto year = Day(weekStart + 3).year();
        const auto firstWeek = firstWeekOf(year);
        const auto week = static_cast<int>((weekStart - firstWeek) / 7) + 1;
        const auto count = static_cast<int>((firstWeekOf(year + 1) - firstWeek) / 7);
        return containsPosition(weeks, week, count);
    }

    [[nodiscard]] std::int64_t firstWeekOf(int year) const {
        const auto fourth = firstOfYear(year) + 3;
        return fourth - floorModulo(fourth - weekOrigin(), 7);
    }

    /// "MO" is every Monday; "2MO" and "-1MO" count the Mondays of the month or the year.
    [[nodiscard]] bool passesWeekdays(const Day& day, std::span<const short> weekdays) const {
        const bool isOfMonth =
            rule.freq == ICAL_MONTHLY_RECURRENCE || !valuesOf(rule.by_month).empty();
        const bool isCounted =
            rule.freq == ICAL_MONTHLY_RECURRENCE ||
            (rule.freq == ICAL_YEARLY_RECURRENCE && valuesOf(rule.by_week_no).empty());
        const int index = isOfMonth ? day.day() - 1 : day.dayOfYear() - 1;
        const int length = isOfMonth ? day.daysInMonth() : day.daysInYear();
        const int fromFront = index / 7 + 1;
        const int fromBack = -((length - 1 - index) / 7 + 1);
        return std::any_of(weekdays.begin(), weekdays.end(), [&](short encoded) {
            if (icalrecurrencetype_day_day_of_week(encoded) != day.weekday())
                return false;
            const int position = icalrecurrencetype_day_position(encoded);
            return position == 0 || !isCounted || position == fromFront || position == fromBack;
        });
    }

    // --- the results

    /// Passes on the moments of one period, or those that BYSETPOS selects.
    void emitMoments() {
        std::sort(moments.begin(), moments.end());
        moments.erase(std::unique(moments.begin(), moments.end()), moments.end());
        const auto positions = valuesOf(rule.by_set_pos);
        const auto length = static_cast<int>(moments.size());
        for (int i = 0; i < length && !isDone; ++i)
            if (positions.empty() || containsPosition(positions, i + 1, length))
                emit(moments[static_cast<std::size_t>(i)]);
    }

    void emit(WallSeconds moment) {
        if (moment < request.start)
            return;
        ++emitted;
        isDone = moment > last || (moment >= request.from && !sink(moment)) ||
                 (rule.count > 0 && emitted >= rule.count);
    }

    const icalrecurrencetype& rule;
    const RecurrenceRule::Request& request;
    const std::function<bool(WallSeconds)>& sink;
    const int maxSteps;
    const Day startDay;
    const std::int64_t startTime; ///< of the day
    const WallSeconds last;
    std::vector<WallSeconds> moments;
    int steps = 0;
    int emitted = 0;
    bool isDone = false;
};

/// Whether libical has room for the lists of a rule, which is given in capitals.
bool fitsLists(const std::string& rule) {
    return std::all_of(listSizes.begin(), listSizes.end(), [&](const ListSize& list) {
        for (auto at = rule.find(list.name); at != std::string::npos;
             at = rule.find(list.name, at + 1)) {
            const auto end = std::min(rule.find(';', at), rule.size());
            const auto* const begin = rule.data();
            if (std::count(begin + at, begin + end, ',') >= list.size)
                return false;
        }
        return true;
    });
}

/// The value of UNTIL. libical parses it too, but not in years out of its range.
std::optional<WallTime> untilOf(std::string_view text) {
    const auto capitals = upperCased(text);
    const auto at = capitals.find("UNTIL=");
    if (at == std::string::npos)
        return std::nullopt;
    const auto begin = at + 6;
    return parseWallTime(text.substr(begin, std::min(text.find(';', begin), text.size()) - begin));
}

} // namespace

std::optional<RecurrenceRule> RecurrenceRule::parse(std::string_view text) {
    const auto capitals = upperCased(text.substr(0, maxRuleLength + 1));
    if (capitals.size() > maxRuleLength || !fitsLists(capitals) ||
        capitals.find_first_not_of(" ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789=;,+-:") !=
            std::string::npos)
        return std::nullopt;
    icalerror_set_errors_are_fatal(0);
    const auto release = [](icalrecurrencetype* parsed) {
        std::free(parsed->rscale);
        delete parsed;
    };
    const std::shared_ptr<icalrecurrencetype> parsed(
        new icalrecurrencetype(icalrecurrencetype_from_string(std::string(text).c_str())), release);
    if (parsed->freq == ICAL_NO_RECURRENCE || parsed->interval < 1 ||
        (parsed->rscale && !equalsIgnoringCase(parsed->rscale, "GREGORIAN")))
        return std::nullopt;

    RecurrenceRule rule;
    rule.untilTime = untilOf(text);
    if (!icaltime_is_null_time(parsed->until) && !rule.untilTime)
        return std::nullopt;
    rule.rule = parsed;
    return rule;
}

bool RecurrenceRule::expand(const Request& request, const std::function<bool(WallSeconds)>& sink,
                            ExpansionBudget& budget) const {
    const auto allowed = static_cast<int>(std::min<std::int64_t>(maxSteps, budget.steps));
    const int steps = Expansion(*rule, request, sink, allowed).run();
    budget.steps -= std::min(steps, allowed);
    return steps < allowed;
}

} // namespace quorva
