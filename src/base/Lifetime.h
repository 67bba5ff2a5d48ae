// The guard between an owner and the tasks, timers and callbacks that may outlive it.
#pragma once

#include <memory>
#include <utility>

namespace quorva {

/// A member of an owner, declared last so that it goes first. Callables that pass through `guard`
/// do nothing once the owner is gone. Guard, call and destroy on one thread.
class Lifetime {
public:
    Lifetime() = default;
    Lifetime(const Lifetime&) = delete;
    Lifetime& operator=(const Lifetime&) = delete;

    template <typename Callable>
    [[nodiscard]] auto guard(Callable callable) const {
        return [weak = std::weak_ptr<const char>(token),
                callable = std::move(callable)](auto&&... arguments) {
            if (!weak.expired())
                callable(std::forward<decltype(arguments)>(arguments)...);
        };
    }

private:
    std::shared_ptr<const char> token = std::make_shared<const char>('\0');
};

} // namespace quorva
