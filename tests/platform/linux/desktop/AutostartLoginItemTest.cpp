// The entry that has the program started at login, as files and as the desktop's library reads it.
#include "platform/linux/desktop/AutostartLoginItem.h"

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

class AutostartLoginItemTest : public testing::Test {
protected:
    [[nodiscard]] std::string entry() const { return folder.read(name); }

    const std::string name = "autostart/com.veltran.QuorvaApp.desktop";
    TemporaryFolder folder;
    AutostartLoginItem item{folder.path, "/usr/bin/quorva"};
};

} // namespace

TEST_F(AutostartLoginItemTest, comesAndGoesWithItsEntry) {
    EXPECT_EQ(item.status(), LoginItemStatus::notRegistered);
    EXPECT_EQ(item.unregisterItem(), std::nullopt) << "again is a success";
    EXPECT_EQ(item.registerItem(), std::nullopt);
    EXPECT_EQ(item.registerItem(), std::nullopt);
    EXPECT_EQ(item.status(), LoginItemStatus::enabled);
    EXPECT_THAT(entry(), HasSubstr("Type=Application\n"));
    EXPECT_THAT(entry(), HasSubstr("Exec=\"/usr/bin/quorva\"\n"));
    EXPECT_EQ(item.unregisterItem(), std::nullopt);
    EXPECT_EQ(item.status(), LoginItemStatus::notRegistered);
    EXPECT_FALSE(std::filesystem::exists(folder.path / name));
}

TEST_F(AutostartLoginItemTest, readsHowDesktopsSwitchItOff) {
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
        EXPECT_EQ(item.status(), status) << bytes;
        EXPECT_EQ(item.registerItem(), std::nullopt);
        EXPECT_EQ(item.status(), LoginItemStatus::enabled) << bytes;
    }
}

TEST_F(AutostartLoginItemTest, keepsWhatTheUserHasWritten) {
    folder.write(name, "# mine\n[Desktop Entry]\nName[de]=Quorva hier\nName=My Quorva\n"
                       "Exec=/old/quorva\nX-GNOME-Autostart-Delay=20\nHidden=true\n");
    EXPECT_EQ(item.registerItem(), std::nullopt);
    for (const auto* const part : {"# mine\n", "Name[de]=Quorva hier\n", "Name=My Quorva\n",
                                   "X-GNOME-Autostart-Delay=20\n", "Exec=\"/usr/bin/quorva\"\n"})
        EXPECT_THAT(entry(), HasSubstr(part));
    EXPECT_THAT(entry(), HasSubstr("Hidden=false\n"));
}

TEST_F(AutostartLoginItemTest, setsAsideWhatItCannotRead) {
    for (const auto* const bytes : {"something else", "once more", ""}) {
        folder.write(name, bytes);
        EXPECT_EQ(item.registerItem(), std::nullopt);
    }
    std::vector<std::string> kept;
    for (const auto& file : std::filesystem::directory_iterator(folder.path / "autostart"))
        kept.push_back(folder.read(std::filesystem::relative(file.path(), folder.path)));
    EXPECT_THAT(kept, testing::UnorderedElementsAre("something else", "once more", entry()));
}

TEST_F(AutostartLoginItemTest, saysWhatWentWrong) {
    folder.write("autostart", "a file in the folder's place");
    EXPECT_EQ(item.status(), LoginItemStatus::notFound);
    EXPECT_NE(item.registerItem(), std::nullopt);
    EXPECT_EQ(folder.read("autostart"), "a file in the folder's place");
    EXPECT_NE(AutostartLoginItem(folder.path, "").registerItem(), std::nullopt);
}

TEST_F(AutostartLoginItemTest, startsAProgramWhateverItIsCalled) {
    const std::string program = "od\"d `na$me` 100\\ & more";
    folder.write(program, "#!/bin/sh\necho started > \"${0%/*}/proof\"\n");
    const auto path = (folder.path / program).string();
    ASSERT_EQ(::chmod(path.c_str(), 0700), 0);
    AutostartLoginItem odd(folder.path, path);
    ASSERT_EQ(odd.registerItem(), std::nullopt);
    EXPECT_EQ(AutostartLoginItem::execOf("/a%f \"$`\\"), R"("/a%%f \"\$\`\\")");

    const GObjectPtr<GDesktopAppInfo> info(
        g_desktop_app_info_new_from_filename((folder.path / name).c_str()));
    ASSERT_TRUE(info);
    ASSERT_TRUE(g_app_info_launch(G_APP_INFO(info.get()), nullptr, nullptr, nullptr));
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (folder.read("proof") != "started\n" && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_EQ(folder.read("proof"), "started\n");
}

TEST_F(AutostartLoginItemTest, knowsItsOwnProgram) {
    EXPECT_EQ(AutostartLoginItem::ownProgram(), std::filesystem::read_symlink("/proc/self/exe"));
    ::setenv("APPIMAGE", "/opt/Quorva.AppImage", 1);
    EXPECT_EQ(AutostartLoginItem::ownProgram(), "/opt/Quorva.AppImage");
    ::unsetenv("APPIMAGE");
}

} // namespace quorva
