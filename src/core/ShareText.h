// The text that recommends the program to a colleague.
#pragma once

#include "catalogue/Records.h"

#include <string>
#include <string_view>
#include <vector>

namespace quorva {

/// The program's page on the web.
inline constexpr std::string_view productAddress = "https://quorva.app";

/// Names the first bot in the meeting, else the first on this computer, else none.
[[nodiscard]] std::string shareText(const std::vector<ParticipantBotDetection>& participants,
                                    const std::vector<DetectedBot>& processes);

} // namespace quorva
