// Which elements a walk meets in a tree that is larger than its budget. Whoever writes a thousand
// messages into a meeting's chat must not keep a list of participants after it from being looked
// at. So such a tree is walked in laps: of every element's children, the first lap takes the first
// 200, the second lap the next 200, and so on. Lists, tables, trees, dialogs and live regions
// belong to the lap of their parent, wherever they stand, and logs to the next one. Within a lap,
// the order is that of the tree. A tree within its budget is walked as a whole. Plain values and
// pure functions, callable from any thread.
#pragma once

#include "platform/AccessibilityTree.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace quorva {

/// The lap of an element with this role and index among its parent's children. Begins at 0.
[[nodiscard]] constexpr int lapOf(int parentsLap, AccessibilityRole role, std::size_t index) {
    constexpr std::size_t childrenOfLap = 200;
    constexpr int lastLap = 10'000;
    switch (role) {
        using enum AccessibilityRole;
    case list:
    case liveRegion:
    case outline:
    case table:
    case webArea:
    case window:
        return parentsLap;
    case log:
        return std::min(parentsLap + 1, lastLap);
    default:
        return std::min(
            parentsLap + static_cast<int>(std::min(index, childrenOfLap * lastLap) / childrenOfLap),
            lastLap);
    }
}

/// Decides which elements a walk meets: count all elements of the tree, then ask about each once,
/// in the order of the tree. Children of an element that is not met are not met either.
class WalkBudget {
public:
    explicit WalkBudget(int maxElements) : left(maxElements) {}

    void count(int lap) {
        const auto at = static_cast<std::size_t>(lap);
        if (elements.size() <= at)
            elements.resize(at + 1);
        ++elements[at];
        ++total;
    }

    /// Whether there are at least as many elements as the walk meets.
    [[nodiscard]] bool isUsedUp() const { return total >= left; }

    /// Ends the counting.
    void settle() {
        lastLap = 0;
        for (const int count : elements) {
            if (count > left)
                break; // the first elements of this lap are met
            left -= count;
            ++lastLap;
        }
    }

    /// Whether the walk meets any element of a lap.
    [[nodiscard]] bool comesTo(int lap) const {
        return lap < lastLap || (lap == lastLap && left > 0);
    }

    /// Whether the walk meets the next element.
    [[nodiscard]] bool meets(int lap) { return lap < lastLap || (lap == lastLap && left-- > 0); }

private:
    std::vector<int> elements; ///< of each lap
    int total = 0;
    int lastLap = 0; ///< which is not walked to its end
    int left;        ///< first of all laps, then for the last one
};

} // namespace quorva
