#include "scan/Scan.h"

#include "support/AccessibleElements.h"
#include "support/FakeAccessibilityTree.h"
#include "support/FakeCalendarStore.h"
#include "support/FakeProcesses.h"
#include "support/RecordingLog.h"
#include "support/VirtualMainLoop.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace quorva {
namespace {

using namespace std::chrono_literals;
using Json = nlohmann::ordered_json;
using testing::ElementsAre;
using testing::HasSubstr;

TEST(ScanOptions, namesEverySourceOnceAndAllWhenNoneIsNamed) {
    const auto all = parseScanOptions({});
    ASSERT_TRUE(all.options);
    EXPECT_THAT(all.options->sources, ElementsAre("process", "calendar", "meeting"));
    const auto some =
        parseScanOptions({"--json", "--source", "meeting", "--source=process", "--source=meeting"});
    ASSERT_TRUE(some.options);
    EXPECT_TRUE(some.options->json);
    EXPECT_FALSE(some.options->watch);
    EXPECT_THAT(some.options->sources, ElementsAre("process", "meeting"));
}

TEST(ScanOptions, sayWhatIsWrong) {
    EXPECT_THAT(parseScanOptions({"--source"}).problem, HasSubstr("--source needs"));
    EXPECT_THAT(parseScanOptions({"--source", "disk"}).problem, HasSubstr("\"disk\""));
    EXPECT_THAT(parseScanOptions({"--jsno"}).problem, HasSubstr("\"--jsno\""));
    EXPECT_FALSE(parseScanOptions({"--jsno"}).options);
    EXPECT_THAT(parseScanOptions({"--watch", "--self-test"}).problem, HasSubstr("together"));
}

class ScanTest : public testing::Test {
protected:
    ScanTest() { table.run(1, "/sbin/init"); }

    static ScanOptions only(std::string_view source) {
        return {.sources = {source}, .namesSources = true};
    }

    ScanReport look(const ScanOptions& options) {
        Scan scan(options, platform);
        std::optional<ScanReport> report;
        scan.look([&](ScanReport found) { report = std::move(found); });
        EXPECT_FALSE(report) << "the answer is a task of the main loop";
        loop.runPosted();
        loop.advance(report ? 0s : 10s); // windows are waited for
        return report.value();
    }

    void invite(std::string url, std::optional<std::string> name = {}) {
        calendars.events.push_back(
            {.eventIdentifier = "uid-" + std::to_string(calendars.events.size()),
             .title = "Secret merger",
             .start = loop.now() + 119min,
             .end = loop.now() + 3h,
             .attendees = {{.name = std::move(name), .url = std::move(url)}},
             .calendarName = "Work"});
    }

    void inZoom(const std::vector<std::string>& texts) {
        applications.running = {{"us.zoom.xos", "Zoom", std::nullopt, 100}};
        tree.applications[100].windows = {{"Zoom Meeting", meetingWindow(texts)}};
    }

