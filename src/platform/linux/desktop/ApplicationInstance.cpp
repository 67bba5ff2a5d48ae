#include "platform/linux/desktop/ApplicationInstance.h"

#include "base/ApplicationId.h"
#include "platform/linux/glib/AsyncCall.h"
#include "platform/linux/glib/BusSignals.h"
#include "platform/linux/glib/MainContext.h"
#include "platform/linux/glib/Utf8.h"

#include <fmt/format.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

namespace quorva {
namespace {

constexpr auto name = applicationId;
constexpr auto path = applicationObjectPath;
constexpr const char* interface = "org.freedesktop.Application";
constexpr const char* dbusName = "org.freedesktop.DBus";
constexpr const char* dbusPath = "/org/freedesktop/DBus";
constexpr const char* description = R"(<node><interface name="org.freedesktop.Application">
    <method name="Activate">
        <arg type="a{sv}" name="platform_data" direction="in"/>
    </method>
    <method name="Open">
        <arg type="as" name="uris" direction="in"/>
        <arg type="a{sv}" name="platform_data" direction="in"/>
    </method>
    <method name="ActivateAction">
        <arg type="s" name="action_name" direction="in"/>
        <arg type="av" name="parameter" direction="in"/>
        <arg type="a{sv}" name="platform_data" direction="in"/>
    </method>
</interface></node>)";
constexpr const char* tokenKey = "activation-token";
constexpr const char* startupKey = "desktop-startup-id";
constexpr int busTimeout = 3000; // milliseconds
constexpr int instanceTimeout = 700;

enum class NameOutcome { owned, taken, failed };

using NodePtr = std::unique_ptr<GDBusNodeInfo, Release<g_dbus_node_info_unref>>;

GVariantPtr callNow(GDBusConnection* bus, const char* destination, const char* at, const char* on,
                    const char* method, GVariant* parameters, int timeout,
                    std::string* fault = nullptr) {
    GError* error = nullptr;
    GVariantPtr reply(g_dbus_connection_call_sync(bus, destination, at, on, method, parameters,
                                                  nullptr, G_DBUS_CALL_FLAGS_NO_AUTO_START, timeout,
                                                  nullptr, &error));
    const GErrorPtr failure(error);
    if (failure && fault != nullptr)
        *fault = validUtf8(failure->message);
    return reply;
}

NameOutcome requestName(GDBusConnection* bus, std::string& reason) {
    constexpr guint32 doNotQueue = 4;
    constexpr guint32 primaryOwner = 1;
    constexpr guint32 exists = 3;
    constexpr guint32 alreadyOwner = 4;
    const auto reply = callNow(bus, dbusName, dbusPath, dbusName, "RequestName",
                               g_variant_new("(su)", name, doNotQueue), busTimeout, &reason);
    guint32 outcome = 0;
    if (reply && g_variant_is_of_type(reply.get(), G_VARIANT_TYPE("(u)")) != FALSE)
        g_variant_get(reply.get(), "(u)", &outcome);
    if (outcome == primaryOwner || outcome == alreadyOwner)
        return NameOutcome::owned;
    return outcome == exists ? NameOutcome::taken : NameOutcome::failed;
}

/// The program that owns the name; nothing when nobody does any more.
struct Owner {
    guint32 process = 0;    ///< 0: the bus does not say
    std::string executable; ///< empty: unknown

    [[nodiscard]] bool isThisProgram() const {
        std::error_code error;
        const auto own = withoutDeletion(std::filesystem::read_symlink("/proc/self/exe", error));
        return !error && executable == own;
    }

    /// The kernel appends this to the path of a file that has been deleted or replaced.
    static std::string withoutDeletion(const std::filesystem::path& link) {
        constexpr std::string_view deleted = " (deleted)";
        auto text = link.string();
        if (text.ends_with(deleted))
            text.resize(text.size() - deleted.size());
        return text;
    }
};

std::optional<Owner> ownerOfName(GDBusConnection* bus) {
    const auto unique = callNow(bus, dbusName, dbusPath, dbusName, "GetNameOwner",
                                g_variant_new("(s)", name), busTimeout);
    if (!unique)
        return std::nullopt;
    Owner owner;
    const auto reply = callNow(bus, dbusName, dbusPath, dbusName, "GetConnectionUnixProcessID",
                               g_variant_ref(unique.get()), busTimeout);
    if (reply && g_variant_is_of_type(reply.get(), G_VARIANT_TYPE("(u)")) != FALSE)
        g_variant_get(reply.get(), "(u)", &owner.process);
    std::error_code error;
    const auto link =
        std::filesystem::read_symlink(fmt::format("/proc/{}/exe", owner.process), error);
    if (!error)
        owner.executable = Owner::withoutDeletion(link);
    return owner;
}

/// The tokens that the desktop gave this process so that its window may get the focus.
GVariant* platformData() {
    GVariantBuilder data;
    g_variant_builder_init(&data, G_VARIANT_TYPE_VARDICT);
    const auto add = [&](const char* key, const char* variable) {
        if (const char* const value = std::getenv(variable); value != nullptr)
            g_variant_builder_add(&data, "{sv}", key,
                                  g_variant_new_string(validUtf8(value).c_str()));
    };
    add(tokenKey, "XDG_ACTIVATION_TOKEN");
    add(startupKey, "DESKTOP_STARTUP_ID");
    return g_variant_builder_end(&data);
}

std::string tokenOf(GVariant* data) {
    const gchar* token = nullptr;
    if (g_variant_lookup(data, tokenKey, "&s", &token) != FALSE ||
        g_variant_lookup(data, startupKey, "&s", &token) != FALSE)
        return token;
    return {};
}

} // namespace

