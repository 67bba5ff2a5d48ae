// How well a source of detections can look. A source has one such state, and everything that says
// how well it looks is derived from it: chips, tray, limitations, settings, reports, exit status.
#pragma once

#include <string>

namespace quorva {

struct SourceState {
    enum class Kind {
        off,          ///< not wanted
        notAllowed,   ///< it is there, but may not be looked at
        notAvailable, ///< there is nothing to look at, or it cannot be looked at
        looking,      ///< not everything has been looked at yet
        partlyBlind,  ///< some of it could not be looked at
        ok,           ///< everything has been looked at
    };
    Kind kind = Kind::off;
    /// One sentence for people: what is not seen, and why. Empty unless the source is limited.
    std::string reason;

    bool operator==(const SourceState&) const = default;

    /// Whether the source is wanted but cannot look, or not everywhere.
    [[nodiscard]] bool isLimited() const {
        return kind == Kind::notAllowed || kind == Kind::notAvailable || kind == Kind::partlyBlind;
    }
};

} // namespace quorva