    VirtualMainLoop loop;
    RecordingLog log;
    FakeProcessTable table;
    FakeApplications applications;
    FakeCalendarStore calendars;
    FakeAccessibilityTree tree{loop};
    Platform platform{loop, log, table, applications, calendars, tree, [](std::string_view text) {
                          Sha256Digest digest{};
                          std::copy_n(text.begin(), std::min(text.size(), digest.size()),
                                      digest.begin());
                          return digest;
                      }};
    const ScanOptions processOnly = only("process");
    const ScanOptions calendarOnly = only("calendar");
    const ScanOptions meetingOnly = only("meeting");
};

TEST_F(ScanTest, tellsClearFoundAndIncompleteApart) {
    EXPECT_EQ(look(processOnly).exitStatus(), 0);
    EXPECT_EQ(look(processOnly).toJson()["verdict"], "clear");

    const auto everything = *parseScanOptions({}).options;
    EXPECT_EQ(look(everything).exitStatus(), 0);
    tree.isOn = false;
    EXPECT_EQ(look(everything).exitStatus(), 3);
    EXPECT_EQ(look(everything).toJson()["verdict"], "incomplete");

    table.canBeListed = false;
    const auto blind = look(processOnly);
    EXPECT_EQ(blind.exitStatus(), 3);
    EXPECT_EQ(blind.toJson()["sources"]["process"]["status"], "unavailable");
    EXPECT_THAT(blind.toText().str(), HasSubstr("not everything could be looked at"));

    table.canBeListed = true;
    table.run(7, "/usr/bin/otter");
    EXPECT_EQ(look(everything).exitStatus(), 1) << "a finding outweighs a gap";
}

TEST_F(ScanTest, looksOnceApplicationsCanBeListed) {
    applications.ready = false;
    inZoom({"Otter.ai Notetaker"});
    Scan scan({.sources = {"process", "meeting"}, .namesSources = true}, platform);
    std::optional<ScanReport> report;
    scan.look([&](ScanReport found) { report = std::move(found); });
    loop.advance(9s);
    EXPECT_FALSE(report);
    applications.getReady();
    loop.advance(10s);
    ASSERT_TRUE(report);
    EXPECT_EQ(report->exitStatus(), 1);
    EXPECT_EQ(report->toJson()["detections"]["participants"].size(), 1U);
}

TEST_F(ScanTest, findsInvitationsAndSaysWhatGaveThemAway) {
    invite("mailto:notetaker@otter.ai");
    invite("mailto:x@example.org", "Fathom Notetaker");
    invite("mailto:scribe-7@example.org");
    const auto report = look(calendarOnly);
    EXPECT_EQ(report.exitStatus(), 1);
    const auto otter = report.toJson()["detections"]["calendar"][0];
    EXPECT_EQ(otter["signatureId"], "otter-cal");
    EXPECT_EQ(otter["confidence"], 100);
    EXPECT_EQ(otter["eventTitle"], "Calendar Event");
    EXPECT_EQ(otter["eventStartDate"], "2026-03-02T10:59:00.000Z");
    EXPECT_EQ(otter["matchedName"], nullptr);
    EXPECT_EQ(report.toText().str(),
              "INVITED                   CATEGORY       CONFIDENCE  STARTS     MATCHED BY          "
              "MATCHED VALUE         CALENDAR\n"
              "Otter.ai                  Transcription  100 %       in 1h 59m  attendee's address  "
              "notetaker@otter.ai    Work\n"
              "Fathom                    Transcription  70 %        in 1h 59m  attendee's name     "
              "Fathom Notetaker      Work\n"
              "Unknown Bot (scribe@...)  Unknown        55 %        in 1h 59m  mailbox name        "
              "scribe-7@example.org  Work\n"
              "\nFound: 3.\n"
              "  calendar  ok           looked at the next 24 hours; calendars: 2\n");
}

TEST_F(ScanTest, saysWhyCalendarsCouldNotBeLookedAt) {
    calendars.status = CalendarAuthorization::notDetermined;
    const auto unasked = look(calendarOnly);
    EXPECT_EQ(unasked.sources.at(0).state, SourceState::Kind::notAllowed);
    EXPECT_THAT(unasked.sources.at(0).detail, HasSubstr("--source calendar"));
    EXPECT_TRUE(calendars.fetches.empty());

    calendars.status = CalendarAuthorization::restricted;
    const auto none = look(calendarOnly);
    EXPECT_EQ(none.exitStatus(), 3);
    EXPECT_THAT(none.sources.at(0).detail, HasSubstr("install evolution-data-server"));

    calendars.status = CalendarAuthorization::fullAccess;
    calendars.failed = {{"Team", "no answer"}};
    const auto partly = look(calendarOnly);
    EXPECT_EQ(partly.exitStatus(), 3) << "nothing found in a part is not an all clear";
    EXPECT_EQ(partly.sources.at(0).detail, "calendars that can't be read: 1 of 2; Team: no answer");
}

TEST_F(ScanTest, learnsThatThereAreNoCalendarsOnlyWhenTheyAnswer) {
    calendars.answersAtOnce = false;
    Scan scan(calendarOnly, platform);
    std::optional<ScanReport> report;
    scan.look([&](ScanReport found) { report = std::move(found); });
    loop.advance(5s);
    EXPECT_FALSE(report);
    calendars.status = CalendarAuthorization::restricted;
    calendars.answerFetch();
    loop.runPosted();
    ASSERT_TRUE(report);
    EXPECT_EQ(report->sources.at(0).state, SourceState::Kind::notAvailable);
}

TEST_F(ScanTest, findsNoteTakersAndBannersInMeetings) {
    inZoom({"Ann", "Acme Notetaker", "Recording to the cloud"});
    const auto report = look(meetingOnly);
    EXPECT_EQ(report.exitStatus(), 1);
    const auto detections = report.toJson()["detections"];
    EXPECT_EQ(detections["participants"], Json::parse(R"([{"id":"Zoom-acme notetaker",
        "platformName":"Zoom","matchedParticipantName":"Acme Notetaker",
        "botPatternMatched":"notetaker","botDisplayName":"Acme Notetaker",
        "category":"transcription","confidence":80,"windowTitle":"Zoom Meeting",
        "detectedAt":"2026-03-02T09:00:00.000Z"}])"));
    EXPECT_EQ(detections["indicators"], Json::parse(R"([{"id":"Zoom-recording to the cloud",
        "platformName":"Zoom","indicatorText":"Recording to the cloud",
        "indicatorType":"cloudRecording","windowTitle":"Zoom Meeting",
        "detectedAt":"2026-03-02T09:00:00.000Z"}])"));
    EXPECT_EQ(report.toText().str(),
              "IN A MEETING    CATEGORY       CONFIDENCE  PLATFORM  PARTICIPANT     WINDOW\n"
              "Acme Notetaker  Transcription  80 %        Zoom      Acme Notetaker  Zoom Meeting\n"
              "\n"
              "BANNER           PLATFORM  TEXT                    WINDOW\n"
              "Cloud recording  Zoom      Recording to the cloud  Zoom Meeting\n"
              "\nFound: 2.\n"
              "  meeting   ok           applications that may hold meetings: 1; meeting windows: "
              "1\n");
}

