// An entry of the history that is no detection: from this time on a source could not see something.
// It is stored as any other entry, in a form that versions which do not know it can read and show.
#pragma once

#include "catalogue/Records.h"

#include <optional>
#include <string>
#include <string_view>

namespace quorva {

/// The entry that says `text`, of a source of this kind. A long text is cut.
[[nodiscard]] DetectionEvent sightLostEvent(std::string_view text, DetectionSource source,
                                            Time now);

/// The text of such an entry; nothing if the entry is a detection.
[[nodiscard]] std::optional<std::string> sightLostText(const DetectionEvent& event);

} // namespace quorva
