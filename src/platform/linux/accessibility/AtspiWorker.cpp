#include "platform/linux/accessibility/AtspiWorker.h"

#include "platform/linux/accessibility/AtspiProtocol.h"
#include "platform/linux/glib/AsyncCall.h"
#include "platform/linux/glib/BusCall.h"
#include "platform/linux/glib/BusSignals.h"
#include "platform/linux/glib/MainContext.h"

#include <cerrno>
#include <utility>

namespace quorva {
namespace {

constexpr const char* launcherName = "org.a11y.Bus";
constexpr const char* launcherPath = "/org/a11y/bus";
constexpr const char* statusInterface = "org.a11y.Status";

constexpr int launcherTimeout = 5000; // milliseconds
constexpr guint statusRetryInterval = 15'000;

} // namespace

AtspiWorker::AtspiWorker(Reports reports_) : reports(std::move(reports_)) {}

AtspiWorker::~AtspiWorker() = default;

void AtspiWorker::start() {
    g_bus_get(G_BUS_TYPE_SESSION, nullptr, asyncCallback,
              asyncData(lifetime.guard([this](GObject*, GAsyncResult* result) {
                  adoptSession(GObjectPtr<GDBusConnection>(g_bus_get_finish(result, nullptr)));
              })));
}

void AtspiWorker::adoptSession(GObjectPtr<GDBusConnection> bus) {
    if (!bus)
        return reports.trust(false);
    session = std::move(bus);
    g_dbus_connection_set_exit_on_close(session.get(), FALSE);
    statusChanges = subscribeToSignals(session.get(),
                                       {.sender = launcherName,
                                        .interface = atspi::properties,
                                        .member = "PropertiesChanged",
                                        .path = launcherPath,
                                        .firstArgument = statusInterface},
                                       [this](const BusSignal&) { askStatus(); });
    launcherWatch = watchBusName(
        session.get(), launcherName, [this](const std::string&) { askStatus(); },
        [this] { askStatus(); });
}

/// The call starts the launcher where it is not running.
void AtspiWorker::askStatus() {
    callBus(session.get(),
            {launcherName, launcherPath, atspi::properties, "Get",
             g_variant_new("(ss)", statusInterface, "IsEnabled"), launcherTimeout,
             G_DBUS_CALL_FLAGS_NONE},
            lifetime.guard([this](GVariant* reply) {
                const auto isEnabled = decodeTruth(reply);
                if (!isEnabled) // it may just be slow, and need not send a signal later
                    retry = contextTimer(statusRetryInterval, [this] { askStatus(); });
                handleStatus(isEnabled.value_or(isTrusted));
            }));
}

void AtspiWorker::switchOn(std::function<void(bool)> done) {
    if (!session) {
        done(false);
        return;
    }
    callBus(session.get(),
            {launcherName, launcherPath, atspi::properties, "Set",
             g_variant_new("(ssv)", statusInterface, "IsEnabled", g_variant_new_boolean(TRUE)), -1,
             G_DBUS_CALL_FLAGS_NONE},
            lifetime.guard([this, done = std::move(done)](GVariant* reply) {
                if (reply != nullptr)
                    handleStatus(true);
                done(reply != nullptr);
            }));
}

void AtspiWorker::handleStatus(bool isEnabled) {
    isTrusted = isEnabled;
    reports.trust(isEnabled);
    if (!isEnabled)
        applications.reset();
    else
        connect();
}

void AtspiWorker::request(std::vector<AtspiRequest> requests) {
    wanted.clear();
    for (auto& request : requests)
        wanted[request.reading.process] = std::move(request);
    if (!isTrusted)
        return;
    if (applications)
        applications->readWanted();
    else
        connect();
}

void AtspiWorker::connect() {
    if (applications || isConnecting || wanted.empty())
        return;
    isConnecting = true;
    callBus(
        session.get(),
        {launcherName, launcherPath, launcherName, "GetAddress", nullptr, launcherTimeout,
         G_DBUS_CALL_FLAGS_NONE},
        lifetime.guard([this](GVariant* reply) { handleAddress(decodeText(reply).value_or("")); }));
}

void AtspiWorker::handleAddress(const std::string& address) {
    openBus(address, lifetime.guard([this, address](GObjectPtr<GDBusConnection>& bus) {
        isConnecting = false;
        if (!bus || !isTrusted)
            return handleLostBus();
        applications =
            std::make_unique<AtspiApplications>(std::move(bus), address, wanted, reports.answer,
                                                lifetime.guard([this] { handleLostBus(); }));
        applications->readWanted();
    }));
}

/// The next request tries again.
void AtspiWorker::handleLostBus() {
    applications.reset();
    for (const auto& [process, request] : wanted)
        reports.answer(process,
                       emptyAnswer(ReadState::couldNotBeRead,
                                   "the accessibility bus can't be reached", ECONNREFUSED));
}

} // namespace quorva
