#include "support/PlayedApplication.h"

#include "platform/linux/accessibility/AtspiProtocol.h"
#include "platform/linux/glib/MainContext.h"

#include <chrono>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace quorva {
namespace {

constexpr std::string_view elements = "/org/a11y/atspi/accessible/";
constexpr const char* vanishedError = "org.freedesktop.DBus.Error.UnknownObject";

GVariantPtr callNow(GDBusConnection* bus, const char* name, const char* path, const char* interface,
                    const char* method, GVariant* parameters) {
    GError* error = nullptr;
    GVariantPtr reply(g_dbus_connection_call_sync(bus, name, path, interface, method, parameters,
                                                  nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr,
                                                  &error));
    const GErrorPtr failure(error);
    return reply;
}

GObjectPtr<GDBusConnection> joinAccessibilityBus() {
    GError* error = nullptr;
    GObjectPtr<GDBusConnection> bus(g_dbus_connection_new_for_address_sync(
        accessibilityBusAddress().c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, &error));
    const GErrorPtr failure(error);
    if (!bus)
        throw std::runtime_error("no accessibility bus");
    return bus;
}

PlayedQuestion questionOf(GDBusMessage* message) {
    PlayedQuestion question{std::string(g_dbus_message_get_path(message)).substr(elements.size()),
                            g_dbus_message_get_member(message)};
    auto* const parameters = g_dbus_message_get_body(message);
    if (question.method == "Get" && parameters != nullptr &&
        g_variant_is_of_type(parameters, G_VARIANT_TYPE("(ss)")) != FALSE) {
        const gchar* name = nullptr;
        g_variant_get(parameters, "(&s&s)", nullptr, &name);
        question.method = name;
    }
    return question;
}

} // namespace

std::string accessibilityBusAddress() {
    GError* error = nullptr;
    const GObjectPtr<GDBusConnection> session(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, &error));
    const GErrorPtr failure(error);
    const auto reply = session ? callNow(session.get(), "org.a11y.Bus", "/org/a11y/bus",
                                         "org.a11y.Bus", "GetAddress", nullptr)
                               : nullptr;
    return decodeText(reply.get()).value_or("");
}

PlayedApplication::PlayedApplication(Script script_, std::string toolkit_, Treat treat_)
    : toolkit(std::move(toolkit_)),
      context(g_main_context_new()),
      loop(g_main_loop_new(context.get(), FALSE)),
      bus(joinAccessibilityBus()),
      script(std::move(script_)),
      treatment(std::move(treat_)) {
    filter = g_dbus_connection_add_filter(
        bus.get(),
        [](GDBusConnection*, GDBusMessage* message, gboolean isIncoming,
           gpointer self) -> GDBusMessage* {
            if (isIncoming == FALSE ||
                g_dbus_message_get_message_type(message) != G_DBUS_MESSAGE_TYPE_METHOD_CALL ||
                !std::string_view(g_dbus_message_get_path(message)).starts_with(elements))
                return message;
            auto* const application = static_cast<PlayedApplication*>(self);
            const std::shared_ptr<GDBusMessage> held(message, g_object_unref);
            postTo(application->context.get(), G_PRIORITY_DEFAULT,
                   [application, held] { application->serve(held.get()); });
            return nullptr;
        },
        this, nullptr);
    thread = std::thread([this] { g_main_loop_run(loop.get()); });
    const auto embedded =
        callNow(bus.get(), atspi::registryName, atspi::rootPath, "org.a11y.atspi.Socket", "Embed",
                g_variant_new("(@(so))", referenceTo("root")));
    if (!embedded)
        throw std::runtime_error("the registry does not accept the application");
}

PlayedApplication::~PlayedApplication() {
    g_dbus_connection_remove_filter(bus.get(), filter);
    g_dbus_connection_close_sync(bus.get(), nullptr, nullptr);
    postTo(context.get(), G_PRIORITY_HIGH, [this] { g_main_loop_quit(loop.get()); });
    thread.join();
}

void PlayedApplication::treat(Treat treat_) {
    const std::lock_guard lock(mutex);
    treatment = std::move(treat_);
}

void PlayedApplication::play(Script script_) {
    const std::lock_guard lock(mutex);
    script = std::move(script_);
}

void PlayedApplication::tell(const std::string& element, const std::string& kind,
                             const std::string& member, const std::string& detail,
                             const std::string& other) {
    g_dbus_connection_emit_signal(
        bus.get(), nullptr, (std::string(elements) + element).c_str(),
        ("org.a11y.atspi.Event." + kind).c_str(), member.c_str(),
        g_variant_new("(siiv@a{sv})", detail.c_str(), 0, 0,
                      other.empty() ? g_variant_new_string("") : referenceTo(other),
                      g_variant_new_array(G_VARIANT_TYPE("{sv}"), nullptr, 0)),
        nullptr);
}

int PlayedApplication::questions(const std::string& element) const {
    return questions(element, {});
}

int PlayedApplication::questions(const std::string& element, const std::string& method) const {
    const std::lock_guard lock(mutex);
    int count = 0;
    for (const auto& [asked, times] : counts)
        if ((element.empty() || asked.first == element) &&
            (method.empty() || asked.second == method))
            count += times;
    return count;
}

void PlayedApplication::clearQuestions() {
    const std::lock_guard lock(mutex);
    counts.clear();
}

