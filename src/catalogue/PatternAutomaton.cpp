#include "catalogue/PatternAutomaton.h"

#include <deque>
#include <utility>

namespace quorva {
namespace {

using State = std::size_t;
constexpr State root = 0; // in the trie: also "no child"

/// The trie of the patterns, and the automaton it becomes.
struct Trie {
    explicit Trie(std::size_t width_) : width(width_) { addState(); }

    State& next(State state, std::size_t column) { return table[state * width + column]; }
    State addState();
    State insert(std::string_view pattern, const std::array<std::uint16_t, 256>& columnOf);
    void completeTransitions();

    std::size_t width;
    std::vector<State> table; ///< by state and column
    std::vector<std::vector<std::size_t>> outputs;
};

State Trie::addState() {
    table.resize(table.size() + width, root);
    outputs.emplace_back();
    return outputs.size() - 1;
}

/// Returns the state that spells the pattern.
State Trie::insert(std::string_view pattern, const std::array<std::uint16_t, 256>& columnOf) {
    State state = root;
    for (const char c : pattern) {
        const auto column = columnOf[static_cast<unsigned char>(c)];
        if (next(state, column) == root) {
            const State added = addState(); // may reallocate the table
            next(state, column) = added;
        }
        state = next(state, column);
    }
    return state;
}

/// Computes the failure links breadth first, and replaces each missing child by the transition of
/// the state's failure link. That state is less deep, so its transitions and outputs are complete.
void Trie::completeTransitions() {
    std::vector<State> failure(outputs.size(), root);
    std::deque<State> pending{root};
    for (; !pending.empty(); pending.pop_front()) {
        const State state = pending.front();
        const State link = failure[state];
        if (state != root)
            outputs[state].insert(outputs[state].end(), outputs[link].begin(), outputs[link].end());
        for (std::size_t column = 1; column < width; ++column) {
            State& child = next(state, column);
            const State fallback = state == root ? root : next(link, column);
            if (child == root) {
                child = fallback;
            } else {
                failure[child] = fallback;
                pending.push_back(child);
            }
        }
    }
}

} // namespace

PatternAutomaton::PatternAutomaton(const std::vector<std::string_view>& patterns) {
    for (const auto pattern : patterns)
        for (const char c : pattern)
            if (auto& column = columnOf[static_cast<unsigned char>(c)]; column == 0)
                column = static_cast<std::uint16_t>(width++);

    Trie trie(width);
    for (std::size_t index = 0; index < patterns.size(); ++index) {
        const State end = trie.insert(patterns[index], columnOf);
        trie.outputs[end].push_back(index);
    }
    trie.completeTransitions();

    outputs = std::move(trie.outputs);
    for (const State state : trie.table)
        transitions.push_back({static_cast<std::uint32_t>(state * width) & 0x7FFF'FFFFU,
                               outputs[state].empty() ? 0U : 1U});
}

} // namespace quorva
