#include "catalogue/ParticipantMatching.h"

#include "base/Text.h"
#include "catalogue/IndicatorPhraseTable.h"
#include "catalogue/ParticipantBotPatternTable.h"
#include "catalogue/PatternAutomaton.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace quorva {
namespace {

using tables::indicatorPhrases;
using tables::participantBotPatterns;

constexpr std::string_view ownName = "quorva";
constexpr std::string_view ownProgram = "quorvaapp";
constexpr int strongConfidence = 85;    ///< counts even in what looks like a control's label
constexpr std::size_t longestName = 60; ///< in characters
constexpr char blank = ' ';

/// The automaton of a table's column; the index of a pattern is that of its row.
template <typename Row, std::size_t N>
PatternAutomaton automatonOf(const Row (&rows)[N], std::string_view Row::*column) {
    std::vector<std::string_view> patterns;
    for (const auto& row : rows)
        patterns.push_back(row.*column);
    return PatternAutomaton(patterns);
}

bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

template <std::size_t N>
bool beginsWithAny(std::string_view text, const std::string_view (&beginnings)[N]) {
    return std::any_of(std::begin(beginnings), std::end(beginnings),
                       [text](auto beginning) { return text.starts_with(beginning); });
}

/// Whether this is this product's own name, or contains it as a word.
bool isOwnAppName(std::string_view lower) {
    if (contains(lower, ownProgram))
        return true;
    for (auto at = lower.find(ownName); at != std::string_view::npos;
         at = lower.find(ownName, at + ownName.size()))
        if (!endsInLetter(lower.substr(0, at)) &&
            !continuesLetters(lower.substr(at + ownName.size())))
            return true;
    return false;
}

bool hasSeveralWords(std::string_view text) {
    const auto word = text.find_first_not_of(blank);
    const auto gap = text.find(blank, word);
    return gap != std::string_view::npos &&
           text.find_first_not_of(blank, gap) != std::string_view::npos;
}

/// Whether this is the name of a bot of an unknown product: another word before the word for what
/// the bot does.
bool isGenericBotName(std::string_view lower) {
    return hasSeveralWords(lower) &&
           std::any_of(
               std::begin(tables::genericBotWords), std::end(tables::genericBotWords),
               [lower](auto word) { return contains(lower, word) && !lower.starts_with(word); });
}

/// The name up to a comma or a bracket; the whole name if nothing comes before them.
std::string_view cleanDisplayName(std::string_view name) {
    const auto beforeComma = name.substr(0, name.find(','));
    const auto cleaned = trimmedOfBlanks(beforeComma.substr(0, beforeComma.find('(')));
    return cleaned.empty() ? name : cleaned;
}

const ParticipantBotPatternRow* rowOfLongestPattern(std::string_view lower) {
    static const auto automaton =
        automatonOf(participantBotPatterns, &ParticipantBotPatternRow::pattern);
    const ParticipantBotPatternRow* best = nullptr;
    automaton.search(lower, [&best](std::size_t index) {
        const auto* const row = &participantBotPatterns[index];
        if (best == nullptr || row->pattern.size() > best->pattern.size() ||
            (row->pattern.size() == best->pattern.size() && row < best))
            best = row;
    });
    return best;
}

/// A longer pattern gives a higher confidence.
int confidenceOf(const ParticipantBotPatternRow& row, std::string_view lower, bool isGeneric) {
    const auto length = row.pattern.size(); // in characters too: patterns are ASCII
    if (lower == row.pattern)
        return 95;
    if (length >= 15)
        return 90;
    if (length >= 8)
        return 80;
    if (row.category == BotCategory::unknown)
        return isGeneric ? 75 : 45;
    return 70;
}

bool isRecordingControlLabel(std::string_view lower) {
    return beginsWithAny(lower, tables::recordingControlPrefixes);
}

} // namespace

std::optional<ParticipantBotMatch> matchBotName(std::string_view name) {
    const auto lowerName = lowerCased(name);
    const auto* const row = rowOfLongestPattern(lowerName);
    if (row == nullptr)
        return std::nullopt;
    const auto lower = trimmed(lowerName);
    if (isOwnAppName(lower))
        return std::nullopt;
    const bool isGeneric = row->category == BotCategory::unknown && isGenericBotName(lower);
    return ParticipantBotMatch{
        .pattern = row->pattern,
        .displayName = std::string(isGeneric ? cleanDisplayName(trimmed(name)) : row->displayName),
        .category = isGeneric ? BotCategory::transcription : row->category,
        .confidence = confidenceOf(*row, lower, isGeneric),
    };
}

std::optional<ParticipantBotMatch> matchParticipant(std::string_view text) {
    auto match = matchBotName(text);
    if (match && match->confidence < strongConfidence && isUIActionLabel(text))
        match.reset();
    return match;
}

bool isUIActionLabel(std::string_view text) {
    const auto lower = lowerCased(text);
    return beginsWithAny(lower, tables::uiActionPrefixes) || contains(lower, "profile") ||
           (text.size() > longestName && characterCount(text) > longestName);
}

std::optional<IndicatorMatch> matchIndicator(std::string_view text, std::string_view platformName) {
    static const auto automaton = automatonOf(indicatorPhrases, &IndicatorPhraseRow::phrase);
    const auto lower = lowerCased(text);
    std::size_t first = std::size(indicatorPhrases);
    automaton.search(lower, [&](std::size_t index) {
        const auto only = indicatorPhrases[index].onlyOnPlatform;
        if (only.empty() || only == platformName)
            first = std::min(first, index);
    });
    if (first == std::size(indicatorPhrases) || isRecordingControlLabel(lower))
        return std::nullopt;
    return IndicatorMatch{indicatorPhrases[first].phrase, indicatorPhrases[first].type};
}

} // namespace quorva
