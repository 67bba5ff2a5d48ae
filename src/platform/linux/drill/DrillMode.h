// The mode in which this program is a stand-in for its own self-test: it does nothing, or shows one
// window on the accessibility bus, until its standard input is closed.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace quorva {

/// The first argument in this mode. It is followed by "program", or by "window", a title and the
/// participants.
inline constexpr std::string_view drillMode = "--drill-stand-in";

/// The line that a stand-in prints when it is ready; any other line says what went wrong.
inline constexpr std::string_view drillReady = "ready";

/// Call this first in `main` of programs that can be stand-ins, with the arguments after the
/// program's name. If they ask for a stand-in, runs it and returns the exit status; otherwise
/// returns nothing.
[[nodiscard]] std::optional<int> runAsDrillStandIn(const std::vector<std::string_view>& arguments);

} // namespace quorva
