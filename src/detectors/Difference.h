// What one list of detections has and another one lacks. Pure functions.
#pragma once

#include <functional>
#include <string>
#include <unordered_set>
#include <vector>

namespace quorva {

/// Calls `call` with each element of `list` whose key no element of `others` has, in their order.
/// With the next list and the previous one, these have appeared; the other way around, they have
/// disappeared. `call` may not change either list; an empty one is not called.
template <typename Detection, typename KeyOf>
void forEachMissing(const std::vector<Detection>& list, const std::vector<Detection>& others,
                    KeyOf keyOf, const std::function<void(const Detection&)>& call) {
    std::unordered_set<std::string> keys;
    for (const auto& other : others)
        keys.insert(std::invoke(keyOf, other));
    for (const auto& each : list)
        if (call && !keys.contains(std::invoke(keyOf, each)))
            call(each);
}

} // namespace quorva
