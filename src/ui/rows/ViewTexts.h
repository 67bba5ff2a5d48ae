// What the views say that depends on what there is to be said: pure functions, without a window.
#pragma once

#include "base/Time.h"
#include "platform/CalendarStore.h"
#include "platform/UpdateService.h"
#include "sources/SourceState.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorva {

/// "Monitoring Off", "All Clear", "1 Bot Detected", "3 Bots Detected".
[[nodiscard]] std::string statusPillText(bool isMonitoring, std::size_t count);
/// The same for screen readers.
[[nodiscard]] std::string statusPillLabel(std::size_t count);

/// How long ago `then` was, in one unit: "now", "12 sec. ago", "2 min. ago", "3 hr. ago", "1 day
/// ago". A time in the future is "now".
[[nodiscard]] std::string relativeTime(Time then, Time now);

/// How a source's chip looks.
enum class ChipLook { off, on, limited };

[[nodiscard]] ChipLook chipLook(const SourceState& state);

/// How a calendar account's provider is shown.
struct AccountLabel {
    std::string_view symbol;
    std::string_view provider; ///< empty for `other`

    bool operator==(const AccountLabel&) const = default;
};
[[nodiscard]] AccountLabel accountLabel(CalendarProvider provider);

/// Which calendars would still have to be added, or that all kinds are there.
[[nodiscard]] std::string coverageLine(bool hasGoogle, bool hasExchange, bool hasICloud);

/// What the first scan came to: "1 Bot Found", "3 Bots Found".
[[nodiscard]] std::string foundText(std::size_t count);
/// Which sources the first scan found nothing in.
[[nodiscard]] std::string scannedText(bool hasCalendar, bool hasMeetings);

/// What a check for a newer version has come to; empty before the first one.
[[nodiscard]] std::string updateText(bool isChecking, const std::optional<UpdateAnswer>& answer);

} // namespace quorva
