// Follows the fields that a view shows, and has the view brought up to date once for however many
// of them have changed.
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"
#include "base/Published.h"

#include <utility>
#include <vector>

namespace quorva {

/// Main thread only.
class ChangeWatch {
public:
    /// `loop` must outlive the watch. `onChange` is called as a task of its own: fields tell of
    /// a change before it is made, and a button's own operation must not take the button away.
    ChangeWatch(MainLoop& loop_, Task onChange_) : loop(loop_), onChange(std::move(onChange_)) {}

    ChangeWatch(const ChangeWatch&) = delete;
    ChangeWatch& operator=(const ChangeWatch&) = delete;

    /// The fields must outlive the watch.
    template <typename... Fields>
    void follow(const Fields&... fields) {
        (subscriptions.push_back(fields.observe([this](const auto&) { schedule(); })), ...);
    }

    /// Has `onChange` called soon.
    void schedule() {
        if (isScheduled)
            return;
        isScheduled = true;
        loop.post(lifetime.guard([this] {
            isScheduled = false;
            onChange();
        }));
    }

private:
    MainLoop& loop;
    const Task onChange;
    bool isScheduled = false;
    std::vector<Subscription> subscriptions;
    Lifetime lifetime; // last: goes first
};

} // namespace quorva
