// Arithmetic of the Gregorian calendar: days counted from 1970-01-01, and their positions in
// months, years and weeks. Pure functions.
#pragma once

#include <chrono>
#include <cstdint>

namespace quorva {

[[nodiscard]] inline std::int64_t floorDivide(std::int64_t a, std::int64_t b) {
    return a / b - (a % b < 0 ? 1 : 0);
}

[[nodiscard]] inline std::int64_t floorModulo(std::int64_t a, std::int64_t b) {
    return a - floorDivide(a, b) * b;
}

/// A day and its position in its month, year and week.
struct Day {
    explicit Day(std::int64_t number_)
        : number(number_), date(std::chrono::sys_days(std::chrono::days(number_))) {}

    [[nodiscard]] int year() const { return static_cast<int>(date.year()); }
    [[nodiscard]] int month() const {
        return static_cast<int>(static_cast<unsigned>(date.month()));
    }
    [[nodiscard]] int day() const { return static_cast<int>(static_cast<unsigned>(date.day())); }
    /// 1 is Sunday, as in libical.
    [[nodiscard]] int weekday() const { return static_cast<int>(floorModulo(number + 4, 7)) + 1; }
    [[nodiscard]] int daysInMonth() const {
        return static_cast<int>(
            static_cast<unsigned>((date.year() / date.month() / std::chrono::last).day()));
    }
    [[nodiscard]] int daysInYear() const { return date.year().is_leap() ? 366 : 365; }
    [[nodiscard]] int dayOfYear() const {
        const auto first = std::chrono::sys_days(date.year() / std::chrono::January / 1);
        return static_cast<int>((std::chrono::sys_days(date) - first).count()) + 1;
    }

    std::int64_t number; ///< days since 1970-01-01
    std::chrono::year_month_day date;
};

[[nodiscard]] inline std::int64_t firstOfYear(std::int64_t year) {
    return std::chrono::sys_days(std::chrono::year(static_cast<int>(year)) / std::chrono::January /
                                 1)
        .time_since_epoch()
        .count();
}

/// The first day of a month counted from January of the year 0.
[[nodiscard]] inline std::int64_t firstOfMonth(std::int64_t month) {
    const auto year = floorDivide(month, 12);
    const std::chrono::month ofYear(static_cast<unsigned>(month - year * 12 + 1));
    return std::chrono::sys_days(std::chrono::year(static_cast<int>(year)) / ofYear / 1)
        .time_since_epoch()
        .count();
}

} // namespace quorva
