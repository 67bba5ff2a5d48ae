// How Speech Dispatcher is spoken to: the lines of its protocol (SSIP) and its scales. Pure
// functions, callable from any thread.
#pragma once

#include "platform/SpeechSynthesizer.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorva::ssip {

/// Speech Dispatcher's scales reach from -100 to 100, and 0 is the voice's own value. What is
/// beyond a scale, or no number, becomes the nearest value on it, or the usual one.
///
/// Rate: 0 → -100, 0.5 → 0, 1 → 100, linear in between.
[[nodiscard]] int rate(double value);
/// Volume: 0 → -100 (silent), 1 → 100 (full), linear in between.
[[nodiscard]] int volume(double value);
/// Pitch: 0.5 → -100, 1 → 0, 2 → 100, linear in octaves.
[[nodiscard]] int pitch(double multiplier);

inline constexpr std::string_view undetermined = "und";

/// A language's tag in the spelling of BCP 47, whatever the synthesizer's own is: "en-US" for
/// "en_US", "EN-us" or "en_US.UTF-8". `undetermined` for what is none.
[[nodiscard]] std::string languageTag(std::string_view spelling);

/// A line of an answer: three digits, "-" where more lines follow, and a text.
struct Line {
    int code = 0;
    bool isLast = false;
    std::string text;

    bool operator==(const Line&) const = default;
};

/// Nothing when the line is none of the protocol. Text becomes valid UTF-8.
[[nodiscard]] std::optional<Line> decodeLine(std::string_view line);

/// An answer or an event: the texts of all lines but the last, whose text is for people.
struct Reply {
    int code = 0;
    std::vector<std::string> values;
    std::string explanation;

    [[nodiscard]] bool isSuccess() const { return code >= 200 && code < 300; }
};

/// A line of the list of voices: name, language and variant, with tabs in between. Nothing for one
/// without a name.
[[nodiscard]] std::optional<SpeechVoice> decodeVoice(std::string_view value);

/// A text as it follows SPEAK, with the line that ends it. No line of it can end it early.
[[nodiscard]] std::string encodeText(std::string_view text);

/// The words of a command, without what would end it early.
[[nodiscard]] std::string encodeCommand(std::string_view command);

} // namespace quorva::ssip
