// A connected speech service, which speaks one utterance at a time.
#pragma once

#include "base/MainLoop.h"
#include "platform/linux/speech/SsipConnection.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quorva {

/// Dropping it closes the connection without further calls. Main thread only; never waits.
/// SpeechProtocol.h says how the scales are mapped.
class SpeechSession {
public:
    /// Each may drop the session.
    struct Callbacks {
        Task onAccepted; ///< the service has accepted an utterance, even if it was cancelled since
        Task onSpoken;   ///< the utterance has ended
        /// The session is of no further use. `why` is the fault of the service; nothing when the
        /// service closed an unused connection, or did not report the end of the utterance in time.
        std::function<void(const std::optional<std::string>& why)> onOver;
    };

    /// Over a connected socket. A command may take as long as `answerTimeout`. `loop` must outlive
    /// this object.
    SpeechSession(MainLoop& loop, GObjectPtr<GSocketConnection> socket, Seconds answerTimeout,
                  Callbacks callbacks);
    ~SpeechSession();

    SpeechSession(const SpeechSession&) = delete;
    SpeechSession& operator=(const SpeechSession&) = delete;

    /// Whether there is an utterance that has not ended.
    [[nodiscard]] bool isSpeaking() const { return utterance != nullptr; }

    /// Whether this session can speak in the voice wanted: once a voice has been chosen, the
    /// service cannot be told to make its own choice again.
    [[nodiscard]] bool canSpeak(const SpeechUtterance& wanted) const;

    /// Speaks an utterance. None may be under way, and `canSpeak` must hold.
    void speak(SpeechUtterance wanted);

    /// Stops speaking, mid-word.
    void cancel();

private:
    struct Utterance;

    void introduce();
    void chooseVoice();
    void listVoices();
    void send(const SpeechVoice* voice);
    void handleMessage(const ssip::Reply& reply);
    void handleEvent(const ssip::Reply& event);
    void handleEnd(SsipConnection::End end);
    void endUtterance();
    void endSession(const std::optional<std::string>& why);

    MainLoop& loop;
    const Callbacks callbacks;
    std::optional<std::vector<SpeechVoice>> voices; ///< nothing until they have been listed
    bool hasVoice = false;                          ///< a voice has been chosen
    std::unique_ptr<Utterance> utterance;           ///< null while there is nothing to speak
    SsipConnection connection;                      // last: it calls back while it lives
};

} // namespace quorva
