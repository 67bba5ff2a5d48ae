#include "platform/linux/accessibility/AtspiEvents.h"

#include "platform/linux/glib/BusCall.h"
#include "platform/linux/glib/MainContext.h"

#include <array>
#include <utility>

namespace quorva {
namespace {

constexpr std::array events{
    "object:children-changed",
    "object:property-change:accessible-name",
    "object:property-change:accessible-description",
    "object:property-change:accessible-parent",
    "object:text-changed",
    "object:state-changed:showing",
    "object:state-changed:defunct",
    "object:row-inserted",
    "object:row-deleted",
    "object:model-changed",
    "document:load-complete",
    "document:reload",
    "window:create",
    "window:destroy",
    "window:activate",
};

constexpr std::array interfaces{
    "org.a11y.atspi.Event.Object",
    "org.a11y.atspi.Event.Document",
    "org.a11y.atspi.Event.Window",
};

constexpr int longestRegistration = 1000; // milliseconds
constexpr guint timeToRegisterAgain = 10'000;

} // namespace

AtspiEvents::AtspiEvents(GObjectPtr<GDBusConnection> bus_, std::string address_)
    : bus(std::move(bus_)), address(std::move(address_)) {}

AtspiEvents::~AtspiEvents() {
    endRegistration();
}

Subscription AtspiEvents::follow(const std::string& application, const Callback& onChange,
                                 Task onFollowed) {
    std::vector<guint> signals;
    signals.reserve(std::size(interfaces));
    for (const char* const interface : interfaces)
        signals.push_back(g_dbus_connection_signal_subscribe(
            bus.get(), application.c_str(), interface, nullptr, nullptr, nullptr,
            G_DBUS_SIGNAL_FLAGS_NONE,
            [](GDBusConnection*, const gchar*, const gchar* path, const gchar* from,
               const gchar* member, GVariant* parameters, gpointer callback) {
                const auto event = decodeEvent(path, from, member, parameters);
                if (event.change != AtspiChange::none)
                    (*static_cast<Callback*>(callback))(event);
            },
            new Callback(onChange),
            [](gpointer callback) { delete static_cast<Callback*>(callback); }));
    ++followers;
    const auto waits = std::make_shared<Task>(std::move(onFollowed));
    waiting.push_back(waits);
    if (state == State::registered)
        hasRegistered();
    else if (state == State::none)
        openRegistration();
    return Subscription(lifetime.guard([this, signals, waits] {
        *waits = nullptr;
        leave(signals);
    }));
}

void AtspiEvents::registerAnew() {
    if (state != State::registered)
        return;
    endRegistration();
    openRegistration();
}

void AtspiEvents::openRegistration() {
    state = State::registering;
    again.reset();
    openBus(address, lifetime.guard([this](GObjectPtr<GDBusConnection>& connection) {
        registration = std::move(connection);
        if (!registration || followers == 0)
            return hasRegistered();
        g_signal_connect(registration.get(), "closed",
                         G_CALLBACK(+[](GDBusConnection*, gboolean, GError*, gpointer self) {
                             static_cast<AtspiEvents*>(self)->registerLater();
                         }),
                         this);
        registerEvents();
    }));
}

/// For all applications: the registry takes the name of one, and does not limit anything by it. The
/// answer to the last call says that all have been dealt with.
void AtspiEvents::registerEvents() {
    for (const char* const event : events)
        callBus(registration.get(),
                {atspi::registryName, atspi::registryPath, atspi::registryInterface,
                 "RegisterEvent",
                 g_variant_new("(s@ass)", event, g_variant_new_strv(nullptr, 0), ""),
                 longestRegistration},
                lifetime.guard([this, event](GVariant* reply) {
                    if (event != events.back())
                        return;
                    if (reply == nullptr)
                        endRegistration();
                    hasRegistered();
                }));
}

void AtspiEvents::hasRegistered() {
    state = registration ? State::registered : State::none;
    for (const auto& task : std::exchange(waiting, {}))
        if (const auto call = std::exchange(*task, nullptr))
            call();
    if (followers == 0)
        endRegistration();
    else if (state == State::none)
        registerLater();
}

void AtspiEvents::endRegistration() {
    if (!registration)
        return;
    g_signal_handlers_disconnect_by_data(registration.get(), this);
    g_dbus_connection_close(registration.get(), nullptr, nullptr, nullptr);
    registration.reset();
    if (state == State::registered)
        state = State::none;
}

void AtspiEvents::registerLater() {
    endRegistration();
    if (state == State::none)
        again = contextTimer(timeToRegisterAgain, [this] {
            if (state == State::none && followers > 0)
                openRegistration();
        });
}

void AtspiEvents::leave(const std::vector<guint>& signals) {
    for (const guint signal : signals)
        g_dbus_connection_signal_unsubscribe(bus.get(), signal);
    if (--followers == 0 && state == State::registered)
        endRegistration();
}

} // namespace quorva
