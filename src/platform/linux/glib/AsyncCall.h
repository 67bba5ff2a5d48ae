// Functions of GIO's asynchronous kind that come back as a call.
#pragma once

#include "platform/linux/glib/Handles.h"

#include <functional>
#include <memory>
#include <utility>

namespace quorva {

using AsyncDone = std::function<void(GObject* source, GAsyncResult* result)>;

/// Pass this and, as its data, `asyncData(done)` to a function: `done` is called once.
inline void asyncCallback(GObject* source, GAsyncResult* result, gpointer owned) {
    const std::unique_ptr<AsyncDone> done(static_cast<AsyncDone*>(owned));
    (*done)(source, result);
}

[[nodiscard]] inline gpointer asyncData(AsyncDone done) {
    return new AsyncDone(std::move(done));
}

} // namespace quorva
