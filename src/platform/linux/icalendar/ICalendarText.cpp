#include "platform/linux/icalendar/ICalendarText.h"

#include "platform/linux/glib/Utf8.h"

#include <algorithm>
#include <charconv>
#include <chrono>

namespace quorva {
namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

/// The number that `digits` spells; nothing if there is any other character.
std::optional<int> number(std::string_view digits) {
    int value = 0;
    const auto* const end = digits.data() + digits.size();
    const auto [last, error] = std::from_chars(digits.data(), end, value);
    if (digits.empty() || !isDigit(digits.front()) || error != std::errc{} || last != end)
        return std::nullopt;
    return value;
}

/// Resolves the escapes of RFC 6868: "^n", "^^" and "^'" are a line break, "^" and a quotation
/// mark.
std::string withoutCarets(std::string_view value) {
    std::string plain;
    plain.reserve(value.size());
    for (std::size_t i = 0; i < value.size(); ++i) {
        const char next = value[i] == '^' && i + 1 < value.size() ? value[i + 1] : '\0';
        const bool isEscape = next == 'n' || next == '^' || next == '\'';
        plain += !isEscape ? value[i] : next == 'n' ? '\n' : next == '^' ? '^' : '"';
        i += isEscape ? 1 : 0;
    }
    return plain;
}

/// Where the parameter that begins at `begin` ends: at the next ";" or ":" outside of quotes. A
/// quotation mark that is never closed is ignored.
std::size_t endOfParameter(std::string_view line, std::size_t begin) {
    for (auto at = begin; at < line.size(); ++at) {
        if (line[at] == ';' || line[at] == ':')
            return at;
        if (line[at] == '"')
            if (const auto closing = line.find('"', at + 1); closing != std::string_view::npos)
                at = closing;
    }
    return line.size();
}

std::string withoutQuotes(std::string_view value) {
    std::string plain(value);
    std::erase(plain, '"');
    return plain;
}

} // namespace

ContentLines::ContentLines(std::string_view bytes) : rest(bytes) {
    if (rest.starts_with(byteOrderMark))
        rest.remove_prefix(byteOrderMark.size());
    if (rest.find('\n') == std::string_view::npos)
        lineEnd = '\r';
}

std::optional<std::string_view> ContentLines::next() {
    isCut = false;
    while (!rest.empty()) {
        const auto first = nextPhysicalLine();
        if (!continues() && first.size() <= maxLength) {
            if (first.empty())
                continue;
            return first;
        }
        unfolded.clear();
        append(first);
        while (continues())
            append(nextPhysicalLine().substr(1));
        if (!unfolded.empty())
            return unfolded;
    }
    return std::nullopt;
}

/// Removes the bytes up to and including the next line end from the rest; returns them without it.
std::string_view ContentLines::nextPhysicalLine() {
    const auto end = std::min(rest.find(lineEnd), rest.size());
    auto line = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return line;
}

bool ContentLines::continues() const {
    return rest.starts_with(' ') || rest.starts_with('\t');
}

void ContentLines::append(std::string_view part) {
    const auto room = maxLength - unfolded.size();
    isCut = isCut || part.size() > room;
    unfolded += part.substr(0, room);
}

const std::string* ContentLine::parameter(std::string_view parameterName) const {
    const auto found =
        std::find_if(parameters.begin(), parameters.end(),
                     [&](const auto& parameter) { return parameter.first == parameterName; });
    return found == parameters.end() ? nullptr : &found->second;
}

std::string_view nameOfLine(std::string_view line) {
    return line.substr(0, line.find_first_of(";:"));
}

std::optional<ContentLine> parseContentLine(std::string_view bytes) {
    const auto line = validUtf8(bytes);
    const std::string_view text = line;
    ContentLine parsed;
    parsed.name = upperCased(nameOfLine(text));
    auto at = parsed.name.size();
    while (at < text.size() && text[at] == ';') {
        const auto end = endOfParameter(text, at + 1);
        const auto parameter = text.substr(at + 1, end - at - 1);
        const auto equals = std::min(parameter.find('='), parameter.size());
        const auto value = parameter.substr(std::min(equals + 1, parameter.size()));
        parsed.parameters.emplace_back(upperCased(parameter.substr(0, equals)),
                                       withoutCarets(withoutQuotes(value)));
        at = end;
    }
    if (at >= text.size())
        return std::nullopt;
    parsed.value = text.substr(at + 1);
    return parsed;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return upper(x) == upper(y); });
}

