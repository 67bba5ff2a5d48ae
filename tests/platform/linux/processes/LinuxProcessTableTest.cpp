#include "platform/linux/processes/LinuxProcessTable.h"

#include "platform/linux/glib/GLibMainLoop.h"
#include "support/ProcTree.h"
#include "support/RecordingLog.h"
#include "support/VirtualMainLoop.h"

#include <gmock/gmock.h>

#include <csignal>
#include <sys/wait.h>

namespace quorva {
namespace {

using namespace std::chrono_literals;
using namespace std::string_view_literals;

std::string commandScript(std::string_view interpreter, std::vector<std::string_view> arguments) {
    return scriptOfCommand(interpreter, arguments).value_or("none");
}

TEST(ProcFormats, readAncestryPastNamesThatHoldAnything) {
    const auto ancestry =
        parseStat("7 (x) S 9 (\n) S 42 7 7 0 -1 0 1 0 0 0 0 0 0 0 20 0 1 0 12345 0 0");
    ASSERT_TRUE(ancestry);
    EXPECT_EQ(ancestry->parent, 42);
    EXPECT_EQ(ancestry->startTicks, 12345U);
    for (const auto* broken :
         {"", "7 (x", "7 (x) S", "7 (x) S y 7 7 0 -1 0 1 0 0 0 0 0 0 0 20 0 1 0 1",
          "7 (x) S 1 7 7 0 -1 0 1 0 0 0 0 0 0 0 20 0 1 0 99999999999999999999"})
        EXPECT_FALSE(parseStat(broken)) << broken;
}

TEST(ProcFormats, findTheScriptThatAnInterpreterRuns) {
    EXPECT_EQ(commandScript("/usr/bin/python3.11", {"python3", "-u", "-W", "ignore", "/o/otter"}),
              "/o/otter");
    EXPECT_EQ(commandScript("/usr/bin/dash", {"/bin/sh", "/o/otter-helper", "-c"}),
              "/o/otter-helper");
    EXPECT_EQ(commandScript("/usr/bin/java", {"java", "-cp", "/a:/b", "-jar", "/o/notta.jar"}),
              "/o/notta.jar");
    EXPECT_EQ(commandScript("/opt/electron25/electron", {"electron", "--x=/y", "/o/app.asar"}),
              "/o/app.asar");
    EXPECT_EQ(commandScript("/usr/bin/bash", {"bash", "-c", "/o/otter"}), "none");
    EXPECT_EQ(commandScript("/usr/bin/python3", {"python3", "-m", "/o/otter"}), "none");
    EXPECT_EQ(commandScript("/usr/bin/node", {"node", "otter.js", "/o/otter"}), "none");
    EXPECT_EQ(commandScript("/usr/bin/vim", {"vim", "/o/otter"}), "none");
    EXPECT_EQ(commandScript("/usr/bin/python3", {}), "none");
}

TEST(ProcFormats, readTheApplicationOfAUnit) {
    const auto idOf = [](std::string_view unit) {
        const auto application = applicationOfUnit(unit);
        if (!application)
            return std::string("none");
        return (application->kind == UnitApplication::Kind::snap ? "snap " : "") + application->id;
    };
    EXPECT_EQ(idOf("app-gnome-firefox\\x2desr-1234.scope"), "firefox-esr");
    EXPECT_EQ(idOf("app-com.aisense.otter-77.scope"), "com.aisense.otter");
    EXPECT_EQ(idOf("app-flatpak-us.zoom.Zoom-991.scope"), "us.zoom.Zoom");
    EXPECT_EQ(idOf("app-org.kde.kate@0af3.service"), "org.kde.kate");
    EXPECT_EQ(idOf("app-gnome-krisp@autostart.service"), "krisp");
    EXPECT_EQ(idOf("snap.zoom-client.zoom-client-7c1f.scope"), "snap zoom-client");
    for (const auto* other : {"vte-spawn-1.scope", "session-2.scope", "app.slice", "app-.scope",
                              "app-x.scope", "snap..scope", "dbus.service", "", "app-a\\x2"})
        EXPECT_EQ(idOf(other), "none") << other;
}

TEST(ProcFormats, nameAnAppImageWithoutVersionAndArchitecture) {
    EXPECT_EQ(nameOfAppImage("/home/u/Otter-1.2.3-x86_64.AppImage"), "Otter");
    EXPECT_EQ(nameOfAppImage("/home/u/Happy Scribe_x86_64.appimage"), "Happy Scribe");
    EXPECT_EQ(nameOfAppImage("/a/tl-dv.AppImage"), "tl-dv");
    EXPECT_EQ(nameOfAppImage("/a/x"), "x");
}

class LinuxProcessTableTest : public testing::Test {
protected:
    std::string programOf(ProcessIdentifier process) {
        const auto [status, path] = table.executable(process);
        switch (status) {
        case Executable::Status::read:
            return path;
        case Executable::Status::none:
            return "none";
        case Executable::Status::denied:
            break;
        }
        return "denied";
    }

