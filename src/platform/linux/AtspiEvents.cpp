#include "platform/linux/AtspiEvents.h"

#include "platform/linux/BusCall.h"

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

} // namespace

AtspiEvents::AtspiEvents(GObjectPtr<GDBusConnection> bus_, std::string address_)
    : bus(std::move(bus_)), address(std::move(address_)) {}

AtspiEvents::~AtspiEvents() = default;

Subscription AtspiEvents::follow(const std::string& application, Callback onChange,
                                 Task onFollowed) {
    std::vector<guint> signals;
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
    waiting.push_back(std::move(onFollowed));
    if (state == State::registered)
        hasRegistered();
    else if (state == State::none)
        openRegistration();
    return Subscription(lifetime.guard([this, signals] { leave(signals); }));
}

void AtspiEvents::openRegistration() {
    state = State::registering;
    openBus(address, lifetime.guard([this](GObjectPtr<GDBusConnection>& connection) {
        registration = std::move(connection);
        registration&& followers > 0 ? registerEvents() : hasRegistered();
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
                lifetime.guard([this, event](GVariant*) {
                    if (event == events.back())
                        hasRegistered();
                }));
}

void AtspiEvents::hasRegistered() {
    state = registration ? State::registered : State::none;
    for (const auto& task : std::exchange(waiting, {}))
        task();
}

void AtspiEvents::leave(const std::vector<guint>& signals) {
    for (const guint signal : signals)
        g_dbus_connection_signal_unsubscribe(bus.get(), signal);
    if (--followers > 0 || state != State::registered)
        return;
    g_dbus_connection_close(registration.get(), nullptr, nullptr, nullptr);
    registration.reset();
    state = State::none;
}

} // namespace quorva
