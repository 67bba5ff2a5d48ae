// Follows the published fields that a view shows, and updates the view once after any number of
// changes.
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"
#include "base/Published.h"

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

namespace quorva {

/// Main thread only.
class ChangeWatch {
public:
    /// `loop` must outlive the watch. `onChange` runs as a separate task of the loop, because a
    /// field calls its observers before it changes, and because an operation of a button must not
    /// destroy that button.
    ChangeWatch(MainLoop& loop_, Task onChange_) : loop(loop_), onChange(std::move(onChange_)) {}

    ChangeWatch(const ChangeWatch&) = delete;
    ChangeWatch& operator=(const ChangeWatch&) = delete;

    /// The fields must outlive the watch.
    template <typename... Fields>
    void follow(const Fields&... fields) {
        Subscription added[] = {fields.observe([this](const auto&) { schedule(); })...};
        std::move(std::begin(added), std::end(added), std::back_inserter(subscriptions));
    }

    /// Posts `onChange`, unless it is posted already.
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
    Lifetime lifetime; // last: destroyed first
};

} // namespace quorva
