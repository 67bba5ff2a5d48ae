#include "platform/linux/speech/SpeechConnector.h"

#include "platform/linux/glib/AsyncCall.h"

#include <gio/gunixsocketaddress.h>

#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <utility>

namespace quorva {
namespace {

constexpr const char* program = "speech-dispatcher";
constexpr Seconds betweenAttempts{0.1};

} // namespace

std::string speechServiceAddress() {
    constexpr std::string_view prefix = "unix_socket:";
    const char* const given = std::getenv("SPEECHD_ADDRESS");
    if (given != nullptr && std::string_view(given).starts_with(prefix))
        return std::string(std::string_view(given).substr(prefix.size()));
    return std::string(g_get_user_runtime_dir()) + "/speech-dispatcher/speechd.sock";
}

bool isSpeechServiceInstalled(const std::string& address) {
    std::error_code ignored;
    return GCharsPtr(g_find_program_in_path(program)) != nullptr ||
           std::filesystem::exists(address, ignored);
}

SpeechConnector::SpeechConnector(MainLoop& loop_, const std::string& address_,
                                 Seconds startTimeout_, Callbacks callbacks_)
    : loop(loop_),
      address(g_unix_socket_address_new(address_.c_str())),
      startTimeout(startTimeout_),
      callbacks(std::move(callbacks_)) {
    connect();
}

SpeechConnector::~SpeechConnector() {
    g_cancellable_cancel(cancellable.get());
}

void SpeechConnector::connect() {
    const GObjectPtr<GSocketClient> client(g_socket_client_new());
    g_socket_client_set_enable_proxy(client.get(), FALSE);
    auto ended = lifetime.guard(
        [this](GObjectPtr<GSocketConnection> socket) { handleAttempt(std::move(socket)); });
    g_socket_client_connect_async(
        client.get(), G_SOCKET_CONNECTABLE(address.get()), cancellable.get(), asyncCallback,
        asyncData([ended = std::move(ended)](GObject* source, GAsyncResult* result) {
            ended(GObjectPtr<GSocketConnection>(
                g_socket_client_connect_finish(G_SOCKET_CLIENT(source), result, nullptr)));
        }));
}

/// `socket` is null when nobody listens (yet).
void SpeechConnector::handleAttempt(GObjectPtr<GSocketConnection> socket) {
    if (socket) {
        const auto onConnected = callbacks.onConnected;
        return onConnected(std::move(socket));
    }
    if (!startDeadline)
        return startService();
    if (loop.now() > *startDeadline)
        return fail("The speech service could not be started.");
    retrySoon();
}

void SpeechConnector::startService() {
    GError* error = nullptr;
    const GObjectPtr<GSubprocess> starting(
        g_subprocess_new(static_cast<GSubprocessFlags>(G_SUBPROCESS_FLAGS_STDOUT_SILENCE |
                                                       G_SUBPROCESS_FLAGS_STDERR_SILENCE),
                         &error, program, "--spawn", nullptr));
    const GErrorPtr failure(error);
    if (!starting)
        return fail("No speech service is installed.");
    startDeadline = loop.now() + std::chrono::duration_cast<Time::duration>(startTimeout);
    retrySoon();
}

void SpeechConnector::retrySoon() {
    nextAttempt = loop.after(betweenAttempts, [this] { connect(); });
}

void SpeechConnector::fail(const std::string& why) {
    const auto onFailure = callbacks.onFailure;
    onFailure(why);
}

} // namespace quorva
