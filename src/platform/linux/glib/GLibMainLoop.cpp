#include "platform/linux/glib/GLibMainLoop.h"

#include "platform/linux/glib/MainContext.h"

#include <glib-unix.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace quorva {
namespace {

void freeTask(gpointer task) {
    delete static_cast<Task*>(task);
}

gboolean runAgain(gpointer task) {
    const Task present = *static_cast<Task*>(task); // may drop its own timer
    present();
    return G_SOURCE_CONTINUE;
}

gboolean runOnceForFd(gint, GIOCondition, gpointer task) {
    (*static_cast<Task*>(task))();
    return G_SOURCE_REMOVE;
}

/// Adds `source` to the main context. `callback` gets `task` as its data.
GSourcePtr attach(GSource* source, GSourceFunc callback, Task task) {
    g_source_set_priority(source, G_PRIORITY_DEFAULT);
    g_source_set_callback(source, callback, new Task(std::move(task)), freeTask);
    g_source_attach(source, nullptr);
    return GSourcePtr(source);
}

Subscription owning(GSourcePtr source) {
    return Subscription(
        [held = std::shared_ptr<GSource>(std::move(source))]() mutable { held.reset(); });
}

guint milliseconds(Seconds seconds) {
    return static_cast<guint>(std::clamp(std::ceil(seconds.count() * 1000), 0.0, 4e9));
}

} // namespace

GLibMainLoop::GLibMainLoop() : loop(g_main_loop_new(nullptr, FALSE)) {}

Time GLibMainLoop::now() const {
    return std::chrono::system_clock::now();
}

void GLibMainLoop::post(Task task) {
    postToMain(std::move(task));
}

Timer GLibMainLoop::after(Seconds delay, Task task) {
    return owning(contextTimer(milliseconds(delay), std::move(task)));
}

Timer GLibMainLoop::every(Seconds period, Task task) {
    return owning(attach(g_timeout_source_new(std::max(1U, milliseconds(period))), runAgain,
                         std::move(task)));
}

void GLibMainLoop::run() {
    g_main_loop_run(loop.get());
}

void GLibMainLoop::quit() {
    g_main_loop_quit(loop.get());
}

Subscription GLibMainLoop::onSignal(int signal, Task callback) {
    return owning(attach(g_unix_signal_source_new(signal), runAgain, std::move(callback)));
}

Subscription GLibMainLoop::onReadable(FileDescriptor fd, Task callback) {
    auto* const source = g_unix_fd_source_new(fd.get(), G_IO_IN);
    auto held = std::make_shared<FileDescriptor>(std::move(fd));
    return owning(attach(source,
                         reinterpret_cast<GSourceFunc>(reinterpret_cast<void*>(runOnceForFd)),
                         [held, callback = std::move(callback)] { callback(); }));
}

} // namespace quorva