TEST_F(ScanTest, saysWhyMeetingsCouldNotBeLookedAt) {
    tree.isOn = false;
    const auto off = look(meetingOnly);
    EXPECT_EQ(off.exitStatus(), 3);
    EXPECT_EQ(off.sources.at(0).state, SourceState::Kind::notAllowed);
    EXPECT_THAT(off.sources.at(0).detail, HasSubstr("toolkit-accessibility true"));

    tree.isOn = true;
    inZoom({"Ann"});
    auto& windows = tree.applications[100].windows;
    windows.push_back({.title = "Zoom Meeting 2", .tree = {}, .problem = "it went away"});
    const auto partly = look(meetingOnly);
    EXPECT_EQ(partly.exitStatus(), 3);
    EXPECT_EQ(
        partly.sources.at(0),
        (SourceReport{"meeting", SourceState::Kind::partlyBlind,
                      "windows that can't be read: 1; Zoom \"Zoom Meeting 2\": it went away"}));

    windows[0].tree = meetingWindow(std::vector<std::string>(2000, "Ann"));
    const auto twice = look(meetingOnly).sources.at(0).detail;
    EXPECT_THAT(twice, HasSubstr("it went away"));
    EXPECT_THAT(twice, HasSubstr("shows more than is looked at"));

    windows.pop_back();
    EXPECT_EQ(look(meetingOnly).exitStatus(), 3);
    inZoom({"Ann"});
    EXPECT_EQ(look(meetingOnly).exitStatus(), 0);
    table.canBeListed = false;
    EXPECT_EQ(look(meetingOnly).exitStatus(), 3) << "who knows what runs";
}

TEST_F(ScanTest, waitsForWindowsToBeReadButNotForEver) {
    inZoom({"Acme Notetaker"});
    auto& application = tree.applications[100];
    application.isAnswering = false;
    Scan scan(meetingOnly, platform);
    std::optional<ScanReport> report;
    scan.look([&](ScanReport found) { report = std::move(found); });
    loop.advance(9s);
    EXPECT_FALSE(report);
    application.isAnswering = true;
    tree.reads.call();
    loop.runPosted();
    ASSERT_TRUE(report);
    EXPECT_EQ(report->exitStatus(), 1);

    application.isAnswering = false;
    Scan late(meetingOnly, platform);
    report.reset();
    late.look([&](ScanReport found) { report = std::move(found); });
    loop.advance(10s);
    ASSERT_TRUE(report);
    EXPECT_EQ(report->exitStatus(), 3);
    EXPECT_EQ(report->sources.at(0).detail, "windows that can't be read: 1; Zoom: no answer yet");
}

