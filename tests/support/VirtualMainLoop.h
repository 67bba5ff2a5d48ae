// A main loop whose time passes only when a test says so: hours take milliseconds, in the right
// order, and two runs never differ.
#pragma once

#include "base/MainLoop.h"

#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

namespace quorva {

class VirtualMainLoop final : public MainLoop {
public:
    [[nodiscard]] Time now() const override { return present; }
    void post(Task task) override;
    [[nodiscard]] Timer after(Seconds delay, Task task) override;
    [[nodiscard]] Timer every(Seconds period, Task task) override;

    /// Runs the tasks posted so far, and those that they post, without letting time pass.
    void runPosted();

    /// Lets time pass: runs what is posted and every timer that falls due, each at its own time.
    void advance(Seconds duration);

    /// Lets time pass while the computer sleeps: timers do not count it.
    void suspend(Seconds duration);

private:
    struct Entry {
        Task task;
        Time::duration period; ///< zero: once
    };
    using Key = std::pair<Time, std::uint64_t>; ///< due, then the order of creation
    using Timers = std::map<Key, std::shared_ptr<Entry>>;

    Timer add(Seconds delay, Entry entry);

    Time present = std::chrono::sys_days{std::chrono::March / 2 / 2026} + std::chrono::hours(9);
    std::uint64_t count = 0;
    std::shared_ptr<Timers> timers = std::make_shared<Timers>();
    std::mutex mutex; ///< for `posted` alone: post is callable from any thread
    std::deque<Task> posted;
};

} // namespace quorva
