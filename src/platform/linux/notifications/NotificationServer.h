// The program that shows notifications: whether there is one, whether it answers, and the one call
// that may be with it.
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"
#include "platform/Log.h"
#include "platform/NotificationCenter.h"
#include "platform/linux/glib/BusSignals.h"
#include "platform/linux/notifications/NotificationProtocol.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quorva {

/// Follows the owner of the name org.freedesktop.Notifications on the session bus, and has the bus
/// start one where nobody owns it. A server that does not answer in time is called silent; the call
/// stays with it, and its answer, however late, makes the server present again. Main thread only;
/// never waits.
class NotificationServer {
public:
    struct Callbacks {
        Task onFree; ///< a call may be made now
        Task onGone; ///< its call will not be answered, and its numbers mean nothing any more
        std::function<bool()> isNeeded; ///< whether to start another server after one has gone
        std::function<void(const BusSignal&)> onSignal; ///< sent by the server itself
        Task onServiceChange;
    };
    using Answered = std::function<void(GVariant* reply, const GError* failure)>;

    /// `bus` is the session bus, or null where there is none. A server gets `timeout` for each
    /// answer. The constructor calls none of the callbacks. `loop` and `log` must outlive this
    /// object.
    NotificationServer(MainLoop& loop, Log& log, GObjectPtr<GDBusConnection> bus, Seconds timeout,
                       Callbacks callbacks);

    NotificationServer(const NotificationServer&) = delete;
    NotificationServer& operator=(const NotificationServer&) = delete;

    /// What is known of the server, for NotificationCenter::service.
    [[nodiscard]] const NotificationService& service() const { return published; }

    /// What the server can do; nothing until it has said so.
    [[nodiscard]] const notifications::Capabilities& capabilities() const { return abilities; }

    /// Whether a call may be made.
    [[nodiscard]] bool isFree() const { return state == State::idle; }

    /// Has the bus start a server, unless there is one or one is being started.
    void start();

    /// Calls a method of the server, which must be free. `answered` gets the reply or the error.
    /// With `undelivered` given, that is called instead when the call did not reach the server, and
    /// the server is free again after a pause. Neither is called once the server has gone.
    void call(const char* method, GVariant* parameters, Answered answered,
              Task undelivered = nullptr);

    /// Calls `task` once, as soon as the state of the service is known.
    void whenKnown(Task task);

    /// The same, but where nobody shows notifications, a server is started first.
    void whenStarted(Task task);

private:
    using Presence = NotificationService::State;

    /// searching --owner--> calling        --nobody, start()--> starting
    /// absent    --owner--> calling        --start()--> starting
    /// starting  --owner--> calling        --failure--> absent
    /// idle      --call()--> calling
    /// calling   --answer--> idle          --not delivered--> pausing
    /// pausing   --timeout--> idle
    /// idle, calling, pausing --owner gone--> absent
    /// any       --bus closed--> absent
    ///
    /// The first call to an owner is for its capabilities. A timeout in `searching`, `starting` or
    /// `calling` publishes that the server is silent and leaves the state as it is.
    enum class State {
        searching, ///< the bus has not said yet who owns the name
        absent,    ///< nobody does
        starting,  ///< nobody does, and the bus has been asked to start a server
        idle,      ///< a server does, and no call is with it
        calling,   ///< a call is with the server
        pausing,   ///< a call was not delivered
    };

    void enter(State next);
    void publishSilenceAfterTimeout();
    void adoptOwner(const std::string& newOwner);
    void handleOwnerGone();
    void handleOutcome(GVariant* reply, const GError* failure, const Answered& answered,
                       const Task& undelivered);
    void publish(Presence presence);
    [[nodiscard]] bool isClosed() const;
    [[nodiscard]] bool hasOwner() const;
    [[nodiscard]] bool isStartSettled() const;

    MainLoop& loop;
    Log& log;
    const GObjectPtr<GDBusConnection> bus;
    const Seconds timeout;
    const Callbacks callbacks;

    State state = State::searching;
    Timer timer;                           ///< of the present state
    std::optional<Lifetime> stateLifetime; ///< replies to calls of an earlier state do nothing
    std::string owner; ///< the unique name of the server; says nothing unless `hasOwner`
    notifications::Capabilities abilities;

    NotificationService published;
    std::vector<Task> waiting; ///< for the next state to be published
    Subscription signals;
    Subscription nameWatch;
};

} // namespace quorva
