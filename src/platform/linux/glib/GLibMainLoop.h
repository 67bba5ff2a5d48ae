// The main loop of the desktop's own libraries: GLib's default main context.
#pragma once

#include "base/MainLoop.h"
#include "platform/linux/glib/Handles.h"

namespace quorva {

/// To be made on the main thread, which then runs it. Delays are kept to the millisecond.
class GLibMainLoop final : public MainLoop {
public:
    GLibMainLoop();

    [[nodiscard]] Time now() const override;
    void post(Task task) override;
    [[nodiscard]] Timer after(Seconds delay, Task task) override;
    [[nodiscard]] Timer every(Seconds period, Task task) override;

    /// Runs tasks, timers and whatever else the context holds until `quit`. Main thread only.
    void run();

    /// Lets `run` return. Callable from any thread.
    void quit();

    /// Calls `callback` on the main loop each time the process is sent `signal` (SIGHUP, SIGINT,
    /// SIGTERM, SIGUSR1, SIGUSR2 or SIGWINCH), which then no longer ends it. Main thread only.
    [[nodiscard]] static Subscription onSignal(int signal, Task callback);

    /// Calls `callback` once, on the main loop, when `fd` can be read. Takes the descriptor over.
    /// Main thread only.
    [[nodiscard]] static Subscription onReadable(FileDescriptor fd, Task callback);

private:
    GMainLoopPtr loop;
};

} // namespace quorva
