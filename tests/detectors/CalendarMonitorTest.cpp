#include "detectors/CalendarMonitor.h"

#include "platform/linux/storage/OpenSslSha256.h"
#include "support/FakeCalendarStore.h"
#include "support/MemoryPreferences.h"
#include "support/RecordingLog.h"
#include "support/VirtualMainLoop.h"

#include <gmock/gmock.h>

namespace quorva {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using Texts = std::vector<std::string>;

class CalendarMonitorTest : public testing::Test {
protected:
    CalendarMonitorTest() { start(); }

    /// Starts the program, or starts it again, with the preferences of before.
    void start() {
        monitor.emplace(loop, store, preferences, log, openSslSha256);
        monitor->onBotDetected = [this](const auto& bot) { events.push_back("+" + bot.id); };
        monitor->onBotDisappeared = [this](const auto& bot) { events.push_back("-" + bot.id); };
    }
    Texts announced() { return std::exchange(events, {}); }
    Texts listed() const {
        Texts ids;
        for (const auto& detection : *monitor->calendarDetections)
            ids.push_back(detection.id);
        return ids;
    }
    Texts stored(const char* key) const {
        return preferences.read<Texts>(key).value.value_or(Texts{"nothing"});
    }
    CalendarEvent event(std::string id, Seconds fromNow,
                        std::vector<CalendarParticipant> attendees) const {
        const auto begin = loop.now() + std::chrono::round<Time::duration>(fromNow);
        return {id, "Salary talk", begin, begin + 1h, false, std::move(attendees), "Work"};
    }

