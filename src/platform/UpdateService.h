// Whoever installs programs on this computer knows of newer versions. This program itself never
// asks the network.
#pragma once

#include "base/Subscription.h"

#include <functional>
#include <string>

namespace quorva {

/// What asking for a newer version has come to.
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

    /// Asks for a newer version of this program, and calls `done` once on the main loop. An answer
    /// that does not come within a minute is unknown. Dropping the subscription ends the wait.
    [[nodiscard]] virtual Subscription
    checkForUpdates(std::function<void(const UpdateAnswer&)> done) = 0;
};

} // namespace quorva
