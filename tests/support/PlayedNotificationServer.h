// A notification server that a test plays on the session bus: it shows nothing, and answers as well
// or as badly as the test says.
#pragma once

#include "platform/linux/glib/Handles.h"

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <vector>

namespace quorva {

/// What a server was asked to show.
struct PlayedNotification {
    std::uint32_t replaces = 0;
    std::uint32_t number = 0; ///< that the server answered, or will
    std::string title;
    std::string body;
    std::vector<std::string> keys; ///< of the buttons
    std::vector<std::string> buttons;
    std::map<std::string, std::string> hints; ///< printed as GVariant text
};

/// Answers on the main context, which the test turns.
class PlayedNotificationServer {
public:
    /// Takes the name, or throws. The capabilities are named as freedesktop.org does.
    explicit PlayedNotificationServer(std::vector<std::string> capabilities = {"body", "actions",
                                                                               "body-markup"});
    ~PlayedNotificationServer();

    PlayedNotificationServer(const PlayedNotificationServer&) = delete;
    PlayedNotificationServer& operator=(const PlayedNotificationServer&) = delete;

    bool isHanging = false;      ///< questions are kept until `answerAll`
    bool inventsNumbers = false; ///< also where something is to be replaced
    bool refuses = false;        ///< Notify comes to an error
    bool isBusy = false;         ///< Notify comes to an error of the bus, as for want of room

    std::vector<PlayedNotification> shown; ///< in the order of asking
    std::vector<std::uint32_t> closed;
    int questions = 0; ///< asked, answered or not

    void answerAll();
    void press(std::uint32_t number, const std::string& key);
    void tellClosed(std::uint32_t number);
    void hand(std::uint32_t number, const std::string& activationToken);

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

/// Has `bus` own a name, at once; throws when somebody else does.
void ownName(GDBusConnection* bus, const char* name);

} // namespace quorva
