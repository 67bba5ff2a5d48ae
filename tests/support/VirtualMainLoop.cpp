#include "support/VirtualMainLoop.h"

namespace quorva {

void VirtualMainLoop::post(Task task) {
    const std::lock_guard lock(mutex);
    posted.push_back(std::move(task));
}

Timer VirtualMainLoop::after(Seconds delay, Task task) {
    return add(delay, {std::move(task), Time::duration::zero()});
}

Timer VirtualMainLoop::every(Seconds period, Task task) {
    return add(period, {std::move(task), std::chrono::round<Time::duration>(period)});
}

void VirtualMainLoop::runPosted() {
    while (true) {
        Task task;
        {
            const std::lock_guard lock(mutex);
            if (posted.empty())
                return;
            task = std::move(posted.front());
            posted.pop_front();
        }
        task();
    }
}

void VirtualMainLoop::advance(Seconds duration) {
    const Time until = present + std::chrono::round<Time::duration>(duration);
    runPosted();
    while (!timers->empty() && timers->begin()->first.first <= until) {
        auto node = timers->extract(timers->begin());
        present = node.key().first;
        const auto entry = node.mapped();
        if (entry->period > Time::duration::zero()) {
            node.key() = {present + entry->period, ++count};
            timers->insert(std::move(node));
        }
        const Task task = entry->task; // may drop its own timer
        task();
        runPosted();
    }
    present = until;
}

void VirtualMainLoop::suspend(Seconds duration) {
    const auto asleep = std::chrono::round<Time::duration>(duration);
    present += asleep;
    Timers later;
    for (auto& [key, entry] : *timers)
        later.emplace(Key{key.first + asleep, key.second}, entry);
    *timers = std::move(later);
}

Timer VirtualMainLoop::add(Seconds delay, Entry entry) {
    auto shared = std::make_shared<Entry>(std::move(entry));
    timers->emplace(Key{present + std::chrono::round<Time::duration>(delay), ++count}, shared);
    return Timer([list = std::weak_ptr(timers), shared] {
        if (const auto alive = list.lock())
            std::erase_if(*alive, [&](const auto& timer) { return timer.second == shared; });
    });
}

} // namespace quorva
