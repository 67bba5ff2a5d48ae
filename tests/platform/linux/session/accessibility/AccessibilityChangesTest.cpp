// Following an application: its changes, its end and its return, and those of the bus and of
// accessibility itself.
#include "AccessibilityTest.h"

#include <atomic>
#include <cerrno>
#include <map>
#include <mutex>

namespace quorva {
namespace {

/// A window whose content changes.
class Meeting {
public:
    Meeting() {
        elements["root"] = {.role = played::application, .children = {"window"}};
        elements["window"] = {.role = played::frame, .name = "Meeting", .children = {"list"}};
        elements["list"] = {.role = played::list, .children = {"ann", "ben", "cem"}};
        for (const auto* const name : {"ann", "ben", "cem", "dag"})
            elements[name] = {.role = played::listItem, .name = name, .text = name};
    }

    template <typename Change>
    void change(const std::string& identifier, Change make) {
        const std::lock_guard lock(mutex);
        make(elements[identifier]);
    }

    PlayedApplication::Script script() {
        return [this](const std::string& identifier) -> std::optional<PlayedElement> {
            const std::lock_guard lock(mutex);
            const auto found = elements.find(identifier);
            return found != elements.end() ? std::optional(found->second) : std::nullopt;
        };
    }

private:
    std::mutex mutex;
    std::map<std::string, PlayedElement> elements;
};

/// A window with two tabs, each with a page. One of them is shown.
PlayedApplication::Script browser(const std::shared_ptr<std::atomic<int>>& shownTab) {
    return [shownTab](const std::string& identifier) -> std::optional<PlayedElement> {
        if (identifier == "root")
            return PlayedElement{.role = played::application, .children = {"window"}};
        if (identifier == "window")
            return PlayedElement{
                .role = played::frame, .name = "Meeting", .children = {"page0", "page1"}};
        const int tab = identifier.back() - '0';
        if (identifier.starts_with("page"))
            return PlayedElement{.role = played::document,
                                 .name = identifier,
                                 .url = "https://example.org/" + identifier,
                                 .children = {"text" + std::to_string(tab)},
                                 .isShowing = tab == *shownTab};
        return PlayedElement{.role = played::paragraph, .name = identifier};
    };
}

class AccessibilityChangesTest : public AccessibilityTest {
protected:
    void readMeeting(PlayedApplication& application) {
        request({self});
        ASSERT_TRUE(comesTo([&] { return readingOf(self) != nullptr; }));
        ASSERT_TRUE(comesTo([&] { return isQuiet(application); }));
        application.clearQuestions();
    }

    /// Whether the application has not been asked anything for 300 ms.
    [[nodiscard]] bool isQuiet(const PlayedApplication& application) {
        const auto present = g_get_monotonic_time();
        if (const int count = application.questions(); std::exchange(lastCount, count) != count)
            lastQuestion = present;
        return present - lastQuestion > 300'000;
    }

