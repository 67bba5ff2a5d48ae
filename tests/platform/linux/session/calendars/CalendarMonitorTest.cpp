// From an invitation to its announcement, with the real calendar service, folders of files and
// preferences on disk.
#include "detectors/CalendarMonitor.h"

#include "platform/linux/calendars/LinuxCalendarStore.h"
#include "platform/linux/session/calendars/CalendarServiceTest.h"
#include "platform/linux/storage/JsonPreferences.h"
#include "platform/linux/storage/LinuxWholeFile.h"
#include "platform/linux/storage/OpenSslSha256.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

namespace quorva {
namespace {

using namespace std::chrono_literals;
using testing::_;
using testing::Contains;
using testing::ElementsAre;
using testing::FieldsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// The desktop's main loop, with a clock that can be set forward.
class HastyMainLoop final : public MainLoop {
public:
    explicit HastyMainLoop(MainLoop& loop_) : loop(loop_) {}

    std::chrono::seconds ahead{0};

    [[nodiscard]] Time now() const override { return loop.now() + ahead; }
    void post(Task task) override { loop.post(std::move(task)); }
    [[nodiscard]] Timer after(Seconds delay, Task task) override {
        return loop.after(delay, std::move(task));
    }
    [[nodiscard]] Timer every(Seconds period, Task task) override {
        return loop.every(period, std::move(task));
    }

private:
    MainLoop& loop;
};

/// One run of the program. The store outlives it: the library's registry is shared in a process.
struct Program {
    Program(MainLoop& loop, CalendarStore& store, Log& log, const std::filesystem::path& path)
        : file(path),
          preferences(loop, log, file),
          monitor(loop, store, preferences, log, openSslSha256) {}

    LinuxWholeFile file;
    JsonPreferences preferences;
    CalendarMonitor monitor;
};

class CalendarMonitorTest : public CalendarServiceTest {
protected:
    /// Starts the program, or starts it again, and waits for its first scan.
    void start() {
        counting = store.onChange([this] { ++changes; });
        program.reset();
        program.emplace(hasty, store, log, home.path / "preferences.json");
        monitor().onBotDetected = [this](const auto& bot) { events.push_back("+" + bot.id); };
        monitor().onBotDisappeared = [this](const auto& bot) { events.push_back("-" + bot.id); };
        monitor().startMonitoring();
        ASSERT_TRUE(comesTo([&] { return monitor().lastScanDate->has_value(); }));
    }
    void scan() {
        const auto last = *monitor().lastScanDate;
        monitor().scanCalendar();
        ASSERT_TRUE(comesTo([&] { return *monitor().lastScanDate != last; }));
    }
    CalendarMonitor& monitor() { return program->monitor; }
    std::vector<std::string> announced() { return std::exchange(events, {}); }
    std::vector<std::string> listed() {
        std::vector<std::string> ids;
        for (const auto& detection : *monitor().calendarDetections)
            ids.push_back(detection.id);
        return ids;
    }

