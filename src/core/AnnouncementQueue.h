// Holds each announcement back until its history entry would survive a power cut. Nothing is
// announced that is not in the history.
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"

#include <deque>
#include <memory>

namespace quorva {

/// Main thread only.
class AnnouncementQueue {
public:
    /// The loop must outlive the queue.
    explicit AnnouncementQueue(MainLoop& loop);

    /// Queues an announcement and returns a task; call that task once the history entry is safe.
    /// The announcement runs then, or after 2 seconds, because a full disk must not silence an
    /// alert. Announcements run in the order in which they were added.
    [[nodiscard]] Task add(Task announcement);

private:
    struct Entry {
        Task announcement;
        bool isSafe = false;
        Timer deadline;
    };
    void release();

    MainLoop& loop;
    std::deque<std::shared_ptr<Entry>> waiting;
    Lifetime lifetime; // last: goes first
};

} // namespace quorva
