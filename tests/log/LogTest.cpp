#include "log/QuorvaLog.h"
#include "platform/linux/storage/LinuxFileSystem.h"
#include "support/FaultyFileSystem.h"
#include "support/RecordingLog.h"
#include "support/TemporaryFolder.h"
#include "support/VirtualMainLoop.h"

#include <gmock/gmock.h>

#include <csignal>
#include <fcntl.h>
#include <future>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace quorva {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

constexpr auto megabytes5 = FileLogMirror::maxBytes;

class FileLogMirrorTest : public testing::Test {
protected:
    FileLogMirror make(BuildInfo build = {"1.2", "34", 4711}) {
        return {disk, loop.now(), "/log", std::move(build),
                [this](std::string_view text) { console.emplace_back(text); }};
    }
    std::string at(const char* name) const {
        const auto found = files.files.find(std::filesystem::path("/log") / name);
        return found == files.files.end() ? "(missing)" : *found->second;
    }
    void put(const char* name, std::string contents) {
        files.files[std::filesystem::path("/log") / name] =
            std::make_shared<std::string>(std::move(contents));
    }

    VirtualMainLoop loop;
    const std::shared_ptr<FaultyFileSystem> disk = std::make_shared<FaultyFileSystem>();
    FaultyFileSystem& files = *disk;
    std::vector<std::string> console;
};

TEST_F(FileLogMirrorTest, opensWithTheBootLineAndAppends) {
    put("quorva.log", "before\n");
    auto mirror = make();
    mirror.append("too early\n");
    mirror.start();
    mirror.append("a\n");
    EXPECT_EQ(at("quorva.log"), "before\n2026-03-02T09:00:00.000Z [info] [boot] QuorvaApp v1.2 "
                                "(build 34) PID 4711\na\n");

    auto unknown = make({.processIdentifier = 7});
    unknown.start();
    EXPECT_THAT(at("quorva.log"), testing::HasSubstr("QuorvaApp v? (build ?) PID 7\n"));
}

TEST_F(FileLogMirrorTest, rotatesWithTheLineThatReachesTheLimit) {
    put("quorva.log.1", "one");
    put("quorva.log.2", "two");
    put("quorva.log.3", "three");
    put("quorva.log.4", "stray");
    auto mirror = make();
    mirror.start();
    const auto boot = at("quorva.log").size();
    mirror.append(std::string(megabytes5 - boot - 1, 'x'));
    EXPECT_EQ(at("quorva.log").size(), megabytes5 - 1);
    mirror.append("y");
    mirror.append("next\n");

    EXPECT_EQ(at("quorva.log"), "next\n") << "no boot line after a rotation";
    EXPECT_EQ(at("quorva.log.1").size(), megabytes5);
    EXPECT_EQ(at("quorva.log.2"), "one");
    EXPECT_EQ(at("quorva.log.3"), "two");
    EXPECT_EQ(at("quorva.log.4"), "(missing)");
    EXPECT_THAT(console, IsEmpty());
}

TEST_F(FileLogMirrorTest, staysClosedAfterAFailedStart) {
    for (auto* failure : {&files.createFails, &files.openFails}) {
        *failure = std::errc::permission_denied;
        auto mirror = make();
        mirror.start();
        *failure = std::nullopt;
        mirror.append("lost\n");
        EXPECT_THAT(files.files, IsEmpty());
        EXPECT_EQ(
            std::exchange(console, {}),
            std::vector<std::string>{"[Quorva] FileLogMirror.start failed: Permission denied"});
    }
}

TEST_F(FileLogMirrorTest, appendsWithoutBootLineWhenTheSizeIsUnknown) {
    files.sizeFails = std::errc::io_error;
    auto mirror = make();
    mirror.start();
    mirror.append("a\n");
    EXPECT_EQ(at("quorva.log"), "a\n");
    EXPECT_THAT(console, ElementsAre(StartsWith("[Quorva] FileLogMirror.start failed: ")));
}

TEST_F(FileLogMirrorTest, losesOnlyTheLinesThatAFullDiskRefuses) {
    auto mirror = make();
    mirror.start();
    files.appendFails = std::errc::no_space_on_device;
    mirror.append("lost\n");
    files.appendFails = std::nullopt;
    mirror.append("kept\n");
    EXPECT_THAT(at("quorva.log"), testing::EndsWith("4711\nkept\n"));
    EXPECT_THAT(console,
                ElementsAre("[Quorva] FileLogMirror.write failed: No space left on device"));
}

TEST_F(FileLogMirrorTest, makesAFileThatWasDeletedUnderItAnew) {
    auto mirror = make();
    mirror.start();
    files.files.clear();
    mirror.append("a\n");
    EXPECT_EQ(at("quorva.log"), "a\n");
    files.files.clear();
    files.openFails = std::errc::read_only_file_system;
    mirror.append("lost\n");
    files.openFails = std::nullopt;
    mirror.append("b\n");
    EXPECT_EQ(at("quorva.log"), "b\n");
    EXPECT_THAT(console, testing::SizeIs(1));
}

