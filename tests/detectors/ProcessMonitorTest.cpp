#include "detectors/ProcessMonitor.h"

#include "support/FakeProcesses.h"
#include "support/VirtualMainLoop.h"

#include <gmock/gmock.h>

namespace quorva {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

class ProcessMonitorTest : public testing::Test {
protected:
    ProcessMonitorTest() {
        monitor.onBotDetected = [this](const DetectedBot& bot) { events.push_back("+" + bot.id); };
        monitor.onBotDisappeared = [this](const DetectedBot& bot) {
            events.push_back("-" + bot.id);
        };
        table.run(1, "/sbin/init");
    }

    /// The announcements since the last call.
    std::vector<std::string> announced() { return std::exchange(events, {}); }

    std::vector<std::string> listed() const {
        std::vector<std::string> ids;
        for (const auto& bot : *monitor.detectedBots)
            ids.push_back(bot.id);
        return ids;
    }

    VirtualMainLoop loop;
    FakeApplications applications;
    FakeProcessTable table;
    ProcessMonitor monitor{loop, applications, table};
    std::vector<std::string> events;
};

TEST_F(ProcessMonitorTest, announcesAnApplicationOnceByItsBestEvidence) {
    applications.running = {{"com.aisense.otter", "Otter", "/opt/otter/otter", 4711}};
    table.run(4711, "/opt/otter/otter");
    table.run(4712, "/opt/otter/Otter.app/otter-helper");
    monitor.startMonitoring();
    loop.advance(30s);

    EXPECT_THAT(announced(), ElementsAre("+otter-4711"));
    ASSERT_EQ(monitor.detectedBots->size(), 1U);
    const auto& bot = monitor.detectedBots->front();
    EXPECT_EQ(bot.method, DetectionMethod::bundleIdentifier);
    EXPECT_EQ(bot.confidence, 100);
    EXPECT_EQ(bot.matchedValue, "com.aisense.otter");
    EXPECT_EQ(monitor.coverage.get(), (ProcessCoverage{.listed = true, .processes = 3}));
}

TEST_F(ProcessMonitorTest, triesIdentifierThenNameThenPathOfAnApplication) {
    applications.running = {
        {"org.example.x", "Fathom Desktop", "/x", 10},
        {std::nullopt, "Some App", "/opt/Granola.app/granola", 11},
        {std::nullopt, std::nullopt, std::nullopt, 12},
        {"COM.veltran.quorvaapp", "Otter", "/opt/otter.app/x", 13},
    };
    monitor.scan();
    EXPECT_THAT(listed(), ElementsAre("granola-11", "fathom-10")) << "highest confidence first";
    EXPECT_EQ(monitor.detectedBots->at(1).matchedValue, "Fathom Desktop");
    EXPECT_EQ(monitor.detectedBots->at(1).method, DetectionMethod::processName);
}

TEST_F(ProcessMonitorTest, matchesProcessesByPathThenByFileName) {
    table.run(20, "/Apps/Otter.app/Contents/MacOS/Otter");
    table.run(21, "/usr/bin/rev");
    table.run(22, "/usr/local/bin/Fathom-Helper");
    table.run(23, "/usr/bin/otterly");
    table.run(0, "/opt/cluely.app/x");
    table.processes[24] = {Executable::Status::denied, ""};
    monitor.scan();
    EXPECT_THAT(listed(), ElementsAre("otter-20", "fathom-22"));
    EXPECT_EQ(monitor.detectedBots->at(0).method, DetectionMethod::processPath);
    EXPECT_EQ(monitor.detectedBots->at(1).matchedValue, "Fathom-Helper");
    EXPECT_EQ(monitor.coverage->denied, 1U);
}

TEST_F(ProcessMonitorTest, waitsUntilApplicationsCanBeListed) {
    applications.ready = false;
    applications.running = {{"com.aisense.otter", "Otter", "/opt/otter/otter", 4712}};
    table.run(4711, "/opt/otter/Otter.app/otter-helper");
    monitor.startMonitoring();
    loop.advance(9s);
    EXPECT_FALSE(monitor.lastScanDate->has_value());
    applications.getReady();
    loop.runPosted();
    EXPECT_THAT(announced(), ElementsAre("+otter-4712")) << "and not by its helper";
}

TEST_F(ProcessMonitorTest, keepsTheFirstOfEquallyConfidentProcesses) {
    table.run(30, "/a/otter.app/x");
    table.run(31, "/b/otter.app/x");
    monitor.scan();
    EXPECT_THAT(listed(), ElementsAre("otter-30"));
}

TEST_F(ProcessMonitorTest, keepsAProductSeenOnceThroughASixSecondGapButNotThroughTen) {
    table.run(40, "/usr/bin/otter");
    monitor.scan();
    table.end(40);
    loop.advance(6s);
    monitor.scan();
    EXPECT_THAT(listed(), ElementsAre("otter-40"));
    table.run(40, "/usr/bin/otter");
    monitor.scan();
    EXPECT_THAT(announced(), ElementsAre("+otter-40"));

    table.end(40);
    loop.advance(10s);
    monitor.scan();
    table.run(40, "/usr/bin/otter");
    monitor.scan();
    EXPECT_THAT(announced(), ElementsAre("-otter-40", "+otter-40"));
}

TEST_F(ProcessMonitorTest, keepsAConfirmedProductThroughATwelveSecondGapButNotThroughSixteen) {
    table.run(50, "/usr/bin/otter");
    monitor.startMonitoring();
    loop.advance(6s); // the third scan
    table.processes.erase(50);
    loop.advance(12s);
    EXPECT_THAT(listed(), ElementsAre("otter-50"));
    loop.advance(4s);
    EXPECT_THAT(listed(), IsEmpty());
    EXPECT_THAT(announced(), ElementsAre("+otter-50", "-otter-50"));
}

TEST_F(ProcessMonitorTest, announcesARestartUnderANewProcessWithoutADisappearance) {
    table.run(60, "/usr/bin/otter");
    monitor.startMonitoring();
    table.processes.erase(60);
    table.run(61, "/usr/bin/otter");
    loop.advance(3s);
    EXPECT_THAT(announced(), ElementsAre("+otter-60", "+otter-61"));
    table.processes.erase(61);
    table.run(60, "/usr/bin/otter");
    loop.advance(3s);
    EXPECT_THAT(announced(), IsEmpty()) << "that process has been announced";
}

TEST_F(ProcessMonitorTest, scansAtOnceWhenAnApplicationStartsOrEndsOrADetectedProcessEnds) {
    monitor.startMonitoring();
    const auto scanned = [this] {
        const auto before = monitor.lastScanDate.get();
        loop.runPosted();
        return monitor.lastScanDate.get() != before;
    };
    loop.advance(100ms);
    applications.launches.call();
    EXPECT_TRUE(scanned());
    loop.advance(100ms);
    table.run(70, "/usr/bin/otter");
    applications.quits.call();
    EXPECT_TRUE(scanned());
    EXPECT_THAT(announced(), ElementsAre("+otter-70"));
    loop.advance(100ms);
    table.end(70);
    EXPECT_TRUE(scanned());
}

TEST_F(ProcessMonitorTest, runsCloseTriggersOneAfterTheOtherAndIgnoresThoseFromItsCallbacks) {
    int scans = 0;
    const auto subscription =
        monitor.lastScanDate.observe([&](const std::optional<Time>&) { ++scans; });
    scans = 0;
    monitor.onBotDetected = [&](const DetectedBot&) { monitor.scan(); };
    table.run(80, "/usr/bin/otter");
    monitor.startMonitoring();
    EXPECT_EQ(scans, 1);
    applications.launches.call();
    applications.quits.call();
    EXPECT_EQ(scans, 1) << "a trigger waits for its turn";
    loop.runPosted();
    EXPECT_EQ(scans, 3);
}

TEST_F(ProcessMonitorTest, forgetsGraceOnAForcedRescan) {
    table.run(90, "/usr/bin/otter");
    monitor.scan();
    table.end(90);
    loop.advance(5s);
    monitor.forceRescan();
    EXPECT_THAT(announced(), ElementsAre("+otter-90", "-otter-90"));
}

TEST_F(ProcessMonitorTest, keepsItsListWhileStoppedAndDoesNotAnnounceItAgain) {
    table.run(100, "/usr/bin/otter");
    table.run(101, "/usr/bin/fathom");
    monitor.startMonitoring();
    monitor.startMonitoring();
    monitor.stopMonitoring();
    EXPECT_THAT(announced(), testing::SizeIs(2));
    table.end(101);
    applications.launches.call();
    loop.advance(60s);
    EXPECT_THAT(announced(), IsEmpty());
    EXPECT_THAT(listed(), testing::UnorderedElementsAre("fathom-101", "otter-100"));
    monitor.startMonitoring();
    EXPECT_THAT(announced(), ElementsAre("-fathom-101"));
}

TEST_F(ProcessMonitorTest, stillScansApplicationsWhenProcessesCannotBeListed) {
    applications.running = {{"ai.krisp", "Krisp", std::nullopt, 110}};
    table.canBeListed = false;
    monitor.scan();
    EXPECT_THAT(listed(), ElementsAre("krisp-110"));
    EXPECT_EQ(monitor.coverage.get(), ProcessCoverage{});
}

TEST_F(ProcessMonitorTest, findsOneAmongAHundredThousandProcesses) {
    for (ProcessIdentifier process = 1; process < 100'000; ++process)
        table.run(process, "/usr/lib/some/helper-" + std::to_string(process));
    table.run(100'000, "/usr/bin/otter");
    monitor.scan();
    EXPECT_THAT(listed(), ElementsAre("otter-100000"));
    EXPECT_EQ(monitor.coverage->processes, 100'000U);
}

TEST_F(ProcessMonitorTest, tellsOfFindingsBeforeItPublishesThem) {
    std::size_t listedWithin = 9;
    monitor.onBotDetected = [&](const DetectedBot&) {
        listedWithin = monitor.detectedBots->size();
    };
    table.run(120, "/usr/bin/otter");
    monitor.scan();
    EXPECT_EQ(listedWithin, 0U);
}

TEST(ProcessMonitorLifetime, leavesNothingBehindThatRunsAfterItsEnd) {
    VirtualMainLoop loop;
    FakeApplications applications;
    FakeProcessTable table;
    table.run(1, "/usr/bin/otter");
    int announcements = 0;
    {
        ProcessMonitor monitor(loop, applications, table);
        monitor.onBotDetected = [&](const DetectedBot&) { ++announcements; };
        monitor.startMonitoring();
        applications.launches.call(); // still pending when the monitor is destroyed
    }
    table.run(2, "/usr/bin/fathom");
    applications.launches.call();
    table.end(1);
    loop.advance(60s);
    EXPECT_EQ(announcements, 1);
}

} // namespace
} // namespace quorva
