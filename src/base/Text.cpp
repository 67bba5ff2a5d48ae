#include "base/Text.h"

#include <unicode/brkiter.h>
#include <unicode/locid.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utext.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <memory>

namespace quorva {
namespace {

constexpr bool isAscii(char c) {
    return static_cast<unsigned char>(c) < 0x80;
}

constexpr bool startsCodePoint(char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) != 0x80;
}

constexpr char lowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool hasCategory(UChar32 c, uint32_t mask) {
    return (U_GET_GC_MASK(c) & mask) != 0;
}

/// Whether the lower case of this character is several characters, or depends on its neighbours
/// (Unicode's SpecialCasing, without the rules for single languages).
constexpr bool isLoweredInContext(UChar32 c) {
    constexpr UChar32 dottedI = 0x130;
    constexpr UChar32 sigma = 0x3A3;
    return c == dottedI || c == sigma;
}

std::string fullyLowerCased(std::string_view text) {
    std::string lower;
    const icu::StringPiece bytes(text.data(), static_cast<int32_t>(text.size()));
    icu::UnicodeString::fromUTF8(bytes).toLower(icu::Locale::getRoot()).toUTF8String(lower);
    return lower;
}

constexpr uint32_t letterOrNumber = U_GC_L_MASK | U_GC_N_MASK;

/// Whether the last character that is not a mark is in the categories of `mask`, which contains no
/// marks.
bool endsIn(std::string_view text, uint32_t mask) {
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
    for (auto at = static_cast<int32_t>(text.size()); at > 0;) {
        UChar32 c = 0;
        U8_PREV_OR_FFFD(bytes, 0, at, c);
        if (!hasCategory(c, U_GC_M_MASK))
            return hasCategory(c, mask);
    }
    return false;
}

bool beginsWith(std::string_view text, uint32_t mask) {
    if (text.empty())
        return false;
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
    int32_t at = 0;
    UChar32 c = 0;
    U8_NEXT_OR_FFFD(bytes, at, static_cast<int32_t>(text.size()), c);
    return hasCategory(c, mask);
}

/// The text without leading and trailing characters of a kind.
std::string_view trimmedOf(std::string_view text, UBool (*isOfKind)(UChar32)) {
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
    auto length = static_cast<int32_t>(text.size());
    int32_t start = 0;
    for (int32_t next = 0; next < length; start = next) {
        UChar32 c = 0;
        U8_NEXT_OR_FFFD(bytes, next, length, c);
        if (!isOfKind(c))
            break;
    }
    for (int32_t previous = length; previous > start; length = previous) {
        UChar32 c = 0;
        U8_PREV_OR_FFFD(bytes, start, previous, c);
        if (!isOfKind(c))
            break;
    }
    return text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(length - start));
}

/// An iterator over user-perceived characters; null when ICU's rules are missing.
std::unique_ptr<icu::BreakIterator> makeClusterBreaks() {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::BreakIterator> breaks(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    if (U_FAILURE(status))
        breaks.reset();
    return breaks;
}

struct Clusters {
    std::size_t count = 0;
    std::size_t end = 0; ///< in bytes
};

/// The first `most` user-perceived characters of the text.
Clusters walkClusters(std::string_view text, std::size_t most) {
    thread_local const auto breaks = makeClusterBreaks(); // making one takes longer than most texts
    UErrorCode status = U_ZERO_ERROR;
    const icu::LocalUTextPointer characters(
        utext_openUTF8(nullptr, text.data(), static_cast<int64_t>(text.size()), &status));
    if (breaks)
        breaks->setText(characters.getAlias(), status);
    Clusters walked;
    if (!breaks || U_FAILURE(status)) { // code points are the closest substitute
        for (; walked.end < text.size(); ++walked.end)
            if (startsCodePoint(text[walked.end]) && walked.count++ == most)
                return {most, walked.end};
        return walked;
    }
    while (walked.count < most) {
        const auto next = breaks->next();
        if (next == icu::BreakIterator::DONE)
            break;
        ++walked.count;
        walked.end = static_cast<std::size_t>(next);
    }
    return walked;
}

} // namespace

std::string lowerCased(std::string_view text) {
    std::string lower(text);
    if (std::all_of(text.begin(), text.end(), isAscii)) {
        std::transform(lower.begin(), lower.end(), lower.begin(), lowerAscii);
        return lower;
    }
    constexpr std::size_t mostGrowth = 3; // an invalid byte becomes the three bytes of U+FFFD
    lower.resize(text.size() * mostGrowth);
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
    const auto length = static_cast<int32_t>(text.size());
    int32_t size = 0;
    for (int32_t at = 0; at < length;) {
        if (isAscii(text[static_cast<std::size_t>(at)])) {
            lower[static_cast<std::size_t>(size++)] =
                lowerAscii(text[static_cast<std::size_t>(at++)]);
            continue;
        }
        UChar32 c = 0;
        U8_NEXT_OR_FFFD(bytes, at, length, c);
        if (isLoweredInContext(c))
            return fullyLowerCased(text);
        U8_APPEND_UNSAFE(lower.data(), size, u_tolower(c));
    }
    lower.resize(static_cast<std::size_t>(size));
    return lower;
}

std::string_view trimmed(std::string_view text) {
    return trimmedOf(text, u_isUWhiteSpace);
}

std::string_view trimmedOfBlanks(std::string_view text) {
    return trimmedOf(text, u_isblank);
}

bool endsInLetterOrNumber(std::string_view text) {
    return endsIn(text, letterOrNumber);
}

bool continuesWord(std::string_view text) {
    return beginsWith(text, letterOrNumber | U_GC_M_MASK);
}

bool endsInLetter(std::string_view text) {
    return endsIn(text, U_GC_L_MASK);
}

bool continuesLetters(std::string_view text) {
    return beginsWith(text, U_GC_L_MASK | U_GC_M_MASK);
}

std::size_t characterCount(std::string_view text) {
    if (std::all_of(text.begin(), text.end(), isAscii)) {
        std::size_t count = text.size();
        for (auto at = text.find("\r\n"); at != std::string_view::npos;
             at = text.find("\r\n", at + 2))
            --count;
        return count;
    }
    return walkClusters(text, text.size()).count;
}

std::string_view firstCharacters(std::string_view text, std::size_t count) {
    if (text.size() <= count)
        return text; // a character has at least one byte
    return text.substr(0, walkClusters(text, count).end);
}

std::string_view lastPathComponent(std::string_view path) {
    const auto end = path.find_last_not_of('/');
    if (end == std::string_view::npos)
        return {};
    path = path.substr(0, end + 1);
    return path.substr(path.rfind('/') + 1); // npos + 1 is 0: the whole text
}

} // namespace quorva
