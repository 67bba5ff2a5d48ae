// A connection to Speech Dispatcher over its socket (Speech Synthesis Interface Protocol).
//
// libspeechd is not used: its calls wait forever for a service that hangs, and it ends the whole
// program when it does not understand an answer.
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"
#include "platform/linux/glib/Handles.h"
#include "platform/linux/speech/SpeechProtocol.h"

#include <deque>
#include <functional>
#include <string>

namespace quorva {

/// Main thread only; never waits. Dropping it closes the connection without further calls.
class SsipConnection {
public:
    enum class End {
        closed,    ///< by the service
        silent,    ///< a command was not answered in time
        malformed, ///< the service sent what is not in the protocol
    };
    /// Each may drop the connection.
    struct Callbacks {
        std::function<void(const ssip::Reply&)> onEvent; ///< codes from 700 to 799
        std::function<void(End)> onEnd; ///< called once, and nothing is called after it
    };
    using Done = std::function<void(const ssip::Reply&)>;

    /// Over a connected socket. A command may take as long as `answerTimeout`. `loop` must outlive
    /// this object.
    SsipConnection(MainLoop& loop, GObjectPtr<GSocketConnection> socket, Seconds answerTimeout,
                   Callbacks callbacks);
    ~SsipConnection();

    SsipConnection(const SsipConnection&) = delete;
    SsipConnection& operator=(const SsipConnection&) = delete;

    /// Sends a command once the earlier ones have been answered. `done` gets the answer, and is not
    /// called when there is none; it may drop the connection.
    void ask(std::string_view command, Done done = nullptr);

    /// The same for the command that speaks a text. The answer's first value is the message's
    /// number.
    void say(std::string_view text, Done done);

private:
    /// idle    --ask(), say()--> waiting
    /// waiting --answer--> idle
    /// either  --end of the connection--> over
    enum class State {
        idle,    ///< there is no command to send
        waiting, ///< the first of `commands` has been sent
        over,    ///< `onEnd` has been called
    };
    struct Command {
        std::string line;
        std::string text; ///< sent once the service asks for it
        Done done;
    };

    void sendNext();
    void write(std::string_view bytes);
    void flush();
    void read();
    void handleBytes(std::string_view bytes);
    void handleLine(std::string_view bytes);
    void handleReply(const ssip::Reply& reply);
    void finish(End end);

    MainLoop& loop;
    const GObjectPtr<GSocketConnection> socket;
    const Seconds answerTimeout;
    const Callbacks callbacks;
    const GObjectPtr<GCancellable> cancellable{g_cancellable_new()};
    State state = State::idle;
    std::deque<Command> commands;
    Timer timeout; ///< of the command that has been sent
    std::string unwritten;
    bool isWriting = false; ///< the socket takes one write at a time
    std::string partialLine;
    ssip::Reply partialReply;
    Lifetime lifetime;
};

} // namespace quorva
