// A window that only screen readers see: an application on the accessibility bus with one window
// that contains a list of names. It answers what a reader asks through AT-SPI 2 (org.a11y.atspi),
// and nothing else. It blocks, so it needs a process of its own.
#pragma once

#include "platform/linux/accessibility/AtspiProtocol.h"
#include "platform/linux/glib/Handles.h"

#include <systemd/sd-bus.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace quorva {

class DrillWindow {
public:
    /// Joins the session's accessibility bus and registers there. Throws std::runtime_error, with a
    /// sentence for people, when that fails or takes longer than some seconds.
    DrillWindow(const std::string& title, const std::vector<std::string_view>& names);

    DrillWindow(const DrillWindow&) = delete;
    DrillWindow& operator=(const DrillWindow&) = delete;

    /// Answers until `input` reaches its end or the bus is gone.
    void showUntilEnd(int input);

private:
    struct Element {
        std::uint32_t role = 0;
        std::string name;
        std::vector<std::size_t> children;
    };
    using Bus = std::unique_ptr<sd_bus, Release<sd_bus_flush_close_unref>>;
    using Message = std::unique_ptr<sd_bus_message, Release<sd_bus_message_unref>>;

    static int receive(sd_bus_message* message, void* self, sd_bus_error* error);
    int answer(sd_bus_message* message) const;
    static int answerProperty(sd_bus_message* message, const Element& element);
    int answerChildren(sd_bus_message* message, const Element& element) const;
    static int answerState(sd_bus_message* message);
    [[nodiscard]] const Element* elementAt(std::string_view path) const;
    [[nodiscard]] static std::string pathOf(std::size_t index);
    void embed();

    std::vector<Element> elements; ///< the application first
    Bus bus;
    std::string ownName;
};

} // namespace quorva