TEST_F(FileLogMirrorTest, triesAFailedRotationAgainAndLosesNoOlderFile) {
    const auto rotateWith = [this](auto breakIt) {
        files.files.clear();
        put("quorva.log", std::string(megabytes5, 'x'));
        put("quorva.log.1", "one");
        auto mirror = make();
        mirror.start();
        breakIt();
        mirror.append("last\n");
        mirror.append("in between\n");
        files.closeFails = files.openFails = std::nullopt;
        files.renameFails.clear();
        mirror.append("reaches the limit\n");
        mirror.append("next\n");
        EXPECT_THAT(std::exchange(console, {}),
                    ElementsAre(StartsWith("[Quorva] FileLogMirror.write failed: ")));
        EXPECT_EQ(at("quorva.log"), "next\n");
        EXPECT_THAT(at("quorva.log.1"), testing::HasSubstr("last\n"));
        EXPECT_TRUE(at("quorva.log.2") == "one" || at("quorva.log.3") == "one");
    };
    rotateWith([this] { files.closeFails = std::errc::io_error; });
    rotateWith([this] { files.renameFails["/log/quorva.log.1"] = std::errc::permission_denied; });
    rotateWith([this] { files.renameFails["/log/quorva.log"] = std::errc::permission_denied; });
}

TEST_F(FileLogMirrorTest, growsToTwiceItsSizeAtMostWhileItCannotRotate) {
    auto mirror = make();
    mirror.start();
    files.renameFails["/log/quorva.log"] = std::errc::permission_denied;
    for (int i = 0; i < 30; ++i)
        mirror.append(std::string(1'000'000, 'x'));
    EXPECT_LT(at("quorva.log").size(), 2 * megabytes5 + 1'000'000);
    EXPECT_THAT(console, testing::SizeIs(1)) << "said once";
}

class QuorvaLogTest : public testing::Test {
protected:
    std::shared_ptr<FileLogMirror> makeMirror() {
        return std::make_shared<FileLogMirror>(
            std::make_shared<LinuxFileSystem>(), loop.now(), folder.path / "Logs" / "Quorva",
            BuildInfo{"1.2", "34", 4711}, [](std::string_view) {});
    }
    std::string logFile() const { return folder.read("Logs/Quorva/quorva.log"); }

    TemporaryFolder folder;
    VirtualMainLoop loop;
    const std::shared_ptr<RecordingLog> system = std::make_shared<RecordingLog>();
};

TEST_F(QuorvaLogTest, writesEachMessageToBothLogsWithItsCallSite) {
    QuorvaLog log(loop, system);
    log.notice("too early for the file", logCategory::participant);
    log.bootstrap(makeMirror());
    log.error("first\nsecond", logCategory::calendar, {"src/detectors/Some.cpp", 12});
    const int line = __LINE__ + 1;
    log.debug("here", logCategory::notification);
    log.flush();

    const auto at = "2026-03-02T09:00:00.000Z";
    const auto path = (folder.path / "Logs/Quorva/quorva.log").string();
    const auto text = logFile();
    EXPECT_THAT(text,
                StartsWith(std::string(at) + " [info] [boot] QuorvaApp v1.2 (build 34) PID 4711\n" +
                           at + " [info] [appState] QuorvaLog bootstrap. Log file: " + path +
                           " (QuorvaLog.cpp:"));
    EXPECT_THAT(text,
                testing::EndsWith(
                    std::string(at) + " [error] [calendar] first\nsecond (Some.cpp:12)\n" + at +
                    " [debug] [notification] here (LogTest.cpp:" + std::to_string(line) + ")\n"));
    EXPECT_THAT(
        system->messages,
        ElementsAre(
            LoggedMessage{LogLevel::notice, "too early for the file", "participant"},
            LoggedMessage{LogLevel::info, "QuorvaLog bootstrap. Log file: " + path, "appState"},
            LoggedMessage{LogLevel::error, "first\nsecond", "calendar"},
            LoggedMessage{LogLevel::debug, "here", "notification"}));
}

TEST_F(QuorvaLogTest, keepsEachThreadsOrderAndWritesEverythingBeforeItEnds) {
    {
        QuorvaLog log(loop, system);
        log.bootstrap(makeMirror());
        std::vector<std::thread> threads;
        for (char name = 'a'; name < 'e'; ++name)
            threads.emplace_back([&log, name] {
                for (int i = 100; i < 600; ++i)
                    log.info(Printable::format("{}", name + std::to_string(i)),
                             logCategory::appState);
            });
        for (auto& thread : threads)
            thread.join();
    }
    const auto text = logFile();
    for (char name = 'a'; name < 'e'; ++name)
        for (std::size_t i = 100, from = 0; i < 600; ++i) {
            from = text.find(name + std::to_string(i) + " (", from);
            ASSERT_NE(from, std::string::npos) << name << i;
        }
}

