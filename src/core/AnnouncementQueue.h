// Holds an announcement back until the history entry it stands for would survive a power cut, so
// that nothing is announced that the record does not know of.
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

    /// Announces when the returned task, to be called once the record is safe, has been called, or
    /// after 2 seconds: a full disk must not keep the user from being told. In the order of adding.
    [[nodiscard]] Task add(Task announcement);

private:
    struct Entry {
        Task announcement;
        bool isSafe = false;
        Timer limit;
    };
    void release();

    MainLoop& loop;
    std::deque<std::shared_ptr<Entry>> waiting;
    Lifetime lifetime; // last: goes first
};

} // namespace quorva
