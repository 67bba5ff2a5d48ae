// A trial of detection as a whole: harmless stand-ins sent through every source, so that "nothing
// found" can be told from "could not have been found".
#pragma once

#include "base/Subscription.h"

#include <functional>
#include <string>

namespace quorva {

/// Main thread only; no operation waits.
class DetectionTest {
public:
    virtual ~DetectionTest() = default;

    /// Tries every source; calls `onLine` on the main loop with what each has come to and, last,
    /// with all of it in one line, for people, in UTF-8; then `done` once, with whether everything
    /// works. A trial that cannot be made says so in a line. Dropping the subscription ends it,
    /// without a further call.
    [[nodiscard]] virtual Subscription run(std::function<void(const std::string& line)> onLine,
                                           std::function<void(bool works)> done) = 0;
};

} // namespace quorva
