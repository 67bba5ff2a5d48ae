// The rules that match the texts of a meeting window: the names of participants against the known
// bots, and other texts against banners of recordings and assistants. Pure functions, callable from
// any thread. Texts are UTF-8.
#pragma once

#include "catalogue/Enumerations.h"

#include <optional>
#include <string>
#include <string_view>

namespace quorva {

/// A participant's name that matches a bot.
struct ParticipantBotMatch {
    std::string_view pattern; ///< the pattern that matched; valid for ever
    std::string displayName;
    BotCategory category = BotCategory::unknown;
    int confidence = 0; ///< 45 to 95

    bool operator==(const ParticipantBotMatch&) const = default;
};

/// Matches a participant's name, ignoring case and white space around it. The longest pattern in
/// the name wins; of equally long ones, the first row. Nothing when the name contains no pattern,
/// or is this product's own.
[[nodiscard]] std::optional<ParticipantBotMatch> matchBotName(std::string_view name);

/// As matchBotName, without weak matches in texts that are labels of controls or long lines rather
/// than names.
[[nodiscard]] std::optional<ParticipantBotMatch> matchParticipant(std::string_view text);

/// Whether a text is a label of a control, or too long for a name.
[[nodiscard]] bool isUIActionLabel(std::string_view text);

/// A phrase found in a banner, and its meaning.
struct IndicatorMatch {
    std::string_view phrase; ///< of the first row that matched; valid for ever
    IndicatorType type = IndicatorType::recording;

    bool operator==(const IndicatorMatch&) const = default;
};

/// Matches a text in a window of the platform `platformName`, ignoring case: the first phrase it
/// contains that applies to any platform or to this one. Nothing for labels of controls that would
/// start or stop a recording.
[[nodiscard]] std::optional<IndicatorMatch> matchIndicator(std::string_view text,
                                                           std::string_view platformName);

} // namespace quorva