    const CalendarParticipant otter{"Otter", "mailto:notetaker@otter.ai"};
    const CalendarParticipant anna{"Anna Bell", "mailto:anna@example.com"};
    VirtualMainLoop loop; // at 2026-03-02 09:00
    FakeCalendarStore store;
    MemoryPreferences preferences{loop};
    RecordingLog log;
    std::optional<CalendarMonitor> monitor;
    Texts events;
};

TEST_F(CalendarMonitorTest, describesWhatItFindsWithoutTheTitleOfTheMeeting) {
    store.events = {event("E1", 1h, {anna, {"Anna's Notetaker (Otter.ai)", "urn:uuid:1"}}),
                    event("E2", 30min, {{std::nullopt, "MAILTO:NoteTaker-7@Example.COM "}}),
                    event("E3", 1h, {{"Scribe@Example.com", ""}}),
                    event("E4", 2h, {{"", "x-mailto:mailto:a@eu.gong.io"}})};
    monitor->startMonitoring();

    EXPECT_THAT(announced(),
                ElementsAre("+generic-bot-E2", "+otter-cal-E1", "+generic-bot-E3", "+gong-cal-E4"));
    const auto& found = *monitor->calendarDetections;
    EXPECT_THAT(listed(), // by start; those that start together in the order they were found
                ElementsAre("generic-bot-E2", "otter-cal-E1", "generic-bot-E3", "gong-cal-E4"));
    const auto now = loop.now();
    EXPECT_EQ(found[0], (CalendarBotDetection{
                            "generic-bot-E2", "generic-notetaker", "Unknown Bot (notetaker@...)",
                            BotCategory::unknown, 55, "notetaker-7@example.com", std::nullopt,
                            "Calendar Event", now + 30min, now + 90min, "E2", "Work", now}));
    EXPECT_EQ(found[1], (CalendarBotDetection{"otter-cal-E1", "otter-cal", "Otter.ai",
                                              BotCategory::transcription, 75, "unknown",
                                              "Anna's Notetaker (Otter.ai)", "Calendar Event",
                                              now + 1h, now + 2h, "E1", "Work", now}));
    EXPECT_EQ(found[2].matchedEmail, "scribe@example.com");
    EXPECT_EQ(found[3].matchedEmail, "x-a@eu.gong.io");
    EXPECT_EQ(found[3].confidence, 85);
    EXPECT_THAT(store.fetches, ElementsAre(std::pair(now, now + 24h)));
    loop.runPosted();
    // sha256sum of "generic-notetaker|E2", the first half.
    EXPECT_THAT(stored("calendarAlertedDetections"),
                testing::Contains("f67415fb86d68265087c7ca34f276c26"));
    EXPECT_THAT(log.messages, IsEmpty());
}

TEST_F(CalendarMonitorTest, leavesOutWhoDoesNotComeAndWhatIsNoMeeting) {
    auto declined = otter;
    declined.status = ParticipantStatus::declined;
    auto self = otter;
    self.isCurrentUser = true;
    auto allDay = event("allDay", 1h, {otter});
    allDay.isAllDay = true;
    store.events = {event("running", -59min, {otter}),
                    event("E1", 1h, {declined, self, anna}),
                    event("E2", 2h, {}),
                    allDay,
                    event("E3", 3h, {otter, otter, {"OtterPilot", ""}}),
                    event("E4", 25h, {otter})};
    monitor->scanCalendar(); // also without monitoring
    EXPECT_THAT(announced(), ElementsAre("+otter-cal-running", "+otter-cal-E3"));

    store.events = {event("", 1h, {otter}), event("", 2h, {otter})};
    for (auto& nameless : store.events)
        nameless.eventIdentifier.reset();
    store.events[1].title.reset();
    monitor->scanCalendar();
    EXPECT_THAT(listed(), ElementsAre("otter-cal-Salary talk-2026-03-02T10:00:00Z",
                                      "otter-cal-untitled-2026-03-02T11:00:00Z"));
}

TEST_F(CalendarMonitorTest, takesAnOrganizerForAProductButNotForAnUnknownBot) {
    auto assistant = CalendarParticipant{"Ada", "mailto:assistant@lawfirm.example"};
    auto product = otter;
    auto named = CalendarParticipant{"Fathom Notetaker", "mailto:notetaker@example.com"};
    assistant.isOrganizer = product.isOrganizer = named.isOrganizer = true;
    store.events = {event("E1", 1h, {assistant}), event("E2", 2h, {product}),
                    event("E3", 3h, {named})};
    monitor->scanCalendar();
    EXPECT_THAT(listed(), ElementsAre("otter-cal-E2", "fathom-cal-E3"));
}

TEST_F(CalendarMonitorTest, announcesEachFindOnceAlsoAcrossRestarts) {
    store.events = {event("E1", 2h, {otter}), event("E2", 3h, {otter})};
    monitor->startMonitoring();
    loop.advance(20min);
    EXPECT_THAT(announced(), ElementsAre("+otter-cal-E1", "+otter-cal-E2"));

    start();
    store.events.push_back(event("E3", 1h, {otter}));
    Texts seenWithin{"never called"};
    monitor->onBotDetected = [&](const auto&) { seenWithin = listed(); };
    monitor->startMonitoring();
    EXPECT_THAT(seenWithin, IsEmpty()); // the list changes after the callbacks
    EXPECT_THAT(listed(), ElementsAre("otter-cal-E3", "otter-cal-E1", "otter-cal-E2"));

    store.events.erase(store.events.begin());
    loop.advance(10min);
    EXPECT_THAT(announced(), ElementsAre("-otter-cal-E1"));
}

TEST_F(CalendarMonitorTest, forgetsForGoodWhatIsDismissed) {
    store.events = {event("E1", 2h, {otter}), event("E2", 3h, {otter})};
    monitor->startMonitoring();
    monitor->dismiss(monitor->calendarDetections->front());
    EXPECT_THAT(listed(), ElementsAre("otter-cal-E2"));
    loop.advance(10min);
    EXPECT_THAT(announced(), ElementsAre("+otter-cal-E1", "+otter-cal-E2"));
    start();
    monitor->startMonitoring();
    EXPECT_THAT(listed(), ElementsAre("otter-cal-E2"));
    EXPECT_THAT(announced(), IsEmpty());

    // A callback may dismiss what is listed.
    monitor->onBotDisappeared = [&](const auto& bot) { monitor->dismiss(bot); };
    store.events.clear();
    loop.advance(5min);
    EXPECT_THAT(listed(), IsEmpty());
    EXPECT_EQ(stored("calendarDismissedDetections").size(), 2U);
}

TEST_F(CalendarMonitorTest, followsChangesButNotInBursts) {
    const auto expectScans = [&](std::size_t count) { EXPECT_EQ(store.fetches.size(), count); };
    monitor->startMonitoring();
    loop.advance(30s);
    store.changes.call();
    expectScans(2);
    loop.advance(10s);
    store.events = {event("E1", 1h, {otter})};
    store.changes.call();
    loop.advance(19s);
    store.changes.call(); // one burst with the change before
    expectScans(2);
    loop.advance(1s);
    expectScans(3);
    EXPECT_THAT(announced(), ElementsAre("+otter-cal-E1"));
    loop.advance(40s); // nothing is left of the burst
    expectScans(3);
    loop.advance(180s);
    store.changes.call();
    expectScans(4);
    loop.advance(20s); // the timer does not care
    expectScans(5);
    loop.advance(15s);
    store.changes.call();
    monitor->scanCalendar(); // sees that change
    loop.advance(100s);
    expectScans(6);

    store.changes.call();
    loop.advance(10s);
    store.changes.call();
    monitor->stopMonitoring();
    expectScans(7);
    loop.advance(1h);
    store.changes.call();
    expectScans(7);
    EXPECT_FALSE(*monitor->isMonitoring);
}

TEST_F(CalendarMonitorTest, waitsForSlowCalendarsWithOneScanAtATime) {
    store.answersAtOnce = false;
    store.events = {event("E1", 2h, {otter})};
    const auto begin = loop.now();
    monitor->startMonitoring();
    loop.advance(8s);
    monitor->scanCalendar();
    monitor->scanCalendar();
    EXPECT_EQ(store.fetches.size(), 1U);
    store.answerFetch();
    EXPECT_EQ(monitor->lastScanDate.get(), begin);
    EXPECT_THAT(announced(), ElementsAre("+otter-cal-E1"));
    loop.runPosted();
    EXPECT_EQ(store.fetches.size(), 2U);
    store.answerFetch();
    loop.runPosted();
    EXPECT_EQ(store.fetches.size(), 2U);

    monitor->scanCalendar(); // stopping ends the scan under way
    monitor->stopMonitoring();
    EXPECT_FALSE(store.isFetching());
    monitor->startMonitoring();
    EXPECT_EQ(store.fetches.size(), 4U);
    store.events.clear();
    store.status = CalendarAuthorization::denied; // while the calendars were being read
    store.answerFetch();
    EXPECT_FALSE(*monitor->isMonitoring);
    EXPECT_THAT(listed(), ElementsAre("otter-cal-E1"));

    store.status = CalendarAuthorization::fullAccess;
    monitor->scanCalendar();
    monitor.reset();
    store.answerFetch(); // to nobody
    EXPECT_THAT(announced(), IsEmpty());
}

TEST_F(CalendarMonitorTest, doesNotTakeAFailedCalendarForAnEmptyOne) {
    auto other = event("E2", 1h, {otter});
    other.calendarName = "Home";
    store.events = {event("E1", 30min, {otter}), other};
    monitor->startMonitoring();
    announced();
    store.failed = {{"Work", "no answer"}};
    store.events.clear();
    loop.advance(10min);
    EXPECT_THAT(announced(), ElementsAre("-otter-cal-E2"));
    EXPECT_THAT(listed(), ElementsAre("otter-cal-E1"));
    EXPECT_THAT(*monitor->failedCalendars,
                ElementsAre(FailedCalendar{"Work", "no answer", "Work/"}));
    loop.advance(80min);
    EXPECT_THAT(listed(), ElementsAre("otter-cal-E1"));
    EXPECT_EQ(log.count("\"Work\" can't be read: no answer"), 1U);
    loop.advance(5min); // its event has ended
    EXPECT_THAT(announced(), ElementsAre("-otter-cal-E1"));

    store.failed.clear();
    loop.advance(5min);
    EXPECT_THAT(*monitor->failedCalendars, IsEmpty());
    store.failed = {{"Work", "no answer"}};
    loop.advance(5min);
    EXPECT_EQ(log.messages.size(), 2U); // it fails anew
}

TEST_F(CalendarMonitorTest, tellsCalendarsOfOneNameApart) {
    store.events = {event("E1", 1h, {otter}), event("E2", 2h, {otter})};
    store.events[0].calendarIdentifier = "service/a/";
    store.events[1].calendarIdentifier = "service/b/";
    const auto all = store.events;
    monitor->startMonitoring();
    announced();
    store.events.clear();
    store.failed = {{"Work", "no answer", "service/a/"}};
    loop.advance(5min);
    EXPECT_THAT(announced(), ElementsAre("-otter-cal-E2"));
    EXPECT_THAT(listed(), ElementsAre("otter-cal-E1"));
    store.failed.push_back({"Work", "no answer", "service/b/"});
    loop.advance(5min);
    EXPECT_EQ(log.count("\"Work\" can't be read"), 2U);

    store.failed.clear();
    store.events = all;
    loop.advance(5min);
    store.failed = {{"the service", "no answer", "service/"}}; // which is to say, all of it
    loop.advance(5min);
    EXPECT_THAT(listed(), ElementsAre("otter-cal-E1", "otter-cal-E2"));
}

TEST_F(CalendarMonitorTest, worksWithFullAccessOnly) {
    store.status = CalendarAuthorization::writeOnly;
    start();
    monitor->startMonitoring();
    monitor->scanCalendar();
    EXPECT_THAT(store.fetches, IsEmpty());
    EXPECT_THAT(log.messages,
                ElementsAre(LoggedMessage{
                    LogLevel::info, "Cannot start monitoring: no calendar access", "calendar"}));
    log.messages.clear();
    bool granted = true;
    store.answer = {.granted = true, .error = "no bus"};
    monitor->requestAccess([&](bool isGranted) { granted = isGranted; });
    EXPECT_FALSE(granted);
    EXPECT_THAT(log.messages,
                ElementsAre(LoggedMessage{LogLevel::error,
                                          "Error requesting calendar access: no bus", "calendar"}));
    log.messages.clear();
    store.answer = {.granted = true, .error = std::nullopt};
    store.status = CalendarAuthorization::fullAccess;
    monitor->requestAccess([&](bool isGranted) { granted = isGranted; });
    EXPECT_TRUE(granted);

    store.status = CalendarAuthorization::denied; // taken back before the first scan
    monitor->startMonitoring();
    EXPECT_FALSE(*monitor->isMonitoring);
    EXPECT_EQ(*monitor->authorizationStatus, CalendarAuthorization::denied);
    EXPECT_THAT(log.messages,
                ElementsAre(LoggedMessage{
                    LogLevel::notice, "Calendar access revoked, stopping monitor", "calendar"}));
    store.status = CalendarAuthorization::fullAccess;
    loop.advance(1h);
    store.changes.call();
    EXPECT_THAT(store.fetches, IsEmpty());
}

TEST_F(CalendarMonitorTest, waitsWhereThereIsNothingToReadForTheTimeBeing) {
    store.events = {event("E1", 30min, {otter}), event("E2", 3h, {otter})};
    monitor->startMonitoring();
    announced();
    store.status = CalendarAuthorization::restricted; // the folder was moved away
    loop.advance(100min);
    EXPECT_TRUE(*monitor->isMonitoring);
    EXPECT_GT(store.searches, 0);
    EXPECT_EQ(store.fetches.size(), 1U);
    EXPECT_THAT(announced(), ElementsAre("-otter-cal-E1")) << "its event has ended";
    EXPECT_THAT(listed(), ElementsAre("otter-cal-E2"));
    EXPECT_EQ(*monitor->calendarCount, 0U);
    EXPECT_THAT(log.messages, IsEmpty());
    store.status = CalendarAuthorization::fullAccess; // and back
    store.events.push_back(event("E3", 1h, {otter}));
    store.changes.call();
    EXPECT_THAT(announced(), ElementsAre("+otter-cal-E3"));

    store.status = CalendarAuthorization::restricted;
    start();
    monitor->startMonitoring();
    store.status = CalendarAuthorization::notDetermined; // something came, and may not be read
    store.changes.call();
    EXPECT_FALSE(*monitor->isMonitoring);
    EXPECT_THAT(log.messages,
                ElementsAre(LoggedMessage{
                    LogLevel::info, "Cannot start monitoring: no calendar access", "calendar"}));
}

TEST_F(CalendarMonitorTest, boundsTheKeysItRemembers) {
    for (const std::size_t count : {1000, 1001}) {
        Texts keys;
        for (std::size_t i = 0; i < count; ++i)
            keys.push_back(std::to_string(i));
        preferences.set("calendarAlertedDetections", keys);
        start();
        monitor->startMonitoring();
        EXPECT_EQ(stored("calendarAlertedDetections").size(), count == 1000 ? 1000U : 500U);
        EXPECT_THAT(stored("calendarDismissedDetections"), IsEmpty());
    }
}

TEST_F(CalendarMonitorTest, sumsUpTheAccounts) {
    using Type = CalendarSourceType;
    using Provider = CalendarProvider;
    store.accounts = {{"Anna@GMail.com", Type::calDAV, Provider::google},
                      {"Work", Type::exchange, Provider::exchange},
                      {"iCloud", Type::subscribed, Provider::iCloud},
                      {"Nextcloud", Type::calDAV}};
    EXPECT_EQ(monitor->discoverCalendarSources(), (CalendarSourceSummary{.sources = store.accounts,
                                                                         .hasGoogle = true,
                                                                         .hasExchange = true,
                                                                         .hasOtherCalDAV = true}));
    store.accounts = {{"Home", Type::calDAV, Provider::iCloud},
                      {"Google holidays", Type::local, Provider::google}};
    EXPECT_EQ(monitor->discoverCalendarSources(),
              (CalendarSourceSummary{.sources = store.accounts, .hasICloud = true}));
}

} // namespace
} // namespace quorva
