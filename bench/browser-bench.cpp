// browser-bench PROCESS NAME: the cost of reading a meeting page of a running browser, relative to
// a synchronous walk with the desktop's client library; the cost of passes over an unchanged page
// and of one changed name; and how long a pass blocks the main loop, also while the browser is
// stopped. Started by browsers.sh.
#include "Measuring.h"
#include "detectors/MeetingParticipantMonitor.h"
#include "detectors/MeetingWindows.h"
#include "detectors/WindowScan.h"
#include "platform/linux/accessibility/AtspiAccessibilityTree.h"
#include "platform/linux/glib/GLibMainLoop.h"

#include <fmt/format.h>

#include <algorithm>
#include <atspi/atspi.h>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <unistd.h>

namespace quorva::bench {
namespace {

constexpr int rounds = 3;
constexpr int passes = 20;
constexpr int changes = 5;
constexpr double firstReadBound = 1.0 / 3;
constexpr double unchangedBound = 1.0 / 20;
constexpr double changedBound = 1.0 / 10;
constexpr double pauseBound = 5.0; // milliseconds
constexpr const char* browser =
    "org.mozilla.firefox"; // any browser of the table: all are read alike

void require(bool holds, const char* what) {
    if (!holds)
        throw std::runtime_error(what);
}

/// The processor time of all threads of a process, in seconds.
double cpuSecondsOfProcess(ProcessIdentifier process) {
    double seconds = 0;
    for (const auto& thread :
         std::filesystem::directory_iterator(fmt::format("/proc/{}/task", process))) {
        double nanoseconds = 0;
        std::ifstream(thread.path() / "schedstat") >> nanoseconds;
        seconds += nanoseconds * 1e-9;
    }
    return seconds;
}

/// A walk without a reader of one's own: one call after another.
class PlainWalk {
public:
    explicit PlainWalk(ProcessIdentifier process) {
        const Element desktop(atspi_get_desktop(0));
        const int count = atspi_accessible_get_child_count(desktop.get(), nullptr);
        for (int i = 0; i < count; ++i) {
            Element application(atspi_accessible_get_child_at_index(desktop.get(), i, nullptr));
            if (application && static_cast<ProcessIdentifier>(atspi_accessible_get_process_id(
                                   application.get(), nullptr)) == process)
                walk(application.get(), 0);
        }
    }

    int elements = 0;

    using Element = std::unique_ptr<AtspiAccessible, Release<g_object_unref>>;
    /// Presses the button of the page that changes a name.
    void rename() const {
        auto* const action = atspi_accessible_get_action_iface(renaming.get());
        require(action != nullptr, "the button can't be pressed");
        atspi_action_do_action(action, 0, nullptr);
        g_object_unref(action);
    }

    Element renaming; ///< the page's button that changes a name

private:
    using States = std::unique_ptr<AtspiStateSet, Release<g_object_unref>>;

    void walk(AtspiAccessible* element, int depth) {
        if (depth > maxTreeDepthBrowser)
            return;
        ++elements;
        const GCharsPtr name(atspi_accessible_get_name(element, nullptr));
        if (name && std::string_view(name.get()) == "Rename somebody")
            renaming.reset(ATSPI_ACCESSIBLE(g_object_ref(element)));
        const GCharsPtr description(atspi_accessible_get_description(element, nullptr));
        const GCharsPtr roleName(atspi_accessible_get_localized_role_name(element, nullptr));
        if (auto* const text = atspi_accessible_get_text_iface(element)) {
            const GCharsPtr content(atspi_text_get_text(text, 0, -1, nullptr));
            g_object_unref(text);
        }
        const int count = atspi_accessible_get_child_count(element, nullptr);
        for (int i = 0; i < count; ++i) {
            const Element child(atspi_accessible_get_child_at_index(element, i, nullptr));
            if (child && isWalked(child.get(), depth))
                walk(child.get(), depth + 1);
        }
    }

