// The contract of Preferences, tried on the implementations in memory and in a file.
#include "platform/linux/storage/JsonPreferences.h"
#include "platform/linux/storage/LinuxWholeFile.h"
#include "support/Eventually.h"
#include "support/MemoryPreferences.h"
#include "support/RecordingLog.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <limits>

namespace quorva {
namespace {

struct InMemory {
    VirtualMainLoop loop;
    std::unique_ptr<MemoryPreferences> preferences = std::make_unique<MemoryPreferences>(loop);

    void reopen() {
        auto stored = std::move(preferences->values);
        preferences = std::make_unique<MemoryPreferences>(loop);
        preferences->values = std::move(stored);
    }
};

struct InAFile {
    VirtualMainLoop loop;
    RecordingLog log;
    TemporaryFolder folder;
    LinuxWholeFile file{folder.path / "preferences.json"};
    std::unique_ptr<JsonPreferences> preferences =
        std::make_unique<JsonPreferences>(loop, log, file);

    void reopen() {
        preferences.reset();
        preferences = std::make_unique<JsonPreferences>(loop, log, file);
    }
};

template <typename World>
class PreferencesContract : public testing::Test {
protected:
    World world;

    Preferences& preferences() { return *world.preferences; }
};
using Worlds = testing::Types<InMemory, InAFile>;
TYPED_TEST_SUITE(PreferencesContract, Worlds);

TYPED_TEST(PreferencesContract, keepsValuesOfEveryTypeForTheNextRun) {
    const std::pair<std::string, PreferenceValue> values[] = {
        {"on", true},
        {"least", std::numeric_limits<std::int64_t>::min()},
        {"most", std::numeric_limits<std::int64_t>::max()},
        {"volume", 0.1},
        {"whole", 2.0}, // stays a double
        {"name", "René \"\n\0 \U0001F600"},
        {"", ""},
        {"ids", std::vector<std::string>{"otter", "", "fathom"}},
        {"none", std::vector<std::string>()},
        {"log", PreferenceData{"[{\"a\":1}]"}},
        {"bytes", PreferenceData{std::string("\xff\0\x01", 3)}},
        {"later", UnknownPreference{R"({"format":2,"items":[1.5,null]})"}},
    };
    for (const auto& [key, value] : values)
        this->preferences().set(key, value, {});
    for (int run = 0; run < 2; ++run) {
        for (const auto& [key, value] : values)
            EXPECT_EQ(this->preferences().value(key), value) << key;
        this->world.reopen();
    }
}

TYPED_TEST(PreferencesContract, tellsAMissingValueFromOneOfAnotherType) {
    auto& preferences = this->preferences();
    preferences.set("count", std::int64_t{120}, {});
    preferences.set("volume", 0.5, {});
    preferences.set("ignored", UnknownPreference{}, {});

    EXPECT_TRUE(preferences.template read<bool>("ignored").isMissing);
    const auto asBool = preferences.template read<bool>("count");
    EXPECT_FALSE(asBool.isMissing || asBool.value);
    EXPECT_EQ(preferences.template read<double>("count").value, 120.0);
    EXPECT_EQ(preferences.template read<std::int64_t>("volume").value, std::nullopt);
}

TYPED_TEST(PreferencesContract, tellsThatChangesAreDurableAndNeverWithinTheCall) {
    int durable = 0;
    auto& preferences = this->preferences();
    preferences.set("a", 1.0, [&] { ++durable; });
    preferences.set("a", 2.0, [&] { ++durable; });
    preferences.remove("missing", [&] { ++durable; });
    preferences.set("b", true, [&] { ++durable; });
    preferences.remove("b", [&] { ++durable; });
    EXPECT_EQ(durable, 0);
    EXPECT_TRUE(eventually(this->world.loop, [&] { return durable == 5; }));
    preferences.set("a", 2.0, [&] { ++durable; }); // the same value again
    EXPECT_TRUE(eventually(this->world.loop, [&] { return durable == 6; }));

    preferences.set("c", true, [&] { ++durable; });
    this->world.reopen(); // drops pending callbacks
    this->world.loop.runPosted();
    EXPECT_EQ(durable, 6);
    EXPECT_EQ(this->preferences().template read<double>("a").value, 2.0);
    EXPECT_FALSE(this->preferences().value("b"));
    EXPECT_TRUE(this->preferences().value("c"));
}

} // namespace
} // namespace quorva