TEST_F(ScanTest, describesEachDetectionWithItsFields) {
    table.run(7, "/opt/a\xff/Otter.app/x");
    const auto json = Json::parse(dump(look(processOnly).toJson()).str());
    EXPECT_EQ(json["version"], 1);
    EXPECT_EQ(json["detections"]["process"][0], Json::parse(R"({"id":"otter-7",
        "signatureId":"otter","name":"Otter.ai","category":"transcription","confidence":95,
        "method":"processPath","processIdentifier":7,"matchedValue":"/opt/a\ufffd/Otter.app/x",
        "detectedAt":"2026-03-02T09:00:00.000Z"})"));
    EXPECT_EQ(json["detections"]["participants"], Json::array());
}

TEST_F(ScanTest, printsATableThatAFileNameCannotBreak) {
    table.run(7, "/tmp/otter.app/\n\x1b[2Jx");
    table.run(12345, "/usr/bin/clockwise");
    EXPECT_EQ(look(processOnly).toText().str(),
              "PRODUCT    CATEGORY       CONFIDENCE  PROCESS  MATCHED BY       MATCHED VALUE\n"
              "Otter.ai   Transcription  95 %        7        executable path  "
              "/tmp/otter.app/\\n\\u001b[2Jx\n"
              "Clockwise  Productivity   80 %        12345    name             clockwise\n"
              "\nFound: 2.\n"
              "  process   ok           looked at 3 processes\n");
}

TEST_F(ScanTest, watchPrintsAppearancesAndDisappearancesOnce) {
    std::vector<Json> lines;
    std::vector<SourceReport> reports;
    Scan scan({.sources = {"process", "calendar"}, .namesSources = true}, platform);
    scan.watch([&](const Printable& line) { lines.push_back(Json::parse(line.str())); },
               [&](std::vector<SourceReport> first) { reports = std::move(first); });
    loop.advance(10s);
    ASSERT_EQ(reports.size(), 2U);
    EXPECT_EQ(reports[1].state, SourceState::Kind::ok);
    EXPECT_TRUE(lines.empty());
    table.run(7, "/usr/bin/otter");
    loop.advance(3s);
    table.end(7);
    loop.advance(60s);
    invite("mailto:notetaker@otter.ai");
    calendars.changes.call();
    calendars.events.clear();
    loop.advance(300s);
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(lines[0]["event"], "appeared");
    EXPECT_EQ(lines[0]["source"], "process");
    EXPECT_EQ(lines[0]["at"], "2026-03-02T09:00:12.000Z");
    EXPECT_EQ(lines[1]["event"], "disappeared");
    EXPECT_EQ(lines[1]["detection"], lines[0]["detection"]);
    EXPECT_EQ(lines[2]["source"], "calendar");
    EXPECT_EQ(lines[2]["detection"]["botName"], "Otter.ai");
    EXPECT_EQ(lines[3]["event"], "disappeared");
}

TEST_F(ScanTest, watchPrintsWhatComesAndGoesInMeetings) {
    std::vector<std::string> lines;
    std::vector<SourceReport> reports;
    inZoom({"Ann"});
    Scan scan(meetingOnly, platform);
    scan.watch(
        [&](const Printable& line) {
            const auto json = Json::parse(line.str());
            EXPECT_EQ(json["source"], "meeting");
            lines.push_back(json["event"].get<std::string>() + " " +
                            json["detection"]["id"].get<std::string>());
        },
        [&](std::vector<SourceReport> first) { reports = std::move(first); });
    loop.runPosted();
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_TRUE(reports[0].isOk());
    EXPECT_THAT(reports[0].detail, HasSubstr("meeting windows: 1"));
    inZoom({"Acme Notetaker", "Recording to the cloud"});
    loop.advance(5s);
    inZoom({"Ann"});
    loop.advance(15s);
    EXPECT_THAT(lines,
                ElementsAre("appeared Zoom-acme notetaker", "appeared Zoom-recording to the cloud",
                            "disappeared Zoom-acme notetaker",
                            "disappeared Zoom-recording to the cloud"));
}

} // namespace
} // namespace quorva
