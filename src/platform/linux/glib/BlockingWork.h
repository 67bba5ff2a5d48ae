// One-off blocking calls, moved off the main thread to GLib's thread pool. Unlike the tasks of a
// SerialQueue they run side by side, so that one that hangs holds up no other.
#pragma once

#include "platform/linux/glib/AsyncCall.h"
#include "platform/linux/glib/Handles.h"

#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace quorva {

/// Runs `work` on a worker thread and calls `done` with its result on the main loop, once, never
/// within this call. When `cancellable` is cancelled first, `done` is called with nothing at once
/// although `work` may still be running; its result is then dropped. `work` must own all that it
/// touches. Neither may throw. Main thread only.
template <typename Result>
void runBlocking(GCancellable* cancellable, std::function<Result(GCancellable*)> work,
                 std::function<void(std::optional<Result>)> done) {
    using Work = std::function<Result(GCancellable*)>;
    auto finish = [done = std::move(done)](GObject*, GAsyncResult* result) {
        const std::unique_ptr<Result> value(
            static_cast<Result*>(g_task_propagate_pointer(G_TASK(result), nullptr)));
        done(value ? std::optional<Result>(std::move(*value)) : std::nullopt);
    };
    const auto run = +[](GTask* task, gpointer, gpointer data, GCancellable* cancellation) {
        g_task_return_pointer(task, new Result((*static_cast<Work*>(data))(cancellation)),
                              [](gpointer value) { delete static_cast<Result*>(value); });
    };

    const GObjectPtr<GTask> task(
        g_task_new(nullptr, cancellable, asyncCallback, asyncData(std::move(finish))));
    g_task_set_task_data(task.get(), new Work(std::move(work)),
                         [](gpointer data) { delete static_cast<Work*>(data); });
    g_task_set_return_on_cancel(task.get(), TRUE);
    g_task_run_in_thread(task.get(), run);
}

} // namespace quorva
