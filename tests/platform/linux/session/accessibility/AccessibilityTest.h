// The fixture of tests that read from the accessibility bus. The bus and its registry are those of
// the desktop, in a session of the test's own; the applications on it are played.
#pragma once

#include "platform/linux/accessibility/AtspiAccessibilityTree.h"
#include "platform/linux/accessibility/AtspiProtocol.h"
#include "platform/linux/glib/GLibMainLoop.h"
#include "support/PlayedApplication.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace quorva {

/// An application in a process of its own. Its window lists `people` persons.
class PlayedMeeting {
public:
    explicit PlayedMeeting(const std::string& title, int people = 50, int delay = 0) {
        GError* error = nullptr;
        process.reset(g_subprocess_new(
            static_cast<GSubprocessFlags>(G_SUBPROCESS_FLAGS_STDIN_PIPE |
                                          G_SUBPROCESS_FLAGS_STDOUT_PIPE),
            &error, QUORVA_PLAYED_MEETING, title.c_str(), std::to_string(people).c_str(),
            std::to_string(delay).c_str(), nullptr));
        const GErrorPtr failure(error);
        if (!process)
            throw std::runtime_error(failure->message);
        char ready = '\0';
        g_input_stream_read(g_subprocess_get_stdout_pipe(process.get()), &ready, 1, nullptr,
                            nullptr);
    }
    ~PlayedMeeting() { kill(); }
    PlayedMeeting(const PlayedMeeting&) = delete;
    PlayedMeeting& operator=(const PlayedMeeting&) = delete;

    [[nodiscard]] ProcessIdentifier identifier() const {
        const auto* const text = g_subprocess_get_identifier(process.get());
        return text != nullptr ? std::atoi(text) : 0;
    }
    void signal(int number) { g_subprocess_send_signal(process.get(), number); }
    void kill() const {
        g_subprocess_force_exit(process.get());
        g_subprocess_wait(process.get(), nullptr, nullptr);
    }

private:
    GObjectPtr<GSubprocess> process;
};

/// The elements of a tree in the order of the walk.
inline std::vector<const AccessibleElement*> walk(const AccessibleElementPtr& tree) {
    std::vector<const AccessibleElement*> walked;
    const auto visit = [&](const auto& self, const AccessibleElement& element) -> void {
        walked.push_back(&element);
        for (const auto& child : element.children)
            self(self, *child);
    };
    if (tree)
        visit(visit, *tree);
    return walked;
}

inline int depthOf(const AccessibleElement& tree) {
    int deepest = 0;
    for (const auto& child : tree.children)
        deepest = std::max(deepest, depthOf(*child));
    return deepest + 1;
}

/// The first element with a title; null for none.
inline const AccessibleElement* find(const AccessibleElementPtr& tree, const std::string& title) {
    for (const auto* const element : walk(tree))
        if (element->title == title)
            return element;
    return nullptr;
}

class AccessibilityTest : public testing::Test {
protected:
    static constexpr int maxElements = 2000;
    static constexpr int maxDepth = 30;

