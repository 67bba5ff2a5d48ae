// Tasks for the thread that runs a GLib main context. Unlike MainLoop, a context may be used by
// workers that outlive the program's objects: it lives as long as anybody holds a reference.
#pragma once

#include "base/Subscription.h"
#include "platform/linux/glib/Handles.h"

#include <glib.h>

#include <utility>

namespace quorva {

/// Runs `task` once in `context` (null: the default one), never within this call. Callable from any
/// thread.
inline void postTo(GMainContext* context, int priority, Task task) {
    auto* const source = g_idle_source_new();
    g_source_set_priority(source, priority);
    g_source_set_callback(
        source,
        [](gpointer posted) -> gboolean {
            (*static_cast<Task*>(posted))();
            return G_SOURCE_REMOVE;
        },
        new Task(std::move(task)), [](gpointer posted) { delete static_cast<Task*>(posted); });
    g_source_attach(source, context);
    g_source_unref(source);
}

/// Runs `task` once in the thread-default main context, when `milliseconds` have passed, unless the
/// source is dropped before.
[[nodiscard]] inline GSourcePtr contextTimer(guint milliseconds, Task task) {
    GSourcePtr source(g_timeout_source_new(milliseconds));
    g_source_set_callback(
        source.get(),
        [](gpointer timed) -> gboolean {
            (*static_cast<Task*>(timed))();
            return G_SOURCE_REMOVE;
        },
        new Task(std::move(task)), [](gpointer timed) { delete static_cast<Task*>(timed); });
    g_source_attach(source.get(), g_main_context_get_thread_default());
    return source;
}

/// As MainLoop::post, without a MainLoop.
inline void postToMain(Task task) {
    postTo(nullptr, G_PRIORITY_DEFAULT, std::move(task));
}

} // namespace quorva