    int lastCount = -1;
    gint64 lastQuestion = 0;
};

} // namespace

TEST_F(AccessibilityChangesTest, asksOnlyForWhatASignalNames) {
    Meeting meeting;
    PlayedApplication application(meeting.script(), "gtk");
    readMeeting(application);
    const auto before = readingOf(self);

    meeting.change("ben", [](auto& ben) { ben.name = "Ben Recorder"; });
    application.tell("ben", "Object", "PropertyChange", "accessible-name");
    ASSERT_TRUE(comesTo([&] { return find(readingOf(self), "Ben Recorder") != nullptr; }));
    EXPECT_LE(application.questions("ben"), 2);
    EXPECT_EQ(application.questions("ann") + application.questions("list"), 0);
    EXPECT_EQ(find(readingOf(self), "ann"), find(before, "ann")) << "is the same object still";

    application.clearQuestions();
    meeting.change("cem", [](auto& cem) { cem.text = "recording"; });
    application.tell("cem", "Object", "TextChanged", "insert");
    ASSERT_TRUE(comesTo([&] { return find(readingOf(self), "cem")->value == "recording"; }));
    EXPECT_EQ(application.questions("cem"), 1);

    application.clearQuestions();
    meeting.change("list", [](auto& list) { list.children = {"dag", "ann", "cem"}; });
    application.tell("list", "Object", "ChildrenChanged", "add", "dag");
    ASSERT_TRUE(comesTo([&] { return find(readingOf(self), "dag") != nullptr; }));
    EXPECT_EQ(find(readingOf(self), "Ben Recorder"), nullptr);
    EXPECT_LE(application.questions("list"), 2);
    EXPECT_EQ(application.questions("ann") + application.questions("cem"), 0);
    const auto people = readingOf(self)->children.at(0)->children;
    ASSERT_EQ(people.size(), 3U);
    EXPECT_EQ(people[0]->title, "dag");
    EXPECT_EQ(people[1].get(), find(before, "ann"));
}

TEST_F(AccessibilityChangesTest, copesWithASwarmOfSignalsBesideAnotherApplication) {
    // The tree consists of one element over and over, so that each signal concerns all of it.
    PlayedApplication swarm(
        [](const std::string& identifier) {
            const bool isWindow = identifier == "window";
            return PlayedElement{.role = isWindow ? played::frame : played::panel,
                                 .name = isWindow ? "Meeting" : "",
                                 .children = {isWindow               ? "same"
                                              : identifier == "root" ? "window"
                                                                     : "same",
                                              "same"}};
        },
        "gtk");
    request({self});
    ASSERT_TRUE(comesTo([&] { return readingOf(self) != nullptr; }));
    const PlayedMeeting other("Meeting");
    int told = 0;
    const auto swarming = loop.every(Seconds(0.001), [&] {
        for (int i = 0; i < 10; ++i, ++told)
            swarm.tell("same", "Object", "PropertyChange", "accessible-name");
    });
    ASSERT_TRUE(comesToAsking(
        {self, other.identifier()}, [&] { return readingOf(other.identifier()) != nullptr; },
        Seconds(5)));
    ASSERT_TRUE(comesTo([&] { return told > 20'000; }));
    EXPECT_LE(swarm.questions(), 4 * 5 * maxElements); // there are pauses between readings
    other.kill();
    EXPECT_TRUE(comesToAsking(
        {self, other.identifier()},
        [&] { return tree.windows(other.identifier()).state == ReadState::couldNotBeRead; },
        Seconds(5)));
}

TEST_F(AccessibilityChangesTest, leavesOutDocumentsThatAreNotShown) {
    const auto shown = std::make_shared<std::atomic<int>>(0);
    PlayedApplication application(browser(shown), "Gecko");
    readMeeting(application);
    EXPECT_NE(find(readingOf(self), "text0"), nullptr);
    EXPECT_EQ(find(readingOf(self), "page1"), nullptr);
    EXPECT_EQ(find(readingOf(self), "page0")->url, "https://example.org/page0");
    EXPECT_EQ(application.questions("text1"), 0);

    *shown = 1;
    application.tell("page0", "Object", "StateChanged", "showing");
    application.tell("page1", "Object", "StateChanged", "showing");
    ASSERT_TRUE(comesTo([&] { return find(readingOf(self), "text1") != nullptr; }));
    EXPECT_EQ(find(readingOf(self), "text0"), nullptr);

    *shown = 2; // none: the window is minimised
    application.tell("page1", "Object", "StateChanged", "showing");
    application.clearQuestions();
    ASSERT_TRUE(comesTo([&] { return application.questions("page1", "GetState") > 0; }));
    ASSERT_TRUE(comesTo([&] { return isQuiet(application); }));
    EXPECT_NE(find(readingOf(self), "text1"), nullptr);
}

TEST_F(AccessibilityChangesTest, readsAnApplicationThatComesBackUnderAnotherName) {
    Meeting meeting;
    {
        PlayedApplication application(meeting.script(), "gtk");
        readMeeting(application);
    }
    ASSERT_TRUE(comesTo([&] { return readingOf(self) == nullptr; }));
    const PlayedApplication application(meeting.script(), "gtk");
    EXPECT_TRUE(comesTo([&] { return readingOf(self) != nullptr; })) << "without another request";
}

TEST_F(AccessibilityChangesTest, followsAccessibilityBeingSwitchedOffAndOn) {
    Meeting meeting;
    PlayedApplication application(meeting.script(), "gtk");
    ASSERT_TRUE(tree.isTrusted());
    readMeeting(application);
    int changes = 0;
    const auto counting = tree.onTrustChange([&] { ++changes; });
    ASSERT_TRUE(switchAccessibility(false));
    ASSERT_TRUE(comesTo([&] { return !tree.isTrusted(); }));
    EXPECT_EQ(tree.windows(self).state, ReadState::notReadYet);
    EXPECT_EQ(tree.enable(self, AccessibilitySwitch::manualAccessibility), EINPROGRESS);
    ASSERT_TRUE(switchAccessibility(true));
    ASSERT_TRUE(comesTo([&] { return readingOf(self) != nullptr; })) << "without another request";
    EXPECT_EQ(changes, 2);
}

TEST_F(AccessibilityChangesTest, findsTheBusThatFollowsOneThatEnds) {
    Meeting meeting;
    auto application = std::make_unique<PlayedApplication>(meeting.script(), "gtk");
    readMeeting(*application);
    const auto bus = ownerOf("org.freedesktop.DBus", accessibilityBusAddress());
    ASSERT_GT(bus, 0);
    ASSERT_EQ(::kill(bus, SIGKILL), 0);
    ASSERT_TRUE(comesTo([&] { return tree.windows(self).state == ReadState::couldNotBeRead; }));
    application.reset();
    ASSERT_TRUE(comesTo([&] {
        const auto present = ownerOf("org.freedesktop.DBus", accessibilityBusAddress());
        return present != 0 && present != bus;
    }));
    ASSERT_TRUE(switchAccessibility(true)); // the new launcher does not remember
    application = std::make_unique<PlayedApplication>(meeting.script(), "gtk");
    EXPECT_TRUE(comesToAsking({self}, [&] { return readingOf(self) != nullptr; }));
}

TEST_F(AccessibilityChangesTest, saysSoWhenTheBusHangs) {
    Meeting meeting;
    PlayedApplication application(meeting.script(), "gtk");
    const auto bus = ownerOf("org.freedesktop.DBus", accessibilityBusAddress());
    ASSERT_EQ(::kill(bus, SIGSTOP), 0);
    request({self});
    EXPECT_TRUE(comesTo([&] { return tree.windows(self).state == ReadState::couldNotBeRead; }));
    ASSERT_EQ(::kill(bus, SIGCONT), 0);
    EXPECT_TRUE(comesToAsking({self}, [&] { return readingOf(self) != nullptr; }));
}

TEST_F(AccessibilityTest, endsAtAnyPointOfAReading) {
    PlayedMeeting meeting("Meeting", 300);
    for (int turns = 0; turns < 60; turns += 3) {
        auto own = std::make_unique<AtspiAccessibilityTree>();
        own->request({{meeting.identifier(), wholeMeetings()}});
        int turned = 0;
        const auto turning = loop.every(Seconds(0.002), [&] { ++turned; });
        ASSERT_TRUE(comesTo([&] { return turned >= turns; }));
        const auto start = g_get_monotonic_time();
        own.reset();
        EXPECT_LT(g_get_monotonic_time() - start, 1'000'000);
    }
}

} // namespace quorva
