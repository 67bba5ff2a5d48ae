#include "platform/linux/notifications/DBusNotificationCenter.h"

#include "platform/linux/glib/BusCall.h"
#include "platform/linux/glib/Utf8.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace quorva {
namespace {

constexpr const char* dbusName = "org.freedesktop.DBus";
constexpr const char* dbusPath = "/org/freedesktop/DBus";

std::uint64_t numberOfThisRun() {
    return static_cast<std::uint64_t>(g_random_int()) << 32 | g_random_int();
}

/// Whether the server itself has refused, rather than gone away before it could answer.
bool isRefusal(const GError& failure) {
    return g_dbus_error_is_remote_error(&failure) != FALSE &&
           g_error_matches(&failure, G_DBUS_ERROR, G_DBUS_ERROR_NO_REPLY) == FALSE &&
           g_error_matches(&failure, G_DBUS_ERROR, G_DBUS_ERROR_SERVICE_UNKNOWN) == FALSE &&
           g_error_matches(&failure, G_DBUS_ERROR, G_DBUS_ERROR_NAME_HAS_NO_OWNER) == FALSE &&
           g_error_matches(&failure, G_DBUS_ERROR, G_DBUS_ERROR_DISCONNECTED) == FALSE &&
           g_error_matches(&failure, G_DBUS_ERROR, G_DBUS_ERROR_LIMITS_EXCEEDED) == FALSE;
}

} // namespace

DBusNotificationCenter::DBusNotificationCenter(MainLoop& loop_, Log& log_,
                                               GObjectPtr<GDBusConnection> bus_)
    : DBusNotificationCenter(loop_, log_, std::move(bus_), Limits()) {}

DBusNotificationCenter::DBusNotificationCenter(MainLoop& loop_, Log& log_,
                                               GObjectPtr<GDBusConnection> bus_, Limits limits_)
    : loop(loop_),
      log(log_),
      bus(std::move(bus_)),
      limits(limits_),
      posted(numberOfThisRun()),
      queue(limits_.newsworthy) {
    if (!bus) {
        present.state = State::absent;
        return;
    }
    using Self = DBusNotificationCenter;
    signals = g_dbus_connection_signal_subscribe(
        bus.get(), notifications::name, notifications::interface, nullptr, notifications::path,
        nullptr, G_DBUS_SIGNAL_FLAGS_NONE,
        [](GDBusConnection*, const gchar* sender, const gchar*, const gchar*, const gchar* signal,
           GVariant* parameters, gpointer self) {
            if (sender != nullptr)
                static_cast<Self*>(self)->receive(sender, signal, parameters);
        },
        this, nullptr);
    nameWatch = g_bus_watch_name_on_connection(
        bus.get(), notifications::name, G_BUS_NAME_WATCHER_FLAGS_NONE,
        [](GDBusConnection*, const gchar*, const gchar* newOwner, gpointer self) {
            static_cast<Self*>(self)->takeOwner(newOwner);
        },
        [](GDBusConnection*, const gchar*, gpointer self) {
            static_cast<Self*>(self)->loseOwner();
        },
        this, nullptr);
    patience = loop.after(limits.answer, [this] { become(State::silent); });
}

DBusNotificationCenter::~DBusNotificationCenter() {
    if (!bus)
        return;
    g_bus_unwatch_name(nameWatch);
    g_dbus_connection_signal_unsubscribe(bus.get(), signals);
}

void DBusNotificationCenter::setCategories(std::vector<NotificationCategory> categories_) {
    categories = std::move(categories_);
}

void DBusNotificationCenter::fetchAuthorization(
    std::function<void(NotificationAuthorization)> done) {
    Task answer = [this, done = std::move(done)] {
        done(present.state == State::present ? NotificationAuthorization::authorized
                                             : NotificationAuthorization::notDetermined);
    };
    if (present.state == State::unknown)
        waitingForState.push_back(std::move(answer));
    else
        answer();
}

void DBusNotificationCenter::requestAuthorization(
    std::function<void(std::optional<std::string>)> done) {
    Task answer = [this, done = std::move(done)] {
        switch (present.state) {
        case State::present:
            return done(std::nullopt);
        case State::silent:
            return done("The program that shows notifications does not answer.");
        default:
            return done("No program on this desktop shows notifications.");
        }
    };
    if (present.state == State::absent)
        startServer();
    if (present.state == State::unknown || isStarting)
        waitingForState.push_back(std::move(answer));
    else
        answer();
}

