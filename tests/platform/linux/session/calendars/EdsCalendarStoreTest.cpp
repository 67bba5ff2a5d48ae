// The real calendar service, started by the bus of the session that the test program runs in.
#include "platform/linux/calendars/EdsCalendarStore.h"

#include "platform/linux/session/calendars/CalendarServiceTest.h"

#include <gmock/gmock.h>

namespace quorva {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::FieldsAre;
using testing::IsEmpty;

class EdsCalendarStoreTest : public CalendarServiceTest {
protected:
    CalendarWindow fetch(Time start, Time end) {
        std::optional<CalendarWindow> answer;
        const auto subscription = store.fetchEvents(
            start, end, [&](CalendarWindow window) { answer = std::move(window); });
        EXPECT_TRUE(comesTo([&] { return answer.has_value(); }));
        return answer.value_or(CalendarWindow{});
    }
    CalendarWindow fetch() { return fetch(now, now + 24h); }

    std::vector<std::string> titles() {
        std::vector<std::string> found;
        for (const auto& event : fetch().events)
            found.push_back(event.title.value_or("none"));
        return found;
    }

    EdsCalendarStore store{loop, log};
};

TEST_F(EdsCalendarStoreTest, deliversWhoIsInvitedAsTheInviterWroteIt) {
    ASSERT_TRUE(CalendarWriter().put(
        vevent("plan@example.com", now + 1h,
               "SUMMARY:Plan\r\nORGANIZER;CN=Ada:mailto:ada@example.com\r\n"
               "ATTENDEE;PARTSTAT=ACCEPTED;CN=\"Otter, Pilot\":MAILTO:Meetings@otter.ai\r\n"
               "ATTENDEE;PARTSTAT=DECLINED:mailto:bo@example.com\r\n")));

    const auto window = fetch();
    EXPECT_THAT(window.failed, IsEmpty());
    using Status = ParticipantStatus;
    EXPECT_THAT(
        window.events,
        ElementsAre(FieldsAre(
            "plan@example.com", "Plan", now + 1h, now + 90min, false,
            ElementsAre(
                FieldsAre("Otter, Pilot", "MAILTO:Meetings@otter.ai", false, Status::accepted,
                          false),
                FieldsAre(std::nullopt, "mailto:bo@example.com", false, Status::declined, false),
                FieldsAre("Ada", "mailto:ada@example.com", false, testing::_, true)),
            "Personal", testing::_)));
    EXPECT_THAT(store.sources(), testing::Contains(CalendarSource{.title = "On This Computer"}));
}

TEST_F(EdsCalendarStoreTest, expandsSeriesWithMovedAndDeletedOccurrences) {
    const auto first = now + 1h;
    const auto instead = [&](Time of, Time at) {
        return vevent("daily", at, "RECURRENCE-ID:" + utc(of) + "\r\n");
    };
    ASSERT_TRUE(CalendarWriter().put(
        vevent("daily", first, "RRULE:FREQ=DAILY;COUNT=30\r\nEXDATE:" + utc(first + 24h) + "\r\n") +
        instead(first + 48h, first + 50h) + instead(first + 72h, first + 24h * 20) +
        instead(first + 24h * 25, first + 3h)));

    std::vector<Time> starts;
    for (const auto& event : fetch(now, now + 24h * 5).events) {
        EXPECT_EQ(event.eventIdentifier, "daily");
        starts.push_back(event.start);
    }
    EXPECT_THAT(starts, ElementsAre(first, first + 3h, first + 50h, first + 96h));
}

TEST_F(EdsCalendarStoreTest, saysWhatItCouldNotUnderstandAndSearchesTheRest) {
    const std::string otter = "ATTENDEE:mailto:notetaker@otter.ai\r\n";
    std::string crowd;
    for (int i = 0; i <= 10'000; ++i)
        crowd += fmt::format("ATTENDEE:mailto:{}@example.com\r\n", i);
    std::string days = "1";
    for (int i = 2; i <= 366; ++i)
        days += fmt::format(",{}", i);
    const struct {
        std::string event;
        const char* loss;
        std::size_t events;
    } table[] = {
        {vevent("crowd", now + 1h, otter + crowd), "too many attendees", 1},
        {vevent("minutely", now - 48h, "RRULE:FREQ=MINUTELY\r\n" + otter), "too many occurrences",
         1000},
        {vevent("long", now - 48h,
                "RRULE:FREQ=YEARLY;BYYEARDAY=" + days + ";BYSETPOS=" + days + "\r\n" + otter),
         "recurrence rule not understood", 0},
        {vevent("plain", now + 1h, otter), nullptr, 1},
    };
    for (const auto& [event, loss, events] : table) {
        CalendarWriter writer;
        ASSERT_TRUE(writer.put(event));
        const auto window = fetch();
        EXPECT_EQ(window.events.size(), events) << event.substr(0, 90);
        for (const auto& found : window.events)
            EXPECT_EQ(found.attendees.at(0).url, "mailto:notetaker@otter.ai");
        if (loss)
            EXPECT_THAT(window.failed,
                        ElementsAre(FieldsAre("Personal", testing::HasSubstr(loss), testing::_)))
                << event.substr(0, 90);
        else
            EXPECT_THAT(window.failed, IsEmpty());
        const auto uid = event.substr(event.find("UID:") + 4);
        ASSERT_TRUE(writer.remove(uid.substr(0, uid.find('\r')).c_str()));
    }
}

TEST_F(EdsCalendarStoreTest, readsEachClockAsItsOwn) {
    ::setenv("TZ", "Asia/Tokyo", 1);
    const auto event = [](const char* uid, const char* times) {
        return fmt::format("BEGIN:VEVENT\r\nUID:{}\r\nSUMMARY:{}\r\n{}\r\nEND:VEVENT\r\n", uid, uid,
                           times);
    };
    ASSERT_TRUE(
        CalendarWriter().put(event("floating", "DTSTART:20300304T090000\r\nDURATION:PT10M") +
                             event("day", "DTSTART;VALUE=DATE:20300304") +
                             event("zone", "DTSTART;TZID=America/New_York:20300303T190500\r\n"
                                           "DTEND;TZID=Europe/Paris:20300304T013000") +
                             "BEGIN:VTIMEZONE\r\nTZID:Court House\r\nBEGIN:STANDARD\r\n"
                             "DTSTART:19700101T000000\r\nTZOFFSETFROM:+0530\r\n"
                             "TZOFFSETTO:+0530\r\nEND:STANDARD\r\nEND:VTIMEZONE\r\n" +
                             event("own zone", "DTSTART;TZID=Court House:20300304T053600\r\n"
                                               "DURATION:PT10M")));

    const Time midnight = std::chrono::sys_days(std::chrono::year(2030) / 3 / 4);
    const auto events = fetch(midnight, midnight + 8min).events;
    ASSERT_EQ(events.size(), 4U);
    using testing::_;
    EXPECT_THAT(events[0], FieldsAre("day", _, midnight - 9h, midnight + 15h, true, _, _, _));
    EXPECT_THAT(events[1], FieldsAre("floating", _, midnight, midnight + 10min, false, _, _, _));
    EXPECT_THAT(events[2], FieldsAre("zone", _, midnight + 5min, midnight + 30min, false, _, _, _));
    EXPECT_THAT(events[3],
                FieldsAre("own zone", _, midnight + 6min, midnight + 16min, false, _, _, _));
}

TEST_F(EdsCalendarStoreTest, tellsThatEventsHaveComeAndGone) {
    CalendarWriter writer;
    ASSERT_TRUE(writer.put(vevent("old", now + 1h, "SUMMARY:Old\r\n")));
    int changes = 0;
    const auto subscription = store.onChange([&] { ++changes; });
    EXPECT_THAT(titles(), ElementsAre("Old"));
    ASSERT_TRUE(comesTo([&] { return changes == 1; })) << "the accounts were found";

    ASSERT_TRUE(writer.put(vevent("new", now + 2h, "SUMMARY:New\r\n")));
    ASSERT_TRUE(comesTo([&] { return changes == 2; }));
    EXPECT_THAT(titles(), ElementsAre("Old", "New"));

    ASSERT_TRUE(writer.remove("old"));
    ASSERT_TRUE(comesTo([&] { return changes == 3; }));
    EXPECT_THAT(titles(), ElementsAre("New"));
}

TEST_F(EdsCalendarStoreTest, looksIntoCalendarsThatAreAddedLater) {
    ASSERT_TRUE(CalendarWriter().put(vevent("old", now + 1h, "SUMMARY:Old\r\n")));
    bool isChanged = false;
    const auto subscription = store.onChange([&] { isChanged = true; });
    const auto before = fetch().calendars;
    ASSERT_TRUE(comesTo([&] { return isChanged; })) << "the accounts were found";

    isChanged = false;
    const auto added = addCalendar("Cases");
    ASSERT_TRUE(comesTo([&] { return isChanged; }));
    EXPECT_EQ(fetch().calendars, before + 1);
    ASSERT_TRUE(CalendarWriter(added.get()).put(vevent("new", now + 2h, "SUMMARY:New\r\n")));
    EXPECT_THAT(titles(), ElementsAre("Old", "New"));
}

TEST_F(EdsCalendarStoreTest, reportsAStoppedServiceWithoutStoppingItself) {
    ASSERT_TRUE(CalendarWriter().put(vevent("plan", now + 1h, "SUMMARY:Plan\r\n")));
    ASSERT_GT(signalService(SIGSTOP), 0);

    const auto window = fetch();
    EXPECT_THAT(window.events, IsEmpty());
    const auto failed =
        std::find_if(window.failed.begin(), window.failed.end(),
                     [](const auto& each) { return each.calendarName == "Personal"; });
    ASSERT_NE(failed, window.failed.end());
    EXPECT_GT(ticks, 100);

    signalService(SIGCONT);
    const auto events = fetch().events;
    ASSERT_EQ(events.size(), 1U);
    EXPECT_TRUE(failed->covers(events[0].calendarIdentifier));
    EXPECT_THAT(log.messages, IsEmpty()); // whoever fetches is told
}

TEST_F(EdsCalendarStoreTest, readsOnAfterTheServiceWasKilled) {
    ASSERT_TRUE(CalendarWriter().put(vevent("plan", now + 1h, "SUMMARY:Plan\r\n")));
    EXPECT_THAT(titles(), ElementsAre("Plan"));
    ASSERT_GT(signalService(SIGKILL), 0);
    EXPECT_THAT(titles(), ElementsAre("Plan"));
}

TEST_F(EdsCalendarStoreTest, saysThatThereIsNoServiceWithoutASessionBus) {
    ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
    std::optional<EdsCalendarStore::Service> answer;
    const auto search = store.findService([&](auto service) { answer = service; });
    ASSERT_TRUE(comesTo([&] { return answer.has_value(); }));
    EXPECT_EQ(answer, EdsCalendarStore::Service::absent);

    const auto window = fetch();
    EXPECT_EQ(window.calendars, 0U);
    EXPECT_THAT(window.failed, IsEmpty());
}

} // namespace
} // namespace quorva
