#include "platform/linux/speech/SpeechSession.h"

#include "base/Lifetime.h"

#include <fmt/format.h>

#include <string_view>
#include <utility>

namespace quorva {
namespace {

constexpr int endEvent = 702;
constexpr int cancelEvent = 703;

/// The time that an utterance may take at the slowest rate, and some more.
Seconds longestTimeOf(const SpeechUtterance& utterance) {
    constexpr Seconds beginning{15};
    constexpr Seconds character{0.4};
    return beginning + character * static_cast<double>(utterance.text.size());
}

bool isAcceptance(const ssip::Reply& reply) {
    return reply.isSuccess() && !reply.values.empty();
}

} // namespace

/// The utterance that the session is about to speak or speaks. Dropping it has the answers to its
/// commands ignored.
struct SpeechSession::Utterance {
    /// choosingVoice --voice chosen--> sent --accepted--> spoken --end reported, timeout--> dropped
    /// A refusal and `cancel` drop the utterance as well.
    enum class State {
        choosingVoice, ///< the service may have been asked for its voices
        sent,          ///< the service has yet to accept the text
        spoken,        ///< the service has numbered the text, and will report its end
    };

    SpeechUtterance wanted;
    State state = State::choosingVoice;
    std::string endedEarly{}; ///< the number in an event that came while in `sent`
    std::string number{};     ///< the service's, once in `spoken`
    Timer timeout{};          ///< for the service to report the end, once in `spoken`
    Lifetime lifetime{};
};

SpeechSession::SpeechSession(MainLoop& loop_, GObjectPtr<GSocketConnection> socket,
                             Seconds answerTimeout, Callbacks callbacks_)
    : loop(loop_),
      callbacks(std::move(callbacks_)),
      connection(loop, std::move(socket), answerTimeout,
                 {.onEvent = [this](const ssip::Reply& event) { handleEvent(event); },
                  .onEnd = [this](SsipConnection::End end) { handleEnd(end); }}) {
    introduce();
}

SpeechSession::~SpeechSession() = default;

bool SpeechSession::canSpeak(const SpeechUtterance& wanted) const {
    return !hasVoice || wanted.voice != nullptr;
}

void SpeechSession::speak(SpeechUtterance wanted) {
    utterance.reset(new Utterance{.wanted = std::move(wanted)});
    chooseVoice();
}

void SpeechSession::cancel() {
    connection.ask("CANCEL SELF");
    utterance.reset();
}

void SpeechSession::introduce() {
    connection.ask(fmt::format("SET SELF CLIENT_NAME {}:quorva:main", g_get_user_name()));
    connection.ask("SET SELF NOTIFICATION END on");
    connection.ask("SET SELF NOTIFICATION CANCEL on");
    connection.ask("SET SELF PRIORITY message");
}

void SpeechSession::chooseVoice() {
    const auto choice = utterance->wanted.voice;
    if (choice == nullptr)
        return send(nullptr);
    if (!voices)
        return listVoices();
    send(choice(*voices));
}

void SpeechSession::listVoices() {
    auto proceed = utterance->lifetime.guard([this] { chooseVoice(); });
    connection.ask("LIST SYNTHESIS_VOICES",
                   [this, proceed = std::move(proceed)](const ssip::Reply& reply) {
                       voices.emplace();
                       for (const auto& value : reply.values)
                           if (auto voice = ssip::decodeVoice(value))
                               voices->push_back(*std::move(voice));
                       proceed();
                   });
}

void SpeechSession::send(const SpeechVoice* voice) {
    const auto& wanted = utterance->wanted;
    const auto set = [this](std::string_view what, const auto& value) {
        connection.ask(fmt::format("SET SELF {} {}", what, value));
    };
    hasVoice = voice != nullptr;
    const auto language = ssip::languageTag(hasVoice ? voice->language : wanted.language);
    if (language != ssip::undetermined)
        set("LANGUAGE", language);
    if (hasVoice)
        set("SYNTHESIS_VOICE", voice->name);
    set("RATE", ssip::rate(wanted.rate));
    set("PITCH", ssip::pitch(wanted.pitchMultiplier));
    set("VOLUME", ssip::volume(wanted.volume));
    utterance->state = Utterance::State::sent;
    auto handle =
        utterance->lifetime.guard([this](const ssip::Reply& reply) { handleMessage(reply); });
    connection.say(wanted.text, [this, handle = std::move(handle)](const ssip::Reply& reply) {
        if (isAcceptance(reply)) {
            const auto onAccepted = callbacks.onAccepted;
            onAccepted();
        }
        handle(reply);
    });
}

void SpeechSession::handleMessage(const ssip::Reply& reply) {
    if (!isAcceptance(reply))
        return endSession(
            fmt::format("The speech service refused to speak: {}", reply.explanation));
    utterance->state = Utterance::State::spoken;
    utterance->number = reply.values.front();
    if (utterance->endedEarly == utterance->number)
        return endUtterance();
    utterance->timeout =
        loop.after(longestTimeOf(utterance->wanted), [this] { endSession(std::nullopt); });
}

void SpeechSession::handleEvent(const ssip::Reply& event) {
    if ((event.code != endEvent && event.code != cancelEvent) || event.values.empty() || !utterance)
        return;
    const auto& number = event.values.front();
    if (utterance->state == Utterance::State::sent)
        utterance->endedEarly = number;
    else if (utterance->state == Utterance::State::spoken && utterance->number == number)
        endUtterance();
}

void SpeechSession::handleEnd(SsipConnection::End end) {
    switch (end) {
    case SsipConnection::End::closed:
        if (!utterance)
            return endSession(std::nullopt); // the service ends when nobody needs it
        return endSession("The speech service has ended.");
    case SsipConnection::End::silent:
        return endSession("The speech service does not answer.");
    case SsipConnection::End::malformed:
        return endSession("The speech service makes no sense.");
    }
}

void SpeechSession::endUtterance() {
    utterance.reset();
    const auto onSpoken = callbacks.onSpoken;
    onSpoken();
}

void SpeechSession::endSession(const std::optional<std::string>& why) {
    const auto onOver = callbacks.onOver;
    onOver(why);
}

} // namespace quorva
