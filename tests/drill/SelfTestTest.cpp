#include "drill/SelfTest.h"

#include "platform/linux/storage/OpenSslSha256.h"
#include "support/FakeDrillStandIns.h"
#include "support/RecordingLog.h"
#include "support/VirtualMainLoop.h"

#include <gmock/gmock.h>

namespace quorva {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class SelfTestTest : public testing::Test {
protected:
    SelfTestTest() { table.run(1, "/sbin/init"); }

    /// The result of testing one source, within its time limit.
    DrillFinding tryLink(DrillLink link) {
        std::vector<DrillFinding> found;
        test.run({link}, nullptr,
                 [&](const std::vector<DrillFinding>& findings) { found = findings; });
        loop.advance(9s);
        if (found.empty())
            loop.advance(1s);
        EXPECT_THAT(found, SizeIs(1));
        EXPECT_EQ(standIns.present, 0) << "a stand-in was left";
        return found.empty() ? DrillFinding{} : found.front();
    }

    VirtualMainLoop loop;
    RecordingLog log;
    FakeProcessTable table;
    FakeApplications applications;
    FakeCalendarStore calendars;
    FakeAccessibilityTree tree{loop};
    Platform platform{loop, log, table, applications, calendars, tree, openSslSha256};
    FakeDrillStandIns standIns{loop, table, tree};
    SelfTest test{platform, standIns};
};

TEST_F(SelfTestTest, triesOneLinkAfterTheOtherAndTellsOfEach) {
    std::vector<DrillLink> told;
    std::vector<DrillFinding> found;
    test.run(
        {DrillLink::process, DrillLink::calendar, DrillLink::meeting},
        [&](const DrillFinding& finding) {
            told.push_back(finding.link);
            EXPECT_EQ(standIns.present, 1) << "one at a time";
        },
        [&](const std::vector<DrillFinding>& findings) { found = findings; });
    EXPECT_TRUE(test.isRunning());
    loop.advance(1s);
    EXPECT_THAT(told, ElementsAre(DrillLink::process, DrillLink::calendar, DrillLink::meeting));
    EXPECT_THAT(standIns.put, ElementsAre("program", "calendar", "window"));
    ASSERT_THAT(found, SizeIs(3));
    for (const auto& finding : found)
        EXPECT_FALSE(finding.isBroken()) << finding.broken.step << ": " << finding.broken.problem;
    EXPECT_THAT(found[0].passed.back(), HasSubstr("matched \"quorva-drill-"));
    EXPECT_THAT(found[1].passed.back(), HasSubstr("service answers"));
    EXPECT_THAT(found[2].passed.back(), HasSubstr("matched \"Drill Notetaker\""));
    EXPECT_EQ(standIns.present, 0);
    EXPECT_FALSE(test.isRunning());
    EXPECT_THAT(tree.requested, IsEmpty()) << "windows are read no longer";
    EXPECT_THAT(calendars.fetches, IsEmpty()) << "the user's calendars are not looked at";
}

TEST_F(SelfTestTest, isDroppedWithoutACallAndTakesItsStandInDown) {
    auto dropped = std::make_unique<SelfTest>(platform, standIns);
    const auto fail = [](const auto&) { FAIL() << "called after its end"; };
    standIns.isAnswering = false;
    dropped->run({DrillLink::process, DrillLink::meeting}, fail, fail);
    loop.runPosted();
    EXPECT_EQ(standIns.present, 1);
    dropped.reset();
    EXPECT_EQ(standIns.present, 0);
    loop.advance(1min);
}

struct Fault {
    DrillLink link;
    std::string step;
    std::string problem;
    std::function<void(FakeDrillStandIns&, FakeProcessTable&, FakeAccessibilityTree&)> make;

