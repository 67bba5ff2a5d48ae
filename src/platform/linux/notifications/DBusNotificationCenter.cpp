#include "platform/linux/notifications/DBusNotificationCenter.h"

#include "platform/linux/glib/Utf8.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace quorva {
namespace {

std::uint64_t numberOfThisRun() {
    return static_cast<std::uint64_t>(g_random_int()) << 32 | g_random_int();
}

} // namespace

DBusNotificationCenter::DBusNotificationCenter(MainLoop& loop_, Log& log_,
                                               GObjectPtr<GDBusConnection> bus)
    : DBusNotificationCenter(loop_, log_, std::move(bus), Limits()) {}

DBusNotificationCenter::DBusNotificationCenter(MainLoop& loop_, Log& log_,
                                               GObjectPtr<GDBusConnection> bus, Limits limits)
    : loop(loop_),
      log(log_),
      posted(numberOfThisRun()),
      queue(limits.newsworthy),
      server(loop, log, std::move(bus), limits.answer,
             {.onFree = [this] { sendNext(); },
              .onGone = [this] { handleServerGone(); },
              .isNeeded = [this] { return queue.size() > 0; },
              .onSignal = [this](const BusSignal& signal) { handleSignal(signal); },
              .onServiceChange = [this] { serviceChanges.call(); }}) {}

void DBusNotificationCenter::setCategories(std::vector<NotificationCategory> categories_) {
    categories = std::move(categories_);
}

void DBusNotificationCenter::fetchAuthorization(
    std::function<void(NotificationAuthorization)> done) {
    server.whenKnown([this, done = std::move(done)] {
        done(service().state == State::present ? NotificationAuthorization::authorized
                                               : NotificationAuthorization::notDetermined);
    });
}

void DBusNotificationCenter::requestAuthorization(
    std::function<void(std::optional<std::string>)> done) {
    server.whenStarted([this, done = std::move(done)] {
        switch (service().state) {
        case State::present:
            return done(std::nullopt);
        case State::silent:
            return done("The program that shows notifications does not answer.");
        default:
            return done("No program on this desktop shows notifications.");
        }
    });
}

void DBusNotificationCenter::post(NotificationRequest request) {
    auto identifier = request.identifier;
    if (!queue.push({std::move(identifier), std::move(request), loop.now()}))
        log.notice("The oldest notification that waited was dropped: nobody shows them",
                   logCategory::notification);
    server.start();
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

void DBusNotificationCenter::sendNext() {
    while (server.isFree()) {
        auto next = queue.pop(loop.now());
        if (!next)
            return;
        send(*std::move(next));
    }
}

void DBusNotificationCenter::send(NotificationQueue::Entry entry) {
    const auto number = posted.numberOf(entry.identifier);
    if (!entry.request && number == 0)
        return; // the user has closed it meanwhile
    inFlight = std::move(entry);
    if (inFlight->request)
        show(*inFlight);
    else
        close(number);
}

void DBusNotificationCenter::show(const NotificationQueue::Entry& entry) {
    server.call(
        "Notify",
        notifications::encode(*entry.request, buttonsOf(*entry.request),
                              posted.numberOf(entry.identifier), server.capabilities()),
        [this](GVariant* reply, const GError* failure) { handleShown(reply, failure); },
        [this] { queue.putBack(*std::exchange(inFlight, std::nullopt)); });
}

void DBusNotificationCenter::handleShown(GVariant* reply, const GError* failure) {
    const auto shown = *std::exchange(inFlight, std::nullopt);
    if (const auto number = notifications::decodeNumber(reply))
        posted.noteShown(shown.identifier, *number);
    else
        log.error(Printable::format("A notification could not be shown: {}",
                                    failure != nullptr ? validUtf8(failure->message)
                                                       : "the answer makes no sense"),
                  logCategory::notification);
}

void DBusNotificationCenter::close(std::uint32_t number) {
    posted.noteClosed(number);
    server.call("CloseNotification", g_variant_new("(u)", number),
                [this](GVariant*, const GError*) { inFlight.reset(); });
}

/// The next server gets what the one that has gone was about to show.
void DBusNotificationCenter::handleServerGone() {
    posted.invalidateNumbers();
    queue.dropRemovals();
    const auto abandoned = std::exchange(inFlight, std::nullopt);
    if (abandoned && abandoned->request)
        queue.putBack(*abandoned);
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

void DBusNotificationCenter::handleSignal(const BusSignal& signal) {
    const std::string_view member = signal.member;
    const auto isOfType = [&](const char* type) {
        return g_variant_is_of_type(signal.parameters, G_VARIANT_TYPE(type)) != FALSE;
    };
    if (member == "ActionInvoked" && isOfType("(us)")) {
        const gchar* key = nullptr;
        g_variant_get_child(signal.parameters, 1, "&s", &key);
        handlePress(key);
    } else if (member == "ActivationToken" && isOfType("(us)")) {
        std::uint32_t number = 0;
        const gchar* token = nullptr;
        g_variant_get(signal.parameters, "(u&s)", &number, &token);
        if (posted.isShown(number)) // toolkits look for it there when they open a window
            g_setenv("XDG_ACTIVATION_TOKEN", token, TRUE);
    } else if (member == "NotificationClosed" && isOfType("(uu)")) {
        std::uint32_t number = 0;
        g_variant_get_child(signal.parameters, 0, "u", &number);
        posted.noteClosed(number);
    }
}

void DBusNotificationCenter::handlePress(const std::string& key) {
    if (const auto press = posted.pressOf(key))
        return responses.call({press->actionIdentifier, press->requestIdentifier});
    if (!std::exchange(hasLoggedStranger, true)) // every program hears of every press
        log.debug("The button of another program's notification was pressed",
                  logCategory::notification);
}

} // namespace quorva
