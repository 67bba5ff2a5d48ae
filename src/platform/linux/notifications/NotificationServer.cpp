#include "platform/linux/notifications/NotificationServer.h"

#include "platform/linux/glib/BusCall.h"
#include "platform/linux/glib/Utf8.h"

#include <fmt/format.h>

#include <utility>

namespace quorva {
namespace {

constexpr const char* dbusName = "org.freedesktop.DBus";
constexpr const char* dbusPath = "/org/freedesktop/DBus";

/// Whether the server itself refused the call; otherwise it was gone before it could answer, or the
/// bus had no room.
bool isRefusal(const GError& failure) {
    return g_dbus_error_is_remote_error(&failure) != FALSE &&
           g_error_matches(&failure, G_DBUS_ERROR, G_DBUS_ERROR_NO_REPLY) == FALSE &&
           g_error_matches(&failure, G_DBUS_ERROR, G_DBUS_ERROR_SERVICE_UNKNOWN) == FALSE &&
           g_error_matches(&failure, G_DBUS_ERROR, G_DBUS_ERROR_NAME_HAS_NO_OWNER) == FALSE &&
           g_error_matches(&failure, G_DBUS_ERROR, G_DBUS_ERROR_DISCONNECTED) == FALSE &&
           g_error_matches(&failure, G_DBUS_ERROR, G_DBUS_ERROR_LIMITS_EXCEEDED) == FALSE;
}

} // namespace

NotificationServer::NotificationServer(MainLoop& loop_, Log& log_, GObjectPtr<GDBusConnection> bus_,
                                       Seconds timeout_, Callbacks callbacks_)
    : loop(loop_),
      log(log_),
      bus(std::move(bus_)),
      timeout(timeout_),
      callbacks(std::move(callbacks_)) {
    if (!bus) {
        enter(State::absent);
        published.state = Presence::absent;
        return;
    }
    enter(State::searching);
    publishSilenceAfterTimeout();
    signals =
        subscribeToSignals(bus.get(),
                           {.sender = notifications::name,
                            .interface = notifications::interface,
                            .path = notifications::path},
                           [this](const BusSignal& signal) {
                               if (hasOwner() && signal.sender != nullptr && signal.sender == owner)
                                   callbacks.onSignal(signal);
                           });
    nameWatch = watchBusName(
        bus.get(), notifications::name,
        [this](const std::string& newOwner) { adoptOwner(newOwner); },
        [this] { handleOwnerGone(); });
}

/// Ends whatever the previous state was waiting for.
void NotificationServer::enter(State next) {
    state = next;
    timer.reset();
    stateLifetime.emplace();
}

void NotificationServer::publishSilenceAfterTimeout() {
    timer = loop.after(timeout, [this] { publish(Presence::silent); });
}

void NotificationServer::start() {
    if ((state != State::searching && state != State::absent) || isClosed())
        return;
    enter(State::starting);
    if (published.state == Presence::unknown)
        publishSilenceAfterTimeout();
    callBus(bus.get(),
            {.destination = dbusName,
             .path = dbusPath,
             .interface = dbusName,
             .method = "StartServiceByName",
             .parameters = g_variant_new("(su)", notifications::name, 0U)},
            stateLifetime->guard([this](GVariant* reply) {
                if (reply != nullptr)
                    return; // the name watch is about to report the owner
                enter(State::absent);
                publish(Presence::absent);
            }));
}

void NotificationServer::adoptOwner(const std::string& newOwner) {
    enter(State::idle);
    owner = newOwner;
    call("GetCapabilities", nullptr, [this](GVariant* reply, const GError*) {
        abilities = notifications::decodeCapabilities(reply);
    });
}

/// Also called at the beginning, where nobody owns the name.
void NotificationServer::handleOwnerGone() {
    const bool isUnknown = published.state == Presence::unknown;
    if (state != State::starting || isClosed())
        enter(State::absent);
    callbacks.onGone();
    if (isClosed())
        return publish(Presence::absent);
    if (isUnknown || callbacks.isNeeded())
        start();
    if (!isUnknown)
        publish(Presence::absent);
}

void NotificationServer::call(const char* method, GVariant* parameters, Answered answered,
                              Task undelivered) {
    enter(State::calling);
    publishSilenceAfterTimeout();
    callBusForOutcome(bus.get(),
                      {.destination = owner.c_str(),
                       .path = notifications::path,
                       .interface = notifications::interface,
                       .method = method,
                       .parameters = parameters,
                       .timeout = G_MAXINT},
                      stateLifetime->guard([this, answered = std::move(answered),
                                            undelivered = std::move(undelivered)](
                                               GVariant* reply, const GError* failure) {
                          handleOutcome(reply, failure, answered, undelivered);
                      }));
}

void NotificationServer::handleOutcome(GVariant* reply, const GError* failure,
                                       const Answered& answered, const Task& undelivered) {
    if (failure != nullptr && undelivered && !isRefusal(*failure)) {
        log.debug(Printable::format("A notification waits: {}", validUtf8(failure->message)),
                  logCategory::notification);
        enter(State::pausing);
        timer = loop.after(timeout, [this] {
            enter(State::idle);
            callbacks.onFree();
        });
        return undelivered();
    }
    enter(State::idle);
    answered(reply, failure);
    publish(Presence::present);
    callbacks.onFree();
}

void NotificationServer::whenKnown(Task task) {
    if (published.state == Presence::unknown)
        waiting.push_back(std::move(task));
    else
        task();
}

void NotificationServer::whenStarted(Task task) {
    if (published.state == Presence::absent)
        start();
    if (isStartSettled())
        task();
    else
        waiting.push_back(std::move(task));
}

void NotificationServer::publish(Presence presence) {
    if (presence != published.state && presence != Presence::present)
        log.notice(presence == Presence::silent
                       ? Printable("The program that shows notifications does not answer")
                       : Printable("No program shows notifications"),
                   logCategory::notification);
    const NotificationService next{presence, presence == Presence::present && abilities.actions};
    const bool hasChanged = std::exchange(published, next) != next;
    for (const auto& task : std::exchange(waiting, {}))
        task();
    if (hasChanged)
        callbacks.onServiceChange();
}

bool NotificationServer::isClosed() const {
    return !bus || g_dbus_connection_is_closed(bus.get()) != FALSE;
}

bool NotificationServer::hasOwner() const {
    return state == State::idle || state == State::calling || state == State::pausing;
}

/// Whether nothing is under way that may change what is published.
bool NotificationServer::isStartSettled() const {
    switch (published.state) {
    case Presence::unknown:
        return false;
    case Presence::absent:
        return state == State::absent; // otherwise one is being started, or has yet to answer
    default:
        return state != State::starting;
    }
}

} // namespace quorva
