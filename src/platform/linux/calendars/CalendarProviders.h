// Which service a calendar account belongs to, where nothing but its title says so.
#pragma once

#include "platform/CalendarStore.h"

#include <string_view>

namespace quorva {

/// The provider that an account's title names in any letter case: "Google", "ann@gmail.com",
/// "Work (Office 365)". `other` when it names none.
[[nodiscard]] CalendarProvider providerNamed(std::string_view title);

} // namespace quorva
