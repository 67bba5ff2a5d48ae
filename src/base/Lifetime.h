// Protects an owner from tasks, timers and callbacks that outlive it.
#pragma once

#include <memory>
#include <utility>

namespace quorva {

/// Declare it as the last member of the owner, so that it is destroyed first. A callable returned
/// by `guard` does nothing once the owner is gone. Guard, call and destroy on one thread.
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
