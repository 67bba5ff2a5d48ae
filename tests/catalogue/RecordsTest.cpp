#include "catalogue/Records.h"

#include "base/Text.h"
#include "catalogue/RecordJson.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <unicode/locid.h>
#include <unicode/unistr.h>

namespace quorva {
namespace {

using namespace std::chrono_literals;
using Json = nlohmann::ordered_json;

constexpr Time reference = std::chrono::sys_days{std::chrono::January / 1 / 2001};

DetectionEvent someEvent() {
    return {.botName = "Otter.ai",
            .category = "transcription",
            .confidence = 95,
            .method = "processPath",
            .detectedAt = reference + 794'000'000'250ms};
}

TEST(Enumerations, areFoundByTheirRawValuesLetterCaseIncluded) {
    EXPECT_EQ(fromRawValue<BotCategory>("localRecorder"), BotCategory::localRecorder);
    EXPECT_EQ(fromRawValue<BotCategory>("LocalRecorder"), std::nullopt);
    EXPECT_EQ(fromRawValue<IndicatorType>("aiCompanion"), IndicatorType::aiCompanion);
}

TEST(CalendarBotDetection, saysHowLongItIsUntilTheStart) {
    CalendarBotDetection detection;
    detection.eventStartDate = reference;
    const auto label = [&](Time::duration ahead) {
        return detection.timeUntilStartLabel(reference - ahead);
    };
    EXPECT_EQ(label(-1s), "now");
    EXPECT_EQ(label(0s), "now");
    EXPECT_EQ(label(30s), "0m");
    EXPECT_EQ(label(59min + 59s), "59m");
    EXPECT_EQ(label(60min), "1h");
    EXPECT_EQ(label(61min + 30s), "1h 1m");
    EXPECT_EQ(label(48h + 5min), "48h 5m");
}

TEST(DetectionEvent, isStoredWithoutItsTitleAndWithoutAbsentFields) {
    auto event = someEvent();
    event.eventTitle = "Board meeting";
    const auto json = toJson(event);
    EXPECT_EQ(json.dump(), R"({"botName":"Otter.ai","category":"transcription","confidence":95,)"
                           R"("method":"processPath","detectedAt":794000000.25,)"
                           R"("dismissed":false})");
    const auto read = detectionEventFromJson(json);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->detectedAt, event.detectedAt);
    EXPECT_EQ(read->source, std::nullopt);
    EXPECT_EQ(read->eventStartDate, std::nullopt);
    EXPECT_EQ(read->eventTitle, std::nullopt);
}

TEST(DetectionEvent, keepsCategoriesThatThisBuildDoesNotKnow) {
    auto json = toJson(someEvent());
    json["category"] = "hologram";
    json["source"] = "satellite";
    json["eventStartDate"] = 0.5;
    json["later"] = "ignored";
    const auto read = detectionEventFromJson(json);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->category, "hologram");
    EXPECT_EQ(read->source, "satellite");
    EXPECT_EQ(read->eventStartDate, reference + 500ms);
}

TEST(DetectionEvent, doesNotDecodeWhenAFieldIsMissingMistypedOrOutOfRange) {
    const auto whole = toJson(someEvent());
    for (const auto& [key, value] : whole.items()) {
        auto json = whole;
        json.erase(key);
        EXPECT_FALSE(detectionEventFromJson(json)) << key;
    }
    const std::vector<std::pair<const char*, Json>> wrong{
        {"botName", 7},        {"confidence", "95"},      {"confidence", 95.5},
        {"confidence", 1e12},  {"confidence", true},      {"dismissed", 0},
        {"detectedAt", "now"}, {"detectedAt", 1e308},     {"detectedAt", -1e18},
        {"source", 3},         {"eventStartDate", "soon"}};
    for (const auto& [key, value] : wrong) {
        auto json = whole;
        json[key] = value;
        EXPECT_FALSE(detectionEventFromJson(json)) << key << " " << value;
    }
    EXPECT_FALSE(detectionEventFromJson(Json::array({1, 2})));
    EXPECT_FALSE(detectionEventFromJson(nullptr));
}

TEST(ObjectionRecord, comesBackAsItWasStored) {
    const ObjectionRecord whole{.id = "1",
                                .timestamp = reference + 1s,
                                .templateUsed = "Brief",
                                .botName = "Fathom",
                                .meetingContext = "Zoom",
                                .source = DetectionSource::participant,
                                .copiedToClipboard = true};
    EXPECT_EQ(toJson(whole)["source"], "participant");
    EXPECT_EQ(objectionRecordFromJson(toJson(whole)), whole);

    const ObjectionRecord bare{.id = "2", .timestamp = reference, .templateUsed = "GDPR"};
    EXPECT_EQ(toJson(bare).size(), 4U);
    EXPECT_EQ(objectionRecordFromJson(toJson(bare)), bare);

    auto unknownSource = toJson(whole);
    unknownSource["source"] = "satellite";
    EXPECT_FALSE(objectionRecordFromJson(unknownSource));
}

TEST(Text, lowerCasesByUnicodeWithoutALocale) {
    EXPECT_EQ(lowerCased("ÄÖ İ"), "äö i\u0307");
    EXPECT_EQ(lowerCased("ΟΔΟΣ Σ"), "οδος σ");
    EXPECT_EQ(lowerCased("a\xff\x42"), "a\uFFFDb");
    for (UChar32 c = 0x80; c < 0x20000; ++c) {
        if (U_IS_SURROGATE(c))
            continue;
        const icu::UnicodeString character(c);
        std::string utf8;
        std::string lower;
        character.toUTF8String(utf8);
        icu::UnicodeString(character).toLower(icu::Locale::getRoot()).toUTF8String(lower);
        ASSERT_EQ(lowerCased(utf8), lower) << c;
    }
}

TEST(Text, countsWhatPeopleTakeForCharacters) {
    const std::pair<const char*, std::size_t> cases[] = {
        {"", 0},     {"abc", 3},           {"a\r\nb\n\r", 5},
        {"é", 1},    {"e\u0301\u0323", 1}, {"👩‍👩‍👧🇩🇪!", 3},
        {"한국", 2}, {"é\r\n", 2},
    };
    for (const auto& [text, count] : cases)
        EXPECT_EQ(characterCount(text), count) << text;
}

TEST(Time, isWrittenInUtcWithMilliseconds) {
    EXPECT_EQ(iso8601(std::chrono::sys_days{std::chrono::February / 11 / 2026} + 9h + 41min + 7s +
                      250'999us),
              "2026-02-11T09:41:07.250Z");
    EXPECT_EQ(iso8601(Time{} - 1ms), "1969-12-31T23:59:59.999Z");
}

} // namespace
} // namespace quorva
