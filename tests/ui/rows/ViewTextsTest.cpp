// The texts of the views, and the treatment of texts from outside.
#include "ui/rows/ViewTexts.h"

#include "ui/rows/DisplayText.h"

#include <gmock/gmock.h>

#include <chrono>

namespace quorva {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

TEST(ViewTexts, timesPassedAreSaidInTheLargestWholeUnit) {
    const Time then{};
    const std::pair<std::chrono::seconds, const char*> table[] = {
        {-10s, "now"},
        {0s, "now"},
        {4s, "now"},
        {5s, "5 sec. ago"},
        {59s, "59 sec. ago"},
        {60s, "1 min. ago"},
        {179s, "2 min. ago"},
        {3599s, "59 min. ago"},
        {3600s, "1 hr. ago"},
        {86'399s, "23 hr. ago"},
        {86'400s, "1 day ago"},
        {200'000s, "2 days ago"},
    };
    for (const auto& [passed, text] : table)
        EXPECT_EQ(relativeTime(then, then + passed), text);
}

TEST(ViewTexts, aChipIsLimitedWheneverItsSourceIs) {
    using enum SourceState::Kind;
    for (const auto kind : {notAllowed, notAvailable, partlyBlind})
        EXPECT_EQ(chipLook({kind, "No calendar answers."}), ChipLook::limited);
    EXPECT_EQ(chipLook({looking, {}}), ChipLook::on);
    EXPECT_EQ(chipLook({off, {}}), ChipLook::off);
}

TEST(ViewTexts, theCoverageLineNamesWhatIsMissing) {
    EXPECT_EQ(coverageLine(true, true, true), "Maximum coverage: all calendar types connected");
    EXPECT_EQ(coverageLine(true, true, false), "Add iCloud for full coverage");
    EXPECT_EQ(coverageLine(false, false, false),
              "Add Google and Outlook/Exchange and iCloud for full coverage");
}

TEST(ViewTexts, anUpdateCheckThatFailedIsNotUpToDate) {
    EXPECT_EQ(updateText(false, std::nullopt), "");
    EXPECT_THAT(updateText(true, UpdateAnswer{.kind = UpdateAnswer::Kind::upToDate}),
                testing::Not(HasSubstr("up to date")));
    EXPECT_THAT(updateText(false, UpdateAnswer{.reason = "no such service"}),
                HasSubstr("could not be found out"));
    EXPECT_THAT(
        updateText(false, UpdateAnswer{.kind = UpdateAnswer::Kind::available, .version = "2.1"}),
        HasSubstr("Version 2.1 is available"));
}

TEST(DisplayText, textsFromElsewhereFitOneLineAndCannotTurnItAround) {
    EXPECT_EQ(foreign("Note\r\n\ttaker  \x01 bot\n"), "Note taker bot");
    EXPECT_EQ(foreign("ab\xE2\x80\xAE"
                      "cd\xE2\x81\xA6"
                      "ef"),
              "abcdef");
    EXPECT_EQ(foreign("a \xF0\x9F\xA4\x96"), QString::fromUtf8("a \xF0\x9F\xA4\x96"));
    EXPECT_EQ(isolated("Zoom"), "Zoom");
    const QString name = isolated("\xD8\xB1\xD9\x88\xD8\xA8"); // Arabic
    EXPECT_EQ(name.front().unicode(), 0x2068);
    EXPECT_EQ(name.back().unicode(), 0x2069);
}

} // namespace
} // namespace quorva
