#include "catalogue/PatternAutomaton.h"

#include <deque>
#include <utility>

namespace quorva {
namespace {

/// A state stands for the longest end of what was read that some pattern begins with.
using State = std::size_t;
constexpr State start = 0; // stands for none

/// The states while they are made: paths that spell the patterns, with a column for each byte.
struct States {
    explicit States(std::size_t width_) : width(width_) { add(); }

    State& nextOf(State state, std::size_t column) { return next[state * width + column]; }
    State add();
    State addPath(std::string_view pattern, const std::array<std::uint16_t, 256>& columnOf);
    void completeTransitions();

    std::size_t width;
    std::vector<State> next; ///< by state and column
    std::vector<std::vector<std::size_t>> endings;
};

State States::add() {
    next.resize(next.size() + width, start);
    endings.emplace_back();
    return endings.size() - 1;
}

/// The state at the end of a path from the start that spells the pattern.
State States::addPath(std::string_view pattern, const std::array<std::uint16_t, 256>& columnOf) {
    State state = start;
    for (const char c : pattern) {
        const auto column = columnOf[static_cast<unsigned char>(c)];
        if (nextOf(state, column) == start) {
            const State added = add(); // moves the others
            nextOf(state, column) = added;
        }
        state = nextOf(state, column);
    }
    return state;
}

/// Where no path leads on, the longest shorter end of what was read decides. Its state is nearer to
/// the start: going outwards, it is complete already.
void States::completeTransitions() {
    std::vector<State> shorterEnd(endings.size(), start);
    std::deque<State> pending{start};
    for (; !pending.empty(); pending.pop_front()) {
        const State state = pending.front();
        const State shorter = shorterEnd[state];
        if (state != start)
            endings[state].insert(endings[state].end(), endings[shorter].begin(),
                                  endings[shorter].end());
        for (std::size_t column = 1; column < width; ++column) {
            State& onward = nextOf(state, column);
            const State fallback = state == start ? start : nextOf(shorter, column);
            if (onward == start) {
                onward = fallback;
            } else {
                shorterEnd[onward] = fallback;
                pending.push_back(onward);
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

    States states(width);
    for (std::size_t index = 0; index < patterns.size(); ++index) {
        const State end = states.addPath(patterns[index], columnOf);
        states.endings[end].push_back(index);
    }
    states.completeTransitions();

    endings = std::move(states.endings);
    for (const State state : states.next)
        transitions.push_back({static_cast<std::uint32_t>(state * width) & 0x7FFF'FFFFU,
                               endings[state].empty() ? 0U : 1U});
}

} // namespace quorva
