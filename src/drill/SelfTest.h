// The self-test: sends a harmless stand-in through each source to a detection, one source after the
// other, and names the step that fails. Main thread only. Detectors that run meanwhile do not
// notice it, and nothing is stored.
#pragma once

#include "drill/Drill.h"
#include "platform/DrillStandIns.h"
#include "platform/Platform.h"

#include <functional>
#include <memory>
#include <vector>

namespace quorva {

class SelfTest {
public:
    using Progress = std::function<void(const DrillFinding&)>;
    using Done = std::function<void(const std::vector<DrillFinding>&)>;

    /// The services must outlive the test. It replaces the requests made of the platform's
    /// accessibility tree while it runs, and does not use its calendar store.
    SelfTest(Platform& platform, DrillStandIns& standIns);

    /// Tests these sources in this order, each for at most 10 seconds. Calls `progress` after each,
    /// then `done` once, as tasks of the main loop. Must not be called while a test runs.
    /// Destroying the test ends it without a call and removes the stand-ins.
    void run(std::vector<DrillLink> links, Progress progress, Done done);

    [[nodiscard]] bool isRunning() const { return drill != nullptr; }

private:
    [[nodiscard]] std::unique_ptr<Drill> make(DrillLink link);
    void next();
    void handle(const DrillFinding& finding);

    Platform& platform;
    DrillStandIns& standIns;
    std::vector<DrillLink> waiting; ///< in reverse order
    std::vector<DrillFinding> findings;
    Progress progress;
    Done done;
    std::unique_ptr<Drill> drill;
};

} // namespace quorva
