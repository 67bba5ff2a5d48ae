// Recurrence rules (RFC 5545, section 3.3.10) on a wall clock, expanded near the period asked for.
//
// libical reads and checks the rules. It does not expand them: its iterator searches for the next
// day of a rule that has none ("the 30th of February") for seconds, walks a rule with "every
// second" through the years, and cannot be stopped meanwhile; calendar files come from strangers.
// Pure functions, callable from any thread.
#pragma once

#include "platform/linux/icalendar/ICalendarText.h"

#include <functional>
#include <libical/ical.h>
#include <memory>
#include <optional>
#include <string_view>

namespace quorva {

/// What the rules of one file, or of a whole store, may cost: the days and moments looked at.
struct ExpansionBudget {
    std::int64_t steps = 5'000'000;
};

class RecurrenceRule {
public:
    /// Days or moments that one expansion looks at, at most.
    static constexpr int maxSteps = 200'000;

    /// Nothing for what is no rule, for a rule longer than 2,000 characters, and for one in another
    /// calendar than the Gregorian (RFC 7529).
    [[nodiscard]] static std::optional<RecurrenceRule> parse(std::string_view text);

    /// The last moment that the rule may reach.
    [[nodiscard]] const std::optional<WallTime>& until() const { return untilTime; }

    /// What is to be expanded: the period [from, to] of a series that starts at `start`, and the
    /// rule's UNTIL on the clock of `start`.
    struct Request {
        WallSeconds start = 0;
        WallSeconds from = 0;
        WallSeconds to = 0;
        std::optional<WallSeconds> until;
    };

    /// Calls `sink` with the occurrences of the period in ascending order, until it returns false.
    /// `start` itself is only among them where the rule says so. False when the rule was given up
    /// on after `maxSteps` or at the end of the budget, so that occurrences may be missing.
    [[nodiscard]] bool expand(const Request& request, const std::function<bool(WallSeconds)>& sink,
                              ExpansionBudget& budget) const;

private:
    RecurrenceRule() = default;

    std::shared_ptr<const icalrecurrencetype> rule; // 3 KB: shared by the copies of this
    std::optional<WallTime> untilTime;
};

} // namespace quorva