GObjectPtr<GDBusConnection> ApplicationInstance::openSessionBus(std::string& reason) {
    const GObjectPtr<GCancellable> cancellable(g_cancellable_new());
    const auto timeout =
        contextTimer(busTimeout, [&cancellable] { g_cancellable_cancel(cancellable.get()); });
    GObjectPtr<GDBusConnection> bus;
    bool hasEnded = false;
    g_bus_get(G_BUS_TYPE_SESSION, cancellable.get(), asyncCallback,
              asyncData([&](GObject*, GAsyncResult* result) {
                  GError* error = nullptr;
                  bus.reset(g_bus_get_finish(result, &error));
                  const GErrorPtr failure(error);
                  if (failure)
                      reason = "The session bus can't be reached: " + validUtf8(failure->message);
                  hasEnded = true;
              }));
    while (!hasEnded)
        g_main_context_iteration(nullptr, TRUE);
    if (bus)
        g_dbus_connection_set_exit_on_close(bus.get(), FALSE);
    return bus;
}

ApplicationInstance::Claim ApplicationInstance::claim(GObjectPtr<GDBusConnection> bus,
                                                      Callbacks callbacks) {
    if (!bus)
        return {.reason = "There is no session bus."};
    // The object is there before the name, so that no caller of the name finds it missing.
    std::unique_ptr<ApplicationInstance> instance(
        new ApplicationInstance(std::move(bus), std::move(callbacks)));
    auto* const connection = instance->bus.get();
    std::string reason;
    for (int attempt = 0; attempt < 3; ++attempt) {
        const auto outcome = requestName(connection, reason);
        if (outcome == NameOutcome::failed)
            return {.reason = "The session bus does not answer as it should: " + reason};
        if (outcome == NameOutcome::owned) {
            instance->nameState = Name::owned;
            return {.kind = Claim::Kind::first, .instance = std::move(instance)};
        }
        const auto owner = ownerOfName(connection);
        if (!owner)
            continue; // it has just ended, and the name is free
        if (!owner->isThisProgram())
            return {.kind = Claim::Kind::taken,
                    .reason = fmt::format("{} (process {})",
                                          owner->executable.empty() ? "a program that hides itself"
                                                                    : owner->executable,
                                          owner->process)};
        const auto reply =
            callNow(connection, name, path, interface, "Activate",
                    g_variant_new("(@a{sv})", platformData()), instanceTimeout, &reason);
        if (reply)
            return {.kind = Claim::Kind::second, .hasAnswered = true};
        if (ownerOfName(connection))
            break; // it hangs
    }
    return {.kind = Claim::Kind::second, .reason = "The running Quorva does not answer: " + reason};
}

ApplicationInstance::ApplicationInstance(GObjectPtr<GDBusConnection> bus_, Callbacks callbacks_)
    : bus(std::move(bus_)), callbacks(std::move(callbacks_)) {
    static const GDBusInterfaceVTable methods{
        [](GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* method,
           GVariant* parameters, GDBusMethodInvocation* invocation, gpointer self) {
            g_dbus_method_invocation_return_value(invocation, nullptr);
            static_cast<const ApplicationInstance*>(self)->handleCall(method, parameters);
        },
        nullptr,
        nullptr,
        {}};
    const NodePtr node(g_dbus_node_info_new_for_xml(description, nullptr));
    object = g_dbus_connection_register_object(bus.get(), path, node->interfaces[0], &methods, this,
                                               nullptr, nullptr);
    nameLost = subscribeToSignals(bus.get(),
                                  {.sender = dbusName,
                                   .interface = dbusName,
                                   .member = "NameLost",
                                   .path = dbusPath,
                                   .firstArgument = name},
                                  [this](const BusSignal&) { noteLoss(); });
    const auto whenClosed = +[](GDBusConnection*, gboolean, GError*, gpointer self) {
        static_cast<ApplicationInstance*>(self)->noteLoss();
    };
    closing = g_signal_connect(bus.get(), "closed", G_CALLBACK(whenClosed), this);
}

ApplicationInstance::~ApplicationInstance() {
    g_signal_handler_disconnect(bus.get(), closing);
    if (object != 0)
        g_dbus_connection_unregister_object(bus.get(), object);
    if (nameState == Name::owned) // without waiting for the answer
        g_dbus_connection_call(bus.get(), dbusName, dbusPath, dbusName, "ReleaseName",
                               g_variant_new("(s)", name), nullptr, G_DBUS_CALL_FLAGS_NONE, -1,
                               nullptr, nullptr, nullptr);
}

void ApplicationInstance::handleCall(const std::string& method, GVariant* parameters) const {
    const auto last = g_variant_n_children(parameters) - 1;
    const GVariantPtr data(g_variant_get_child_value(parameters, last));
    Activation activation{.token = tokenOf(data.get())};
    if (method == "ActivateAction") {
        const gchar* action = nullptr;
        g_variant_get_child(parameters, 0, "&s", &action);
        activation.action = action;
    }
    if (callbacks.onActivate)
        callbacks.onActivate(activation);
}

void ApplicationInstance::noteLoss() {
    if (nameState != Name::owned)
        return;
    nameState = Name::lost;
    if (callbacks.onLost)
        callbacks.onLost();
}

} // namespace quorva
