// Permissions, what is missing, and the windows that ask.
#include "core/AppDelegate.h"
#include "core/AppStateTest.h"
#include "core/CalendarConsentDialog.h"
#include "core/Updates.h"

namespace quorva {
namespace {

using PermissionsTest = AppStateTest;

TEST_F(PermissionsTest, noticesAccessibilityBeingSwitchedOnElsewhere) {
    computer.accessibility.isOn = false;
    auto& app = start();
    EXPECT_TRUE(app.permissions.isRechecking() && !app.sources.meeting.isWatching());
    computer.accessibility.isOn = true; // and the bus says nothing
    computer.loop.advance(5s);
    EXPECT_TRUE(app.permissions.hasAccessibilityPermission() && app.sources.meeting.isWatching());
    EXPECT_FALSE(app.permissions.isRechecking());
    EXPECT_EQ(computer.log.count("Accessibility permission observed granted"), 1U);

    computer.accessibility.isOn = false;
    computer.accessibility.trustChanges.call();
    computer.loop.runPosted();
    EXPECT_EQ(app.stateText(), "Not fully watching: meetings");
    EXPECT_TRUE(app.permissions.isRechecking());
}

TEST_F(PermissionsTest, switchesAccessibilityOnAtTheUsersWish) {
    computer.accessibility.isOn = false;
    auto& app = start();
    computer.accessibility.grantsTrust = false;
    app.permissions.requestAccessibilityPermission();
    EXPECT_FALSE(app.permissions.hasAccessibilityPermission());
    computer.accessibility.grantsTrust = true;
    app.permissions.requestAccessibilityPermission();
    computer.loop.runPosted();
    EXPECT_TRUE(app.sources.meeting.isWatching());
}

TEST_F(PermissionsTest, asksForTheCalendarsAndClosesTheWindowAfterAGrant) {
    computer.calendars.status = CalendarAuthorization::notDetermined;
    computer.calendars.answer.granted = false;
    auto& app = start();
    app.showCalendarPermissionWindow();
    computer.loop.advance(5s);
    EXPECT_TRUE(app.calendarWindow) << "it leads to the settings after a refusal";

    computer.calendars.answer.granted = true;
    computer.calendars.status = CalendarAuthorization::restricted;
    app.showCalendarPermissionWindow();
    computer.loop.advance(5s);
    EXPECT_TRUE(app.calendarWindow) << "it says what is missing";

    computer.calendars.accounts = {{"Work", CalendarSourceType::calDAV}};
    app.showCalendarPermissionWindow();
    computer.calendars.status = CalendarAuthorization::fullAccess;
    computer.loop.advance(0.6s);
    EXPECT_TRUE(app.permissions.hasCalendarAccess() && app.sources.calendar.isWatching());
    EXPECT_TRUE(app.calendarWindow);
    computer.loop.advance(0.8s);
    EXPECT_FALSE(app.calendarWindow);

    EXPECT_TRUE(app.permissions.needsCalendarAccountSetup());
    computer.calendars.accounts.push_back(
        {"ann@gmail.com", CalendarSourceType::calDAV, CalendarProvider::google});
    computer.calendars.changes.call();
    EXPECT_FALSE(app.permissions.needsCalendarAccountSetup());
    EXPECT_EQ(*app.permissions.calendarAccounts, computer.calendars.accounts);
}

TEST_F(PermissionsTest, looksAtTheSoundDevicesOnce) {
    computer.audioDevices.devices = std::vector<AudioDevice>{
        {1, std::nullopt}, {2, "Speakers"}, {7, "BLACKHOLE 2ch"}, {8, "BlackHole 16ch", true}};
    auto& app = start();
    EXPECT_TRUE(app.permissions.blackHoleDetector.isInstalled &&
                app.permissions.blackHoleDetector.hasMicrophone);
    computer.audioDevices.devices = std::nullopt;
    EXPECT_FALSE(start().permissions.blackHoleDetector.isInstalled);
    BlackHoleDetector none(computer.audioDevices);
    EXPECT_FALSE(none.blackHoleDeviceID->has_value());
    computer.audioDevices.devices = std::vector<AudioDevice>{{3, "My BlackHole"}, {4, "blackhole"}};
    EXPECT_EQ(*BlackHoleDetector(computer.audioDevices).blackHoleDeviceID, 3U);
}

TEST_F(PermissionsTest, saysWhatIsMissingAndWhatThatCosts) {
    computer.notifications.state = {NotificationService::State::absent, false};
    computer.speech.fault = "No speech service is installed.";
    computer.processTable.canBeListed = false;
    computer.calendars.failed = {{"Work", "it does not answer"}};
    auto& app = start();
    app.limitations.setTray(false);
    computer.loop.runPosted();
    std::vector<std::string> parts;
    for (const auto& limitation : *app.limitations.all)
        parts.push_back(limitation.part);
    EXPECT_THAT(parts,
                ElementsAre("process", "calendar", "meeting", "notifications", "speech", "tray"));
    EXPECT_EQ(computer.log.count("Objections are not spoken: No speech service is installed."), 1U);
    EXPECT_EQ(app.stateText(), "Not fully watching: this computer, calendars, meetings");

    computer.speech.fault.reset();
    computer.speech.faultChanges.call();
    computer.notifications.become({NotificationService::State::present, false});
    computer.loop.runPosted();
    EXPECT_EQ(computer.log.count("No longer so: Objections are not spoken"), 1U);
    EXPECT_EQ(app.limitations.all->at(3).text,
              "The notification server shows no buttons: object from Quorva's menu.");
    computer.notifications.become({NotificationService::State::silent, false});
    computer.loop.runPosted();
    EXPECT_THAT(app.limitations.all->at(3).text, testing::HasSubstr("does not answer"));
    app.settings.set(&Settings::showNotifications, false);
    app.toggleCalendarMonitor(); // what is switched off is not missing
    app.stopMonitoring();
    computer.loop.runPosted();
    EXPECT_THAT(*app.limitations.all, testing::SizeIs(1));
}

TEST_F(PermissionsTest, namesThreeWindowsAndSaysHowManyMoreThereAre) {
    auto process = ProcessIdentifier{500};
    for (const auto* const name : {"Zoom", "Slack", "Web\nex", "Teams", "Meet"}) {
        computer.applications.running.push_back({"us.zoom.xos", name, std::nullopt, process});
        computer.accessibility.applications[process++].problem = "no answer";
    }
    auto& app = start();
    computer.loop.advance(1s);
    ASSERT_EQ(app.limitations.all->size(), 1U);
    EXPECT_EQ(app.limitations.all->at(0).text,
              "Windows that can't be looked at: Zoom (no answer), Slack (no answer), "
              "Web\\nex (no answer) and 2 more. Bots in their meetings are not seen.");
}

/// Every source goes from what it is not allowed to look at through looking to its verdict.
TEST_F(PermissionsTest, aSourceHasOneStateAtATime) {
    using enum SourceState::Kind;
    computer.calendars.status = CalendarAuthorization::denied;
    computer.calendars.answersAtOnce = false;
    computer.accessibility.isOn = false;
    auto& app = start();
    const auto states = [&] {
        std::vector<SourceState::Kind> kinds;
        for (const auto* const source : app.sources)
            kinds.push_back(source->state->kind);
        return kinds;
    };
    EXPECT_THAT(states(), ElementsAre(ok, notAllowed, notAllowed));
    computer.calendars.status = CalendarAuthorization::fullAccess;
    computer.accessibility.isOn = true;
    app.permissions.refresh();
    computer.loop.runPosted();
    EXPECT_THAT(states(), ElementsAre(ok, looking, ok));
    EXPECT_EQ(app.stateText(), "Scanning");
    computer.calendars.failed = {{"Work", "it does not answer"}};
    computer.calendars.answerFetch();
    computer.loop.runPosted();
    EXPECT_THAT(states(), ElementsAre(ok, partlyBlind, ok));
    computer.calendars.status = CalendarAuthorization::restricted;
    app.permissions.refresh();
    app.toggleParticipantMonitor();
    computer.loop.runPosted();
    EXPECT_THAT(states(), ElementsAre(ok, notAvailable, off));
    EXPECT_EQ(app.stateText(), "Not fully watching: calendars");
}

TEST_F(PermissionsTest, watchesCalendarsThatComeAndGo) {
    computer.calendars.status = CalendarAuthorization::restricted;
    auto& app = start();
    EXPECT_FALSE(app.sources.calendar.isWatching());
    EXPECT_EQ(app.stateText(), "Not fully watching: calendars");
    const auto become = [&](CalendarAuthorization status) {
        computer.calendars.status = status;
        computer.loop.advance(31s);
        computer.calendars.changes.call();
        computer.loop.runPosted();
    };
    computer.inviteOtter("event", 3h);
    for (int round = 0; round < 2; ++round) {
        become(CalendarAuthorization::fullAccess);
        EXPECT_TRUE(app.sources.calendar.isWatching());
        EXPECT_EQ(app.stateText(), "1 Bot Detected");
        become(CalendarAuthorization::restricted);
        EXPECT_EQ(app.stateText(), "1 Bot Detected, but not seen: calendars");
    }
    app.toggleCalendarMonitor();
    become(CalendarAuthorization::fullAccess);
    EXPECT_TRUE(app.permissions.hasCalendarAccess());
    app.toggleCalendarMonitor();
    EXPECT_TRUE(app.sources.calendar.isWatching());
}

TEST_F(PermissionsTest, leadsTheFirstRunToMonitoring) {
    computer.preferences.values["autoStartMonitoring"] = false;
    auto& app = start();
    AppDelegate delegate(app, computer.loop);
    delegate.didFinishLaunching();
    computer.loop.advance(0.4s);
    EXPECT_FALSE(delegate.onboardingWindow);
    computer.loop.advance(0.2s);
    EXPECT_TRUE(delegate.onboardingWindow);
    app.completeOnboarding();
    EXPECT_TRUE(app.isMonitoring);

    AppDelegate next(start(), computer.loop);
    next.didFinishLaunching();
    computer.loop.advance(1s);
    EXPECT_FALSE(next.onboardingWindow);
}

TEST(CalendarConsentDialogTest, keepsTheAnswerAndAsksAgainAfterARefusal) {
    VirtualMainLoop loop;
    MemoryPreferences preferences(loop);
    CalendarConsentDialog dialog(preferences);
    EXPECT_EQ(dialog.status(), CalendarAuthorization::notDetermined);
    std::vector<bool> answers;
    const auto ask = [&] {
        dialog.request(
            [&](const CalendarStore::AccessAnswer& answer) { answers.push_back(answer.granted); });
    };
    ask();
    ask();
    EXPECT_TRUE(dialog.isAsking);
    dialog.answer(false);
    EXPECT_EQ(CalendarConsentDialog(preferences).status(), CalendarAuthorization::denied);
    ask();
    dialog.answer(true);
    dialog.answer(false); // nobody asks any more
    ask();
    EXPECT_THAT(answers, ElementsAre(false, false, true, true));
    EXPECT_EQ(CalendarConsentDialog(preferences).status(), CalendarAuthorization::fullAccess);
    preferences.values["calendarAuthorization"] = std::int64_t{17};
    EXPECT_EQ(dialog.status(), CalendarAuthorization::notDetermined);
}

TEST(DetectionTrialTest, keepsWhatOneTrialAtATimeHasSaid) {
    FakeDetectionTest test;
    DetectionTrial trial(test);
    trial.start();
    test.onLine("process ok");
    trial.start();
    EXPECT_EQ(test.runs, 1);
    test.onLine("Every link works.");
    test.done(true);
    EXPECT_THAT(*trial.lines, ElementsAre("process ok", "Every link works."));
    trial.start();
    EXPECT_THAT(*trial.lines, IsEmpty());
    EXPECT_TRUE(trial.isRunning);
}

TEST(UpdatesTest, asksOnceADayWhereThatIsSwitchedOn) {
    VirtualMainLoop loop;
    MemoryPreferences preferences(loop);
    FakeUpdateService service;
    service.answer = {UpdateAnswer::Kind::available, "2.0", {}};
    {
        Updates updates(loop, preferences, service);
        loop.advance(48h);
        EXPECT_EQ(service.checks, 0);
        updates.setChecksAutomatically(true);
        loop.advance(25h);
        EXPECT_EQ(service.checks, 2);
        EXPECT_EQ((*updates.answer)->version, "2.0");
    }
    Updates again(loop, preferences, service);
    loop.runPosted();
    EXPECT_EQ(service.checks, 3);
}

} // namespace
} // namespace quorva
