// The pages of browsers: each is a meeting, or none, by itself; and the meetings that no page
// shows.
#include "detectors/MeetingMonitorTest.h"

namespace quorva {
namespace {

using namespace std::chrono_literals;
using enum UnseenMeeting::Cause;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto room = "https://meet.google.com/abc";

class MeetingPagesTest : public MeetingMonitorTest {
protected:
    FakeAccessibilityTree::Window& window() { return tree.applications[chrome].windows.at(0); }
};

TEST_F(MeetingPagesTest, matchTheMeetingsOwnDocumentsOnly) {
    shows(chrome, "Note-takers compared - Chrome",
          browserWindow({page("https://news.example", {"Fathom Notetaker", "Recording in progress"},
                              "Note-takers compared"),
                         page(room, {otter}, "Meet - abc")}));
    pass();
    EXPECT_THAT(announced(), ElementsAre("+Google Meet-otter.ai notetaker"));
    EXPECT_EQ(monitor->participantBotDetections->front().windowTitle, "Meet - abc")
        << "the window's title is that of the article";

    window().tree = browserWindow("https://news.example", {"Fathom Notetaker"});
    window().behind = {page(room, {otter, "Acme Notetaker"}, "Meet - abc"),
                       page("https://app.zoom.us/wc/1", {"Recording in progress"}, "Zoom Meeting")};
    pass();
    EXPECT_THAT(announced(),
                ElementsAre("+Google Meet-acme notetaker", "!Zoom-recording in progress"));
    EXPECT_EQ(monitor->coverage->windows, 2U);
    EXPECT_THAT(monitor->coverage->unseen, IsEmpty());
}

TEST_F(MeetingPagesTest, takeAPictureInPictureForAPartOfTheMeeting) {
    const auto picture = page("about:blank", {otter});
    shows(chrome, "Blank", browserWindow({picture}));
    pass();
    EXPECT_THAT(bots(), IsEmpty()) << "there is no meeting";
    tree.applications[chrome].windows.push_back({"Meet - abc", browserWindow(room, {"Ann"})});
    pass();
    EXPECT_THAT(announced(), ElementsAre("+Google Meet-otter.ai notetaker"));
    window().tree = browserWindow({element(AccessibilityRole::webArea, "", {}, "about:blank")});
    pass();
    EXPECT_THAT(monitor->coverage->failed, IsEmpty()) << "an empty one is no meeting that fails";
}

TEST_F(MeetingPagesTest, areMissedWhereOnlyATitleTellsOfThem) {
    const auto news = page("https://news.example", {"News"}, "News");
    const auto meeting = page(room, {"Ann"}, "Meet - abc");
    const auto untitled = page(room, {"Ann"});
    const auto blank = element(AccessibilityRole::webArea);
    const UnseenMeeting behind{inBackgroundTab, "Chrome", "Google Meet"};
    const UnseenMeeting hidden{notInFront, "Chrome", "Google Meet"};
    struct Case {
        const char* what;
        std::string title;
        Elements shown;
        Elements behind;
        std::vector<AccessibleTab> tabs;
        std::vector<UnseenMeeting> unseen;
    };
    const std::vector<Case> cases{
        {"in front", "Meet - abc", {meeting}, {}, {{"Meet - abc - Memory usage", true}}, {}},
        {"in front, with a new title", "Meet - new", {meeting}, {}, {{"Meet - new", true}}, {}},
        {"alone in a window without tabs", "Meet - abc", {meeting}, {}, {}, {}},
        {"behind, and read", "News", {news}, {meeting}, {{"News", true}, {"Meet - abc"}}, {}},
        {"behind, read, title not known", "News", {news}, {untitled}, {{"Meet - abc"}}, {}},
        {"behind", "News", {news}, {}, {{"News", true}, {"Meet - abc - Audio playing"}}, {behind}},
        {"behind, selected with others",
         "News",
         {news},
         {},
         {{"News", true}, {"Meet - abc", true}},
         {behind}},
        {"behind another",
         "Meet - b",
         {page(room, {}, "Meet - b")},
         {},
         {{"Meet - abc"}, {"Meet - b", true}},
         {behind}},
        {"minimised", "Meet - abc", {}, {}, {{"Meet - abc", true}}, {hidden}},
        {"minimised, without tabs", "Meet - abc", {}, {}, {}, {hidden}},
        {"covered", "Meet - abc", {blank}, {}, {{"Meet - abc", true}}, {hidden}},
        {"other pages", "News", {news}, {}, {{"News", true}, {"Meet the team"}, {"Mail"}}, {}},
    };
    for (const auto& each : cases) {
        tree.applications[chrome].windows = {{.title = each.title,
                                              .tree = browserWindow(each.shown),
                                              .behind = each.behind,
                                              .tabs = each.tabs}};
        pass();
        EXPECT_EQ(monitor->coverage->unseen, each.unseen) << each.what;
    }
}

TEST_F(MeetingPagesTest, keepWhatWasFoundInAMeetingThatIsThereUnread) {
    shows(chrome, "Meet - abc", browserWindow({page(room, {otter}, "Meet - abc")}));
    pass();
    const auto seen = loop.now();
    window().tree = browserWindow("https://news.example", {"News"});
    window().tabs = {{"News", true}, {"Meet - abc"}};
    for (int i = 0; i < 720; ++i) {
        loop.advance(5s);
        pass();
    }
    EXPECT_EQ(monitor->participantBotDetections->at(0).detectedAt, seen);
    window().behind = {page(room, {otter}, "Meet - abc")};
    pass();
    EXPECT_THAT(announced(), ElementsAre("+Google Meet-otter.ai notetaker"));
    window().behind.clear();
    window().tabs.pop_back();
    loop.advance(300s);
    pass();
    EXPECT_THAT(announced(), ElementsAre("-Google Meet-otter.ai notetaker"));
}

TEST_F(MeetingPagesTest, areToldOnceWhenTheyGoOutOfSightForLong) {
    int told = 0;
    monitor->onSightLost = [&](const auto&) { ++told; };
    const auto passes = [&](bool isHidden, int count) {
        tree.applications[chrome].windows = {
            {.title = "News",
             .tree = browserWindow("https://news.example", {"News"}),
             .behind = isHidden ? Elements{} : Elements{page(room, {"Ann"}, "Meet - abc")},
             .tabs = {{"News", true}, {"Meet - abc"}}}};
        for (int i = 0; i < count; ++i, loop.advance(5s))
            pass();
    };
    passes(true, 1);
    passes(false, 1);
    EXPECT_EQ(told, 0) << "a page that is just loading";
    passes(true, 3);
    EXPECT_EQ(told, 1);
    passes(false, 50);
    passes(true, 10);
    EXPECT_EQ(told, 1) << "switching tabs tells nothing new";
    passes(false, 61);
    passes(true, 3);
    EXPECT_EQ(told, 2);
}

TEST_F(MeetingPagesTest, ofFurtherInstancesAreMissedOnceTheseShouldHaveJoined) {
    shows(chrome, "News", browserWindow("https://news.example", {"News"}));
    tree.applications[chrome].startingInstances = 1;
    EXPECT_FALSE(monitor->readAhead());
    pass();
    EXPECT_FALSE(monitor->coverage->notReadYet.empty());
    EXPECT_THAT(monitor->coverage->unseen, IsEmpty());
    tree.applications[chrome].startingInstances = 0;
    tree.applications[chrome].silentInstances = 1;
    pass();
    EXPECT_TRUE(monitor->coverage->notReadYet.empty());
    EXPECT_THAT(monitor->coverage->unseen,
                ElementsAre(UnseenMeeting{silentInstance, "Chrome", {}}));
}

TEST_F(MeetingMonitorTest, forgetsWhatWasFoundSomeTimeAfterAccessibilityWentOff) {
    inZoom({otter});
    monitor->startMonitoring();
    loop.advance(20s);
    tree.isOn = false;
    tree.trustChanges.call();
    loop.advance(200s);
    EXPECT_THAT(bots(), ElementsAre(otter));
    loop.advance(200s);
    EXPECT_THAT(announced(), ElementsAre("+Zoom-otter.ai notetaker", "-Zoom-otter.ai notetaker"));
}

} // namespace
} // namespace quorva
