#include "platform/linux/storage/JsonPreferences.h"

#include "platform/linux/storage/LinuxWholeFile.h"
#include "support/Eventually.h"
#include "support/RecordingLog.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <csignal>
#include <random>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>

namespace quorva {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

/// A real file whose operations fail on command.
class FaultyWholeFile final : public WholeFile {
public:
    explicit FaultyWholeFile(fs::path path) : real(std::move(path)) {}

    std::atomic<bool> readFails = false;
    std::atomic<bool> replaceFails = false;
    std::atomic<bool> setAsideFails = false;

    const fs::path& path() const override { return real.path(); }
    std::optional<FileStamp> stamp(std::error_code& error) const override {
        return real.stamp(error);
    }
    std::optional<Content> read(std::error_code& error) const override {
        return fails(readFails, error) ? std::nullopt : real.read(error);
    }
    std::optional<FileStamp> replace(std::string_view bytes, std::error_code& error) override {
        return fails(replaceFails, error) ? std::nullopt : real.replace(bytes, error);
    }
    std::optional<fs::path> setAside(Time time, std::error_code& error) override {
        return fails(setAsideFails, error) ? std::nullopt : real.setAside(time, error);
    }

private:
    static bool fails(bool doesFail, std::error_code& error) {
        if (doesFail)
            error = std::make_error_code(std::errc::io_error);
        return doesFail;
    }

    LinuxWholeFile real;
};

class JsonPreferencesTest : public testing::Test {
protected:
    void open() { preferences.emplace(loop, log, file); }
    void close() { preferences.reset(); }
    /// Sets a value and waits until it is stored.
    [[nodiscard]] bool store(std::string_view key, PreferenceValue value) {
        bool isDurable = false;
        preferences->set(key, std::move(value), [&] { isDurable = true; });
        return eventually(loop, [&] { return isDurable; });
    }
    std::vector<std::string> names() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder.path))
            names.push_back(entry.path().filename());
        std::sort(names.begin(), names.end());
        return names;
    }
    void edit(std::string_view bytes) const { folder.write("preferences.json", bytes); }

    VirtualMainLoop loop; // at 2026-03-02 09:00
    RecordingLog log;     // read it only while the worker is idle
    TemporaryFolder folder;
    FaultyWholeFile file{folder.path / "preferences.json"};
    std::optional<JsonPreferences> preferences;
};

constexpr auto aside = "preferences.json.2026-03-02T09-00-00Z";

