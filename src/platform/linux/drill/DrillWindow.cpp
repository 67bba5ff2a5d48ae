#include "platform/linux/drill/DrillWindow.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <poll.h>
#include <stdexcept>
#include <unistd.h>

namespace quorva {
namespace {

constexpr std::uint64_t timeout = 5'000'000; // microseconds
constexpr const char* tree = "/org/a11y/atspi/accessible";
constexpr std::string_view folder = "/org/a11y/atspi/accessible/";
constexpr std::string_view rootName = "root";

constexpr std::uint32_t applicationRole = 75;
constexpr std::uint32_t listRole = 31;
constexpr std::uint32_t listItemRole = 32;
constexpr auto visibleState = 30U;

[[noreturn]] void refuse(const std::string& what) {
    throw std::runtime_error(what + ": log in again, or restart the desktop's accessibility with "
                                    "\"systemctl --user restart at-spi-dbus-bus\"");
}

/// The address of the session's accessibility bus; asking for it starts the launcher.
std::string accessibilityBus() {
    sd_bus* opened = nullptr;
    if (sd_bus_open_user(&opened) < 0)
        throw std::runtime_error("there is no session bus here: run this in the desktop session");
    const std::unique_ptr<sd_bus, Release<sd_bus_flush_close_unref>> session(opened);
    sd_bus_set_method_call_timeout(opened, timeout);
    sd_bus_message* sent = nullptr;
    const int result = sd_bus_call_method(opened, "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus",
                                          "GetAddress", nullptr, &sent, nullptr);
    const std::unique_ptr<sd_bus_message, Release<sd_bus_message_unref>> reply(sent);
    const char* address = nullptr;
    if (result < 0 || sd_bus_message_read(sent, "s", &address) < 0)
        refuse("the accessibility launcher (org.a11y.Bus) does not answer");
    return address;
}

} // namespace

DrillWindow::DrillWindow(const std::string& title, const std::vector<std::string_view>& names) {
    elements = {{applicationRole, "Quorva drill", {1}},
                {static_cast<std::uint32_t>(AtspiRole::frame), title, {2}},
                {listRole, "Participants", {}}};
    for (const auto name : names) {
        elements[2].children.push_back(elements.size());
        elements.push_back({listItemRole, std::string(name), {}});
    }

    sd_bus* made = nullptr;
    if (sd_bus_new(&made) < 0)
        throw std::bad_alloc();
    bus.reset(made);
    const char* name = nullptr;
    if (sd_bus_set_address(made, accessibilityBus().c_str()) < 0 ||
        sd_bus_set_bus_client(made, 1) < 0 || sd_bus_set_method_call_timeout(made, timeout) < 0 ||
        sd_bus_add_fallback(made, nullptr, tree, receive, this) < 0 || sd_bus_start(made) < 0 ||
        sd_bus_get_unique_name(made, &name) < 0)
        refuse("the accessibility bus can't be reached");
    ownName = name;
    embed();
}

void DrillWindow::embed() {
    const int result =
        sd_bus_call_method(bus.get(), atspi::registryName, atspi::rootPath, "org.a11y.atspi.Socket",
                           "Embed", nullptr, nullptr, "(so)", ownName.c_str(), pathOf(0).c_str());
    if (result < 0)
        refuse("the accessibility registry does not list the window");
}

void DrillWindow::showUntilEnd(int input) {
    while (true) {
        int done = 0;
        while ((done = sd_bus_process(bus.get(), nullptr)) > 0) {
        }
        if (done < 0)
            return;
        std::array<pollfd, 2> files{{{.fd = input, .events = POLLIN},
                                     {.fd = sd_bus_get_fd(bus.get()),
                                      .events = static_cast<short>(sd_bus_get_events(bus.get()))}}};
        constexpr int longestWait = 1000; // milliseconds: sd-bus may have a deadline of its own
        if (::poll(files.data(), files.size(), longestWait) < 0 && errno != EINTR)
            return;
        std::array<char, 64> bytes{};
        if (files[0].revents != 0 && ::read(input, bytes.data(), bytes.size()) <= 0)
            return;
    }
}

int DrillWindow::receive(sd_bus_message* message, void* self, sd_bus_error*) {
    return static_cast<const DrillWindow*>(self)->answer(message);
}

/// Returns 0, which sd-bus answers with an "unknown method" error, for calls that no reader needs.
int DrillWindow::answer(sd_bus_message* message) const {
    const auto* const element = elementAt(sd_bus_message_get_path(message));
    if (element == nullptr)
        return 0;
    const auto is = [&](const char* interface, const char* method) {
        return sd_bus_message_is_method_call(message, interface, method) > 0;
    };
    if (is(atspi::properties, "Get"))
        return answerProperty(message, *element);
    if (is(atspi::properties, "Set")) // the registry numbers the applications
        return sd_bus_reply_method_return(message, nullptr);
    if (is(atspi::accessible, "GetRole"))
        return sd_bus_reply_method_return(message, "u", element->role);
    if (is(atspi::accessible, "GetLocalizedRoleName"))
        return sd_bus_reply_method_return(message, "s", "");
    if (is(atspi::accessible, "GetChildren"))
        return answerChildren(message, *element);
    if (is(atspi::accessible, "GetState"))
        return answerState(message);
    if (is(atspi::accessible, "GetAttributes"))
        return sd_bus_reply_method_return(message, "a{ss}", 0);
    if (is(atspi::accessible, "GetInterfaces"))
        return sd_bus_reply_method_return(message, "as", 1, atspi::accessible);
    if (is(atspi::application, "GetApplicationBusAddress")) // it has no socket of its own
        return sd_bus_reply_method_return(message, "s", "");
    return 0;
}

int DrillWindow::answerProperty(sd_bus_message* message, const Element& element) {
    const char* interface = nullptr;
    const char* property = nullptr;
    if (sd_bus_message_read(message, "ss", &interface, &property) < 0)
        return 0;
    const std::string_view name(property);
    if (name == "Name")
        return sd_bus_reply_method_return(message, "v", "s", element.name.c_str());
    if (name == "ToolkitName")
        return sd_bus_reply_method_return(message, "v", "s", "quorva");
    if (name == "ChildCount")
        return sd_bus_reply_method_return(message, "v", "i",
                                          static_cast<std::int32_t>(element.children.size()));
    return sd_bus_reply_method_return(message, "v", "s", "");
}

int DrillWindow::answerChildren(sd_bus_message* message, const Element& element) const {
    sd_bus_message* made = nullptr;
    if (const int result = sd_bus_message_new_method_return(message, &made); result < 0)
        return result;
    const Message reply(made);
    int result = sd_bus_message_open_container(made, 'a', "(so)");
    for (const auto child : element.children)
        if (result >= 0)
            result = sd_bus_message_append(made, "(so)", ownName.c_str(), pathOf(child).c_str());
    if (result >= 0)
        result = sd_bus_message_close_container(made);
    return result < 0 ? result : sd_bus_send(sd_bus_message_get_bus(message), made, nullptr);
}

int DrillWindow::answerState(sd_bus_message* message) {
    constexpr auto bit = [](unsigned state) { return 1U << state; };
    return sd_bus_reply_method_return(
        message, "au", 2, bit(static_cast<unsigned>(AtspiState::showing)) | bit(visibleState), 0U);
}

const DrillWindow::Element* DrillWindow::elementAt(std::string_view path) const {
    if (!path.starts_with(folder))
        return nullptr;
    path.remove_prefix(folder.size());
    if (path == rootName)
        return &elements.front();
    std::size_t index = 0;
    const auto [end, error] = std::from_chars(path.data(), path.data() + path.size(), index);
    const bool isNumber = error == std::errc() && end == path.data() + path.size();
    return isNumber && index > 0 && index < elements.size() ? &elements[index] : nullptr;
}

std::string DrillWindow::pathOf(std::size_t index) {
    return std::string(folder).append(index == 0 ? rootName : std::to_string(index));
}

} // namespace quorva