    friend void PrintTo(const Fault& fault, std::ostream* out) {
        *out << fault.step << ", " << fault.problem;
    }
};

class SelfTestFaultTest : public SelfTestTest, public testing::WithParamInterface<Fault> {};

TEST_P(SelfTestFaultTest, isNamed) {
    const auto& [link, step, problem, make] = GetParam();
    make(standIns, table, tree);
    const auto finding = tryLink(link);
    EXPECT_EQ(finding.broken.step, step);
    EXPECT_THAT(finding.broken.problem, HasSubstr(problem));
    EXPECT_LE(finding.took, 10s);
}

using StandIns = FakeDrillStandIns;
using Table = FakeProcessTable;
using Tree = FakeAccessibilityTree;

INSTANTIATE_TEST_SUITE_P(
    OfProcesses, SelfTestFaultTest,
    testing::Values(
        Fault{DrillLink::process, "start the stand-in", "no space left",
              [](StandIns& it, Table&, Tree&) { it.problem = "no space left"; }},
        Fault{DrillLink::process, "start the stand-in", "longer than 10 seconds",
              [](StandIns& it, Table&, Tree&) { it.isAnswering = false; }},
        Fault{DrillLink::process, "list the processes", "/proc is not mounted",
              [](StandIns&, Table& table, Tree&) { table.canBeListed = false; }},
        Fault{DrillLink::process, "list the processes", "4711, has ended or is hidden",
              [](StandIns& it, Table&, Tree&) { it.isHidden = true; }},
        Fault{DrillLink::process, "read the executable of the stand-in", "/proc/PID/exe",
              [](StandIns& it, Table&, Tree&) { it.executable = Executable::Status::denied; }},
        Fault{DrillLink::process, "match the stand-in", "listed as \"/tmp/other\"",
              [](StandIns& it, Table&, Tree&) { it.otherName = "other"; }}));

INSTANTIATE_TEST_SUITE_P(
    OfCalendars, SelfTestFaultTest,
    testing::Values(
        Fault{DrillLink::calendar, "write a calendar", "no space left",
              [](StandIns& it, Table&, Tree&) { it.problem = "no space left"; }},
        Fault{DrillLink::calendar, "write a calendar", "longer than 10 seconds",
              [](StandIns& it, Table&, Tree&) { it.isAnswering = false; }},
        Fault{DrillLink::calendar, "read the calendar", "longer than 10 seconds",
              [](StandIns& it, Table&, Tree&) { it.calendar.answersAtOnce = false; }},
        Fault{DrillLink::calendar, "read the calendar", "permission denied",
              [](StandIns& it, Table&, Tree&) {
                  it.calendar.failed = {{"Drill", "permission denied"}};
              }},
        Fault{DrillLink::calendar, "match the invitation", "not detected",
              [](StandIns& it, Table&, Tree&) { it.otherAttendee = "ann@example.org"; }},
        Fault{DrillLink::calendar, "ask the calendar service", "evolution-source-registry",
              [](StandIns& it, Table&, Tree&) { it.service = CalendarServiceState::silent; }},
        Fault{DrillLink::calendar, "ask the calendar service", "does not answer",
              [](StandIns& it, Table&, Tree&) { it.isServiceAnswering = false; }}));

INSTANTIATE_TEST_SUITE_P(
    OfMeetings, SelfTestFaultTest,
    testing::Values(Fault{DrillLink::meeting, "read windows", "toolkit-accessibility true",
                          [](StandIns&, Table&, Tree& tree) { tree.isOn = false; }},
                    Fault{DrillLink::meeting, "show a window", "no session bus",
                          [](StandIns& it, Table&, Tree&) { it.problem = "no session bus"; }},
                    Fault{DrillLink::meeting, "show a window", "does not answer",
                          [](StandIns& it, Table&, Tree&) { it.isAnswering = false; }},
                    Fault{DrillLink::meeting, "read the window", "has ended or is hidden",
                          [](StandIns& it, Table&, Tree&) { it.isHidden = true; }},
                    Fault{DrillLink::meeting, "read the window", "does not answer as a window",
                          [](StandIns& it, Table&, Tree&) {
                              it.windowProblem = "it does not answer as a window";
                          }},
                    Fault{DrillLink::meeting, "read the window", "no answer came",
                          [](StandIns& it, Table&, Tree&) { it.isWindowAnswering = false; }},
                    Fault{
                        DrillLink::meeting, "match the participant", "nobody in it detected",
                        [](StandIns& it, Table&, Tree&) { it.otherParticipant = "Bob Example"; }}));

TEST_F(SelfTestTest, countsAComputerWithoutACalendarServiceAsSound) {
    standIns.service = CalendarServiceState::absent;
    const auto finding = tryLink(DrillLink::calendar);
    EXPECT_FALSE(finding.isBroken());
    EXPECT_THAT(finding.passed.back(), HasSubstr("no calendar service here"));
}

} // namespace
} // namespace quorva
