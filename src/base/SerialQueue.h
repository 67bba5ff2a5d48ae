// A thread that runs tasks one after the other, in the order in which they were posted.
#pragma once

#include "base/Subscription.h"

#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace quorva {

class SerialQueue {
public:
    /// Holds at most `capacity` waiting tasks.
    explicit SerialQueue(std::size_t capacity);

    /// Runs what is still waiting, then ends the thread.
    ~SerialQueue();

    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;

    /// Runs `task` on the queue's thread. False, and the task is dropped, when the queue is full.
    /// Never waits for a task. Callable from any thread.
    [[nodiscard]] bool post(Task task);

    /// Waits until the tasks posted before this call have run. Not from the queue's own thread.
    void drain();

private:
    void run();

    const std::size_t capacity;
    std::mutex mutex;
    std::condition_variable changed;
    std::condition_variable idle;
    std::vector<Task> waiting;
    bool isRunningBatch = false;
    bool isEnding = false;
    std::thread thread; // last: it uses the members above
};

} // namespace quorva
