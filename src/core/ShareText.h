// The text with which the user recommends the program to a colleague.
#pragma once

#include "sources/Finding.h"

#include <string>
#include <string_view>

namespace quorva {

/// The program's page on the web.
inline constexpr std::string_view productAddress = "https://quorva.app";

/// Names the first bot in the meeting, else the first on this computer, else no bot.
[[nodiscard]] std::string shareText(const Findings& findings);

} // namespace quorva
