// A notification server that a test plays on the session bus: it draws nothing, and answers as well
// or as badly as the test says.
#pragma once

#include "platform/linux/glib/Handles.h"

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <vector>

namespace quorva {

/// A notification that the server was asked to show.
struct PlayedNotification {
    std::uint32_t replaces = 0;
    std::uint32_t number = 0; ///< the one that the server answers
    std::string title;
    std::string body;
    std::vector<std::string> keys; ///< of the buttons
    std::vector<std::string> buttons;
    std::map<std::string, std::string> hints; ///< printed as GVariant text
};

/// Answers on the main context, which the test turns.
class PlayedNotificationServer {
public:
    /// Owns the name, or throws. The capabilities have the names that freedesktop.org gives them.
    explicit PlayedNotificationServer(std::vector<std::string> capabilities = {"body", "actions",
                                                                               "body-markup"});
    ~PlayedNotificationServer();

    PlayedNotificationServer(const PlayedNotificationServer&) = delete;
    PlayedNotificationServer& operator=(const PlayedNotificationServer&) = delete;

    bool isHanging = false;      ///< calls are kept until `answerAll`
    bool inventsNumbers = false; ///< even when a notification is replaced
    bool refuses = false;        ///< Notify fails, by the server
    bool isBusy = false;         ///< Notify fails, as if the bus had no room

    std::vector<PlayedNotification> shown; ///< all, in the order of the calls
    std::vector<std::uint32_t> closed;
    std::map<std::uint32_t, PlayedNotification> displayed; ///< now, by their numbers
    int calls = 0;                                         ///< received, answered or not

    void answerAll();
    void press(std::uint32_t number, const std::string& key);
    void tellClosed(std::uint32_t number);
    void sendToken(std::uint32_t number, const std::string& activationToken);

    [[nodiscard]] GDBusConnection* connection() const { return bus.get(); }

private:
    void receive(GDBusMethodInvocation* invocation);
    void answer(GDBusMethodInvocation* invocation);
    PlayedNotification read(GVariant* parameters);
    void emit(const char* signal, GVariant* parameters);

    const std::vector<std::string> capabilities;
    GObjectPtr<GDBusConnection> bus;
    guint object = 0;
    std::uint32_t lastNumber = 0;
    std::deque<GDBusMethodInvocation*> held;
};

/// A connection of its own to the session bus; throws where there is none.
[[nodiscard]] GObjectPtr<GDBusConnection> joinSessionBus();

/// Makes `bus` own a name; throws when somebody else owns it.
void ownName(GDBusConnection* bus, const char* name);

} // namespace quorva
