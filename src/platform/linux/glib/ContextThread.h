// A worker thread that runs a GLib main context of its own, for libraries that block or that are
// busy for long.
#pragma once

#include "base/SerialQueue.h"
#include "platform/linux/glib/MainContext.h"

#include <memory>
#include <optional>
#include <utility>

namespace quorva {

/// The context is the thread's default one. What is created on the thread must be destroyed there:
/// the owner does that with the last task it posts.
class ContextThread {
public:
    /// The shutdown timeout is SerialQueue's: with one, a task may outlive this object, and must
    /// own all that it touches.
    explicit ContextThread(std::optional<Seconds> shutdownTimeout = {})
        : queue(1, shutdownTimeout) {
        (void)queue.post([context = context, loop = loop] {
            g_main_context_push_thread_default(context.get());
            g_main_loop_run(loop.get());
            while (g_main_context_iteration(context.get(), FALSE) != FALSE) {
            }
            g_main_context_pop_thread_default(context.get());
        });
    }

    /// Runs the tasks posted before, and ends the loop and the thread. Does not wait for them
    /// longer than the shutdown timeout; the thread then ends by itself.
    ~ContextThread() {
        post(
            [held = loop.get()] { g_main_loop_quit(held); }); // runs within that loop or not at all
    }

    ContextThread(const ContextThread&) = delete;
    ContextThread& operator=(const ContextThread&) = delete;

    /// Runs `task` on the thread, after those posted before. Never waits for one. Callable from any
    /// thread.
    void post(Task task) { postTo(context.get(), G_PRIORITY_DEFAULT, std::move(task)); }

private:
    const std::shared_ptr<GMainContext> context{g_main_context_new(), g_main_context_unref};
    const std::shared_ptr<GMainLoop> loop{g_main_loop_new(context.get(), FALSE), g_main_loop_unref};
    SerialQueue queue; // last: ends first
};

} // namespace quorva