void DBusNotificationCenter::post(NotificationRequest request) {
    auto identifier = request.identifier;
    if (!queue.push({std::move(identifier), std::move(request), loop.now()}))
        log.notice("The oldest notification that waited was dropped: nobody shows them",
                   logCategory::notification);
    if (owner.empty())
        startServer();
    sendNext();
}

void DBusNotificationCenter::removeDelivered(const std::string& identifier) {
    queue.drop(identifier);
    const bool isBeingShown = inFlight && inFlight->identifier == identifier;
    if (isBeingShown || posted.numberOf(identifier) != 0)
        (void)queue.push({identifier, std::nullopt, loop.now()});
    sendNext();
}

Subscription
DBusNotificationCenter::onResponse(std::function<void(const NotificationResponse&)> callback) {
    return responses.add(std::move(callback));
}

Subscription DBusNotificationCenter::onServiceChange(Task callback) {
    return serviceChanges.add(std::move(callback));
}

/// Has the bus start a server, if it knows of one. Its owner is then told of by the name watch.
void DBusNotificationCenter::startServer() {
    if (isStarting || !bus || g_dbus_connection_is_closed(bus.get()) != FALSE)
        return;
    isStarting = true;
    if (present.state == State::unknown)
        patience = loop.after(limits.answer, [this] { become(State::silent); });
    callBus(bus.get(),
            {.destination = dbusName,
             .path = dbusPath,
             .interface = dbusName,
             .method = "StartServiceByName",
             .parameters = g_variant_new("(su)", notifications::name, 0U)},
            lifetime.guard([this](GVariant* reply) {
                isStarting = false;
                if (reply != nullptr || !owner.empty())
                    return;
                patience.reset();
                become(State::absent);
            }));
}

void DBusNotificationCenter::takeOwner(const std::string& newOwner) {
    abandonQuestion();
    owner = newOwner;
    askCapabilities();
}

void DBusNotificationCenter::loseOwner() {
    const bool isFirstAnswer = present.state == State::unknown;
    abandonQuestion();
    if (g_dbus_connection_is_closed(bus.get()) != FALSE)
        return become(State::absent);
    if (isFirstAnswer || queue.size() > 0)
        startServer();
    if (!isFirstAnswer)
        become(State::absent);
}

/// The server of before is gone: what it was being asked is for the next one.
void DBusNotificationCenter::abandonQuestion() {
    ++asked;
    isAsking = false;
    pause.reset();
    patience.reset();
    owner.clear();
    posted.forgetNumbers();
    queue.dropRemovals();
    if (inFlight && inFlight->request)
        queue.putBack(*std::move(inFlight));
    inFlight.reset();
}

void DBusNotificationCenter::askCapabilities() {
    ask("GetCapabilities", nullptr, [this](GVariant* reply, const GError*) {
        capabilities = notifications::decodeCapabilities(reply);
        become(State::present);
        sendNext();
    });
}

/// Says the next thing to the server, if it is free to listen.
void DBusNotificationCenter::sendNext() {
    while (!owner.empty() && !isAsking && !pause) {
        auto next = queue.take(loop.now());
        if (!next)
            return;
        send(*std::move(next));
    }
}

void DBusNotificationCenter::send(NotificationQueue::Entry entry) {
    const auto number = posted.numberOf(entry.identifier);
    inFlight = std::move(entry);
    if (inFlight->request)
        show(*inFlight);
    else if (number != 0)
        close(number);
    else
        inFlight.reset(); // it has gone by itself
}

void DBusNotificationCenter::show(const NotificationQueue::Entry& entry) {
    ask("Notify",
        notifications::encode(*entry.request, buttonsOf(*entry.request),
                              posted.numberOf(entry.identifier), capabilities),
        [this](GVariant* reply, const GError* failure) {
            if (failure != nullptr && !isRefusal(*failure))
                return holdBack(*failure);
            const auto ended = *std::exchange(inFlight, std::nullopt);
            if (const auto number = notifications::decodeNumber(reply))
                posted.noteShown(ended.identifier, *number);
            else
                log.error(fmt::format("A notification could not be shown: {}",
                                      failure != nullptr ? validUtf8(failure->message)
                                                         : "the answer makes no sense"),
                          logCategory::notification);
            become(State::present);
            sendNext();
        });
}