    ~AccessibilityTest() override {
        isOver = true;
        bystander.join();
        RecordProperty("largestGapMicroseconds", std::to_string(largestGap));
        EXPECT_LT(largestGap, 500'000 + 2 * machinesGap)
            << "microseconds in which the main loop did not turn";
    }

    static bool switchAccessibility(bool isOn) {
        const GObjectPtr<GDBusConnection> session(
            g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
        g_dbus_connection_set_exit_on_close(session.get(), FALSE);
        const GVariantPtr reply(g_dbus_connection_call_sync(
            session.get(), "org.a11y.Bus", "/org/a11y/bus", "org.freedesktop.DBus.Properties",
            "Set",
            g_variant_new("(ssv)", "org.a11y.Status", "IsEnabled", g_variant_new_boolean(isOn)),
            nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr));
        return reply != nullptr;
    }

    static GObjectPtr<GDBusConnection> joinBus(const std::string& address) {
        return GObjectPtr<GDBusConnection>(g_dbus_connection_new_for_address_sync(
            address.c_str(),
            static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr, nullptr, nullptr));
    }

    /// The process that owns a name on the bus at an address; 0 for none. Starts the service of
    /// that name if it is not running.
    static ProcessIdentifier ownerOf(const char* name, const std::string& address) {
        const auto bus = joinBus(address);
        const auto ask = [&](const char* method, GVariant* parameters) {
            return GVariantPtr(g_dbus_connection_call_sync(
                bus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                method, parameters, nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr));
        };
        if (!bus)
            return 0;
        (void)ask("StartServiceByName", g_variant_new("(su)", name, 0U));
        const auto reply = ask("GetConnectionUnixProcessID", g_variant_new("(s)", name));
        return static_cast<ProcessIdentifier>(decodeNumber(reply.get()).value_or(0));
    }

    /// Windows whose titles begin with "Meeting" are read whole, the others not at all.
    static std::shared_ptr<const ReadingPlan> wholeMeetings(int elements = maxElements,
                                                            int depth = maxDepth) {
        auto plan = std::make_shared<ReadingPlan>();
        plan->window = [elements, depth](std::string_view title) {
            return title.starts_with("Meeting")
                       ? TreeExtent{.maxDepth = depth, .maxElements = elements}
                       : TreeExtent{};
        };
        return plan;
    }

    void request(const std::vector<ProcessIdentifier>& processes,
                 std::shared_ptr<const ReadingPlan> plan = wholeMeetings()) {
        std::vector<ReadingRequest> requests;
        for (const auto process : processes)
            requests.push_back({process, plan});
        tree.request(std::move(requests));
    }

    /// Turns the main loop until `condition` holds; false when that takes too long.
    template <typename Condition>
    [[nodiscard]] bool comesTo(Condition condition, Seconds within = Seconds(20)) {
        const auto start = std::chrono::steady_clock::now();
        gint64 lastBeat = g_get_monotonic_time();
        const auto beat = loop.every(Seconds(0.001), [this, &lastBeat] {
            const auto present = g_get_monotonic_time();
            largestGap = std::max(largestGap, present - std::exchange(lastBeat, present));
        });
        while (!condition() && std::chrono::steady_clock::now() - start < within)
            g_main_context_iteration(nullptr, TRUE);
        return condition();
    }

    /// The same, repeating the request meanwhile as a monitor does.
    template <typename Condition>
    [[nodiscard]] bool comesToAsking(const std::vector<ProcessIdentifier>& processes,
                                     Condition condition, Seconds within = Seconds(20)) {
        const auto passes = loop.every(Seconds(0.5), [&] { request(processes); });
        return comesTo(condition, within);
    }

    /// The newest reading of a window; null when there is none.
    [[nodiscard]] AccessibleElementPtr readingOf(ProcessIdentifier process,
                                                 const std::string& title = "Meeting") const {
        const auto windows = tree.windows(process);
        for (const auto& window : windows.windows)
            if (windows.state == ReadState::read && window.title == title)
                return window.state == ReadState::read ? window.tree : nullptr;
        return nullptr;
    }

    GLibMainLoop loop;
    const bool isSwitchedOn = switchAccessibility(true);
    AtspiAccessibilityTree tree;
    const ProcessIdentifier self = ::getpid();
    gint64 largestGap = 0; ///< microseconds between two turns of the main loop

    /// The same for a thread that has nothing to do: the machine may be busy.
    std::atomic<gint64> machinesGap = 0;
    std::atomic<bool> isOver = false;
    std::thread bystander{[this] {
        gint64 lastBeat = g_get_monotonic_time();
        while (!isOver) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            const auto present = g_get_monotonic_time();
            machinesGap = std::max(machinesGap.load(), present - std::exchange(lastBeat, present));
        }
    }};
};

} // namespace quorva
