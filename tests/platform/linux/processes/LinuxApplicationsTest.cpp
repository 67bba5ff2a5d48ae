#include "platform/linux/processes/LinuxApplications.h"

#include "support/Eventually.h"
#include "support/ProcTree.h"
#include "support/RecordingLog.h"
#include "support/VirtualMainLoop.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

namespace quorva {
namespace {

using namespace std::chrono_literals;
using namespace std::string_view_literals;
using testing::ElementsAre;
using testing::IsEmpty;

std::string entryText(std::string_view name, std::string_view exec, std::string_view more = "") {
    return fmt::format("[Desktop Entry]\nType=Application\nName={}\nExec={}\n{}", name, exec, more);
}

class LinuxApplicationsTest : public testing::Test {
protected:
    void install(std::string_view file, std::string_view text) const {
        disk.write("staged", text); // and moved there in one step
        std::filesystem::create_directories((folder / file).parent_path());
        std::filesystem::rename(disk.path / "staged", folder / file);
    }
    void scope(std::string_view unit, std::string_view processes) const {
        disk.write(
            std::filesystem::path("cgroup/user.slice/user-1000.slice/user@1000.service/app.slice") /
                unit / "cgroup.procs",
            processes);
    }
    /// Starts the first reading of the entries.
    void start() {
        entries.emplace(loop, log,
                        DesktopEntryPlaces{.folders = {disk.path / "home", folder},
                                           .searchPath = {disk.path / "bin"}});
        applications.emplace(loop, table, *entries, ApplicationScopes(disk.path / "cgroup", 1000));
    }
    /// Each application as "identifier|name|process".
    std::vector<std::string> running() {
        loop.runPosted();
        std::vector<std::string> texts;
        for (const auto& a : applications->runningApplications())
            texts.push_back(fmt::format("{}|{}|{}", a.bundleIdentifier.value_or("-"),
                                        a.localizedName.value_or("-"), a.processIdentifier));
        return texts;
    }
    /// Runs the main loop until this is the listing.
    void expectRunning(const std::vector<std::string>& expected) {
        if (!applications)
            start();
        const bool isSo = eventually(loop, [&] {
            while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
            }
            return applications->isReady() && running() == expected;
        });
        EXPECT_TRUE(isSo) << testing::PrintToString(running());
    }
    std::string program(std::string_view name) const { return (disk.path / "bin" / name).string(); }

