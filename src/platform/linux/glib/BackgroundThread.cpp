#include "platform/linux/glib/BackgroundThread.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>

namespace quorva {

struct BackgroundThread::State {
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Task> waiting;
    bool isEnding = false;
    bool hasEnded = false;
};

BackgroundThread::BackgroundThread()
    : state(std::make_shared<State>()), thread([held = state] { run(held); }) {}

BackgroundThread::~BackgroundThread() {
    constexpr std::chrono::seconds patience{2};
    std::deque<Task> dropped; // destroyed without the lock: a task may own anything
    std::unique_lock lock(state->mutex);
    dropped.swap(state->waiting);
    state->isEnding = true;
    state->changed.notify_all();
    const bool hasEnded =
        state->changed.wait_for(lock, patience, [this] { return state->hasEnded; });
    lock.unlock();
    if (hasEnded)
        thread.join();
    else
        thread.detach();
}

void BackgroundThread::post(Task task) {
    {
        const std::lock_guard lock(state->mutex);
        state->waiting.push_back(std::move(task));
    }
    state->changed.notify_all();
}

void BackgroundThread::run(const std::shared_ptr<State>& state) {
    std::unique_lock lock(state->mutex);
    while (true) {
        state->changed.wait(lock, [&] { return state->isEnding || !state->waiting.empty(); });
        if (state->isEnding)
            break;
        {
            const Task task = std::move(state->waiting.front());
            state->waiting.pop_front();
            lock.unlock();
            task();
        }
        lock.lock();
    }
    state->hasEnded = true;
    state->changed.notify_all();
}

} // namespace quorva
