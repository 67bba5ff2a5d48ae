// Subscriptions to events: a Subscription owns a registration and ends it when it is destroyed.
#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace quorva {

/// Work for the main loop, or a callback without arguments.
using Task = std::function<void()>;

/// Runs its end function once: when it is destroyed, assigned to, or reset. An empty one does
/// nothing. Movable, not copyable. Use it on the thread that made it.
class [[nodiscard]] Subscription {
public:
    Subscription() = default;
    explicit Subscription(Task end) : ending(std::move(end)) {}
    Subscription(Subscription&& other) noexcept : ending(std::exchange(other.ending, nullptr)) {}
    Subscription& operator=(Subscription&& other) noexcept {
        if (this != &other) {
            reset();
            ending = std::exchange(other.ending, nullptr);
        }
        return *this;
    }
    ~Subscription() { reset(); }

    void reset() {
        if (const Task end = std::exchange(ending, nullptr))
            end();
    }

    explicit operator bool() const { return static_cast<bool>(ending); }

private:
    Task ending;
};

/// The subscribers to one event. A subscription may begin or end during a call, and may outlive the
/// list. Main thread only.
template <typename... Arguments>
class CallbackList {
public:
    using Callback = std::function<void(Arguments...)>;

    [[nodiscard]] Subscription add(Callback callback) {
        auto entry = std::make_shared<Callback>(std::move(callback));
        entries->push_back(entry);
        return Subscription([list = std::weak_ptr(entries), entry] {
            *entry = nullptr;
            if (const auto alive = list.lock())
                std::erase(*alive, entry);
        });
    }

    /// Calls the subscribers in the order in which they subscribed, without those that subscribe
    /// during the call.
    void call(Arguments... arguments) const {
        const auto present = *entries;
        for (const auto& entry : present) {
            const Callback callback = *entry; // may end its own subscription
            if (callback)
                callback(arguments...);
        }
    }

private:
    using Entries = std::vector<std::shared_ptr<Callback>>;
    std::shared_ptr<Entries> entries = std::make_shared<Entries>();
};

} // namespace quorva