    ProcTree proc;
    VirtualMainLoop loop;
    RecordingLog log;
    LinuxProcessTable table{loop, log, proc.path()};
};

TEST_F(LinuxProcessTableTest, readsProgramsOfEveryKind) {
    std::filesystem::create_directory(proc.path() / "self");
    std::filesystem::create_directory(proc.path() / "12x");
    proc.add(2, "");
    proc.add(300, "/usr/bin/python3.11", {"python3", "/opt/otter/otter-helper"});
    proc.add(31, "/opt/Otter.app/Contents/MacOS/Otter (deleted)");
    proc.add(32, "/opt/a\nb\xff/x");
    proc.add(33, "/" + std::string(4094, 'x'));
    proc.add(34, "/usr/bin/bash", {});
    EXPECT_EQ(table.processIdentifiers(), (std::vector<ProcessIdentifier>{2, 31, 32, 33, 34, 300}));
    EXPECT_EQ(programOf(2), "none");
    EXPECT_EQ(programOf(300), "/opt/otter/otter-helper");
    EXPECT_EQ(programOf(31), "/opt/Otter.app/Contents/MacOS/Otter");
    EXPECT_EQ(programOf(32), "/opt/a\nb\uFFFD/x");
    EXPECT_EQ(programOf(33).size(), 4095U);
    EXPECT_EQ(programOf(34), "/usr/bin/bash");
    EXPECT_EQ(programOf(35), "none");
    EXPECT_EQ(table.ancestry(31)->startTicks, 3100U);
    EXPECT_EQ(table.ancestry(35), std::nullopt);
}

TEST_F(LinuxProcessTableTest, seesOneMomentPerTurnOfTheLoop) {
    proc.add(10, "/usr/bin/a");
    EXPECT_EQ(programOf(10), "/usr/bin/a");
    proc.replaceExecutable(10, "/usr/bin/b");
    proc.add(11, "/usr/bin/c");
    EXPECT_EQ(programOf(10), "/usr/bin/a");
    EXPECT_EQ(programOf(11), "none");
    loop.runPosted();
    EXPECT_EQ(programOf(10), "/usr/bin/b");
    EXPECT_EQ(programOf(11), "/usr/bin/c");
}

TEST_F(LinuxProcessTableTest, noticesAnotherScriptAndAnotherProcessUnderTheSameIdentifier) {
    proc.add(10, "/usr/bin/dash", {"sh", "/opt/wrapper"}, 7);
    EXPECT_EQ(programOf(10), "/opt/wrapper");
    EXPECT_EQ(table.ancestry(10)->parent, 7);
    proc.write(10, "cmdline", "sh\0/opt/otter"sv);
    loop.runPosted();
    EXPECT_EQ(programOf(10), "/opt/otter");

    for (int look = 0; look < 25; ++look) {
        loop.runPosted();
        EXPECT_EQ(programOf(10), "/opt/otter");
    }
    proc.write(10, "cmdline", "sh\0/opt/late"sv);
    for (int look = 0; look < 10; ++look) {
        loop.runPosted();
        (void)programOf(10);
    }
    EXPECT_EQ(programOf(10), "/opt/late");

    std::filesystem::rename(proc.path() / "10", proc.path() / "old"); // keeps its inode in use
    proc.add(10, "/usr/bin/dash", {"sh", "/opt/otter"}, 8);
    loop.runPosted();
    EXPECT_EQ(table.ancestry(10)->parent, 8);
}

TEST_F(LinuxProcessTableTest, saysOnceThatProcessesCannotBeListedOrRead) {
    EXPECT_EQ(table.processIdentifiers(), std::nullopt) << "no process at all is no process list";
    loop.runPosted();
    EXPECT_EQ(table.processIdentifiers(), std::nullopt);
    EXPECT_EQ(log.count("can't be listed"), 1U);

    proc.add(10, "/usr/bin/a");
    std::filesystem::create_directory(proc.path() / "11");
    std::filesystem::create_directory(proc.path() / "11" / "exe"); // not a link: EINVAL
    loop.runPosted();
    EXPECT_EQ(programOf(10), "/usr/bin/a");
    EXPECT_EQ(programOf(11), "denied");
    loop.runPosted();
    EXPECT_EQ(programOf(11), "denied");
    EXPECT_EQ(log.count("too long or damaged"), 1U);
}

TEST(LinuxProcessTableReal, findsItselfAndFollowsAProcessToItsEnd) {
    GLibMainLoop loop;
    RecordingLog log;
    LinuxProcessTable table(loop, log);
    const auto self = table.executable(::getpid());
    EXPECT_EQ(self.path, std::filesystem::read_symlink("/proc/self/exe"));
    EXPECT_EQ(table.ancestry(::getpid())->parent, ::getppid());

    const auto child = ::fork();
    if (child == 0) {
        ::pause();
        ::_exit(0);
    }
    bool ended = false;
    const auto subscription = table.onExit(child, [&] {
        ended = true;
        loop.quit();
    });
    const auto deadline = loop.after(10s, [&] { loop.quit(); });
    ::kill(child, SIGKILL);
    loop.run();
    EXPECT_TRUE(ended);
    ::waitpid(child, nullptr, 0);
    EXPECT_FALSE(table.onExit(child, [] {})) << "it has ended already";
}

} // namespace
} // namespace quorva
