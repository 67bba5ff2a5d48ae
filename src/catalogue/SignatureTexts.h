// Helpers of the catalogues: entries of a table row, and a filter that avoids most substring
// searches. Pure functions, callable from any thread.
#pragma once

#include "base/Text.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quorva {

/// The set of bytes in a text, folded into 64 bits. A text can contain an entry only if its set
/// includes the entry's set, which is one comparison.
[[nodiscard]] inline std::uint64_t lettersOf(std::string_view text) {
    std::uint64_t letters = 0;
    for (const char c : text)
        letters |= std::uint64_t{1} << (static_cast<unsigned char>(c) % 64);
    return letters;
}

/// Whether a text with the set `letters` may contain an entry with the set `needed`.
[[nodiscard]] constexpr bool mayHold(std::uint64_t letters, std::uint64_t needed) {
    return (needed & ~letters) == 0;
}

[[nodiscard]] inline std::vector<std::string> lowerCasedEach(std::vector<std::string> texts) {
    for (auto& text : texts)
        text = lowerCased(text);
    return texts;
}

/// The texts of a table cell, without the empty ones that pad it.
template <std::size_t N>
[[nodiscard]] std::vector<std::string> entriesOf(const std::array<std::string_view, N>& texts) {
    std::vector<std::string> entries;
    for (const auto text : texts)
        if (!text.empty())
            entries.emplace_back(text);
    return entries;
}

} // namespace quorva
