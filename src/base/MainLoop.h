// Everything that has to do with time and turn-taking. Whoever needs to know the time, to wait, or
// to do something later asks the main loop; no other clock and no other timer is used above
// platform/linux, so that a test can let hours pass in milliseconds.
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

    /// Runs `task` later, on the main thread, after the tasks posted before it. Never runs it at
    /// once. Callable from any thread; a task posted after the loop has ended is dropped.
    virtual void post(Task task) = 0;

    /// Runs `task` once, on the main thread, not before `delay` (>= 0) has passed. Main thread
    /// only.
    [[nodiscard]] virtual Timer after(Seconds delay, Task task) = 0;

    /// Runs `task` each time `period` (> 0) has passed, on the main thread; runs that were missed
    /// are not made up for. Main thread only.
    [[nodiscard]] virtual Timer every(Seconds period, Task task) = 0;
};

} // namespace quorva
