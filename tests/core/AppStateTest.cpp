#include "core/AppStateTest.h"

#include "core/SightNotice.h"
#include "sources/MeetingFindings.h"

#include <fmt/format.h>

namespace quorva {
namespace {

TEST_F(AppStateTest, watchesAllSourcesAtTheFirstStart) {
    auto& app = start();
    EXPECT_TRUE(app.isMonitoring && app.sources.calendar.isWatching() &&
                app.sources.meeting.isWatching());
    EXPECT_TRUE(app.permissions.hasCalendarAccess() && !app.hasActiveThreats());
    EXPECT_EQ(computer.log.count("startMonitoring: process=on calendar=true participant=true"), 1U);
    app.startMonitoring();
    EXPECT_EQ(computer.log.count("startMonitoring"), 1U);
    EXPECT_EQ(app.stateText(), "All Clear");
    EXPECT_THAT(*app.limitations.all, IsEmpty());
}

TEST_F(AppStateTest, startsOnlyWhatMayLook) {
    computer.calendars.status = CalendarAuthorization::denied;
    computer.accessibility.isOn = false;
    auto& app = start();
    EXPECT_EQ(computer.log.count("startMonitoring: process=on calendar=false participant=false"),
              1U);
    EXPECT_EQ(app.stateText(), "Not fully watching: calendars, meetings");
    computer.preferences.values["autoStartMonitoring"] = false;
    EXPECT_EQ(start().stateText(), "Monitoring Off");
}

TEST_F(AppStateTest, recordsABotBeforeItTellsOfIt) {
    auto& app = start();
    computer.startOtter();
    app.sources.process.monitor.scan();
    EXPECT_THAT(titles(), IsEmpty());
    computer.loop.runPosted();

    EXPECT_THAT(history(), ElementsAre("Otter.ai/processPath"));
    const auto& shown = computer.notifications.posted.at(0);
    EXPECT_EQ(shown.identifier, "bot-detected-otter");
    EXPECT_EQ(shown.title, "AI Recorder Found");
    EXPECT_EQ(shown.body, "Otter.ai (Transcription) is running on your Mac");
    EXPECT_TRUE(shown.hasSound);
    EXPECT_EQ(*app.alertPanel.alert, (BotAlert{"Otter.ai", "macOS", "Transcription"}));
    EXPECT_TRUE(app.hasActiveThreats());
    EXPECT_EQ(app.stateText(), "1 Bot Detected");

    computer.processTable.end(100);
    computer.loop.advance(30s);
    const auto& gone = computer.notifications.posted.at(1);
    EXPECT_EQ(gone.title + ": " + gone.body, "Otter.ai Stopped: Otter.ai is no longer running");
    EXPECT_EQ(gone.identifier, "bot-gone-otter");
    EXPECT_FALSE(gone.hasSound);
    EXPECT_EQ(gone.categoryIdentifier, "");
    EXPECT_FALSE(app.hasActiveThreats());
    EXPECT_THAT(history(), testing::SizeIs(1));
    EXPECT_THAT(computer.notifications.delivered, testing::SizeIs(2)); // nothing is withdrawn
}

TEST_F(AppStateTest, tellsOfInvitationsParticipantsAndBanners) {
    computer.inviteOtter("E1", 45min);
    meet({"Otter.ai Notetaker", "This meeting is being recorded"});
    auto& app = start();
    computer.loop.advance(1s);

    EXPECT_THAT(titles(), testing::UnorderedElementsAre("Bot Invited to Upcoming Meeting",
                                                        "AI Recorder Found in Zoom",
                                                        "Meeting Being Recorded"));
    EXPECT_THAT(identifiers(),
                testing::UnorderedElementsAre("cal-bot-otter-cal-E1",
                                              "participant-bot-Zoom-otter.ai notetaker",
                                              "recording-indicator-Zoom-this meeting is being "
                                              "recorded"));
    EXPECT_THAT(history(), testing::UnorderedElementsAre("Otter.ai/calendarAttendee",
                                                         "Otter.ai/participantList",
                                                         "recording/recordingIndicator"));
    for (const auto& event : *app.detectionLog.records) {
        EXPECT_EQ(event.eventStartDate.has_value(), event.source == "calendar");
        EXPECT_EQ(event.eventTitle == "Meeting on Zoom", event.source != "calendar");
        EXPECT_EQ(event.confidence == 90 && event.category == "platform",
                  event.source == "indicator");
    }
    EXPECT_EQ(app.totalThreatCount(), 3U);
    EXPECT_EQ(app.stateText(), "3 Bots Detected");
    EXPECT_EQ(app.sources.meeting.monitor.activeMeetingPlatform.get(), "Zoom");
}

TEST_F(AppStateTest, recordsSilentlyWhereTheUserWantsNoNotifications) {
    computer.preferences.values["showNotifications"] = false;
    auto& app = start();
    computer.startOtter();
    computer.loop.advance(3s);
    computer.processTable.end(100);
    computer.loop.advance(30s);
    EXPECT_THAT(history(), testing::SizeIs(1));
    EXPECT_THAT(titles(), IsEmpty());
    EXPECT_FALSE(app.alertPanel.alert->has_value());
}

TEST_F(AppStateTest, hidesWhatTheUserAllows) {
    computer.preferences.values["allowedBotIds"] = std::vector<std::string>{"otter", "Otter.ai"};
    computer.startOtter();
    computer.inviteOtter("E1", 1h);
    meet({"Otter.ai Notetaker", "This meeting is being recorded"});
    auto& app = start();
    computer.loop.advance(3s);
    EXPECT_THAT(history(), testing::UnorderedElementsAre("Otter.ai/calendarAttendee",
                                                         "recording/recordingIndicator"));
    EXPECT_EQ(app.totalThreatCount(), 2U);

    app.removeFromAllowList("otter");
    EXPECT_THAT(listed(processFindings), testing::SizeIs(1));
    app.allow("otter-cal");
    EXPECT_THAT(listed(invitationFindings), IsEmpty());
    EXPECT_EQ(app.sources.describe("otter"), "Otter.ai, on this computer");
    EXPECT_EQ(app.sources.describe("otter-cal"), "Otter.ai, in invitations");
    start();
    EXPECT_THAT(listed(invitationFindings), IsEmpty());
    EXPECT_THAT(listed(processFindings), testing::SizeIs(1));
}

TEST_F(AppStateTest, showsAtStartWhatIsThereWhateverTheSettingsSay) {
    computer.preferences.values["showNotifications"] = false;
    computer.startOtter();
    computer.inviteOtter("E1", 1h);
    auto& app = start();
    computer.loop.advance(2.9s);
    EXPECT_FALSE(app.alertPanel.alert->has_value());
    computer.loop.advance(0.2s);
    EXPECT_EQ(*app.alertPanel.alert, (BotAlert{"Otter.ai", "macOS", "Transcription"}));

    computer.processTable.end(100);
    computer.preferences.values["allowedBotIds"] = std::vector<std::string>{"otter-cal"};
    meet({"This meeting is being recorded"});
    auto& later = start();
    computer.loop.advance(3.1s);
    EXPECT_EQ(*later.alertPanel.alert, (BotAlert{"recording", "Zoom", "Recording"}))
        << "a banner, where there is nothing else";
}

TEST_F(AppStateTest, showsEachAlertForEightSecondsOfItsOwn) {
    auto& app = start();
    app.alertPanel.show({"A", "Zoom", "Sales"});
    computer.loop.advance(2s);
    app.alertPanel.show({"B", "Zoom", "Sales"});
    computer.loop.advance(7.9s);
    EXPECT_EQ((*app.alertPanel.alert)->botName, "B");
    computer.loop.advance(0.2s);
    EXPECT_FALSE(app.alertPanel.alert->has_value());

    app.alertPanel.show({"C", "Zoom", "Sales"});
    app.alertPanel.dismiss();
    computer.loop.advance(3s);
    app.alertPanel.show({"D", "Zoom", "Sales"});
    computer.loop.advance(7.9s);
    EXPECT_TRUE(app.alertPanel.alert->has_value());
}

TEST_F(AppStateTest, startsAndStopsAMonitorWithItsSwitch) {
    auto& app = start();
    app.toggleCalendarMonitor();
    app.toggleParticipantMonitor();
    EXPECT_FALSE(app.sources.calendar.isWatching() || app.sources.meeting.isWatching());
    EXPECT_EQ(computer.preferences.read<bool>("calendarMonitorEnabled").value, false);
    start().stopMonitoring();
    state->toggleCalendarMonitor(); // on again, but monitoring is off as a whole
    EXPECT_FALSE(state->sources.calendar.isWatching());
    state->startMonitoring();
    EXPECT_TRUE(state->sources.calendar.isWatching());
    EXPECT_FALSE(state->sources.meeting.isWatching());
}

TEST_F(AppStateTest, keepsTheListsWhenItStopsWatching) {
    computer.startOtter();
    auto& app = start();
    app.stopMonitoring();
    computer.processTable.end(100);
    computer.loop.advance(60s);
    EXPECT_THAT(listed(processFindings), testing::SizeIs(1));
    EXPECT_EQ(app.stateText(), "Monitoring Off");
    app.startMonitoring();
    app.refreshAllScans(); // looks anew, without the grace of what was seen before
    computer.loop.runPosted();
    EXPECT_THAT(listed(processFindings), IsEmpty());
}

TEST_F(AppStateTest, neitherReadsNorListsASourceThatIsSwitchedOff) {
    computer.startOtter();
    computer.inviteOtter("E1", 1h);
    meet({"Otter.ai Notetaker"});
    auto& app = start();
    computer.loop.advance(6s);
    ASSERT_EQ(app.totalThreatCount(), 3U);
    app.toggleParticipantMonitor();
    app.toggleCalendarMonitor();
    EXPECT_EQ(listed(participantFindings).size() + listed(invitationFindings).size(), 0U);
    const auto fetches = computer.calendars.fetches.size();
    app.refreshAllScans();
    computer.loop.advance(60s);
    EXPECT_THAT(computer.accessibility.requested, IsEmpty());
    EXPECT_EQ(computer.calendars.fetches.size(), fetches);
    EXPECT_EQ(app.totalThreatCount(), 1U);

    app.toggleParticipantMonitor();
    computer.loop.advance(6s);
    EXPECT_THAT(listed(participantFindings), testing::SizeIs(1));
}

TEST_F(AppStateTest, saysNothingOfTheEndOfAnAllowedProduct) {
    computer.startOtter();
    auto& app = start();
    computer.loop.runPosted();
    app.allow("otter");
    computer.processTable.end(100);
    computer.loop.advance(60s);
    EXPECT_THAT(titles(), ElementsAre("AI Recorder Found"));
}

TEST_F(AppStateTest, isClearOnlyWhenEverySourceHasLookedEverywhere) {
    computer.calendars.answersAtOnce = false;
    state.emplace(computer.services);
    EXPECT_EQ(state->verdict(), Verdict::scanning) << "from the first moment";
    computer.loop.advance(5s);
    EXPECT_EQ(state->verdict(), Verdict::scanning);
    EXPECT_EQ(state->stateText(), "Scanning");
    computer.calendars.answerFetch();
    computer.loop.runPosted();
    EXPECT_EQ(state->verdict(), Verdict::clear);

    computer.accessibility.isOn = false;
    computer.accessibility.trustChanges.call();
    computer.loop.runPosted();
    EXPECT_EQ(state->verdict(), Verdict::notFullyWatching);
    computer.startOtter();
    computer.loop.advance(3s);
    EXPECT_EQ(state->verdict(), Verdict::found);
    EXPECT_EQ(state->stateText(), "1 Bot Detected, but not seen: meetings");
    state->stopMonitoring();
    computer.loop.runPosted();
    EXPECT_EQ(state->verdict(), Verdict::off);
    EXPECT_EQ(state->stateText(), "Monitoring Off");

    computer.processTable.end(100);
    computer.accessibility.isOn = true;
    computer.loop.advance(60s);
    state->startMonitoring();
    computer.loop.advance(5s);
    EXPECT_EQ(state->verdict(), Verdict::scanning) << "what was seen before does not count";
    computer.calendars.answerFetch();
    computer.loop.runPosted();
    EXPECT_EQ(state->verdict(), Verdict::clear);
}

TEST_F(AppStateTest, staysCalmAfterEightHoursAsleep) {
    computer.startOtter();
    computer.inviteOtter("E1", 10h);
    meet({"Otter.ai Notetaker"});
    auto& app = start();
    computer.loop.advance(60s);
    const auto before = titles().size();
    computer.loop.suspend(8h);
    computer.loop.advance(600s);
    EXPECT_THAT(titles(), testing::SizeIs(before));
    EXPECT_EQ(app.totalThreatCount(), 3U);
    computer.processTable.end(100);
    computer.loop.advance(60s);
    EXPECT_THAT(titles(), testing::SizeIs(before + 1));
}

TEST_F(AppStateTest, keepsUpWithMoreDetectionsThanItRemembers) {
    auto& app = start();
    for (int index = 0; index < 1'500; ++index)
        app.sources.process.monitor.onBotDetected({.id = fmt::format("otter-{}", index),
                                                   .signatureId = "otter",
                                                   .name = fmt::format("Otter {}", index),
                                                   .detectedAt = computer.loop.now()});
    computer.loop.runPosted();
    EXPECT_THAT(*app.detectionLog.records, testing::SizeIs(500));
    EXPECT_EQ(app.detectionLog.records->front().botName, "Otter 1000");
    EXPECT_EQ((*app.alertPanel.alert)->botName, "Otter 1499");
    EXPECT_THAT(computer.notifications.delivered, testing::SizeIs(1));
    start();
    EXPECT_THAT(*state->detectionLog.records, testing::SizeIs(500));
    EXPECT_EQ(state->detectionLog.records->back().botName, "Otter 1499");
}

/// A source whose loss of sight the test tells.
class BlindSource final : public Source {
public:
    using Source::sightLost;
    explicit BlindSource(MainLoop& loop_) : Source(meetingProfile, loop_) {}
    [[nodiscard]] bool isWatching() const override { return true; }
    void refresh() override {}
    [[nodiscard]] std::string detail() const override { return {}; }
    [[nodiscard]] std::string productNamed(std::string_view) const override { return {}; }

private:
    [[nodiscard]] bool mayLook() const override { return true; }
    void startWatching() override {}
    void stopWatching() override {}
    void look(Task done) override { done(); }
    void awaitLook(Task done) override { done(); }
    [[nodiscard]] SourceState sight() const override { return {}; }
    [[nodiscard]] SourceState obstacle() const override { return {}; }
    [[nodiscard]] Findings list() const override { return {}; }
};

TEST_F(AppStateTest, tellsQuietlyWhatWentOutOfSightAndKeepsItInTheHistory) {
    const std::string text = "Google Meet is in a background tab: who joins it is not seen.";
    auto& app = start();
    BlindSource source(computer.loop);
    source.onSightLost = app.sources.meeting.onSightLost;
    source.sightLost(text);
    EXPECT_THAT(history(), IsEmpty()) << "a task of its own";
    computer.loop.runPosted();
    ASSERT_THAT(titles(), ElementsAre("Not fully watching"));
    const auto& shown = computer.notifications.posted.front();
    EXPECT_EQ(shown.body, text);
    EXPECT_EQ(shown.urgency, NotificationUrgency::low);
    EXPECT_TRUE(!shown.hasSound && shown.categoryIdentifier.empty());
    EXPECT_FALSE(app.alertPanel.alert->has_value());
    EXPECT_FALSE(app.hasActiveThreats());

    app.settings.set(&Settings::showNotifications, false);
    for (int each = 0; each < 50; ++each)
        source.sightLost(text);
    computer.loop.runPosted();
    EXPECT_THAT(titles(), testing::SizeIs(1));
    start(); // what is stored is as another version reads it
    const auto& kept = *state->detectionLog.records;
    ASSERT_THAT(kept, testing::SizeIs(20));
    EXPECT_EQ(kept.front().botName, "Not seen: " + text);
    EXPECT_EQ(sightLostText(kept.front()), text);
    EXPECT_THAT(kept.back().botName, testing::HasSubstr("There may be more"));
    EXPECT_FALSE(sightLostText({.botName = "Not seen: Inc.", .method = "processName"}));
}

/// Preferences on a disk that is slow, or full: nothing gets safe before the test says so.
class SlowPreferences final : public Preferences {
public:
    explicit SlowPreferences(Preferences& inner_) : inner(inner_) {}
    std::vector<Task> waiting;
    std::vector<std::string> keys; ///< in the order in which they were set

    [[nodiscard]] std::optional<PreferenceValue> value(std::string_view key) const override {
        return inner.value(key);
    }
    void set(std::string_view key, PreferenceValue value, Task onDurable) override {
        keys.emplace_back(key);
        inner.set(key, std::move(value));
        if (onDurable)
            waiting.push_back(std::move(onDurable));
    }
    void remove(std::string_view key, Task) override { inner.remove(key); }

private:
    Preferences& inner;
};

TEST_F(AppStateTest, tellsOfABotOnceItsRecordIsSafeOrTheDiskTakesTooLong) {
    SlowPreferences disk(computer.preferences);
    AppServices services{computer.platform,      disk,
                         computer.notifications, computer.speech,
                         computer.audioDevices,  computer.clipboard,
                         computer.loginItem,     computer.systemSettings,
                         computer.detectionTest};
    computer.inviteOtter("E1", 1h);
    AppState app(services);
    computer.loop.runPosted();
    EXPECT_THAT(titles(), IsEmpty());
    ASSERT_THAT(disk.waiting, testing::SizeIs(1));
    disk.waiting.front()();
    EXPECT_THAT(titles(), testing::SizeIs(1));
    // A crash in between loses the memory of having announced it, not the announcement.
    const auto position = [&](std::string_view key) {
        return std::find(disk.keys.rbegin(), disk.keys.rend(), key);
    };
    EXPECT_LT(position("calendarAlertedDetections"), position("detectionLog"));

    computer.startOtter();
    computer.loop.advance(4s);
    EXPECT_THAT(titles(), testing::SizeIs(1));
    computer.loop.advance(2s);
    EXPECT_THAT(titles(), testing::SizeIs(2));
}

} // namespace
} // namespace quorva
