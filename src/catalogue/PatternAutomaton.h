// Finds all occurrences of a set of patterns in one pass over a text: an Aho-Corasick automaton
// over bytes, whose goto and failure functions are merged into one table (a deterministic
// automaton).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace quorva {

/// Immutable after construction; callable from any thread.
class PatternAutomaton {
public:
    /// Copies nothing of the patterns. None may be empty; duplicates are reported under each index.
    explicit PatternAutomaton(const std::vector<std::string_view>& patterns);

    /// Calls `found(index)` for each occurrence of a pattern in the bytes of `text`, in the order
    /// of their ends; of occurrences that end at the same byte, the longest comes first.
    template <typename Found>
    void search(std::string_view text, Found&& found) const {
        std::size_t row = 0;
        for (const char c : text) {
            const auto transition = transitions[row + columnOf[static_cast<unsigned char>(c)]];
            row = transition.row;
            if (transition.hasOutput)
                for (const auto pattern : outputs[row / width])
                    found(pattern);
        }
    }

private:
    /// To a state, which is identified by the index of its row in `transitions`.
    struct Transition {
        std::uint32_t row : 31;
        std::uint32_t hasOutput : 1; ///< spares the look into `outputs`
    };

    /// The column of each byte in `transitions`: bytes that no pattern contains share column 0.
    std::array<std::uint16_t, 256> columnOf{};
    std::size_t width = 1;                         ///< columns
    std::vector<Transition> transitions;           ///< a row for each state; the root's is first
    std::vector<std::vector<std::size_t>> outputs; ///< output set of each state
};

} // namespace quorva