void DBusNotificationCenter::close(std::uint32_t number) {
    posted.noteClosed(number);
    ask("CloseNotification", g_variant_new("(u)", number), [this](GVariant*, const GError*) {
        inFlight.reset();
        become(State::present);
        sendNext();
    });
}

/// Asks the server. Its answer is waited for as long as it has the name; `done` is not called when
/// it has lost that.
void DBusNotificationCenter::ask(const char* method, GVariant* parameters,
                                 std::function<void(GVariant*, const GError*)> done) {
    isAsking = true;
    patience = loop.after(limits.answer, [this] { become(State::silent); });
    callBusForOutcome(bus.get(),
                      {.destination = owner.c_str(),
                       .path = notifications::path,
                       .interface = notifications::interface,
                       .method = method,
                       .parameters = parameters,
                       .timeout = G_MAXINT},
                      lifetime.guard([this, number = ++asked, done = std::move(done)](
                                         GVariant* reply, const GError* failure) {
                          if (number != asked)
                              return;
                          isAsking = false;
                          patience.reset();
                          done(reply, failure);
                      }));
}

/// The question failed on its way, and its server still has the name as far as is known: the name
/// watch is about to tell that it has not, or the bus had no room.
void DBusNotificationCenter::holdBack(const GError& failure) {
    log.debug(fmt::format("A notification waits: {}", validUtf8(failure.message)),
              logCategory::notification);
    queue.putBack(*std::exchange(inFlight, std::nullopt));
    pause = loop.after(limits.answer, [this] {
        pause.reset();
        sendNext();
    });
}

std::vector<notifications::Button>
DBusNotificationCenter::buttonsOf(const NotificationRequest& request) {
    std::vector<notifications::Button> buttons;
    const auto category = std::ranges::find(categories, request.categoryIdentifier,
                                            &NotificationCategory::identifier);
    if (category == categories.end())
        return buttons;
    for (const auto& [identifier, title] : category->actions)
        buttons.emplace_back(validUtf8(posted.key(identifier, request.identifier)), title);
    return buttons;
}

void DBusNotificationCenter::receive(const std::string& sender, const std::string& signal,
                                     GVariant* parameters) {
    if (sender != owner)
        return;
    if (signal == "ActionInvoked" &&
        g_variant_is_of_type(parameters, G_VARIANT_TYPE("(us)")) != FALSE) {
        const gchar* key = nullptr;
        g_variant_get_child(parameters, 1, "&s", &key);
        receivePress(key);
    } else if (signal == "ActivationToken" &&
               g_variant_is_of_type(parameters, G_VARIANT_TYPE("(us)")) != FALSE) {
        std::uint32_t number = 0;
        const gchar* token = nullptr;
        g_variant_get(parameters, "(u&s)", &number, &token);
        if (posted.isShown(number)) // toolkits look for it there when they open a window
            g_setenv("XDG_ACTIVATION_TOKEN", token, TRUE);
    } else if (signal == "NotificationClosed" &&
               g_variant_is_of_type(parameters, G_VARIANT_TYPE("(uu)")) != FALSE) {
        std::uint32_t number = 0;
        g_variant_get_child(parameters, 0, "u", &number);
        posted.noteClosed(number);
    }
}

void DBusNotificationCenter::receivePress(const std::string& key) {
    if (const auto press = posted.pressOf(key))
        return responses.call({press->actionIdentifier, press->requestIdentifier});
    if (!std::exchange(hasLoggedStranger, true)) // every program hears of every press
        log.debug("The button of another program's notification was pressed",
                  logCategory::notification);
}

void DBusNotificationCenter::become(State state) {
    if (state != State::unknown && state != present.state && state != State::present)
        log.notice(state == State::silent ? "The program that shows notifications does not answer"
                                          : "No program shows notifications",
                   logCategory::notification);
    const NotificationService next{state, state == State::present && capabilities.actions};
    const bool isOther = std::exchange(present, next) != next;
    for (const auto& answer : std::exchange(waitingForState, {}))
        answer();
    if (isOther)
        serviceChanges.call();
}

} // namespace quorva
