// Points in time and durations, and their machine-readable form. Pure functions, callable from any
// thread; nothing here reads a clock.
#pragma once

#include <chrono>
#include <string>

namespace quorva {

/// An absolute point in time (UTC, nanoseconds).
using Time = std::chrono::system_clock::time_point;

/// A duration in seconds, with fraction.
using Seconds = std::chrono::duration<double>;

/// ISO 8601 internet date-time in UTC, rounded down to milliseconds: "2026-02-11T09:41:07.250Z".
[[nodiscard]] std::string iso8601(Time time);

/// The same, rounded down to seconds: "2026-02-11T09:41:07Z".
[[nodiscard]] std::string iso8601Seconds(Time time);

} // namespace quorva
