// Speaks texts aloud.
#pragma once

#include "base/Subscription.h"

#include <optional>
#include <string>
#include <vector>

namespace quorva {

/// A voice that is installed.
struct SpeechVoice {
    std::string name;     ///< identifies it
    std::string language; ///< BCP 47, such as "en-US"
    int quality = 0;      ///< higher is better; equal where the service does not rate voices

    bool operator==(const SpeechVoice&) const = default;
};

/// Chooses the voice for an utterance from those installed, which are in the service's order. Null
/// leaves the choice to the service, by the utterance's language. Without state; called on any
/// thread.
using VoiceChoice = const SpeechVoice* (*)(const std::vector<SpeechVoice>& installed);

/// A text to be spoken. The implementation says how it maps the scales to those of its service.
struct SpeechUtterance {
    std::string text;               ///< UTF-8
    VoiceChoice voice = nullptr;    ///< null: the service chooses
    std::string language = "en-US"; ///< if no voice is chosen
    double rate = 0.5;              ///< 0 slowest, 0.5 the usual speed, 1 fastest
    double volume = 1.0;            ///< 0 silent to 1 full
    double pitchMultiplier = 1.0;   ///< 0.5 to 2; 1 is the voice's own pitch
};

/// Main thread only. No operation waits for the service, even if that hangs or is absent.
class SpeechSynthesizer {
public:
    virtual ~SpeechSynthesizer() = default;

    /// Whether an utterance is being spoken or waits.
    [[nodiscard]] virtual bool isSpeaking() const = 0;

    /// Ends the present utterance, mid-word, and drops those that wait.
    virtual void stopSpeaking() = 0;

    /// Speaks an utterance after those before it. When the service fails, all utterances are
    /// dropped and `problem` says why; the next call tries again.
    virtual void speak(SpeechUtterance utterance) = 0;

    /// Why nothing can be spoken, for the log and for the user. Nothing while no fault is known. A
    /// fault ends when the service accepts an utterance.
    [[nodiscard]] virtual std::optional<std::string> problem() const = 0;

    /// Calls `callback` on the main loop after each change of `problem`, and not once the
    /// subscription has been dropped.
    [[nodiscard]] virtual Subscription onProblemChange(Task callback) = 0;
};

} // namespace quorva
