// The fire drill: sends a harmless stand-in through each detector's real source to a detection, one
// link after the other, and names the step that fails. Main thread only. Detectors that run
// meanwhile see nothing of it, and nothing is stored.
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

    /// The services must outlive the test. What is requested of the platform's accessibility tree
    /// is replaced while it runs, and of its calendar store nothing is asked.
    SelfTest(Platform& platform, DrillStandIns& standIns);

    /// Tries these links in this order. Calls `progress` after each, then `done` once, as tasks of
    /// the main loop; a link is given 10 seconds. Not while it runs already. Destroying the test
    /// ends it without a call, and takes the stand-ins down.
    void run(std::vector<DrillLink> links, Progress progress, Done done);

    [[nodiscard]] bool isRunning() const { return drill != nullptr; }

private:
    [[nodiscard]] std::unique_ptr<Drill> make(DrillLink link);
    void next();
    void take(const DrillFinding& finding);

    Platform& platform;
    DrillStandIns& standIns;
    std::vector<DrillLink> waiting; ///< the next one last
    std::vector<DrillFinding> findings;
    Progress progress;
    Done done;
    std::unique_ptr<Drill> drill;
};

} // namespace quorva
