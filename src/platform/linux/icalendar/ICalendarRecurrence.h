// Recurrence rules (RFC 5545, section 3.3.10) on a wall clock, expanded near the period asked for.
//
// libical parses and checks the rules but does not expand them. Its iterator searches for seconds
// when a rule has no next day ("the 30th of February"), steps through years of a rule that recurs
// every second, and cannot be interrupted; and a stranger can send such a rule in an invitation.
// Pure functions, callable from any thread.
#pragma once

#include "platform/linux/icalendar/ICalendarText.h"

#include <functional>
#include <libical/ical.h>
#include <memory>
#include <optional>
#include <string_view>

namespace quorva {

/// The limit on work: how many days and moments rules may still examine.
struct ExpansionBudget {
    std::int64_t steps = 5'000'000;
};

class RecurrenceRule {
public:
    /// The most days and moments that one expansion examines.
    static constexpr int maxSteps = 200'000;

    /// Parses the value of an RRULE. Nothing for invalid rules, for those of more than 2,000
    /// characters, and for those in a calendar other than the Gregorian (RFC 7529).
    [[nodiscard]] static std::optional<RecurrenceRule> parse(std::string_view text);

    /// The rule's UNTIL.
    [[nodiscard]] const std::optional<WallTime>& until() const { return untilTime; }

    struct Request {
        WallSeconds start = 0; ///< of the series
        WallSeconds from = 0;  ///< the period, its end included
        WallSeconds to = 0;
        std::optional<WallSeconds> until; ///< the rule's UNTIL on the clock of `start`
    };

    /// Calls `sink` with the occurrences in the period, in ascending order, until it returns false.
    /// `start` is among them only if the rule produces it. Subtracts the steps from `budget`.
    /// Returns false when `maxSteps` or the budget was exhausted, so that occurrences may be
    /// missing.
    [[nodiscard]] bool expand(const Request& request, const std::function<bool(WallSeconds)>& sink,
                              ExpansionBudget& budget) const;

private:
    RecurrenceRule() = default;

    std::shared_ptr<const icalrecurrencetype> rule; // 3 KB: shared by the copies of this
    std::optional<WallTime> untilTime;
};

} // namespace quorva
