// The one adapter between GIO's asynchronous functions and C++ callables.
#pragma once

#include "platform/linux/glib/Handles.h"

#include <functional>
#include <memory>
#include <utility>

namespace quorva {

/// Gets the object that the call was made on (null for functions without one) and the result for
/// the function's `_finish`; both live as long as the call.
using AsyncDone = std::function<void(GObject* source, GAsyncResult* result)>;

/// The last two arguments of an asynchronous GIO function are `asyncCallback, asyncData(done)`.
/// `done` is called once, as GIO has it: in the main context that was the thread's default when the
/// function was called, never within that call. It may not throw.
inline void asyncCallback(GObject* source, GAsyncResult* result, gpointer data) {
    const std::unique_ptr<AsyncDone> done(static_cast<AsyncDone*>(data));
    (*done)(source, result);
}

/// Pass the returned pointer to exactly one function, which must be given `asyncCallback` too: it
/// owns `done` until then.
[[nodiscard]] inline gpointer asyncData(AsyncDone done) {
    return new AsyncDone(std::move(done));
}

} // namespace quorva
