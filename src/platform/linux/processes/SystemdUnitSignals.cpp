#include "platform/linux/processes/SystemdUnitSignals.h"

#include "platform/linux/glib/BusSignals.h"
#include "platform/linux/processes/ProcFormats.h"

namespace quorva {
namespace {

constexpr const char* managerName = "org.freedesktop.systemd1";
constexpr const char* managerPath = "/org/freedesktop/systemd1";
constexpr const char* managerInterface = "org.freedesktop.systemd1.Manager";

/// The manager sends signals only while a client has subscribed.
void subscribeAtManager(GDBusConnection* bus, const std::string& owner) {
    g_dbus_connection_call(bus, owner.c_str(), managerPath, managerInterface, "Subscribe", nullptr,
                           nullptr, G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, nullptr, nullptr, nullptr);
}

/// The unit's name in a signal's parameters; empty when they are not of the expected types.
std::string unitOf(const std::string& signal, GVariant* parameters) {
    const bool isJob = signal == "JobRemoved";
    if (!g_variant_is_of_type(parameters, G_VARIANT_TYPE(isJob ? "(uoss)" : "(so)")))
        return {};
    const gchar* unit = nullptr;
    g_variant_get_child(parameters, isJob ? 2 : 0, "&s", &unit);
    return unit;
}

} // namespace

SystemdUnitSignals::SystemdUnitSignals(GObjectPtr<GDBusConnection> bus_, Task onStarted_,
                                       Task onEnded_)
    : bus(std::move(bus_)), onStarted(std::move(onStarted_)), onEnded(std::move(onEnded_)) {
    signals = subscribeToSignals(
        bus.get(), {.sender = managerName, .interface = managerInterface, .path = managerPath},
        [this](const BusSignal& signal) { receive(signal.member, signal.parameters); });
    nameWatch = watchBusName(
        bus.get(), managerName,
        [this](const std::string& owner) { subscribeAtManager(bus.get(), owner); }, {});
}

void SystemdUnitSignals::receive(const std::string& signal, GVariant* parameters) const {
    const bool isStart = signal == "UnitNew" || signal == "JobRemoved";
    if (!isStart && signal != "UnitRemoved")
        return;
    if (!applicationOfUnit(unitOf(signal, parameters)))
        return;
    const Task& callback = isStart ? onStarted : onEnded;
    callback();
}

} // namespace quorva
