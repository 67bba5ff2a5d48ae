// Text that may go to a terminal or into a log. Every other text counts as somebody else's: a name,
// a path or an error message can hold line breaks, escape sequences and direction marks. Logs and
// output take `Printable` only, so a text that was not made printable does not compile.
#pragma once

#include "base/Text.h"

#include <fmt/format.h>

#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace quorva {

/// Literals of the program, numbers, and texts of others that `printable` has made safe. Any
/// thread.
class Printable {
public:
    /// The most bytes of one text that `format` takes over; a longer one ends with an ellipsis.
    static constexpr std::size_t mostBytes = 1'000;

    Printable() = default;

    /// A literal; also implicitly.
    template <std::size_t size>
    Printable(const char (&literal)[size]) : text(literal) {} // NOLINT(*-explicit-*)
    /// A buffer is no literal.
    template <std::size_t size>
    Printable(char (&buffer)[size]) = delete;

    /// Fills the places of a literal, as fmt does. Texts are made printable and cut at `mostBytes`.
    template <typename... Arguments>
    [[nodiscard]] static Printable
    format(fmt::format_string<
               std::conditional_t<std::is_arithmetic_v<Arguments>, Arguments, std::string>...>
               pattern,
           const Arguments&... arguments) {
        return Printable(
            fmt::vformat(fmt::string_view(pattern), fmt::make_format_args(safe(arguments)...)));
    }

    Printable& operator+=(const Printable& other) {
        text += other.text;
        return *this;
    }
    [[nodiscard]] friend Printable operator+(Printable left, const Printable& right) {
        return std::move(left += right);
    }

    [[nodiscard]] const std::string& str() const { return text; }
    auto operator<=>(const Printable&) const = default;

private:
    friend Printable printable(std::string_view text);
    friend Printable printableJson(std::string_view json);

    explicit Printable(std::string text_) : text(std::move(text_)) {}

    template <typename Number>
    requires std::is_arithmetic_v<Number>
    static const Number& safe(const Number& number) { return number; }
    template <std::same_as<Printable> Text>
    static const std::string& safe(const Text& printable) {
        return printable.text;
    }
    static std::string safe(std::string_view foreign);

    std::string text;
};

/// The text of others with control characters, line breaks and invisible format and direction marks
/// escaped ("\n", "\u001b"), and with U+FFFD for what is not UTF-8.
[[nodiscard]] Printable printable(std::string_view text);

/// JSON with the same characters escaped as JSON escapes them, so that its meaning stays the same.
/// `json` holds no line breaks.
[[nodiscard]] Printable printableJson(std::string_view json);

/// Writes the text as it is to standard output or standard error.
inline void print(std::FILE* stream, const Printable& text) {
    std::fwrite(text.str().data(), 1, text.str().size(), stream);
}

} // namespace quorva
