// iCalendar files as servers, exporters and attackers write them.
#include "platform/linux/icalendar/ICalendarReader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

namespace quorva {
namespace {

/// A file of these lines, with the line ends of the standard.
std::string file(const std::string& lines) {
    std::string bytes;
    for (const char c : lines)
        bytes += c == '\n' ? std::string("\r\n") : std::string(1, c);
    return bytes;
}

std::string calendarOf(const std::string& components) {
    return file("BEGIN:VCALENDAR\nVERSION:2.0\n" + components + "END:VCALENDAR\n");
}

std::string eventOf(const std::string& properties) {
    return "BEGIN:VEVENT\nUID:one\n" + properties + "END:VEVENT\n";
}

Time utc(const std::string& moment) {
    return Time(std::chrono::seconds(parseWallTime(moment).value().seconds));
}

ICalendar read(const std::string& bytes) {
    return readICalendar(
        bytes, {.floating = zoneOfName("Europe/Berlin"), .userAddresses = {"Me@Example.org"}});
}

Occurrences within(const std::string& bytes, const std::string& start, const std::string& end) {
    return occurrencesOf(read(bytes), utc(start), utc(end));
}

/// The starts of an event's occurrences from 2026-03-23 to 2026-04-13, in UTC.
std::vector<std::string> startsOf(const std::string& components) {
    std::vector<std::string> starts;
    for (const auto& event :
         within(calendarOf(components), "20260323T000000Z", "20260413T000000Z").events)
        starts.push_back(iso8601(event.start).substr(0, 16));
    return starts;
}

CalendarEvent onlyEvent(const std::string& properties) {
    const auto found =
        within(calendarOf(eventOf(properties)), "20260323T000000Z", "20260413T000000Z");
    EXPECT_EQ(found.events.size(), 1U) << properties;
    return found.events.empty() ? CalendarEvent{} : found.events.front();
}

std::size_t lossesIn(const ICalendarProblems& problems) {
    std::size_t losses = 0;
    for (const auto& problem : problems.all())
        losses += problem.isLoss ? problem.count : 0;
    return losses;
}

using Starts = std::vector<std::string>;
using std::chrono::hours;
using std::chrono::minutes;

// In 2026, clocks go forward in Berlin on March 29, and in New York on March 8.
TEST(ICalendarReaderTest, keepsAWeeklyMeetingAtItsWallClockTimeThroughAClockChange) {
    const auto series = eventOf("DTSTART;TZID=Europe/Berlin:20260105T090000\n"
                                "DTEND;TZID=Europe/Berlin:20260105T100000\n"
                                "RRULE:FREQ=WEEKLY;BYDAY=MO\n");
    EXPECT_EQ(startsOf(series),
              (Starts{"2026-03-23T08:00", "2026-03-30T07:00", "2026-04-06T07:00"}));
}

TEST(ICalendarReaderTest, movesSkipsAndCancelsSingleInstances) {
    const auto series =
        eventOf("DTSTART;TZID=Europe/Berlin:20260323T090000\nDURATION:PT1H\n"
                "RRULE:FREQ=DAILY;UNTIL=20260402T070000Z\nRDATE:20260410T120000Z\n"
                "EXDATE;TZID=Europe/Berlin:20260324T090000,20260325T090000\n"
                "EXDATE;VALUE=DATE:20260326\n") +
        eventOf("RECURRENCE-ID;TZID=Europe/Berlin:20260330T090000\nSEQUENCE:1\n"
                "DTSTART:20260405T100000Z\nDTEND:20260405T103000Z\n") +
        eventOf("RECURRENCE-ID:20260330T070000Z\nSEQUENCE:2\nDTSTART:20260405T110000Z\n") +
        eventOf("RECURRENCE-ID:20260331T070000Z\nSTATUS:CANCELLED\nDTSTART:20260331T070000Z\n");
    EXPECT_EQ(startsOf(series), (Starts{"2026-03-23T08:00", "2026-03-27T08:00", "2026-03-28T08:00",
                                        "2026-03-29T07:00", "2026-04-01T07:00", "2026-04-02T07:00",
                                        "2026-04-05T11:00", "2026-04-10T12:00"}));
}

// Rules of RFC 5545, section 3.8.5.3, that implementations are known to expand differently.
TEST(ICalendarReaderTest, expandsRulesAsTheStandardDefinesThem) {
    struct Row {
        const char* start;
        const char* rule;
        Starts expected; ///< days in the three weeks
    };
    const std::vector<Row> rows{
        {"20260101T090000Z", "FREQ=MONTHLY;BYDAY=-1FR", {"03-27"}},
        {"20260101T090000Z", "FREQ=MONTHLY;BYDAY=MO,TU,WE,TH,FR;BYSETPOS=-2", {"03-30"}},
        {"20260101T090000Z", "FREQ=MONTHLY;BYMONTHDAY=-1,2", {"03-31", "04-02"}},
        {"20260301T090000Z",
         "FREQ=WEEKLY;INTERVAL=2;BYDAY=SU,WE",
         {"03-25", "03-29", "04-08", "04-12"}},
        {"20260301T090000Z",
         "FREQ=WEEKLY;INTERVAL=2;BYDAY=SU,WE;WKST=SU",
         {"03-29", "04-01", "04-12"}},
        {"20260303T090000Z", "FREQ=WEEKLY;INTERVAL=2;BYDAY=TU,SU;WKST=MO", {"03-31", "04-05"}},
        {"20260303T090000Z",
         "FREQ=WEEKLY;INTERVAL=2;BYDAY=TU,SU;WKST=SU",
         {"03-29", "03-31", "04-12"}},
        {"20200101T090000Z", "FREQ=YEARLY;BYDAY=13MO", {"03-30"}},
        {"20200101T090000Z", "FREQ=YEARLY;BYWEEKNO=14;BYDAY=MO", {"03-30"}},
        {"20200101T090000Z", "FREQ=YEARLY;BYYEARDAY=-275", {"04-01"}},
        {"20240229T090000Z", "FREQ=YEARLY", {}},
        {"20260322T090000Z", "FREQ=DAILY;COUNT=3", {"03-23", "03-24"}},
        {"19970310T090000Z", "FREQ=HOURLY;INTERVAL=144", {"03-26", "04-01", "04-07"}},
        {"20260301T090000Z", "FREQ=DAILY;UNTIL=20260324", {"03-23", "03-24"}},
    };
    for (const auto& row : rows) {
        Starts days;
        for (const auto& start :
             startsOf(eventOf(std::string("DTSTART:") + row.start + "\nRRULE:" + row.rule + "\n")))
            days.push_back(start.substr(5, 5));
        EXPECT_EQ(days, row.expected) << row.rule;
    }
}

TEST(ICalendarReaderTest, readsTimesInEveryZone) {
    const std::string zone = "BEGIN:VTIMEZONE\nTZID:Own Zone\n"
                             "BEGIN:STANDARD\nDTSTART:16011028T030000\nTZOFFSETFROM:+0600\n"
                             "TZOFFSETTO:+0500\nRRULE:FREQ=YEARLY;BYDAY=-1SU;BYMONTH=10\n"
                             "END:STANDARD\nBEGIN:DAYLIGHT\nDTSTART:16010325T020000\n"
                             "TZOFFSETFROM:+0500\nTZOFFSETTO:+0600\n"
                             "RRULE:FREQ=YEARLY;BYDAY=-1SU;BYMONTH=3\nEND:DAYLIGHT\n"
                             "END:VTIMEZONE\n";
    const std::vector<std::pair<std::string, std::string>> rows{
        {";TZID=Own Zone:20260328T120000", "2026-03-28T07:00"},
        {";TZID=Own Zone:20260330T120000", "2026-03-30T06:00"},
        {";TZID=Own Zone:20260329T023000", "2026-03-28T21:30"},      // skipped
        {";TZID=Asia/Calcutta:20260328T120000", "2026-03-28T06:30"}, // an alias
        {";TZID=\"/vendor.org/2026/America/New_York\":20260328T120000", "2026-03-28T16:00"},
        {";TZID=GMT+05:30:20260328T120000", "2026-03-28T06:30"},
        {";TZID=Europe/Berlin:20260329T023000", "2026-03-29T01:30"}, // skipped
        {";TZID=Nowhere:20260328T120000", "2026-03-28T11:00"},       // as floating
        {";TZID=../../../etc/passwd:20260328T120000", "2026-03-28T11:00"},
        {":20260328T120000", "2026-03-28T11:00"},
        {":20260328T120000Z", "2026-03-28T12:00"},
        {";VALUE=DATE:20260328", "2026-03-27T23:00"},
    };
    for (const auto& [start, expected] : rows)
        EXPECT_EQ(startsOf(eventOf("DTSTART" + start + "\n") + zone), Starts{expected}) << start;
}

TEST(ICalendarReaderTest, findsTheEndOfAnEvent) {
    const auto lengthOf = [](const std::string& properties) {
        const auto event = onlyEvent(properties);
        return std::chrono::duration_cast<minutes>(event.end - event.start);
    };
    EXPECT_EQ(lengthOf("DTSTART:20260328T120000Z\nDURATION:PT1H30M\n"), minutes(90));
    EXPECT_EQ(lengthOf("DTSTART:20260328T120000Z\nDTEND;TZID=Europe/Berlin:20260328T140000\n"),
              hours(1));
    EXPECT_EQ(lengthOf("DTSTART:20260328T120000Z\n"), minutes(0));
    EXPECT_EQ(lengthOf("DTSTART:20260328T120000Z\nDTEND:20260328T110000Z\n"), minutes(0));
    EXPECT_EQ(lengthOf("DTSTART;VALUE=DATE:20260328\n"), hours(24));
    EXPECT_EQ(lengthOf("DTSTART;VALUE=DATE:20260328\nDTEND;VALUE=DATE:20260330\n"), hours(47));
    // A day as the calendar counts it has 23 hours when clocks go forward.
    EXPECT_EQ(lengthOf("DTSTART;TZID=Europe/Berlin:20260328T120000\nDURATION:P1D\n"), hours(23));
    EXPECT_TRUE(onlyEvent("DTSTART;VALUE=DATE:20260328\n").isAllDay);
}

TEST(ICalendarReaderTest, keepsAttendeesAsTheServerWroteThem) {
    const auto event =
        onlyEvent("DTSTART:20260328T120000Z\nSUMMARY:Plan\\, part 1\\; draft\n"
                  "ATTENDEE;CN=\"Doe, Jane; Sales\";PARTSTAT=ACCEPTED:MAILTO:Jane@Example.com\n"
                  "ATTENDEE;PARTSTAT=DECLINED;CN=:fred@otter.ai\n"
                  "ATTENDEE;CUTYPE=GROUP;PARTSTAT=TENTATIVE;CN=R^'n^'D:mailto:a%20b@example.com \n"
                  "attendee;cn=M\xC3\xBCller;partstat=X-ODD:mailto:me@example.ORG\n"
                  "ATTENDEE;PARTSTAT=DELEGATED;EMAIL=bot@read.ai:/principals/42\n"
                  "ORGANIZER;CN=Bot:mailto:bot@fireflies.ai\n"
                  "BEGIN:VALARM\nATTENDEE:mailto:alarm@example.com\nDURATION:PT9H\nEND:VALARM\n");
    using enum ParticipantStatus;
    const std::vector<CalendarParticipant> expected{
        {"Doe, Jane; Sales", "MAILTO:Jane@Example.com", false, accepted},
        {std::nullopt, "fred@otter.ai", false, declined},
        {"R\"n\"D", "mailto:a%20b@example.com ", false, tentative},
        {"M\xC3\xBCller", "mailto:me@example.ORG", true, pending},
        {std::nullopt, "bot@read.ai", false, delegated},
        {"Bot", "mailto:bot@fireflies.ai", false, pending, true},
    };
    EXPECT_EQ(event.attendees, expected);
    EXPECT_EQ(event.title, "Plan, part 1; draft");
    EXPECT_EQ(event.eventIdentifier, "one");
    EXPECT_EQ(event.start, event.end);
}

TEST(ICalendarReaderTest, marksAnOrganizerWhoIsListedAndAddsNone) {
    const auto attendees = onlyEvent("DTSTART:20260328T120000Z\nORGANIZER:MAILTO:A@example.com\n"
                                     "ATTENDEE:mailto:b@example.com\n"
                                     "ATTENDEE:mailto:a@EXAMPLE.com\n")
                               .attendees;
    ASSERT_EQ(attendees.size(), 2U);
    EXPECT_FALSE(attendees[0].isOrganizer);
    EXPECT_TRUE(attendees[1].isOrganizer);
}

TEST(ICalendarReaderTest, leavesOutCancelledEvents) {
    EXPECT_EQ(startsOf(eventOf("DTSTART:20260328T120000Z\nSTATUS:CANCELLED\n")), Starts{});
    EXPECT_EQ(startsOf("METHOD:CANCEL\n" + eventOf("DTSTART:20260328T120000Z\n")), Starts{});
    EXPECT_EQ(startsOf(eventOf("DTSTART:20260328T120000Z\n") +
                       eventOf("SEQUENCE:3\nSTATUS:CANCELLED\nDTSTART:20260328T120000Z\n")),
              Starts{});
}

TEST(ICalendarReaderTest, readsFoldedLinesMarksAndForeignBytes) {
    const auto one = within("\xEF\xBB\xBF" + calendarOf(eventOf("DTSTART:202603\n 28T120000Z\n"
                                                                "SUMMARY:a\xC3\n \xA4\xE4\n")),
                            "20260328T000000Z", "20260329T000000Z");
    ASSERT_EQ(one.events.size(), 1U);
    EXPECT_EQ(one.events[0].title, "a\xC3\xA4\xEF\xBF\xBD");

    auto bare = calendarOf(eventOf("DTSTART:20260328T120000Z\n"));
    std::erase(bare, '\n'); // CR alone ends the lines
    bare.insert(bare.find("UID"), std::string("X-A:\0\r", 6));
    EXPECT_EQ(within(bare, "20260328T000000Z", "20260329T000000Z").events.size(), 1U);
}

TEST(ICalendarReaderTest, countsWhatIsBrokenAndKeepsTheRest) {
    const auto good = eventOf("DTSTART:20260328T120000Z\n");
    const std::vector<std::string> broken{
        "BEGIN:VEVENT\nUID:two\nSUMMARY:x\nEND:VEVENT\n", // no start
        "BEGIN:VEVENT\nUID:two\nDTSTART:20261399T000000Z\nEND:VEVENT\n",
        "BEGIN:VEVENT\nUID:two\nDTSTART\nEND:VEVENT\n",
        "END:VEVENT\n",
        eventOf("DTSTART:20200101T120000Z\nRRULE:FREQ=SOMETIMES\n"),
        eventOf("DTSTART:20200101T120000Z\nATTENDEE:\n"),
        eventOf("DTSTART:20200101T120000Z\nEXDATE:tomorrow\n"),
        eventOf("DTSTART:20200101T120000Z\nRRULE:FREQ=DAILY;BYSETPOS=1" +
                [] {
                    std::string list;
                    for (int i = 0; i < 385; ++i)
                        list += ",1"; // one more than libical has room for
                    return list;
                }() +
                "\n"),
    };
    for (auto part : broken) {
        const auto at = part.find("UID:one");
        if (at != std::string::npos)
            part.replace(at, 7, "UID:other");
        const auto bytes = calendarOf(part + good);
        EXPECT_GE(lossesIn(read(bytes).problems), 1U) << part;
        EXPECT_EQ(within(bytes, "20260328T000000Z", "20260329T000000Z").events.size(), 1U) << part;
    }
    const auto cut = calendarOf(good + "BEGIN:VEVENT\nUID:two\nDTSTART:20260328T13").substr(0, 110);
    EXPECT_TRUE(read(cut).isCutShort);
    EXPECT_TRUE(read("").isCutShort);
    EXPECT_GE(lossesIn(read("<html>not found</html>").problems), 1U);
    // An event that is never ended does not swallow the next one.
    EXPECT_EQ(startsOf("BEGIN:VEVENT\nUID:two\nDTSTART:20260327T120000Z\n" + good).size(), 2U);
}

TEST(ICalendarReaderTest, boundsWhatHostileFilesCost) {
    struct Row {
        std::string properties;
        std::size_t events; ///< in the period, at most
        bool isReported;
    };
    std::string attendees;
    for (int i = 0; i < 5000; ++i)
        attendees += "ATTENDEE:mailto:" + std::to_string(i) + "@example.com\n";
    std::string dates;
    for (int i = 0; i < 30'000; ++i)
        dates += "RDATE:20260328T120000Z\n";
    const std::vector<Row> rows{
        {"DTSTART:19700101T000000Z\nRRULE:FREQ=SECONDLY\n", 1000, true},
        {"DTSTART:19700101T000000Z\nRRULE:FREQ=SECONDLY;COUNT=2000000000\n", 0, true},
        {"DTSTART:00010101T000000Z\nRRULE:FREQ=SECONDLY;BYMONTH=2;BYMONTHDAY=30\n", 0, false},
        {"DTSTART:20200101T000000Z\nRRULE:FREQ=MONTHLY;BYDAY=6MO\n", 0, false},
        {"DTSTART:20200101T000000Z\nRRULE:FREQ=YEARLY;INTERVAL=32767\n", 0, false},
        {"DTSTART:00010101T000000Z\nDTEND:99991231T235959Z\nRRULE:FREQ=DAILY\n", 1000, true},
        {"DTSTART:20260328T120000Z\nRRULE:FREQ=DAILY;UNTIL=99991231\n", 1, false},
        {"DTSTART:20260328T120000Z\nDURATION:P99999999999999999999W\n", 1, false},
        {"DTSTART:20260328T120000Z\n" + attendees, 1, false},
        {"DTSTART:20260328T120000Z\n" + dates, 1, true},
    };
    for (const auto& row : rows) {
        const auto calendar = read(calendarOf(eventOf(row.properties)));
        const auto found =
            occurrencesOf(calendar, utc("20260328T000000Z"), utc("20260329T000000Z"));
        const auto about = row.properties.substr(0, 90);
        EXPECT_EQ(found.events.size(), row.events) << about;
        EXPECT_EQ(lossesIn(found.problems) + lossesIn(calendar.problems) > 0, row.isReported)
            << about;
    }
    std::string nested;
    for (int i = 0; i < 100'000; ++i)
        nested += "BEGIN:VALARM\n";
    EXPECT_EQ(lossesIn(read(file("BEGIN:VCALENDAR\n" + nested)).problems), 2U);
    auto bytes = calendarOf(eventOf("DTSTART:20260328T120000Z\nSUMMARY:x\n") + "X-BLOB:y\n");
    for (const char c : {'y', 'x'})
        bytes.insert(bytes.rfind(c), 25'000'000, c);
    const auto found = within(bytes, "20260328T000000Z", "20260329T000000Z");
    ASSERT_EQ(found.events.size(), 1U);
    EXPECT_LE(found.events[0].title.value_or("").size(), ContentLines::maxLength);
}

// A sender can make a series cost much, and invite to many.
TEST(ICalendarReaderTest, takesNothingFromAMeetingForWhatOthersCost) {
    const auto invitations = [](int count, const std::string& properties) {
        std::string all;
        for (int i = 0; i < count; ++i)
            all += "BEGIN:VEVENT\nUID:" + std::to_string(i) + "\nDTSTART:20250601T000000Z\n" +
                   properties + "END:VEVENT\n";
        return all;
    };
    std::string attendees;
    for (int i = 0; i < 500; ++i)
        attendees += "ATTENDEE:mailto:" + std::to_string(i) + "@example.com\n";
    const auto meeting = eventOf("DTSTART:20200104T120000Z\nRRULE:FREQ=WEEKLY;COUNT=520\n"
                                 "ATTENDEE:mailto:notetaker@otter.ai\n");
    for (const auto& others : {invitations(900, "RRULE:FREQ=SECONDLY;COUNT=2000000000\n"),
                               invitations(9, "RRULE:FREQ=MINUTELY\n" + attendees)}) {
        const auto found =
            within(calendarOf(others + meeting), "20260328T000000Z", "20260329T000000Z");
        EXPECT_TRUE(
            std::any_of(found.events.begin(), found.events.end(),
                        [](const CalendarEvent& event) { return event.eventIdentifier == "one"; }));
        EXPECT_GT(lossesIn(found.problems), 0U);
    }
    // What is left goes to those that need more: every minute of three weeks.
    EXPECT_EQ(startsOf("BEGIN:VEVENT\nUID:two\nDTSTART:20260301T000000Z\n"
                       "RRULE:FREQ=MINUTELY;COUNT=33000;BYSECOND=0\nEND:VEVENT\n" +
                       meeting)
                  .size(),
              1003U);
}

} // namespace
} // namespace quorva
