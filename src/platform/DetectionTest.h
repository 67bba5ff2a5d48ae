// A test of detection as a whole: harmless stand-ins go through every source, to distinguish
// "nothing found" from "could not have been found".
#pragma once

#include "base/Subscription.h"

#include <functional>
#include <string>

namespace quorva {

/// Main thread only; no operation waits.
class DetectionTest {
public:
    virtual ~DetectionTest() = default;

    /// Tests every source. Calls `onLine` on the main loop with the result of each source and,
    /// last, with the overall result, as UTF-8 for people; then `done` once, with whether
    /// everything works. If the test cannot run, a line says why. Dropping the subscription ends
    /// the test without further calls.
    [[nodiscard]] virtual Subscription run(std::function<void(const std::string& line)> onLine,
                                           std::function<void(bool works)> done) = 0;
};

} // namespace quorva
