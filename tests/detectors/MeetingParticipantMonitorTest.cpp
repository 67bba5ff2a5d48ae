#include "detectors/MeetingMonitorTest.h"
#include "detectors/WindowScan.h"

namespace quorva {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;
using Texts = std::vector<std::string>;

using MeetingParticipantMonitorTest = MeetingMonitorTest;

TEST_F(MeetingParticipantMonitorTest, describesBotsAndBannersOfAMeetingWindow) {
    inZoom({"Ann", "Mute Otter Notetaker", " Acme Notetaker, invited by Ann ", "Fathom Notetaker",
            "Recording in progress", "AI Companion is active", "This meeting is being recorded",
            "Start recording to the cloud", "Fathom Notetaker"});
    pass();
    EXPECT_THAT(announced(),
                ElementsAre("+Zoom-fathom notetaker", "+Zoom-mute otter notetaker",
                            "+Zoom-acme notetaker, invited by ann", "+Zoom-ai companion is active",
                            "!Zoom-recording in progress", "!Zoom-ai companion"));
    const auto& bot = monitor->participantBotDetections->at(2);
    EXPECT_EQ(bot, (ParticipantBotDetection{"Zoom-acme notetaker, invited by ann", "Zoom",
                                            "Acme Notetaker, invited by Ann", "notetaker",
                                            "Acme Notetaker", BotCategory::transcription, 80,
                                            "Zoom Meeting", loop.now()}));
    EXPECT_EQ(
        monitor->recordingIndicators->at(1),
        (RecordingIndicatorDetection{"Zoom-ai companion", "Zoom", "AI Companion is active",
                                     IndicatorType::aiCompanion, "Zoom Meeting", loop.now()}));
    EXPECT_EQ(*monitor->activeMeetingPlatform, "Zoom");
    EXPECT_EQ(monitor->lastScanDate.get(), loop.now());
    EXPECT_EQ(monitor->coverage.get(), (MeetingCoverage{.applications = 3, .windows = 1}));
}

TEST_F(MeetingParticipantMonitorTest, looksAtMeetingWindowsOnly) {
    tree.applications[zoom].windows = {{"Zoom Workplace", meetingWindow({otter})},
                                       {"My ZOOM WEBINAR", meetingWindow({"Fathom Notetaker"})}};
    tree.applications[chrome].windows = {
        {"Zoom Meeting - Google Search",
         browserWindow({page("https://app.zoom.us/", {otter}, "Zoom Meeting - Google Search")})},
        {"Zoom Meeting", browserWindow("https://zoom.us/pricing", {otter})}};
    pass();
    EXPECT_THAT(announced(), ElementsAre("+Zoom-fathom notetaker"));
    // Nor is more read of the others than it takes to tell.
    const auto own = tree.windows(zoom);
    EXPECT_FALSE(own.windows[0].tree);
    EXPECT_EQ(own.windows[1].extent, wholeWindowExtent());
    for (const auto& window : tree.windows(chrome).windows)
        EXPECT_FALSE(window.pages.at(0).tree) << window.title;

    tree.applications[zoom].windows.clear();
    pass();
    EXPECT_EQ(*monitor->activeMeetingPlatform, std::nullopt);
}

TEST_F(MeetingParticipantMonitorTest, givesABrowserWindowToThePlatformOfItsAddress) {
    using enum AccessibilityRole;
    auto deep = element(webArea, {}, {listOf({otter})}, "https://MEET.google.com/abc");
    for (int depth = 0; depth < 8; ++depth)
        deep = element(group, {}, {deep});
    tree.applications[chrome].windows = {
        {"", deep},
        {"Zoom Meeting - Google Chrome", browserWindow("https://teams.live.com/meet", {otter})},
        {"Zoom Meeting | Microsoft Teams",
         browserWindow({page("", {otter}, "Zoom Meeting | Microsoft Teams")})}};
    pass();
    EXPECT_THAT(announced(), ElementsAre("+Zoom-otter.ai notetaker", "+Teams-otter.ai notetaker",
                                         "+Google Meet-otter.ai notetaker"));
    EXPECT_EQ(monitor->coverage->windows, 3U);
    EXPECT_EQ(*monitor->activeMeetingPlatform, "Google Meet");
}

TEST_F(MeetingParticipantMonitorTest, tellsAMeetingInTeamsFromOtherWindowsOfTeams) {
    shows(teams, "Meeting chat", meetingWindow({"Leave the group", otter}));
    pass();
    EXPECT_THAT(announced(), IsEmpty());
    EXPECT_EQ(*monitor->activeMeetingPlatform, "Teams");
    EXPECT_EQ(logged(LogLevel::debug, "Teams window without active meeting signals — skipped"), 1U);

    shows(teams, "Meeting chat", meetingWindow({"Leave the group", otter, "Mute"}));
    pass();
    EXPECT_THAT(announced(), ElementsAre("+Teams-otter.ai notetaker"));

    shows(chrome, "Chat | Microsoft Teams - Chrome", // not asked of pages
          browserWindow({page("", {otter}, "Chat | Microsoft Teams")}));
    quit(teams);
    pass();
    EXPECT_THAT(bots(), ElementsAre(otter));
    EXPECT_EQ(monitor->participantBotDetections->front().windowTitle,
              "Chat | Microsoft Teams - Chrome");
}

TEST_F(MeetingParticipantMonitorTest, looksAtNoMoreElementsThanItsBudget) {
    Texts crowd(1997, "Ann"); // below the window and its list
    crowd.insert(crowd.end(), {otter, "Fathom Notetaker"});
    inZoom(crowd);
    Texts audience(4997, "Ann"); // below the page and its list
    audience.insert(audience.end(), {"Avoma Notetaker", "Fathom Notetaker"});
    shows(chrome, "", browserWindow("https://meet.google.com/abc", audience));
    pass();
    EXPECT_THAT(bots(), ElementsAre(otter, "Avoma Notetaker"));
    EXPECT_EQ(logged(LogLevel::notice, "Element budget exhausted (2000) scanning Zoom"), 1U);
    EXPECT_EQ(logged(LogLevel::notice, "Element budget exhausted (5000) scanning Google Meet"), 1U);
    using enum UnseenMeeting::Cause;
    EXPECT_THAT(monitor->coverage->unseen,
                ElementsAre(UnseenMeeting{beyondBudget, "Chrome", "Google Meet"},
                            UnseenMeeting{beyondBudget, "Zoom", "Zoom"}));
}

TEST_F(MeetingParticipantMonitorTest, logsWhatHasChangedOnly) {
    shows(chrome, "Meet – a", browserWindow("https://meet.google.com/a", Texts(18, "Ann")));
    tree.applications[chrome].windows.push_back(
        {"Meet – b", browserWindow("https://meet.google.com/b", Texts(20, otter))});
    inZoom({});
    for (int i = 0; i < 3; ++i) {
        pass();
        loop.advance(5s);
    }
    EXPECT_THAT(announced(), SizeIs(1));
    EXPECT_EQ(logged(LogLevel::notice,
                     "AX tree partial for Google Meet: only 18 elements (expected 100+)"),
              1U);
    EXPECT_EQ(logged(LogLevel::notice, "AX tree empty for Zoom window — permission or browser AX "
                                       "setting may be off"),
              1U);
    EXPECT_EQ(log.count("Enabled AXEnhancedUserInterface"), 1U);
    EXPECT_EQ(log.count("AX tree"), 2U);
    EXPECT_EQ(monitor->participantBotDetections->front().detectedAt, loop.now() - 5s);
    EXPECT_THAT(monitor->coverage->failed,
                ElementsAre(UnseenMeetingWindow{zoom, "Zoom", "Zoom Meeting",
                                                "it shows nothing to a screen reader"}));

    tree.applications[chrome].windows[1].title = "Meet – new";
    pass();
    EXPECT_EQ(monitor->participantBotDetections->front().windowTitle, "Meet – new");
}

TEST_F(MeetingParticipantMonitorTest, saysWhatItCouldNotReadAndLogsItWhenItBegins) {
    tree.applications[zoom].problem = "no answer";
    auto& windows = tree.applications[chrome].windows;
    windows = {{.title = "Salaries - Google Search",
                .tree = browserWindow("", {}),
                .problem = "it went away"},
               {.title = "Zoom Meeting",
                .tree = browserWindow("https://app.zoom.us/wc/1", {otter}),
                .isReadWholly = false}};
    for (int i = 0; i < 3; ++i)
        pass();
    EXPECT_EQ(
        monitor->coverage.get(),
        (MeetingCoverage{.applications = 3,
                         .failed = {{zoom, "Zoom", "", "no answer"},
                                    {chrome, "Chrome", "Salaries - Google Search", "it went away"}},
                         .notReadYet = {{chrome, "Chrome", "Zoom Meeting", ""}}}));
    EXPECT_EQ(*monitor->activeMeetingPlatform, std::nullopt);
    EXPECT_EQ(logged(LogLevel::notice, "The windows of Zoom (PID: 100) can't be read: no answer"),
              1U);
    EXPECT_EQ(logged(LogLevel::notice, "A window of Chrome (PID: 200) can't be read: it went away"),
              1U);
    EXPECT_EQ(log.count("can't be read"), 2U);
    EXPECT_EQ(log.count("Salaries") + log.count("AX tree"), 0U);

    windows[0].isAnswering = false; // tried once more, in vain
    windows[0].problem.clear();
    pass();
    EXPECT_THAT(monitor->coverage->notReadYet, SizeIs(2));
    windows[0].problem = "it went away";
    pass();
    EXPECT_EQ(log.count("can't be read"), 2U);
    tree.applications[zoom].problem.clear();
    pass();
    loop.advance(300s);
    pass();
    tree.applications[zoom].problem = "no answer";
    pass();
    EXPECT_EQ(log.count("can't be read"), 3U) << "it fails anew";
}

TEST_F(MeetingParticipantMonitorTest, asksApplicationsToExposeTheirTrees) {
    applications.running.push_back({"com.tinyspeck.slackmacgap", "Slack", std::nullopt, 400});
    applications.running.push_back({"com.apple.Safari", "Safari", std::nullopt, 500});
    monitor->performScan();
    using enum AccessibilitySwitch;
    using Enabling = FakeAccessibilityTree::Enabling;
    EXPECT_THAT(tree.enabled, UnorderedElementsAre(Enabling{teams, manualAccessibility},
                                                   Enabling{chrome, enhancedUserInterface},
                                                   Enabling{400, manualAccessibility}));
    EXPECT_EQ(logged(LogLevel::debug, "Enabled Accessibility tree for Electron app (PID: 300)"),
              1U);
    EXPECT_EQ(logged(LogLevel::debug, "Enabled AXEnhancedUserInterface for browser (PID: 200)"),
              1U);
    tree.enableError = ETIMEDOUT;
    shows(teams, "Call", meetingWindow({"Leave", "Mute", otter}));
    pass();
    EXPECT_EQ(logged(LogLevel::debug,
                     "Could not enable AX tree for PID 300 (error: 110) — will use "
                     "partial tree"),
              1U);
    EXPECT_EQ(logged(LogLevel::debug,
                     "Could not enable AXEnhancedUserInterface for PID 200 (error: 110)"),
              1U);
    EXPECT_THAT(bots(), ElementsAre(otter));
    EXPECT_THAT(tree.requested, SizeIs(5));
}

TEST_F(MeetingParticipantMonitorTest, looksAgainAtOnceWhenWhatItMissedHasBeenRead) {
    std::size_t passes = 0;
    const auto counter = monitor->lastScanDate.observe([&](const auto&) { ++passes; });
    passes = 0;
    inZoom({otter});
    tree.applications[chrome].isAnswering = false;
    const auto begin = loop.now();
    monitor->startMonitoring();
    EXPECT_EQ(passes, 0U) << "the first pass is a task of its own";
    loop.runPosted(); // asks for the windows, and looks at them when they have been read
    EXPECT_THAT(announced(), ElementsAre("+Zoom-otter.ai notetaker"));
    EXPECT_EQ(loop.now(), begin);
    EXPECT_EQ(passes, 2U);
    EXPECT_THAT(monitor->coverage->notReadYet,
                ElementsAre(UnseenMeetingWindow{chrome, "Chrome", "", ""}));

    inZoom({otter, "Fathom Notetaker"});
    tree.reads.call();
    loop.runPosted();
    EXPECT_EQ(passes, 2U) << "what is read over and over does not hurry the passes";
    tree.applications[chrome].isAnswering = true;
    tree.reads.call();
    tree.reads.call();
    loop.runPosted();
    EXPECT_EQ(passes, 3U);
    tree.reads.call();
    loop.runPosted();
    EXPECT_EQ(passes, 3U) << "nothing was missed";

    // A browser that was asked to expose its pages needs a moment.
    shows(chrome, "Meet – a", browserWindow("https://meet.google.com/a", {otter}));
    tree.applications[chrome].windows[0].isAnswering = false;
    loop.advance(5s);
    EXPECT_THAT(monitor->coverage->notReadYet,
                ElementsAre(UnseenMeetingWindow{chrome, "Chrome", "Meet – a", ""}));
    tree.applications[chrome].windows[0].isAnswering = true;
    tree.reads.call();
    announced();
    loop.runPosted();
    EXPECT_THAT(announced(), ElementsAre("+Google Meet-otter.ai notetaker"));
}

TEST_F(MeetingParticipantMonitorTest, saysWhetherWaitingForTheReaderGainsAnything) {
    tree.applications[zoom].windows = {{"Zoom Meeting", meetingWindow({otter})}, {"Chat", nullptr}};
    tree.applications[chrome].problem = "no answer";
    EXPECT_FALSE(monitor->readAhead());
    tree.enableError = EINPROGRESS;
    EXPECT_FALSE(monitor->readAhead());
    tree.enableError = ETIMEDOUT;
    EXPECT_TRUE(monitor->readAhead());
    auto& window = tree.applications[zoom].windows[0];
    window.isAnswering = false;
    EXPECT_FALSE(monitor->readAhead());
    window.problem = "it went away";
    EXPECT_TRUE(monitor->readAhead());
    tree.applications[chrome] = {
        .windows = {{.title = "Meet",
                     .tree = browserWindow("https://meet.google.com/a", {}),
                     .isReadWholly = false}}};
    EXPECT_FALSE(monitor->readAhead());
    EXPECT_EQ(monitor->lastScanDate.get(), std::nullopt);
    EXPECT_THAT(announced(), IsEmpty());
}

TEST_F(MeetingParticipantMonitorTest, mayBeCalledFromItsCallbacks) {
    std::size_t passes = 0;
    const auto counter = monitor->lastScanDate.observe([&](const auto&) { ++passes; });
    passes = 0;
    std::vector<std::size_t> listedWithin;
    monitor->onBotDetected = [&](const auto&) {
        listedWithin.push_back(monitor->participantBotDetections->size());
        monitor->performScan();
        monitor->stopMonitoring();
    };
    inZoom({otter, "Fathom Notetaker"});
    monitor->readAhead();
    monitor->startMonitoring();
    loop.advance(60s);
    EXPECT_EQ(passes, 1U);
    EXPECT_THAT(listedWithin, ElementsAre(0, 0)) << "the list changes after the callbacks";
    EXPECT_THAT(bots(), SizeIs(2));
    EXPECT_THAT(tree.requested, IsEmpty()) << "nothing is read any more";
    EXPECT_EQ(*monitor->activeMeetingPlatform, std::nullopt);
}

TEST_F(MeetingParticipantMonitorTest, keepsItsListWhileStoppedAndForgetsWhatHasBeenGoneForLong) {
    std::size_t passes = 0;
    const auto counter = monitor->lastScanDate.observe([&](const auto&) { ++passes; });
    inZoom({otter});
    monitor->readAhead();
    passes = 0;
    monitor->startMonitoring();
    monitor->startMonitoring();
    loop.advance(20s);
    EXPECT_EQ(passes, 5U);
    monitor->stopMonitoring();
    tree.applications[zoom].windows.clear();
    loop.advance(299s);
    EXPECT_EQ(passes, 5U);
    EXPECT_THAT(bots(), ElementsAre(otter));

    monitor->startMonitoring();
    loop.runPosted();
    EXPECT_THAT(bots(), ElementsAre(otter)) << "the application still runs";
    EXPECT_THAT(announced(), ElementsAre("+Zoom-otter.ai notetaker"));
    monitor->stopMonitoring();
    loop.advance(1h);
    monitor->startMonitoring();
    loop.advance(5s);
    EXPECT_THAT(announced(), ElementsAre("-Zoom-otter.ai notetaker"));
    EXPECT_EQ(logged(LogLevel::info, "Started participant list monitoring (poll interval: 5.0s)"),
              3U);
    EXPECT_EQ(logged(LogLevel::info, "Stopped participant list monitoring"), 2U);
}

TEST_F(MeetingParticipantMonitorTest, doesNothingWithoutPermission) {
    tree.isOn = false;
    start();
    inZoom({otter});
    monitor->startMonitoring();
    monitor->performScan();
    EXPECT_TRUE(monitor->readAhead()) << "there is nothing to wait for";
    loop.advance(60s);
    EXPECT_FALSE(*monitor->isMonitoring);
    EXPECT_EQ(monitor->lastScanDate.get(), std::nullopt);
    EXPECT_THAT(tree.requested, IsEmpty());
    EXPECT_THAT(
        log.messages,
        ElementsAre(LoggedMessage{
            LogLevel::info, "Cannot start participant monitoring: no Accessibility permission",
            "participant"}));
    tree.isOn = true;
    monitor->startMonitoring();
    loop.runPosted();
    EXPECT_THAT(bots(), ElementsAre(otter));
}

TEST_F(MeetingParticipantMonitorTest, leavesNothingBehindThatRunsAfterItsEnd) {
    inZoom({otter});
    monitor->startMonitoring();
    loop.runPosted();
    inZoom({"Fathom Notetaker"});
    loop.post([this] { monitor.reset(); });
    loop.advance(5s);
    tree.reads.call();
    loop.advance(60s);
    EXPECT_THAT(announced(), ElementsAre("+Zoom-otter.ai notetaker"));
}

} // namespace
} // namespace quorva
