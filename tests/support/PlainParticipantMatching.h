// The rules of ParticipantMatching.h as plain walks through the tables' rows, to hold the indexed
// ones against. Each takes the text as it was collected, and the same text in lower case.
#pragma once

#include "base/Text.h"
#include "catalogue/IndicatorPhraseTable.h"
#include "catalogue/ParticipantBotPatternTable.h"
#include "catalogue/ParticipantMatching.h"

#include <unicode/uchar.h>
#include <unicode/unistr.h>

namespace quorva::plain {

inline bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

inline bool isLetter(UChar32 c) {
    return u_isalpha(c) != 0;
}

inline bool isMark(UChar32 c) {
    return (U_GET_GC_MASK(c) & U_GC_M_MASK) != 0;
}

inline bool isOwnAppName(std::string_view lower) {
    if (lower == "quorva" || contains(lower, "quorvaapp"))
        return true;
    if (!contains(lower, "quorva"))
        return false;
    const auto text = icu::UnicodeString::fromUTF8(std::string(lower));
    for (int32_t at = text.indexOf("quorva"); at >= 0; at = text.indexOf("quorva", at + 6)) {
        int32_t before = at; // a letter with marks on it is a letter
        while (before > 0 && isMark(text.char32At(before - 1)))
            before = text.moveIndex32(before, -1);
        const bool letterBefore = before > 0 && isLetter(text.char32At(before - 1));
        const bool letterAfter = at + 6 < text.length() &&
                                 (isLetter(text.char32At(at + 6)) || isMark(text.char32At(at + 6)));
        if (!letterBefore && !letterAfter)
            return true;
    }
    return false;
}

inline bool isGenericBotName(std::string_view lower) {
    int words = 0;
    for (std::size_t i = 0; i < lower.size(); ++i)
        words += lower[i] != ' ' && (i == 0 || lower[i - 1] == ' ');
    if (words < 2)
        return false;
    for (const auto word : tables::genericBotWords)
        if (contains(lower, word) && lower.substr(0, word.size()) != word)
            return true;
    return false;
}

inline std::string cleanDisplayName(std::string_view name) {
    std::string_view cleaned = name;
    if (const auto comma = cleaned.find(','); comma != std::string_view::npos)
        cleaned = cleaned.substr(0, comma);
    if (const auto bracket = cleaned.find('('); bracket != std::string_view::npos)
        cleaned = cleaned.substr(0, bracket);
    constexpr std::string_view blanks[] = {
        "\t",     " ",      "\u00A0", "\u1680", "\u2000", "\u2001", "\u2002", "\u2003", "\u2004",
        "\u2005", "\u2006", "\u2007", "\u2008", "\u2009", "\u200A", "\u202F", "\u205F", "\u3000"};
    for (bool changed = true; changed;) {
        changed = false;
        for (const auto blank : blanks) {
            if (cleaned.starts_with(blank)) {
                cleaned.remove_prefix(blank.size());
                changed = true;
            }
            if (cleaned.ends_with(blank)) {
                cleaned.remove_suffix(blank.size());
                changed = true;
            }
        }
    }
    return std::string(cleaned.empty() ? name : cleaned);
}

inline bool isUIActionLabel(std::string_view text, std::string_view lower) {
    for (const auto prefix : tables::uiActionPrefixes)
        if (lower.substr(0, prefix.size()) == prefix)
            return true;
    return contains(lower, "'s profile") || contains(lower, "profile") || characterCount(text) > 60;
}

inline std::optional<ParticipantBotMatch> matchBotName(std::string_view name,
                                                       std::string_view lowerName) {
    const auto lower = trimmed(lowerName);
    if (lower.empty() || isOwnAppName(lower))
        return std::nullopt;
    std::optional<ParticipantBotMatch> best;
    for (const auto& row : tables::participantBotPatterns) {
        if (!contains(lower, row.pattern))
            continue;
        int confidence = 70;
        if (lower == row.pattern)
            confidence = 95;
        else if (row.pattern.size() >= 15)
            confidence = 90;
        else if (row.pattern.size() >= 8)
            confidence = 80;
        else if (row.category == BotCategory::unknown)
            confidence = isGenericBotName(lower) ? 75 : 45;
        if (!best || row.pattern.size() > best->pattern.size())
            best = {row.pattern, std::string(row.displayName), row.category, confidence};
    }
    if (best && best->category == BotCategory::unknown && isGenericBotName(lower)) {
        best->category = BotCategory::transcription;
        best->displayName = cleanDisplayName(trimmed(name));
    }
    return best;
}

inline std::optional<ParticipantBotMatch> matchParticipant(std::string_view text,
                                                           std::string_view lower) {
    auto match = matchBotName(text, lower);
    if (match && match->confidence < 85 && isUIActionLabel(text, lower))
        return std::nullopt;
    return match;
}

inline std::optional<IndicatorMatch> matchIndicator(std::string_view lower,
                                                    std::string_view platformName) {
    for (const auto prefix : tables::recordingControlPrefixes)
        if (lower == prefix || lower.substr(0, prefix.size()) == prefix)
            return std::nullopt;
    for (const auto& row : tables::indicatorPhrases)
        if (contains(lower, row.phrase) &&
            (row.onlyOnPlatform.empty() || row.onlyOnPlatform == platformName))
            return IndicatorMatch{row.phrase, row.type};
    return std::nullopt;
}

} // namespace quorva::plain
