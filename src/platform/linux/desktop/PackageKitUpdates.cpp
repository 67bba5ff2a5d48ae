#include "platform/linux/desktop/PackageKitUpdates.h"

#include "base/Lifetime.h"
#include "platform/linux/desktop/PackageKitProtocol.h"
#include "platform/linux/glib/BusCall.h"
#include "platform/linux/glib/BusSignals.h"
#include "platform/linux/glib/Utf8.h"

#include <fmt/format.h>

#include <cstdint>
#include <memory>
#include <utility>
#include <variant>

namespace quorva {
namespace {

constexpr const char* serviceName = "org.freedesktop.PackageKit";
constexpr const char* servicePath = "/org/freedesktop/PackageKit";
constexpr const char* transactionInterface = "org.freedesktop.PackageKit.Transaction";

// Filters, as PackageKit numbers them.
constexpr std::uint64_t noFilter = 1U << 1U;
constexpr std::uint64_t installedOnly = 1U << 2U;

UpdateAnswer unknown(std::string reason) {
    return {.kind = UpdateAnswer::Kind::unknown, .reason = std::move(reason)};
}

void openSystemBus(PackageKitUpdates::BusOpened done) {
    const GCharsPtr address(g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr));
    openBus(address ? address.get() : "", std::move(done));
}

} // namespace

/// One check: whether the program is installed as a package, and then whether that has an update.
/// Each is a transaction of the service, which answers by signals.
class PackageKitUpdates::Check {
public:
    using Done = std::function<void(const UpdateAnswer&)>;

    Check(MainLoop& loop, Seconds timeout, Done done_) : done(std::move(done_)) {
        deadline = loop.after(
            timeout, [this] { finish(unknown("The package service did not answer in time.")); });
    }
    Check(const Check&) = delete;
    Check& operator=(const Check&) = delete;

    void start(const OpenBus& open) {
        open(lifetime.guard([this](GObjectPtr<GDBusConnection>& opened) {
            if (!opened)
                return finish(unknown("The system bus can't be reached."));
            bus = std::move(opened);
            findInstalled();
        }));
    }

private:
    using Next = void (Check::*)();

    void findInstalled() {
        const gchar* const names[] = {packageKit::packageName.data(), nullptr};
        begin("Resolve", g_variant_ref_sink(g_variant_new("(t^as)", installedOnly, names)),
              &Check::judgeInstalled);
    }

    void judgeInstalled() {
        if (!version)
            return finish(unknown("Quorva was not installed by this computer's package service."));
        begin("GetUpdates", g_variant_ref_sink(g_variant_new("(t)", noFilter)),
              &Check::judgeUpdates);
    }

    void judgeUpdates() {
        if (version)
            finish({.kind = UpdateAnswer::Kind::available, .version = *version});
        else
            finish({.kind = UpdateAnswer::Kind::upToDate});
    }

    /// Begins a transaction that calls `method`. Calls `then` when it has finished.
    void begin(const char* method, GVariant* parameters, Next then) {
        version.reset();
        fault.clear();
        const std::shared_ptr<GVariant> held(parameters, g_variant_unref);
        call(servicePath, serviceName, "CreateTransaction", nullptr,
             [this, method, held, then](GVariant* reply) {
                 const auto path = packageKit::decodeTransaction(reply);
                 if (!path)
                     return finish(unknown("The package service makes no sense."));
                 follow(path->c_str(), then);
                 call(path->c_str(), transactionInterface, method, held.get(), nullptr);
             });
    }

    void call(const char* path, const char* interface, const char* method, GVariant* parameters,
              std::function<void(GVariant*)> then) {
        callBusForOutcome(
            bus.get(),
            {.destination = serviceName,
             .path = path,
             .interface = interface,
             .method = method,
             .parameters = parameters,
             .timeout = G_MAXINT, // the check has a deadline itself
             .flags = G_DBUS_CALL_FLAGS_NONE},
            lifetime.guard([this, then = std::move(then)](GVariant* reply, const GError* failure) {
                if (reply == nullptr)
                    return finish(unknown(reasonOf(*failure)));
                if (then)
                    then(reply);
            }));
    }

    static std::string reasonOf(const GError& failure) {
        const bool isAbsent =
            g_error_matches(&failure, G_DBUS_ERROR, G_DBUS_ERROR_SERVICE_UNKNOWN) != FALSE ||
            g_error_matches(&failure, G_DBUS_ERROR, G_DBUS_ERROR_NAME_HAS_NO_OWNER) != FALSE;
        return isAbsent ? "This computer has no package service."
                        : fmt::format("The package service failed: {}", validUtf8(failure.message));
    }

    void follow(const char* path, Next next_) {
        next = next_;
        signals = subscribeToSignals(
            bus.get(), {.sender = serviceName, .interface = transactionInterface, .path = path},
            [this](const BusSignal& signal) { handleSignal(signal.member, signal.parameters); });
    }

    void handleSignal(std::string_view name, GVariant* parameters) {
        const auto signal = packageKit::decodeSignal(name, parameters);
        if (const auto* const package = std::get_if<packageKit::OwnPackage>(&signal)) {
            version = package->version;
        } else if (const auto* const failure = std::get_if<packageKit::Fault>(&signal)) {
            fault = failure->text;
        } else if (const auto* const end = std::get_if<packageKit::End>(&signal)) {
            signals.reset();
            if (end->isSuccess)
                (this->*next)();
            else
                finish(unknown("The package service failed: " + fault));
        }
    }

    void finish(const UpdateAnswer& answer) {
        signals.reset();
        deadline.reset();
        if (const auto callback = std::exchange(done, nullptr))
            callback(answer); // may end this object
    }

    Done done;
    GObjectPtr<GDBusConnection> bus;
    Subscription signals; ///< of the present transaction
    Next next = nullptr;
    std::optional<std::string> version; ///< found by the present transaction
    std::string fault;
    Timer deadline;
    Lifetime lifetime; // last: later answers do nothing
};

PackageKitUpdates::PackageKitUpdates(MainLoop& loop_, OpenBus openBus_, Seconds timeout_)
    : loop(loop_), openBus(std::move(openBus_)), timeout(timeout_) {}

PackageKitUpdates::PackageKitUpdates(MainLoop& loop_) : PackageKitUpdates(loop_, openSystemBus) {}

Subscription PackageKitUpdates::checkForUpdates(std::function<void(const UpdateAnswer&)> done) {
    const auto check = std::make_shared<Check>(loop, timeout, std::move(done));
    check->start(openBus);
    return Subscription([held = check]() mutable { held.reset(); });
}

} // namespace quorva
