#include "catalogue/ParticipantMatching.h"

#include "base/Text.h"
#include "catalogue/PatternAutomaton.h"
#include "support/PlainParticipantMatching.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <set>

namespace quorva {
namespace {

std::string shown(const std::optional<ParticipantBotMatch>& match) {
    if (!match)
        return "nothing";
    return std::string(match->pattern) + " | " + match->displayName + " | " +
           std::string(rawValue(match->category)) + " | " + std::to_string(match->confidence);
}

std::string shown(const std::optional<IndicatorMatch>& match) {
    if (!match)
        return "nothing";
    return std::string(match->phrase) + " | " + std::string(rawValue(match->type));
}

/// Whether a pattern can match at all: texts are compared in lower case, and patterns hold ASCII.
bool isPattern(std::string_view text) {
    return !text.empty() && trimmed(text) == text &&
           std::all_of(text.begin(), text.end(),
                       [](char c) { return c >= ' ' && c <= '~' && !(c >= 'A' && c <= 'Z'); });
}

TEST(ParticipantTables, holdDistinctPatternsInLowerCase) {
    std::set<std::string_view> patterns;
    for (const auto& row : tables::participantBotPatterns) {
        EXPECT_TRUE(isPattern(row.pattern)) << row.pattern;
        EXPECT_TRUE(patterns.insert(row.pattern).second) << row.pattern;
        EXPECT_FALSE(row.displayName.empty()) << row.pattern;
    }
    for (const auto word : tables::genericBotWords)
        EXPECT_TRUE(patterns.contains(word)) << word << " is not a pattern of its own";
    std::set<std::string_view> phrases;
    for (const auto& row : tables::indicatorPhrases) {
        EXPECT_TRUE(isPattern(row.phrase)) << row.phrase;
        EXPECT_TRUE(phrases.insert(row.phrase).second) << row.phrase;
    }
}

TEST(ParticipantMatching, findsTheLongestPatternInParticipantsNames) {
    const std::pair<const char*, const char*> cases[] = {
        {"Otter.ai Notetaker", "otter.ai notetaker | Otter.ai | transcription | 95"},
        {"Otter.ai", "otter.ai | Otter.ai | transcription | 95"},
        {"Anna's Notetaker (Otter.ai)", "'s notetaker (otter | Otter.ai | transcription | 90"},
        {"Anna’s Notetaker (Otter.ai)", "notetaker (otter | Otter.ai | transcription | 90"},
        {"\u2003Fred (Fireflies.ai)\n", "fred (fireflies | Fireflies.ai | transcription | 90"},
        {"Gong Assistant 2", "gong assistant | Gong.io | sales | 80"},  // 14 characters
        {"Otter.ai (Ann)", "otter.ai | Otter.ai | transcription | 80"}, // 8
        {"Read.ai 2", "read.ai | Read.ai | transcription | 70"},        // 7
        {"Recall.ai", "recall.ai | Recall.ai (Bot Provider) | transcription | 95"},
        // Equally long patterns: the first row wins, wherever it is in the name.
        {"Avoma Bot, Grain Bot", "grain bot | Grain | transcription | 80"},
        {"Notetaker: Krisp Bot", "krisp bot | Krisp | transcription | 80"},
        // Non-ASCII characters whose lower case is ASCII.
        {"MEETGEE\u212A", "meetgeek | MeetGeek | transcription | 95"},
        {"OTTER.Aİ", "otter.ai | Otter.ai | transcription | 80"},
        {"Ötter.ai Нотa", "nothing"},
        {"Benjamin Otter", "nothing"},
        {" \n", "nothing"},
        {"", "nothing"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(shown(matchParticipant(text)), expected) << text;
}

TEST(ParticipantMatching, namesBotsOfNoKnownProductAfterThemselves) {
    const std::pair<const char*, const char*> cases[] = {
        {"Acme Notetaker", "notetaker | Acme Notetaker | transcription | 80"},
        {"\tAcme Meeting Bot , Sales (EU)\n",
         "meeting bot | Acme Meeting Bot | transcription | 80"},
        {"Jane\u00a0, AI Assistant", "ai assistant | Jane | transcription | 80"},
        {"(beta) Meeting Recorder",
         "meeting recorder | (beta) Meeting Recorder | transcription | 90"},
        {"Ann \n, notetaker", "notetaker | Ann \n | transcription | 80"}, // line breaks stay
        {"Notetaker", "notetaker | Unknown Notetaker | unknown | 95"},
        {"Note Taker", "note taker | Unknown Notetaker | unknown | 95"},
        {"Notetaker by Acme", "notetaker | Unknown Notetaker | unknown | 80"},
        {"acme-notetaker", "notetaker | Unknown Notetaker | unknown | 80"}, // one word
        {"Acme\u00a0Notetaker", "notetaker | Unknown Notetaker | unknown | 80"},
        {"Notetaker and Meeting Bot",
         "meeting bot | Notetaker and Meeting Bot | transcription | 80"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(shown(matchParticipant(text)), expected) << text;
}

TEST(ParticipantMatching, neverReportsOurOwnProduct) {
    const std::pair<const char*, bool> cases[] = {
        {"Quorva Notetaker", false},
        {"Notetaker (QUORVA)", false},
        {"Quorva2 Notetaker", false},
        {"2Quorva Notetaker", false},
        {"Notetaker MyQuorvaApp", false},
        {"quorvana quorva notetaker", false}, // the second time as a word
        {"Quorvana Notetaker", true},
        {"Quorvaquorva Notetaker", true},
        {"Équorva Notetaker", true},
        {"E\u0301quorva Notetaker", true}, // the same É, of two code points
        {"Quorva\u0301 Notetaker", true},
    };
    for (const auto& [text, isReported] : cases)
        EXPECT_EQ(matchParticipant(text).has_value(), isReported) << text;
}

TEST(ParticipantMatching, dropsWeakMatchesOnLabelsAndLongLines) {
    const auto line = [](const std::string& end, const std::string& character, int characters) {
        std::string text;
        for (int i = 0; i < characters; ++i)
            text += character;
        return text + end;
    };
    const std::pair<std::string, const char*> cases[] = {
        {"Copilot", "copilot | Teams Copilot | platform | 95"},
        {"Ask Copilot", "copilot | Teams Copilot | platform | 70"},
        {"OPEN Copilot", "nothing"},
        {"Reopen Copilot", "copilot | Teams Copilot | platform | 70"},
        {"Mute Otter Notetaker", "otter notetaker | Otter.ai | transcription | 90"},
        {"Avoma's Profile", "nothing"},
        {line(" avoma", "x", 54), "avoma | Avoma | transcription | 70"}, // 60 characters
        {line(" avoma", "x", 55), "nothing"},
        {line(" otter notetaker", "x", 55), "otter notetaker | Otter.ai | transcription | 90"},
        {line(" avoma", "e\u0301", 54), "avoma | Avoma | transcription | 70"},
        {line(" avoma", "e\u0301", 55), "nothing"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(shown(matchParticipant(text)), expected) << text;
    EXPECT_EQ(shown(matchBotName("Open Copilot")), "copilot | Teams Copilot | platform | 70");
}

TEST(ParticipantMatching, findsTheFirstPhraseThatStandsForThePlatform) {
    const std::array<const char*, 3> cases[] = {
        {"Recording in progress", "Webex", "recording in progress | recording"},
        {"Recording to the cloud", "Zoom", "recording to the cloud | cloudRecording"},
        {"Recording to the moon", "Zoom", "recording to the | recording"},
        {"Start recording to the cloud", "Zoom", "nothing"},
        {"Restart recording to the cloud", "Zoom", "recording to the cloud | cloudRecording"},
        {"AI Companion is active", "Zoom", "ai companion | aiCompanion"},
        {"AI Companion is active", "Teams", "nothing"},
        {"Copilot: meeting summary, transcription is on", "Zoom", "meeting summary | aiCompanion"},
        {"Copilot: meeting summary, transcription is on", "Teams", "copilot | copilot"},
        {"Copilot: meeting summary, transcription is on", "",
         "transcription is on | transcription"},
        {"Enable Copilot", "Teams", "nothing"},
        {"Turn on local recording", "Zoom", "nothing"},
        {"Gemini is ta\u212Aing notes", "Google Meet", "gemini is taking notes | gemini"},
        {"", "Zoom", "nothing"},
    };
    for (const auto& [text, platform, expected] : cases)
        EXPECT_EQ(shown(matchIndicator(text, platform)), expected) << text << " on " << platform;
}

/// Random texts made of patterns, parts of them, and what may surround them.
class TextMaker {
public:
    TextMaker() {
        for (const auto& row : tables::participantBotPatterns)
            pieces.emplace_back(row.pattern);
        for (const auto& row : tables::indicatorPhrases)
            pieces.emplace_back(row.phrase);
        for (const auto prefix : tables::uiActionPrefixes)
            pieces.emplace_back(prefix);
        for (const auto prefix : tables::recordingControlPrefixes)
            pieces.emplace_back(prefix);
        for (int i = 0; i < 8; ++i)
            pieces.insert(pieces.end(), std::begin(glue), std::end(glue));
    }

    std::string next() {
        std::string text;
        for (auto count = random() % 6; count > 0; --count) {
            auto piece = pieces[random() % pieces.size()];
            if (random() % 6 == 0)
                piece = piece.substr(random() % piece.size());
            if (random() % 6 == 0)
                piece.resize(random() % (piece.size() + 1));
            if (random() % 4 == 0)
                std::transform(piece.begin(), piece.end(), piece.begin(), [](char c) {
                    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
                });
            text += piece;
            text += random() % 2 == 0 ? " " : "";
        }
        return text;
    }

private:
    static constexpr const char* glue[] = {
        "Ann",        ",",      "(",
        ")",          "\n",     "\t",
        "é",          "İ",      "\u212A",
        "\u0301",     "Σ",      "\u00a0",
        "\u3000",     "quorva", "quorvaapp",
        "'s profile", "李",     "👩‍👩‍👧",
        "\r\n",       "\xff",   "who says a lot more in one line than names do "};
    std::vector<std::string> pieces;
    std::mt19937 random{20260412}; // NOLINT(*-msc51-cpp)
};

TEST(ParticipantMatching, matchesAsAWalkThroughTheRowsWould) {
    TextMaker texts;
    std::set<std::string> patterns;
    std::set<std::string> phrases;
    for (int i = 0; i < 20'000; ++i) {
        const auto text = texts.next();
        const auto lower = lowerCased(text);
        const auto bot = matchBotName(text);
        ASSERT_EQ(shown(bot), shown(plain::matchBotName(text, lower))) << text;
        ASSERT_EQ(shown(matchParticipant(text)), shown(plain::matchParticipant(text, lower)))
            << text;
        patterns.insert(bot ? std::string(bot->pattern) : "");
        for (const auto* platform : {"Zoom", "Teams", "Google Meet", "Slack"}) {
            const auto indicator = matchIndicator(text, platform);
            ASSERT_EQ(shown(indicator), shown(plain::matchIndicator(lower, platform)))
                << text << " on " << platform;
            phrases.insert(indicator ? std::string(indicator->phrase) : "");
        }
    }
    EXPECT_GT(patterns.size(), std::size(tables::participantBotPatterns) / 2)
        << "the texts no longer try the rules";
    EXPECT_GT(phrases.size(), std::size(tables::indicatorPhrases) / 2);
}

TEST(PatternAutomaton, findsEveryOccurrenceOfOverlappingAndRepeatedPatterns) {
    const PatternAutomaton automaton({"he", "she", "hers", "his", "he", "rs\xff"});
    std::vector<std::size_t> found;
    automaton.search("ushers, hhe\xffhers\xff", [&](std::size_t index) { found.push_back(index); });
    EXPECT_EQ(found, (std::vector<std::size_t>{1, 0, 4, 2, 0, 4, 0, 4, 2, 5}));
}

} // namespace
} // namespace quorva
