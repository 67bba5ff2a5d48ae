// The login item's operations off the main thread.
#include "platform/linux/desktop/AutostartLoginItem.h"

#include "support/TemporaryFolder.h"
#include "support/TurningMainLoop.h"

#include <gmock/gmock.h>

#include <vector>

namespace quorva {
namespace {

class AutostartLoginItemTest : public testing::Test, protected TurningMainLoop {
protected:
    [[nodiscard]] AutostartEntry entry() const { return {folder.path, "/usr/bin/quorva"}; }
    [[nodiscard]] LoginItem::Done note() {
        return [this](const std::optional<std::string>& failure) { failures.push_back(failure); };
    }

    TemporaryFolder folder;
    std::vector<std::optional<std::string>> failures;
    std::vector<LoginItemStatus> statuses;
};

} // namespace

TEST_F(AutostartLoginItemTest, worksInTheOrderOfTheCallsAndAnswersLater) {
    AutostartLoginItem item(entry());
    item.setEnabled(false, note());
    item.setEnabled(true, note());
    const auto fetched =
        item.fetchStatus([this](LoginItemStatus status) { statuses.push_back(status); });
    (void)item.fetchStatus([](LoginItemStatus) { ADD_FAILURE() << "nobody waits for it"; });
    EXPECT_TRUE(failures.empty() && statuses.empty());
    ASSERT_TRUE(comesTo([this] { return !statuses.empty(); }));
    EXPECT_EQ(failures, (std::vector<std::optional<std::string>>(2)));
    EXPECT_EQ(statuses.front(), LoginItemStatus::enabled);

    std::filesystem::remove(folder.path / "autostart/com.veltran.QuorvaApp.desktop");
    folder.write("autostart/com.veltran.QuorvaApp.desktop/file", "a folder in its place");
    item.setEnabled(true, note());
    ASSERT_TRUE(comesTo([this] { return failures.size() == 3; }));
    EXPECT_NE(failures.back(), std::nullopt);
}

TEST_F(AutostartLoginItemTest, storesTheLastChangeWhenTheProgramEnds) {
    {
        AutostartLoginItem item(entry());
        item.setEnabled(true, note());
    }
    EXPECT_EQ(entry().status(), LoginItemStatus::enabled);
    while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
    }
    EXPECT_TRUE(failures.empty()) << "nobody is left to be told";
}

} // namespace quorva
