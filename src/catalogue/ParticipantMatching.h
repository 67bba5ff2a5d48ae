// The rules that decide whether a text in a meeting window names a note-taker among the
// participants, or is a banner that tells of a recording or an assistant.
// Pure functions without side effects, callable from any thread. Texts are UTF-8.
#pragma once

#include "catalogue/Enumerations.h"

#include <optional>
#include <string>
#include <string_view>

namespace quorva {

/// A participant's name that is a bot's.
struct ParticipantBotMatch {
    std::string_view pattern; ///< the pattern that won; valid for ever
    std::string displayName;
    BotCategory category = BotCategory::unknown;
    int confidence = 0; ///< 45 to 95

    bool operator==(const ParticipantBotMatch&) const = default;
};

/// Matches a participant's name, letter case and white space around it aside. The longest pattern
/// that the name contains wins, the earlier row where two are as long. Nothing when none is
/// contained, or when the name is this product's own.
[[nodiscard]] std::optional<ParticipantBotMatch> matchBotName(std::string_view name);

/// As matchBotName, without the weak matches on texts that are no names but labels of controls or
/// long lines.
[[nodiscard]] std::optional<ParticipantBotMatch> matchParticipant(std::string_view text);

/// Whether a text is a label of a control, or too long for a name.
[[nodiscard]] bool isUIActionLabel(std::string_view text);

/// A banner's text, and what it tells of.
struct IndicatorMatch {
    std::string_view phrase; ///< of the first row that matched; valid for ever
    IndicatorType type = IndicatorType::recording;

    bool operator==(const IndicatorMatch&) const = default;
};

/// Matches a text in a window of the platform with this name, letter case aside: the first phrase
/// that it contains and that stands for any platform, or for this one. Nothing for labels of
/// controls that would start or stop a recording.
[[nodiscard]] std::optional<IndicatorMatch> matchIndicator(std::string_view text,
                                                           std::string_view platformName);

} // namespace quorva
