#include "platform/linux/speech/SpeechDispatcher.h"

#include <utility>

namespace quorva {
namespace {

constexpr std::size_t mostWaiting = 20;

} // namespace

SpeechDispatcher::SpeechDispatcher(MainLoop& loop_) : SpeechDispatcher(loop_, Limits()) {}

SpeechDispatcher::SpeechDispatcher(MainLoop& loop_, Limits limits_)
    : loop(loop_), limits(limits_), address(speechServiceAddress()) {
    if (!isSpeechServiceInstalled(address))
        fault = "No speech service is installed.";
}

bool SpeechDispatcher::isSpeaking() const {
    if (const auto* const connecting = std::get_if<Connecting>(&state))
        return connecting->first.has_value();
    if (const auto* const session = std::get_if<Connected>(&state))
        return (*session)->isSpeaking();
    return false;
}

void SpeechDispatcher::stopSpeaking() {
    waiting.clear();
    if (!isSpeaking())
        return;
    if (auto* const connecting = std::get_if<Connecting>(&state))
        connecting->first.reset();
    else
        std::get<Connected>(state)->cancel();
    speakNext();
}

void SpeechDispatcher::speak(SpeechUtterance utterance) {
    if (fault)
        waiting.clear();
    if (waiting.size() >= mostWaiting)
        waiting.pop_front();
    waiting.push_back(std::move(utterance));
    if (!isSpeaking())
        speakNext();
}

Subscription SpeechDispatcher::onProblemChange(Task callback) {
    return problemChanges.add(std::move(callback));
}

/// The utterance before has ended.
void SpeechDispatcher::speakNext() {
    if (waiting.empty()) {
        idle = loop.after(limits.idle, [this] { disconnect(); });
        return;
    }
    auto next = std::move(waiting.front());
    waiting.pop_front();
    begin(std::move(next));
}

void SpeechDispatcher::begin(SpeechUtterance utterance) {
    idle.reset();
    if (auto* const connecting = std::get_if<Connecting>(&state)) {
        connecting->first = std::move(utterance);
        return;
    }
    auto* const session = std::get_if<Connected>(&state);
    if (session != nullptr && (*session)->canSpeak(utterance))
        (*session)->speak(std::move(utterance));
    else
        connect(std::move(utterance));
}

void SpeechDispatcher::connect(SpeechUtterance first) {
    disconnect();
    state =
        Connecting{std::move(first),
                   std::make_unique<SpeechConnector>(
                       loop, address, limits.start,
                       SpeechConnector::Callbacks{
                           .onConnected = [this](auto socket) { adoptSocket(std::move(socket)); },
                           .onFailure = [this](const std::string& why) { fail(why); }})};
}

void SpeechDispatcher::adoptSocket(GObjectPtr<GSocketConnection> socket) {
    auto first = std::move(std::get<Connecting>(state).first);
    state = std::make_unique<SpeechSession>(
        loop, std::move(socket), limits.answer,
        SpeechSession::Callbacks{.onAccepted = [this] { setFault(std::nullopt); },
                                 .onSpoken = [this] { speakNext(); },
                                 .onOver = [this](const auto& why) { handleSessionOver(why); }});
    if (first)
        std::get<Connected>(state)->speak(*std::move(first));
}

void SpeechDispatcher::handleSessionOver(const std::optional<std::string>& why) {
    if (why)
        return fail(*why);
    disconnect();
    if (!waiting.empty())
        speakNext();
}

void SpeechDispatcher::fail(const std::string& why) {
    disconnect();
    waiting.clear();
    setFault(why);
}

void SpeechDispatcher::disconnect() {
    state = Disconnected{};
    idle.reset();
}

void SpeechDispatcher::setFault(const std::optional<std::string>& next) {
    if (std::exchange(fault, next) != next)
        problemChanges.call();
}

} // namespace quorva
