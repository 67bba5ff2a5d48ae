// A field that observers can follow.
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"

#include <functional>
#include <memory>
#include <utility>

namespace quorva {

/// Holds a value that only its owner can change, and calls its observers with the next value before
/// each change, and a new observer with the current one. Assigning an equal value counts as a
/// change. Main thread only.
template <typename T, typename Owner>
class Published {
public:
    explicit Published(T initial = {}) : value(std::move(initial)) {}
    Published(const Published&) = delete;
    Published& operator=(const Published&) = delete;

    [[nodiscard]] const T& get() const { return value; }
    // NOLINTNEXTLINE(google-explicit-constructor): a published field reads like the field itself
    operator const T&() const { return value; }
    const T& operator*() const { return value; }
    const T* operator->() const { return &value; }

    /// Calls `observer` at once with the current value, and before each change with the next one.
    [[nodiscard]] Subscription observe(std::function<void(const T&)> observer) const {
        observer(value);
        return observers.add(std::move(observer));
    }

    /// As `observe`, but each call is a separate task on `loop`, which must outlive this field.
    /// Nothing is delivered after the subscription has ended.
    [[nodiscard]] Subscription observeOn(MainLoop& loop,
                                         std::function<void(const T&)> observer) const {
        auto lifetime = std::make_shared<Lifetime>();
        auto inner = std::make_shared<Subscription>(
            observe([&loop, weak = std::weak_ptr(lifetime), observer](const T& next) {
                if (const auto alive = weak.lock())
                    loop.post(alive->guard([observer, next] { observer(next); }));
            }));
        return Subscription([lifetime, inner]() mutable {
            inner->reset();
            lifetime.reset();
        });
    }

    /// As `observe`, but only for changes to an unequal value, and not for the current one.
    [[nodiscard]] Subscription observeChanges(Task observer) const {
        return observers.add([this, observer = std::move(observer)](const T& next) {
            if (!(next == value))
                observer();
        });
    }

private:
    friend Owner;

    Published& operator=(T next) {
        observers.call(next);
        value = std::move(next);
        return *this;
    }

    T value;
    mutable CallbackList<const T&> observers;
};

} // namespace quorva
