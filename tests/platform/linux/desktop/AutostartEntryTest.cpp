// The entry that has the program started at login, as files and as the desktop's library reads it.
#include "platform/linux/desktop/AutostartEntry.h"

#include "platform/linux/glib/Handles.h"
#include "support/TemporaryFolder.h"

#include <gio/gdesktopappinfo.h>
#include <gmock/gmock.h>

#include <chrono>
#include <sys/stat.h>
#include <thread>

namespace quorva {
namespace {

using testing::HasSubstr;

class AutostartEntryTest : public testing::Test {
protected:
    [[nodiscard]] std::string entry() const { return folder.read(name); }

    const std::string name = "autostart/com.veltran.QuorvaApp.desktop";
    TemporaryFolder folder;
    const AutostartEntry autostart{folder.path, "/usr/bin/quorva"};
};

} // namespace

TEST_F(AutostartEntryTest, comesAndGoesWithItsEntry) {
    EXPECT_EQ(autostart.status(), LoginItemStatus::notRegistered);
    EXPECT_EQ(autostart.remove(), std::nullopt) << "again is a success";
    EXPECT_EQ(autostart.enable(), std::nullopt);
    EXPECT_EQ(autostart.enable(), std::nullopt);
    EXPECT_EQ(autostart.status(), LoginItemStatus::enabled);
    EXPECT_THAT(entry(), HasSubstr("Type=Application\n"));
    EXPECT_THAT(entry(), HasSubstr("Exec=\"/usr/bin/quorva\"\n"));
    EXPECT_EQ(autostart.remove(), std::nullopt);
    EXPECT_EQ(autostart.status(), LoginItemStatus::notRegistered);
    EXPECT_FALSE(std::filesystem::exists(folder.path / name));
}

TEST_F(AutostartEntryTest, readsHowDesktopsSwitchItOff) {
    const std::pair<const char*, LoginItemStatus> rows[] = {
        {"[Desktop Entry]\nHidden=true\n", LoginItemStatus::notRegistered},
        {"[Desktop Entry]\nHidden=false\n", LoginItemStatus::enabled},
        {"[Desktop Entry]\nX-GNOME-Autostart-enabled=false\n", LoginItemStatus::notRegistered},
        {"[Desktop Entry]\nHidden=perhaps\n", LoginItemStatus::enabled},
        {"\x7f"
         "ELF",
         LoginItemStatus::notFound},
        {"", LoginItemStatus::notFound},
        {"[Other]\nHidden=true\n", LoginItemStatus::notFound},
    };
    for (const auto& [bytes, status] : rows) {
        folder.write(name, bytes);
        EXPECT_EQ(autostart.status(), status) << bytes;
        EXPECT_EQ(autostart.enable(), std::nullopt);
        EXPECT_EQ(autostart.status(), LoginItemStatus::enabled) << bytes;
    }
}

TEST_F(AutostartEntryTest, keepsWhatTheUserHasWritten) {
    folder.write(name, "# mine\n[Desktop Entry]\nName[de]=Quorva hier\nName=My Quorva\n"
                       "Exec=/old/quorva\nX-GNOME-Autostart-Delay=20\nHidden=true\n");
    EXPECT_EQ(autostart.enable(), std::nullopt);
    for (const auto* const part : {"# mine\n", "Name[de]=Quorva hier\n", "Name=My Quorva\n",
                                   "X-GNOME-Autostart-Delay=20\n", "Exec=\"/usr/bin/quorva\"\n"})
        EXPECT_THAT(entry(), HasSubstr(part));
    EXPECT_THAT(entry(), HasSubstr("Hidden=false\n"));

    struct stat before {};
    struct stat after {};
    ASSERT_EQ(::stat((folder.path / name).c_str(), &before), 0);
    EXPECT_EQ(autostart.enable(), std::nullopt);
    ASSERT_EQ(::stat((folder.path / name).c_str(), &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino) << "what needs no change is not written";
}

TEST_F(AutostartEntryTest, setsAsideWhatItCannotRead) {
    for (const auto* const bytes : {"something else", "once more", ""}) {
        folder.write(name, bytes);
        EXPECT_EQ(autostart.enable(), std::nullopt);
    }
    std::vector<std::string> kept;
    for (const auto& file : std::filesystem::directory_iterator(folder.path / "autostart"))
        kept.push_back(folder.read(std::filesystem::relative(file.path(), folder.path)));
    EXPECT_THAT(kept, testing::UnorderedElementsAre("something else", "once more", entry()));
}

TEST_F(AutostartEntryTest, saysWhatWentWrong) {
    folder.write("autostart", "a file in the folder's place");
    EXPECT_EQ(autostart.status(), LoginItemStatus::notFound);
    EXPECT_NE(autostart.enable(), std::nullopt);
    EXPECT_EQ(folder.read("autostart"), "a file in the folder's place");
    EXPECT_NE(AutostartEntry(folder.path, "").enable(), std::nullopt);
}

TEST_F(AutostartEntryTest, startsAProgramWhateverItIsCalled) {
    const std::string program = "od\"d `na$me` 100\\ & more";
    folder.write(program, "#!/bin/sh\necho started > \"${0%/*}/proof\"\n");
    const auto path = (folder.path / program).string();
    ASSERT_EQ(::chmod(path.c_str(), 0700), 0);
    const AutostartEntry odd(folder.path, path);
    ASSERT_EQ(odd.enable(), std::nullopt);
    EXPECT_EQ(AutostartEntry::execOf("/a%f \"$`\\"), R"("/a%%f \"\$\`\\")");

    const GObjectPtr<GDesktopAppInfo> info(
        g_desktop_app_info_new_from_filename((folder.path / name).c_str()));
    ASSERT_TRUE(info);
    ASSERT_TRUE(g_app_info_launch(G_APP_INFO(info.get()), nullptr, nullptr, nullptr));
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (folder.read("proof") != "started\n" && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_EQ(folder.read("proof"), "started\n");
}

TEST_F(AutostartEntryTest, knowsItsOwnProgram) {
    EXPECT_EQ(AutostartEntry::ownProgram(), std::filesystem::read_symlink("/proc/self/exe"));
    ::setenv("APPIMAGE", "/opt/Quorva.AppImage", 1);
    EXPECT_EQ(AutostartEntry::ownProgram(), "/opt/Quorva.AppImage");
    ::unsetenv("APPIMAGE");
}

} // namespace quorva
