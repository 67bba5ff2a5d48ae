// What notifications of findings say.
#include "sources/FindingTexts.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <ctime>

namespace quorva {
namespace {

using namespace std::chrono_literals;

TEST(FindingTexts, cutLongNamesAtCharactersAndNotAtBytes) {
    const auto cut = [](const std::string& name) {
        return participantText({.platformName = "Zoom",
                                .matchedParticipantName = name,
                                .botDisplayName = "Otter.ai"})
            .body;
    };
    const std::string family = "\U0001F468\u200D\U0001F469\u200D\U0001F467";
    std::string hundred;
    for (int index = 0; index < 100; ++index)
        hundred += index % 2 == 0 ? family : "e\u0301";
    EXPECT_EQ(cut(hundred), "\"" + hundred + "\" (Otter.ai) detected in participant list");
    EXPECT_EQ(cut(hundred + "x"), "\"" + hundred + "...\" (Otter.ai) detected in participant list");
    EXPECT_EQ(truncatedForNotification(std::string(10'000, 'a')), std::string(100, 'a') + "...");
    EXPECT_EQ(truncatedForNotification("<b>\u05D0\u202E & \xFF"), "<b>\u05D0\u202E & \xFF");
}

TEST(FindingTexts, sayWhenAMeetingIs) {
    ::setenv("TZ", "America/New_York", 1);
    ::tzset();
    const Time now = std::chrono::sys_days{std::chrono::March / 2 / 2026} + 17h;
    const auto text = [&](Seconds start, Seconds end) {
        const auto at = [&](Seconds after) {
            return now + std::chrono::round<Time::duration>(after);
        };
        const auto [title, body] = calendarText(
            {.botName = "Gong", .eventStartDate = at(start), .eventEndDate = at(end)}, now);
        return title + ": " + body;
    };
    EXPECT_EQ(text(45min, 2h), "Bot Invited to Upcoming Meeting: Gong detected in a calendar event "
                               "at 12:45 PM (45m)");
    EXPECT_EQ(text(9h, 10h), "Bot Invited to Upcoming Meeting: Gong detected in a calendar event "
                             "at 9:00 PM (9h)");
    for (const auto& [start, end] : {std::pair{-1min, 5min}, {0min, 5min}, {-5min, 0min}})
        EXPECT_EQ(text(start, end),
                  "Bot in Active Meeting: Gong detected in a calendar event (happening now)");
    EXPECT_EQ(clockTime(now + 12h + 5min), "12:05 AM");
    ::unsetenv("TZ");
    ::tzset();
}

TEST(FindingTexts, nameTheKindOfRecording) {
    const auto text = [](IndicatorType type) {
        const auto [title, body] = indicatorText(
            {.platformName = "Zoom", .indicatorText = "Cloud Recording", .indicatorType = type});
        return title + "|" + body;
    };
    EXPECT_EQ(text(IndicatorType::cloudRecording),
              "Meeting Being Recorded|Zoom: \"Cloud Recording\"");
    EXPECT_EQ(text(IndicatorType::recording), text(IndicatorType::cloudRecording));
    EXPECT_EQ(text(IndicatorType::transcription),
              "Meeting Being Transcribed|Zoom: \"Cloud Recording\"");
    EXPECT_EQ(text(IndicatorType::aiCompanion),
              "Zoom AI Companion Active|AI Companion is active in your Zoom meeting");
    EXPECT_EQ(text(IndicatorType::copilot),
              "Teams Copilot Active|Copilot is active in your Teams meeting");
    EXPECT_EQ(text(IndicatorType::gemini),
              "Google Gemini Active|Gemini is taking notes in your Google Meet");
}

} // namespace
} // namespace quorva
