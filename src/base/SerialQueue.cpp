#include "base/SerialQueue.h"

namespace quorva {

SerialQueue::SerialQueue(std::size_t capacity_) : capacity(capacity_), thread([this] { run(); }) {}

SerialQueue::~SerialQueue() {
    {
        const std::lock_guard lock(mutex);
        isEnding = true;
    }
    changed.notify_one();
    thread.join();
}

bool SerialQueue::post(Task task) {
    bool wasEmpty = false;
    {
        const std::lock_guard lock(mutex);
        if (waiting.size() >= capacity)
            return false;
        wasEmpty = waiting.empty();
        waiting.push_back(std::move(task));
    }
    if (wasEmpty)
        changed.notify_one();
    return true;
}

void SerialQueue::drain() {
    std::unique_lock lock(mutex);
    idle.wait(lock, [this] { return waiting.empty() && !isRunningBatch; });
}

void SerialQueue::run() {
    std::vector<Task> batch;
    std::unique_lock lock(mutex);
    while (true) {
        changed.wait(lock, [this] { return !waiting.empty() || isEnding; });
        if (waiting.empty())
            return;
        batch.swap(waiting);
        isRunningBatch = true;
        lock.unlock();
        for (const auto& task : batch)
            task();
        batch.clear();
        lock.lock();
        isRunningBatch = false;
        if (waiting.empty())
            idle.notify_all();
    }
}

} // namespace quorva
