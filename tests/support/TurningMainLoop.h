// The real main loop for tests that wait for other programs.
#pragma once

#include "platform/linux/glib/GLibMainLoop.h"

#include <chrono>

namespace quorva {

class TurningMainLoop {
public:
    GLibMainLoop loop;

    /// Turns the main loop until `condition` holds; false when it does not come to that in time.
    template <typename Condition>
    [[nodiscard]] bool comesTo(Condition condition, Seconds within = Seconds(30)) {
        const auto start = std::chrono::steady_clock::now();
        const auto wake = loop.every(Seconds(0.01), [] {});
        while (!condition() && std::chrono::steady_clock::now() - start < within)
            g_main_context_iteration(nullptr, TRUE);
        return condition();
    }
};

} // namespace quorva
