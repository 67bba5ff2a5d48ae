#include "core/AnnouncementQueue.h"

#include <utility>

namespace quorva {

AnnouncementQueue::AnnouncementQueue(MainLoop& loop_) : loop(loop_) {}

Task AnnouncementQueue::add(Task announcement) {
    constexpr Seconds longestWait{2.0};
    const auto entry = std::make_shared<Entry>();
    entry->announcement = std::move(announcement);
    Task safe = lifetime.guard([this, weak = std::weak_ptr(entry)] {
        if (const auto alive = weak.lock())
            alive->isSafe = true;
        release();
    });
    entry->deadline = loop.after(longestWait, safe);
    waiting.push_back(entry);
    return safe;
}

void AnnouncementQueue::release() {
    while (!waiting.empty() && waiting.front()->isSafe) {
        const auto entry = std::move(waiting.front());
        waiting.pop_front();
        entry->announcement();
    }
}

} // namespace quorva
