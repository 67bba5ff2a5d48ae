// The mode in which this program is a stand-in of its own self-test: it does nothing, or shows one
// window on the accessibility bus, until its standard input ends.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace quorva {

/// The first argument of a program in this mode. What follows is "program", or "window", a title
/// and the participants.
inline constexpr std::string_view drillMode = "--drill-stand-in";

/// The line that a stand-in prints when it is there; any other says why it is not.
inline constexpr std::string_view drillReady = "ready";

/// To be called first of all by programs that can be stand-ins, with the arguments that follow the
/// program's name. The exit status when they ask for one, after it has ended; else nothing.
[[nodiscard]] std::optional<int> runAsDrillStandIn(const std::vector<std::string_view>& arguments);

} // namespace quorva
