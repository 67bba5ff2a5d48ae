// The text of iCalendar files (RFC 5545, section 3): content lines, their parameters, and the value
// types that calendars need. Reads what servers really write; never fails on any bytes. Pure
// functions, callable from any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quorva {

/// A wall clock's reading as seconds since 1970-01-01T00:00:00 on that same clock.
using WallSeconds = std::int64_t;

inline constexpr WallSeconds secondsOfDay = 86'400;

/// Hands out the content lines of a file, unfolded, without their line ends. Lines may end in CRLF,
/// in LF or, where a file has no LF at all, in CR. A byte order mark is skipped. `bytes` must
/// outlive this.
class ContentLines {
public:
    /// What goes beyond this is cut off the line.
    static constexpr std::size_t maxLength = 1'048'576;

    explicit ContentLines(std::string_view bytes);

    /// The next line that is not empty, valid until the next call; nothing at the end.
    [[nodiscard]] std::optional<std::string_view> next();

    /// Whether the line handed out last was cut.
    [[nodiscard]] bool wasCut() const { return isCut; }

private:
    [[nodiscard]] std::string_view nextPhysicalLine();
    [[nodiscard]] bool continues() const;
    void append(std::string_view part);

    std::string_view rest;
    char lineEnd = '\n';
    std::string unfolded;
    bool isCut = false;
};

/// A content line in parts.
struct ContentLine {
    std::string name;                                            ///< in capitals
    std::vector<std::pair<std::string, std::string>> parameters; ///< names in capitals
    std::string value;                                           ///< as written, valid UTF-8

    /// The first parameter of this name; null when there is none.
    [[nodiscard]] const std::string* parameter(std::string_view parameterName) const;
};

/// The name of a content line, as written: what stands before its first ";" or ":".
[[nodiscard]] std::string_view nameOfLine(std::string_view line);

/// Takes a line apart. Parameter values come without quotes and with RFC 6868 escapes resolved;
/// bytes that are no UTF-8 are replaced by U+FFFD. Nothing for a line without a ":".
[[nodiscard]] std::optional<ContentLine> parseContentLine(std::string_view bytes);

/// Whether two texts are equal but for the case of ASCII letters.
[[nodiscard]] bool equalsIgnoringCase(std::string_view a, std::string_view b);

/// Whether `text` is one of `names`, but for the case of ASCII letters.
[[nodiscard]] bool isOneOf(std::string_view text, std::span<const std::string_view> names);

/// The text in capitals, as far as it is ASCII.
[[nodiscard]] std::string upperCased(std::string_view text);

/// A TEXT value without its backslashes.
[[nodiscard]] std::string unescapedText(std::string_view value);

/// The parts of a comma-separated list of values that are not texts.
[[nodiscard]] std::vector<std::string_view> splitList(std::string_view values);

/// A DATE or DATE-TIME value: what the clock shows, and which kind it is.
struct WallTime {
    WallSeconds seconds = 0;
    bool isDate = false;
    bool isUtc = false;
};

/// "20260302", "20260302T150000" or "20260302T150000Z", years 0 to 9999; nothing for a day or time
/// that does not exist. A leap second counts as the second before it.
[[nodiscard]] std::optional<WallTime> parseWallTime(std::string_view value);

/// A length of time: whole days as the calendar counts them, and exact seconds.
struct NominalDuration {
    std::int64_t days = 0;
    std::int64_t seconds = 0;
};

/// "P1W", "P1DT12H", "PT30M", …; a negative one is read as none. At most 100 years.
[[nodiscard]] std::optional<NominalDuration> parseDuration(std::string_view value);

/// "+0100", "-053000": seconds east of UTC, less than a day.
[[nodiscard]] std::optional<std::int64_t> parseUtcOffset(std::string_view value);

} // namespace quorva
