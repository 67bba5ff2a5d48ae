// The one kind of worker thread: runs tasks one after the other, in the order in which they were
// posted.
#pragma once

#include "base/Subscription.h"
#include "base/Time.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <thread>

namespace quorva {

class SerialQueue {
public:
    /// The capacity of a queue whose tasks are never dropped.
    static constexpr std::size_t unlimited = static_cast<std::size_t>(-1);

    /// Holds at most `capacity` waiting tasks. With a `shutdownTimeout` (>= 0), the destructor
    /// waits no longer than that, and a task may then outlive the queue: it must own all that it
    /// touches.
    explicit SerialQueue(std::size_t capacity, std::optional<Seconds> shutdownTimeout = {});

    /// Runs the tasks that are still waiting and ends the thread. When the shutdown timeout expires
    /// first (a disk that hangs), drops the tasks that have not begun, and leaves the thread to end
    /// by itself after the running one.
    ~SerialQueue();

    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;

    /// Runs `task` on the queue's thread. False, and the task is dropped, when the queue is full.
    /// Never waits for a task. Callable from any thread.
    [[nodiscard]] bool post(Task task);

    /// Waits until the tasks posted before this call have run. Not from the queue's own thread.
    void drain();

private:
    struct State;
    static void run(State& state);

    const std::size_t capacity;
    const std::optional<Seconds> shutdownTimeout;
    const std::shared_ptr<State> state; ///< shared with the thread, which may outlive the queue
    std::thread thread;
};

} // namespace quorva
