// The protocol of Speech Dispatcher, without the service.
#include "platform/linux/speech/SpeechProtocol.h"

#include <gmock/gmock.h>

#include <cmath>

namespace quorva::ssip {

using testing::Eq;
using testing::Optional;

TEST(SpeechProtocolTest, mapsScales) {
    struct Row {
        int (*map)(double);
        double value;
        int expected;
    };
    const Row rows[] = {
        {rate, 0, -100},    {rate, 0.25, -50},      {rate, 0.5, 0},   {rate, 0.55, 10},
        {rate, 1, 100},     {rate, 7, 100},         {rate, -1, -100}, {rate, NAN, 0},
        {volume, 0, -100},  {volume, 0.5, 0},       {volume, 1, 100}, {volume, NAN, 100},
        {pitch, 0.5, -100}, {pitch, 1, 0},          {pitch, 2, 100},  {pitch, std::sqrt(2.0), 50},
        {pitch, 8, 100},    {pitch, 0.1, -100},     {pitch, 0, 0},    {pitch, NAN, 0},
        {pitch, -1, -100},  {pitch, INFINITY, 100},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.map(row.value), row.expected) << row.value;
}

TEST(SpeechProtocolTest, spellsLanguagesInOneWay) {
    const std::pair<const char*, const char*> rows[] = {
        {"en", "en"},
        {"en-US", "en-US"},
        {"en_US", "en-US"},
        {"EN-us", "en-US"},
        {"en_US.UTF-8", "en-US"},
        {"sr_RS@latin", "sr-RS"},
        {"zh-hant-tw", "zh-Hant-TW"},
        {"es-419", "es-419"},
        {"en-gb-x-rp", "en-GB-x-rp"},
        {"cmn", "cmn"},
        {"", "und"},
        {"none", "und"},
        {"C.UTF-8", "und"},
        {"en-US\r\nQUIT", "en"},
        {"en--US", "en"},
    };
    for (const auto& [spelling, tag] : rows)
        EXPECT_EQ(languageTag(spelling), tag) << spelling;
}

TEST(SpeechProtocolTest, readsLinesAndVoices) {
    EXPECT_THAT(decodeLine("225-21\r"), Optional(Eq(Line{225, false, "21"})));
    EXPECT_THAT(decodeLine("225 OK MESSAGE QUEUED"),
                Optional(Eq(Line{225, true, "OK MESSAGE QUEUED"})));
    EXPECT_THAT(decodeLine("300"), Optional(Eq(Line{300, true, ""})));
    EXPECT_THAT(decodeLine("249-\xff"), Optional(Eq(Line{249, false, "\uFFFD"})));
    for (const auto* const bad : {"", "22", "2a5 OK", "HTTP/1.1 200 OK", "2250 OK", "-22 OK"})
        EXPECT_EQ(decodeLine(bad), std::nullopt) << bad;

    EXPECT_THAT(decodeVoice("English (America)\ten_US\tnone"),
                Optional(Eq(SpeechVoice{"English (America)", "en-US"})));
    EXPECT_THAT(decodeVoice("bare"), Optional(Eq(SpeechVoice{"bare", "und"})));
    EXPECT_EQ(decodeVoice("\ten\tnone"), std::nullopt);
}

TEST(SpeechProtocolTest, escapesWhatWouldEndATextOrCommand) {
    EXPECT_EQ(encodeText("Hello"), "Hello\r\n.\r\n");
    EXPECT_EQ(encodeText(".\r\n.\nQUIT\n..x."), "..\r\n..\r\nQUIT\r\n...x.\r\n.\r\n");
    EXPECT_EQ(encodeText(std::string("a\0b\xff", 4)), "a\uFFFDb\uFFFD\r\n.\r\n");
    EXPECT_EQ(encodeCommand("SET SELF SYNTHESIS_VOICE a\r\nQUIT"),
              "SET SELF SYNTHESIS_VOICE aQUIT\r\n");
}

} // namespace quorva::ssip