    static bool isWalked(AtspiAccessible* child, int depth) {
        const auto role = static_cast<std::uint32_t>(atspi_accessible_get_role(child, nullptr));
        if (!wholePageExtent().descends(AccessibilityRole::other, roleOf(role), depth - 1))
            return false;
        if (role != static_cast<std::uint32_t>(AtspiRole::documentWeb))
            return true;
        const States states(atspi_accessible_get_state_set(child));
        return atspi_state_set_contains(states.get(), ATSPI_STATE_SHOWING) != FALSE;
    }
};

/// The time of a plain walk in a separate process, because the library caches what it has seen.
double plainWalkElsewhere(ProcessIdentifier process) {
    const auto command = fmt::format("/proc/{}/exe {} --walk", ::getpid(), process);
    const std::unique_ptr<std::FILE, Release<::pclose>> walk(::popen(command.c_str(), "re"));
    double seconds = 0;
    require(walk && std::fscanf(walk.get(), "%lf", &seconds) == 1, "the plain walk has failed");
    return seconds;
}

void walkAndTell(ProcessIdentifier process) {
    require(atspi_init() <= 1, "the client library can't be started");
    int elements = 0;
    const double seconds = secondsOf([&] { elements = PlainWalk(process).elements; });
    require(elements > 1000, "the browser doesn't show the page to the plain walk");
    fmt::print("{}\n", seconds);
}

/// The reader, used as the monitor uses it.
class Reader {
public:
    explicit Reader(ProcessIdentifier process_) : process(process_) {
        require(tree.isTrusted(), "accessibility is switched off in this session");
    }

    /// Requests a reading once, and returns when the application has been read.
    void pass() {
        isRead = false;
        const auto subscription = tree.onRead([this] {
            isRead = true;
            loop.quit();
        });
        tree.enable(process, AccessibilitySwitch::enhancedUserInterface);
        tree.request({{process, plan}});
        loop.run();
    }

    /// The page's tree, after it has been read completely.
    AccessibleElementPtr page() {
        for (const auto& window : tree.windows(process).windows)
            for (const auto& page : window.pages)
                if (page.state == ReadState::read && page.extent == wholePageExtent())
                    return page.tree;
        return nullptr;
    }

    /// Reads the page; waits until the browser shows one.
    void readWhole() {
        constexpr int attempts = 120;
        for (int attempt = 0; attempt < attempts; ++attempt) {
            pass();
            if (page())
                return;
            const auto pause = loop.after(Seconds(0.5), [this] { loop.quit(); });
            loop.run();
        }
        throw std::runtime_error("the browser doesn't show the page");
    }

    /// Waits for the next reading that was not requested: the one that follows a change.
    void waitForChange() {
        const auto before = page();
        const auto subscription = tree.onRead([&] {
            if (page() != before)
                loop.quit();
        });
        loop.run();
    }

