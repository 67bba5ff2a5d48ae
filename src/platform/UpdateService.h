// The computer's package service, which knows of newer versions. This program itself never uses the
// network.
#pragma once

#include "base/Subscription.h"

#include <functional>
#include <string>

namespace quorva {

/// The result of asking for a newer version.
struct UpdateAnswer {
    enum class Kind { upToDate, available, unknown };
    Kind kind = Kind::unknown;
    std::string version; ///< the newer one, when one is available
    std::string reason;  ///< why nothing is known, for people

    bool operator==(const UpdateAnswer&) const = default;
};

/// Main thread only; no operation waits for the service.
class UpdateService {
public:
    virtual ~UpdateService() = default;

    /// Asks for a newer version of this program and calls `done` once on the main loop, after at
    /// most a minute. Dropping the subscription cancels the request; `done` is then not called.
    [[nodiscard]] virtual Subscription
    checkForUpdates(std::function<void(const UpdateAnswer&)> done) = 0;
};

} // namespace quorva
