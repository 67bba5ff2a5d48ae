#include "platform/linux/accessibility/AtspiEvents.h"

#include "platform/linux/glib/BusCall.h"
#include "platform/linux/glib/BusSignals.h"
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

constexpr int registrationTimeout = 1000; // milliseconds
constexpr guint retryInterval = 10'000;

} // namespace

AtspiEvents::AtspiEvents(GObjectPtr<GDBusConnection> bus_, std::string address_)
    : bus(std::move(bus_)), address(std::move(address_)) {}

AtspiEvents::~AtspiEvents() {
    endRegistration();
}

Subscription AtspiEvents::follow(const std::string& application, const Callback& onChange,
                                 Task onFollowed) {
    auto signals = std::make_shared<std::vector<Subscription>>();
    for (const char* const interface : interfaces)
        signals->push_back(
            subscribeToSignals(bus.get(), {.sender = application.c_str(), .interface = interface},
                               [onChange](const BusSignal& signal) {
                                   const auto event = decodeEvent(signal.path, signal.interface,
                                                                  signal.member, signal.parameters);
                                   if (event.change != AtspiChange::none)
                                       onChange(event);
                               }));
    ++followers;
    const auto waits = std::make_shared<Task>(std::move(onFollowed));
    waiting.push_back(waits);
    if (state == State::registered)
        finishRegistering();
    else if (state == State::none)
        openRegistration();
    return Subscription(lifetime.guard([this, signals, waits] {
        *waits = nullptr;
        signals->clear();
        removeFollower();
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
    retry.reset();
    openBus(address, lifetime.guard([this](GObjectPtr<GDBusConnection>& connection) {
        registration = std::move(connection);
        if (!registration || followers == 0)
            return finishRegistering();
        g_signal_connect(registration.get(), "closed",
                         G_CALLBACK(+[](GDBusConnection*, gboolean, GError*, gpointer self) {
                             static_cast<AtspiEvents*>(self)->registerLater();
                         }),
                         this);
        registerEvents();
    }));
}

/// For all applications: the registry accepts the name of one, but ignores it. The last answer
/// means that all calls have been handled.
void AtspiEvents::registerEvents() {
    for (const char* const event : events)
        callBus(registration.get(),
                {atspi::registryName, atspi::registryPath, atspi::registryInterface,
                 "RegisterEvent",
                 g_variant_new("(s@ass)", event, g_variant_new_strv(nullptr, 0), ""),
                 registrationTimeout},
                lifetime.guard([this, event](GVariant* reply) {
                    if (event != events.back())
                        return;
                    if (reply == nullptr)
                        endRegistration();
                    finishRegistering();
                }));
}

void AtspiEvents::finishRegistering() {
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
        retry = contextTimer(retryInterval, [this] {
            if (state == State::none && followers > 0)
                openRegistration();
        });
}

void AtspiEvents::removeFollower() {
    --followers;
    if (followers == 0 && state == State::registered)
        endRegistration();
}

} // namespace quorva
