// The main loop of the desktop's own libraries: GLib's default main context.
#pragma once

#include "base/MainLoop.h"
#include "platform/linux/glib/Handles.h"

namespace quorva {

/// Create it on the main thread, which then runs it. Delays are rounded up to milliseconds.
class GLibMainLoop final : public MainLoop {
public:
    GLibMainLoop();

    [[nodiscard]] Time now() const override;
    void post(Task task) override;
    [[nodiscard]] Timer after(Seconds delay, Task task) override;
    [[nodiscard]] Timer every(Seconds period, Task task) override;

    /// Runs tasks, timers and whatever else the context holds until `quit`. Main thread only.
    void run();

    /// Makes `run` return. Callable from any thread.
    void quit();

    /// Calls `callback` on the main loop each time the process receives `signal` (SIGHUP, SIGINT,
    /// SIGTERM, SIGUSR1, SIGUSR2 or SIGWINCH). The signal no longer ends the process. Main thread
    /// only.
    [[nodiscard]] static Subscription onSignal(int signal, Task callback);

    /// Calls `callback` once, on the main loop, when `fd` can be read. The subscription owns the
    /// descriptor. Main thread only.
    [[nodiscard]] static Subscription onReadable(FileDescriptor fd, Task callback);

private:
    GMainLoopPtr loop;
};

} // namespace quorva