/// A log service that does not answer until it is released.
class HungLog final : public SystemLog {
public:
    explicit HungLog(std::shared_future<void> gate_) : gate(std::move(gate_)) {}
    void send(LogLevel, std::string_view message, QuorvaLogCategory, CallSite) override {
        gate.wait();
        messages.emplace_back(message);
    }
    std::shared_future<void> gate;
    std::vector<std::string> messages;
};

TEST_F(QuorvaLogTest, countsTheMessagesThatAHungLogCouldNotTake) {
    std::promise<void> release;
    const auto hung = std::make_shared<HungLog>(release.get_future().share());
    QuorvaLog log(loop, hung);
    constexpr std::size_t sent = 140'000;
    for (std::size_t i = 0; i < sent; ++i)
        log.info("x", logCategory::appState);
    release.set_value();
    log.flush();
    const auto kept = hung->messages.size();
    EXPECT_LT(kept, sent);
    log.info("after", logCategory::appState);
    log.flush();
    EXPECT_THAT(hung->messages.at(kept),
                StartsWith(std::to_string(sent - kept) + " messages were"));
    EXPECT_EQ(hung->messages.back(), "after");
}

TEST(LinuxFileSystem, appendsToRegularFilesOnly) {
    const TemporaryFolder folder;
    const auto pipe = folder.path / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const int reader = ::open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    std::error_code error;
    EXPECT_EQ(LinuxFileSystem().openForAppending(pipe, error), nullptr);
    EXPECT_TRUE(error);
    ::close(reader);
    EXPECT_EQ(LinuxFileSystem().openForAppending(pipe, error), nullptr) << "nobody reads it";
}

TEST_F(QuorvaLogTest, endsInTimeWhenALogServiceHangs) {
    std::promise<void> release;
    {
        QuorvaLog log(loop, std::make_shared<HungLog>(release.get_future().share()));
        log.info("x", logCategory::appState);
    } // must return, or the test never ends
    release.set_value();
}

TEST(LinuxFileSystem, carriesALogThroughItsRotations) {
    const TemporaryFolder folder;
    std::vector<std::string> console;
    FileLogMirror mirror(std::make_shared<LinuxFileSystem>(), Time(), folder.path / "log", {},
                         [&](std::string_view text) { console.emplace_back(text); });
    mirror.start();
    for (const char letter : {'a', 'b', 'c', 'd', 'e'})
        mirror.append(std::string(megabytes5, letter));
    mirror.append("next\n");
    EXPECT_THAT(console, IsEmpty());
    EXPECT_EQ(folder.read("log/quorva.log"), "next\n");
    EXPECT_EQ(folder.read("log/quorva.log.1").back(), 'e');
    EXPECT_EQ(folder.read("log/quorva.log.2").back(), 'd');
    EXPECT_EQ(folder.read("log/quorva.log.3").back(), 'c');
    EXPECT_FALSE(std::filesystem::exists(folder.path / "log/quorva.log.4"));
}

TEST(LinuxFileSystem, makesItsFilesForTheUserAloneAndTakesBackHalfALine) {
    const TemporaryFolder folder;
    LinuxFileSystem files;
    const auto directory = folder.path / "a" / "b";
    ASSERT_FALSE(files.createDirectories(directory));
    ASSERT_FALSE(files.createDirectories(directory));
    std::error_code error;
    const auto file = files.openForAppending(directory / "log", error);
    ASSERT_FALSE(error);
    ASSERT_FALSE(file->append("line\n"));
    {
        const auto wasIgnored = std::signal(SIGXFSZ, SIG_IGN);
        rlimit before{};
        ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
        const rlimit room{.rlim_cur = 8, .rlim_max = before.rlim_max};
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &room), 0);
        EXPECT_EQ(file->append("another line\n"), std::errc::file_too_large);
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
        std::signal(SIGXFSZ, wasIgnored);
    }
    using std::filesystem::perms;
    EXPECT_EQ(std::filesystem::status(directory).permissions(), perms::owner_all);
    EXPECT_EQ(std::filesystem::status(directory / "log").permissions(),
              perms::owner_read | perms::owner_write);
    EXPECT_TRUE(file->isAt(directory / "log"));
    ASSERT_FALSE(files.rename(directory / "log", directory / "old"));
    EXPECT_FALSE(file->isAt(directory / "log"));
    EXPECT_EQ(folder.read("a/b/old"), "line\n");

    folder.write("file", "");
    EXPECT_EQ(files.createDirectories(folder.path / "file" / "x"), std::errc::file_exists);
    EXPECT_EQ(files.createDirectories(folder.path / "file"), std::errc::file_exists);
    EXPECT_EQ(files.openForAppending(folder.path, error), nullptr);
    EXPECT_EQ(error, std::errc::is_a_directory);
}

} // namespace
} // namespace quorva
