// The trial of detection over programs that stand for quorva-scan, well or badly.
#include "platform/linux/desktop/ScanProgramTrial.h"

#include "support/TemporaryFolder.h"
#include "support/TurningMainLoop.h"

#include <gmock/gmock.h>

#include <optional>

namespace quorva {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class ScanProgramTrialTest : public testing::Test, protected TurningMainLoop {
protected:
    void runScript(const std::string& script) {
        folder.write("scan", "#!/bin/sh\n" + script);
        std::filesystem::permissions(folder.path / "scan", std::filesystem::perms::owner_all);
        run(folder.path / "scan");
    }
    void run(const std::filesystem::path& program) {
        lines.clear();
        works.reset();
        ScanProgramTrial trial(program);
        subscription = trial.run([this](const std::string& line) { lines.push_back(line); },
                                 [this](bool outcome) { works = outcome; });
    }
    [[nodiscard]] bool ends() {
        return comesTo([this] { return works.has_value(); });
    }

    TemporaryFolder folder;
    std::vector<std::string> lines;
    std::optional<bool> works;
    Subscription subscription;
};

} // namespace

TEST_F(ScanProgramTrialTest, handsOnWhatIsPrintedAndHowItEnds) {
    runScript("echo $1; printf 'caf\\351'");
    ASSERT_TRUE(ends());
    EXPECT_THAT(lines, ElementsAre("--self-test", "caf\uFFFD"));
    EXPECT_TRUE(*works);
    for (const auto* const bad : {"echo broken; exit 3", "kill -9 $$"}) {
        runScript(bad);
        ASSERT_TRUE(ends());
        EXPECT_FALSE(*works) << bad;
    }
    run(folder.path / "missing");
    ASSERT_TRUE(ends());
    EXPECT_FALSE(*works);
    EXPECT_THAT(lines, ElementsAre(HasSubstr("The trial can't be made: ")));
}

TEST_F(ScanProgramTrialTest, endsTheProgramThatNobodyWaitsFor) {
    runScript("trap 'echo ended >" + (folder.path / "ended").string() +
              "; exit' TERM\necho ready\nwhile :; do sleep 0.02; done");
    ASSERT_TRUE(comesTo([this] { return !lines.empty(); }));
    subscription.reset();
    ASSERT_TRUE(comesTo([this] { return std::filesystem::exists(folder.path / "ended"); }));
    EXPECT_FALSE(works.has_value());
}

} // namespace quorva
