// Speaks through Speech Dispatcher, the desktop's speech service.
#pragma once

#include "base/MainLoop.h"
#include "platform/SpeechSynthesizer.h"
#include "platform/linux/speech/SpeechConnector.h"
#include "platform/linux/speech/SpeechSession.h"

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <variant>

namespace quorva {

/// Connects when there is something to say, and starts the service where it does not run.
/// Disconnects half a minute after the last word, so that the service can end and nothing wakes
/// this program. Main thread only; never waits. SpeechProtocol.h says how the scales are mapped.
///
/// One utterance is with the service at a time; up to 20 wait here. While a fault is known, only
/// the newest waits. When the service does not answer a command in time, the connection is closed
/// and all utterances are dropped.
class SpeechDispatcher final : public SpeechSynthesizer {
public:
    struct Limits {
        Seconds answer{5}; ///< for a command
        Seconds start{15}; ///< for a service that is being started
        Seconds idle{30};  ///< until disconnecting
    };

    /// `loop` must outlive this object.
    explicit SpeechDispatcher(MainLoop& loop);
    SpeechDispatcher(MainLoop& loop, Limits limits);

    SpeechDispatcher(const SpeechDispatcher&) = delete;
    SpeechDispatcher& operator=(const SpeechDispatcher&) = delete;

    [[nodiscard]] bool isSpeaking() const override;
    void stopSpeaking() override;
    void speak(SpeechUtterance utterance) override;
    [[nodiscard]] std::optional<std::string> problem() const override { return fault; }
    [[nodiscard]] Subscription onProblemChange(Task callback) override;

private:
    struct Disconnected {};
    struct Connecting {
        std::optional<SpeechUtterance> first; ///< to be spoken then; nothing if it was stopped
        std::unique_ptr<SpeechConnector> connector;
    };
    using Connected = std::unique_ptr<SpeechSession>;

    /// Disconnected --speak()--> Connecting --socket--> Connected
    /// Connecting, Connected --failure, nothing to speak for long--> Disconnected
    /// Connected --an utterance needs a new session--> Connecting
    ///
    /// Leaving a state cancels what it was doing: the state owns it.
    using State = std::variant<Disconnected, Connecting, Connected>;

    void speakNext();
    void begin(SpeechUtterance utterance);
    void connect(SpeechUtterance first);
    void adoptSocket(GObjectPtr<GSocketConnection> socket);
    void handleSessionOver(const std::optional<std::string>& why);
    void fail(const std::string& why);
    void disconnect();
    void setFault(const std::optional<std::string>& next);

    MainLoop& loop;
    const Limits limits;
    const std::string address; ///< the path of the service's socket
    std::optional<std::string> fault;
    std::deque<SpeechUtterance> waiting; ///< empty unless one is being spoken
    CallbackList<> problemChanges;
    State state;
    Timer idle; ///< until disconnecting; not while there is something to speak
};

} // namespace quorva