bool isOneOf(std::string_view text, std::span<const std::string_view> names) {
    return std::any_of(names.begin(), names.end(),
                       [&](std::string_view name) { return equalsIgnoringCase(text, name); });
}

std::string upperCased(std::string_view text) {
    std::string capitals(text);
    std::transform(capitals.begin(), capitals.end(), capitals.begin(), upper);
    return capitals;
}

std::string unescapedText(std::string_view value) {
    std::string plain;
    plain.reserve(value.size());
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] == '\\' && i + 1 < value.size()) {
            ++i;
            plain += value[i] == 'n' || value[i] == 'N' ? '\n' : value[i];
        } else {
            plain += value[i];
        }
    }
    return plain;
}

std::vector<std::string_view> splitList(std::string_view values) {
    std::vector<std::string_view> parts;
    while (!values.empty()) {
        const auto end = std::min(values.find(','), values.size());
        if (end > 0)
            parts.push_back(values.substr(0, end));
        values.remove_prefix(std::min(end + 1, values.size()));
    }
    return parts;
}

std::optional<WallTime> parseWallTime(std::string_view value) {
    WallTime parsed;
    if (value.ends_with('Z') || value.ends_with('z')) {
        parsed.isUtc = true;
        value.remove_suffix(1);
    }
    parsed.isDate = value.size() == 8 && !parsed.isUtc;
    const bool hasTime = value.size() == 15 && upper(value[8]) == 'T';
    if (!parsed.isDate && !hasTime)
        return std::nullopt;

    const auto year = number(value.substr(0, 4));
    const auto month = number(value.substr(4, 2));
    const auto day = number(value.substr(6, 2));
    const auto hour = hasTime ? number(value.substr(9, 2)) : 0;
    const auto minute = hasTime ? number(value.substr(11, 2)) : 0;
    const auto second = hasTime ? number(value.substr(13, 2)) : 0;
    if (!year || !month || !day || !hour || !minute || !second)
        return std::nullopt;
    const std::chrono::year_month_day date{std::chrono::year(*year),
                                           std::chrono::month(static_cast<unsigned>(*month)),
                                           std::chrono::day(static_cast<unsigned>(*day))};
    if (!date.ok() || *hour > 23 || *minute > 59 || *second > 60)
        return std::nullopt;
    parsed.seconds = std::chrono::sys_days(date).time_since_epoch().count() * secondsOfDay +
                     std::int64_t{*hour} * 3600 + std::int64_t{*minute} * 60 +
                     std::min(*second, 59);
    return parsed;
}

std::optional<NominalDuration> parseDuration(std::string_view value) {
    constexpr std::int64_t most = 36'525 * secondsOfDay;
    const bool isNegative = value.starts_with('-');
    if (isNegative || value.starts_with('+'))
        value.remove_prefix(1);
    if (value.size() < 3 || upper(value.front()) != 'P')
        return std::nullopt;
    value.remove_prefix(1);

    NominalDuration parsed;
    while (!value.empty()) {
        if (upper(value.front()) == 'T') {
            value.remove_prefix(1);
            continue;
        }
        const auto digits = std::min(value.find_first_not_of("0123456789"), value.size());
        if (digits == 0 || digits == value.size())
            return std::nullopt;
        const std::int64_t count = number(value.substr(0, digits)).value_or(INT32_MAX);
        switch (upper(value[digits])) {
        case 'W':
            parsed.days += 7 * count;
            break;
        case 'D':
            parsed.days += count;
            break;
        case 'H':
            parsed.seconds += 3600 * count;
            break;
        case 'M':
            parsed.seconds += 60 * count;
            break;
        case 'S':
            parsed.seconds += count;
            break;
        default:
            return std::nullopt;
        }
        parsed.days = std::min(parsed.days, most / secondsOfDay);
        parsed.seconds = std::min(parsed.seconds, most);
        value.remove_prefix(digits + 1);
    }
    return isNegative ? NominalDuration{} : parsed;
}

std::optional<std::int64_t> parseUtcOffset(std::string_view value) {
    const bool isWest = value.starts_with('-');
    if ((!isWest && !value.starts_with('+')) || (value.size() != 5 && value.size() != 7))
        return std::nullopt;
    const auto hours = number(value.substr(1, 2));
    const auto minutes = number(value.substr(3, 2));
    const auto seconds = value.size() == 7 ? number(value.substr(5, 2)) : 0;
    if (!hours || !minutes || !seconds || *hours > 23 || *minutes > 59 || *seconds > 59)
        return std::nullopt;
    const std::int64_t offset = *hours * 3600 + *minutes * 60 + *seconds;
    return isWest ? -offset : offset;
}

} // namespace quorva
