#include "catalogue/Records.h"

#include <fmt/format.h>

namespace quorva {

std::string CalendarBotDetection::timeUntilStartLabel(Time now) const {
    if (eventStartDate <= now)
        return "now";
    const auto total = std::chrono::floor<std::chrono::minutes>(eventStartDate - now).count();
    const auto hours = total / 60;
    const auto minutes = total % 60;
    if (hours == 0)
        return fmt::format("{}m", minutes);
    return minutes == 0 ? fmt::format("{}h", hours) : fmt::format("{}h {}m", hours, minutes);
}

} // namespace quorva
