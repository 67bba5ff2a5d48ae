// Follows the accounts and calendars of Evolution Data Server on a thread of its own: the service's
// library waits for the service in places that cannot be cancelled.
#pragma once

#include "base/Lifetime.h"
#include "platform/linux/calendars/EdsSources.h"
#include "platform/linux/glib/ContextThread.h"

#include <functional>
#include <memory>
#include <string>

namespace quorva {

/// Main thread only; one at a time in a process, for the library shares its registry. Never waits.
class EdsRegistry {
public:
    enum class State {
        unknown, ///< not asked yet, or no answer yet
        absent,  ///< no session bus, or no such service on it
        failed,  ///< the service is there and did not answer as it should
        present, ///< the sources are known and followed
    };

    /// Both are called on the main loop: `onAnswer` when an attempt has ended and when sources have
    /// come or gone later, before it `onChange` if anything is other than it was.
    EdsRegistry(Task onChange, Task onAnswer);
    ~EdsRegistry();

    EdsRegistry(const EdsRegistry&) = delete;
    EdsRegistry& operator=(const EdsRegistry&) = delete;

    /// Asks for the sources and follows them from then on. Does nothing while that is under way.
    void start();

    /// What was found last; a new attempt leaves it until it ends.
    [[nodiscard]] State state() const { return present.state; }

    /// Why the service is absent or has failed; empty otherwise.
    [[nodiscard]] const std::string& problem() const { return present.problem; }

    [[nodiscard]] const EdsSources& sources() const { return present.sources; }

private:
    class Worker;
    struct News {
        State state = State::unknown;
        std::string problem;
        EdsSources sources;

        bool operator==(const News&) const = default;
    };
    void adopt(News news);
    void stop();

    const Task onChange;
    const Task onAnswer;
    std::shared_ptr<Worker> worker; ///< together with its thread
    std::unique_ptr<ContextThread> thread;
    News present;
    Lifetime lifetime;
};

} // namespace quorva
