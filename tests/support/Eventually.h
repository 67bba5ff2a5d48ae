// Waiting for another thread or process: for what it does, not for a time.
#pragma once

#include "support/VirtualMainLoop.h"

#include <chrono>
#include <thread>

namespace quorva {

/// Runs what is posted to `loop` until `condition` holds. False when that takes 20 seconds.
template <typename Condition>
[[nodiscard]] bool eventually(VirtualMainLoop& loop, Condition condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::microseconds(50));
        loop.runPosted();
    }
    return true;
}

} // namespace quorva
