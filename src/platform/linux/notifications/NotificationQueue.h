// What is still to be said to the notification server: what to show and what to take away.
#pragma once

#include "base/Time.h"
#include "platform/NotificationCenter.h"

#include <cstddef>
#include <deque>
#include <optional>
#include <string>

namespace quorva {

/// At most one entry for each identifier, the newest; at most 50 in all, the newest. Main thread
/// only.
class NotificationQueue {
public:
    static constexpr std::size_t capacity = 50;

    struct Entry {
        std::string identifier;
        std::optional<NotificationRequest> request; ///< nothing: it is to be taken away
        Time since;
    };

    /// What is older than `newsworthy` is dropped.
    explicit NotificationQueue(Seconds newsworthy);

    /// Adds an entry at the end, in place of the one with its identifier. False when the oldest
    /// had to be dropped.
    bool push(Entry entry);

    /// Brings back an entry that was taken, to the front, unless there is a newer one with its
    /// identifier.
    void putBack(Entry entry);

    /// Drops the entry with this identifier, if there is one.
    void drop(const std::string& identifier);

    /// Drops all that is to be taken away: whoever showed it is gone.
    void dropRemovals();

    /// Takes the oldest entry that is news still.
    [[nodiscard]] std::optional<Entry> take(Time now);

    [[nodiscard]] std::size_t size() const { return entries.size(); }

private:
    const Seconds newsworthy;
    std::deque<Entry> entries;
};

} // namespace quorva
