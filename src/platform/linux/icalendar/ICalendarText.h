// The syntax of iCalendar files (RFC 5545, section 3): content lines, their parameters, and the
// value types that calendars use. Lenient, because servers deviate from the standard. Accepts any
// bytes. Pure functions, callable from any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quorva {

/// A wall clock's reading, in seconds since the same clock showed 1970-01-01T00:00:00.
using WallSeconds = std::int64_t;

inline constexpr WallSeconds secondsOfDay = 86'400;

/// Iterates over the content lines of a file, unfolded and without their line ends. Lines may end
/// in CRLF, in LF, or in CR if the file contains no LF. A byte order mark is skipped. `bytes` must
/// outlive this.
class ContentLines {
public:
    /// Longer lines are cut.
    static constexpr std::size_t maxLength = 1'048'576;

    explicit ContentLines(std::string_view bytes);

    /// The next non-empty line, valid until the next call; nothing at the end.
    [[nodiscard]] std::optional<std::string_view> next();

    /// Whether the last line was cut.
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

/// A parsed content line.
struct ContentLine {
    std::string name;                                            ///< in capitals
    std::vector<std::pair<std::string, std::string>> parameters; ///< names in capitals
    std::string value;                                           ///< as written, valid UTF-8

    /// The first parameter of this name, in capitals; null without one.
    [[nodiscard]] const std::string* parameter(std::string_view parameterName) const;
};

/// The name of a content line as written: the text before the first ";" or ":".
[[nodiscard]] std::string_view nameOfLine(std::string_view line);

/// Parses a line. Parameter values are without quotes and with RFC 6868 escapes resolved; bytes
/// that are not valid UTF-8 become U+FFFD. Nothing for a line without a ":".
[[nodiscard]] std::optional<ContentLine> parseContentLine(std::string_view bytes);

/// Whether two texts are equal, ignoring the case of ASCII letters.
[[nodiscard]] bool equalsIgnoringCase(std::string_view a, std::string_view b);

/// Whether `text` is one of `names`, ignoring the case of ASCII letters.
[[nodiscard]] bool isOneOf(std::string_view text, std::span<const std::string_view> names);

/// The text with its ASCII letters in capitals.
[[nodiscard]] std::string upperCased(std::string_view text);

/// A TEXT value with its backslash escapes resolved.
[[nodiscard]] std::string unescapedText(std::string_view value);

/// The parts of a comma-separated list of values other than TEXT.
[[nodiscard]] std::vector<std::string_view> splitList(std::string_view values);

/// A DATE or DATE-TIME value.
struct WallTime {
    WallSeconds seconds = 0;
    bool isDate = false;
    bool isUtc = false;
};

/// Parses "20260302", "20260302T150000" or "20260302T150000Z", years 0 to 9999. Nothing for a day
/// or time that does not exist. A leap second counts as the second before it.
[[nodiscard]] std::optional<WallTime> parseWallTime(std::string_view value);

/// A length of time: calendar days, which a clock change makes longer or shorter, and exact
/// seconds.
struct NominalDuration {
    std::int64_t days = 0;
    std::int64_t seconds = 0;
};

/// Parses "P1W", "P1DT12H", "PT30M", …. A negative duration counts as zero, a longer one as 100
/// years.
[[nodiscard]] std::optional<NominalDuration> parseDuration(std::string_view value);

/// Parses "+0100" or "-053000" as seconds east of UTC, less than a day.
[[nodiscard]] std::optional<std::int64_t> parseUtcOffset(std::string_view value);

} // namespace quorva
