#include "catalogue/Text.h"

#include <fmt/format.h>
#include <unicode/locid.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utf8.h>

#include <algorithm>

namespace quorva {
namespace {

constexpr bool isAscii(char c) {
    return static_cast<unsigned char>(c) < 0x80;
}

constexpr char lowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr bool isAsciiLetterOrDigit(char c) {
    const char lower = lowerAscii(c);
    return (lower >= 'a' && lower <= 'z') || (c >= '0' && c <= '9');
}

bool hasCategory(UChar32 c, uint32_t mask) {
    return (U_GET_GC_MASK(c) & mask) != 0;
}

/// Whether this character becomes several in lower case, or one that depends on its neighbours. No
/// others do but by the rules of a language (Unicode's SpecialCasing).
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

} // namespace

std::string lowerCased(std::string_view text) {
    std::string lower(text);
    if (std::all_of(text.begin(), text.end(), isAscii)) {
        std::transform(lower.begin(), lower.end(), lower.begin(), lowerAscii);
        return lower;
    }
    constexpr std::size_t mostGrowth = 3; // an invalid byte becomes the three of U+FFFD
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
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
    auto length = static_cast<int32_t>(text.size());
    int32_t start = 0;
    for (int32_t next = 0; next < length; start = next) {
        UChar32 c = 0;
        U8_NEXT_OR_FFFD(bytes, next, length, c);
        if (!u_isUWhiteSpace(c))
            break;
    }
    for (int32_t previous = length; previous > start; length = previous) {
        UChar32 c = 0;
        U8_PREV_OR_FFFD(bytes, start, previous, c);
        if (!u_isUWhiteSpace(c))
            break;
    }
    return text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(length - start));
}

bool endsInLetterOrNumber(std::string_view text) {
    if (text.empty())
        return false;
    if (isAscii(text.back()))
        return isAsciiLetterOrDigit(text.back());
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
    UChar32 c = 0;
    for (auto at = static_cast<int32_t>(text.size()); at > 0;) {
        U8_PREV_OR_FFFD(bytes, 0, at, c);
        if (!hasCategory(c, U_GC_M_MASK))
            break;
    }
    return hasCategory(c, letterOrNumber);
}

bool continuesWord(std::string_view text) {
    if (text.empty())
        return false;
    if (isAscii(text.front()))
        return isAsciiLetterOrDigit(text.front());
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
    int32_t at = 0;
    UChar32 c = 0;
    U8_NEXT_OR_FFFD(bytes, at, static_cast<int32_t>(text.size()), c);
    return hasCategory(c, letterOrNumber | U_GC_M_MASK);
}

std::string_view lastPathComponent(std::string_view path) {
    const auto end = path.find_last_not_of('/');
    if (end == std::string_view::npos)
        return {};
    path = path.substr(0, end + 1);
    return path.substr(path.rfind('/') + 1); // npos + 1 is 0: the whole text
}

std::string printable(std::string_view text) {
    std::string shown;
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
    const auto length = static_cast<int32_t>(text.size());
    for (int32_t at = 0; at < length;) {
        const auto start = static_cast<std::size_t>(at);
        UChar32 c = 0;
        U8_NEXT(bytes, at, length, c);
        if (c == '\n')
            shown += "\\n";
        else if (c < 0)
            shown += "\uFFFD";
        else if (hasCategory(c, U_GC_CC_MASK | U_GC_CF_MASK | U_GC_ZL_MASK | U_GC_ZP_MASK))
            shown += fmt::format("\\u{:04x}", static_cast<uint32_t>(c));
        else
            shown += text.substr(start, static_cast<std::size_t>(at) - start);
    }
    return shown;
}

} // namespace quorva
