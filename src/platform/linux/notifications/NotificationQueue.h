// The notifications that wait to be shown, and those that wait to be taken away.
#pragma once

#include "base/Time.h"
#include "platform/NotificationCenter.h"

#include <cstddef>
#include <deque>
#include <optional>
#include <string>

namespace quorva {

/// Holds the newest entry for each identifier, and the newest 50 in all. Main thread only.
class NotificationQueue {
public:
    static constexpr std::size_t capacity = 50;

    struct Entry {
        std::string identifier;
        std::optional<NotificationRequest> request; ///< nothing: take the notification away
        Time since;
    };

    /// Entries older than `newsworthy` are dropped.
    explicit NotificationQueue(Seconds newsworthy);

    /// Adds an entry at the end, in place of any with the same identifier. Returns false when the
    /// queue was full and the oldest entry was dropped.
    bool push(Entry entry);

    /// Returns a popped entry to the front, unless the queue is full or holds a newer entry with
    /// the same identifier.
    void putBack(Entry entry);

    /// Drops the entry with this identifier, if there is one.
    void drop(const std::string& identifier);

    /// Drops the entries that take a notification away. For when the server that showed them is
    /// gone.
    void dropRemovals();

    /// Removes and returns the oldest entry that is still newsworthy; nothing when there is none.
    [[nodiscard]] std::optional<Entry> pop(Time now);

    [[nodiscard]] std::size_t size() const { return entries.size(); }

private:
    const Seconds newsworthy;
    std::deque<Entry> entries;
};

} // namespace quorva
