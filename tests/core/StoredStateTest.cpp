// What is read from the preferences at start, whatever they hold, and what is written back.
#include "core/AppStateTest.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace quorva {
namespace {

using StoredStateTest = AppStateTest;

std::string event(const std::string& name, const std::string& date = "790000000") {
    return fmt::format(R"({{"botName":"{}","category":"later than us","confidence":90,)"
                       R"("method":"processName","detectedAt":{},"dismissed":false}})",
                       name, date);
}

std::string objection(int index) {
    return fmt::format(R"({{"id":"{}","timestamp":790000000,"templateUsed":"Brief Statement",)"
                       R"("copiedToClipboard":true}})",
                       index);
}

template <typename Make>
PreferenceData list(int count, Make make) {
    std::vector<std::string> items;
    for (int index = 0; index < count; ++index)
        items.push_back(make(index));
    return {fmt::format("[{}]", fmt::join(items, ","))};
}

TEST_F(StoredStateTest, readsWhatIsMissingOrMistypedAsTheDefault) {
    computer.preferences.values["showNotifications"] = std::string("no");
    computer.preferences.values["hasCompletedOnboarding"] = std::int64_t{1};
    computer.preferences.values["stampIntervalSeconds"] = std::int64_t{0};
    computer.preferences.values["userEmail"] = std::string("ann@example.com");
    auto& app = start();
    EXPECT_TRUE(app.settings.showNotifications && !app.settings.hasCompletedOnboarding);
    EXPECT_EQ(app.settings.stampIntervalSeconds.get(), 120);
    EXPECT_EQ(app.settings.stampVolume.get(), 0.5);
    EXPECT_FALSE(computer.preferences.value("userEmail"));
    computer.preferences.values["stampIntervalSeconds"] = std::int64_t{30};
    EXPECT_EQ(start().settings.stampIntervalSeconds.get(), 30);
}

TEST_F(StoredStateTest, keepsTheNewestOfListsThatAreTooLong) {
    computer.preferences.values["detectionLog"] =
        list(650, [](int index) { return event(std::to_string(index)); });
    computer.preferences.values["objectionLog"] = list(250, objection);
    auto& app = start();
    ASSERT_THAT(*app.detectionLog.records, testing::SizeIs(500));
    EXPECT_EQ(app.detectionLog.records->front().botName, "150");
    ASSERT_THAT(*app.objections.objectionLog.records, testing::SizeIs(200));
    EXPECT_EQ(app.objections.objectionLog.records->back().id, "199");
}

TEST_F(StoredStateTest, setsAsideWhatItCannotRead) {
    computer.preferences.values["detectionLog"] =
        PreferenceData{fmt::format("[{},{},17,{}]", event("A"), event("B", "1e308"), event("C"))};
    computer.preferences.values["objectionLog"] = PreferenceData{"{never JSON"};
    const auto history = stored("detectionLog");
    auto& app = start();
    ASSERT_THAT(*app.detectionLog.records, testing::SizeIs(2));
    EXPECT_EQ(app.detectionLog.records->back().botName, "C");
    EXPECT_THAT(*app.objections.objectionLog.records, IsEmpty());

    computer.startOtter();
    computer.loop.advance(3s);
    app.objectToFirst();
    computer.processTable.end(100);
    EXPECT_EQ(stored("detectionLog.unreadable-2026-03-02T09:00:00Z"), history);
    EXPECT_EQ(stored("objectionLog.unreadable-2026-03-02T09:00:00Z"), "{never JSON");
    EXPECT_EQ(computer.log.count("can't be read"), 2U);
    EXPECT_THAT(*start().detectionLog.records, testing::SizeIs(3));
    EXPECT_THAT(*state->objections.objectionLog.records, testing::SizeIs(1));
}

TEST_F(StoredStateTest, keepsAHistoryOfAnotherVersionsShape) {
    const PreferenceValue history = UnknownPreference{R"({"events":[],"format":2})"};
    computer.preferences.values["detectionLog"] = history;
    start();
    computer.startOtter();
    computer.loop.advance(3s);
    EXPECT_EQ(computer.preferences.value("detectionLog.unreadable-2026-03-02T09:00:00Z"),
              PreferenceValue(history));
}

TEST_F(StoredStateTest, setsTheSameAsideOnce) {
    const auto copies = [&] {
        return std::ranges::count_if(computer.preferences.values, [](const auto& entry) {
            return entry.first.starts_with("detectionLog.unreadable-");
        });
    };
    computer.preferences.values["detectionLog"] = PreferenceData{"{never JSON"};
    for (int each = 0; each < 3; ++each) {
        start();
        computer.loop.advance(60s);
    }
    EXPECT_EQ(copies(), 1);
    EXPECT_EQ(stored("detectionLog"), "{never JSON") << "another version may be able to read it";
    computer.preferences.values["detectionLog"] = PreferenceData{"[17]"};
    start();
    EXPECT_EQ(copies(), 2) << "something else";
}

TEST_F(StoredStateTest, followsTheLoginItem) {
    computer.loginItem.state = LoginItemStatus::enabled;
    EXPECT_TRUE(start().settings.launchAtLogin);
    state->settings.set(&Settings::showNotifications, false);
    EXPECT_EQ(computer.loginItem.changes, 0) << "nothing of it has changed";
    computer.loginItem.error = "no space left";
    state->settings.set(&Settings::launchAtLogin, false);
    computer.loop.runPosted();
    EXPECT_EQ(computer.log.count("SMAppService error: no space left"), 1U);
    computer.loginItem.error.reset();
    state->saveSettings();
    EXPECT_EQ(computer.loginItem.state, LoginItemStatus::notRegistered);

    computer.preferences.values["launchAtLogin"] = true; // of an earlier version
    start();
    EXPECT_EQ(computer.loginItem.state, LoginItemStatus::enabled);
}

TEST_F(StoredStateTest, prefersTheUsersChoiceToALateAnswerOfTheLoginItem) {
    computer.loginItem.state = LoginItemStatus::enabled;
    auto& app = state.emplace(computer.services);
    app.settings.set(&Settings::showNotifications, false);
    EXPECT_EQ(computer.loginItem.state, LoginItemStatus::enabled) << "it has not answered yet";
    app.settings.set(&Settings::launchAtLogin, true);
    app.settings.set(&Settings::launchAtLogin, false);
    computer.loop.runPosted();
    EXPECT_FALSE(app.settings.launchAtLogin);
    EXPECT_EQ(computer.loginItem.state, LoginItemStatus::notRegistered);
}

} // namespace
} // namespace quorva