    const std::string otter = "ATTENDEE:mailto:notetaker@otter.ai\r\n";
    const std::string gong = "ATTENDEE:mailto:meet@gong.io\r\n";
    const std::string fred = "ATTENDEE:mailto:fred@fireflies.ai\r\n";
    const TemporaryFolder home;
    HastyMainLoop hasty{loop};
    std::vector<std::string> myAddresses;
    LinuxCalendarStore store{hasty, log, {.files = {.root = home.path / "calendars"}}, {}, [this] {
                                 return myAddresses;
                             }};
    int changes = 0;
    Subscription counting;
    std::vector<std::string> events;
    std::optional<Program> program;
};

TEST_F(CalendarMonitorTest, findsEachProductThatComesOnceAndNobodyElse) {
    const auto sources =
        std::filesystem::path(std::getenv("XDG_CONFIG_HOME")) / "evolution/sources";
    std::filesystem::create_directories(sources);
    std::ofstream(sources / "me.source") // read by the service as it starts
        << "[Data Source]\nDisplayName=Fred\nEnabled=true\n"
           "[Mail Identity]\nAddress=Fred@fireflies.ai\n";
    const auto tomorrow = fmt::format("{:%Y%m%d}", now + 24h);
    ASSERT_TRUE(CalendarWriter().put(
        vevent("meeting", now + 2h,
               "SUMMARY:Salary talk\r\n" + otter + "ATTENDEE:mailto:bot@otter.ai\r\n" + fred) +
        vevent("declined", now + 2h, "ATTENDEE;PARTSTAT=DECLINED:mailto:notetaker@otter.ai\r\n") +
        vevent("ended", now - 1h, otter) +
        vevent("cancelled", now + 2h, "STATUS:CANCELLED\r\n" + otter) +
        "BEGIN:VEVENT\r\nUID:day\r\nDTSTART;VALUE=DATE:" + tomorrow + "\r\n" + otter +
        "END:VEVENT\r\n"));

    start();
    EXPECT_THAT(
        *monitor().calendarDetections,
        ElementsAre(FieldsAre("otter-cal-meeting", "otter-cal", "Otter.ai",
                              BotCategory::transcription, 100, "notetaker@otter.ai", _,
                              "Calendar Event", now + 2h, now + 150min, "meeting", "Personal", _)));
    EXPECT_THAT(announced(), ElementsAre("+otter-cal-meeting"));
    EXPECT_THAT(*monitor().failedCalendars, IsEmpty());

    // In folders, the user is who the service's accounts and the settings say.
    const std::string botond = "ATTENDEE:MAILTO:Botond@firm.example \r\n";
    home.write("calendars/club/a.ics",
               vcalendar(vevent("own", now + 2h, fred) + vevent("named", now + 2h, botond)));
    scan();
    EXPECT_THAT(announced(), ElementsAre("+generic-bot-named"));
    myAddresses = {"botond@Firm.example"};
    scan();
    EXPECT_THAT(announced(), ElementsAre("-generic-bot-named"));
}

TEST_F(CalendarMonitorTest, announcesABotThatIsInvitedLaterAsSoonAsTheServiceTells) {
    CalendarWriter writer;
    ASSERT_TRUE(writer.put(vevent("meeting", now + 2h, "")));
    start();
    ASSERT_TRUE(comesTo([&] { return changes == 1; })) << "the accounts were found";
    EXPECT_THAT(listed(), IsEmpty());

    ASSERT_TRUE(writer.put(vevent("meeting", now + 2h, "SEQUENCE:1\r\n" + otter)));
    hasty.ahead += 30s; // the pause after a scan is over
    ASSERT_TRUE(comesTo([&] { return !events.empty(); })) << "well before the timer's 5 minutes";
    EXPECT_THAT(announced(), ElementsAre("+otter-cal-meeting"));
    EXPECT_THAT(listed(), ElementsAre("otter-cal-meeting"));
}

TEST_F(CalendarMonitorTest, rememberingAcrossRunsTellsNothingOfTheMeetings) {
    ASSERT_TRUE(CalendarWriter().put(
        vevent("first@example.com", now + 1h, "SUMMARY:Salary talk\r\n" + otter) +
        vevent("second@example.com", now + 2h, "SUMMARY:Salary talk\r\n" + gong)));
    start();
    EXPECT_THAT(announced(),
                ElementsAre("+otter-cal-first@example.com", "+gong-cal-second@example.com"));
    monitor().dismiss(monitor().calendarDetections->front());
    scan();
    EXPECT_THAT(listed(), ElementsAre("gong-cal-second@example.com"));

    for (int restart = 0; restart < 2; ++restart) {
        start();
        EXPECT_THAT(listed(), ElementsAre("gong-cal-second@example.com"));
        EXPECT_THAT(announced(), IsEmpty());
    }
    program.reset();
    const auto file = home.read("preferences.json");
    EXPECT_THAT(file, HasSubstr("calendarDismissedDetections"));
    for (const auto* part : {"alary", "@", "example", "otter", "gong"})
        EXPECT_THAT(file, Not(HasSubstr(part)));
}

TEST_F(CalendarMonitorTest, deliversWhatFoldersHoldWhileTheServiceHangs) {
    ASSERT_TRUE(CalendarWriter().put(vevent("meeting", now + 1h, otter)));
    home.write("calendars/club/displayname", "Club");
    start();
    EXPECT_THAT(announced(), ElementsAre("+otter-cal-meeting"));

    home.write("calendars/club/evening.ics", vcalendar(vevent("evening", now + 2h, gong)));
    ASSERT_GT(signalService(SIGSTOP), 0);
    ticks = 0;
    scan();
    EXPECT_GT(ticks, 100) << "the main loop kept turning";
    EXPECT_THAT(announced(), ElementsAre("+gong-cal-evening"));
    EXPECT_THAT(listed(), ElementsAre("otter-cal-meeting", "gong-cal-evening"));
    EXPECT_THAT(*monitor().failedCalendars,
                Contains(FieldsAre("Personal", HasSubstr("answer"), _)));
    EXPECT_THAT(*monitor().failedCalendars, Not(Contains(FieldsAre("Club", _, _))));
    EXPECT_EQ(log.count("\"Personal\" can't be read"), 1U);

    signalService(SIGCONT);
    scan();
    EXPECT_THAT(*monitor().failedCalendars, IsEmpty());
    EXPECT_THAT(listed(), ElementsAre("otter-cal-meeting", "gong-cal-evening"));
    EXPECT_THAT(announced(), IsEmpty());
}

TEST_F(CalendarMonitorTest, worksFromFoldersAloneWhereThereIsNoService) {
    ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
    home.write("calendars/club/evening.ics", vcalendar(vevent("evening", now + 2h, gong)));
    start();
    EXPECT_THAT(announced(), ElementsAre("+gong-cal-evening"));
    EXPECT_THAT(*monitor().failedCalendars, IsEmpty());
    EXPECT_TRUE(*monitor().isMonitoring);

    std::filesystem::rename(home.path / "calendars", home.path / "away");
    hasty.ahead += 30s; // the pause after a scan is over
    ASSERT_TRUE(comesTo(
        [&] { return *monitor().authorizationStatus == CalendarAuthorization::restricted; }));
    home.write("away/club/night.ics", vcalendar(vevent("night", now + 3h, otter)));
    std::filesystem::rename(home.path / "away", home.path / "calendars");
    hasty.ahead += 30s;
    ASSERT_TRUE(comesTo([&] { return !events.empty(); }));
    EXPECT_THAT(announced(), ElementsAre("+otter-cal-night"));
}

TEST_F(CalendarMonitorTest, knowsWithTheGrantThatThereIsNothingToRead) {
    ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
    Program asking(hasty, store, log, home.path / "preferences.json");
    std::optional<CalendarAuthorization> status;
    asking.monitor.requestAccess([&](bool) { status = *asking.monitor.authorizationStatus; });
    ASSERT_TRUE(comesTo([&] { return status.has_value(); }));
    EXPECT_EQ(status, CalendarAuthorization::restricted);
}

} // namespace
} // namespace quorva