    TemporaryFolder disk;
    ProcTree proc;
    VirtualMainLoop loop;
    RecordingLog log;
    LinuxProcessTable table{loop, log, proc.path()};
    std::optional<DesktopEntries> entries;
    std::optional<LinuxApplications> applications;
    const std::filesystem::path folder = disk.path / "applications";
};

TEST_F(LinuxApplicationsTest, listsAnEntrysProgramOnceByItsTopmostProcess) {
    install("com.aisense.otter.desktop", entryText("Otter", program("otter") + " %U"));
    proc.add(50, program("otter"), {}, 40);
    proc.add(40, program("otter"), {}, 1);
    proc.add(30, program("otter"), {}, 50);
    proc.add(20, "/usr/bin/other");
    expectRunning({"com.aisense.otter|Otter|40"});
    EXPECT_EQ(applications->runningApplications()[0].executablePath, program("otter"));
}

TEST_F(LinuxApplicationsTest, followsTheWaysInWhichEntriesStartPrograms) {
    disk.write("bin/real/fathom", "");
    disk.write("bin/by-name", "");
    ::chmod(program("by-name").c_str(), 0755);
    std::filesystem::create_symlink(program("real/fathom"), disk.path / "bin/fathom");
    install("link.desktop", entryText("Link", program("fathom")));
    install("name.desktop", entryText("ByName", "env A=b by-name --flag"));
    install("sub/script.desktop", entryText("Script", "python3 -u /opt/x/main.py"));
    install("owner.desktop", entryText("Owner", "\"/opt/vendor one/start.sh\" %f"));
    install("web.desktop", entryText("Web page", program("browser") + " --app=x"));
    install("zbrowser.desktop", entryText("Browser", program("browser") + " %u"));
    install("flat.desktop", entryText("Flat", "/usr/bin/flatpak run x"));
    proc.add(1, program("real/fathom"));
    proc.add(2, program("by-name"));
    proc.add(3, "/usr/bin/python3", {"python3", "/opt/x/main.py"});
    proc.add(4, "/opt/vendor one/lib/helper");
    proc.add(5, program("browser"));
    proc.add(6, "/usr/bin/flatpak");
    proc.add(7, "/usr/bin/python3", {"python3", "other.py"});
    expectRunning({"link|Link|1", "name|ByName|2", "sub-script|Script|3", "owner|Owner|4",
                   "zbrowser|Browser|5"});
}

TEST_F(LinuxApplicationsTest, prefersTheUsersEntryAndHonoursItsDeletion) {
    install("a.desktop", entryText("System", program("a")));
    install("b.desktop", entryText("System", program("b")));
    disk.write("home/a.desktop", entryText("Mine", program("a")));
    disk.write("home/b.desktop", entryText("Mine", program("b"), "Hidden=true\n"));
    proc.add(1, program("a"));
    proc.add(2, program("b"));
    expectRunning({"a|Mine|1"});
}

TEST_F(LinuxApplicationsTest, usesTheCataloguesIdentifiers) {
    install("org.chromium.Chromium.desktop", entryText("Chromium", program("chromium")));
    proc.add(1, program("chromium"));
    proc.add(2, "/opt/zoom/zoom");
    proc.add(3, "/snap/slack/120/usr/lib/slack/slack");
    expectRunning(
        {"com.google.Chrome|Chromium|1", "us.zoom.xos|-|2", "com.tinyspeck.slackmacgap|-|3"});
}

TEST_F(LinuxApplicationsTest, takesAScopesWordForWhatWasStartedInIt) {
    install("org.kde.konsole.desktop", entryText("Konsole", program("konsole")));
    install("firefox.desktop", entryText("Firefox", program("firefox")));
    install("otter-web.desktop", entryText("Otter", program("chrome") + " --app-id=x"));
    install("chrome.desktop", entryText("Chrome", program("chrome")));
    scope("app-org.kde.konsole-1.scope", "10\n11\n12\n");
    scope("app-org.kde.konsole-1.scope/tab(9).scope", "13\n");
    scope("app-gnome-otter\\x2dweb-2.scope", "20\n21\n");
    scope("app-granola-3.scope", "30\n");
    proc.add(10, program("konsole"));
    proc.add(11, "/usr/bin/bash", {}, 10);
    proc.add(12, program("firefox"), {}, 11);
    proc.add(13, "/usr/bin/make", {}, 11);
    proc.add(20, program("chrome"));
    proc.add(21, program("chrome"), {}, 20);
    proc.add(30, "/usr/bin/electron", {"electron", "main.js"});
    expectRunning({"org.kde.konsole|Konsole|10", "org.mozilla.firefox|Firefox|12",
                   "otter-web|Otter|20", "granola|-|30"});
}

TEST_F(LinuxApplicationsTest, knowsFlatpaksSnapsAndAppImages) {
    install("us.zoom.Zoom.desktop", entryText("Zoom", "/usr/bin/flatpak run us.zoom.Zoom"));
    install("notta_notta.desktop", entryText("Notta", "/snap/bin/notta"));
    proc.add(1, "/app/extra/zoom/zoom");
    proc.write(1, "root/.flatpak-info", "[Application]\nname=us.zoom.Zoom\n");
    proc.add(2, "/app/bin/x");
    proc.write(2, "root/.flatpak-info", "no key file");
    proc.add(3, "/snap/notta/12/notta");
    proc.add(4, "/tmp/.mount_OtterAbCdEf/otter");
    proc.write(4, "environ", "A=b\0APPIMAGE=/home/u/Otter-1.2-x86_64.AppImage\0"sv);
    proc.add(5, "/tmp/.mount_OtterAbCdEf/helper", {}, 4);
    proc.write(5, "environ", "APPIMAGE=/home/u/Otter-1.2-x86_64.AppImage");
    expectRunning({"us.zoom.xos|Zoom|1", "notta|Notta|3", "-|Otter|4"});
}

TEST_F(LinuxApplicationsTest, leavesOutBadEntriesAndSaysSoOnce) {
    install("good.desktop", entryText("Good", program("good")));
    install("no-exec.desktop", "[Desktop Entry]\nType=Application\nName=NoExec\n");
    install("link.desktop", "[Desktop Entry]\nType=Link\nName=L\nURL=x\n");
    install("truncated.desktop", "[Desktop Ent");
    install("empty.desktop", "");
    install("quotes.desktop", entryText("Quotes", "\"" + program("good")));
    install("huge.desktop", entryText("Huge", program("huge")) + std::string(10 << 20, '#'));
    ::mkfifo((disk.path / "applications/pipe.desktop").c_str(), 0600);
    std::filesystem::create_symlink("loop.desktop", disk.path / "applications/loop.desktop");
    std::filesystem::create_directory_symlink(".", disk.path / "applications/again");
    proc.add(1, program("good"));
    proc.add(2, program("huge"));
    expectRunning({"good|Good|1"});
    install("added.desktop", entryText("Added", program("huge")));
    loop.advance(600s);
    expectRunning({"good|Good|1", "added|Added|2"});
    for (const auto* file : {"truncated", "empty", "huge", "pipe", "loop"})
        EXPECT_EQ(log.count(fmt::format("/{}.desktop is left out", file)), 1U) << file;
    EXPECT_EQ(log.messages.size(), 5U);
}

TEST_F(LinuxApplicationsTest, noticesInstalledChangedAndRemovedEntries) {
    const auto nextTick = [] { std::this_thread::sleep_for(20ms); }; // of the file system's clock
    disk.write("other/otter.desktop", entryText("Otter", program("otter")));
    proc.add(1, program("otter"));
    expectRunning({});
    loop.advance(1s);
    int told = 0;
    const auto subscription = applications->onLaunch([&] { ++told; });
    std::filesystem::rename(disk.path / "other", folder);
    expectRunning({"otter|Otter|1"});
    EXPECT_EQ(told, 1);
    nextTick();
    disk.write("applications/otter.desktop", entryText("Renamed", program("otter")));
    loop.advance(300s); // the folder's time does not show it
    expectRunning({"otter|Renamed|1"});
    nextTick();
    std::filesystem::remove(folder / "otter.desktop");
    expectRunning({});
}

TEST_F(LinuxApplicationsTest, listsNothingUntilEntriesAreReadOrTakeTooLong) {
    install("otter.desktop", entryText("Otter", program("otter")));
    proc.add(1, program("otter"));
    proc.add(2, "/opt/zoom/zoom");
    start();
    int ready = 0;
    const auto subscription = applications->onReady([&] { ++ready; });
    EXPECT_THAT(running(), IsEmpty());
    EXPECT_FALSE(applications->isReady());
    loop.advance(10s);
    EXPECT_TRUE(applications->isReady());
    EXPECT_THAT(running(), ElementsAre("us.zoom.xos|-|2"));
    expectRunning({"otter|Otter|1", "us.zoom.xos|-|2"});
    EXPECT_EQ(ready, 1);
}

TEST_F(LinuxApplicationsTest, tellsABurstOfLaunchesAtItsBeginningAndAtItsEnd) {
    start();
    int told = 0;
    const auto subscription = applications->onLaunch([&] { ++told; });
    for (int i = 0; i < 50; ++i)
        applications->noteLaunch();
    EXPECT_EQ(told, 1);
    loop.advance(9s);
    EXPECT_EQ(told, 2);
    applications->noteLaunch();
    EXPECT_EQ(told, 3);
    applications->noteQuit();
    EXPECT_EQ(told, 3);
}

} // namespace
} // namespace quorva
