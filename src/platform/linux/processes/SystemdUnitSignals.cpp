#include "platform/linux/processes/SystemdUnitSignals.h"

#include "platform/linux/processes/ProcFormats.h"

namespace quorva {
namespace {

constexpr const char* managerName = "org.freedesktop.systemd1";
constexpr const char* managerPath = "/org/freedesktop/systemd1";
constexpr const char* managerInterface = "org.freedesktop.systemd1.Manager";

/// The manager sends its signals only while somebody has asked for them.
void askForSignals(GDBusConnection* bus, const gchar*, const gchar* owner, gpointer) {
    g_dbus_connection_call(bus, owner, managerPath, managerInterface, "Subscribe", nullptr, nullptr,
                           G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, nullptr, nullptr, nullptr);
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
    signals = g_dbus_connection_signal_subscribe(
        bus.get(), managerName, managerInterface, nullptr, managerPath, nullptr,
        G_DBUS_SIGNAL_FLAGS_NONE,
        [](GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* signal,
           GVariant* parameters,
           gpointer self) { static_cast<SystemdUnitSignals*>(self)->receive(signal, parameters); },
        this, nullptr);
    nameWatch =
        g_bus_watch_name_on_connection(bus.get(), managerName, G_BUS_NAME_WATCHER_FLAGS_NONE,
                                       askForSignals, nullptr, nullptr, nullptr);
}

SystemdUnitSignals::~SystemdUnitSignals() {
    g_bus_unwatch_name(nameWatch);
    g_dbus_connection_signal_unsubscribe(bus.get(), signals);
}

void SystemdUnitSignals::receive(const std::string& signal, GVariant* parameters) const {
    const bool isStart = signal == "UnitNew" || signal == "JobRemoved";
    if (!isStart && signal != "UnitRemoved")
        return;
    if (applicationOfUnit(unitOf(signal, parameters)))
        (isStart ? onStarted : onEnded)();
}

} // namespace quorva
