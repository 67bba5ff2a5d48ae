// Speaks through Speech Dispatcher, the desktop's speech service.
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"
#include "platform/SpeechSynthesizer.h"
#include "platform/linux/glib/Handles.h"
#include "platform/linux/speech/SsipConnection.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quorva {

/// Connects when there is something to say, and starts the service where it does not run. Half a
/// minute after the last word it disconnects, so that a service that was started can end and
/// nothing wakes this program. Main thread only; never waits. How the scales are mapped is said in
/// SpeechProtocol.h.
///
/// One utterance is with the service at a time; up to 20 wait here. While a fault is known, only
/// the newest waits. A service that does not answer a command in time is disconnected from, and
/// what was to be spoken is dropped.
class SpeechDispatcher final : public SpeechSynthesizer {
public:
    struct Limits {
        Seconds answer{5}; ///< for a command
        Seconds start{15}; ///< for a service that is to be started
        Seconds idle{30};  ///< until disconnecting
    };

    /// `loop` must outlive this object.
    explicit SpeechDispatcher(MainLoop& loop);
    SpeechDispatcher(MainLoop& loop, Limits limits);
    ~SpeechDispatcher() override;

    SpeechDispatcher(const SpeechDispatcher&) = delete;
    SpeechDispatcher& operator=(const SpeechDispatcher&) = delete;

    [[nodiscard]] bool isSpeaking() const override;
    void stopSpeaking() override;
    void speak(SpeechUtterance utterance) override;
    [[nodiscard]] std::optional<std::string> problem() const override { return fault; }
    [[nodiscard]] Subscription onProblemChange(Task callback) override;

private:
    struct Spoken;

    void begin(SpeechUtterance utterance);
    void connect();
    void takeSocket(GObjectPtr<GSocketConnection> socket);
    void startService();
    void introduce();
    void chooseVoice();
    void listVoices();
    void send(const SpeechVoice* voice);
    void takeMessage(std::uint64_t serial, const ssip::Reply& reply);
    void takeEvent(const ssip::Reply& event);
    void takeEnd(SsipConnection::End end);
    void endUtterance();
    void fail(const std::string& why);
    void disconnect();
    void setFault(const std::optional<std::string>& next);

    MainLoop& loop;
    const Limits limits;
    const std::string address; ///< the path of the service's socket
    std::optional<std::string> fault;
    std::deque<SpeechUtterance> waiting;
    std::unique_ptr<Spoken> current;
    std::uint64_t lastSerial = 0;

    std::unique_ptr<SsipConnection> connection;
    std::optional<std::vector<SpeechVoice>> voices; ///< of this connection
    bool hasVoice = false;                          ///< one was chosen over this connection
    std::optional<Time> startDeadline;              ///< the service was asked to start
    GObjectPtr<GCancellable> connecting;            ///< an attempt that is under way
    Timer attempt;                                  ///< until the next one
    int attempts = 0;                               ///< the number of the last; others do not count
    Timer longest; ///< until an utterance is taken for spoken whatever the service says
    Timer idle;
    CallbackList<> problemChanges;
    Lifetime lifetime; // last: tasks that outlive the synthesizer do nothing
};

} // namespace quorva
