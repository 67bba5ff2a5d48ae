#include "platform/linux/speech/SpeechDispatcher.h"

#include "platform/linux/glib/AsyncCall.h"

#include <fmt/format.h>
#include <gio/gunixsocketaddress.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <utility>

namespace quorva {
namespace {

constexpr const char* program = "speech-dispatcher";
constexpr std::size_t mostWaiting = 20;
constexpr Seconds betweenAttempts{0.1};
constexpr int endEvent = 702;
constexpr int cancelEvent = 703;

std::string addressOfService() {
    constexpr std::string_view prefix = "unix_socket:";
    const char* const given = std::getenv("SPEECHD_ADDRESS");
    if (given != nullptr && std::string_view(given).starts_with(prefix))
        return std::string(std::string_view(given).substr(prefix.size()));
    return std::string(g_get_user_runtime_dir()) + "/speech-dispatcher/speechd.sock";
}

bool isInstalled() {
    return GCharsPtr(g_find_program_in_path(program)) != nullptr;
}

/// How long an utterance may take at the slowest rate, and some more.
Seconds longestTimeOf(const SpeechUtterance& utterance) {
    constexpr Seconds beginning{15};
    constexpr Seconds character{0.4};
    return beginning + character * static_cast<double>(utterance.text.size());
}

} // namespace

/// The utterance that is with the service.
struct SpeechDispatcher::Spoken {
    SpeechUtterance utterance;
    std::uint64_t serial = 0;
    std::string message{};    ///< the service's number for it; empty until it has been taken
    std::string endedEarly{}; ///< the number in an event that came before
};

SpeechDispatcher::SpeechDispatcher(MainLoop& loop_) : SpeechDispatcher(loop_, Limits()) {}

SpeechDispatcher::SpeechDispatcher(MainLoop& loop_, Limits limits_)
    : loop(loop_), limits(limits_), address(addressOfService()) {
    std::error_code ignored;
    if (!isInstalled() && !std::filesystem::exists(address, ignored))
        fault = "No speech service is installed.";
}

SpeechDispatcher::~SpeechDispatcher() {
    disconnect();
}

bool SpeechDispatcher::isSpeaking() const {
    return current != nullptr || !waiting.empty();
}

void SpeechDispatcher::stopSpeaking() {
    waiting.clear();
    if (!current)
        return;
    if (connection)
        connection->ask("CANCEL SELF");
    endUtterance();
}

void SpeechDispatcher::speak(SpeechUtterance utterance) {
    if (fault)
        waiting.clear();
    if (waiting.size() >= mostWaiting)
        waiting.pop_front();
    waiting.push_back(std::move(utterance));
    if (!current)
        endUtterance(); // begins with what waits
}

Subscription SpeechDispatcher::onProblemChange(Task callback) {
    return problemChanges.add(std::move(callback));
}

void SpeechDispatcher::begin(SpeechUtterance utterance) {
    idle.reset();
    current =
        std::make_unique<Spoken>(Spoken{.utterance = std::move(utterance), .serial = ++lastSerial});
    if (connection && hasVoice && current->utterance.voice == nullptr)
        disconnect(); // there is no way to take a choice back
    if (connection)
        chooseVoice();
    else if (!connecting && !attempt)
        connect();
}

void SpeechDispatcher::connect() {
    const GObjectPtr<GSocketClient> client(g_socket_client_new());
    g_socket_client_set_enable_proxy(client.get(), FALSE);
    const GObjectPtr<GSocketAddress> socket(g_unix_socket_address_new(address.c_str()));
    connecting.reset(g_cancellable_new());
    attempt.reset();
    auto taken =
        lifetime.guard([this, number = ++attempts](GObjectPtr<GSocketConnection>& connected) {
            if (number == attempts)
                takeSocket(std::move(connected));
        });
    g_socket_client_connect_async(
        client.get(), G_SOCKET_CONNECTABLE(socket.get()), connecting.get(), asyncCallback,
        asyncData([taken = std::move(taken)](GObject* source, GAsyncResult* result) {
            GObjectPtr<GSocketConnection> connected(
                g_socket_client_connect_finish(G_SOCKET_CLIENT(source), result, nullptr));
            taken(connected);
        }));
}

/// No socket: the service does not run, or not yet.
void SpeechDispatcher::takeSocket(GObjectPtr<GSocketConnection> socket) {
    connecting.reset();
    if (!socket && !startDeadline)
        return startService();
    if (!socket && loop.now() > *startDeadline)
        return fail("The speech service could not be started.");
    if (!socket) {
        attempt = loop.after(betweenAttempts, [this] { connect(); });
        return;
    }
    startDeadline.reset();
    connection = std::make_unique<SsipConnection>(
        loop, std::move(socket), limits.answer,
        SsipConnection::Callbacks{.onEvent = [this](const ssip::Reply& event) { takeEvent(event); },
                                  .onEnd = [this](SsipConnection::End end) { takeEnd(end); }});
    introduce();
    if (current)
        chooseVoice();
}

void SpeechDispatcher::startService() {
    GError* error = nullptr;
    const GObjectPtr<GSubprocess> starting(
        g_subprocess_new(static_cast<GSubprocessFlags>(G_SUBPROCESS_FLAGS_STDOUT_SILENCE |
                                                       G_SUBPROCESS_FLAGS_STDERR_SILENCE),
                         &error, program, "--spawn", nullptr));
    const GErrorPtr failure(error);
    if (!starting)
        return fail("No speech service is installed.");
    startDeadline = loop.now() + std::chrono::duration_cast<Time::duration>(limits.start);
    attempt = loop.after(betweenAttempts, [this] { connect(); });
}

void SpeechDispatcher::introduce() {
    connection->ask(fmt::format("SET SELF CLIENT_NAME {}:quorva:main", g_get_user_name()));
    connection->ask("SET SELF NOTIFICATION END on");
    connection->ask("SET SELF NOTIFICATION CANCEL on");
    connection->ask("SET SELF PRIORITY message");
}

void SpeechDispatcher::chooseVoice() {
    const auto choice = current->utterance.voice;
    if (choice == nullptr)
        return send(nullptr);
    if (!voices)
        return listVoices();
    send(choice(*voices));
}

void SpeechDispatcher::listVoices() {
    connection->ask("LIST SYNTHESIS_VOICES",
                    [this, serial = current->serial](const ssip::Reply& reply) {
                        voices.emplace();
                        for (const auto& value : reply.values)
                            if (auto voice = ssip::decodeVoice(value))
                                voices->push_back(*std::move(voice));
                        if (current && current->serial == serial)
                            chooseVoice();
                    });
}

void SpeechDispatcher::send(const SpeechVoice* voice) {
    const auto& utterance = current->utterance;
    const auto set = [this](std::string_view what, const auto& value) {
        connection->ask(fmt::format("SET SELF {} {}", what, value));
    };
    hasVoice = voice != nullptr;
    const auto language = ssip::languageTag(hasVoice ? voice->language : utterance.language);
    if (language != ssip::undetermined)
        set("LANGUAGE", language);
    if (hasVoice)
        set("SYNTHESIS_VOICE", voice->name);
    set("RATE", ssip::rate(utterance.rate));
    set("PITCH", ssip::pitch(utterance.pitchMultiplier));
    set("VOLUME", ssip::volume(utterance.volume));
    connection->say(utterance.text, [this, serial = current->serial](const ssip::Reply& reply) {
        takeMessage(serial, reply);
    });
}

void SpeechDispatcher::takeMessage(std::uint64_t serial, const ssip::Reply& reply) {
    const bool isAccepted = reply.isSuccess() && !reply.values.empty();
    if (isAccepted)
        setFault(std::nullopt);
    if (!current || current->serial != serial)
        return; // it has been stopped: that was said after it
    if (!isAccepted)
        return fail(fmt::format("The speech service refused to speak: {}", reply.explanation));
    current->message = reply.values.front();
    if (current->endedEarly == current->message)
        return endUtterance();
    longest = loop.after(longestTimeOf(current->utterance), [this] {
        disconnect();
        endUtterance();
    });
}

void SpeechDispatcher::takeEvent(const ssip::Reply& event) {
    if ((event.code != endEvent && event.code != cancelEvent) || event.values.empty() || !current)
        return;
    if (current->message == event.values.front())
        endUtterance();
    else if (current->message.empty())
        current->endedEarly = event.values.front();
}

void SpeechDispatcher::takeEnd(SsipConnection::End end) {
    if (!current && waiting.empty() && end == SsipConnection::End::closed)
        return disconnect(); // it ends when nobody needs it
    switch (end) {
    case SsipConnection::End::closed:
        return fail("The speech service has ended.");
    case SsipConnection::End::silent:
        return fail("The speech service does not answer.");
    case SsipConnection::End::strange:
        return fail("The speech service makes no sense.");
    }
}

/// What is with the service is spoken, or will not be: the next one, or none.
void SpeechDispatcher::endUtterance() {
    current.reset();
    longest.reset();
    if (waiting.empty()) {
        idle = loop.after(limits.idle, [this] { disconnect(); });
        return;
    }
    auto next = std::move(waiting.front());
    waiting.pop_front();
    begin(std::move(next));
}

void SpeechDispatcher::fail(const std::string& why) {
    disconnect();
    current.reset();
    waiting.clear();
    longest.reset();
    setFault(why);
}

void SpeechDispatcher::disconnect() {
    if (connecting)
        g_cancellable_cancel(connecting.get());
    connecting.reset();
    ++attempts;
    connection.reset();
    voices.reset();
    hasVoice = false;
    startDeadline.reset();
    attempt.reset();
    idle.reset();
}

void SpeechDispatcher::setFault(const std::optional<std::string>& next) {
    if (std::exchange(fault, next) != next)
        problemChanges.call();
}

} // namespace quorva
