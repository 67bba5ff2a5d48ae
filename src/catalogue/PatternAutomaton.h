// Finds which of many patterns a text contains, in one pass over the text however many there are:
// the automaton of Aho and Corasick, over bytes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace quorva {

/// Never changes once it is made; callable from any thread.
class PatternAutomaton {
public:
    /// The patterns are not kept. None may be empty; the same one may occur more than once.
    explicit PatternAutomaton(const std::vector<std::string_view>& patterns);

    /// Calls `found` with the index of a pattern wherever that pattern occurs in the text, as
    /// bytes: by where the occurrences end, the longest first among those that end together.
    template <typename Found>
    void search(std::string_view text, Found&& found) const {
        std::size_t row = 0;
        for (const char c : text) {
            const auto transition = transitions[row + columnOf[static_cast<unsigned char>(c)]];
            row = transition.row;
            if (transition.endsPatterns)
                for (const auto pattern : endings[row / width])
                    found(pattern);
        }
    }

private:
    /// Into a state, which is told by where the row of its own transitions begins.
    struct Transition {
        std::uint32_t row : 31;
        std::uint32_t endsPatterns : 1;
    };

    /// A column of the transitions for each byte that occurs in a pattern; 0 is for all others.
    std::array<std::uint16_t, 256> columnOf{};
    std::size_t width = 1;               ///< columns
    std::vector<Transition> transitions; ///< a row for each state, the first one's is the start's
    std::vector<std::vector<std::size_t>> endings; ///< by state: the patterns that end there
};

} // namespace quorva