    GLibMainLoop loop;
    AtspiAccessibilityTree tree;

private:
    const ProcessIdentifier process;
    const std::shared_ptr<const ReadingPlan> plan = makeReadingPlan(browser);
    bool isRead = false;
};

int countElements(const AccessibleElement& element) {
    int count = 1;
    for (const auto& child : element.children)
        count += countElements(*child);
    return count;
}

class OneApplication final : public Applications {
public:
    explicit OneApplication(ProcessIdentifier process) {
        application.bundleIdentifier = browser;
        application.processIdentifier = process;
    }
    std::vector<RunningApplication> runningApplications() override { return {application}; }
    std::optional<std::string> ownBundleIdentifier() const override { return std::nullopt; }
    Subscription onLaunch(Task) override { return {}; }
    Subscription onQuit(Task) override { return {}; }

private:
    RunningApplication application;
};

class NoLog final : public Log {
public:
    void write(LogLevel, std::string_view, QuorvaLogCategory, CallSite) override {}
};

/// The longest time between two turns of the main loop while the monitor works, in milliseconds.
double longestPause(ProcessIdentifier process, bool isStopped) {
    GLibMainLoop loop;
    AtspiAccessibilityTree tree;
    OneApplication applications(process);
    NoLog log;
    MeetingParticipantMonitor monitor(loop, applications, tree, log);
    monitor.startMonitoring();
    while (monitor.coverage->windows == 0)
        g_main_context_iteration(nullptr, TRUE);
    if (isStopped)
        ::kill(process, SIGSTOP);
    double longest = 0;
    const auto hurry = loop.every(Seconds(0.1), [&] {
        longest = std::max(longest, secondsOf([&] { monitor.performScan(); }));
    });
    const auto end = loop.after(Seconds(6), [&] { loop.quit(); });
    loop.run();
    if (isStopped)
        ::kill(process, SIGCONT);
    return longest * 1000;
}

void measure(ProcessIdentifier process, const std::string& name) {
    Summary summary;
    { Reader(process).readWhole(); } // what the browser builds at the first call
    std::vector<double> firstReads;
    std::vector<double> firstCosts;
    std::vector<double> plainWalks;
    std::vector<double> ratios;
    const auto readAnew = [&] {
        Reader reader(process);
        const double before = cpuSecondsOfProcess(process);
        firstReads.push_back(secondsOf([&] { reader.readWhole(); }));
        firstCosts.push_back(cpuSecondsOfProcess(process) - before);
        return firstReads.back();
    };
    const auto walkAnew = [&] { return plainWalks.emplace_back(plainWalkElsewhere(process)); };
    for (int i = 0; i < rounds; ++i) { // neither profits from going first
        double walked = walkAnew();
        double read = readAnew();
        read += readAnew();
        walked += walkAnew();
        ratios.push_back(read / walked);
    }
    const double firstCost = medianOf(firstCosts);

    Reader reader(process);
    reader.readWhole();
    const auto page = reader.page();
    const int elements = countElements(*page);
    reader.pass(); // signals that the browser still had to send
    double before = cpuSecondsOfProcess(process);
    for (int i = 0; i < passes; ++i)
        reader.pass();
    const double unchangedCost = (cpuSecondsOfProcess(process) - before) / passes;

    require(atspi_init() <= 1, "the client library can't be started");
    std::optional<PlainWalk> walk(std::in_place, process);
    require(walk->renaming != nullptr, "the page has no button that changes a name");
    std::vector<double> changedCosts;
    for (int i = 0; i < changes; ++i) {
        reader.pass();
        before = cpuSecondsOfProcess(process);
        walk->rename();
        reader.waitForChange();
        changedCosts.push_back(cpuSecondsOfProcess(process) - before);
    }

    fmt::print("{}: {} elements read in {:.2f} s ({:.2f} s of the browser); the plain walk met {} "
               "in {:.2f} s\n",
               name, elements, medianOf(firstReads), firstCost, walk->elements,
               medianOf(plainWalks));
    summary.add(name + ": first full read, against a plain walk", medianOf(ratios), "times",
                firstReadBound);
    summary.add(name + ": browser's time for a pass, unchanged, against the first read",
                unchangedCost / firstCost, "times", unchangedBound);
    summary.add(name + ": browser's time for one changed name, likewise",
                medianOf(changedCosts) / firstCost, "times", changedBound);
    summary.add(name + ": longest pass", longestPause(process, false), "ms", pauseBound);
    summary.add(name + ": longest pass, the browser being stopped", longestPause(process, true),
                "ms", pauseBound);
    fmt::print("{}", summary.toText());
}

} // namespace
} // namespace quorva::bench

int main(int count, char* arguments[]) {
    try {
        if (count != 3)
            throw std::runtime_error("to be started as: browser-bench PROCESS NAME");
        const auto process = std::atoi(arguments[1]);
        if (std::string_view(arguments[2]) == "--walk")
            quorva::bench::walkAndTell(process);
        else
            quorva::bench::measure(process, arguments[2]);
        return 0;
    } catch (const std::exception& failure) {
        fmt::print(stderr, "browser-bench: {}\n", failure.what());
        return 1;
    }
}
