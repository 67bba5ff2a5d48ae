// Which programs are started for settings and addresses: scripts stand in for them.
#include "platform/linux/desktop/DesktopSettings.h"

#include "support/TemporaryFolder.h"
#include "support/TurningMainLoop.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorva {
namespace {

using testing::IsEmpty;

class DesktopSettingsTest : public testing::Test, protected TurningMainLoop {
protected:
    DesktopSettingsTest() {
        ::setenv("PATH", (folder.path.string() + ":/usr/bin:/bin").c_str(), 1);
    }

    /// A program that tells what it was started with, and in which session.
    std::string install(const std::string& name) {
        const auto path = folder.path / name;
        folder.write(name, "#!/bin/sh\necho \"$(basename \"$0\") $* $(ps -o sid= -p $$)\" > \"" +
                               (folder.path / "told").string() + "\"\n");
        ::chmod(path.c_str(), 0700);
        return path.string();
    }
    [[nodiscard]] bool isToldOf(const std::string& words) {
        return comesTo([&] { return folder.read("told").starts_with(words + " "); });
    }

    TemporaryFolder folder;
};

} // namespace

TEST_F(DesktopSettingsTest, opensThePanelThatTheDesktopHas) {
    EXPECT_FALSE(DesktopSettings("GNOME").open(SettingsPane::internetAccounts));
    install("gnome-control-center");
    EXPECT_TRUE(DesktopSettings("ubuntu:GNOME").open(SettingsPane::internetAccounts));
    ASSERT_TRUE(isToldOf("gnome-control-center online-accounts"));
    EXPECT_NE(std::stoi(folder.read("told").substr(37)), ::getsid(0)) << "a session of its own";
    EXPECT_TRUE(DesktopSettings("GNOME").open(SettingsPane::accessibility));
    EXPECT_TRUE(isToldOf("gnome-control-center universal-access"));

    EXPECT_FALSE(DesktopSettings("KDE").open(SettingsPane::accessibility));
    install("systemsettings5");
    EXPECT_TRUE(DesktopSettings("KDE").open(SettingsPane::accessibility));
    EXPECT_TRUE(isToldOf("systemsettings5 kcm_access"));
    for (const auto* const other : {"", "sway", ":", "gnome", "LXQt:x"})
        EXPECT_THAT(DesktopSettings::commands(other, SettingsPane::accessibility), IsEmpty());
}

TEST_F(DesktopSettingsTest, opensAddressesOfTwoSchemesOnly) {
    const auto program = install("browser");
    const auto data = std::filesystem::path(std::getenv("XDG_DATA_HOME")) / "applications";
    folder.write("browser.desktop", "[Desktop Entry]\nType=Application\nName=B\nExec=" + program +
                                        " %u\nMimeType=x-scheme-handler/https;"
                                        "x-scheme-handler/http;x-scheme-handler/file;\n");
    std::filesystem::create_directories(data);
    std::filesystem::copy(folder.path / "browser.desktop", data);
    std::filesystem::create_directories(std::getenv("XDG_CONFIG_HOME"));
    std::ofstream(std::filesystem::path(std::getenv("XDG_CONFIG_HOME")) / "mimeapps.list")
        << "[Default Applications]\nx-scheme-handler/https=browser.desktop\n";

    DesktopSettings settings("");
    EXPECT_TRUE(settings.openAddress("https://example.org/a?b=%20c"));
    EXPECT_TRUE(isToldOf("browser https://example.org/a?b=%20c"));
    for (const auto* const address :
         {"http://example.org", "file:///etc/passwd", "", "https", "https://exa mple.org",
          "javascript:alert(1)", "-https://example.org", "https://\n", "appstream://quorva"})
        EXPECT_FALSE(settings.openAddress(address)) << address;
    EXPECT_TRUE(DesktopSettings::mayBeOpened("appstream://com.veltran.QuorvaApp"));
}

TEST_F(DesktopSettingsTest, startsProgramsOutsideOfItsOwnConfinement) {
    for (const auto* const program : {"gnome-control-center", "systemd-run"})
        install(program);
    ASSERT_EQ(::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0), 0);
    ::setenv("INVOCATION_ID", "0123456789abcdef0123456789abcdef", 1);
    EXPECT_TRUE(DesktopSettings("GNOME").open(SettingsPane::internetAccounts));
    ::unsetenv("INVOCATION_ID");
    EXPECT_TRUE(isToldOf("systemd-run --user --quiet --collect --property=ExitType=cgroup -- "
                         "gnome-control-center online-accounts"));
}

} // namespace quorva
