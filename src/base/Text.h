// The text rules that matching is written in: UTF-8 in and out, letters and numbers as Unicode
// classifies them, with a fast path for ASCII. Invalid UTF-8 counts as U+FFFD.
// Pure functions, callable from any thread. They follow the Unicode Character Database through ICU.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quorva {

/// The text in lower case: full Unicode mapping, independent of any locale.
[[nodiscard]] std::string lowerCased(std::string_view text);

/// The text without the white space (Unicode property White_Space) at both ends: a part of `text`.
[[nodiscard]] std::string_view trimmed(std::string_view text);

/// The text without the blanks (tab, and general category Zs) at both ends; line breaks stay.
[[nodiscard]] std::string_view trimmedOfBlanks(std::string_view text);

/// Whether the last user-perceived character of `text` is a letter or a number (general categories
/// L and N, marks on it notwithstanding). False for an empty text.
[[nodiscard]] bool endsInLetterOrNumber(std::string_view text);

/// Whether `text` continues a word that ended just before it: it begins with a letter, a number, or
/// a mark that combines with what came before. False for an empty text.
[[nodiscard]] bool continuesWord(std::string_view text);

/// Whether the last user-perceived character of `text` is a letter (general category L, marks on it
/// notwithstanding). False for an empty text.
[[nodiscard]] bool endsInLetter(std::string_view text);

/// Whether `text` continues the letters that ended just before it: it begins with a letter, or with
/// a mark that combines with what came before. False for an empty text.
[[nodiscard]] bool continuesLetters(std::string_view text);

/// How many user-perceived characters the text has (extended grapheme clusters): "é" is one,
/// however it is written, and so are a family's emoji and a line break of two bytes.
[[nodiscard]] std::size_t characterCount(std::string_view text);

/// The first `count` user-perceived characters of the text: a part of `text`.
[[nodiscard]] std::string_view firstCharacters(std::string_view text, std::size_t count);

/// The text after the last "/", trailing slashes being ignored: "b" of "/a/b" and of "/a/b/".
[[nodiscard]] std::string_view lastPathComponent(std::string_view path);

/// The text with control characters and invisible direction marks spelled out ("\n", "\u001b"), so
/// that a name from elsewhere cannot rearrange the terminal or the line that shows it.
[[nodiscard]] std::string printable(std::string_view text);

} // namespace quorva
