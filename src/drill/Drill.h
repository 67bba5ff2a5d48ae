// One link of the chain from this computer to a detection, tried with a stand-in: what was done
// step by step, or which step failed and what helps. Main thread only.
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"

#include <functional>
#include <string>
#include <vector>

namespace quorva {

/// The detectors' sources, each with all that lies between it and a detection.
enum class DrillLink { process, calendar, meeting };

/// The step that failed.
struct BrokenStep {
    std::string step;    ///< "start the stand-in"
    std::string problem; ///< a sentence: what was seen instead, and what helps

    bool operator==(const BrokenStep&) const = default;
};

/// What came of trying a link.
struct DrillFinding {
    DrillLink link = DrillLink::process;
    std::vector<std::string> passed; ///< the steps that were seen to work: "started a stand-in"
    BrokenStep broken;               ///< empty: none
    Seconds took{0};

    [[nodiscard]] bool isBroken() const { return !broken.step.empty(); }
};

class Drill {
public:
    using Done = std::function<void(const DrillFinding&)>;

    /// The loop must outlive the drill.
    Drill(MainLoop& loop, DrillLink link);
    virtual ~Drill() = default;

    Drill(const Drill&) = delete;
    Drill& operator=(const Drill&) = delete;

    /// Tries the link, once, and calls `done` once: after 10 seconds at the latest, as a task of
    /// the main loop, in which the drill may be destroyed. Destroying it earlier ends it without a
    /// call.
    void run(Done done);

protected:
    virtual void begin() = 0;

    /// The step that has not come to an end, for a drill that is out of time.
    [[nodiscard]] virtual BrokenStep unfinished() = 0;

    void pass(std::string step) { finding.passed.push_back(std::move(step)); }
    void fail(BrokenStep broken);
    void finish();

    MainLoop& loop;
    Lifetime lifetime;

private:
    const Seconds patience{10.0};

    DrillFinding finding;
    Done done;
    Time begun{};
    Timer deadline;
};

} // namespace quorva
