// Texts of the views that depend on the state: pure functions, without a window.
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

/// The time since `then`, in one unit: "now", "12 sec. ago", "2 min. ago", "3 hr. ago", "1 day
/// ago". A time in the future gives "now".
[[nodiscard]] std::string relativeTime(Time then, Time now);

/// The look of a source's chip.
enum class ChipLook { off, on, limited };

[[nodiscard]] ChipLook chipLook(const SourceState& state);

/// How a calendar account's provider is shown.
struct AccountLabel {
    std::string_view symbol;
    std::string_view provider; ///< empty for `other`

    bool operator==(const AccountLabel&) const = default;
};
[[nodiscard]] AccountLabel accountLabel(CalendarProvider provider);

/// Which calendars could still be added, or that there are all kinds.
[[nodiscard]] std::string coverageLine(bool hasGoogle, bool hasExchange, bool hasICloud);

/// The result of the first scan: "1 Bot Found", "3 Bots Found".
[[nodiscard]] std::string foundText(std::size_t count);
/// The sources in which the first scan found nothing, and whether that is all there is to look at.
/// Empty where there are none.
[[nodiscard]] std::string scannedText(const std::vector<std::string_view>& sources, bool isClear);

/// The result of a check for a newer version; empty before the first one.
[[nodiscard]] std::string updateText(bool isChecking, const std::optional<UpdateAnswer>& answer);

} // namespace quorva