void PlayedApplication::serve(GDBusMessage* message) {
    const auto question = questionOf(message);
    Treat treat;
    {
        const std::lock_guard lock(mutex);
        ++counts[{question.element, question.method}];
        treat = treatment;
    }
    const auto [kind, reply, delay] = treat ? treat(question) : PlayedTreatment{};
    const GVariantPtr instead(reply != nullptr ? g_variant_ref_sink(reply) : nullptr);
    std::this_thread::sleep_for(std::chrono::milliseconds(delay));
    if (kind == PlayedTreatment::Kind::answer)
        return answer(message, question);
    if (kind == PlayedTreatment::Kind::swallow)
        return;
    const GObjectPtr<GDBusMessage> sent(
        kind == PlayedTreatment::Kind::vanished
            ? g_dbus_message_new_method_error(message, vanishedError, "it is gone")
            : g_dbus_message_new_method_reply(message));
    if (instead)
        g_dbus_message_set_body(sent.get(), instead.get());
    g_dbus_connection_send_message(bus.get(), sent.get(), G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr,
                                   nullptr);
}

void PlayedApplication::answer(GDBusMessage* message, const PlayedQuestion& question) {
    Script present;
    {
        const std::lock_guard lock(mutex);
        present = script;
    }
    const auto element = present(question.element);
    auto* const body =
        element ? answerOf(*element, question, g_dbus_message_get_body(message)) : nullptr;
    const GObjectPtr<GDBusMessage> reply(
        body != nullptr ? g_dbus_message_new_method_reply(message)
                        : g_dbus_message_new_method_error(message, vanishedError, "not here"));
    if (body != nullptr)
        g_dbus_message_set_body(reply.get(), body);
    g_dbus_connection_send_message(bus.get(), reply.get(), G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr,
                                   nullptr);
}

GVariant* PlayedApplication::answerOf(const PlayedElement& element, const PlayedQuestion& question,
                                      GVariant* parameters) const {
    const auto& method = question.method;
    if (auto* const property = propertyOf(element, method))
        return g_variant_new("(v)", property);
    if (method == "GetAll") {
        GVariantBuilder values;
        g_variant_builder_init(&values, G_VARIANT_TYPE("a{sv}"));
        for (const char* const name : {"Name", "Description", "ChildCount"})
            g_variant_builder_add(&values, "{sv}", name, propertyOf(element, name));
        return g_variant_new("(a{sv})", &values);
    }
    if (method == "GetRole")
        return g_variant_new("(u)", element.role);
    if (method == "GetLocalizedRoleName")
        return g_variant_new("(s)", ("role " + std::to_string(element.role)).c_str());
    if (method == "GetAttributes")
        return g_variant_new("(@a{ss})", g_variant_new_array(G_VARIANT_TYPE("{ss}"), nullptr, 0));
    if (method == "GetApplicationBusAddress")
        return g_variant_new("(s)", element.url.c_str());
    if (method == "GetText")
        return g_variant_new("(s)", element.text.c_str());
    if (method == "GetAttributeValue")
        return g_variant_new("(s)", element.url.c_str());
    if (method == "GetState") {
        const std::uint32_t first =
            (element.isShowing ? 1U << static_cast<unsigned>(AtspiState::showing) : 0U) |
            1U << static_cast<unsigned>(AtspiState::visible) |
            (element.managesDescendants
                 ? 1U << static_cast<unsigned>(AtspiState::managesDescendants)
                 : 0U);
        GVariantBuilder words;
        g_variant_builder_init(&words, G_VARIANT_TYPE("au"));
        g_variant_builder_add(&words, "u", first);
        g_variant_builder_add(&words, "u", 0U);
        return g_variant_new("(au)", &words);
    }
    if (method == "GetAccessibleAtPoint")
        return g_variant_new("(@(so))", referenceTo(question.element));
    if (method == "GetChildren") {
        GVariantBuilder children;
        g_variant_builder_init(&children, G_VARIANT_TYPE("a(so)"));
        for (const auto& child : *element.children)
            g_variant_builder_add_value(&children, referenceTo(child));
        return g_variant_new("(a(so))", &children);
    }
    if (method == "GetChildAtIndex" && parameters != nullptr) {
        std::int32_t index = 0;
        g_variant_get(parameters, "(i)", &index);
        const bool isThere =
            index >= 0 && static_cast<std::size_t>(index) < (*element.children).size();
        return g_variant_new(
            "(@(so))", isThere ? referenceTo((*element.children)[static_cast<std::size_t>(index)])
                               : g_variant_new("(so)", "", atspi::nullPath));
    }
    return nullptr;
}

GVariant* PlayedApplication::propertyOf(const PlayedElement& element,
                                        const std::string& name) const {
    if (name == "ToolkitName")
        return g_variant_new_string(toolkit.c_str());
    if (name == "Name")
        return g_variant_new_string(element.name.c_str());
    if (name == "Description")
        return g_variant_new_string("");
    if (name == "ChildCount")
        return g_variant_new_int32(
            element.childCount.value_or(static_cast<std::int32_t>((*element.children).size())));
    return nullptr;
}

GVariant* PlayedApplication::referenceTo(const std::string& identifier) const {
    return g_variant_new("(so)", g_dbus_connection_get_unique_name(bus.get()),
                         (std::string(elements) + identifier).c_str());
}

} // namespace quorva
