// The protocol of Speech Dispatcher (SSIP): its lines and its scales. Pure functions, callable from
// any thread.
#pragma once

#include "platform/SpeechSynthesizer.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorva::ssip {

/// Speech Dispatcher's scales reach from -100 to 100, and 0 is the voice's own value. A value
/// beyond a scale becomes the nearest one on it, and NaN becomes the usual one.
///
/// Rate: 0 → -100, 0.5 → 0, 1 → 100, linear in between.
[[nodiscard]] int rate(double value);
/// Volume: 0 → -100 (silent), 1 → 100 (full), linear in between.
[[nodiscard]] int volume(double value);
/// Pitch: 0.5 → -100, 1 → 0, 2 → 100, linear in octaves.
[[nodiscard]] int pitch(double multiplier);

inline constexpr std::string_view undetermined = "und";

/// Spells a language as BCP 47 does: "en-US" for a synthesizer's "en_US", "EN-us" or "en_US.UTF-8".
/// Returns `undetermined` for a text that does not name a language.
[[nodiscard]] std::string languageTag(std::string_view spelling);

/// A line of an answer: three digits, "-" if more lines follow, and a text.
struct Line {
    int code = 0;
    bool isLast = false;
    std::string text;

    bool operator==(const Line&) const = default;
};

/// Nothing when the line is malformed. Text becomes valid UTF-8.
[[nodiscard]] std::optional<Line> decodeLine(std::string_view line);

/// An answer or an event. The last line has a text for people, the others have values.
struct Reply {
    int code = 0;
    std::vector<std::string> values;
    std::string explanation;

    [[nodiscard]] bool isSuccess() const { return code >= 200 && code < 300; }
};

/// A line of the list of voices: name, language and variant, separated by tabs. Nothing when the
/// name is empty.
[[nodiscard]] std::optional<SpeechVoice> decodeVoice(std::string_view value);

/// A text as it follows SPEAK, with the line that ends it. Lines of the text that would end it are
/// escaped.
[[nodiscard]] std::string encodeText(std::string_view text);

/// A command and its line end. Characters within it that would end it are removed.
[[nodiscard]] std::string encodeCommand(std::string_view command);

} // namespace quorva::ssip
