// A conversation with Speech Dispatcher over its socket (Speech Synthesis Interface Protocol).
//
// The protocol is spoken here rather than through libspeechd, whose calls wait without an end for a
// service that hangs, and which ends the whole program at an answer that it does not understand.
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"
#include "platform/linux/glib/Handles.h"
#include "platform/linux/speech/SpeechProtocol.h"

#include <deque>
#include <functional>
#include <string>

namespace quorva {

/// Main thread only; never waits. Dropping it ends the conversation without further calls.
class SsipConnection {
public:
    enum class End {
        closed,  ///< by the service
        silent,  ///< a command was not answered in time
        strange, ///< what came was not the protocol
    };
    struct Callbacks {
        std::function<void(const ssip::Reply&)> onEvent; ///< codes from 700 to 799
        std::function<void(End)> onEnd; ///< once, and nothing after it; may drop the connection
    };
    using Done = std::function<void(const ssip::Reply&)>;

    /// Over a connected socket. A command may take as long as `answer`.
    SsipConnection(MainLoop& loop, GObjectPtr<GSocketConnection> socket, Seconds answer,
                   Callbacks callbacks);
    ~SsipConnection();

    SsipConnection(const SsipConnection&) = delete;
    SsipConnection& operator=(const SsipConnection&) = delete;

    /// Sends a command after those before it have been answered. `done` gets the answer.
    void ask(std::string_view command, Done done = nullptr);

    /// Has a text spoken; the answer's first value is the message's number.
    void say(std::string_view text, Done done);

private:
    struct Command {
        std::string line;
        std::string text; ///< sent once the service asks for it
        Done done;
    };

    void sendNext();
    void write(std::string_view bytes);
    void flush();
    void read();
    void take(std::string_view bytes);
    void takeLine(std::string_view bytes);
    void takeReply(const ssip::Reply& reply);
    void finish(End end);

    MainLoop& loop;
    const GObjectPtr<GSocketConnection> socket;
    const Seconds answer;
    const Callbacks callbacks;
    const GObjectPtr<GCancellable> cancellable{g_cancellable_new()};
    std::deque<Command> commands; ///< the first one has been sent
    bool isAsking = false;
    bool isOver = false;
    std::string unwritten;
    bool isWriting = false;
    std::string unread; ///< the beginning of a line
    ssip::Reply partial;
    Timer patience;
    Lifetime lifetime;
};

} // namespace quorva
