#include "base/SerialQueue.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <vector>

namespace quorva {

struct SerialQueue::State {
    std::mutex mutex; // guards all but `isAbandoned`
    std::condition_variable changed;
    std::condition_variable idle;
    std::vector<Task> waiting;
    bool isRunningBatch = false;
    bool isEnding = false;
    bool hasEnded = false;
    std::atomic<bool> isAbandoned = false; ///< the tasks that have not begun are dropped
};

SerialQueue::SerialQueue(std::size_t capacity_, std::optional<Seconds> shutdownTimeout_)
    : capacity(capacity_),
      shutdownTimeout(shutdownTimeout_),
      state(std::make_shared<State>()),
      thread([held = state] { run(*held); }) {}

SerialQueue::~SerialQueue() {
    {
        std::unique_lock lock(state->mutex);
        state->isEnding = true;
        state->changed.notify_one();
        if (shutdownTimeout)
            state->isAbandoned =
                !state->idle.wait_for(lock, *shutdownTimeout, [this] { return state->hasEnded; });
    }
    if (state->isAbandoned)
        thread.detach();
    else
        thread.join();
}

bool SerialQueue::post(Task task) {
    bool wasEmpty = false;
    {
        const std::lock_guard lock(state->mutex);
        if (state->waiting.size() >= capacity)
            return false;
        wasEmpty = state->waiting.empty();
        state->waiting.push_back(std::move(task));
    }
    if (wasEmpty)
        state->changed.notify_one();
    return true;
}

void SerialQueue::drain() {
    std::unique_lock lock(state->mutex);
    state->idle.wait(lock, [this] { return state->waiting.empty() && !state->isRunningBatch; });
}

void SerialQueue::run(State& state) {
    std::vector<Task> batch;
    std::unique_lock lock(state.mutex);
    while (true) {
        state.changed.wait(lock, [&] { return !state.waiting.empty() || state.isEnding; });
        if (state.waiting.empty())
            break;
        batch.swap(state.waiting);
        state.isRunningBatch = true;
        lock.unlock();
        for (const auto& task : batch)
            if (!state.isAbandoned)
                task();
        batch.clear();
        lock.lock();
        state.isRunningBatch = false;
        if (state.waiting.empty())
            state.idle.notify_all();
    }
    state.hasEnded = true;
    state.idle.notify_all();
}

} // namespace quorva
