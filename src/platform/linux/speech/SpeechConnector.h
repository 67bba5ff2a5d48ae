// Connects to the desktop's speech service, which may have to be started.
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"
#include "platform/linux/glib/Handles.h"

#include <functional>
#include <optional>
#include <string>

namespace quorva {

/// The path of the service's socket: the one that SPEECHD_ADDRESS names, or else the usual one.
[[nodiscard]] std::string speechServiceAddress();

/// Whether the socket exists or the service's program is installed. Any thread.
[[nodiscard]] bool isSpeechServiceInstalled(const std::string& address);

/// Connects once. Where the service does not run, starts it and tries until it listens or the
/// deadline has passed. Dropping the connector cancels it. Main thread only; never waits.
class SpeechConnector {
public:
    /// One of these is called, once, never by the constructor; it may drop the connector.
    struct Callbacks {
        std::function<void(GObjectPtr<GSocketConnection>)> onConnected;
        std::function<void(const std::string& why)> onFailure;
    };

    /// `startTimeout` is for a service that is being started. `loop` must outlive this object.
    SpeechConnector(MainLoop& loop, const std::string& address, Seconds startTimeout,
                    Callbacks callbacks);
    ~SpeechConnector();

    SpeechConnector(const SpeechConnector&) = delete;
    SpeechConnector& operator=(const SpeechConnector&) = delete;

private:
    void connect();
    void handleAttempt(GObjectPtr<GSocketConnection> socket);
    void startService();
    void retrySoon();
    void fail(const std::string& why);

    MainLoop& loop;
    const GObjectPtr<GSocketAddress> address;
    const Seconds startTimeout;
    const Callbacks callbacks;
    const GObjectPtr<GCancellable> cancellable{g_cancellable_new()};
    std::optional<Time> startDeadline; ///< set once the service has been started
    Timer nextAttempt;
    Lifetime lifetime;
};

} // namespace quorva
