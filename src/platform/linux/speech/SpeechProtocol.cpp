#include "platform/linux/speech/SpeechProtocol.h"

#include "platform/linux/glib/Utf8.h"

#include <algorithm>
#include <cmath>

namespace quorva::ssip {
namespace {

constexpr int scaleEnd = 100;

int onScale(double value, double usual) {
    return static_cast<int>(
        std::lround(std::clamp(std::isnan(value) ? usual : value, -1.0, 1.0) * scaleEnd));
}

bool isAlphanumeric(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, [](char character) {
        return g_ascii_isalnum(character) != FALSE;
    });
}

bool isAlphabetic(std::string_view text) {
    return std::ranges::all_of(text,
                               [](char character) { return g_ascii_isalpha(character) != FALSE; });
}

std::string lowered(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), g_ascii_tolower);
    return lower;
}

/// A subtag after the first as RFC 5646, section 2.1.1, writes it.
std::string subtag(std::string_view text, bool isAfterSingleton) {
    auto tag = lowered(text);
    if (isAfterSingleton || !isAlphabetic(tag))
        return tag;
    if (tag.size() == 2)
        std::ranges::transform(tag, tag.begin(), g_ascii_toupper);
    if (tag.size() == 4)
        tag.front() = g_ascii_toupper(tag.front());
    return tag;
}

} // namespace

int rate(double value) {
    return onScale(value * 2 - 1, 0);
}

int volume(double value) {
    return onScale(value * 2 - 1, 1);
}

int pitch(double multiplier) {
    return onScale(multiplier > 0 ? std::log2(multiplier) : multiplier < 0 ? -1 : NAN, 0);
}

std::string languageTag(std::string_view spelling) {
    spelling = spelling.substr(0, spelling.find_first_of(".@"));
    std::string tag;
    bool isAfterSingleton = false;
    while (!spelling.empty()) {
        const auto length = std::min(spelling.find_first_of("-_"), spelling.size());
        const auto part = spelling.substr(0, length);
        spelling.remove_prefix(std::min(length + 1, spelling.size()));
        if (!isAlphanumeric(part) || part.size() > 8)
            break;
        if (tag.empty()) {
            if (part.size() < 2 || !isAlphabetic(part) || lowered(part) == "none")
                break;
            tag = lowered(part);
            continue;
        }
        tag += '-' + subtag(part, isAfterSingleton);
        isAfterSingleton |= part.size() == 1;
    }
    return tag.empty() ? std::string(undetermined) : tag;
}

std::optional<Line> decodeLine(std::string_view line) {
    while (!line.empty() && (line.back() == '\r' || line.back() == '\n'))
        line.remove_suffix(1);
    const auto digits = line.substr(0, 3);
    if (digits.size() < 3 ||
        !std::ranges::all_of(digits, [](char digit) { return g_ascii_isdigit(digit) != FALSE; }))
        return std::nullopt;
    if (line.size() > 3 && line[3] != '-' && line[3] != ' ')
        return std::nullopt;
    const int code = (digits[0] - '0') * 100 + (digits[1] - '0') * 10 + (digits[2] - '0');
    const bool hasText = line.size() > 4;
    return Line{code, line.size() < 4 || line[3] == ' ',
                hasText ? validUtf8(line.substr(4)) : std::string()};
}

std::optional<SpeechVoice> decodeVoice(std::string_view value) {
    const auto nameEnd = value.find('\t');
    const auto name = value.substr(0, nameEnd);
    if (name.empty())
        return std::nullopt;
    const auto rest = nameEnd == std::string_view::npos ? "" : value.substr(nameEnd + 1);
    return SpeechVoice{.name = std::string(name),
                       .language = languageTag(rest.substr(0, rest.find('\t')))};
}

std::string encodeText(std::string_view text) {
    const auto valid = validUtf8(text);
    std::string bytes;
    bool isLineStart = true;
    for (const char character : valid) {
        if (character == '\r')
            continue;
        if (isLineStart && character == '.')
            bytes += '.';
        if (character == '\n')
            bytes += '\r';
        bytes += character;
        isLineStart = character == '\n';
    }
    return bytes + "\r\n.\r\n";
}

std::string encodeCommand(std::string_view command) {
    std::string line;
    for (const char character : command)
        if (character != '\r' && character != '\n' && character != '\0')
            line += character;
    return line + "\r\n";
}

} // namespace quorva::ssip
