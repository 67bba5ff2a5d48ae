#include "platform/linux/calendars/CalendarProviders.h"

#include "base/Text.h"

#include <array>
#include <utility>

namespace quorva {

CalendarProvider providerNamed(std::string_view title) {
    using enum CalendarProvider;
    static constexpr std::array<std::pair<std::string_view, CalendarProvider>, 7> names{{
        {"google", google},
        {"gmail", google},
        {"exchange", exchange},
        {"outlook", exchange},
        {"microsoft", exchange},
        {"office", exchange},
        {"icloud", iCloud},
    }};
    const auto text = lowerCased(title);
    for (const auto& [name, provider] : names)
        if (text.find(name) != std::string::npos)
            return provider;
    return other;
}

} // namespace quorva