TEST_F(JsonPreferencesTest, writesAReadableFileForTheUserAlone) {
    LinuxWholeFile deep(folder.path / "new" / "quorva" / "preferences.json");
    {
        JsonPreferences some(loop, log, deep);
        some.set("volume", 0.5, {});
        some.set("log", PreferenceData{"[]"}, {});
    }
    EXPECT_EQ(folder.read("new/quorva/preferences.json"), R"({
    "preferences": {
        "log": {
            "data": "[]"
        },
        "volume": 0.5
    },
    "version": 1
}
)");
    const auto mode = [&](const char* name) {
        return static_cast<unsigned>(fs::status(folder.path / name).permissions());
    };
    EXPECT_EQ(mode("new/quorva"), 0700U);
    EXPECT_EQ(mode("new/quorva/preferences.json"), 0600U);
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(JsonPreferencesTest, setsAsideUnderItsDateWhatCannotBeUsed) {
    const std::string unusable[] = {"",
                                    R"({"version":1,"preferences":{"a":)",
                                    "[]",
                                    R"({"version":2})",
                                    R"({"version":1,"preferences":3})",
                                    std::string("\xff\xfe{\0}\0", 6),
                                    R"({"version":1,"preferences":{"a":"\xff"}})",
                                    std::string(100'000, '['),
                                    std::string(17 << 20, ' ')};
    for (const auto& bytes : unusable) {
        edit(bytes);
        open();
        EXPECT_FALSE(preferences->value("a"));
        ASSERT_TRUE(store("b", true));
        EXPECT_TRUE(folder.read(aside) == bytes) << bytes.substr(0, 40);
        EXPECT_EQ(log.count(aside), 1U);
        EXPECT_EQ(log.messages.size(), 1U);
        close();
        open();
        EXPECT_TRUE(preferences->value("b"));
        close();
        fs::remove(folder.path / aside);
        log.messages.clear();
    }
}

TEST_F(JsonPreferencesTest, neverSetsAsideOverAnother) {
    for (const auto* bytes : {"first", "second"}) {
        edit(bytes);
        open();
    }
    close();
    fs::create_directory(file.path()); // a directory cannot be read either
    open();
    ASSERT_EQ(::mkfifo(file.path().c_str(), 0600), 0);
    open();
    close();
    const std::string name = aside;
    EXPECT_THAT(names(), ElementsAre(name, name + "-2", name + "-3", name + "-4"));
    EXPECT_EQ(folder.read(name), "first");
    EXPECT_EQ(folder.read(name + "-2"), "second");
}

TEST_F(JsonPreferencesTest, keepsWhatItDoesNotKnow) {
    edit(
        R"({"version":1,"theme":[1,{"x":null}],"preferences":{"a":{"b":[1,2]},"c":[1],"d":null}})");
    open();
    const auto reading = preferences->read<std::vector<std::string>>("c");
    EXPECT_FALSE(reading.isMissing || reading.value);
    ASSERT_TRUE(store("on", true));
    auto text = folder.read("preferences.json");
    std::erase_if(text, [](char c) { return c == ' ' || c == '\n'; });
    EXPECT_EQ(text, R"({"preferences":{"a":{"b":[1,2]},"c":[1],"d":null,"on":true},)"
                    R"("theme":[1,{"x":null}],"version":1})");
}

TEST_F(JsonPreferencesTest, takesOverWhatIsChangedByHandMeanwhile) {
    open();
    ASSERT_TRUE(store("ours", 1.0) && store("theirs", 1.0) && store("gone", 1.0));
    edit(R"({"version":1,"preferences":{"ours":2.5,"theirs":2.5,"new":true}})");
    ASSERT_TRUE(store("ours", 3.5));
    const auto expectMerged = [&] {
        EXPECT_EQ(preferences->read<double>("ours").value, 3.5);
        EXPECT_EQ(preferences->read<double>("theirs").value, 2.5);
        EXPECT_EQ(preferences->read<bool>("new").value, true);
        EXPECT_FALSE(preferences->value("gone"));
    };
    expectMerged();

    fs::remove(file.path()); // a missing or damaged file does not count as a change
    ASSERT_TRUE(store("more", 1.0));
    edit("damaged");
    ASSERT_TRUE(store("more", 2.0));
    EXPECT_EQ(folder.read(aside), "damaged");
    open();
    expectMerged();
}

TEST_F(JsonPreferencesTest, storesWithTheNextChangeWhatItCouldNotStoreBefore) {
    open();
    ASSERT_TRUE(store("a", 1.0));
    int durable = 0;
    file.replaceFails = true;
    for (const double value : {2.0, 3.0, 4.0})
        preferences->set("a", value, [&] { ++durable; });
    close(); // tries once more, and logs the failure once
    EXPECT_EQ(log.count("can't be stored"), 1U);
    EXPECT_NE(folder.read("preferences.json").find("1.0"), std::string::npos);

    open();
    preferences->set("b", true, [&] { ++durable; });
    EXPECT_TRUE(preferences->value("b"));
    file.replaceFails = false;
    ASSERT_TRUE(store("c", true));
    EXPECT_TRUE(eventually(loop, [&] { return durable == 1; }));
    open();
    EXPECT_TRUE(preferences->value("b") && preferences->value("c"));
}

TEST_F(JsonPreferencesTest, neverWritesOverWhatItCanNeitherReadNorSetAside) {
    const std::string content = R"({"version":1,"preferences":{"kept":true}})";
    edit(content);
    file.readFails = true;
    file.setAsideFails = true;
    open();
    preferences->set("a", true, {});
    close();
    EXPECT_EQ(folder.read("preferences.json"), content);
    EXPECT_EQ(log.count("can't be stored"), 1U);

    open();
    file.readFails = false; // the failure is over: both values are kept
    ASSERT_TRUE(store("a", true));
    EXPECT_TRUE(preferences->value("kept"));
    EXPECT_EQ(names().size(), 1U);
}

TEST(LinuxWholeFile, keepsTheOldContentWhereTheNewOneDoesNotFit) {
    const TemporaryFolder folder;
    fs::create_symlink("target.json", folder.path / "link.json");
    LinuxWholeFile file(folder.path / "link.json");
    std::error_code error;
    ASSERT_TRUE(file.replace("old", error));

    const auto previous = std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit tight{.rlim_cur = 1000, .rlim_max = before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &tight), 0);
    EXPECT_FALSE(file.replace(std::string(5000, 'x'), error));
    EXPECT_EQ(error, std::errc::file_too_large);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
    std::signal(SIGXFSZ, previous);

    EXPECT_EQ(folder.read("target.json"), "old"); // links stay links
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path), fs::directory_iterator()), 2);
}

/// Stores ascending numbers until killed, and writes those that are durable to `report`.
[[noreturn]] void storeNumbers(const fs::path& path, int report) {
    VirtualMainLoop loop;
    RecordingLog log;
    LinuxWholeFile file(path);
    JsonPreferences preferences(loop, log, file);
    for (auto number = preferences.read<std::int64_t>("number").value.value_or(0);;) {
        bool isDurable = false;
        preferences.set("number", ++number, [&] { isDurable = true; });
        if (!eventually(loop, [&] { return isDurable; }) ||
            ::write(report, &number, sizeof number) != sizeof number)
            std::_Exit(1);
    }
}

TEST(JsonPreferencesKilled, leavesTheLastStateOrTheOneUnderWay) {
    const TemporaryFolder folder("/dev/shm"); // not a power cut, so a disk is not needed
    const auto path = folder.path / "preferences.json";
    std::mt19937 random(20260302);
    std::int64_t reported = 0;
    for (int kills = 0; kills < 1000; ++kills) {
        int ends[2];
        ASSERT_EQ(::pipe(ends), 0);
        const pid_t child = ::fork();
        if (child == 0)
            storeNumbers(path, ends[1]);
        ASSERT_GT(child, 0);
        ::close(ends[1]);
        std::int64_t number = 0;
        for (auto wanted = random() % 3; wanted > 0; --wanted)
            if (::read(ends[0], &number, sizeof number) == sizeof number)
                reported = number;
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 1500));
        ::kill(child, SIGKILL);
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status));
        while (::read(ends[0], &number, sizeof number) == sizeof number)
            reported = number;
        ::close(ends[0]);

        std::string fault;
        const auto document = PreferencesDocument::parse(folder.read(path.filename()), fault);
        ASSERT_TRUE(document || !fs::exists(path)) << fault;
        const auto values = document ? document->values() : PreferenceMap();
        const auto found = values.find("number");
        const auto stored = found == values.end() ? 0 : std::get<std::int64_t>(found->second);
        ASSERT_TRUE(stored == reported || stored == reported + 1) << stored << ' ' << reported;
        reported = stored;
    }
    EXPECT_GT(reported, 500);
}

} // namespace
} // namespace quorva
