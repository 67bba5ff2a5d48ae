// Unicode text operations for matching: UTF-8 in and out, letters and numbers as classified by the
// Unicode Character Database (through ICU), with a fast path for ASCII. Invalid UTF-8 is read as
// U+FFFD. Pure functions, callable from any thread.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quorva {

/// The text in lower case: full Unicode mapping, independent of any locale.
[[nodiscard]] std::string lowerCased(std::string_view text);

/// The text without leading and trailing white space (Unicode property White_Space); a view into
/// `text`.
[[nodiscard]] std::string_view trimmed(std::string_view text);

/// The text without leading and trailing blanks (tab, and general category Zs), but with its line
/// breaks; a view into `text`.
[[nodiscard]] std::string_view trimmedOfBlanks(std::string_view text);

/// Whether the last user-perceived character of `text` is a letter or a number (general categories
/// L and N), ignoring combining marks. False for an empty text.
[[nodiscard]] bool endsInLetterOrNumber(std::string_view text);

/// Whether `text` continues a word that ends just before it: it begins with a letter, a number, or
/// a combining mark. False for an empty text.
[[nodiscard]] bool continuesWord(std::string_view text);

/// Whether the last user-perceived character of `text` is a letter (general category L), ignoring
/// combining marks. False for an empty text.
[[nodiscard]] bool endsInLetter(std::string_view text);

/// Whether `text` continues letters that end just before it: it begins with a letter or a combining
/// mark. False for an empty text.
[[nodiscard]] bool continuesLetters(std::string_view text);

/// The number of user-perceived characters (extended grapheme clusters). "é" counts as one in every
/// encoding, and so do a family emoji and CR LF.
[[nodiscard]] std::size_t characterCount(std::string_view text);

/// The first `count` user-perceived characters; a view into `text`.
[[nodiscard]] std::string_view firstCharacters(std::string_view text, std::size_t count);

/// The text after the last "/", ignoring trailing slashes: "b" for "/a/b" and for "/a/b/".
[[nodiscard]] std::string_view lastPathComponent(std::string_view path);

} // namespace quorva
