#include "support/PlayedNotificationServer.h"

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string_view>

namespace quorva {
namespace {

constexpr const char* path = "/org/freedesktop/Notifications";
constexpr const char* interface = "org.freedesktop.Notifications";
constexpr const char* description = R"(<node><interface name="org.freedesktop.Notifications">
    <method name="GetCapabilities"><arg type="as" direction="out"/></method>
    <method name="Notify">
        <arg type="s" direction="in"/><arg type="u" direction="in"/><arg type="s" direction="in"/>
        <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="as" direction="in"/>
        <arg type="a{sv}" direction="in"/><arg type="i" direction="in"/>
        <arg type="u" direction="out"/>
    </method>
    <method name="CloseNotification"><arg type="u" direction="in"/></method>
</interface></node>)";

using NodePtr = std::unique_ptr<GDBusNodeInfo, Release<g_dbus_node_info_unref>>;

} // namespace

GObjectPtr<GDBusConnection> joinSessionBus() {
    const GCharsPtr address(g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
    GObjectPtr<GDBusConnection> bus(g_dbus_connection_new_for_address_sync(
        address.get(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr));
    if (!bus)
        throw std::runtime_error("no session bus");
    return bus;
}

void ownName(GDBusConnection* bus, const char* name) {
    const GVariantPtr reply(g_dbus_connection_call_sync(
        bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
        g_variant_new("(su)", name, 4U), G_VARIANT_TYPE("(u)"), G_DBUS_CALL_FLAGS_NONE, -1, nullptr,
        nullptr));
    guint32 outcome = 0;
    if (reply)
        g_variant_get(reply.get(), "(u)", &outcome);
    if (outcome != 1)
        throw std::runtime_error("the name has another owner");
}

PlayedNotificationServer::PlayedNotificationServer(std::vector<std::string> capabilities_)
    : capabilities(std::move(capabilities_)), bus(joinSessionBus()) {
    static const GDBusInterfaceVTable methods{
        [](GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*, GVariant*,
           GDBusMethodInvocation* invocation,
           gpointer self) { static_cast<PlayedNotificationServer*>(self)->receive(invocation); },
        nullptr,
        nullptr,
        {}};
    const NodePtr node(g_dbus_node_info_new_for_xml(description, nullptr));
    object = g_dbus_connection_register_object(bus.get(), path, node->interfaces[0], &methods, this,
                                               nullptr, nullptr);
    ownName(bus.get(), interface);
}

PlayedNotificationServer::~PlayedNotificationServer() {
    for (auto* const invocation : held)
        g_object_unref(invocation);
    g_dbus_connection_unregister_object(bus.get(), object);
    g_dbus_connection_flush_sync(bus.get(), nullptr, nullptr); // closing may drop its last answers
    g_dbus_connection_close_sync(bus.get(), nullptr, nullptr);
}

void PlayedNotificationServer::receive(GDBusMethodInvocation* invocation) {
    ++calls;
    if (isHanging)
        held.push_back(invocation);
    else
        answer(invocation);
}

void PlayedNotificationServer::answerAll() {
    isHanging = false;
    while (!held.empty()) {
        auto* const invocation = held.front();
        held.pop_front();
        answer(invocation);
    }
}

void PlayedNotificationServer::answer(GDBusMethodInvocation* invocation) {
    const std::string_view method = g_dbus_method_invocation_get_method_name(invocation);
    auto* const parameters = g_dbus_method_invocation_get_parameters(invocation);
    if (method == "GetCapabilities") {
        GVariantBuilder names;
        g_variant_builder_init(&names, G_VARIANT_TYPE_STRING_ARRAY);
        for (const auto& capability : capabilities)
            g_variant_builder_add(&names, "s", capability.c_str());
        g_dbus_method_invocation_return_value(invocation, g_variant_new("(as)", &names));
    } else if (method == "CloseNotification") {
        closed.emplace_back();
        g_variant_get(parameters, "(u)", &closed.back());
        displayed.erase(closed.back());
        g_dbus_method_invocation_return_value(invocation, nullptr);
    } else if (isBusy) {
        g_dbus_method_invocation_return_dbus_error(
            invocation, "org.freedesktop.DBus.Error.LimitsExceeded", "no room");
    } else if (refuses) {
        g_dbus_method_invocation_return_dbus_error(invocation, "org.example.Refused", "too many");
    } else {
        shown.push_back(read(parameters));
        displayed.erase(shown.back().replaces);
        displayed[shown.back().number] = shown.back();
        g_dbus_method_invocation_return_value(invocation,
                                              g_variant_new("(u)", shown.back().number));
    }
}

PlayedNotification PlayedNotificationServer::read(GVariant* parameters) {
    PlayedNotification notification;
    const gchar* title = nullptr;
    const gchar* body = nullptr;
    GVariantIter* actions = nullptr;
    GVariantIter* hints = nullptr;
    g_variant_get(parameters, "(&su&s&s&sasa{sv}i)", nullptr, &notification.replaces, nullptr,
                  &title, &body, &actions, &hints, nullptr);
    notification.title = title;
    notification.body = body;
    const gchar* text = nullptr;
    for (bool isKey = true; g_variant_iter_next(actions, "&s", &text) != FALSE; isKey = !isKey)
        (isKey ? notification.keys : notification.buttons).emplace_back(text);
    const gchar* hint = nullptr;
    GVariant* value = nullptr;
    while (g_variant_iter_loop(hints, "{&sv}", &hint, &value) != FALSE)
        notification.hints[hint] = GCharsPtr(g_variant_print(value, FALSE)).get();
    g_variant_iter_free(actions);
    g_variant_iter_free(hints);
    const bool isNew = notification.replaces == 0 || inventsNumbers;
    notification.number = isNew ? ++lastNumber : notification.replaces;
    return notification;
}

void PlayedNotificationServer::press(std::uint32_t number, const std::string& key) {
    emit("ActionInvoked", g_variant_new("(us)", number, key.c_str()));
}

void PlayedNotificationServer::tellClosed(std::uint32_t number) {
    emit("NotificationClosed", g_variant_new("(uu)", number, 2U));
}

void PlayedNotificationServer::sendToken(std::uint32_t number, const std::string& activationToken) {
    emit("ActivationToken", g_variant_new("(us)", number, activationToken.c_str()));
}

void PlayedNotificationServer::emit(const char* signal, GVariant* parameters) {
    g_dbus_connection_emit_signal(bus.get(), nullptr, path, interface, signal, parameters, nullptr);
}

} // namespace quorva
