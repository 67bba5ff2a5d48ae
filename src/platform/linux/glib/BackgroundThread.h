// A thread of its own for work that may wait for a disk. Tasks run one after the other.
#pragma once

#include "base/Subscription.h"

#include <memory>
#include <thread>

namespace quorva {

class BackgroundThread {
public:
    BackgroundThread();

    /// Drops the tasks that wait and gives the running one two seconds to return. If it does not
    /// (a disk that hangs), the thread is left to itself: tasks must own all that they touch.
    ~BackgroundThread();

    BackgroundThread(const BackgroundThread&) = delete;
    BackgroundThread& operator=(const BackgroundThread&) = delete;

    /// Runs `task` after those posted before. Never waits for one.
    void post(Task task);

private:
    struct State;
    static void run(const std::shared_ptr<State>& state);

    std::shared_ptr<State> state;
    std::thread thread;
};

} // namespace quorva
