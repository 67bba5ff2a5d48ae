// How things stand, in one value: the pill, the icon in the panel, its tooltip, the popover's
// headline and the first run all follow from it, and take their words from here. Pure functions.
#pragma once

#include "sources/Sources.h"

#include <string>
#include <string_view>
#include <vector>

namespace quorva {

enum class Verdict {
    off,              ///< nothing is looked at
    scanning,         ///< nothing found so far, and a source that is on has not looked yet
    notFullyWatching, ///< nothing found, but a source that is on cannot look, or not everywhere
    clear,            ///< every source that is on has looked everywhere, and found nothing
    found,
};

/// `findings` is the number of those listed, `states` holds the states of all sources.
[[nodiscard]] Verdict verdictOf(bool isMonitoring, std::size_t findings,
                                const std::vector<SourceState>& states);

/// In a few words: "Monitoring Off", "Scanning", "Not fully watching", "All Clear",
/// "1 Bot Detected", "3 Bots Detected".
[[nodiscard]] std::string verdictText(Verdict verdict, std::size_t findings);

/// The same for screen readers.
[[nodiscard]] std::string verdictLabel(Verdict verdict, std::size_t findings);

/// In a sentence without its full stop, below the words above; empty for `found`.
[[nodiscard]] std::string_view verdictExplanation(Verdict verdict);

/// In one line, with the places that cannot be seen: "Not fully watching: calendars",
/// "1 Bot Detected, but not seen: calendars".
[[nodiscard]] std::string stateInWords(Verdict verdict, std::size_t findings,
                                       const Sources& sources);

/// A line for each source that is limited: what is not seen, and why. Empty if there is none.
[[nodiscard]] std::string uncoveredText(const Sources& sources);

} // namespace quorva
