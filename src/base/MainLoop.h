// The main loop: the clock, timers and posted tasks. Code above platform/linux uses no other clock
// and no other timer, so that a test can pass hours in milliseconds.
#pragma once

#include "base/Subscription.h"
#include "base/Time.h"

namespace quorva {

/// A pending timer; dropping it cancels it.
using Timer = Subscription;

class MainLoop {
public:
    virtual ~MainLoop() = default;

    /// The wall clock. Callable from any thread.
    [[nodiscard]] virtual Time now() const = 0;

    /// Runs `task` later on the main thread, after the tasks posted before it; never within this
    /// call. Callable from any thread. A task posted after the loop has ended is dropped.
    virtual void post(Task task) = 0;

    /// Runs `task` once on the main thread, after at least `delay` (>= 0). Main thread only.
    [[nodiscard]] virtual Timer after(Seconds delay, Task task) = 0;

    /// Runs `task` on the main thread each time `period` (> 0) has passed; missed runs are skipped.
    /// Main thread only.
    [[nodiscard]] virtual Timer every(Seconds period, Task task) = 0;
};

} // namespace quorva
