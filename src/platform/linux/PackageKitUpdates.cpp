#include "platform/linux/PackageKitUpdates.h"

#include "platform/Lifetime.h"
#include "platform/linux/BusCall.h"
#include "platform/linux/Utf8.h"

#include <fmt/format.h>

#include <cstdint>
#include <memory>
#include <utility>

namespace quorva {
namespace {

constexpr const char* serviceName = "org.freedesktop.PackageKit";
constexpr const char* servicePath = "/org/freedesktop/PackageKit";
constexpr const char* transactionInterface = "org.freedesktop.PackageKit.Transaction";
constexpr std::string_view packageName = "quorva";

// Filters and outcomes, as PackageKit numbers them.
constexpr std::uint64_t noFilter = 1U << 1U;
constexpr std::uint64_t installedOnly = 1U << 2U;
constexpr std::uint32_t success = 1;

UpdateAnswer unknown(std::string reason) {
    return {.kind = UpdateAnswer::Kind::unknown, .reason = std::move(reason)};
}

void openSystemBus(PackageKitUpdates::TakeBus done) {
    const GCharsPtr address(g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr));
    openBus(address ? address.get() : "", std::move(done));
}

} // namespace

/// One question: whether the program is installed as a package, and then whether that has an
/// update. Each is a transaction of the service's, which answers by signals.
class PackageKitUpdates::Check {
public:
    using Done = std::function<void(const UpdateAnswer&)>;

    Check(MainLoop& loop, Seconds limit, Done done_) : done(std::move(done_)) {
        patience = loop.after(
            limit, [this] { finish(unknown("The package service did not answer in time.")); });
    }
    ~Check() { endTransaction(); }
    Check(const Check&) = delete;
    Check& operator=(const Check&) = delete;

    void start(const OpenBus& openBus) {
        openBus(lifetime.guard([this](GObjectPtr<GDBusConnection>& opened) {
            if (!opened)
                return finish(unknown("The system bus can't be reached."));
            bus = std::move(opened);
            findInstalled();
        }));
    }

private:
    using Next = void (Check::*)();

    void findInstalled() {
        const gchar* const names[] = {packageName.data(), nullptr};
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

    /// Begins a transaction that calls `method`; `then` is called once it has come to its end.
    void begin(const char* method, GVariant* parameters, Next then) {
        version.reset();
        fault.clear();
        const std::shared_ptr<GVariant> held(parameters, g_variant_unref);
        call(servicePath, serviceName, "CreateTransaction", nullptr,
             [this, method, held, then](GVariant* reply) {
                 if (g_variant_is_of_type(reply, G_VARIANT_TYPE("(o)")) == FALSE)
                     return finish(unknown("The package service makes no sense."));
                 const gchar* path = nullptr;
                 g_variant_get(reply, "(&o)", &path);
                 follow(path, then);
                 call(path, transactionInterface, method, held.get(), nullptr);
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
             .timeout = G_MAXINT, // the check has a limit of its own
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
        endTransaction();
        next = next_;
        signals = g_dbus_connection_signal_subscribe(
            bus.get(), serviceName, transactionInterface, nullptr, path, nullptr,
            G_DBUS_SIGNAL_FLAGS_NONE,
            [](GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* signal,
               GVariant* parameters,
               gpointer self) { static_cast<Check*>(self)->receive(signal, parameters); },
            this, nullptr);
    }

    void endTransaction() {
        if (const auto subscribed = std::exchange(signals, 0); subscribed != 0)
            g_dbus_connection_signal_unsubscribe(bus.get(), subscribed);
    }

    void receive(std::string_view signal, GVariant* parameters) {
        const auto has = [&](const char* type) {
            return g_variant_is_of_type(parameters, G_VARIANT_TYPE(type)) != FALSE;
        };
        const gchar* text = nullptr;
        if (signal == "Package" && has("(uss)")) {
            g_variant_get_child(parameters, 1, "&s", &text);
            if (auto found = versionOf(text))
                version = std::move(found);
        } else if (signal == "ErrorCode" && has("(us)")) {
            g_variant_get_child(parameters, 1, "&s", &text);
            fault = validUtf8(text);
        } else if (signal == "Finished" && has("(uu)")) {
            std::uint32_t outcome = 0;
            g_variant_get_child(parameters, 0, "u", &outcome);
            endTransaction();
            if (outcome == success)
                (this->*next)();
            else
                finish(unknown("The package service failed: " + fault));
        }
    }

    void finish(const UpdateAnswer& answer) {
        endTransaction();
        patience.reset();
        if (const auto callback = std::exchange(done, nullptr))
            callback(answer); // may end this object
    }

    Done done;
    GObjectPtr<GDBusConnection> bus;
    guint signals = 0;
    Next next = nullptr;
    std::optional<std::string> version; ///< found by the present transaction
    std::string fault;
    Timer patience;
    Lifetime lifetime; // last: answers that come later do nothing
};

PackageKitUpdates::PackageKitUpdates(MainLoop& loop_, OpenBus openBus_, Seconds limit_)
    : loop(loop_), openBus(std::move(openBus_)), limit(limit_) {}

PackageKitUpdates::PackageKitUpdates(MainLoop& loop_) : PackageKitUpdates(loop_, openSystemBus) {}

Subscription PackageKitUpdates::checkForUpdates(std::function<void(const UpdateAnswer&)> done) {
    const auto check = std::make_shared<Check>(loop, limit, std::move(done));
    check->start(openBus);
    return Subscription([held = check]() mutable { held.reset(); });
}

std::optional<std::string> PackageKitUpdates::versionOf(std::string_view packageIdentifier) {
    const auto nameEnd = packageIdentifier.find(';');
    if (nameEnd == std::string_view::npos || packageIdentifier.substr(0, nameEnd) != packageName)
        return std::nullopt;
    const auto rest = packageIdentifier.substr(nameEnd + 1);
    const auto version = rest.substr(0, rest.find(';'));
    return version.empty() ? std::nullopt : std::optional(validUtf8(version));
}

} // namespace quorva
