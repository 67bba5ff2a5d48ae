#include "platform/linux/notifications/NotificationQueue.h"

#include <algorithm>
#include <utility>

namespace quorva {

NotificationQueue::NotificationQueue(Seconds newsworthy_) : newsworthy(newsworthy_) {}

bool NotificationQueue::push(Entry entry) {
    drop(entry.identifier);
    entries.push_back(std::move(entry));
    if (entries.size() <= capacity)
        return true;
    entries.pop_front();
    return false;
}

void NotificationQueue::putBack(Entry entry) {
    const bool isSuperseded = std::ranges::any_of(
        entries, [&](const Entry& other) { return other.identifier == entry.identifier; });
    if (!isSuperseded && entries.size() < capacity)
        entries.push_front(std::move(entry));
}

void NotificationQueue::drop(const std::string& identifier) {
    std::erase_if(entries, [&](const Entry& entry) { return entry.identifier == identifier; });
}

void NotificationQueue::dropRemovals() {
    std::erase_if(entries, [](const Entry& entry) { return !entry.request; });
}

std::optional<NotificationQueue::Entry> NotificationQueue::pop(Time now) {
    std::erase_if(entries, [&](const Entry& entry) { return now - entry.since > newsworthy; });
    if (entries.empty())
        return std::nullopt;
    auto entry = std::move(entries.front());
    entries.pop_front();
    return entry;
}

} // namespace quorva
