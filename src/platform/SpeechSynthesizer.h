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
    int quality = 0;      ///< the higher the better; equal where the service knows none

    bool operator==(const SpeechVoice&) const = default;
};

/// The voice for an utterance out of those installed, in the service's order; null: the service's
/// own choice for the utterance's language. Without state; called on any thread.
using VoiceChoice = const SpeechVoice* (*)(const std::vector<SpeechVoice>& installed);

/// A text to be spoken. Each scale has its service's own meaning beside it; the implementation says
/// how it maps them.
struct SpeechUtterance {
    std::string text; ///< UTF-8
    VoiceChoice voice = nullptr;
    std::string language = "en-US"; ///< where no voice is chosen
    double rate = 0.5;              ///< 0 slowest, 0.5 the usual speed, 1 fastest
    double volume = 1.0;            ///< 0 silent to 1 full
    double pitchMultiplier = 1.0;   ///< 0.5 to 2, 1 the voice's own pitch
};

/// Main thread only. No operation waits for the service: one that hangs or is absent delays nobody.
class SpeechSynthesizer {
public:
    virtual ~SpeechSynthesizer() = default;

    /// Whether an utterance is being spoken, or waits to be.
    [[nodiscard]] virtual bool isSpeaking() const = 0;

    /// Ends what is being spoken, mid-word, and what waits.
    virtual void stopSpeaking() = 0;

    /// Speaks an utterance, later. What cannot be spoken is dropped, and `problem` says why.
    virtual void speak(SpeechUtterance utterance) = 0;

    /// Why nothing can be spoken, as far as that is known; for the log and for people. Nothing
    /// while no fault is known.
    [[nodiscard]] virtual std::optional<std::string> problem() const = 0;

    /// Calls `callback` on the main loop after `problem` has changed.
    [[nodiscard]] virtual Subscription onProblemChange(Task callback) = 0;
};

} // namespace quorva
